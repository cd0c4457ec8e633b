// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/SchemaCachePlace.h"

#include <sys/stat.h>

#include <cstdlib>

#include "platform/schema/SchemaHash.h"

namespace NZEPQEL20::setup {
namespace {

std::string GetVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

// A relative path would lead elsewhere from every working folder.
bool IsAbsolute(const std::string& path) {
  return path.compare(0, 1, "/") == 0;
}

// Under sudo these may be another user's, who could not replace there what root has written.
bool IsAnothers(const std::string& folder, uid_t user) {
  struct stat info = {};
  return user == 0 && stat(folder.c_str(), &info) == 0 && info.st_uid != 0;
}

std::string GetUserFolder(uid_t user) {
  const std::string caches = GetVariable("XDG_CACHE_HOME");
  const std::string home = GetVariable("HOME");
  if (IsAnothers(home, user) || IsAnothers(caches, user)) return {};
  if (IsAbsolute(caches)) return caches + "/diagsrunner";
  return IsAbsolute(home) ? home + "/.cache/diagsrunner" : std::string();
}

std::string MakeFileName(const std::string& root) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits;
  for (std::uint64_t hash = HashBytes(root); digits.size() < 16; hash >>= 4U) {
    digits += kDigits[hash & 15U];
  }
  return "schema-" + digits + ".cache";
}

}  // namespace

TSchemaCachePlace ChooseSchemaCache(const std::string& root, uid_t user) {
  TSchemaCachePlace place;
  place.fileName = MakeFileName(root);
  const std::string chosen = GetVariable("DIAGSRUNNER_SCHEMA_CACHE");
  if (chosen == "off") return place;
  if (IsAbsolute(chosen)) {
    place.folders = {chosen};
    return place;
  }
  place.folders = {root + "/cache"};
  const std::string own = GetUserFolder(user);
  if (!own.empty()) place.folders.push_back(own);
  return place;
}

}  // namespace NZEPQEL20::setup
