// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TQELStatusCode.h"

namespace NZEPQEL20 {

std::string TQELStatusCode::TranslateStatusCode() const {
  switch (m_code) {
    case kOk:
      return "ok";
    case kFailed:
      return "failed";
    case kNotSupported:
      return "not supported";
    case kInvalidArgument:
      return "invalid argument";
    case kNoMemory:
      return "no memory";
    case kNotFound:
      return "not found";
    case kTypeMismatch:
      return "type mismatch";
    case kAccessDenied:
      return "access denied";
    case kCIMError:
      return "CIM error";
    case kConnection:
      return "connection failed";
    default:
      return "unknown status " + std::to_string(m_code);
  }
}

}  // namespace NZEPQEL20
