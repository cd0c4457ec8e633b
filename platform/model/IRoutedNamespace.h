// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>

#include "platform/contract/ICIMNamespace.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20 {

/// What a class needs of the namespace that it was found through.
class IRoutedNamespace {
 public:
  virtual ~IRoutedNamespace() = default;

  /// The namespace that `keys` chooses, itself for an empty map.
  /// Errors: TQELException naming an "nspID" that leads nowhere.
  virtual boost::shared_ptr<ICIMNamespace> Select(const TKeyMap& keys) = 0;
};

}  // namespace NZEPQEL20
