// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/Border.h"

#include <cstddef>
#include <new>
#include <utility>

#include "platform/cmpi/TBrokerString.h"
#include "platform/contract/TQELException.h"
#include "platform/schema/Utf8.h"

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
  return MendUtf8(std::move(text));
}

}  // namespace NZEPQEL20::cmpi
