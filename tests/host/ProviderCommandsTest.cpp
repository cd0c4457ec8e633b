// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/ProviderCommands.h"
#include "host/TUsageError.h"
#include "tests/host/TFakeProviderStore.h"
#include "tests/support/TTemporaryFolder.h"

namespace host {
namespace {

using nlohmann::json;
using NZEPQEL20::TProviderFinding;
using NZEPQEL20::TProviderPackage;
using NZEPQEL20::TQELException;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const TProviderFinding kError{false, "R5", "libacme.so: cannot be loaded: no such symbol",
                              "link what it needs"};
const TProviderFinding kWarning{true, "R2", "acme.reg:3: the type \"indication\" is not driven",
                                "leave it out"};

TProviderPackage MakePackage(const std::string& name) {
  TProviderPackage package;
  package.name = name;
  package.folder = "/r/providers/" + name;
  package.libraries = {package.folder + "/lib" + name + ".so"};
  package.schema = {package.folder + "/" + name + ".mof"};
  package.registrations = {package.folder + "/" + name + ".registration"};
  package.services = {
      {"A_Test", "root/cimv2", "P", package.libraries[0], {"instance", "method"}},
      {"a_test", "root/other", "P", package.libraries[0], {"instance"}},
      {"A_Link", "*", "P", "", {"association"}},
  };
  return package;
}

class ProviderCommandsTest : public ::testing::Test {
 protected:
  int Do(EProviderAction action, const std::vector<std::string>& targets = {}) {
    m_arguments.action = action;
    m_arguments.targets = targets;
    m_options.provider = m_arguments;
    const TSurroundings surroundings{m_out,
                                     m_err,
                                     [] { return false; },
                                     [this] { return m_isOutputGood; },
                                     &std::chrono::system_clock::now,
                                     &std::chrono::steady_clock::now,
                                     [] {},
                                     [this] { return m_isReaderGone; }};
    return static_cast<int>(RunProviderCommand(m_options, m_store, surroundings));
  }
  int List() { return Do(EProviderAction::kList); }
  int Check(const std::vector<std::string>& targets = {}) {
    return Do(EProviderAction::kCheck, targets);
  }
  int Add() { return Do(EProviderAction::kAdd, {m_source.GetPath()}); }
  int Remove(const std::string& name) { return Do(EProviderAction::kRemove, {name}); }

  // What the usage error says of a call.
  std::string GetUsage(EProviderAction action, const std::vector<std::string>& targets) {
    try {
      Do(action, targets);
    } catch (const TUsageError& e) {
      return e.what();
    }
    return "no usage error";
  }

  // The folder that Add() adds.
  void OfferAcme() {
    m_store.readable[m_source.GetPath()] = MakePackage("acme");
    m_store.readable[m_source.GetPath()].folder = m_source.GetPath();
  }

  TFakeProviderStore m_store;
  TTemporaryFolder m_source;
  TOptions m_options;
  TProviderArguments m_arguments;
  std::ostringstream m_out;
  std::ostringstream m_err;
  bool m_isOutputGood = true;
  bool m_isReaderGone = false;
};

TEST_F(ProviderCommandsTest, ListShowsWhatEachFolderRegistersAndHowItIs) {
  m_store.installed = {MakePackage("acme"), MakePackage("zeta")};
  m_store.findings["zeta"] = {kError, kWarning};
  EXPECT_EQ(List(), 0);
  EXPECT_EQ(
      m_out.str(),
      "acme: ok, 2 classes in 1 library (/r/providers/acme)\n"
      "  CLASS   NAMESPACE   TYPES             LIBRARY\n"
      "  A_Test  root/cimv2  instance, method  libacme.so\n"
      "  a_test  root/other  instance          libacme.so\n"
      "  A_Link  *           association       (none)\n"
      "zeta: 1 error, 1 warning (/r/providers/zeta)\n"
      "  CLASS   NAMESPACE   TYPES             LIBRARY\n"
      "  A_Test  root/cimv2  instance, method  libzeta.so\n"
      "  a_test  root/other  instance          libzeta.so\n"
      "  A_Link  *           association       (none)\n"
      "  error: libacme.so: cannot be loaded: no such symbol; link what it needs; see rule R5\n"
      "  warning: acme.reg:3: the type \"indication\" is not driven; leave it out; see rule R2\n");
  EXPECT_EQ(m_err.str(), "");
}

TEST_F(ProviderCommandsTest, NothingInstalledIsNothingFound) {
  EXPECT_EQ(List(), 2);
  EXPECT_EQ(m_out.str(), "No providers found in /r/providers.\n");
  m_out.str("");
  EXPECT_EQ(Check(), 2);
  EXPECT_EQ(m_out.str(), "No providers found in /r/providers.\n");
}

TEST_F(ProviderCommandsTest, CheckTakesEveryInstalledFolder) {
  m_store.installed = {MakePackage("acme"), MakePackage("zeta")};
  EXPECT_EQ(Check(), 0);
  EXPECT_EQ(m_out.str(),
            "acme: ok, 2 classes in 1 library\n"
            "zeta: ok, 2 classes in 1 library\n");
}

TEST_F(ProviderCommandsTest, CheckShowsEveryFindingAndTheCounts) {
  m_store.installed = {MakePackage("acme"), MakePackage("zeta")};
  m_store.findings["acme"] = {kError, kError, kWarning};
  m_store.findings["zeta"] = {kWarning, kWarning};
  EXPECT_EQ(Check(), 2);
  EXPECT_EQ(
      m_out.str(),
      "acme: error: libacme.so: cannot be loaded: no such symbol; link what it needs; see rule R5\n"
      "acme: error: libacme.so: cannot be loaded: no such symbol; link what it needs; see rule R5\n"
      "acme: warning: acme.reg:3: the type \"indication\" is not driven; leave it out; see rule "
      "R2\n"
      "acme: 2 errors, 1 warning\n"
      "zeta: warning: acme.reg:3: the type \"indication\" is not driven; leave it out; see rule "
      "R2\n"
      "zeta: warning: acme.reg:3: the type \"indication\" is not driven; leave it out; see rule "
      "R2\n"
      "zeta: ok, 2 warnings, 2 classes in 1 library\n");
  EXPECT_EQ(m_err.str(), "");
}

TEST_F(ProviderCommandsTest, WarningsAloneAreNoError) {
  m_store.installed = {MakePackage("acme")};
  m_store.findings["acme"] = {kWarning};
  EXPECT_EQ(Check(), 0);
}

TEST_F(ProviderCommandsTest, CheckTakesNamesAndPathsInTheirOrder) {
  OfferAcme();
  m_store.installed = {MakePackage("zeta"), MakePackage("other")};
  EXPECT_EQ(Check({"zeta", m_source.GetPath()}), 0);
  EXPECT_THAT(m_store.calls, ElementsAre("check zeta", "check acme"));
}

TEST_F(ProviderCommandsTest, AnInstalledNameComesBeforeAFolderOfThatName) {
  m_store.installed = {MakePackage(m_source.GetPath())};
  EXPECT_EQ(Check({m_source.GetPath()}), 0) << "the folder, which cannot be read";
  EXPECT_THAT(m_store.calls, ElementsAre("check " + m_source.GetPath()));
}

TEST_F(ProviderCommandsTest, WhatCannotBeReadIsAFindingAndTheOthersAreChecked) {
  m_store.installed = {MakePackage("zeta")};
  const std::string path = m_source.GetPath("acme");
  std::filesystem::create_directory(path);
  EXPECT_EQ(Check({path + "/", "zeta", path + "/..", "/"}), 2);
  EXPECT_EQ(m_out.str(), "acme: error: " + path +
                             "/: cannot be read\n"
                             "acme: 1 error\n"
                             "zeta: ok, 2 classes in 1 library\n" +
                             path + "/..: error: " + path + "/..: cannot be read\n" + path +
                             "/..: 1 error\n"
                             "/: error: /: cannot be read\n"
                             "/: 1 error\n");
}

TEST_F(ProviderCommandsTest, CheckChecksNothingWhenOneTargetIsUnknown) {
  m_store.installed = {MakePackage("acme"), MakePackage("zeta")};
  EXPECT_EQ(GetUsage(EProviderAction::kCheck, {"acme", "nope"}),
            "nope: is neither installed nor a folder or file; installed are acme, zeta");
  EXPECT_THAT(m_store.calls, IsEmpty());
}

TEST_F(ProviderCommandsTest, AddInstallsUnderTheFoldersOwnName) {
  OfferAcme();
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(m_out.str(),
            "acme: installed 2 classes in 1 library in /r/providers/acme; `diagsrun list` shows "
            "its tests\n");
  EXPECT_EQ(m_err.str(), "");
  EXPECT_THAT(m_store.calls, ElementsAre("check acme", "add acme"));
}

TEST_F(ProviderCommandsTest, AddTakesANameAndPointsToTheRootThatWasNamed) {
  OfferAcme();
  m_arguments.name = "disk";
  m_options.root = "/my/root";
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(m_out.str(),
            "disk: installed 2 classes in 1 library in /r/providers/disk; `diagsrun --root "
            "/my/root list` shows its tests\n");
  EXPECT_THAT(m_store.calls, ElementsAre("check disk", "add disk"));
}

TEST_F(ProviderCommandsTest, TestsThatAreNotShownAreNotPromised) {
  OfferAcme();
  m_store.findings["acme"] = {{true, "T1", "is registered elsewhere", "look there"}};
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(m_out.str(), "acme: installed 2 classes in 1 library in /r/providers/acme\n");
}

TEST_F(ProviderCommandsTest, AWarningOfAnotherKindKeepsThePromise) {
  OfferAcme();
  m_store.findings["acme"] = {{true, "R18", "a library is not needed", ""}};
  EXPECT_EQ(Add(), 0);
  EXPECT_THAT(m_out.str(), testing::HasSubstr("shows its tests"));
}

TEST_F(ProviderCommandsTest, TheRootIsPointedToAsAShellTakesIt) {
  OfferAcme();
  m_options.root = "/it's my/root";
  EXPECT_EQ(Add(), 0);
  EXPECT_THAT(m_out.str(), ::testing::HasSubstr("`diagsrun --root '/it'\\''s my/root' list`"));
}

TEST_F(ProviderCommandsTest, AddRefusesAFolderWithErrors) {
  OfferAcme();
  m_store.findings["acme"] = {kError, kWarning};
  EXPECT_EQ(Add(), 2);
  EXPECT_EQ(m_out.str(), "");
  EXPECT_EQ(m_err.str(),
            "diagsrun: acme: error: libacme.so: cannot be loaded: no such symbol; link what "
            "it needs; see rule R5\n"
            "diagsrun: acme: warning: acme.reg:3: the type \"indication\" is not driven; "
            "leave it out; see rule R2\n"
            "diagsrun: acme: not installed: 1 error, 1 warning; --force installs it all the "
            "same\n");
  EXPECT_THAT(m_store.calls, ElementsAre("check acme"));
}

TEST_F(ProviderCommandsTest, AddIsForcedPastErrorsAndStillTellsThem) {
  OfferAcme();
  m_store.findings["acme"] = {kError};
  m_arguments.isForced = true;
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(m_err.str(),
            "diagsrun: acme: error: libacme.so: cannot be loaded: no such symbol; link what "
            "it needs; see rule R5\n");
  EXPECT_THAT(m_store.calls, ElementsAre("check acme", "add acme"));
}

TEST_F(ProviderCommandsTest, AddPassesWarningsAndTellsThem) {
  OfferAcme();
  m_store.findings["acme"] = {kWarning};
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(m_err.str(),
            "diagsrun: acme: warning: acme.reg:3: the type \"indication\" is not driven; "
            "leave it out; see rule R2\n");
  EXPECT_THAT(m_store.calls, ElementsAre("check acme", "add acme"));
}

TEST_F(ProviderCommandsTest, AddLeavesAnInstalledFolderAloneUnlessItIsToBeReplaced) {
  OfferAcme();
  m_store.installed = {MakePackage("acme")};
  EXPECT_EQ(Add(), 2);
  EXPECT_EQ(m_err.str(),
            "diagsrun: acme: is installed already; --replace puts the new one in its place, "
            "--name NAME beside it\n");
  EXPECT_EQ(m_out.str(), "");
  EXPECT_THAT(m_store.calls, IsEmpty());
  m_arguments.isReplacing = true;
  EXPECT_EQ(Add(), 0);
  EXPECT_THAT(m_store.calls, ElementsAre("check acme", "replace acme"));
}

TEST_F(ProviderCommandsTest, AddPassesOnWhatKeepsAFolderFromBeingReadOrWritten) {
  EXPECT_THROW(Add(), TQELException);
  OfferAcme();
  m_store.addFailure = NZEPQEL20::TQELStatusCode::kAccessDenied;
  EXPECT_THROW(Add(), TQELException);
  EXPECT_EQ(m_out.str(), "");
}

TEST_F(ProviderCommandsTest, ANameThatTheStoreRefusesIsWrongUsage) {
  OfferAcme();
  m_store.addFailure = NZEPQEL20::TQELStatusCode::kInvalidArgument;
  EXPECT_EQ(GetUsage(EProviderAction::kAdd, {m_source.GetPath()}), "--name: acme: cannot be added");
}

TEST_F(ProviderCommandsTest, APathThatIsNotThereIsWrongUsage) {
  EXPECT_EQ(GetUsage(EProviderAction::kAdd, {"/no/such"}),
            "/no/such: there is no such folder or file");
}

TEST_F(ProviderCommandsTest, RemoveTakesAnInstalledNameOnly) {
  m_store.installed = {MakePackage("acme"), MakePackage("zeta")};
  EXPECT_EQ(Remove("acme"), 0);
  EXPECT_EQ(m_out.str(), "acme: removed /r/providers/acme\n");
  EXPECT_EQ(GetUsage(EProviderAction::kRemove, {"acm"}),
            "acm: is not installed; installed are acme, zeta");
  EXPECT_THAT(m_store.calls, ElementsAre("remove acme"));
  m_store.installed.clear();
  EXPECT_EQ(GetUsage(EProviderAction::kRemove, {"acme"}),
            "acme: is not installed; none is installed");
}

TEST_F(ProviderCommandsTest, TheBundledProviderIsRemovedOnlyWhenForced) {
  m_store.installed = {MakePackage("acme")};
  m_store.bundled = "acme";
  EXPECT_EQ(Remove("acme"), 2);
  EXPECT_EQ(m_out.str(), "");
  EXPECT_EQ(m_err.str(), "diagsrun: acme: is bundled; --force removes it all the same\n");
  m_arguments.isForced = true;
  EXPECT_EQ(Remove("acme"), 0);
  EXPECT_EQ(m_out.str(), "acme: removed /r/providers/acme\n");
  EXPECT_THAT(m_store.calls, ElementsAre("force out acme"));
}

TEST_F(ProviderCommandsTest, NothingOfAVendorSteersTheTerminal) {
  TProviderPackage package = MakePackage("a\x1b[2J");
  package.services[0].className = "B\nC";
  package.services[0].types = {"\x07"};
  m_store.installed = {package};
  m_store.findings[package.name] = {{false, "R1", "t\x1b]0;", "\xff\n"}};
  List();
  Check();
  m_store.readable[m_source.GetPath()] = package;
  m_arguments.isReplacing = true;
  Add();
  m_arguments.isForced = true;
  Add();
  Remove(package.name);
  for (const char byte : m_out.str() + m_err.str()) {
    const auto code = static_cast<unsigned char>(byte);
    EXPECT_TRUE((code >= 0x20 && code < 0x7F) || byte == '\n') << int(code);
  }
  EXPECT_THAT(m_out.str(), ::testing::HasSubstr("error: t\\x1b]0;; \\xff\\x0a; see rule R1\n"));
  EXPECT_THAT(m_out.str(), ::testing::HasSubstr("a\\x1b[2J: removed"));
}

TEST_F(ProviderCommandsTest, AnOutputThatCannotBeWrittenIsAnError) {
  m_store.installed = {MakePackage("acme")};
  m_isOutputGood = false;
  EXPECT_EQ(List(), 2);
  EXPECT_EQ(Check(), 2);
  EXPECT_EQ(Remove("acme"), 2);
  OfferAcme();
  m_arguments.isReplacing = true;
  EXPECT_EQ(Add(), 2);
}

TEST_F(ProviderCommandsTest, AReaderThatHasGoneChangesNoVerdict) {
  m_store.installed = {MakePackage("acme")};
  m_isOutputGood = false;
  m_isReaderGone = true;
  EXPECT_EQ(List(), 0);
  EXPECT_EQ(Check(), 0);
  EXPECT_EQ(m_err.str(), "");
  m_store.findings["acme"] = {{false, "R1", "t", "r"}};
  EXPECT_EQ(Check(), 2);
  EXPECT_EQ(m_err.str(), "");
}

class ProviderDocumentsTest : public ProviderCommandsTest {
 protected:
  ProviderDocumentsTest() { m_options.isJson = true; }

  json GetDocument() const { return json::parse(m_out.str()); }
};

TEST_F(ProviderDocumentsTest, ListHasEveryFolderWithItsServicesAndFindings) {
  m_store.installed = {MakePackage("acme")};
  m_store.findings["acme"] = {kError, kWarning};
  EXPECT_EQ(List(), 0);
  EXPECT_EQ(GetDocument(),
            json({{"format", 1},
                  {"command", "provider list"},
                  {"status", 0},
                  {"providers",
                   {{{"name", "acme"},
                     {"folder", "/r/providers/acme"},
                     {"libraries", {"/r/providers/acme/libacme.so"}},
                     {"schema", {"/r/providers/acme/acme.mof"}},
                     {"registrations", {"/r/providers/acme/acme.registration"}},
                     {"services",
                      {{{"class", "A_Test"},
                        {"namespace", "root/cimv2"},
                        {"provider", "P"},
                        {"library", "/r/providers/acme/libacme.so"},
                        {"types", {"instance", "method"}}},
                       {{"class", "a_test"},
                        {"namespace", "root/other"},
                        {"provider", "P"},
                        {"library", "/r/providers/acme/libacme.so"},
                        {"types", json::array({"instance"})}},
                       {{"class", "A_Link"},
                        {"namespace", "*"},
                        {"provider", "P"},
                        {"library", ""},
                        {"types", json::array({"association"})}}}},
                     {"errors", 1},
                     {"warnings", 1},
                     {"findings",
                      {{{"severity", "error"},
                        {"rule", "R5"},
                        {"text", "libacme.so: cannot be loaded: no such symbol"},
                        {"remedy", "link what it needs"}},
                       {{"severity", "warning"},
                        {"rule", "R2"},
                        {"text", "acme.reg:3: the type \"indication\" is not driven"},
                        {"remedy", "leave it out"}}}}}}}}));
}

TEST_F(ProviderDocumentsTest, CheckHasTheExitStatus) {
  m_store.installed = {MakePackage("acme")};
  m_store.findings["acme"] = {kError};
  EXPECT_EQ(Check(), 2);
  EXPECT_EQ(GetDocument()["command"], "provider check");
  EXPECT_EQ(GetDocument()["status"], 2);
  EXPECT_EQ(GetDocument()["providers"][0]["findings"][0]["rule"], "R5");
  EXPECT_EQ(m_err.str(), "");
}

TEST_F(ProviderDocumentsTest, AnEmptyListIsADocument) {
  EXPECT_EQ(List(), 2);
  EXPECT_EQ(GetDocument()["providers"], json::array());
  EXPECT_EQ(GetDocument()["status"], 2);
}

TEST_F(ProviderDocumentsTest, AddTellsWhereItWasPut) {
  OfferAcme();
  EXPECT_EQ(Add(), 0);
  EXPECT_EQ(GetDocument()["command"], "provider add");
  EXPECT_EQ(GetDocument()["status"], 0);
  EXPECT_EQ(GetDocument()["added"], true);
  EXPECT_EQ(GetDocument()["folder"], "/r/providers/acme");
  EXPECT_EQ(GetDocument()["provider"]["name"], "acme");
}

TEST_F(ProviderDocumentsTest, AddTellsWhyItRefuses) {
  OfferAcme();
  m_store.findings["acme"] = {kError};
  EXPECT_EQ(Add(), 2);
  EXPECT_EQ(GetDocument()["status"], 2);
  EXPECT_EQ(GetDocument()["added"], false);
  EXPECT_EQ(GetDocument()["folder"], nullptr);
  EXPECT_EQ(GetDocument()["provider"]["errors"], 1);
}

TEST_F(ProviderDocumentsTest, AddTellsThatTheNameIsTaken) {
  OfferAcme();
  m_store.installed = {MakePackage("acme")};
  EXPECT_EQ(Add(), 2);
  EXPECT_EQ(GetDocument()["status"], 2);
  EXPECT_EQ(GetDocument()["added"], false);
  EXPECT_EQ(GetDocument()["folder"], nullptr);
  EXPECT_EQ(GetDocument()["provider"]["name"], "acme");
}

TEST_F(ProviderDocumentsTest, RemoveTellsThatTheBundledProviderStays) {
  m_store.installed = {MakePackage("acme")};
  m_store.bundled = "acme";
  EXPECT_EQ(Remove("acme"), 2);
  EXPECT_EQ(GetDocument()["status"], 2);
  EXPECT_EQ(GetDocument()["removed"], false);
  EXPECT_EQ(GetDocument()["folder"], "/r/providers/acme");
}

TEST_F(ProviderDocumentsTest, RemoveTellsWhatIsGone) {
  m_store.installed = {MakePackage("acme")};
  EXPECT_EQ(Remove("acme"), 0);
  EXPECT_EQ(GetDocument(), json({{"format", 1},
                                 {"command", "provider remove"},
                                 {"status", 0},
                                 {"removed", true},
                                 {"name", "acme"},
                                 {"folder", "/r/providers/acme"}}));
}

}  // namespace
}  // namespace host
