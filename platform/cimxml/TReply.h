// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"

namespace NZEPQEL20::cimxml {

/// What a server says when it refuses an operation.
struct TReplyError {
  unsigned int code = 0;    ///< DSP0200, or the vendor's own from 30 up.
  std::string description;  ///< In the server's words; may be empty.
};

/// What a reply says, whichever operation it answers.
struct TReply {
  std::string id;    ///< Of the message that it answers.
  std::string name;  ///< Of the operation or method.
  std::optional<TReplyError> error;
  /// In the server's order. A deque: it grows without moving what it holds.
  std::deque<TCIMInstanceData> instances;
  std::vector<TCIMReference> paths;
  std::vector<std::string> classNames;
  std::shared_ptr<TCIMClassDeclaration> declaration;
  TCIMValue returnValue;  ///< Of a method call; NULL when there was none.
  TKeyMap parameters;     ///< Out-parameters.

  /// Values that could not be read and are NULL here, and elements that were passed over.
  std::uint64_t oddities = 0;
  std::string firstOddity;  ///< The first of them: thing and reason.
};

}  // namespace NZEPQEL20::cimxml
