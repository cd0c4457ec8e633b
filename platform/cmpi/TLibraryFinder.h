// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace NZEPQEL20 {

/// The library that a registration means.
struct TFoundLibrary {
  std::string path;  ///< Where it is, or where it was expected first.
  bool isThere = false;
  std::string doubt;  ///< What the choice was between; empty when there was none.
};

/// Finds libraries in a vendor's folder by the names that registrations have for them.
/// Threads: to be used by one at a time.
class TLibraryFinder {
 public:
  /// `files` is what lies in the folder; what is no library among it is left out.
  TLibraryFinder(std::string folder, const std::vector<std::string>& files);

  const std::string& GetFolder() const { return m_folder; }

  /// The library for `location` as a registration in `registrationFolder` writes it: "X" stands
  /// for `libX.so`, beside the registration, else anywhere in the vendor's folder. "libX.so" and a
  /// path mean the file of that name, never one outside the folder. Without an exact name one
  /// with a version is taken. Of several, the first for this machine. Each is looked for once.
  TFoundLibrary Find(const std::string& location, const std::string& registrationFolder) const;

 private:
  TFoundLibrary Search(const std::string& location, const std::string& registrationFolder) const;
  std::vector<std::string> Collect(const std::string& location) const;

  std::string m_folder;
  std::vector<std::string> m_libraries;
  std::map<std::string, std::vector<std::size_t>> m_places;  ///< Of the libraries, by file name.
  /// By location and registration folder: a registration has many entries for one library.
  mutable std::map<std::pair<std::string, std::string>, TFoundLibrary> m_found;
};

}  // namespace NZEPQEL20
