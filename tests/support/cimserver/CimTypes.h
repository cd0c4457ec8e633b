// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/contract/TCIMClassDeclaration.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"
#include "platform/contract/TQELException.h"
#include "platform/model/ICIMOperations.h"

namespace cimserver {

using NZEPQEL20::ECIMType;
using NZEPQEL20::ICIMOperations;
using NZEPQEL20::IsSameName;
using NZEPQEL20::TCIMClassDeclaration;
using NZEPQEL20::TCIMInstanceData;
using NZEPQEL20::TCIMPropertyData;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;
using NZEPQEL20::TQELException;
using NZEPQEL20::TQELStatusCode;

/// Which of the two makers' servers the peer writes and behaves like.
enum class EStyle {
  kPegasus,  ///< Pulls, chunks, class origins, padded lengths, terse HTTP errors.
  kSfcb      ///< No pull, no chunks, properties backwards, few requests per connection.
};

/// Looks a class up for whoever writes about its objects; null when there is none.
using TClassFinder = std::function<std::shared_ptr<const TCIMClassDeclaration>(
    const std::string& nameSpace, const std::string& className)>;

/// DSP0200 status numbers that the peer itself answers with.
enum ECIMStatus : unsigned int {
  kCIMFailed = 1,
  kCIMInvalidNamespace = 3,
  kCIMInvalidParameter = 4,
  kCIMInvalidClass = 5,
  kCIMNotFound = 6,
  kCIMNotSupported = 7,
  kCIMInvalidContext = 21,
  kCIMInvalidTimeout = 22,
  kCIMFiltersUnsupported = 25,
  kCIMContinuingUnsupported = 26,
};

}  // namespace cimserver
