// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/Border.h"

#include <cstddef>
#include <new>

#include "platform/cmpi/TBrokerString.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIStatus MakeStatus(CMPIrc code, const char* message) noexcept {
  try {
    return {code, *message == '\0' ? nullptr : Make<TBrokerString>(message)};
  } catch (...) {
    return {code, nullptr};
  }
}

/// Status number of a failed upcall: the one that the callee sent, or the nearest.
CMPIrc CodeOf(const TQELException& failure) noexcept {
  if (failure.GetCIMStatus() != TQELException::kNoCIMStatus) {
    return static_cast<CMPIrc>(failure.GetCIMStatus());
  }
  switch (failure.GetStatusCode().GetValue()) {
    case TQELStatusCode::kNotSupported:
      return CMPI_RC_ERR_NOT_SUPPORTED;
    case TQELStatusCode::kInvalidArgument:
      return CMPI_RC_ERR_INVALID_PARAMETER;
    case TQELStatusCode::kNotFound:
      return CMPI_RC_ERR_NOT_FOUND;
    case TQELStatusCode::kTypeMismatch:
      return CMPI_RC_ERR_TYPE_MISMATCH;
    case TQELStatusCode::kAccessDenied:
      return CMPI_RC_ERR_ACCESS_DENIED;
    default:
      return CMPI_RC_ERR_FAILED;
  }
}

bool IsContinuation(unsigned char byte) {
  return (byte & 0xC0U) == 0x80U;
}

/// Length of the valid sequence at `at`, 0 when there is none.
std::size_t SequenceLength(const std::string& text, std::size_t at) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : static_cast<unsigned char>(0);
  };
  const unsigned char lead = byte(at);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const unsigned char second = byte(at + 1);
  if (!IsContinuation(second)) return 0;
  if (lead < 0xE0) return 2;
  // Overlong forms, surrogates and what lies beyond U+10FFFF show in the second byte.
  if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F)) return 0;
  if (!IsContinuation(byte(at + 2))) return 0;
  if (lead < 0xF0) return 3;
  if ((lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F)) return 0;
  return IsContinuation(byte(at + 3)) ? 4 : 0;
}

bool IsUtf8(const std::string& text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t length = SequenceLength(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

}  // namespace

CMPIStatus StatusOfException() noexcept {
  try {
    throw;
  } catch (const TBrokerFault& fault) {
    return MakeStatus(fault.GetCode(), fault.what());
  } catch (const TQELException& failure) {
    return MakeStatus(CodeOf(failure), failure.what());
  } catch (const std::bad_alloc&) {
    return {CMPI_RC_ERR_FAILED, nullptr};
  } catch (const std::exception& failure) {
    return MakeStatus(CMPI_RC_ERR_FAILED, failure.what());
  } catch (...) {
    return {CMPI_RC_ERR_FAILED, nullptr};
  }
}

CMPIData MissingData() noexcept {
  CMPIData data = {};
  data.state = CMPI_nullValue | CMPI_notFound;
  return data;
}

const char* RequireName(const char* text, const char* what) {
  if (text == nullptr || *text == '\0') {
    throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, std::string("no ") + what + " given");
  }
  return text;
}

std::string ToUtf8(std::string text) {
  if (IsUtf8(text)) return text;
  std::string mended;
  mended.reserve(text.size() + text.size() / 8);
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t length = SequenceLength(text, at);
    if (length == 0) {
      // Its number in ISO 8859-1 is that of the character.
      const auto byte = static_cast<unsigned char>(text[at++]);
      mended += static_cast<char>(0xC0U | (byte >> 6U));
      mended += static_cast<char>(0x80U | (byte & 0x3FU));
    } else {
      mended.append(text, at, length);
      at += length;
    }
  }
  return mended;
}

}  // namespace NZEPQEL20::cmpi
