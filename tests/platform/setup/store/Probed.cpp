// SPDX-License-Identifier: Apache-2.0
// Provider libraries that trouble whoever loads them or has them make their functions.
// DIAGS_PROBED says how; it is a word of the list below, and the library's name.
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/cmpi/abi/cmpi.h"

#define DIAGS_EXPORT extern "C" __attribute__((visibility("default")))
#define DIAGS_IS(word) (std::string(DIAGS_PROBED) == word)

namespace {

[[noreturn]] void Hang() {
  for (;;) ::pause();
}

// Runs while the library is loaded.
const int theLoading = [] {
  if (DIAGS_IS("loadcrash")) ::raise(SIGSEGV);
  if (DIAGS_IS("loadexit")) std::exit(3);
  if (DIAGS_IS("loadhang")) Hang();
  if (DIAGS_IS("loadleaves") && ::fork() == 0) Hang();
  return 0;
}();

CMPIStatus Cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  if (DIAGS_IS("cleanupcrash")) ::raise(SIGSEGV);
  if (DIAGS_IS("cleanuphang")) Hang();
  return {CMPI_RC_OK, nullptr};
}

const CMPIBroker* theBroker = nullptr;

CMPIStatus EnumerateNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*) {
  if (DIAGS_IS("namescrash")) ::raise(SIGSEGV);
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus EnumerateInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                              const CMPIObjectPath*, const char**) {
  if (DIAGS_IS("enumcrash")) ::raise(SIGSEGV);
  if (DIAGS_IS("enumhang")) Hang();
  if (DIAGS_IS("enumexit")) std::exit(3);
  if (DIAGS_IS("enumfails")) {
    return {CMPI_RC_ERR_FAILED, theBroker->eft->newString(theBroker, "no bus here", nullptr)};
  }
  // Its names are to be asked for, then.
  if (DIAGS_IS("namescrash")) return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
  return {CMPI_RC_OK, nullptr};
}

const CMPIInstanceMIFT kTable = {
    CMPIVersion200, CMPIVersion200, "Probed", Cleanup, EnumerateNames, EnumerateInstances,
    nullptr,        nullptr,        nullptr,  nullptr, nullptr,        nullptr};
CMPIInstanceMI theMI = {nullptr, &kTable};

// Fails with a text that holds the marks between the fields and records of the check.
CMPIInstanceMI* Refuse(const CMPIBroker* broker, CMPIStatus* status) {
  *status = {CMPI_RC_ERR_FAILED, broker->eft->newString(broker,
                                                        "no \x1F"
                                                        "hardware\x1E here",
                                                        nullptr)};
  return nullptr;
}

// Asks the broker for the instances that it serves itself.
void ComeBack(const CMPIBroker* broker, const CMPIContext* context) {
  static int theCalls = 0;
  if (++theCalls > 1) std::abort();
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, "root/x", "A_Base", nullptr);
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  broker->bft->enumerateInstanceNames(broker, context, path, &status);
}

CMPIInstanceMI* Create(const CMPIBroker* broker, const CMPIContext* context, CMPIStatus* status) {
  theBroker = broker;
  if (DIAGS_IS("factoryseparators")) return Refuse(broker, status);
  if (DIAGS_IS("factoryupcall")) ComeBack(broker, context);
  if (DIAGS_IS("factorycrash")) ::raise(SIGSEGV);
  if (DIAGS_IS("factoryhang")) Hang();
  if (DIAGS_IS("factoryabort")) std::abort();
  if (DIAGS_IS("factoryexit")) ::_exit(0);
  if (DIAGS_IS("factorywrites")) {
    std::puts("words on standard output");
    std::fputs("words on standard error\n", stderr);
    std::fflush(nullptr);
    // Whatever is open may be written to.
    for (int file = 3; file < 64; ++file) {
      if (::write(file, "\x1ER4\x1Fnonsense\x1E", 13) < 0) continue;
    }
  }
  if (theLoading != 0) return nullptr;
  return &theMI;
}

}  // namespace

#ifdef DIAGS_MANGLED
__attribute__((visibility("default"))) CMPIInstanceMI* Probed_Create_InstanceMI(const CMPIBroker*,
                                                                                const CMPIContext*,
                                                                                CMPIStatus*);
CMPIInstanceMI* Probed_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext* context,
                                         CMPIStatus* status) {
  return Create(broker, context, status);
}
#else
DIAGS_EXPORT CMPIInstanceMI* Probed_Create_InstanceMI(const CMPIBroker*, const CMPIContext*,
                                                      CMPIStatus*);
CMPIInstanceMI* Probed_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext* context,
                                         CMPIStatus* status) {
  return Create(broker, context, status);
}
#endif
