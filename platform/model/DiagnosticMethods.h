// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/TCIMReference.h"
#include "platform/contract/TQELException.h"
#include "platform/model/TModelContext.h"

namespace NZEPQEL20 {

/// Whether `method` starts a diagnostic test: "RunDiagnostic", or "RunDiagnosticService", which has
/// taken its place in newer schemas.
bool StartsDiagnostic(const std::string& method);

/// Whether `failure` of `method` says no more than that the object does not have "RunDiagnostic":
/// CIM status 7, 16 or 17 of the one who was asked. Nothing has been started then.
bool IsWithoutRunDiagnostic(const std::string& method, const TQELException& failure);

/// The path that `job`, an out-parameter of such a method, stands for: a reference itself, the text
/// of a path with keys, or an embedded instance with keys in its path or an "InstanceID".
/// Errors: TQELException with the reason for a value that stands for none.
TCIMReference GetJobReference(const TCIMValue& job);

/// Invokes a method that starts a test on `test`, and evens out the ways in which objects answer
/// it. `parameters` and the result are as for ICIMOperations::InvokeMethod(), but:
/// an object without "RunDiagnostic" answers it with 1 (not supported); out-parameters that are
/// NULL, or repeat an in-parameter, are none; a "Job" is a reference where it stands for one; of
/// several out-parameters only "Job" is left, without it the only reference.
///
/// An answer that tells why no test runs is logged, and is among the remarks of `context`: that of
/// "RunDiagnostic" only when "RunDiagnosticService" does not start the test and does not say why.
/// Errors: what the operations throw.
TCIMValue StartDiagnostic(TModelContext& context, const TCIMReference& test,
                          const std::string& method, TKeyMap& parameters);

}  // namespace NZEPQEL20
