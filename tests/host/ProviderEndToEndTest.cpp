// SPDX-License-Identifier: Apache-2.0
//
// The real command over vendors' folders as they are shipped.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/host/TProviderFixture.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

struct TFormRow {
  const char* name;
  const char* file;
  const char* const* text;
};
void PrintTo(const TFormRow& row, std::ostream* out) {
  *out << row.name;
}

class RegistrationFormTest : public TProviderFixture,
                             public ::testing::WithParamInterface<TFormRow> {};

TEST_P(RegistrationFormTest, IsAllThatAVendorNeedsToHaveItsTestsListedAndRun) {
  const std::string vendor = MakeAcme(GetParam().file, *GetParam().text);
  EXPECT_FALSE(ListsAcme());

  const TFinished checked = Do({"provider", "check", vendor});
  EXPECT_EQ(checked.out + checked.err, "acme: ok, 6 classes in 1 library\n");
  EXPECT_EQ(checked.status, 0);

  const TFinished added = Do({"provider", "add", vendor});
  EXPECT_EQ(added.out + added.err, "acme: installed 6 classes in 1 library in " +
                                       GetInstalled("acme") +
                                       "; `diagsrun list` shows its tests\n");
  EXPECT_EQ(added.status, 0);
  std::filesystem::remove_all(vendor);
  EXPECT_TRUE(ListsAcme());
  EXPECT_TRUE(RunsAcme());
  EXPECT_EQ(Do({"list"}).err, "");

  const TFinished removed = Do({"provider", "remove", "acme"});
  EXPECT_EQ(removed.out + removed.err, "acme: removed " + GetInstalled("acme") + "\n");
  EXPECT_EQ(removed.status, 0);
  EXPECT_FALSE(ListsAcme());
  EXPECT_TRUE(std::filesystem::is_empty(GetRoot() + "/providers"));
}

TEST_P(RegistrationFormTest, IsTakenAsAFileInsteadOfItsFolder) {
  const std::string vendor = MakeAcme(GetParam().file, *GetParam().text);
  const TFinished added = Do({"provider", "add", vendor + "/" + GetParam().file});
  // The file may lie in a folder of everybody's, so the name is its own.
  const std::string name = std::filesystem::path(GetParam().file).stem().string();
  EXPECT_EQ(added.out + added.err, name + ": installed 6 classes in 1 library in " +
                                       GetInstalled(name) + "; `diagsrun list` shows its tests\n");
  EXPECT_TRUE(ListsAcme());
}

TEST_P(RegistrationFormTest, IsListedWithWhatItSays) {
  ASSERT_EQ(Do({"provider", "add", MakeAcme(GetParam().file, *GetParam().text)}).status, 0);
  const TFinished listed = Do({"provider", "list"});
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.out + listed.err,
            "acme: ok, 6 classes in 1 library (" + GetInstalled("acme") +
                ")\n"
                "  CLASS                           NAMESPACE   TYPES             LIBRARY\n"
                "  TST_DiskDrive                   root/cimv2  instance          libdiagstest.so\n"
                "  TST_DiagnosticTest              root/cimv2  instance, method  libdiagstest.so\n"
                "  TST_AvailableDiagnosticService  root/cimv2  instance          libdiagstest.so\n"
                "  TST_ConcreteJob                 root/cimv2  instance, method  libdiagstest.so\n"
                "  TST_DiagnosticCompletionRecord  root/cimv2  instance          libdiagstest.so\n"
                "  TST_RecordAppliesToElement      root/cimv2  instance          "
                "libdiagstest.so\n");
}

INSTANTIATE_TEST_SUITE_P(All, RegistrationFormTest,
                         ::testing::Values(TFormRow{"Lines", "acme.registration", &kLines},
                                           TFormRow{"Sections", "acme.reg", &kSections},
                                           TFormRow{"Modules", "acmeR.mof", &kModules}),
                         [](const auto& row) { return row.param.name; });

class ProviderEndToEndTest : public TProviderFixture {};

TEST_F(ProviderEndToEndTest, AFolderIsInstalledTwiceOnlyInItsOwnPlaceOrUnderAnotherName) {
  InstallAcme();
  const std::string vendor = GetVendor("acme");
  Write("vendor/acme/extra.txt", "new");
  const TFinished twice = Do({"provider", "add", vendor});
  EXPECT_EQ(twice.status, 2);
  EXPECT_EQ(twice.out, "");
  EXPECT_EQ(twice.err,
            "diagsrun: acme: is installed already; --replace puts the new one in its place, --name "
            "NAME beside it\n");
  EXPECT_FALSE(std::filesystem::exists(GetInstalled("acme") + "/extra.txt"));
  EXPECT_EQ(Do({"provider", "add", vendor, "--replace"}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(GetInstalled("acme") + "/extra.txt"));
  EXPECT_TRUE(ListsAcme());
}

TEST_F(ProviderEndToEndTest, ANameThatCannotBeAFoldersIsWrongUsage) {
  const std::string vendor = MakeAcme();
  for (const char* name : {"..", "a/b", ".hidden", "a\nb"}) {
    const TFinished added = Do({"provider", "add", vendor, "--name", name});
    EXPECT_EQ(added.status, 3) << name;
    EXPECT_THAT(added.err, HasSubstr("diagsrun: --name: name \"")) << name;
    EXPECT_EQ(added.err.find('\n'), added.err.size() - 1) << added.err;
  }
  EXPECT_TRUE(std::filesystem::is_empty(GetRoot() + "/providers"));
}

TEST_F(ProviderEndToEndTest, WhatIsNotThereIsNamedWithWhatIs) {
  InstallAcme();
  const TFinished removed = Do({"provider", "remove", "acne"});
  EXPECT_EQ(removed.status, 3);
  EXPECT_EQ(removed.err, "diagsrun: acne: is not installed; installed are acme\n");
  const TFinished checked = Do({"provider", "check", "acme", "/no/such"});
  EXPECT_EQ(checked.status, 3);
  EXPECT_EQ(checked.out, "");
  EXPECT_EQ(checked.err,
            "diagsrun: /no/such: is neither installed nor a folder or file; installed are acme\n");
  const TFinished added = Do({"provider", "add", "/no/such"});
  EXPECT_EQ(added.status, 3);
  EXPECT_EQ(added.err, "diagsrun: /no/such: there is no such folder or file\n");
}

TEST_F(ProviderEndToEndTest, ARootThatCannotBeWrittenIsToldWithWhatHelps) {
  // Nobody makes folders in /sys, not even root.
  const TFinished added = Do({"--root", "/sys", "provider", "add", MakeAcme(), "--force"});
  EXPECT_EQ(added.status, 2);
  EXPECT_EQ(added.out, "");
  EXPECT_THAT(added.err, HasSubstr("diagsrun: /sys/providers: cannot be made: "));
  EXPECT_THAT(added.err, HasSubstr("name another root"));
  EXPECT_THAT(added.err, ::testing::EndsWith(" (--root DIR)\n"));
}

TEST_F(ProviderEndToEndTest, EveryCommandHasItsDocument) {
  const std::string vendor = MakeAcme();
  const json added = json::parse(Do({"provider", "add", vendor, "--json"}).out);
  EXPECT_EQ(added["added"], true);
  EXPECT_EQ(added["folder"], GetInstalled("acme"));
  const json listed = json::parse(Do({"provider", "list", "--json"}).out);
  ASSERT_EQ(listed["providers"].size(), 1U);
  EXPECT_EQ(listed["providers"][0]["folder"], GetInstalled("acme"));
  EXPECT_EQ(listed["providers"][0]["libraries"],
            json::array({GetInstalled("acme") + "/libdiagstest.so"}));
  EXPECT_EQ(listed["providers"][0]["services"].size(), 6U);
  const json checked = json::parse(Do({"provider", "check", "--json"}).out);
  EXPECT_EQ(checked["status"], 0);
  EXPECT_EQ(checked["providers"][0]["findings"], json::array());
  const json removed = json::parse(Do({"provider", "remove", "acme", "--json"}).out);
  EXPECT_EQ(removed["removed"], true);
}

TEST_F(ProviderEndToEndTest, AServerHasNoFolders) {
  const TFinished finished = Do({"--server", "http://127.0.0.1:1", "provider", "list"});
  EXPECT_EQ(finished.status, 3);
  EXPECT_EQ(finished.err,
            "diagsrun: --server: cannot be combined with provider: the folders of providers are "
            "those of this machine's installation root; see diagsrun --help\n");
}

TEST_F(ProviderEndToEndTest, AnEmptyRootHasNoProviders) {
  const TFinished listed = Do({"provider", "list"});
  EXPECT_EQ(listed.status, 2);
  EXPECT_EQ(listed.out, "No providers found in " + GetRoot() + "/providers.\n");
}

TEST_F(ProviderEndToEndTest, TheBundledProviderIsInOrder) {
  const TFinished checked = Run({"provider", "check"});
  EXPECT_EQ(checked.status, 0);
  EXPECT_EQ(checked.out + checked.err, "hardware: ok, 10 classes in 1 library\n");
}

}  // namespace
}  // namespace host
