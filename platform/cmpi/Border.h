// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "platform/cmpi/TCancelShield.h"
#include "platform/cmpi/abi/cmpi.h"

namespace NZEPQEL20::cmpi {

/// The version that every table of the broker announces.
constexpr CMPIVersion kBrokerVersion = CMPIVersion210;

/// A refusal on its way to a provider: a return code and words for it.
class TBrokerFault : public std::exception {
 public:
  explicit TBrokerFault(CMPIrc code, std::string message = {})
      : m_code(code), m_message(std::move(message)) {}

  const char* what() const noexcept override { return m_message.c_str(); }
  CMPIrc GetCode() const noexcept { return m_code; }

 private:
  CMPIrc m_code;
  std::string m_message;
};

/// The status for the exception that is being handled; its words become a string of the current
/// scope. To be called inside a catch block.
CMPIStatus StatusOfException() noexcept;

/// A value that is not there: NULL, marked as not found.
CMPIData MissingData() noexcept;

/// What a failed function returns besides its status.
template <class TResult>
TResult FailedResult() noexcept {
  return TResult{};
}
template <>
inline CMPIData FailedResult<CMPIData>() noexcept {
  return MissingData();
}

/// Runs `action` as the body of a function that providers call: no exception leaves it, the thread
/// is not cancelled in it, and `rc` (which may be NULL) always receives both members.
template <class TAction>
auto Answer(CMPIStatus* rc, TAction&& action) noexcept -> decltype(action()) {
  using TResult = decltype(action());
  const TCancelShield shield;
  try {
    TResult result = action();
    if (rc != nullptr) *rc = CMPIStatus{CMPI_RC_OK, nullptr};
    return result;
  } catch (...) {
    const CMPIStatus status = StatusOfException();
    if (rc != nullptr) *rc = status;
    return FailedResult<TResult>();
  }
}

/// The same for a function that returns its status.
template <class TAction>
CMPIStatus AnswerStatus(TAction&& action) noexcept {
  const TCancelShield shield;
  try {
    action();
    return CMPIStatus{CMPI_RC_OK, nullptr};
  } catch (...) {
    return StatusOfException();
  }
}

/// `text` for a std::string; a NULL pointer gives the empty text.
inline std::string TextOrEmpty(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

/// `text`; a NULL pointer or an empty one is refused, naming `what`.
const char* RequireName(const char* text, const char* what);

/// `text` as it is when it is UTF-8; otherwise each byte that is not part of a valid sequence
/// counts as ISO 8859-1. At most twice as long.
std::string ToUtf8(std::string text);

}  // namespace NZEPQEL20::cmpi
