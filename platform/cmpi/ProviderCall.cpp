// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/ProviderCall.h"

#include <exception>

#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/TCancelShield.h"
#include "platform/cmpi/TChildSignalWatch.h"
#include "platform/cmpi/TWantedProperties.h"
#include "platform/model/CIMStatus.h"

namespace NZEPQEL20::cmpi {

namespace {

/// Whether a number means the same in CMPI as among the CIM operations.
bool IsSharedCode(int code) {
  return (code > 0 && code < CMPI_RC_NO_MORE_ELEMENTS) ||
         code == CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED ||
         code == CMPI_RC_ERR_QUERY_FEATURE_NOT_SUPPORTED;
}

/// Calls of providers by way of providers that one thread may be in: a provider that asks for what
/// it is being asked for would use up the stack.
constexpr unsigned int kMaxDepth = 64;

thread_local unsigned int callDepth = 0;

/// Counts a call while it runs.
class TDepth {
 public:
  TDepth() { ++callDepth; }
  ~TDepth() { --callDepth; }
  TDepth(const TDepth&) = delete;
  TDepth& operator=(const TDepth&) = delete;
};

/// The text of a status that is not OK. `msg` may be uninitialised only when all is well.
std::string ReadMessage(const CMPIString* message) {
  try {
    return message == nullptr ? std::string() : ToUtf8(TBrokerString::From(message).GetText());
  } catch (const TBrokerFault&) {
    return {};
  }
}

/// Says that a provider threw, in its own `words` if it has any; `what()` may answer with NULL.
/// Without memory for all of it the message stays shorter.
void DescribeThrown(std::string& message, const char* words) noexcept {
  try {
    message = "the provider threw an exception";
    if (words != nullptr) message += std::string(": ") + ToUtf8(words);
  } catch (...) {
    return;
  }
}

void Run(TCallOutcome& outcome, const TProviderFunction& function, const CMPIContext* context,
         const CMPIResult* result) {
  try {
    const CMPIStatus status = function(context, result);
    outcome.code = status.rc;
    if (outcome.code != CMPI_RC_OK) outcome.message = ReadMessage(status.msg);
  } catch (const std::exception& failure) {
    outcome.code = CMPI_RC_ERR_FAILED;
    DescribeThrown(outcome.message, failure.what());
  } catch (...) {
    outcome.code = CMPI_RC_ERR_FAILED;
    DescribeThrown(outcome.message, nullptr);
  }
}

}  // namespace

std::string GetCodeName(int code) {
  return IsSharedCode(code) ? GetCIMStatusName(static_cast<unsigned int>(code))
                            : "CMPI status " + std::to_string(code);
}

TQELException TCallOutcome::ToException(const std::string& what) const {
  return TQELException(TQELStatusCode::kCIMError, what + ": " + message,
                       static_cast<unsigned int>(code));
}

TCallOutcome CallProvider(TBroker& broker, const TCallSite& site, TBrokerResult::EKind kind,
                          const TProviderFunction& function) {
  // The thread may be another provider's, come here by way of an upcall: this one is not to pay.
  const TCancelShield shield;
  TCallOutcome outcome;
  if (callDepth >= kMaxDepth) {
    outcome.code = CMPI_RC_ERR_FAILED;
    outcome.message = "providers call each other without end";
    return outcome;
  }
  const TDepth depth;
  const TWantedProperties none(nullptr);
  const std::shared_ptr<TBrokerResult> result = TBrokerResult::Open(kind);
  {
    const TCallFrame frame(broker);
    const TPassed<TBrokerContext> context(
        TBrokerContext::EntriesFor(site.nameSpace, site.parameters));
    const TChildSignalWatch watch(site.callee.library);
    const TCallRecord record(site.callee);
    Run(outcome, function, context.Get(), result.get());
  }
  outcome.content = result->Close();
  if (outcome.code == CMPI_RC_OK) return outcome;
  if (outcome.message.empty()) outcome.message = ToUtf8(outcome.content.error);
  if (outcome.message.empty()) outcome.message = GetCodeName(outcome.code);
  outcome.content = {};
  return outcome;
}

}  // namespace NZEPQEL20::cmpi
