// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <exception>
#include <string>

#include "platform/contract/Export.h"
#include "platform/contract/TQELStatusCode.h"

namespace NZEPQEL20 {

/// The one way in which the platform fails.
///
/// what() names the operation, the class or path it was about, and the reason in the words of
/// whoever refused: the dynamic linker, the provider, the server, the system.
class DIAGSPLATFORM_EXPORT TQELException : public std::exception {
 public:
  /// Stands for "no provider or server sent a status".
  static constexpr unsigned int kNoCIMStatus = 0;

  /// `cimStatus` is a DSP0200 status number (1 to 29, or a CMPI-internal one from 60 up), or
  /// kNoCIMStatus.
  TQELException(TQELStatusCode status, std::string what, unsigned int cimStatus = kNoCIMStatus);
  ~TQELException() override;
  TQELException(const TQELException&) = default;
  TQELException& operator=(const TQELException&) = default;

  const char* what() const noexcept override { return m_what.c_str(); }
  TQELStatusCode GetStatusCode() const noexcept { return m_status; }

  /// The number that the provider or server answered with, or kNoCIMStatus.
  unsigned int GetCIMStatus() const noexcept { return m_cimStatus; }

 private:
  TQELStatusCode m_status;
  unsigned int m_cimStatus;
  std::string m_what;
};

}  // namespace NZEPQEL20
