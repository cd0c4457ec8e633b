// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMCopy.h"
#include "platform/contract/TQELException.h"
#include "tests/support/TFaultPlan.h"
#include "tests/support/TScriptedCopies.h"
#include "tests/support/TScriptedNamespace.h"

namespace NZEPQEL20 {

boost::shared_ptr<ICIMInstance> TCIMCopy::CopyInstance(boost::shared_ptr<ICIMInstance> instance,
                                                       boost::shared_ptr<ICIMNamespace> ns) {
  if (!instance || !ns) {
    throw TQELException(TQELStatusCode::kInvalidArgument, "CopyInstance: null handle");
  }
  const auto target = boost::dynamic_pointer_cast<scripted::TScriptedNamespace>(ns);
  const std::string label = target ? target->GetLabel() : "plugin";
  if (scripted::TFaultPlan::Get().Enter(
          "copy", instance->GetObjectPath(TKeyMap()).GetPath() + " " + label)) {
    return {};
  }
  scripted::TScriptedCopies::Get().Add(instance, ns);
  return instance;
}

}  // namespace NZEPQEL20
