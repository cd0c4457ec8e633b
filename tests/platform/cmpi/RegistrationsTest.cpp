// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "platform/cmpi/TRegistrations.h"

namespace NZEPQEL20 {
namespace {

/// Reads `text` as a registration file.
TRegistrations Read(const std::string& text) {
  const std::string file = testing::TempDir() + "r-" + std::to_string(getpid()) + ".registration";
  {
    std::ofstream out(file);
    out << text;
  }
  TRegistrations registrations;
  registrations.Load(file);
  unlink(file.c_str());
  return registrations;
}

TEST(RegistrationsTest, ALineNamesClassNamespaceProviderLibraryAndTypes) {
  const auto read = Read("# comment\n\nA_B root/x P lib1 instance method # more\n");
  ASSERT_TRUE(read.GetProblems().empty());
  ASSERT_EQ(read.GetEntries().size(), 1U);
  const TRegistration& entry = read.GetEntries()[0];
  EXPECT_EQ(entry.className, "A_B");
  EXPECT_EQ(entry.nameSpace, "root/x");
  EXPECT_EQ(entry.providerName, "P");
  EXPECT_EQ(entry.library, entry.source.substr(0, entry.source.rfind('/')) + "/liblib1.so");
  EXPECT_TRUE(entry.isInstance && entry.isMethod);
  EXPECT_FALSE(entry.isAssociation);
}

TEST(RegistrationsTest, LinesForTheSameClassAndProviderAddTheirTypes) {
  const auto read = Read("A root/x P l instance\na ROOT/X P l association\n");
  ASSERT_EQ(read.GetEntries().size(), 1U);
  EXPECT_TRUE(read.GetEntries()[0].isInstance && read.GetEntries()[0].isAssociation);
}

struct TBadLine {
  const char* line;
  const char* reason;
};
void PrintTo(const TBadLine& row, std::ostream* out) {
  *out << row.line;
}

class BadRegistrationTest : public testing::TestWithParam<TBadLine> {};

TEST_P(BadRegistrationTest, IsReportedWithItsLineAndTheOthersCount) {
  const auto read = Read(std::string(GetParam().line) + "\nA root/x P l instance\n");
  ASSERT_EQ(read.GetProblems().size(), 1U);
  EXPECT_NE(read.GetProblems()[0].find(".registration:1: "), std::string::npos);
  EXPECT_NE(read.GetProblems()[0].find(GetParam().reason), std::string::npos)
      << read.GetProblems()[0];
  EXPECT_EQ(read.GetEntries().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, BadRegistrationTest,
    testing::Values(TBadLine{"A root/x P l", "found 4 words"},
                    TBadLine{"A root/x P ../l instance", "plain name"},
                    TBadLine{"A root/x P l instanse", "unknown provider type \"instanse\""},
                    TBadLine{"A-B root/x P l instance", "not a class name"},
                    TBadLine{"A root/x P! l instance", "not a provider name"}));

TEST(RegistrationsTest, AFileThatIsNotThereOrADirectoryIsAProblem) {
  TRegistrations registrations;
  registrations.Load("/nowhere/at.all");
  registrations.Load("/");
  ASSERT_EQ(registrations.GetProblems().size(), 2U);
  EXPECT_NE(registrations.GetProblems()[0].find("/nowhere/at.all: cannot be read"),
            std::string::npos);
  EXPECT_NE(registrations.GetProblems()[1].find("/: "), std::string::npos);
}

}  // namespace
}  // namespace NZEPQEL20
