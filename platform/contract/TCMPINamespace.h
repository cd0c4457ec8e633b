// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>

#include "platform/contract/ICIMNamespace.h"

namespace NZEPQEL20 {

/// A namespace served through CMPI.
class DIAGSPLATFORM_EXPORT TCMPINamespace : public ICIMNamespace {
 public:
  /// The namespace through which a provider's own upcalls see the world: an object is found in
  /// whatever registered namespace it lives, and the key maps are not consulted.
  virtual boost::shared_ptr<ICIMNamespace> GetUpcallNamespace() = 0;
};

}  // namespace NZEPQEL20
