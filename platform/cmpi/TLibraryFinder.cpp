// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TLibraryFinder.h"

#include <algorithm>

#include "platform/cmpi/TElfFile.h"
#include "platform/cmpi/VendorFiles.h"

namespace NZEPQEL20 {

namespace {

std::string GetName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

/// The file names that `location` may stand for, the likeliest first.
std::vector<std::string> GetNames(const std::string& location) {
  const std::string base = GetName(location);
  if (IsLibraryName(base)) return {base, "lib" + base};
  return {"lib" + base + ".so", base + ".so"};
}

/// Adds `library` unless one of the others is the same by another name, as a link or a copy.
void AddOther(std::vector<std::string>& libraries, const std::string& library) {
  const bool isKnown =
      std::any_of(libraries.begin(), libraries.end(),
                  [&library](const std::string& known) { return IsSameFile(known, library); });
  if (!isKnown) libraries.push_back(library);
}

/// The first that this machine can load stands for all; others that it could load are named.
TFoundLibrary Choose(const std::vector<std::string>& libraries) {
  std::vector<std::string> fit;
  if (libraries.size() > 1) {
    std::copy_if(libraries.begin(), libraries.end(), std::back_inserter(fit),
                 [](const std::string& library) {
                   return TElfFile(library, TElfFile::EContent::kNeeds).GetFault().empty();
                 });
  }
  std::vector<std::string> best;
  for (const std::string& library : fit.empty() ? libraries : fit) AddOther(best, library);
  TFoundLibrary found = {best.front(), true, ""};
  for (std::size_t i = 1; i < best.size(); ++i) {
    found.doubt += (i == 1 ? best.front() + " is taken, not " : " or ") + best[i];
  }
  return found;
}

}  // namespace

TLibraryFinder::TLibraryFinder(std::string folder, const std::vector<std::string>& files)
    : m_folder(std::move(folder)) {
  std::copy_if(files.begin(), files.end(), std::back_inserter(m_libraries), IsLibraryName);
  for (std::size_t i = 0; i < m_libraries.size(); ++i)
    m_places[GetName(m_libraries[i])].push_back(i);
}

std::vector<std::string> TLibraryFinder::Collect(const std::string& location) const {
  std::vector<std::size_t> places;
  for (const std::string& name : GetNames(location)) {
    const auto exact = m_places.find(name);
    if (exact != m_places.end()) {
      places = exact->second;
      break;
    }
    const std::string start = name + '.';
    for (auto at = m_places.lower_bound(start);
         at != m_places.end() && StartsWith(at->first, start); ++at) {
      places.insert(places.end(), at->second.begin(), at->second.end());
    }
    if (!places.empty()) break;
  }
  // Those that lie higher come first, whatever their version.
  std::sort(places.begin(), places.end());
  std::vector<std::string> found;
  found.reserve(places.size());
  for (const std::size_t place : places) found.push_back(m_libraries[place]);
  return found;
}

TFoundLibrary TLibraryFinder::Find(const std::string& location,
                                   const std::string& registrationFolder) const {
  const auto [place, isNew] = m_found.try_emplace(std::make_pair(location, registrationFolder));
  if (isNew) place->second = Search(location, registrationFolder);
  return place->second;
}

TFoundLibrary TLibraryFinder::Search(const std::string& location,
                                     const std::string& registrationFolder) const {
  const std::vector<std::string> found = Collect(location);
  if (found.empty()) {
    return {registrationFolder + '/' + GetNames(location).front(), false, ""};
  }
  for (const std::string& library : found) {
    if (GetFolderOf(library) == registrationFolder) return {library, true, ""};
  }
  return Choose(found);
}

}  // namespace NZEPQEL20
