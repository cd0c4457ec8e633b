// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMCopy.h"

#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

// The signature is part of what hosts are built against.
// NOLINTBEGIN(performance-unnecessary-value-param)
boost::shared_ptr<ICIMInstance> TCIMCopy::CopyInstance(boost::shared_ptr<ICIMInstance> instance,
                                                       boost::shared_ptr<ICIMNamespace> ns) {
  // NOLINTEND(performance-unnecessary-value-param)
  if (!instance) {
    throw TQELException(TQELStatusCode::kInvalidArgument, "CopyInstance: no instance to copy");
  }
  if (!ns) throw TQELException(TQELStatusCode::kInvalidArgument, "CopyInstance: no namespace");
  const auto store = boost::dynamic_pointer_cast<ICIMInstanceStore>(ns);
  if (!store) {
    throw TQELException(TQELStatusCode::kNotSupported,
                        "CopyInstance: " + instance->GetObjectPath({}).GetPath() +
                            ": the target namespace takes no instances");
  }
  return store->CreateInstance(instance);
}

}  // namespace NZEPQEL20
