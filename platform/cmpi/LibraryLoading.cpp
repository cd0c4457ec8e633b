// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/LibraryLoading.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <set>

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

/// Loads a library with what it needs of its vendor's folder.
class TSiblingLoader {
 public:
  explicit TSiblingLoader(const std::string& folder) : m_folder(folder) {}

  void* Load(const std::string& path, unsigned int depth) {
    for (std::set<std::string> tried;;) {
      void* handle = dlopen(MakeAbsolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
      if (handle != nullptr) return handle;
      const char* words = dlerror();
      m_reason = words != nullptr ? words : "unknown reason";
      const std::string missing = FindMissing(m_reason);
      if (missing.empty() || missing.find('/') != std::string::npos) return nullptr;
      // Loaded before and missing all the same: it goes by another name.
      m_isMisnamed = !tried.insert(missing).second;
      const std::string sibling = m_isMisnamed || depth == kMaxDepth ? "" : FindFile(missing);
      if (sibling.empty() || Load(sibling, depth + 1) == nullptr) return nullptr;
    }
  }

  const std::string& GetReason() const { return m_reason; }
  bool IsMisnamed() const { return m_isMisnamed; }

 private:
  /// The file of that name in the vendor's folder, the first for this machine if there are
  /// several; empty when there is none.
  std::string FindFile(const std::string& name) {
    if (m_files.empty()) m_files = ListVendorFiles(m_folder).files;
    std::string found;
    for (const std::string& file : m_files) {
      if (file.compare(file.rfind('/') + 1, std::string::npos, name) != 0) continue;
      if (found.empty()) found = file;
      // Vendors ship one library for several machines.
      if (TElfFile(file).GetFault().empty()) return file;
    }
    return found;
  }

  const std::string m_folder;
  std::vector<std::string> m_files;
  std::string m_reason;
  bool m_isMisnamed = false;
};

void Explain(TLoadedLibrary& loaded, const std::string& path, bool isMisnamed) {
  const std::string missing = FindMissing(loaded.reason);
  const std::string fault = TElfFile(path).GetFault();
  if (isMisnamed) {
    loaded.remedy = "link " + missing + " with the soname " + missing;
    loaded.rule = "R15";
  } else if (!missing.empty() && missing != MakeAbsolute(path)) {
    loaded.remedy = "install what has " + missing + ", or put it into the vendor's folder";
    loaded.rule = "R15";
  } else if (!missing.empty()) {
    loaded.remedy = "put the library there, or mend the registration";
    loaded.rule = "R13";
  } else if (!fault.empty()) {
    loaded.remedy = "the file " + fault + "; ship a library for this machine";
    loaded.rule = "R14";
  } else {
    loaded.remedy = "link it with everything that it uses";
    loaded.rule = "R5";
  }
}

}  // namespace

TLoadedLibrary LoadLibrary(const std::string& path, const std::string& folder) {
  TLoadedLibrary loaded;
  TSiblingLoader loader(folder);
  loaded.handle = loader.Load(path, 0);
  if (loaded.handle == nullptr) {
    loaded.reason = loader.GetReason();
    Explain(loaded, path, loader.IsMisnamed());
  }
  return loaded;
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
  const std::vector<std::string> found = FindFactories(TElfFile(path).GetSymbols());
  if (found.empty()) return " (it exports no entry point at all)";
  std::string text;
  bool isMangled = false;
  for (const std::string& symbol : found) {
    text += (text.empty() ? " (it has " : ", ") + symbol;
    isMangled = isMangled || symbol.compare(0, 2, "_Z") == 0;
  }
  return text + (isMangled ? "; declare them extern \"C\")" : ")");
}

}  // namespace NZEPQEL20
