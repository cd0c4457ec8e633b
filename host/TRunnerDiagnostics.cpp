// SPDX-License-Identifier: Apache-2.0
#include "host/TRunnerDiagnostics.h"

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/TAddToVectorCallback.h"
#include "platform/contract/TQELException.h"
#include "platform/contract/TQELStatusCode.h"

namespace host {
namespace {

using NZEPQEL20::ICIMInstance;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TQELException;
using NZEPQEL20::TQELStatusCode;

// Where what a provider library writes to standard output goes, which is the results' alone.
constexpr EOutputTarget kWords = EOutputTarget::kStandardError;

std::string GetText(ICIMInstance& instance, const char* name) {
  const boost::shared_ptr<NZEPQEL20::ICIMProperty> property = instance.GetProperty(name, {});
  return property ? property->GetValueText() : std::string();
}

// Whether the failure to find a class says that it does not exist (DSP0200: CIM_ERR_INVALID_CLASS,
// or CIM_ERR_NOT_FOUND, which servers answer a request for a declaration with).
bool IsUnknownClass(const TQELException& e) {
  constexpr unsigned int kInvalidClass = 5;
  constexpr unsigned int kNotFound = 6;
  return e.GetCIMStatus() == kInvalidClass || e.GetCIMStatus() == kNotFound ||
         e.GetStatusCode() == TQELStatusCode::kNotFound;
}

}  // namespace

TRunnerDiagnostics::TRunnerDiagnostics(NZEPQEL20::TPlatform& platform, EOutputTarget progress)
    : m_platform(platform),
      m_progress(progress),
      m_runner(DiagsRunner::GetDiagsRunner(platform.GetNamespace())) {}

TRunnerDiagnostics::~TRunnerDiagnostics() {
  DiagsRunner::FreeDiagsRunner();
}

std::string TRunnerDiagnostics::EnumerateTests() {
  const TOutputRedirect redirect(kWords);
  return m_runner->EnumerateDiagTests("");
}

std::vector<NZEPQEL20::TUnofferedTest> TRunnerDiagnostics::GetUnofferedTests() {
  const TOutputRedirect redirect(kWords);
  return m_platform.GetUnofferedTests();
}

NZEPQEL20::TTestPlaces TRunnerDiagnostics::GetTestPlaces() {
  return m_platform.GetTestPlaces();
}

std::vector<std::string> TRunnerDiagnostics::GetProblems() {
  return m_platform.GetProblems();
}

std::string TRunnerDiagnostics::TakeServerFailure() {
  return m_platform.TakeServerFailure();
}

TRunResult TRunnerDiagnostics::Run(const std::string& id, const std::string& label) {
  const TOutputRedirect redirect(m_progress);
  boost::shared_ptr<NZEPQEL20::ICIMNamespace> store = m_platform.GetRepository();
  m_platform.TakeRecords();
  TRunResult result;
  result.answer = m_runner->Execute(id, label, store);
  const auto records = m_platform.TakeRecords();
  if (!records.empty() && records.back()) result.record = ReadRecord(*records.back());
  return result;
}

std::string TRunnerDiagnostics::Inspect(const std::string& className) {
  const TOutputRedirect redirect(kWords);
  return m_runner->EI(className);
}

std::optional<std::vector<TInstanceText>> TRunnerDiagnostics::GetInstances(
    const std::string& className) {
  const TOutputRedirect redirect(kWords);
  boost::shared_ptr<NZEPQEL20::ICIMClass> type;
  try {
    type = m_platform.GetNamespace()->FindClass(className, {});
  } catch (const TQELException& e) {
    if (!IsUnknownClass(e)) throw;
  }
  if (!type) return std::nullopt;
  std::vector<boost::shared_ptr<ICIMInstance>> found;
  type->EnumerateInstances(NZEPQEL20::TAddToVectorCallback(found), 1, {});
  std::vector<TInstanceText> instances;
  for (const auto& instance : found) {
    if (instance) instances.push_back(ReadInstance(*instance));
  }
  return instances;
}

TRecordText ReadRecord(ICIMInstance& record) {
  TRecordText text;
  text.path = record.GetObjectPath({}).GetPath();
  text.completionState = GetText(record, "CompletionState");
  text.data = GetText(record, "RecordData");
  return text;
}

TInstanceText ReadInstance(ICIMInstance& instance) {
  TInstanceText text;
  text.path = instance.GetObjectPath({}).GetPath();
  for (const std::string& name : instance.GetPropertyNames({})) {
    const boost::shared_ptr<NZEPQEL20::ICIMProperty> property = instance.GetProperty(name, {});
    if (!property) continue;
    const TCIMValue value = property->GetValue({});
    if (value.IsNull()) continue;
    TPropertyText shown{name, value.IsArray(), {}};
    if (!value.IsArray()) {
      shown.values.push_back(property->GetValueText());
    } else {
      for (const TCIMValue& element : static_cast<TCIMValue::TArray>(value)) {
        shown.values.push_back(element.ToString(10));
      }
    }
    text.properties.push_back(std::move(shown));
  }
  return text;
}

}  // namespace host
