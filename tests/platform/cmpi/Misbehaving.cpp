// SPDX-License-Identifier: Apache-2.0
// Provider libraries that each do one thing wrong. DIAGS_BAD says which; it is a word of the list
// below, and the library's name.
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/cmpi/abi/cmpi.h"

#define DIAGS_EXPORT extern "C" __attribute__((visibility("default")))
#define DIAGS_IS(word) (std::string(DIAGS_BAD) == word)

#ifdef DIAGS_UNRESOLVED
extern "C" int DiagsSymbolThatNobodyHas(void);
#endif

namespace {

const CMPIBroker* theBroker = nullptr;
const CMPIResult* theLateResult = nullptr;
int theCleanups = 0;

CMPIString* Text(const char* text) {
  return theBroker->eft->newString(theBroker, text, nullptr);
}

const CMPIValue* Chars(const char* text) {
  return reinterpret_cast<const CMPIValue*>(text);
}

CMPIObjectPath* NewPath(const CMPIObjectPath* request, const char* id) {
  CMPIString* ns = request->ft->getNameSpace(request, nullptr);
  CMPIString* name = request->ft->getClassName(request, nullptr);
  // Old headers read the text straight out of the object.
  CMPIObjectPath* path = theBroker->eft->newObjectPath(
      theBroker, static_cast<const char*>(ns->hdl), static_cast<const char*>(name->hdl), nullptr);
  path->ft->addKey(path, "InstanceID", Chars(id), CMPI_chars);
  return path;
}

void SetWrongValues(CMPIInstance* instance) {
  CMPIValue value = {};
  value.sint32 = -5;
  instance->ft->setProperty(instance, "Name", &value, CMPI_sint32);
  instance->ft->setProperty(instance, "ElementName", nullptr, CMPI_string);
  instance->ft->setProperty(instance, "Caption", &value, 0x7777);
  instance->ft->setProperty(instance, nullptr, &value, CMPI_sint32);
  CMPIArray* array = theBroker->eft->newArray(theBroker, 2, CMPI_string, nullptr);
  array->ft->setElementAt(array, 1, Chars("second"), CMPI_chars);
  value.array = array;
  instance->ft->setProperty(instance, "Texts", &value, CMPI_stringA);
}

CMPIInstance* NewInstance(const CMPIObjectPath* request, const char* id) {
  CMPIObjectPath* path = NewPath(request, id);
  CMPIInstance* instance = theBroker->eft->newInstance(theBroker, path, nullptr);
  if (DIAGS_IS("garbage")) SetWrongValues(instance);
  if (DIAGS_IS("badtext")) {
    instance->ft->setProperty(instance, "ElementName", Chars("a\xFFz"), CMPI_chars);
  }
  return instance;
}

/// Makes an instance where the broker knows of no call, and hands over a clone.
void ReturnFromThread(const CMPIResult* result, const CMPIObjectPath* request, bool isAttached) {
  CMPIContext* prepared = theBroker->bft->prepareAttachThread(theBroker, nullptr);
  std::thread worker([&] {
    if (isAttached) theBroker->bft->attachThread(theBroker, prepared);
    result->ft->returnInstance(result, NewInstance(request, "from a thread"));
    theBroker->bft->detachThread(theBroker, prepared);
    theBroker->bft->detachThread(theBroker, prepared);
  });
  worker.join();
}

CMPIStatus Cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  ++theCleanups;
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus EnumerateInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                              const CMPIObjectPath* request, const char**) {
  if (DIAGS_IS("throws")) throw std::runtime_error("out of luck");
  if (DIAGS_IS("code")) return {CMPI_RC_ERR_ACCESS_DENIED, Text("not for you")};
  if (DIAGS_IS("oddcode")) return {static_cast<CMPIrc>(4711), nullptr};
  if (DIAGS_IS("notfound")) return {CMPI_RC_ERR_NOT_FOUND, nullptr};
  if (DIAGS_IS("stdout")) std::puts("words on standard output");
  if (DIAGS_IS("threads")) {
    ReturnFromThread(result, request, false);
    ReturnFromThread(result, request, true);
    return {CMPI_RC_OK, nullptr};
  }
  if (DIAGS_IS("late") && theLateResult != nullptr) {
    const CMPIStatus status =
        theLateResult->ft->returnInstance(theLateResult, NewInstance(request, "late"));
    return {status.rc, Text("the late result was refused")};
  }
  theLateResult = result;
  CMPIInstance* instance = NewInstance(request, "one");
  result->ft->returnInstance(result, instance);
  if (DIAGS_IS("twice")) result->ft->returnDone(result);
  if (DIAGS_IS("releases")) {
    instance->ft->release(instance);
    instance->ft->release(instance);
  }
  if (!DIAGS_IS("nodone")) result->ft->returnDone(result);
  return {CMPI_RC_OK, nullptr};
}

const CMPIInstanceMIFT kTable = {DIAGS_IS("oldtable") ? 90 : CMPIVersion200,
                                 CMPIVersion200,
                                 "Bad",
                                 Cleanup,
                                 nullptr,
                                 DIAGS_IS("nullslots") ? nullptr : EnumerateInstances,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr,
                                 nullptr};

CMPIInstanceMI theMI = {nullptr, DIAGS_IS("nulltable") ? nullptr : &kTable};

CMPIInstanceMI* Create(const CMPIBroker* broker, CMPIStatus* status) {
  theBroker = broker;
  if (DIAGS_IS("factorythrows")) throw std::runtime_error("factory on strike");
  if (DIAGS_IS("factorynull")) return nullptr;
  if (DIAGS_IS("factoryrefuses")) {
    *status = {CMPI_RC_ERR_FAILED, Text("no hardware here")};
    return &theMI;
  }
  return &theMI;
}

}  // namespace

#ifdef DIAGS_UNRESOLVED
DIAGS_EXPORT int BadNeedsIt(void);
int BadNeedsIt(void) {
  return DiagsSymbolThatNobodyHas();
}
#endif

#if defined(DIAGS_GENERIC)
DIAGS_EXPORT CMPIInstanceMI* _Generic_Create_InstanceMI(const CMPIBroker*, const CMPIContext*,
                                                        const char*, CMPIStatus*);
CMPIInstanceMI* _Generic_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext*,
                                           const char*, CMPIStatus* status) {
  return Create(broker, status);
}
#elif !defined(DIAGS_NO_ENTRY)
DIAGS_EXPORT CMPIInstanceMI* Bad_Create_InstanceMI(const CMPIBroker*, const CMPIContext*,
                                                   CMPIStatus*);
CMPIInstanceMI* Bad_Create_InstanceMI(const CMPIBroker* broker, const CMPIContext*,
                                      CMPIStatus* status) {
  return Create(broker, status);
}
#else
DIAGS_EXPORT CMPIInstanceMI* BadWithoutEntry(const CMPIBroker*, CMPIStatus*);
CMPIInstanceMI* BadWithoutEntry(const CMPIBroker* broker, CMPIStatus* status) {
  return Create(broker, status);
}
#endif
DIAGS_EXPORT int BadCleanups(void);
int BadCleanups(void) {
  return theCleanups;
}
