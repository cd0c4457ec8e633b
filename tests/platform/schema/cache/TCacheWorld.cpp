// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/schema/cache/TCacheWorld.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <limits>

#include "tests/platform/schema/cache/Dump.h"

namespace cachetest {
namespace {

using namespace NZEPQEL20;

constexpr const char* kMaster =
    "#pragma include (\"Sub\\\\NODE.mof\")\n"
    "#pragma include (\"missing.mof\")\n"
    "#pragma namespace (\"root/x\")\n"
    "class V_Child : V_Gone { uint8 own = 300; };\n"
    "instance of A_Link { From = $N; To = \"//host/root/y:A_Node.Name=\\\"a\\\\\\\"b\\\"\"; };\n"
    "instance of A_Node as $N { Name = \"n\"; Inner = \"instance of A_Node { Size = 9; };\"; };\n"
    "instance of V_Child { own = 3; other = { 1, 2 }; };\n";

constexpr const char* kNode =
    "[Version(\"1\"), Abstract] class A_Root { [Key] string Name; boolean b = true; };\n"
    "class A_Node : A_Root { uint16 Size = 4; [ValueMap{\"0\",\"..\"}, Values{\"no\",\"yes\"}]\n"
    "uint8 List[] = { 1, 2 }; string None[] = { }; char16 c = 'x'; real32 r = -1.5; real64 d[] = "
    "{ .5, 1.0E+300 }; sint64 low = -9223372036854775808; uint64 high = 0xFFFFFFFFFFFFFFFF;\n"
    "datetime t = \"00000000000500.000000:000\"; string s = NULL; [EmbeddedObject] string Inner;\n"
    "[MaxValue(18446744073709551615)] sint8 x = -1; boolean flags[] = { true, NULL };\n"
    "uint32 Run([IN(false), OUT] A_Node REF jobs[], [EmbeddedInstance(\"A_Node\")] string e); };\n"
    "[Association] class A_Link { [Key] A_Node REF From; [Key] A_Node REF To = \"A_Node.Name=1\"; "
    "};\n";

std::string ReadWhole(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::int64_t GetChangeTime(const std::string& path) {
  TFileStamp stamp;
  int error = 0;
  stamp.Read(path, error);
  return stamp.changed;
}

}  // namespace

TCacheWorld::TCacheWorld() {
  inputs.files = {folder.Write("schema/a.mof", kMaster), folder.Write("schema/z.mof", "")};
  folder.Write("schema/sub/Node.mof", kNode);
  folder.Write("search/other.mof", "class V_Other { };");
  inputs.folders = {GetPath("search"), GetPath("nowhere")};
  place.folders = {GetPath("cache")};
  place.fileName = "x.cache";
  place.leastSize = 0;
}

TLoadedSchema TCacheWorld::LoadFiles() const {
  return LoadSchema(inputs, {});
}

TLoadedSchema TCacheWorld::Load() const {
  TLoadedSchema loaded = LoadSchema(inputs, place);
  const TLoadedSchema expected = LoadFiles();
  EXPECT_EQ(Dump(*loaded.classes), Dump(*expected.classes));
  EXPECT_EQ(schematest::Lines(loaded.problems), schematest::Lines(expected.problems));
  return loaded;
}

void TCacheWorld::TrustStamps(bool isTrusted) const {
  std::string bytes;
  {
    const TSchemaCache cache(TDescriptor(open(GetCacheFile().c_str(), O_RDONLY | O_CLOEXEC)));
    bytes = cache.Renew(isTrusted ? std::numeric_limits<std::int64_t>::max() : 0);
  }
  WriteCache(bytes);
}

void TCacheWorld::AwaitTick() const {
  const std::int64_t before = GetChangeTime(folder.Write("tick", ""));
  while (GetChangeTime(folder.Write("tick", "")) == before) {
  }
}

std::string TCacheWorld::ReadCache() const {
  return ReadWhole(GetCacheFile());
}

void TCacheWorld::WriteCache(const std::string& bytes) const {
  folder.Write("cache/x.cache", bytes);
}

std::string GetNotes(const TLoadedSchema& schema) {
  std::string text;
  for (const std::string& note : schema.notes) text += note + "\n";
  return text;
}

void ReplaceUnseen(const std::string& path, const std::string& from, const std::string& to) {
  struct stat before = {};
  ASSERT_EQ(stat(path.c_str(), &before), 0);
  const std::int64_t changed = GetChangeTime(path);
  std::string text = ReadWhole(path);
  const std::size_t at = text.find(from);
  ASSERT_NE(at, std::string::npos);
  ASSERT_EQ(from.size(), to.size());
  const timespec times[2] = {before.st_atim, before.st_mtim};
  // The clock of the file system ticks every few milliseconds.
  do {
    std::ofstream(path, std::ios::binary) << text.replace(at, from.size(), to);
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  } while (GetChangeTime(path) == changed);
}

}  // namespace cachetest
