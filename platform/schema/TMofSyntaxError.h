// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/TQELException.h"
#include "platform/schema/TMofParser.h"

namespace NZEPQEL20 {

/// A mistake in the text; travels from the place of finding to the place of going on.
struct TMofParser::TSyntaxError : TQELException {
  TSyntaxError(TMofPosition place, const std::string& text, bool endsAll = false)
      : TQELException(TQELStatusCode::kInvalidArgument, text), position(place), isFatal(endsAll) {}

  TMofPosition position;
  bool isFatal;  ///< The rest of the text is not to be read.
};

}  // namespace NZEPQEL20
