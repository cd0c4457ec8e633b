// SPDX-License-Identifier: Apache-2.0
//
// Two providers. Asking has a thread that asks for the instances of Asked, and leaves it there when
// it is asked itself; Asked comes back from that only when its functions are refused, because the
// end has begun.
#include <sched.h>

#include <atomic>

#include "platform/cmpi/abi/cmpi.h"

#define DIAGS_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

const CMPIBroker* theBroker = nullptr;
CMPI_THREAD_TYPE theThread = nullptr;
std::atomic<bool> isInside{false};
std::atomic<int> cleanups{0};
std::atomic<int> earlyCleanups{0};

CMPIObjectPath* AskedPath() {
  return theBroker->eft->newObjectPath(theBroker, "root/cimv2", "X_Asked", nullptr);
}

/// Whether a question to Asked, which supports it not, gets as far as that.
bool IsAskedReached(const CMPIContext* context) {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  theBroker->bft->getInstance(theBroker, context, AskedPath(), nullptr, &status);
  return status.rc == CMPI_RC_ERR_NOT_SUPPORTED;
}

CMPIStatus Linger(CMPIInstanceMI*, const CMPIContext* context, const CMPIResult*,
                  const CMPIObjectPath*) {
  isInside = true;
  while (IsAskedReached(context)) sched_yield();
  // An end that does not wait would be here by now.
  for (int i = 0; i < 1000; ++i) sched_yield();
  isInside = false;
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus CleanupAsked(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  ++cleanups;
  if (isInside) ++earlyCleanups;
  return {CMPI_RC_OK, nullptr};
}

void* Ask(void*) {
  theBroker->bft->enumerateInstanceNames(theBroker, nullptr, AskedPath(), nullptr);
  return nullptr;
}

CMPIStatus StartAsking(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                       const CMPIObjectPath*) {
  theThread = theBroker->xft->newThread(Ask, nullptr, 0);
  while (!isInside) sched_yield();
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus CleanupAsking(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  if (theThread != nullptr) theBroker->xft->joinThread(theThread, nullptr);
  return {CMPI_RC_OK, nullptr};
}

const CMPIInstanceMIFT kAsked = {CMPIVersion200, CMPIVersion200, "Asked", CleanupAsked,
                                 Linger,         nullptr,        nullptr, nullptr,
                                 nullptr,        nullptr,        nullptr, nullptr};
const CMPIInstanceMIFT kAsking = {CMPIVersion200, CMPIVersion200, "Asking", CleanupAsking,
                                  StartAsking,    nullptr,        nullptr,  nullptr,
                                  nullptr,        nullptr,        nullptr,  nullptr};
CMPIInstanceMI theAsked = {nullptr, &kAsked};
CMPIInstanceMI theAsking = {nullptr, &kAsking};

}  // namespace

DIAGS_EXPORT int GetCleanups();
int GetCleanups() {
  return cleanups;
}
DIAGS_EXPORT int GetEarlyCleanups();
int GetEarlyCleanups() {
  return earlyCleanups;
}
DIAGS_EXPORT CMPIInstanceMI* Asked_Create_InstanceMI(const CMPIBroker*, const CMPIContext*,
                                                     CMPIStatus*);
CMPIInstanceMI* Asked_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext*, CMPIStatus*) {
  theBroker = broker;
  return &theAsked;
}
DIAGS_EXPORT CMPIInstanceMI* Asking_Create_InstanceMI(const CMPIBroker*, const CMPIContext*,
                                                      CMPIStatus*);
CMPIInstanceMI* Asking_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext*,
                                         CMPIStatus*) {
  theBroker = broker;
  return &theAsking;
}
