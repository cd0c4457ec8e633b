// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/Export.h"

namespace NZEPQEL20 {

/// Kind of a platform failure: a small number that a caller can act on.
///
/// These numbers are the platform's own. The number that a provider or a CIM server sent (DSP0200)
/// travels beside it, in TQELException::GetCIMStatus().
class DIAGSPLATFORM_EXPORT TQELStatusCode {
 public:
  enum ECode : unsigned int {
    kOk = 0,
    kFailed = 1,           ///< No finer reason is known.
    kNotSupported = 2,     ///< The callee cannot do this at all.
    kInvalidArgument = 3,  ///< The caller's input is unusable.
    kNoMemory = 4,         ///< A buffer could not be allocated.
    kNotFound = 5,         ///< The class, instance, file or context does not exist.
    kTypeMismatch = 6,     ///< A value cannot be held by the type asked for.
    kAccessDenied = 7,     ///< The system or the provider refuses this caller.
    kCIMError = 8,         ///< A provider or server answered with a CIM status; see GetCIMStatus().
    kConnection = 9,       ///< A server could not be reached or broke off.
  };

  TQELStatusCode(unsigned int code) : m_code(code) {}  // NOLINT(google-explicit-constructor)

  unsigned int GetValue() const { return m_code; }

  /// The code as a few English words, "unknown status N" for a number that is none of ECode.
  std::string TranslateStatusCode() const;

  friend bool operator==(const TQELStatusCode& left, const TQELStatusCode& right) {
    return left.m_code == right.m_code;
  }

 private:
  unsigned int m_code;
};

}  // namespace NZEPQEL20
