// SPDX-License-Identifier: Apache-2.0
#include "platform/model/DiagnosticMethods.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/model/CoreLog.h"
#include "platform/model/ValueText.h"

namespace NZEPQEL20 {
namespace {

constexpr char kOlderMethod[] = "RunDiagnostic";
constexpr char kNewerMethod[] = "RunDiagnosticService";
constexpr char kJob[] = "Job";
// What both methods return for "not supported".
constexpr std::uint32_t kNotSupported = 1;
// Bytes of an answer that is no number, in a message.
constexpr std::size_t kShownAnswer = 40;

void Warn(const std::string& text) {
  LogToCore(ILogger::kWarning, text);
}

bool IsReference(const TCIMValue& value) {
  return value.GetType() == ECIMType::kReference && !value.IsArray() && !value.IsNull();
}

// A reference may be there and lead nowhere.
bool IsNothing(const TCIMValue& value) {
  return value.IsNull() || (IsReference(value) && static_cast<TCIMReference>(value).IsNull());
}

bool IsJob(const TKeyMap::value_type& parameter) {
  return IsSameName(parameter.first, kJob);
}

// Completed, or a job has been started (DSP1002).
bool IsGood(const TCIMValue& result) {
  const std::string number = result.ToString(10);
  return number == "0" || number == "4096";
}

// What came for the job beside what says nothing about it: NULL, and in-parameters that come back.
TKeyMap DropEmpty(const TKeyMap& asked, const TKeyMap& came) {
  TKeyMap left;
  for (const auto& parameter : came) {
    const bool isEcho = std::any_of(asked.begin(), asked.end(), [&](const auto& in) {
      return !IsJob(in) && IsSameName(in.first, parameter.first);
    });
    if (!isEcho && !IsNothing(parameter.second)) left.insert(parameter);
  }
  return left;
}

// One start of a test by one of the two methods.
class TStart {
 public:
  TStart(TModelContext& context, const TCIMReference& test, const std::string& method)
      : m_context(context),
        m_test(test),
        m_method(method),
        m_object(test.GetPath()),
        m_isNewer(IsSameName(method, kNewerMethod)) {}

  TCIMValue Invoke(TKeyMap& parameters) {
    TKeyMap came = parameters;
    TCIMValue result;
    try {
      result = m_context.GetOperations().InvokeMethod(m_test, m_method, came);
    } catch (const TQELException& failure) {
      TakeFailure(failure);
      parameters.clear();
      return TCIMValue::UInt32(kNotSupported);
    }
    parameters = ChooseJob(DropEmpty(parameters, came));
    const bool hasJob = !parameters.empty() && IsReference(parameters.begin()->second);
    hasJob ? m_context.GetRemarks().Forget(m_object) : NoteAnswer(result, parameters.empty());
    return result;
  }

 private:
  // Comes back only from the one that stands for an answer.
  void TakeFailure(const TQELException& failure) {
    if (m_isNewer) m_context.GetRemarks().Release(m_object);
    if (!IsWithoutRunDiagnostic(m_method, failure)) throw TQELException(failure);
    Warn(std::string(failure.what()) + "; taken as the answer 1 (Not Supported)");
    m_context.GetRemarks().Hold(m_object, failure.what());
  }

  TKeyMap ChooseJob(TKeyMap came) {
    const auto job = std::find_if(came.begin(), came.end(), IsJob);
    if (job != came.end()) return {{job->first, ReadJob(job->second)}};
    const auto isReference = [](const auto& parameter) { return IsReference(parameter.second); };
    if (std::count_if(came.begin(), came.end(), isReference) != 1) return came;
    return {*std::find_if(came.begin(), came.end(), isReference)};
  }

  // Left as it is when it stands for nothing: another start must not follow one that may go on.
  TCIMValue ReadJob(const TCIMValue& job) {
    try {
      return TCIMValue(GetJobReference(job));
    } catch (const TQELException& failure) {
      const std::string text = Describe() + ": its job cannot be followed: " + failure.what();
      Warn(text);
      m_context.GetRemarks().Add(text);
      return job;
    }
  }

  void NoteAnswer(const TCIMValue& result, bool isOtherMethodNext) {
    TRemarks& remarks = m_context.GetRemarks();
    if (result.IsNull() || IsGood(result)) {
      if (m_isNewer) remarks.Release(m_object);
      return;
    }
    const std::string text = Describe() + " answers " + GetNumberAndWord(result);
    Warn(text);
    if (!m_isNewer && isOtherMethodNext) {
      remarks.Hold(m_object, text);
      return;
    }
    remarks.Forget(m_object);
    remarks.Add(text);
  }

  std::string Describe() const { return m_method + " of " + m_test.GetClassName(); }

  std::string GetNumberAndWord(const TCIMValue& result) const {
    const std::string number = result.ToString(10).substr(0, kShownAnswer);
    const auto declaration =
        m_context.FindDeclaration(m_test.GetNamespaceName(), m_test.GetClassName());
    const TCIMMethodDeclaration* const declared =
        declaration ? declaration->FindMethod(m_method) : nullptr;
    const std::string word = declared != nullptr ? GetReadableText(*declared, result) : number;
    return word == result.ToString(10) ? number : number + " (" + word + ")";
  }

  TModelContext& m_context;
  const TCIMReference& m_test;
  const std::string& m_method;
  const std::string m_object;
  const bool m_isNewer;
};

TCIMReference ParseJob(const std::string& text) {
  TCIMReference path = TCIMReference::Parse(text);
  if (path.GetKeys().empty()) {
    throw TQELException(TQELStatusCode::kInvalidArgument,
                        "the path has no keys, so it names a class and no instance");
  }
  return path;
}

TCIMReference GetPathOf(const TCIMInstanceData& job) {
  TCIMReference path = job.path;
  if (!path.GetKeys().empty()) return path;
  // The one key of a job, whatever its class.
  const TCIMPropertyData* const id = job.Find("InstanceID");
  if (id == nullptr || id->value.IsNull()) {
    throw TQELException(TQELStatusCode::kInvalidArgument,
                        "instance of " + path.GetClassName() + " without keys and InstanceID");
  }
  path.SetKey(id->name, id->value);
  return path;
}

}  // namespace

bool StartsDiagnostic(const std::string& method) {
  return IsSameName(method, kOlderMethod) || IsSameName(method, kNewerMethod);
}

bool IsWithoutRunDiagnostic(const std::string& method, const TQELException& failure) {
  // DSP0200: not supported, method not available, method not found.
  static constexpr unsigned int kMissing[] = {7, 16, 17};
  return IsSameName(method, kOlderMethod) &&
         failure.GetStatusCode() == TQELStatusCode(TQELStatusCode::kCIMError) &&
         std::find(std::begin(kMissing), std::end(kMissing), failure.GetCIMStatus()) !=
             std::end(kMissing);
}

TCIMReference GetJobReference(const TCIMValue& job) {
  const bool isScalar = !job.IsArray() && !job.IsNull();
  if (isScalar && job.GetType() == ECIMType::kString) {
    return ParseJob(static_cast<std::string>(job));
  }
  if (isScalar && job.GetType() == ECIMType::kInstance) return GetPathOf(*job.ToInstance());
  return static_cast<TCIMReference>(job);
}

TCIMValue StartDiagnostic(TModelContext& context, const TCIMReference& test,
                          const std::string& method, TKeyMap& parameters) {
  return TStart(context, test, method).Invoke(parameters);
}

}  // namespace NZEPQEL20
