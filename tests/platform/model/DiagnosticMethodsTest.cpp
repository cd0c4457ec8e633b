// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/TRootObject.h"
#include "platform/model/DiagnosticMethods.h"
#include "tests/platform/model/TModelTest.h"

namespace NZEPQEL20 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr unsigned int kNoStatus = TQELException::kNoCIMStatus;

class TWarningLog : public ILogger {
 public:
  void Log(EQELLogSeverity severity, const std::string& text) override {
    if (severity == kWarning) lines.push_back(text);
  }
  std::vector<std::string> lines;
};

/// What one method does: it fails with `failure`, else answers.
struct TReaction {
  TKeyMap out;
  TCIMValue result = TCIMValue::UInt32(0);
  std::unique_ptr<TQELException> failure = nullptr;
};

/// A test, T_Test.ID="t", whose two methods react as they are told.
class DiagnosticMethodsTest : public TModelTest {
 protected:
  DiagnosticMethodsTest() {
    TCIMMethodDeclaration older;
    older.name = "RunDiagnostic";
    older.valueMap = {"0", "1", "..", "0x1000"};
    older.values = {"No error", "Not Supported", "DMTF Reserved", "Job started"};
    TCIMMethodDeclaration newer;
    newer.name = "RunDiagnosticService";
    newer.valueMap = {"1", "6", "0x8000.."};
    newer.values = {"Not Supported", "Busy", "Vendor Specific"};
    TCIMClassDeclaration test;
    test.name = "T_Test";
    test.methods = {older, newer};
    m_operations->AddClass("root/cimv2", test);
    m_operations->AddInstance("root/cimv2", MakeInstance("T_Test", "t"));
    m_operations->SetMethod(
        [this](const TCIMReference&, const std::string& method, TKeyMap& parameters) {
          const TReaction& reaction = m_reactions[method];
          if (reaction.failure) throw TQELException(*reaction.failure);
          parameters = reaction.out;
          return reaction.result;
        });
    TRootObject::SetCoreLogger(&m_log);
  }
  ~DiagnosticMethodsTest() override { TRootObject::SetCoreLogger(nullptr); }

  void Answer(const std::string& method, const TCIMValue& result, const TKeyMap& out = {}) {
    m_reactions[method] = {out, result, nullptr};
  }
  void Fail(const std::string& method, unsigned int status,
            unsigned int code = TQELStatusCode::kCIMError) {
    m_reactions[method].failure =
        std::make_unique<TQELException>(code, method + " is refused", status);
  }
  /// The return value; `m_parameters` are what the call left.
  TCIMValue Invoke(const std::string& method = "RunDiagnostic") {
    m_parameters = {{"ManagedElement", TCIMValue(Device())}};
    const auto test = m_ns->GetInstance(TCIMReference("", "T_Test", {{"ID", "t"}}), {});
    return test->InvokeMethod(method, m_parameters, {});
  }
  std::string WhatInvokeThrows(const std::string& method) {
    return WhatIsThrownBy([&] { Invoke(method); });
  }
  std::vector<std::string> Remarks() { return m_context->GetRemarks().Get(); }

  static TCIMReference Device() { return {"root/cimv2", "T_Device", {{"ID", "a"}}}; }
  static TCIMReference Job() { return {"root/cimv2", "T_Job", {{"InstanceID", "j:1"}}}; }

  std::map<std::string, TReaction> m_reactions;
  TKeyMap m_parameters;
  TWarningLog m_log;
};

struct TFailureRow {
  const char* name;
  const char* method;
  unsigned int code;
  unsigned int status;
  bool isTolerated;
};
void PrintTo(const TFailureRow& row, std::ostream* out) {
  *out << row.name;
}

class DiagnosticFailureTest : public DiagnosticMethodsTest,
                              public testing::WithParamInterface<TFailureRow> {};

TEST_P(DiagnosticFailureTest, IsAnAnswerOnlyWhereTheOlderMethodIsMissing) {
  const TFailureRow& row = GetParam();
  Fail(row.method, row.status, row.code);
  if (row.isTolerated) {
    EXPECT_EQ(Invoke(row.method), TCIMValue::UInt32(1));
    EXPECT_THAT(m_parameters, IsEmpty());
    EXPECT_THAT(m_log.lines, ElementsAre(std::string(row.method) +
                                         " is refused; taken as the answer 1 (Not Supported)"));
  } else {
    EXPECT_EQ(WhatInvokeThrows(row.method), std::string(row.method) + " is refused");
    EXPECT_EQ(m_parameters, (TKeyMap{{"ManagedElement", TCIMValue(Device())}}));
    EXPECT_THAT(m_log.lines, IsEmpty());
  }
  EXPECT_THAT(Remarks(), IsEmpty());
}

constexpr unsigned int kCIM = TQELStatusCode::kCIMError;

INSTANTIATE_TEST_SUITE_P(
    All, DiagnosticFailureTest,
    testing::Values(TFailureRow{"NotSupported", "RunDiagnostic", kCIM, 7, true},
                    TFailureRow{"MethodNotAvailable", "RunDiagnostic", kCIM, 16, true},
                    TFailureRow{"MethodNotFound", "RunDiagnostic", kCIM, 17, true},
                    TFailureRow{"InAnotherCase", "rundiagnostic", kCIM, 17, true},
                    TFailureRow{"Failed", "RunDiagnostic", kCIM, 1, false},
                    TFailureRow{"AccessDenied", "RunDiagnostic", kCIM, 2, false},
                    TFailureRow{"InvalidParameter", "RunDiagnostic", kCIM, 4, false},
                    TFailureRow{"NotFound", "RunDiagnostic", kCIM, 6, false},
                    TFailureRow{"Unexpected", "RunDiagnostic", kCIM, 18, false},
                    TFailureRow{"ConnectionLost", "RunDiagnostic", TQELStatusCode::kConnection,
                                kNoStatus, false},
                    TFailureRow{"OurOwnNotSupported", "RunDiagnostic",
                                TQELStatusCode::kNotSupported, kNoStatus, false},
                    TFailureRow{"ConnectionLostAfterAStatus", "RunDiagnostic",
                                TQELStatusCode::kConnection, 17, false},
                    TFailureRow{"NewerMethod", "RunDiagnosticService", kCIM, 17, false},
                    TFailureRow{"NewerMethodNotSupported", "RunDiagnosticService", kCIM, 7, false},
                    TFailureRow{"AnotherMethod", "RequestStateChange", kCIM, 17, false},
                    TFailureRow{"ALongerName", "RunDiagnosticX", kCIM, 17, false}),
    [](const auto& row) { return std::string(row.param.name); });

std::shared_ptr<const TCIMInstanceData> MakeJob(TCIMReference path, const char* id) {
  TCIMInstanceData job;
  job.path = std::move(path);
  if (id != nullptr) job.Set("InstanceID", id);
  return std::make_shared<const TCIMInstanceData>(job);
}

TCIMValue EmbeddedJob(const TCIMReference& path, const char* id) {
  return TCIMValue::Instance(MakeJob(path, id));
}

const TCIMReference& SomeJob() {
  static const TCIMReference kJob("root/cimv2", "T_Job", {{"InstanceID", "j:1"}});
  return kJob;
}

const TCIMValue& JobValue() {
  static const TCIMValue kValue(SomeJob());
  return kValue;
}

const TCIMValue& OtherReference() {
  static const TCIMValue kValue(TCIMReference("root/cimv2", "T_Far", {{"ID", "f"}}));
  return kValue;
}

struct TOutRow {
  const char* name;
  TKeyMap out;
  TKeyMap expected;
};
void PrintTo(const TOutRow& row, std::ostream* out) {
  *out << row.name;
}

class DiagnosticOutTest : public DiagnosticMethodsTest,
                          public testing::WithParamInterface<TOutRow> {};

TEST_P(DiagnosticOutTest, IsTheJobAlone) {
  for (const char* method : {"RunDiagnostic", "RunDiagnosticService"}) {
    Answer(method, TCIMValue::UInt32(0), GetParam().out);
    EXPECT_EQ(Invoke(method), TCIMValue::UInt32(0));
    EXPECT_EQ(m_parameters, GetParam().expected) << method;
  }
  EXPECT_THAT(m_log.lines, IsEmpty());
  EXPECT_THAT(Remarks(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, DiagnosticOutTest,
    testing::Values(
        TOutRow{"AJob", {{"Job", JobValue()}}, {{"Job", JobValue()}}}, TOutRow{"Nothing", {}, {}},
        TOutRow{"ANullReference", {{"Job", TCIMValue::Null(ECIMType::kReference)}}, {}},
        TOutRow{"AnUntypedNull", {{"Job", TCIMValue()}}, {}},
        TOutRow{"AnEmptyReference", {{"Job", TCIMValue(TCIMReference())}}, {}},
        TOutRow{"ANullText", {{"Job", TCIMValue(static_cast<const char*>(nullptr))}}, {}},
        TOutRow{"ATextInFront",
                {{"DetailText", "started ok"}, {"Job", JobValue()}},
                {{"Job", JobValue()}}},
        TOutRow{"AReferenceInFront",
                {{"Element", OtherReference()}, {"Job", JobValue()}},
                {{"Job", JobValue()}}},
        TOutRow{
            "AnotherCase", {{"A", OtherReference()}, {"JOB", JobValue()}}, {{"JOB", JobValue()}}},
        TOutRow{"TheOnlyReference",
                {{"A", "text"}, {"ConcreteJob", JobValue()}, {"Z", TCIMValue::UInt32(1)}},
                {{"ConcreteJob", JobValue()}}},
        TOutRow{"TheOnlyReferenceBesideANullJob",
                {{"Job", TCIMValue()}, {"Task", JobValue()}},
                {{"Task", JobValue()}}},
        TOutRow{"TwoReferences",
                {{"A", OtherReference()}, {"B", JobValue()}},
                {{"A", OtherReference()}, {"B", JobValue()}}},
        TOutRow{"NoReference", {{"DetailText", "busy"}}, {{"DetailText", "busy"}}},
        TOutRow{"AnInParameterThatComesBack", {{"managedelement", OtherReference()}}, {}},
        TOutRow{"AnInParameterBesideAReference",
                {{"ManagedElement", OtherReference()}, {"Task", JobValue()}},
                {{"Task", JobValue()}}},
        TOutRow{"AText", {{"Job", "root/cimv2:T_Job.InstanceID=\"j:1\""}}, {{"Job", JobValue()}}},
        TOutRow{
            "ATextWithoutNamespace", {{"Job", "T_Job.InstanceID=\"j:1\""}}, {{"Job", JobValue()}}},
        TOutRow{
            "AnInstanceWithKeys", {{"Job", EmbeddedJob(SomeJob(), "x")}}, {{"Job", JobValue()}}},
        TOutRow{"AnInstanceWithoutKeys",
                {{"Job", EmbeddedJob(TCIMReference("", "T_Job"), "j:1")}},
                {{"Job", JobValue()}}}),
    [](const auto& row) { return std::string(row.param.name); });

struct TBadJobRow {
  const char* name;
  TCIMValue job;
  const char* reason;
};
void PrintTo(const TBadJobRow& row, std::ostream* out) {
  *out << row.name;
}

class DiagnosticBadJobTest : public DiagnosticMethodsTest,
                             public testing::WithParamInterface<TBadJobRow> {};

TEST_P(DiagnosticBadJobTest, IsLeftAsItIsWithTheReasonInOneLine) {
  const TBadJobRow& row = GetParam();
  Answer("RunDiagnostic", TCIMValue::UInt32(4096), {{"A", OtherReference()}, {"Job", row.job}});
  Invoke();
  EXPECT_EQ(m_parameters, (TKeyMap{{"Job", row.job}}));
  ASSERT_EQ(m_log.lines.size(), 1U);
  EXPECT_THAT(m_log.lines[0], HasSubstr("RunDiagnostic of T_Test: its job cannot be followed: "));
  EXPECT_THAT(m_log.lines[0], HasSubstr(row.reason));
  EXPECT_EQ(Remarks(), m_log.lines);
}

INSTANTIATE_TEST_SUITE_P(
    All, DiagnosticBadJobTest,
    testing::Values(
        TBadJobRow{"NoPath", "started ok", "object path 'started ok': expected"},
        TBadJobRow{"EmptyText", "", "expected a class name"},
        TBadJobRow{"AClass", "T_Job", "the path has no keys"},
        TBadJobRow{"CutOff", "T_Job.InstanceID=\"j", "closing quote"},
        TBadJobRow{"InstanceOfNothing", EmbeddedJob(TCIMReference("", "T_Job"), nullptr),
                   "instance of T_Job without keys and InstanceID"},
        TBadJobRow{"ANumber", TCIMValue::UInt32(7), "uint32"},
        TBadJobRow{"AnArray", TCIMValue::Array(ECIMType::kReference, {JobValue()}), "reference[]"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(DiagnosticMethodsTest, OtherMethodsKeepWhatTheyGave) {
  const TKeyMap out = {{"A", OtherReference()},
                       {"Job", "started ok"},
                       {"ManagedElement", TCIMValue(Device())},
                       {"Null", TCIMValue()}};
  Answer("RequestStateChange", TCIMValue::UInt32(6), out);
  EXPECT_EQ(Invoke("RequestStateChange"), TCIMValue::UInt32(6));
  EXPECT_EQ(m_parameters, out);
  EXPECT_THAT(m_log.lines, IsEmpty());
  EXPECT_THAT(Remarks(), IsEmpty());
}

TEST_F(DiagnosticMethodsTest, AJobThatWasATextLeadsToItsClass) {
  m_operations->AddInstance("root/cimv2", MakeInstance("T_Device", "x"));
  Answer("RunDiagnostic", TCIMValue::UInt32(0), {{"Job", "T_Device.ID=\"x\""}});
  Invoke();
  const auto job = static_cast<TCIMReference>(m_parameters.at("Job"));
  EXPECT_EQ(job.GetClass()->GetName({}), "T_Device");
}

struct TNumberRow {
  const char* name;
  TCIMValue result;
  const char* line;  ///< Null for none.
};
void PrintTo(const TNumberRow& row, std::ostream* out) {
  *out << row.name;
}

class DiagnosticNumberTest : public DiagnosticMethodsTest,
                             public testing::WithParamInterface<TNumberRow> {};

TEST_P(DiagnosticNumberTest, IsToldWithItsWordWhenThereIsNoJob) {
  Answer("RunDiagnosticService", GetParam().result);
  EXPECT_EQ(Invoke("RunDiagnosticService"), GetParam().result);
  std::vector<std::string> expected;
  if (GetParam().line != nullptr) expected.emplace_back(GetParam().line);
  EXPECT_EQ(m_log.lines, expected);
  EXPECT_EQ(Remarks(), expected);
  Answer("RunDiagnosticService", GetParam().result, {{"Job", JobValue()}});
  Invoke("RunDiagnosticService");
  EXPECT_EQ(m_log.lines, expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, DiagnosticNumberTest,
    testing::Values(TNumberRow{"Success", TCIMValue::UInt32(0), nullptr},
                    TNumberRow{"Started", TCIMValue::UInt32(4096), nullptr},
                    TNumberRow{"SuccessAsText", "0", nullptr},
                    TNumberRow{"None", TCIMValue(), nullptr},
                    TNumberRow{"Busy", TCIMValue::UInt32(6),
                               "RunDiagnosticService of T_Test answers 6 (Busy)"},
                    TNumberRow{"OfTheVendor", TCIMValue::UInt32(0x8001),
                               "RunDiagnosticService of T_Test answers 32769 (Vendor Specific)"},
                    TNumberRow{"WithoutAWord", TCIMValue::UInt32(77),
                               "RunDiagnosticService of T_Test answers 77"},
                    TNumberRow{"Negative", TCIMValue::Signed(ECIMType::kSInt32, -1),
                               "RunDiagnosticService of T_Test answers -1"},
                    TNumberRow{"AsText", "6", "RunDiagnosticService of T_Test answers 6 (Busy)"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(DiagnosticMethodsTest, ANumberOfAClassThatIsUnknownStandsAlone) {
  m_operations->AddInstance("root/cimv2", MakeInstance("T_Undeclared", "u"));
  Answer("RunDiagnosticService", TCIMValue::UInt32(6));
  const auto test = m_ns->GetInstance(TCIMReference("", "T_Undeclared", {{"ID", "u"}}), {});
  test->InvokeMethod("RunDiagnosticService", m_parameters, {});
  EXPECT_THAT(Remarks(), ElementsAre("RunDiagnosticService of T_Undeclared answers 6"));
}

TEST_F(DiagnosticMethodsTest, TheOlderMethodsAnswerIsNoRemarkWhenTheNewerStartsTheTest) {
  Answer("RunDiagnostic", TCIMValue::UInt32(1));
  Answer("RunDiagnosticService", TCIMValue::UInt32(0), {{"Job", JobValue()}});
  Invoke("RunDiagnostic");
  Invoke("RunDiagnosticService");
  EXPECT_THAT(m_log.lines, ElementsAre("RunDiagnostic of T_Test answers 1 (Not Supported)"));
  EXPECT_THAT(Remarks(), IsEmpty());
  // Nothing of it comes back with a later failure.
  Fail("RunDiagnosticService", 1);
  WhatInvokeThrows("RunDiagnosticService");
  EXPECT_THAT(Remarks(), IsEmpty());
}

TEST_F(DiagnosticMethodsTest, TheOlderMethodsAnswerIsARemarkWhenTheNewerIsMissing) {
  Answer("RunDiagnostic", TCIMValue::UInt32(6));
  Fail("RunDiagnosticService", 17);
  Invoke("RunDiagnostic");
  EXPECT_THAT(Remarks(), IsEmpty());
  EXPECT_EQ(WhatInvokeThrows("RunDiagnosticService"), "RunDiagnosticService is refused");
  EXPECT_THAT(Remarks(), ElementsAre("RunDiagnostic of T_Test answers 6 (DMTF Reserved)"));
}

TEST_F(DiagnosticMethodsTest, TheRefusalOfTheOlderMethodIsARemarkWhenTheNewerFailsOrStartsNothing) {
  Fail("RunDiagnostic", 7);
  Answer("RunDiagnosticService", TCIMValue::UInt32(0));
  Invoke("RunDiagnostic");
  Invoke("RunDiagnosticService");
  EXPECT_THAT(Remarks(), ElementsAre("RunDiagnostic is refused"));
}

TEST_F(DiagnosticMethodsTest, TheNewerMethodsAnswerIsTheOneThatCounts) {
  Fail("RunDiagnostic", 17);
  Answer("RunDiagnosticService", TCIMValue::UInt32(6));
  Invoke("RunDiagnostic");
  Invoke("RunDiagnosticService");
  EXPECT_THAT(Remarks(), ElementsAre("RunDiagnosticService of T_Test answers 6 (Busy)"));
}

TEST_F(DiagnosticMethodsTest, AnAnswerWithATextAndNoJobIsARemarkAtOnce) {
  Answer("RunDiagnostic", TCIMValue::UInt32(6), {{"DetailText", "busy"}});
  Invoke("RunDiagnostic");
  EXPECT_THAT(Remarks(), ElementsAre("RunDiagnostic of T_Test answers 6 (DMTF Reserved)"));
}

TEST_F(DiagnosticMethodsTest, AnEndlessAnswerIsCut) {
  Answer("RunDiagnosticService", std::string(5000, 'x'));
  Invoke("RunDiagnosticService");
  EXPECT_THAT(Remarks(),
              ElementsAre("RunDiagnosticService of T_Test answers " + std::string(40, 'x')));
}

}  // namespace
}  // namespace NZEPQEL20
