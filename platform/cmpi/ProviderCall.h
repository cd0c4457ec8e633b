// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "platform/cmpi/TBroker.h"
#include "platform/cmpi/TBrokerResult.h"
#include "platform/cmpi/TCallRecord.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cmpi {

/// What came of one call of a provider function.
struct TCallOutcome {
  int code = CMPI_RC_OK;
  std::string message;  ///< The provider's words, or the name of the code. Empty when all is well.
  TBrokerResult::TContent content;

  /// The failure as an exception: `what` says who failed at what.
  TQELException ToException(const std::string& what) const;
};

/// What a provider learns about a call besides its arguments.
struct TCallSite {
  std::string nameSpace;
  std::string parameters = {};  ///< Those of the registration; empty when it has none.
  TCallee callee = {};          ///< Who is told to be at work meanwhile; not the provider's.
};

using TProviderFunction = std::function<CMPIStatus(const CMPIContext*, const CMPIResult*)>;

/// Calls into a provider: gives it a context for `site`, a result for `kind`, and a scope for the
/// objects that it makes. What the provider throws becomes CMPI_RC_ERR_FAILED, and so does a
/// call from too deep within others. The thread is not cancelled meanwhile.
TCallOutcome CallProvider(TBroker& broker, const TCallSite& site, TBrokerResult::EKind kind,
                          const TProviderFunction& function);

/// The status of a function that a provider's table does not have.
inline CMPIStatus NoSuchFunction() {
  return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
}

/// The CIM name of a return code; a number that has none is written out.
std::string GetCodeName(int code);

}  // namespace NZEPQEL20::cmpi
