// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>
#include <unistd.h>

#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

TEST(MofFileTest, IncludesAreRelativeToTheirFileWithEitherSlashInAnyCase) {
  const TFolder folder;
  const std::string master =
      folder.Write("schema.mof",
                   "#pragma include (\"DMTF/Interop\\Class_P.mof\")\n"
                   "#pragma Include (\"dmtf/CLASS_C.MOF\")\nclass A_Last : A_Deep { };");
  folder.Write("DMTF/Interop/Class_P.mof", "#pragma include (\"sub/Deep.mof\")\nclass A_P { };");
  folder.Write("DMTF/Interop/sub/Deep.mof", "class A_Deep { };");
  folder.Write("DMTF/Class_C.mof", "class A_C { };");
  TClassRepository repository;
  EXPECT_EQ(Lines(repository.Load(master)), TLines());
  EXPECT_EQ(repository.GetSubclasses("", true), (TLines{"A_Deep", "A_Last", "A_P", "A_C"}));
}

TEST(MofFileTest, CirclesOfIncludesEndAndFilesAreReadOnce) {
  const TFolder folder;
  const std::string first =
      folder.Write("a.mof", "#pragma include (\"./b.mof\")\nclass A_A { };\ninstance of A_A { };");
  const std::string second =
      folder.Write("b.mof", "#pragma include (\"../" +
                                std::filesystem::path(folder.GetPath()).filename().string() +
                                "/a.mof\")\n#pragma include (\"b.mof\")\nclass A_B { };");
  TClassRepository repository;
  EXPECT_EQ(Lines(repository.Load(first)), TLines());
  EXPECT_EQ(Lines(repository.Load(second)), TLines());
  EXPECT_EQ(Lines(repository.Load(first)), TLines());
  EXPECT_EQ(repository.GetCount(), 2U);
  EXPECT_EQ(repository.GetInstances().size(), 1U);
}

struct TBeginning {
  const char* name;
  std::string bytes;
  bool isBinary;
};
void PrintTo(const TBeginning& row, std::ostream* out) {
  *out << row.name;
}

class BinaryFileTest : public testing::TestWithParam<TBeginning> {};

TEST_P(BinaryFileTest, IsOneErrorAndTextIsRead) {
  const TFolder folder;
  const std::string file = folder.Write("a.mof", GetParam().bytes + "class A_A { };");
  const std::string master = folder.Write("m.mof", "#pragma include (\"a.mof\")");
  TClassRepository repository;
  const TLines lines = Lines(repository.Load(file));
  if (GetParam().isBinary) {
    EXPECT_EQ(lines, TLines{file + ": cannot be read: holds binary data and no MOF text"});
    TClassRepository other;
    EXPECT_EQ(Lines(other.Load(master)),
              TLines{master + ":1:18: include \"a.mof\": holds binary data and no MOF text"});
  } else {
    EXPECT_NE(repository.Find("A_A"), nullptr);
  }
}

/// Bytes that look like those of an archive: all values, in no order that means anything.
std::string Scramble(std::size_t size) {
  std::string bytes;
  for (std::uint32_t state = 1; bytes.size() < size;) {
    state = state * 1664525U + 1013904223U;
    bytes += static_cast<char>(state >> 24U);
  }
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    Beginnings, BinaryFileTest,
    testing::Values(TBeginning{"Library",
                               std::string("\x7F"
                                           "ELF\2\1\1\0\0\0\0\0\0\0\0\0",
                                           16),
                               true},
                    TBeginning{"Archive", Scramble(3000), true},
                    TBeginning{"Zeros", std::string(10'000, '\0'), true},
                    TBeginning{"OneStrayZero", std::string(";\0;\n", 4), false},
                    TBeginning{"Blanks", "\t\t\r\n\f\v\n\n\x1A\n", false},
                    TBeginning{"Latin1", "// \xE4\xF6\xFC\xDF\xE4\xF6\xFC\n", false},
                    TBeginning{"LateZeros",
                               "/*" + std::string(5000, '-') + std::string(100, '\0') + "*/",
                               false}),
    [](const auto& row) { return row.param.name; });

TEST(MofFileTest, ErrorsOfAnIncludedFileNameThatFile) {
  const TFolder folder;
  const std::string master = folder.Write("m.mof", "#pragma include (\"x.mof\")\nclass A_A { };");
  const std::string inner = folder.Write("x.mof", "\nclass ;");
  TClassRepository repository;
  EXPECT_EQ(Lines(repository.Load(master)),
            TLines{inner + ":2:7: expected the name of a class, found ';'"});
  EXPECT_NE(repository.Find("A_A"), nullptr);
}

TEST(MofFileTest, IncludesNestOnlySoDeep) {
  const TFolder folder;
  for (int i = 0; i < 70; ++i) {
    const std::string number = std::to_string(i);
    folder.Write("f" + number + ".mof", "#pragma include (\"f" + std::to_string(i + 1) +
                                            ".mof\")\nclass A_" + number + " { };");
  }
  TClassRepository repository;
  EXPECT_EQ(
      Lines(repository.Load(folder.GetPath() + "/f0.mof")),
      TLines{folder.GetPath() + "/f64.mof:1:18: include \"f65.mof\": nested deeper than 64 files"});
  EXPECT_EQ(repository.GetCount(), 65U);
}

TEST(MofFileTest, FilesThatCannotBeReadAreReported) {
  const TFolder folder;
  const std::string missing = folder.GetPath() + "/none.mof";
  const std::string pipe = folder.GetPath() + "/pipe.mof";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::string large = folder.Write("large.mof", "class A_A { };");
  ASSERT_EQ(truncate(large.c_str(), 256L * 1024 * 1024 + 1), 0);
  TClassRepository repository;
  EXPECT_EQ(Lines(repository.Load(missing)),
            TLines{missing + ": cannot be read: No such file or directory"});
  EXPECT_EQ(Lines(repository.Load(folder.GetPath())),
            TLines{folder.GetPath() + ": cannot be read: is a directory"});
  EXPECT_EQ(Lines(repository.Load(pipe)), TLines{pipe + ": cannot be read: is not a regular file"});
  EXPECT_EQ(Lines(repository.Load(large)), TLines{large + ": cannot be read: larger than 256 MiB"});
  EXPECT_EQ(repository.GetCount(), 0U);
}

TEST(MofFileTest, AFileWithoutReadPermissionIsReported) {
  if (geteuid() == 0) {
    GTEST_SKIP() << "root reads every file";
  }
  const TFolder folder;
  const std::string file = folder.Write("a.mof", "class A_A { };");
  ASSERT_EQ(chmod(file.c_str(), 0), 0);
  TClassRepository repository;
  EXPECT_EQ(Lines(repository.Load(file)), TLines{file + ": cannot be read: Permission denied"});
}

TEST(MofFileTest, MissingSuperclassesAreLookedForOnTheSearchPath) {
  const TFolder folder;
  folder.Write("cim_base.MOF", "class CIM_Base : CIM_Root { };");
  folder.Write("CIM_Root.mof", "class CIM_Root { [Key] uint8 k; };");
  TClassRepository repository;
  LoadLines(repository, "class V_X : CIM_Base { };");
  repository.AddSearchPath(folder.GetPath() + "/nowhere");
  repository.AddSearchPath(folder.GetPath());
  EXPECT_EQ(Lines(repository.Check()), TLines());
  EXPECT_TRUE(repository.IsA("V_X", "CIM_Root"));
  EXPECT_TRUE(repository.Find("V_X")->FindProperty("k")->isKey);
}

TEST(MofFileTest, AliasesHoldInAFileAndWhatItIncludesAndNowhereElse) {
  const TFolder folder;
  const std::string classes = "class A_N { [Key] uint8 k; A_N REF r; };\n";
  folder.Write("inner.mof", "instance of A_N as $Inner { k = 1; r = $Outer; };");
  const std::string outer =
      folder.Write("outer.mof", classes +
                                    "#pragma include (\"inner.mof\")\n"
                                    "instance of A_N as $Outer { k = 2; r = $INNER; };");
  const std::string other = folder.Write("other.mof", "instance of A_N { k = 3; r = $Outer; };");
  TClassRepository repository;
  EXPECT_EQ(Lines(repository.Load(outer)), TLines());
  EXPECT_EQ(Lines(repository.Load(other)), TLines());
  const TLines lines = Lines(repository.Check());
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back(), other + ":1:30: property r: alias $Outer is not defined");
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_EQ(instances[0].Find("r")->value.ToString(10), "A_N.k=\"2\"");
  EXPECT_EQ(instances[1].Find("r")->value.ToString(10), "A_N.k=\"1\"");
}

TEST(MofFileTest, AFileThatIsIncludedUnderTwoSpellingsIsReadOnce) {
  const TFolder folder;
  folder.Write("Sub/Class.mof", "class A_A { };\ninstance of A_A { };");
  const std::string master =
      folder.Write("m.mof",
                   "#pragma include (\"Sub\\Class.mof\")\n#pragma include (\"sub/CLASS.MOF\")\n"
                   "#pragma include (\"Sub/../Sub/./Class.mof\")");
  TClassRepository repository;
  EXPECT_EQ(Lines(repository.Load(master)), TLines());
  EXPECT_EQ(Lines(repository.Load(folder.GetPath() + "/Sub/Class.mof")), TLines());
  EXPECT_EQ(repository.GetInstances().size(), 1U);
}

}  // namespace
