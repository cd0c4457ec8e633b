// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMValue;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

const char kNoResults[] = "No Results.\n";
const char kRecords[] = "CIM_DiagnosticCompletionRecord";

class ImmediateResultsTest : public TRunnerTest {
 protected:
  /// A runner that knows `testID` as run by job "j".
  DiagsRunner& Prepare(const std::string& testID) {
    DiagsRunner& runner = Start();
    TAccess::DiagNS(runner)[testID] = TCIMValue("cmpi");
    TAccess::Finished(runner)[testID] = "j";
    return runner;
  }
  /// The answer for `testID` after a job "j".
  std::string Ask(const std::string& testID) {
    return Prepare(testID).ImmediateResults(testID, m_host);
  }
};

TEST_F(ImmediateResultsTest, CopiesTheRecordUnchangedAndAnswersWithTheWord) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data");
  EXPECT_EQ(Ask("Quick,d,e"), "Pass");
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::ImmediateResults, testID is: Quick,d,e",
                                  "testID in ImmediateResults:Quick,d,e"));
  EXPECT_EQ(Count("find root CIM_DiagnosticCompletionRecord {nspID=cmpi}"), 1U);
  EXPECT_THAT(Only({"enumerate", "sleep", "set", "copy"}),
              ElementsAre("enumerate CIM_DiagnosticCompletionRecord deep=1 {nspID=cmpi}",
                          "copy root/cimv2:Test_Record.Id=\"r\" host"));
  EXPECT_EQ(TScriptedCopies::Get().All().at(0).ns, m_host);
  EXPECT_EQ(GetCopied("RecordData"), "data");
}

TEST_F(ImmediateResultsTest, AnUnknownTestHasNoResults) {
  EXPECT_EQ(Start().ImmediateResults("a,b,c", m_host), kNoResults);
  EXPECT_THAT(TTranscript::Get().All(),
              ElementsAre("log3 Entering DiagsRunner::ImmediateResults, testID is: a,b,c",
                          "log3 DiagsRunner::ImmediateResults testID is not found in m_diagNS"));
}

TEST_F(ImmediateResultsTest, AnIdentifierThatCannotBeSplitHasNoResults) {
  EXPECT_EQ(Ask("a,b"), kNoResults);
  EXPECT_THAT(TTranscript::Get().All(),
              ElementsAre("log3 Entering DiagsRunner::ImmediateResults, testID is: a,b",
                          "log3 testID in ImmediateResults:a,b",
                          "log3 DiagsRunner::ImmediateResults - GetTestName Failed",
                          "log3 DiagsRunner::ImmediateResults - Returning: No extended results"));
}

TEST_F(ImmediateResultsTest, ATestThatHasNotFinishedHasNoResultsAndNoTrace) {
  DiagsRunner& runner = Prepare("a,b,c");
  TAccess::Finished(runner).clear();
  EXPECT_EQ(runner.ImmediateResults("a,b,c", m_host), kNoResults);
  EXPECT_THAT(TTranscript::Get().All(),
              ElementsAre("log3 Entering DiagsRunner::ImmediateResults, testID is: a,b,c",
                          "log3 testID in ImmediateResults:a,b,c"));
}

const char kNoInstance[] = "DiagsRunner::ImmediateResults  - No Valid Instance Found";
const char kReturning[] = "DiagsRunner::ImmediateResults - Returning: No extended results";

TEST_F(ImmediateResultsTest, WithoutTheRecordClassThereAreNoResults) {
  EXPECT_EQ(Ask("Quick,d,e"), kNoResults);
  EXPECT_THAT(Logs(), ElementsAre("Entering DiagsRunner::ImmediateResults, testID is: Quick,d,e",
                                  "testID in ImmediateResults:Quick,d,e", kNoInstance, kReturning));
  EXPECT_EQ(Count("sleep"), 0U);
}

TEST_F(ImmediateResultsTest, ARecordThatNeverComesCostsTenPauses) {
  m_world.AddClass(kRecords);
  EXPECT_EQ(Ask("Quick,d,e"), kNoResults);
  std::vector<std::string> expected{"enumerate CIM_DiagnosticCompletionRecord deep=1 {nspID=cmpi}"};
  for (int attempt = 0; attempt < 10; ++attempt) {
    expected.push_back(expected.front());
    expected.emplace_back("sleep 5");
  }
  EXPECT_THAT(Only({"enumerate", "sleep"}), ElementsAreArray(expected));
  EXPECT_THAT(Logs(), ElementsAre(::testing::_, ::testing::_, kNoInstance, kReturning));
}

TEST_F(ImmediateResultsTest, ARecordThatComesLateEndsTheWait) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data", 3);
  EXPECT_EQ(Ask("Quick,d,e"), "Pass");
  EXPECT_EQ(Count("sleep 5"), 3U);
  EXPECT_EQ(Count("enumerate"), 4U);
}

TEST_F(ImmediateResultsTest, ARecordOfTheLastEnumerationIsStillTaken) {
  m_world.AddRecord("r", "Quick", "j", "OK", "data", 10);
  EXPECT_EQ(Ask("Quick,d,e"), "Pass");
  EXPECT_EQ(Count("sleep 5"), 10U);
}

TEST_F(ImmediateResultsTest, ARecordOfAnotherJobEndsTheWaitButIsNotChosen) {
  m_world.AddRecord("r", "Quick", "other", "OK", "data");
  EXPECT_EQ(Ask("Quick,d,e"), kNoResults);
  EXPECT_EQ(Count("sleep"), 0U);
  EXPECT_EQ(Count("enumerate"), 1U);
}

TEST_F(ImmediateResultsTest, TheFirstRecordThatMatchesInEverythingIsChosen) {
  m_world.AddRecord("1", "Other", "j", "Failed", "1");
  m_world.AddRecord("2", "Quick", "k", "Failed", "2");
  m_world.AddRecord("3", "Quick", "j", "Failed", "3")
      ->Set("ManagedElementName", TCIMValue::Null(ECIMType::kString));
  m_world.AddRecord("4", "x", "j", "Failed", "4")
      ->Set("ServiceName", TCIMValue::Null(ECIMType::kString));
  m_world.AddRecord("5", "A Quick One", "j and more", "OK", "5");
  m_world.AddRecord("6", "Quick", "j", "Failed", "6");
  EXPECT_EQ(Ask("Quick,d,e"), "Pass");
  EXPECT_EQ(GetCopied("RecordData"), "5");
}

TEST_F(ImmediateResultsTest, AnEmptyJobIdentifierMatchesTheFirstRecordOfTheService) {
  m_world.AddRecord("r", "Quick", "j", "Aborted", "data");
  DiagsRunner& runner = Prepare("Quick,d,e");
  TAccess::Finished(runner)["Quick,d,e"] = "";
  EXPECT_EQ(runner.ImmediateResults("Quick,d,e", m_host), "Aborted");
}

struct TWordRow {
  const char* name;
  const char* state;
  const char* word;
};

std::ostream& operator<<(std::ostream& out, const TWordRow& row) {
  return out << row.name << " " << row.state;
}

class ResultWordTest : public ImmediateResultsTest,
                       public ::testing::WithParamInterface<TWordRow> {};

TEST_P(ResultWordTest, FollowsTheCompletionState) {
  const std::string testID = std::string(GetParam().name) + ",d,e";
  m_world.AddRecord("r", GetParam().name, "j", GetParam().state, "data");
  EXPECT_EQ(Ask(testID), GetParam().word);
  m_host = m_world.GetHost();
  EXPECT_EQ(fgDiagInstance->SimpleResults(testID, m_host),
            "(" + std::string(GetParam().word) + ")");
}

INSTANTIATE_TEST_SUITE_P(
    States, ResultWordTest,
    ::testing::Values(TWordRow{"Quick", "OK", "Pass"}, TWordRow{"Quick", "NotOK", "Pass"},
                      TWordRow{"Quick", "Ok", "Fail"}, TWordRow{"Quick", "Failed", "Fail"},
                      TWordRow{"Quick", "", "Fail"}, TWordRow{"Quick", "Aborted", "Aborted"},
                      TWordRow{"Quick", "aborted", "Fail"},
                      TWordRow{"Quick", "Incomplete", "Incomplete"},
                      TWordRow{"Quick", "Aborted OK", "Pass"},
                      TWordRow{"Quick", "Incomplete, Aborted", "Aborted"},
                      TWordRow{"Quick", "Warning", "Fail"},
                      TWordRow{"Fusion-io:1:diag service", "Warning", "Pass"},
                      TWordRow{"FIO:1:DIAG SERVICE", "Warning", "Pass"},
                      TWordRow{"zep:1:diag service", "Some Warning", "Pass"},
                      TWordRow{"Fusion-io:1:diag service", "warning", "Fail"},
                      TWordRow{"Fusion-io:1", "Warning", "Fail"},
                      TWordRow{"FIO 1:diag service", "Warning", "Fail"}));

TEST_F(ImmediateResultsTest, TracesTheStateOfTheVendorWhoseWarningsPass) {
  m_world.AddRecord("r", "FIO:1:Diag Service", "j", "Warning", "data");
  EXPECT_EQ(Ask("FIO:1:Diag Service,d,e"), "Pass");
  EXPECT_THAT(Logs(), ElementsAre(::testing::_, ::testing::_, "tempResult :Warning"));
}

struct TFlagRow {
  const char* testID;
  bool isOn;
};

std::ostream& operator<<(std::ostream& out, const TFlagRow& row) {
  return out << row.testID;
}

class CatalogueFlagTest : public ImmediateResultsTest,
                          public ::testing::WithParamInterface<TFlagRow> {};

TEST_P(CatalogueFlagTest, DecidesWhetherTheRecordDataIsRewritten) {
  const std::string testID = GetParam().testID;
  m_world.AddRecord("r", testID.substr(0, testID.find(',')), "j", "OK", "old data");
  EXPECT_EQ(Ask(testID), "Pass");
  EXPECT_EQ(Count("set root/cimv2:Test_Record.Id=\"r\" RecordData=old data"),
            GetParam().isOn ? 1U : 0U);
  EXPECT_EQ(Count("copy"), 1U);
  EXPECT_EQ(GetCopied("RecordData"), "old data");
}

INSTANTIATE_TEST_SUITE_P(
    Identifiers, CatalogueFlagTest,
    ::testing::Values(TFlagRow{"BRCM,d,e", true}, TFlagRow{"x,d,BRCM", true},
                      TFlagRow{"xBrocadex,d,e", true}, TFlagRow{"DiskDefaultTest,d,e", true},
                      TFlagRow{"IANet,d,e", true}, TFlagRow{"Nvidia,d,e", true},
                      TFlagRow{"NVIDIA,d,e", true}, TFlagRow{"x,ELX,e", true},
                      TFlagRow{"Fusion-io diag service,d,e", true},
                      TFlagRow{"diag service,FIO,e", true}, TFlagRow{"ZEP,d,diag service", true},
                      TFlagRow{"brcm,d,e", false}, TFlagRow{"nVidia,d,e", false},
                      TFlagRow{"Diskdefault,d,e", false}, TFlagRow{"Fusion-io,d,e", false},
                      TFlagRow{"diag service,d,e", false},
                      TFlagRow{"Fusion-io Diag Service,d,e", false},
                      TFlagRow{"fio diag service,d,e", false}, TFlagRow{"Quick,d,e", false}));

class CatalogueTest : public ImmediateResultsTest {
 protected:
  static TDiagnosticResultMessage Message(const std::string& state, const std::string& code,
                                          const std::string& text) {
    TDiagnosticResultMessage message;
    message.state = state;
    message.errorCode = code;
    message.messages = {text};
    return message;
  }
  /// The answer with these messages in the catalogue.
  std::string Ask(const std::string& testID,
                  const std::vector<std::pair<std::string, TDiagnosticResultMessage>>& messages) {
    DiagsRunner& runner = Prepare(testID);
    TAccess::Messages(runner).insert(messages.begin(), messages.end());
    return runner.ImmediateResults(testID, m_host);
  }
};

TEST_F(CatalogueTest, PutsTheMessagesBeforeTheOldData) {
  m_world.AddRecord("r", "BRCM Link", "j", "Failed", "old");
  TDiagnosticResultMessage message = Message("failed", "0x05", "Link test failed.");
  message.actions = {{"1", "Check the cable."}};
  EXPECT_EQ(Ask("BRCM Link,d,e", {{"brcm link", message}}), "Fail");
  EXPECT_EQ(GetCopied("RecordData"), "0x05 : Link test failed.\n1. Check the cable.\nold");
  EXPECT_THAT(Logs(), ElementsAre(::testing::_, ::testing::_, "testName :brcm link"));
  EXPECT_THAT(Only({"set", "copy"}),
              ElementsAre(::testing::StartsWith("set root/cimv2:Test_Record.Id=\"r\" RecordData="),
                          "copy root/cimv2:Test_Record.Id=\"r\" host"));
}

TEST_F(CatalogueTest, AppendsEveryEntryOfTheTestAndStateInItsOrder) {
  m_world.AddRecord("r", "BRCM", "j", "Failed", "old");
  Ask("BRCM,d,e", {{"brcm", Message("failed", "1", "one")},
                   {"brcm", Message("ok", "2", "two")},
                   {"brcm", Message("failed", "1", "one")},
                   {"brc", Message("failed", "3", "three")},
                   {"brcmx", Message("failed", "4", "four")},
                   {"brcm", Message("failed on", "5", "five")},
                   {"brcm", Message("failed", "", "")}});
  EXPECT_EQ(GetCopied("RecordData"), "1 : one\n1 : one\n : \nold");
}

TEST_F(CatalogueTest, OneVendorsTestsShareOneKeyAndNormalisedStates) {
  const std::pair<const char*, const char*> rows[] = {
      {"Warning", "ok"}, {"OK", "ok"}, {"Aborted", "aborted"}, {"Incomplete", "failed"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.first);
    End();
    const std::string name = std::string("ZEP:") + row.first + ":diag service";
    m_world.AddRecord(row.first, name, "j", row.first, "old");
    Ask(name + ",d,e", {{"fusion-io:diag service", Message(row.second, "7", "seven")},
                        {"fusion-io:diag service", Message("incomplete", "8", "eight")}});
    EXPECT_EQ(GetCopied("RecordData"), "7 : seven\nold");
  }
}

TEST_F(CatalogueTest, TracesTheSharedKeyAndTheStateAsItWas) {
  m_world.AddRecord("r", "FIO:1:diag service", "j", "Warning", "old");
  EXPECT_EQ(Ask("FIO:1:diag service,d,e", {}), "Pass");
  EXPECT_THAT(Logs(),
              ElementsAre("Entering DiagsRunner::ImmediateResults, testID is: "
                          "FIO:1:diag service,d,e",
                          "testID in ImmediateResults:FIO:1:diag service,d,e",
                          "tempResult :Warning", "testName :fio:1:diag service",
                          "update test name for :fusion-io:diag service", "testStatus :warning"));
}

TEST_F(CatalogueTest, WithoutTheFlagNoMessageIsAdded) {
  m_world.AddRecord("r", "Quick", "j", "Failed", "old");
  Ask("Quick,d,e", {{"quick", Message("failed", "1", "one")}});
  EXPECT_EQ(GetCopied("RecordData"), "old");
  EXPECT_EQ(Count("set"), 0U);
}

class ResultsFaultTest : public ImmediateResultsTest,
                         public ::testing::WithParamInterface<const char*> {};

TEST_P(ResultsFaultTest, APlatformExceptionIsCaughtAndAnyOtherPassesOn) {
  m_world.AddRecord("r", "BRCM", "j", "OK", "old");
  DiagsRunner& runner = Prepare("BRCM,d,e");
  m_faults.When(GetParam(), EFault::kQELException, 1);
  EXPECT_EQ(runner.ImmediateResults("BRCM,d,e", m_host), kNoResults);
  EXPECT_EQ(Logs().back(), "DiagsRunner::ImmediateResults caught Exception");
  m_faults.When(GetParam(), EFault::kStdException, 1);
  EXPECT_THROW(runner.ImmediateResults("BRCM,d,e", m_host), std::runtime_error);
  m_faults.When(GetParam(), EFault::kInt, 1);
  EXPECT_THROW(runner.ImmediateResults("BRCM,d,e", m_host), int);
  EXPECT_EQ(runner.ImmediateResults("BRCM,d,e", m_host), "Pass");
}

INSTANTIATE_TEST_SUITE_P(Calls, ResultsFaultTest,
                         ::testing::Values("find root", "enumerate",
                                           "property root/cimv2:Test_Record.Id=\"r\" ServiceName",
                                           "property root/cimv2:Test_Record.Id=\"r\" InstanceID",
                                           "property root/cimv2:Test_Record.Id=\"r\" Completion",
                                           "property root/cimv2:Test_Record.Id=\"r\" RecordData",
                                           "set", "copy"));

}  // namespace
}  // namespace scripted
