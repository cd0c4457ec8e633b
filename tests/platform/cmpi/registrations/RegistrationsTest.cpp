// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/cmpi/registrations/TVendor.h"

namespace NZEPQEL20 {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TRegistrations Read(const std::string& text) {
  return ReadText(text, "acme.registration");
}

TEST(RegistrationsTest, ALineNamesClassNamespaceProviderLibraryAndTypes) {
  const TVendor vendor;
  vendor.Write("acme.registration",
               "# comment\n\nA_B root/x P lib1 instance method # more\n"
               "A_C root/x P lib1 Association PROPERTY indication#more\n");
  const auto read = vendor.Read();
  EXPECT_THAT(read.GetFindings(), IsEmpty());
  EXPECT_EQ(ShowAll(read), "A_B root/x P liblib1.so IM, A_C root/x P liblib1.so APN");
  EXPECT_EQ(read.GetEntries()[0].library, vendor.GetPath("liblib1.so"));
  EXPECT_EQ(read.GetEntries()[0].folder, vendor.GetPath());
  EXPECT_EQ(read.GetEntries()[0].source, vendor.GetPath("acme.registration:3"));
  EXPECT_FALSE(read.GetEntries()[0].hasLibrary);
}

TEST(RegistrationsTest, ANameForAGenericFactoryNeedNotBeOneOfC) {
  EXPECT_EQ(ShowAll(Read("A root/x org.acme.Leaf-1:2 l instance\n")),
            "A root/x org.acme.Leaf-1:2 libl.so I");
}

TEST(RegistrationsTest, LinesForTheSameClassAndProviderAddTheirTypes) {
  EXPECT_EQ(ShowAll(Read("A root/x P l instance\na ROOT/X P l association property\n")),
            "A root/x P libl.so IAP");
}

TEST(RegistrationsTest, SlashesAroundANamespaceDoNotCount) {
  EXPECT_EQ(ShowAll(Read("A root/x/ P l instance\nA //root/x P l method\n")),
            "A root/x P libl.so IM");
  const auto nameless = Read("A / P l instance\n");
  EXPECT_THAT(nameless.GetEntries(), IsEmpty());
  EXPECT_THAT(ShowFindings(nameless),
              HasSubstr(".registration:1: \"/\" is not a namespace; write one as root/cimv2, or *; "
                        "see rule R2"));
}

constexpr char kMofText[] =
    "#pragma include (\"gone.mof\")\n"
    "instance of PG_ProviderModule { Name = \"M\"; InterfaceType = \"CMPI\"; Location = \"l\"; };\n"
    "instance of PG_Provider { ProviderModuleName = \"M\"; Name = \"P\"; };\n"
    "instance of PG_ProviderCapabilities { ProviderModuleName = \"M\"; ProviderName = \"P\";\n"
    "  CapabilityID = \"1\"; ClassName = \"A\"; Namespaces = {\"n\"}; ProviderType = {2}; };\n";

TEST(RegistrationsTest, ATextInEachFormCountsAsThatOfItsFile) {
  for (const char* text :
       {"A n P l instance\n", "[A]\nprovider: P\nlocation: l\ntype: instance\nnamespace: n\n",
        kMofText}) {
    TRegistrations read;
    read.LoadText(text, "/nowhere/x.reg");
    ASSERT_THAT(read.GetEntries(), SizeIs(1U)) << text;
    const TRegistration& entry = read.GetEntries().front();
    EXPECT_EQ(entry.className + entry.nameSpace + entry.providerName, "AnP");
    EXPECT_TRUE(entry.isInstance);
    EXPECT_FALSE(entry.hasLibrary);
    EXPECT_EQ(entry.library, "/nowhere/libl.so");
    EXPECT_THAT(read.GetFiles(), ::testing::ElementsAre("/nowhere/x.reg"));
    EXPECT_THAT(read.GetPureFiles(), SizeIs(text == kMofText ? 1U : 0U));
    EXPECT_THAT(read.GetProblems(), SizeIs(text == kMofText ? 1U : 0U));
  }
  TRegistrations schema;
  schema.LoadText("class A { };", "/nowhere/x.mof");
  EXPECT_THAT(schema.GetFiles(), SizeIs(0U));
}

TEST(RegistrationsTest, AFolderRegistersABoundedNumberOfClasses) {
  const TVendor vendor;
  std::string text;
  for (int i = 0; i < 20000; ++i) {
    const std::string number = std::to_string(i);
    text += "A_" + number + " root/x P lib" + number + " instance\n";
  }
  vendor.Write("acme.registration", text);
  for (int i = 0; i < 1000; ++i) vendor.Write("lib" + std::to_string(i) + ".so", "");
  // Were each compared with all others, this would run into the limit of the test.
  const auto read = vendor.Read();
  EXPECT_THAT(read.GetEntries(), SizeIs(TRegistrations::kMaxEntries));
  EXPECT_THAT(read.GetProblems(),
              ::testing::ElementsAre(vendor.GetPath("acme.registration") +
                                     ":10001: the folder registers more than 10000 classes; those "
                                     "from here on are left out; register what is there once; see "
                                     "rule R1"));
}

TEST(RegistrationsTest, FindingsAreBoundedAndALastOneSaysSo) {
  std::string text;
  for (std::size_t i = 0; i < 2 * TRegistrations::kMaxFindings; ++i) text += "wrong\n";
  const auto read = Read(text);
  ASSERT_THAT(read.GetFindings(), SizeIs(TRegistrations::kMaxFindings + 1));
  EXPECT_THAT(read.GetProblems().back(),
              ::testing::EndsWith(": more is wrong with its registrations than is told; mend what "
                                  "is told first; see rule R1"));
}

TEST(RegistrationsTest, ARegistrationFileOfMoreThanFourMebibytesIsNotRead) {
  const TVendor vendor;
  vendor.Write("a.registration", std::string(TRegistrations::kMaxFileSize + 1, '\n'));
  vendor.Write("b.registration", "A root/x P l instance\n");
  const auto read = vendor.Read();
  EXPECT_EQ(ShowAll(read), "A root/x P libl.so I");
  EXPECT_EQ(ShowFindings(read), vendor.GetPath("a.registration") +
                                    ": cannot be read: larger than 4 MiB; make it a readable file; "
                                    "see rule R1\n");
}

class BadRegistrationTest : public testing::TestWithParam<TBadText> {};

TEST_P(BadRegistrationTest, IsReportedInOneLineWithItsPlaceAndTheOthersCount) {
  const auto read = Read(GetParam().text + "\nA root/x P l instance\n");
  ASSERT_THAT(read.GetProblems(), SizeIs(1));
  EXPECT_THAT(read.GetProblems()[0], HasSubstr(".registration:1: "));
  EXPECT_THAT(read.GetProblems()[0], HasSubstr(GetParam().reason));
  EXPECT_THAT(read.GetProblems()[0], ::testing::EndsWith("; see rule R2"));
  EXPECT_EQ(read.GetProblems()[0].find('\n'), std::string::npos);
  EXPECT_EQ(ShowAll(read), "A root/x P libl.so I");
}

INSTANTIATE_TEST_SUITE_P(
    Lines, BadRegistrationTest,
    testing::Values(TBadText{"FewWords", "A root/x P l", "found 4 words"},
                    TBadText{"UnknownType", "A root/x P l instanse", "type \"instanse\""},
                    TBadText{"ClassName", "A-B root/x P l instance", "not a class name"},
                    TBadText{"ProviderName", "A root/x P! l instance", "not a provider name"},
                    TBadText{"TwoNamespaces", "A root/x,root/y P l instance",
                             "\"root/x,root/y\" is not a namespace"},
                    TBadText{"Backslash", "A root\\x P l instance", "is not a namespace"},
                    TBadText{"NulByte", std::string("A root/x P l\0 instance", 22),
                             "a NUL byte in column 13"},
                    TBadText{"LongLine", std::string(70'000, 'x'), "longer than 65536 bytes"}),
    [](const auto& row) { return row.param.name; });

struct TOddText {
  const char* name;
  std::string text;
};
void PrintTo(const TOddText& row, std::ostream* out) {
  *out << row.name;
}

std::string ToUtf16(const std::string& text) {
  std::string wide = "\xFF\xFE";
  for (const char c : text) (wide += c) += '\0';
  return wide;
}

class OddTextTest : public testing::TestWithParam<TOddText> {};

TEST_P(OddTextTest, IsReadAllTheSame) {
  const auto read = Read(GetParam().text);
  EXPECT_EQ(ShowFindings(read), "");
  EXPECT_EQ(ShowAll(read), "A root/x P libl.so I");
}

INSTANTIATE_TEST_SUITE_P(Texts, OddTextTest,
                         testing::Values(TOddText{"DosLineEnds",
                                                  "# one\r\nA root/x P l instance\r\n"},
                                         TOddText{"LoneReturns", "# one\rA root/x P l instance\r"},
                                         TOddText{"ByteOrderMark",
                                                  "\xEF\xBB\xBF"
                                                  "A root/x P l instance\n"},
                                         TOddText{"Utf16", ToUtf16("A root/x P l instance\n")},
                                         TOddText{"Tabs", "\tA\troot/x\tP\tl\tinstance\t"},
                                         TOddText{"NoLineEnd", "A root/x P l instance"},
                                         TOddText{"LongComment", '#' + std::string(60'000, 'x') +
                                                                     "\nA root/x P l instance\n"}),
                         [](const auto& row) { return row.param.name; });

TEST(RegistrationsTest, TheContentTellsTheFormWhateverTheName) {
  EXPECT_EQ(ShowAll(ReadText("A root/x P l instance\n", "a.reg")), "A root/x P libl.so I");
  EXPECT_EQ(ShowAll(ReadText("# x\n[A]\nprovider: P\nlocation: l\ntype: method\nnamespace: root/x",
                             "a.registration")),
            "A root/x P libl.so M");
}

TEST(RegistrationsTest, FilesOfAllFormsCountOnceWhereTheySayTheSame) {
  const TVendor vendor;
  vendor.Write("a.registration", "A root/x P l instance method\n");
  vendor.Write("b.REG",
               "[A]\nprovider: P\nlocation: l\ntype: instance method\nnamespace: root/x\n");
  vendor.Write("sub/c.Mof", R"(
      instance of PG_ProviderModule { Name = "M"; InterfaceType = "CMPI"; Location = "l"; };
      instance of PG_Provider { ProviderModuleName = "M"; Name = "P"; };
      instance of PG_ProviderCapabilities { ProviderModuleName = "M"; ProviderName = "P";
        CapabilityID = "1"; ClassName = "A"; Namespaces = {"root/x"}; ProviderType = {2, 5}; };)");
  vendor.Write("libl.so", "");
  vendor.Write("classes.mof", "class A { [Key] string InstanceID; };");
  vendor.Write("README", "[A]");
  const auto read = vendor.Read();
  EXPECT_EQ(ShowFindings(read), "");
  EXPECT_EQ(ShowAll(read), "A root/x P libl.so IM");
  EXPECT_THAT(read.GetFiles(), SizeIs(3));
  EXPECT_THAT(read.GetPureFiles(), ::testing::ElementsAre(vendor.GetPath("sub/c.Mof")));
}

TEST(RegistrationsTest, WordsOfAFileStayOneReadableLine) {
  const auto control = Read("A\x1B[2J root/x P l instance\n").GetProblems();
  ASSERT_THAT(control, SizeIs(1));
  EXPECT_THAT(control[0], HasSubstr("\"A [2J\" is not a class name"));
  const auto mof =
      ReadText("instance of PG_ProviderCapabilities { ClassName = \"a\\nb\"; };", "a.mof");
  ASSERT_THAT(mof.GetProblems(), SizeIs(1));
  EXPECT_EQ(mof.GetProblems()[0].find('\n'), std::string::npos);
  const auto lengthy = Read(std::string(60'000, '-') + " root/x P l instance\n").GetProblems();
  ASSERT_THAT(lengthy, SizeIs(1));
  EXPECT_LT(lengthy[0].size(), 2200U);
  EXPECT_THAT(lengthy[0], HasSubstr("--...; "));
}

TEST(RegistrationsTest, MangledTextsAreSurvivedWithReadableProblems) {
  const TVendor vendor;
  const std::string texts[] = {
      "# x\nA root/x P l instance method\nB * P l association\n",
      "[A]\nprovider: P\nlocation: l\ntype: instance\nnamespace: * root/x\nunload: never\n",
      "instance of PG_ProviderModule { Name = \"M\"; InterfaceType = \"CMPI\"; Location = \"l\"; "
      "};\n"
      "instance of PG_Provider { ProviderModuleName = \"M\"; Name = \"P\"; };\n"
      "instance of PG_ProviderCapabilities { ProviderModuleName = \"M\"; ProviderName = \"P\";\n"
      "CapabilityID = \"1\"; ClassName = \"A\"; Namespaces = {\"root/x\"}; ProviderType = {2, 5}; "
      "};"};
  unsigned int random = 1;
  const auto next = [&random](std::size_t below) {
    random = random * 1664525U + 1013904223U;
    return (random >> 8U) % below;
  };
  std::size_t entries = 0;
  for (unsigned int round = 0; round < 600; ++round) {
    std::string text = texts[round % 3];
    for (std::size_t i = next(4) + 1; i > 0; --i) {
      text[next(text.size())] = static_cast<char>(next(256));
      if (next(4) == 0) text.erase(next(text.size()), next(20));
    }
    vendor.Write("a.registration", text);
    const auto read = vendor.Read();
    entries += read.GetEntries().size();
    for (const TRegistrationProblem& finding : read.GetFindings()) {
      EXPECT_EQ(finding.ToString().find('\n'), std::string::npos);
      EXPECT_FALSE(finding.rule.empty() || finding.remedy.empty()) << finding.text;
    }
  }
  EXPECT_GT(entries, 100U);
}

TEST(RegistrationsTest, AFileThatIsNotThereOrADirectoryIsAProblem) {
  TRegistrations registrations;
  registrations.Load("/nowhere/at.all");
  registrations.Load("/");
  ASSERT_THAT(registrations.GetProblems(), SizeIs(2));
  EXPECT_THAT(registrations.GetProblems()[0],
              HasSubstr("/nowhere/at.all: cannot be read: No such"));
  EXPECT_THAT(registrations.GetProblems()[1], HasSubstr("/: cannot be read: is a directory"));
}

}  // namespace
}  // namespace NZEPQEL20
