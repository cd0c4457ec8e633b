// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>

#include "platform/setup/LibraryProbe.h"
#include "tests/platform/setup/store/TStoreTest.h"

namespace NZEPQEL20::setup {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

// What hangs is waited for so long; all else that is done then has to be ready by then.
constexpr std::chrono::milliseconds kHangLimit(900);
constexpr char kClasses[] = "class A_Base { [Key] string InstanceID; };";

/// Has a library probed as the one of a registration.
class LibraryProbeTest : public TStoreTest {
 protected:
  std::vector<TProviderFinding> Probe(const std::string& library, const std::string& provider,
                                      const std::string& types = "instance",
                                      std::chrono::milliseconds limit = kProbeLimit) const {
    Take(library, "libx.so");
    m_vendor.Write("x.registration", "A_Base root/x " + provider + " x " + types + "\n");
    TRegistrations registrations;
    registrations.Load(m_vendor.GetPath("x.registration"));
    auto classes = std::make_shared<TClassRepository>();
    classes->LoadText(kClasses, "a.mof");
    return ProbeLibraries(classes, registrations, "root/any", limit);
  }
};

struct TBadLibrary {
  const char* name;  ///< Of the library, too.
  const char* folder;
  const char* provider;
  const char* finding;
};
void PrintTo(const TBadLibrary& row, std::ostream* out) {
  *out << row.name;
}

class BadLibraryTest : public LibraryProbeTest, public testing::WithParamInterface<TBadLibrary> {};

TEST_P(BadLibraryTest, IsOneFindingInOneLine) {
  auto findings =
      Probe(std::string(GetParam().folder) + "/lib" + GetParam().name + ".so", GetParam().provider);
  // What the libraries export beyond what is registered here is not the point.
  findings.erase(std::remove_if(findings.begin(), findings.end(),
                                [](const auto& finding) { return finding.rule == "R18"; }),
                 findings.end());
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  const std::string text = Show(findings[0]);
  EXPECT_THAT(text, testing::MatchesRegex(GetParam().finding));
  EXPECT_EQ(text.find('\n'), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Libraries, BadLibraryTest,
    testing::Values(
        TBadLibrary{"loadcrash", DIAGS_PROBED_DIR, "Probed",
                    "error R7: .*/libx.so: loading it ended by signal 11 .Segmentation fault.; .*"},
        TBadLibrary{"loadexit", DIAGS_PROBED_DIR, "Probed",
                    "error R7: .*: loading it ended the process with exit status 3; .*"},
        TBadLibrary{"factorycrash", DIAGS_PROBED_DIR, "Probed",
                    "error R7: .*: making the instance functions of provider Probed ended by "
                    "signal 11 .Segmentation fault.; .*"},
        TBadLibrary{"factoryseparators", DIAGS_PROBED_DIR, "Probed",
                    "error R4: .*no  hardware  here; .*"},
        TBadLibrary{"factoryabort", DIAGS_PROBED_DIR, "Probed", "error R7: .*signal 6 .Aborted.*"},
        TBadLibrary{"factoryexit", DIAGS_PROBED_DIR, "Probed", "error R7: .* exit status 0; .*"},
        TBadLibrary{"factorythrows", DIAGS_BAD_DIR, "Bad", "error R4: .*factory on strike; .*"},
        TBadLibrary{"factorynull", DIAGS_BAD_DIR, "Bad", "error R4: .* were not made; .*"},
        TBadLibrary{"factoryrefuses", DIAGS_BAD_DIR, "Bad", "error R4: .*no hardware here; .*"},
        TBadLibrary{"nulltable", DIAGS_BAD_DIR, "Bad", "error R4: .* no function table; .*"},
        TBadLibrary{
            "oldtable", DIAGS_BAD_DIR, "Bad",
            "warning R6: .* instance functions of provider Bad have the table version 90.*"},
        TBadLibrary{"noentry", DIAGS_BAD_DIR, "Bad",
                    "error R4: .*neither Bad_Create_InstanceMI nor _Generic_Create_InstanceMI .it "
                    "exports no entry point at all.; .*"},
        TBadLibrary{"mangled", DIAGS_PROBED_DIR, "Probed",
                    "error R4: .*it has _Z.*Probed_Create_InstanceMI.*; declare them extern .*"},
        TBadLibrary{"unresolved", DIAGS_BAD_DIR, "Bad",
                    "error R5: .*cannot be loaded: .*undefined symbol: DiagsSymbolThatNobodyHas; "
                    "link it with .*"},
        TBadLibrary{"needscommon", DIAGS_VENDOR_DIR, "P",
                    "error R15: .*cannot be loaded: libvendorCommon.so.0: cannot open .*; install "
                    "what has libvendorCommon.so.0, or put it into the vendor's folder"},
        TBadLibrary{"notalibrary", DIAGS_BAD_DIR, "P",
                    "error R14: .*/libx.so: is no library .no ELF header.; .*"}),
    [](const auto& row) { return row.param.name; });

TEST_F(LibraryProbeTest, AGoodLibraryHasNoFinding) {
  EXPECT_EQ(ShowAll(Probe(std::string(DIAGS_PROBED_DIR) + "/libgood.so", "Probed")), "");
}

TEST_F(LibraryProbeTest, AHangIsAFindingOfItsOwnRule) {
  const auto findings =
      Probe(std::string(DIAGS_PROBED_DIR) + "/libloadhang.so", "Probed", "instance", kHangLimit);
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_THAT(Show(findings[0]),
              testing::MatchesRegex("error R19: .*loading it did not come back within 900 "
                                    "milliseconds; .*"));
}

TEST_F(LibraryProbeTest, AfterAHangTheRestOfTheLibraryIsNotWaitedFor) {
  const auto findings = Probe(std::string(DIAGS_PROBED_DIR) + "/libfactoryhang.so", "Probed",
                              "instance method", kHangLimit);
  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_THAT(Show(findings[0]), HasSubstr("making the instance functions of provider Probed did "
                                           "not come back within 900 milliseconds"));
}

struct TBadCall {
  const char* name;  ///< Of the library, too.
  const char* finding;
  std::chrono::milliseconds limit = kProbeLimit;
};
void PrintTo(const TBadCall& row, std::ostream* out) {
  *out << row.name;
}

class BadCallTest : public LibraryProbeTest, public testing::WithParamInterface<TBadCall> {};

TEST_P(BadCallTest, IsOneFindingThatNamesTheCall) {
  const auto findings = Probe(std::string(DIAGS_PROBED_DIR) + "/lib" + GetParam().name + ".so",
                              "Probed", "instance", GetParam().limit);
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]), testing::MatchesRegex(GetParam().finding));
}

INSTANTIATE_TEST_SUITE_P(
    Calls, BadCallTest,
    testing::Values(
        TBadCall{"enumcrash",
                 "error R7: .*/libx.so: enumerating class A_Base in root/x by provider Probed "
                 "ended by signal 11 .Segmentation fault.; .*"},
        TBadCall{"enumhang",
                 "error R24: .*/libx.so: enumerating class A_Base in root/x by provider Probed "
                 "did not come back within 900 milliseconds; answer at once; .*",
                 kHangLimit},
        TBadCall{"enumexit", "error R7: .*enumerating class A_Base .* exit status 3; .*"},
        TBadCall{"enumfails",
                 "warning R24: .*enumerating class A_Base in root/x by provider Probed failed: "
                 "CIM_ERR_FAILED: no bus here; answer OK without instances .*"},
        TBadCall{"namescrash", "error R7: .*enumerating class A_Base .* signal 11 .*"},
        TBadCall{"cleanupcrash",
                 "error R7: .*/libx.so: cleanup of provider Probed ended by signal 11 .*"},
        TBadCall{"cleanuphang",
                 "error R9: .*/libx.so: cleanup of provider Probed did not come back within 900 "
                 "milliseconds; end what it waits for, and return",
                 kHangLimit}),
    [](const auto& row) { return row.param.name; });

TEST_F(LibraryProbeTest, AProcessThatIsLeftBehindHoldsNobodyUp) {
  EXPECT_EQ(ShowAll(Probe(std::string(DIAGS_PROBED_DIR) + "/libloadleaves.so", "Probed")), "");
}

TEST_F(LibraryProbeTest, WhatALibraryWritesReachesNobody) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const auto findings = Probe(std::string(DIAGS_PROBED_DIR) + "/libfactorywrites.so", "Probed");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  // What it wrote into the pipe of the check is not taken for a finding, and not passed over.
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]),
              testing::MatchesRegex("error R19: .*/libx.so: making the instance functions of "
                                    "provider Probed wrote into the check's own pipe.*"));
}

TEST_F(LibraryProbeTest, AFactoryThatComesBackIsCalledOnce) {
  EXPECT_EQ(ShowAll(Probe(std::string(DIAGS_PROBED_DIR) + "/libfactoryupcall.so", "Probed")), "");
}

TEST_F(LibraryProbeTest, ANameThatIsNearlyRightShowsWhatTheLibraryHas) {
  const auto findings = Probe(std::string(DIAGS_PROBED_DIR) + "/libgood.so", "Prodeb");
  ASSERT_THAT(findings, SizeIs(1)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]),
              HasSubstr("neither Prodeb_Create_InstanceMI nor _Generic_Create_InstanceMI (it has "
                        "Probed_Create_InstanceMI)"));
}

TEST_F(LibraryProbeTest, ATypeWithoutItsEntryPointAndTheOtherWayRoundAreTold) {
  const auto findings =
      Probe(std::string(DIAGS_PROBED_DIR) + "/libgood.so", "Probed", "method property indication");
  ASSERT_THAT(findings, SizeIs(3)) << ShowAll(findings);
  // What it has can be used all the same.
  EXPECT_THAT(Show(findings[0]), HasSubstr("warning R4: "));
  EXPECT_THAT(Show(findings[0]), HasSubstr("neither Probed_Create_MethodMI"));
  EXPECT_THAT(Show(findings[1]), HasSubstr("neither Probed_Create_PropertyMI"));
  EXPECT_THAT(Show(findings[2]),
              HasSubstr("has Probed_Create_InstanceMI, and no class is registered for instance of "
                        "provider Probed"));
}

}  // namespace
}  // namespace NZEPQEL20::setup
