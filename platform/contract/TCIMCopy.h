// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>

#include "platform/contract/Export.h"
#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMNamespace.h"

namespace NZEPQEL20 {

/// Copies instances between namespaces.
class DIAGSPLATFORM_EXPORT TCIMCopy {
 public:
  /// Copies `instance` into `ns`, which must be able to create instances (ICIMInstanceStore), and
  /// answers with the copy.
  /// Errors: TQELException kInvalidArgument for a null handle, kNotSupported when `ns` takes no
  /// instances, and what the namespace throws.
  static boost::shared_ptr<ICIMInstance> CopyInstance(boost::shared_ptr<ICIMInstance> instance,
                                                      boost::shared_ptr<ICIMNamespace> ns);
};

}  // namespace NZEPQEL20
