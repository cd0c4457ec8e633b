// SPDX-License-Identifier: Apache-2.0
//
// The real command over vendors' folders whose MOF or registration has a fault.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/host/TProviderFixture.h"

namespace host {
namespace {

using nlohmann::json;

struct TFileRow {
  const char* name;
  const char* file;  // What is written into the folder besides what works.
  const char* text;
  const char* fault;  // What is said of it behind the file's path.
};
void PrintTo(const TFileRow& row, std::ostream* out) {
  *out << row.name;
}

class FaultyFileTest : public TProviderFixture, public ::testing::WithParamInterface<TFileRow> {
 protected:
  FaultyFileTest() {
    m_vendor = MakeAcme();
    Write(std::string("vendor/acme/") + GetParam().file, GetParam().text);
  }

  // The fault of the file in `folder`.
  static std::string GetFault(const std::string& folder) {
    return folder + "/" + GetParam().file + GetParam().fault;
  }

  std::string m_vendor;
};

TEST_P(FaultyFileTest, IsOneLineOfTheCheckAndKeepsTheFolderOut) {
  const TFinished checked = Do({"provider", "check", m_vendor});
  EXPECT_EQ(checked.status, 2);
  EXPECT_EQ(checked.out, "acme: error: " + GetFault(m_vendor) + "\nacme: 1 error\n");
  const TFinished added = Do({"provider", "add", m_vendor});
  EXPECT_EQ(added.status, 2);
  EXPECT_EQ(added.err, "diagsrun: acme: error: " + GetFault(m_vendor) +
                           "\ndiagsrun: acme: not installed: 1 error; --force installs it all the "
                           "same\n");
  EXPECT_TRUE(std::filesystem::is_empty(GetRoot() + "/providers"));
}

TEST_P(FaultyFileTest, LosesNothingElseOfTheFolderWhenItIsForcedIn) {
  ASSERT_EQ(Do({"provider", "add", m_vendor, "--force"}).status, 0);
  const TFinished listed = Do({"list"});
  EXPECT_EQ(listed.err, "diagsrun: " + GetFault(GetInstalled("acme")) + "\n");
  EXPECT_TRUE(ListsAcme());
  EXPECT_TRUE(RunsAcme());
}

INSTANTIATE_TEST_SUITE_P(
    Files, FaultyFileTest,
    ::testing::Values(
        TFileRow{"LineTooShort", "more.registration", "ACME_More root/cimv2 DiagsTest\n",
                 ":1: expected at least 5 words, found 3 words; write: Class Namespace Provider "
                 "Library type...; see rule R2"},
        TFileRow{"UnknownType", "more.registration",
                 "TST_DiskDrive root/cimv2 DiagsTest diagstest instances\n",
                 ":1: unknown provider type \"instances\"; write instance, association, method, "
                 "property or indication; see rule R2"},
        TFileRow{"UnknownClass", "more.registration",
                 "ACME_More root/cimv2 DiagsTest diagstest instance\n",
                 ":1: class ACME_More is not declared; add the MOF file that declares it; see rule "
                 "R3"},
        TFileRow{"UnknownKey", "more.reg",
                 "[TST_DiskDrive]\n  provider: DiagsTest\n  lokation: diagstest\n",
                 ":3: unknown key \"lokation\"; write provider, location, type, namespace, unload, "
                 "parameters, user or group; see rule R11"},
        TFileRow{"CapabilitiesOfNobody", "moreR.mof",
                 "instance of PG_ProviderCapabilities { ProviderModuleName = \"M\"; ProviderName = "
                 "\"P\"; CapabilityID = \"1\"; ClassName = \"TST_DiskDrive\"; Namespaces = "
                 "{\"root/cimv2\"}; ProviderType = {2}; };\n",
                 ": PG_ProviderCapabilities \"1\" of class TST_DiskDrive: there is no PG_Provider "
                 "\"P\" of module \"M\"; add the instance, or mend ProviderModuleName and "
                 "ProviderName; see rule R12"}),
    [](const auto& row) { return row.param.name; });

class HarmlessFaultTest : public FaultyFileTest {};

TEST_P(HarmlessFaultTest, OfMofThatCostsNoRegisteredClassIsAWarningOfTheCheck) {
  const TFinished checked = Do({"provider", "check", m_vendor});
  EXPECT_EQ(checked.status, 0);
  EXPECT_EQ(checked.out, "acme: warning: " + GetFault(m_vendor) +
                             "\nacme: ok, 1 warning, 6 classes in 1 library\n");
  const TFinished added = Do({"provider", "add", m_vendor});
  EXPECT_EQ(added.status, 0);
  EXPECT_EQ(added.err, "diagsrun: acme: warning: " + GetFault(m_vendor) + "\n");
  EXPECT_EQ(Do({"list"}).err, "diagsrun: " + GetFault(GetInstalled("acme")) + "\n");
  EXPECT_TRUE(RunsAcme());
}

INSTANTIATE_TEST_SUITE_P(
    Files, HarmlessFaultTest,
    ::testing::Values(
        TFileRow{"MofWithoutSemicolon", "more.mof", "class ACME_More\n{\n  string Name\n};\n",
                 ":4:1: expected ';' after property Name, found '}'; mend the MOF; see rule R17"},
        TFileRow{"MofWithControlCharacter", "more.mof", "class \x1b[31m { };\n",
                 ":1:7: unexpected byte 0x1B; mend the MOF; see rule R17"}),
    [](const auto& row) { return row.param.name; });

class ProviderFilesTest : public TProviderFixture {};

TEST_F(ProviderFilesTest, AFolderWithoutRegistrationIsNoProvider) {
  const std::string vendor = MakeAcme();
  std::filesystem::remove(vendor + "/acme.registration");
  const std::string fault =
      vendor + ": holds no registration; add a .registration or .reg file; see rule R1\n";
  const TFinished checked = Do({"provider", "check", vendor});
  EXPECT_EQ(checked.status, 2);
  EXPECT_EQ(checked.out, "acme: error: " + fault + "acme: 1 error\n");
  const TFinished added = Do({"provider", "add", vendor, "--force"});
  EXPECT_EQ(added.status, 2);
  EXPECT_EQ(added.err, "diagsrun: " + fault);
}

TEST_F(ProviderFilesTest, AClassWithoutKeyIsAnError) {
  const std::string vendor = MakeAcme();
  Write("vendor/acme/more.mof", "class ACME_More { string Name; };\n");
  Write("vendor/acme/more.registration", "ACME_More root/cimv2 DiagsTest diagstest instance\n");
  const TFinished checked = Do({"provider", "check", vendor, "--json"});
  EXPECT_EQ(checked.status, 2);
  const json findings = json::parse(checked.out)["providers"][0]["findings"];
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0]["severity"], "error");
  EXPECT_EQ(findings[0]["rule"], "R16");
  EXPECT_EQ(findings[0]["text"], vendor +
                                     "/more.registration:1: class ACME_More has no key, and "
                                     "inherits none");
}

TEST_F(ProviderFilesTest, WhatTwoFoldersServeIsAWarning) {
  InstallAcme();
  const TFinished checked = Do({"provider", "check", GetVendor("acme"), "--json"});
  EXPECT_EQ(checked.status, 0) << "the folder that it is to replace";
  std::filesystem::rename(GetVendor("acme"), GetVendor("other"));
  const TFinished added = Do({"provider", "add", GetVendor("other")});
  EXPECT_EQ(added.status, 0);
  EXPECT_EQ(
      added.err,
      "diagsrun: other: warning: class TST_DiskDrive in root/cimv2 and 5 more are served by " +
          GetInstalled("acme") + ", too; remove one of the two; see rule R21\n");
}

}  // namespace
}  // namespace host
