// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/LibraryLoading.h"

#include <dlfcn.h>
#include <link.h>
#include <locale.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

#include "platform/cmpi/TElfFile.h"
#include "platform/cmpi/VendorFiles.h"

namespace NZEPQEL20 {

namespace {

/// Siblings of siblings that are followed.
constexpr unsigned int kMaxDepth = 16;
constexpr char kFactoryMark[] = "_Create_";

/// The absolute form of `path`, so that the loader searches nowhere else.
std::string MakeAbsolute(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                         std::free);
  return real != nullptr ? std::string(real.get()) : path;
}

/// While it lives the loader's words are English, which is what is looked for in them.
class TPlainWords {
 public:
  TPlainWords() : m_plain(newlocale(LC_ALL_MASK, "C", nullptr)) {
    if (m_plain != nullptr) m_former = uselocale(m_plain);
  }
  ~TPlainWords() {
    if (m_plain == nullptr) return;
    uselocale(m_former);
    freelocale(m_plain);
  }
  TPlainWords(const TPlainWords&) = delete;
  TPlainWords& operator=(const TPlainWords&) = delete;

 private:
  locale_t m_plain;
  locale_t m_former = nullptr;
};

/// The files that were loaded here. Threads: safe from several.
class TTakenFiles {
 public:
  static TTakenFiles& Get() {
    static TTakenFiles files;
    return files;
  }

  void Add(const std::string& path) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_paths.insert(path);
  }
  bool Has(const std::string& path) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_paths.count(path) > 0;
  }

 private:
  std::mutex m_mutex;
  std::set<std::string> m_paths;
};

/// Where the library that goes by `name` was loaded from; empty when there is none.
std::string FindLoaded(const std::string& name) {
  void* handle = dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL | RTLD_NOLOAD);
  if (handle == nullptr) return {};
  link_map* map = nullptr;
  std::string path;
  if (dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0) path = map->l_name;
  dlclose(handle);
  return path;
}

/// Whether the loader has `name`, or finds it where the system's libraries are. It stays loaded
/// then: it is needed.
bool IsFoundBySystem(const std::string& name) {
  return dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL) != nullptr;
}

/// Loads a library with what it needs of its vendor's folder.
class TSiblingLoader {
 public:
  TSiblingLoader(const std::string& path, const std::string& folder)
      : m_path(MakeAbsolute(path)), m_folder(folder) {}

  TLoadedLibrary Load() {
    if (::access(m_path.c_str(), F_OK) != 0 && errno == ENOENT) {
      Refuse(m_path + ": cannot open shared object file: No such file or directory",
             "put the library there, or mend the registration", "R13");
    } else if (Inspect(m_path, 0)) {
      LoadInspected();
    }
    return std::move(m_loaded);
  }

 private:
  struct TSibling {
    std::string name;  ///< As it is asked for.
    std::string path;
  };

  void Refuse(const std::string& reason, const std::string& remedy, const std::string& rule) {
    m_loaded.reason = reason;
    m_loaded.remedy = remedy;
    m_loaded.rule = rule;
  }

  /// Looks into a library and, before that counts as done, what it needs of the folder. False when
  /// the loader must not have it: some faults end the process.
  bool Inspect(const std::string& path, unsigned int depth) {
    const TElfFile elf(path, TElfFile::EContent::kNeeds);
    if (!elf.GetFault().empty()) {
      const bool isOwn = path == m_path;
      Refuse((isOwn ? "the file " : "it needs " + path + ", which ") + elf.GetFault(),
             "ship a library for this machine", "R14");
      return false;
    }
    if (depth == kMaxDepth) return true;
    for (const std::string& name : elf.GetNeeded()) {
      if (!m_names.insert(name).second) continue;
      if (!InspectNeeded(name, depth)) return false;
    }
    return true;
  }

  bool InspectNeeded(const std::string& name, unsigned int depth) {
    const std::vector<std::string> files = FindFiles(name);
    if (files.empty()) return true;
    const std::string loaded = FindLoaded(name);
    if (!loaded.empty()) {
      NoteOther(name, loaded, files);
      return true;
    }
    const auto fit = std::find_if(files.begin(), files.end(), [](const std::string& file) {
      return TElfFile(file, TElfFile::EContent::kNeeds).GetFault().empty();
    });
    if (fit == files.end()) return IsFoundBySystem(name) || Inspect(files.front(), depth + 1);
    if (!Inspect(*fit, depth + 1)) return false;
    m_siblings.push_back({name, *fit});
    // One that is not fit could be found by a path within the library.
    m_isMixed = m_isMixed || files.size() > 1;
    return true;
  }

  /// The files that `name` may stand for; a path means that very file.
  std::vector<std::string> FindFiles(const std::string& name) {
    if (name.find('/') != std::string::npos) {
      return ::access(name.c_str(), F_OK) == 0 ? std::vector<std::string>{MakeAbsolute(name)}
                                               : std::vector<std::string>();
    }
    if (m_files.empty()) m_files = ListVendorFiles(m_folder).files;
    std::vector<std::string> found;
    for (const std::string& file : m_files) {
      if (file.compare(file.rfind('/') + 1, std::string::npos, name) == 0) {
        found.push_back(MakeAbsolute(file));
      }
    }
    return found;
  }

  /// The loader knows libraries by their names: whoever comes second gets what the first brought.
  void NoteOther(const std::string& name, const std::string& loaded,
                 const std::vector<std::string>& files) {
    if (!TTakenFiles::Get().Has(loaded)) return;
    const bool isSame = std::any_of(files.begin(), files.end(), [&](const std::string& file) {
      return file == loaded || IsSameFile(file, loaded);
    });
    if (isSame) return;
    m_loaded.doubt = "gets " + loaded + " of another vendor for " + name + ", and not its own " +
                     files.front() + "; give that another soname; see rule R15";
  }

  void LoadInspected() {
    if (m_isMixed) LoadSiblings();
    m_loaded.handle = Open(m_path);
    if (m_loaded.handle != nullptr) return;
    if (!m_isMixed) {
      LoadSiblings();
      m_loaded.handle = Open(m_path);
    }
    if (m_loaded.handle == nullptr) Explain();
  }

  /// Those that others need come first.
  void LoadSiblings() {
    for (const TSibling& sibling : m_siblings) {
      if (IsFoundBySystem(sibling.name)) continue;
      if (Open(sibling.path) == nullptr) m_refused.emplace(sibling.name, m_reason);
      m_tried.insert(sibling.name);
    }
  }

  void* Open(const std::string& path) {
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle != nullptr) {
      TTakenFiles::Get().Add(path);
      return handle;
    }
    const TPlainWords plain;
    const char* words = dlerror();
    m_reason = words != nullptr ? words : "unknown reason";
    return nullptr;
  }

  void Explain() {
    const std::string wanted = FindMissing(m_reason);
    const auto refused = m_refused.find(wanted);
    const std::string reason = refused == m_refused.end() ? m_reason : refused->second;
    const std::string missing = FindMissing(reason);
    if (missing.empty()) {
      Refuse(reason, "link it with everything that it uses", "R5");
    } else if (m_tried.count(missing) > 0) {
      // Loaded before and missing all the same: it goes by another name.
      Refuse(reason, "link " + missing + " with the soname " + missing, "R15");
    } else {
      Refuse(reason, "install what has " + missing + ", or put it into the vendor's folder", "R15");
    }
  }

  const std::string m_path;
  const std::string m_folder;
  TLoadedLibrary m_loaded;
  std::vector<std::string> m_files;
  std::set<std::string> m_names;
  std::vector<TSibling> m_siblings;
  bool m_isMixed = false;
  std::string m_reason;
  std::map<std::string, std::string> m_refused;
  std::set<std::string> m_tried;
};

}  // namespace

TLoadedLibrary LoadLibrary(const std::string& path, const std::string& folder) {
  return TSiblingLoader(path, folder).Load();
}

std::string FindMissing(const std::string& reason) {
  const std::size_t place = reason.find(": cannot open shared object file");
  return place == std::string::npos ? std::string() : reason.substr(0, place);
}

std::vector<std::string> FindFactories(const std::vector<std::string>& symbols) {
  std::vector<std::string> found;
  std::copy_if(symbols.begin(), symbols.end(), std::back_inserter(found),
               [](const std::string& symbol) {
                 const std::size_t place = symbol.find(kFactoryMark);
                 return place != std::string::npos && symbol.find("MI", place) != std::string::npos;
               });
  std::sort(found.begin(), found.end());
  return found;
}

std::string DescribeFactories(const std::string& path) {
  const TElfFile elf(path);
  const std::vector<std::string> found = FindFactories(elf.GetSymbols());
  if (found.empty()) return elf.HasAllSymbols() ? " (it exports no entry point at all)" : "";
  std::string text;
  bool isMangled = false;
  for (const std::string& symbol : found) {
    text += (text.empty() ? " (it has " : ", ") + symbol;
    isMangled = isMangled || symbol.compare(0, 2, "_Z") == 0;
  }
  return text + (isMangled ? "; declare them extern \"C\")" : ")");
}

}  // namespace NZEPQEL20
