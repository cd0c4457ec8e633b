// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "platform/cimxml/THttpSession.h"
#include "platform/cimxml/TReplyHead.h"

namespace NZEPQEL20::cimxml {

/// What a reply is judged by, beside itself.
struct TReplyRules {
  std::string server;              ///< As messages name it.
  std::uint64_t maxBodyBytes = 0;  ///< Largest body that is read.
  std::string credentials;         ///< What was sent to log in, in words; empty: nothing.
};

/// Judges the header block of a final reply: returns when its body is CIM-XML to be read.
/// Errors: THttpError for any other status than 200 and for a CIMError; TQELException (kFailed)
/// for a body of another kind, or one announced larger than allowed.
void CheckReplyHead(const TReplyHead& head, const TReplyRules& rules);

/// Reads the fields that followed the body.
/// Errors: THttpError for a CIMError among them.
THttpTrailers ReadTrailers(const TReplyHead& head, const TReplyRules& rules);

/// The text for a body that is larger than allowed.
std::string DescribeTooLarge(const TReplyRules& rules);

}  // namespace NZEPQEL20::cimxml
