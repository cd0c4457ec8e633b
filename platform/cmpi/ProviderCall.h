// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "platform/cmpi/TBroker.h"
#include "platform/cmpi/TBrokerResult.h"
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

using TProviderFunction = std::function<CMPIStatus(const CMPIContext*, const CMPIResult*)>;

/// Calls into a provider: gives it a context for `nameSpace`, a result for `kind`, and a scope for
/// the objects that it makes. What the provider throws becomes CMPI_RC_ERR_FAILED, and so does a
/// call from too deep within others.
TCallOutcome CallProvider(TBroker& broker, const std::string& nameSpace, TBrokerResult::EKind kind,
                          const TProviderFunction& function);

/// The CIM name of a return code; a number that has none is written out.
std::string GetCodeName(int code);

}  // namespace NZEPQEL20::cmpi
