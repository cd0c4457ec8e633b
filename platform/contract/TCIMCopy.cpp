// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMCopy.h"

#include <boost/pointer_cast.hpp>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

boost::shared_ptr<ICIMInstance> TCIMCopy::CopyInstance(boost::shared_ptr<ICIMInstance> instance,
                                                       boost::shared_ptr<ICIMNamespace> ns) {
  if (!instance) {
    throw TQELException(TQELStatusCode::kInvalidArgument, "CopyInstance: no instance was given");
  }
  if (!ns) {
    throw TQELException(TQELStatusCode::kInvalidArgument, "CopyInstance: no namespace was given");
  }
  const auto store = boost::dynamic_pointer_cast<ICIMInstanceStore>(ns);
  if (!store) {
    throw TQELException(TQELStatusCode::kNotSupported,
                        "CopyInstance: the given namespace takes no instances (" +
                            instance->GetObjectPath({}).GetPath() + ")");
  }
  return store->CreateInstance(instance);
}

}  // namespace NZEPQEL20
