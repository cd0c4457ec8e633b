// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/InstalledFiles.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <set>
#include <system_error>

#include "platform/cmpi/VendorFiles.h"
#include "platform/contract/TQELException.h"
#include "platform/setup/VendorSchema.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Refuse(const std::string& root, const std::error_code& error,
                         const std::string& reason) {
  const bool isDenied = error == std::errc::permission_denied;
  throw TQELException(isDenied ? TQELStatusCode::kAccessDenied : TQELStatusCode::kNotFound,
                      "installation root " + root + ": " + reason +
                          "; --root or DIAGSRUNNER_ROOT names another one");
}

// What a folder holds, by name; a folder that is not there holds nothing.
std::vector<fs::directory_entry> ReadFolder(const fs::path& folder,
                                            std::vector<std::string>& problems) {
  std::vector<fs::directory_entry> found;
  std::error_code error;
  fs::directory_iterator entries(folder, error);
  while (!error && entries != fs::directory_iterator()) {
    found.push_back(*entries);
    entries.increment(error);
  }
  if (error && error != std::errc::no_such_file_or_directory) {
    problems.push_back(folder.string() + ": cannot be read: " + error.message());
  }
  std::sort(found.begin(), found.end());
  return found;
}

// Puts the reduced classes that are shipped in front: a whole schema that lies beside them holds,
// however its files are called.
void PutShippedFirst(const fs::path& folder, std::vector<std::string>& files) {
  constexpr std::array<const char*, 5> kShipped = {
      "cim_core.mof", "cim_devices.mof", "cim_diagnostics.mof", "cim_jobs.mof", "cim_profiles.mof"};
  std::stable_partition(files.begin(), files.end(), [&](const std::string& file) {
    return std::any_of(kShipped.begin(), kShipped.end(),
                       [&](const char* name) { return file == (folder / name).string(); });
  });
}

// Files below a folder of class declarations, a folder's own before those of the folders in it.
class TSchemaTree {
 public:
  TSchemaTree(std::vector<std::string>& files, std::vector<std::string>& problems)
      : m_files(files), m_problems(problems) {}

  void Take(const fs::path& folder, unsigned int depth = 0) {
    // A schema has two levels; links may lead round in circles.
    constexpr unsigned int kMaxDepth = 8;
    std::error_code error;
    const fs::path place = fs::canonical(folder, error);
    if (depth > kMaxDepth || (!error && !m_seen.insert(place.string()).second)) return;
    std::vector<fs::path> folders;
    for (const fs::directory_entry& entry : ReadFolder(folder, m_problems)) {
      // What archives and version control put beside the files.
      if (entry.path().filename().string().front() == '.') continue;
      if (entry.is_directory(error)) {
        folders.push_back(entry);
      } else if (IsMofName(entry.path().string())) {
        m_files.push_back(entry.path().string());
      }
    }
    for (const fs::path& inner : folders) Take(inner, depth + 1);
  }

 private:
  std::vector<std::string>& m_files;
  std::vector<std::string>& m_problems;
  std::set<std::string> m_seen;
};

}  // namespace

std::string CheckRoot(const std::string& root) {
  std::error_code error;
  const fs::path path = fs::absolute(root, error);
  if (root.empty() || error) Refuse(root, error, "is not a path");
  const bool isFolder = fs::is_directory(path, error);
  if (error) Refuse(root, error, error.message());
  if (!isFolder) Refuse(root, error, "is not a directory");
  fs::directory_iterator probe(path, error);
  if (error) Refuse(root, error, error.message());
  std::string text = path.lexically_normal().string();
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

TInstalledFiles FindInstalledFiles(const std::string& root) {
  TMofOutlines outlines;
  return FindInstalledFiles(root, outlines);
}

TInstalledFiles FindInstalledFiles(const std::string& root, TMofOutlines& outlines) {
  TInstalledFiles files;
  const fs::path top(root);
  TSchemaTree(files.schema, files.problems).Take(top / "schema");
  files.schema = OrderByIncludes(files.schema, outlines);
  PutShippedFirst(top / "schema", files.schema);
  if (files.schema.empty()) {
    files.problems.push_back((top / "schema").string() + ": holds no class declarations (*.mof)");
  }
  for (const fs::path& folder : ReadFolder(top / "providers", files.problems)) {
    std::error_code error;
    if (!fs::is_directory(folder, error)) continue;
    if (folder.filename().string().front() == '.') continue;
    files.providerFolders.push_back(folder.string());
    TVendorFiles found = ListVendorFiles(folder.string());
    files.problems.insert(files.problems.end(), found.problems.begin(), found.problems.end());
    std::vector<std::string> schema;
    std::copy_if(found.files.begin(), found.files.end(), std::back_inserter(schema), IsMofName);
    schema = OrderByIncludes(schema, outlines);
    files.providerSchema.insert(files.providerSchema.end(), schema.begin(), schema.end());
    files.vendors.push_back({folder.string(), std::move(found.files)});
  }
  return files;
}

}  // namespace NZEPQEL20::setup
