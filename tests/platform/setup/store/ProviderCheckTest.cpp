// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/platform/setup/store/TStoreTest.h"

namespace NZEPQEL20::setup {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::SizeIs;

constexpr char kGood[] = DIAGS_PROBED_DIR "/libgood.so";

/// A vendor's folder with a good library; the rest is each test's.
class ProviderCheckTest : public TStoreTest {
 protected:
  ProviderCheckTest() { Take(kGood, "lib/libgood.so"); }
  void Register(const std::string& className, const std::string& types = "instance") const {
    m_vendor.Write("x.registration", className + " root/x Probed good " + types + "\n");
  }
};

TEST_F(ProviderCheckTest, AGoodFolderHasNoFinding) {
  Register("A_Acme");
  m_vendor.Write("mof/acme.mof", "class A_Acme : A_Base { };\n");
  EXPECT_EQ(ShowAll(Check()), "");
}

TEST_F(ProviderCheckTest, TheBundledProviderHasNoErrors) {
  const TProviderStore store(std::filesystem::path(DIAGSRUNNER_SCHEMA_DIR).parent_path().string());
  for (const TProviderFinding& finding : store.Check(store.Read(DIAGS_HARDWARE_DIR))) {
    EXPECT_TRUE(finding.isWarning) << Show(finding);
  }
}

struct TFault {
  const char* name;
  const char* registration;
  const char* mof;
  const char* finding;
};
void PrintTo(const TFault& row, std::ostream* out) {
  *out << row.name;
}

class FolderFaultTest : public ProviderCheckTest, public testing::WithParamInterface<TFault> {};

TEST_P(FolderFaultTest, IsOneFindingWithItsRuleAndRemedy) {
  m_vendor.Write("x.registration", GetParam().registration);
  m_vendor.Write("mof/acme.mof", GetParam().mof);
  const auto findings = Check();
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]), MatchesRegex(GetParam().finding));
  EXPECT_FALSE(findings[0].remedy.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Faults, FolderFaultTest,
    testing::Values(
        TFault{"Syntax", "A_Base root/x Probed good instance\nhalf a line\n", "",
               "error R2: .*/x.registration:2: expected at least 5 words.*"},
        TFault{"Undeclared", "A_Nowhere root/x Probed good instance\n", "",
               "error R3: .*/x.registration:1: class A_Nowhere is not declared; .*"},
        TFault{"NoKey", "A_Keyless root/x Probed good instance\n", "",
               "error R16: .*class A_Keyless has no key, and inherits none; .*"},
        TFault{"NoInheritedKey", "A_Sub root/x Probed good instance\n",
               "class A_Sub : A_Keyless { string More; };\n",
               "error R16: .*class A_Sub has no key.*"},
        TFault{"Mof", "A_Base root/x Probed good instance\n", "class A_X { string };\n",
               "warning R17: .*/mof/acme.mof:1:.*"},
        TFault{"StandardClass",
               "A_Base root/x Probed good instance\nCIM_Gone root/x Probed good instance\n", "",
               "warning R3: .*/x.registration:2: class CIM_Gone is not declared; unpack the DMTF's "
               "CIM schema into a folder below schema/ .docs/schema.md."},
        TFault{"Include", "A_Base root/x Probed good instance\n",
               "#pragma include (\"CIM_Gone.mof\")\n",
               "warning R17: .*/mof/acme.mof:1:18: include \"CIM_Gone.mof\": No such file.*"},
        TFault{"Instances", "A_Base root/x Probed good instance\n",
               "class A_X { [Key] string k; };\ninstance of A_X { k = \"1\"; };\n",
               "warning R17: .*: the MOF has instances of A_X, and nobody is shown them; have a "
               "provider give them.*"},
        TFault{"NoLibrary", "A_Base root/x Probed good instance\nA_Base root/y P gone instance\n",
               "", "error R13: .*/x.registration:2: the library .*/libgone.so is not there; .*"},
        TFault{"Sections",
               "[A_Base]\nprovider: Probed\nlocation: good\ntype: instance\n"
               "namespace: root/x\n[A_Base]\nprovider: Q\n",
               "", "error R11: .*/x.registration:6: class A_Base: has no location; .*"}),
    [](const auto& row) { return row.param.name; });

TEST_F(ProviderCheckTest, AMofErrorThatCostsARegisteredClassOrASuperclassOfItIsAnError) {
  for (const char* mof :
       {"class A_Acme : { };\n", "class A_Acme : A_Above { };\nclass A_Above : { };"}) {
    Register("A_Acme");
    m_vendor.Write("mof/acme.mof", mof);
    EXPECT_THAT(ShowAll(Check()), HasSubstr("error R17: " + m_vendor.GetPath("mof/acme.mof")));
  }
}

TEST_F(ProviderCheckTest, AnIncludeOfWhatTheSchemaHasIsNoFinding) {
  m_root.Write("schema/base/CIM_Test.mof", "class CIM_Test { [Key] string k; };\n");
  Register("A_Acme");
  m_vendor.Write("mof/acme.mof",
                 "#pragma include (\"qualifiers.mof\")\n#pragma include (\"CIM_Test.mof\")\n"
                 "class A_Acme : CIM_Test { };\n");
  EXPECT_EQ(ShowAll(Check()), "");
}

TEST_F(ProviderCheckTest, InstancesOfARegistrationAreNoneThatAreMissed) {
  m_vendor.Write("x.mof",
                 "instance of PG_ProviderModule { Name = \"M\"; InterfaceType = \"CMPI\"; "
                 "Location = \"good\"; };\n"
                 "instance of PG_Provider { ProviderModuleName = \"M\"; Name = \"Probed\"; };\n"
                 "instance of PG_ProviderCapabilities { ProviderModuleName = \"M\"; ProviderName = "
                 "\"Probed\"; CapabilityID = \"1\"; ClassName = \"A_Acme\"; Namespaces = "
                 "{\"root/x\"}; ProviderType = {2}; };\n"
                 "class A_Acme : A_Base { };\n");
  EXPECT_EQ(ShowAll(Check()), "");
}

TEST_F(ProviderCheckTest, ARegistrationThatRegistersNothingIsAFinding) {
  m_vendor.Write("x.registration", "# nothing yet\n");
  EXPECT_THAT(ShowAll(Check()), HasSubstr("error R1: " + m_vendor.GetPath("x.registration") +
                                          ": registers no class; "));
}

TEST_F(ProviderCheckTest, AnIndicationNeedsNoKey) {
  m_vendor.Write("x.registration",
                 "A_Base root/x Probed good instance\nA_Keyless root/x Probed good indication\n");
  EXPECT_EQ(ShowAll(Check()), "");
}

TEST_F(ProviderCheckTest, AMissingSuperclassIsAWarningAndTheKeyIsNotMissed) {
  Register("A_Orphan");
  m_vendor.Write("mof/acme.mof", "class A_Orphan : X_Gone { string Name; };\n");
  const auto findings = Check();
  EXPECT_THAT(ShowAll(findings),
              HasSubstr("class A_Orphan: its superclass X_Gone is not declared; add the MOF"));
  for (const TProviderFinding& finding : findings) {
    EXPECT_TRUE(finding.isWarning) << Show(finding);
    EXPECT_EQ(finding.rule, "R3");
  }
}

TEST_F(ProviderCheckTest, ASuperclassOfAnotherVendorIsNotMissing) {
  m_root.Write("providers/base/base.mof", "class X_Gone { [Key] string Id; };\n");
  Register("A_Orphan");
  m_vendor.Write("mof/acme.mof", "class A_Orphan : X_Gone { string Name; };\n");
  EXPECT_EQ(ShowAll(Check()), "");
}

TEST_F(ProviderCheckTest, AClassThatOnlyTheReplacedFolderHasIsMissed) {
  m_root.Write("providers/acme/acme.mof", "class A_Old { [Key] string Id; };\n");
  Register("A_Old");
  TProviderPackage package = m_store.Read(m_vendor.GetPath());
  package.name = "acme";
  EXPECT_THAT(ShowAll(m_store.Check(package)), HasSubstr("class A_Old is not declared"));
  package.name = "other";
  EXPECT_THAT(ShowAll(m_store.Check(package)), testing::Not(HasSubstr("is not declared")));
}

TEST_F(ProviderCheckTest, FaultsOfTheInstallationAreNotTheFolders) {
  m_root.Write("schema/broken.mof", "class { };\nclass A_Odd : X_Gone { };\n");
  Register("A_Base");
  EXPECT_EQ(ShowAll(Check()), "");
}

TEST_F(ProviderCheckTest, ALibraryThatNothingRefersToIsAWarningAndANeededOneIsNot) {
  const std::string vendor = DIAGS_VENDOR_DIR;
  Take(vendor + "/libneedscommon.so", "lib/libneedscommon.so");
  Take(vendor + "/libvendorCommon.so.0", "deep/libvendorCommon.so.0.1");
  std::filesystem::create_symlink("libvendorCommon.so.0.1",
                                  m_vendor.GetPath("deep/libvendorCommon.so.0"));
  m_vendor.Write("x.registration", "A_Base root/x P needscommon instance\n");
  const std::string findings = ShowAll(Check());
  EXPECT_THAT(findings, HasSubstr("/lib/libgood.so: no registration names it, and no library is "
                                  "linked with it; register what it serves, unless a library opens "
                                  "it by itself"));
  EXPECT_THAT(findings, testing::Not(HasSubstr("libvendorCommon")));
  // It loads with its sibling; what it lacks is an entry point.
  EXPECT_THAT(findings, HasSubstr("(it exports no entry point at all)"));
}

TEST_F(ProviderCheckTest, AClassThatAnotherFolderServesIsAWarning) {
  m_root.Write("providers/other/o.registration", "a_base * P l instance\n");
  m_root.Write("providers/apart/o.registration", "A_Base root/y P l instance\n");
  Register("A_Base");
  const auto findings = Check();
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]), MatchesRegex("warning R21: class A_Base in root/x is served by "
                                              ".*/providers/other, too; .*"));
}

TEST_F(ProviderCheckTest, AFolderThatServesTheSameClassesIsOneWarning) {
  const std::string lines =
      "A_Base root/x Probed good instance\nA_Acme root/x Probed good instance\n";
  m_root.Write("providers/other/o.registration", lines);
  m_vendor.Write("x.registration", lines);
  m_vendor.Write("mof/acme.mof", "class A_Acme : A_Base { };\n");
  const auto findings = Check();
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]),
              MatchesRegex("warning R21: class A_Base in root/x and 1 more are served by "
                           ".*/providers/other, too; .*"));
}

TEST_F(ProviderCheckTest, WhatNotEverybodyCanReadIsOneWarning) {
  Register("A_Base");
  m_vendor.Write("private.conf", "password=x\n", 0600);
  EXPECT_EQ(ShowAll(Check()), "");
  m_vendor.Write("a.mof", "#pragma include (\"part.inc\")\n", 0640);
  m_vendor.Write("part.inc", "", 0600);
  const auto findings = Check();
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]),
              MatchesRegex("warning R20: .*/a.mof and 1 more cannot be read by everybody, and "
                           "neither can the installed copy; make it readable .*"));
}

TEST_F(ProviderCheckTest, AClassThatTheSchemaHasOtherwiseIsAWarning) {
  Register("A_Base");
  m_vendor.Write("mof/acme.mof",
                 "class A_Keyless { uint8 Name; };\nclass A_Base { [Key] uint8 Id; };\n");
  const auto findings = Check();
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  EXPECT_EQ(Show(findings[0]),
            "warning R22: " + m_vendor.GetPath("mof/acme.mof") +
                ": class A_Keyless (and 1 more classes) differs from the one in " +
                m_root.GetPath("schema/base.mof") +
                ", which holds; it is left out; derive from the class that is there, or give yours "
                "another name");
}

TEST_F(ProviderCheckTest, AClassThatAnotherVendorRegistersIsAnErrorWhicheverComesFirst) {
  m_root.Write("providers/mid/m.registration", "A_Mid root/m P l instance\n");
  const std::string others = m_root.Write("providers/mid/m.mof", "class A_Mid : A_Base { };\n");
  Register("A_Base");
  const std::string own = m_vendor.Write("x.mof", "class A_Mid : A_Foo { };\n");
  for (const char* name : {"aaa", "zzz"}) {
    TProviderPackage package = m_store.Read(m_vendor.GetPath());
    package.name = name;
    EXPECT_THAT(ShowAll(m_store.Check(package)),
                testing::StartsWith("error R22: " + own + ": class A_Mid differs from the one in " +
                                    others + ", and " + m_root.GetPath("providers/mid") +
                                    " registers it; "));
  }
}

TEST_F(ProviderCheckTest, WhoeverRegistersTheClassIsOnlyWarned) {
  m_root.Write("providers/aaa/a.mof", "class A_Acme { };\n");
  Register("A_Acme");
  m_vendor.Write("x.mof", "class A_Acme : A_Base { };\n");
  EXPECT_THAT(ShowAll(Check()), HasSubstr("warning R22: "));
}

TEST_F(ProviderCheckTest, ErrorsComeFirstAndNothingTwice) {
  Take(kGood, "libunused.so");
  m_vendor.Write("x.registration",
                 "A_Nowhere root/x Probed good instance\nA_Nowhere root/y Probed good instance\n");
  const auto findings = Check();
  ASSERT_THAT(findings, SizeIs(2)) << ShowAll(findings);
  EXPECT_FALSE(findings[0].isWarning);
  EXPECT_TRUE(findings[1].isWarning);
}

TEST_F(ProviderCheckTest, AFolderWithoutARegistrationIsRefusedAndAFinding) {
  EXPECT_THAT(Failure([&] { m_store.Read(m_vendor.GetPath()); }),
              HasSubstr(": holds no registration; "));
  TProviderPackage package;
  package.folder = m_vendor.GetPath();
  EXPECT_THAT(ShowAll(m_store.Check(package)), HasSubstr("error R1: "));
}

}  // namespace
}  // namespace NZEPQEL20::setup
