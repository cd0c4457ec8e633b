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
  return ReadText(text, "acme.reg");
}

/// A section with everything that it must have.
std::string Section(const std::string& name, const std::string& more = "",
                    const std::string& provider = "P", const std::string& type = "instance",
                    const std::string& nameSpace = "root/x") {
  return "[" + name + "]\n  provider: " + provider + "\n  location: l\n  type: " + type +
         "\n  namespace: " + nameSpace + "\n" + more;
}

TEST(RegistrationSectionsTest, ASectionRegistersAClassInEachOfItsNamespaces) {
  const auto read = Read(
      "# Acme\n[A_B]   # the only one\n"
      "   provider: AcmeProvider\n\tlocation:acme\n   type: instance Method\n"
      "   namespace: root/cimv2 root/acme\n#\n   unload: never\n"
      "   parameters: speed=9 # all of it\n");
  EXPECT_EQ(ShowFindings(read), "");
  EXPECT_EQ(ShowAll(read),
            "A_B root/cimv2 AcmeProvider libacme.so IM, A_B root/acme AcmeProvider libacme.so IM");
  EXPECT_EQ(read.GetEntries()[0].parameters, "speed=9 # all of it");
  EXPECT_THAT(read.GetEntries()[0].source, ::testing::EndsWith("acme.reg:2"));
}

TEST(RegistrationSectionsTest, AStarInFrontStandsForAnyNamespace) {
  EXPECT_EQ(ShowAll(Read(Section("A", "", "P", "instance", "* root/x"))), "A * P libl.so I");
}

TEST(RegistrationSectionsTest, TheSameClassTwiceChainsAnotherProvider) {
  EXPECT_EQ(ShowAll(Read(Section("A") + Section("a", "", "Q"))),
            "A root/x P libl.so I, a root/x Q libl.so I");
}

TEST(RegistrationSectionsTest, TheSameProviderWithTheSameTypesMergesNamespaces) {
  const auto read = Read(Section("A") + Section("A", "", "P", "instance", "root/y root/x"));
  EXPECT_EQ(ShowFindings(read), "");
  EXPECT_EQ(ShowAll(read), "A root/x P libl.so I, A root/y P libl.so I");
}

TEST(RegistrationSectionsTest, TheSameProviderWithOtherTypesIsAnErrorThatNamesBothPlaces) {
  const auto read = Read(Section("A") + Section("a", "", "P", "instance method", "root/y"));
  ASSERT_THAT(read.GetProblems(), SizeIs(1));
  EXPECT_THAT(read.GetProblems()[0], HasSubstr("acme.reg:6: class a: provider P is registered for "
                                               "it with other types at "));
  EXPECT_THAT(read.GetProblems()[0], HasSubstr("acme.reg:1; "));
  EXPECT_EQ(ShowAll(read), "A root/x P libl.so I");
}

TEST(RegistrationSectionsTest, WhatBelongsToAServerIsNotedAndNotDriven) {
  const auto read =
      Read(Section("$ClassProvider$", "", "C", "class") +
           Section("A", "", "Q", "qualifier method") + Section("B", "user: root\ngroup: wheel\n"));
  EXPECT_THAT(read.GetProblems(), IsEmpty());
  EXPECT_EQ(ShowAll(read), "A root/x Q libl.so M, B root/x P libl.so I");
  const std::string findings = ShowFindings(read);
  EXPECT_THAT(findings, HasSubstr("acme.reg:1: class $ClassProvider$ is a provider of the server"));
  EXPECT_THAT(findings, HasSubstr("acme.reg:6: type qualifier is of the server's own"));
  EXPECT_THAT(findings, HasSubstr("acme.reg:11: user \"root\" is not heeded"));
  EXPECT_THAT(findings, HasSubstr("acme.reg:11: group \"wheel\" is not heeded"));
}

class BadSectionTest : public testing::TestWithParam<TBadText> {};

TEST_P(BadSectionTest, IsReportedOnceWithItsLineAndTheOthersCount) {
  const auto read = Read(GetParam().text + Section("Good"));
  ASSERT_THAT(read.GetProblems(), SizeIs(1)) << ShowFindings(read);
  EXPECT_THAT(read.GetProblems()[0], HasSubstr(GetParam().reason));
  EXPECT_THAT(read.GetProblems()[0], ::testing::EndsWith("; see rule R11"));
  EXPECT_EQ(ShowAll(read), "Good root/x P libl.so I");
}

INSTANTIATE_TEST_SUITE_P(
    Sections, BadSectionTest,
    testing::Values(
        TBadText{"UnknownKey", Section("A", "colour: red\n"), "reg:6: unknown key \"colour\""},
        TBadText{"UnknownType", Section("A", "", "P", "instance instanse"),
                 "reg:1: class A: unknown provider type \"instanse\""},
        TBadText{"NoColon", Section("A", "red\n"), "reg:6: expected \"key: value\", found \"red\""},
        TBadText{"NulByte", Section("A", std::string("user: \0x\n", 9)),
                 "reg:6: not a line of text"},
        TBadText{"OpenBracket", "[A\n", "reg:1: expected [ClassName], found \"[A\""},
        TBadText{"WordsBehind", "[A] B\n", "reg:1: expected [ClassName]"},
        TBadText{"EmptyName", "[ ]\nprovider: P\n", "reg:1: \"\" is not a class name"},
        TBadText{"OddName", "[A-B]\nprovider: P\n", "reg:1: \"A-B\" is not a class name"},
        TBadText{"OddProvider", Section("A", "", "P/Q"), "\"P/Q\" is not a provider name"},
        TBadText{"NothingBut", "[A]\n", "reg:1: class A: has no provider"},
        TBadText{"NoLocation", "[A]\nprovider: P\ntype: instance\nnamespace: x\n",
                 "has no location"},
        TBadText{"NoType", "[A]\nprovider: P\nlocation: l\ntype:\nnamespace: x\n", "has no type"},
        TBadText{"NoNamespace", "[A]\nprovider: P\nlocation: l\ntype: instance\n",
                 "has no namespace"}),
    [](const auto& row) { return row.param.name; });

TEST(RegistrationSectionsTest, AKeyThatIsThereTwiceHoldsWhatItSaysLast) {
  const auto read = Read(Section("A", "location: other\n"));
  EXPECT_EQ(ShowAll(read), "A root/x P libother.so I");
  EXPECT_THAT(ShowFindings(read), HasSubstr("warning: "));
  EXPECT_THAT(ShowFindings(read), HasSubstr("acme.reg:6: key location is there twice"));
}

}  // namespace
}  // namespace NZEPQEL20
