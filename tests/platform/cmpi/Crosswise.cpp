// SPDX-License-Identifier: Apache-2.0
//
// Two providers, Left and Right, each of which asks for the other's instances while it is made, and
// not before both are being made.
#include <sched.h>

#include <atomic>

#include "platform/cmpi/abi/cmpi.h"

#define DIAGS_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

std::atomic<int> beingMade{0};

CMPIStatus Cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus EnumerateInstanceNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                                  const CMPIObjectPath* asked) {
  return result->ft->returnObjectPath(result, asked);
}

const CMPIInstanceMIFT kTable = {
    CMPIVersion200, CMPIVersion200, "Crosswise", Cleanup, EnumerateInstanceNames,
    nullptr,        nullptr,        nullptr,     nullptr, nullptr,
    nullptr,        nullptr};
CMPIInstanceMI theMI = {nullptr, &kTable};

CMPIInstanceMI* Make(const CMPIBroker* broker, const CMPIContext* context, const char* other) {
  ++beingMade;
  while (beingMade < 2) sched_yield();
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, "root/cimv2", other, nullptr);
  broker->bft->enumerateInstanceNames(broker, context, path, nullptr);
  return &theMI;
}

}  // namespace

DIAGS_EXPORT CMPIInstanceMI* Left_Create_InstanceMI(const CMPIBroker*, const CMPIContext*,
                                                    CMPIStatus*);
CMPIInstanceMI* Left_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext* context,
                                       CMPIStatus*) {
  return Make(broker, context, "X_Right");
}
DIAGS_EXPORT CMPIInstanceMI* Right_Create_InstanceMI(const CMPIBroker*, const CMPIContext*,
                                                     CMPIStatus*);
CMPIInstanceMI* Right_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext* context,
                                        CMPIStatus*) {
  return Make(broker, context, "X_Left");
}
