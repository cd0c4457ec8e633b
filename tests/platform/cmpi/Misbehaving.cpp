// SPDX-License-Identifier: Apache-2.0
// Provider libraries that each do one thing wrong. DIAGS_BAD says which; it is a word of the list
// below, and the library's name.
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
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

/// An exception that has no words.
struct TWordless : std::exception {
  const char* what() const noexcept override { return nullptr; }
};

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

/// What was handed over or made in a call before this one, used as if it were still there.
struct TKept {
  const CMPIContext* context;
  const CMPIObjectPath* request;
  CMPIObjectPath* path;
  CMPIInstance* instance;
  CMPIString* text;
};
TKept theKept = {};

CMPIStatus UseKept() {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  int refusals = 0;
  const auto count = [&](CMPIrc code) { refusals += code == CMPI_RC_ERR_INVALID_HANDLE ? 1 : 0; };
  theKept.context->ft->getEntryCount(theKept.context, &status);
  count(status.rc);
  theKept.request->ft->getKeyCount(theKept.request, &status);
  count(status.rc);
  count(theKept.path->ft->addKey(theKept.path, "Late", Chars("x"), CMPI_chars).rc);
  count(theKept.instance->ft->setProperty(theKept.instance, "Name", Chars("x"), CMPI_chars).rc);
  theKept.text->ft->getCharPtr(theKept.text, &status);
  count(status.rc);
  theKept = {};
  const std::string words = std::to_string(refusals) + " of 5 were refused";
  return {CMPI_RC_ERR_FAILED, Text(words.c_str())};
}

/// Results that no enumeration of instances has room for.
void ReturnWrongThings(const CMPIResult* result, const CMPIObjectPath* request) {
  const CMPIValue value = {};
  CMPIObjectPath* path = NewPath(request, "wrong");
  result->ft->returnData(result, &value, CMPI_uint32);
  result->ft->returnData(result, nullptr, 0x7777);
  result->ft->returnObjectPath(result, path);
  result->ft->returnObjectPath(result, nullptr);
  result->ft->returnInstance(result, nullptr);
  // A path in the place of an instance.
  result->ft->returnInstance(result, reinterpret_cast<const CMPIInstance*>(path));
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  theBroker->eft->newInstance(theBroker, nullptr, &status);
  theBroker->bft->getInstance(theBroker, nullptr, nullptr, nullptr, nullptr);
  theBroker->bft->enumerateInstances(theBroker, nullptr, path, nullptr, nullptr);
}

/// Of another class, and of one that nobody declares.
void ReturnOthers(const CMPIResult* result, const CMPIObjectPath* request) {
  for (const char* name : {"BAD_Other", "BAD_Unheard", "", "not a name"}) {
    CMPIObjectPath* path = NewPath(request, name);
    path->ft->setClassName(path, name);
    CMPIInstance* instance = theBroker->eft->newInstance(theBroker, path, nullptr);
    result->ft->returnInstance(result, instance);
  }
}

CMPIStatus ReturnMany(const CMPIResult* result, const CMPIObjectPath* request) {
  const char* count = std::getenv("DIAGS_BAD_COUNT");
  const int many = count == nullptr ? 1'000'000 : std::atoi(count);
  for (int i = 0; i < many; ++i) {
    CMPIInstance* instance = NewInstance(request, std::to_string(i).c_str());
    const CMPIStatus status = result->ft->returnInstance(result, instance);
    if (status.rc != CMPI_RC_OK) return status;
    // What a careful provider does; the path that the instance was made from stays.
    instance->ft->release(instance);
  }
  return {CMPI_RC_OK, nullptr};
}

/// The answer to every call of a provider that fails at all of them.
CMPIStatus RefuseAll(const char* call) {
  if (DIAGS_IS("throwsall")) throw std::runtime_error(std::string("out of luck in ") + call);
  const std::string words = std::string("not for you: ") + call;
  return {CMPI_RC_ERR_ACCESS_DENIED, Text(words.c_str())};
}

[[noreturn]] void Hang() {
  for (;;) pause();
}

/// Uses up the stack.
int Overflow(int depth) {
  volatile char room[4096];
  room[0] = static_cast<char>(depth);
  return depth < 0 ? 0 : Overflow(depth + 1) + room[0];
}

/// Ends, or keeps, the process within an enumeration.
void EndWithin() {
  if (DIAGS_IS("crashes")) std::raise(SIGSEGV);
  if (DIAGS_IS("overflows")) Overflow(1);
  if (DIAGS_IS("threadcrashes")) std::thread([] { std::abort(); }).join();
  if (DIAGS_IS("hangs")) Hang();
  if (DIAGS_IS("closes")) {
    for (int descriptor = STDERR_FILENO + 1; descriptor < 64; ++descriptor) close(descriptor);
  }
}

CMPIStatus Cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  ++theCleanups;
  if (DIAGS_IS("cleanupcrashes")) std::abort();
  if (DIAGS_IS("cleanuphangs")) Hang();
  if (DIAGS_IS("throwsall") || DIAGS_IS("codes")) return RefuseAll("cleanup");
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus EnumerateInstances(CMPIInstanceMI*, const CMPIContext* context, const CMPIResult* result,
                              const CMPIObjectPath* request, const char**) {
  if (DIAGS_IS("codes") || DIAGS_IS("throwsall")) return RefuseAll("enumerateInstances");
  EndWithin();
  if (DIAGS_IS("wrongthings")) ReturnWrongThings(result, request);
  if (DIAGS_IS("others")) ReturnOthers(result, request);
  if (DIAGS_IS("million")) return ReturnMany(result, request);
  if (DIAGS_IS("keeps") && theKept.path != nullptr) return UseKept();
  if (DIAGS_IS("throwsnull")) throw TWordless();
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
  theKept = {context, request, NewPath(request, "kept"), instance, Text("kept")};
  result->ft->returnInstance(result, instance);
  if (DIAGS_IS("twice")) result->ft->returnDone(result);
  if (DIAGS_IS("releases")) {
    instance->ft->release(instance);
    instance->ft->release(instance);
  }
  if (!DIAGS_IS("nodone")) result->ft->returnDone(result);
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus EnumerateInstanceNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                                  const CMPIObjectPath*) {
  return RefuseAll("enumerateInstanceNames");
}
CMPIStatus GetInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                       const CMPIObjectPath*, const char**) {
  return RefuseAll("getInstance");
}
CMPIStatus CreateInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*, const CMPIInstance*) {
  return RefuseAll("createInstance");
}
CMPIStatus ModifyInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*, const CMPIInstance*, const char**) {
  return RefuseAll("modifyInstance");
}
CMPIStatus DeleteInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*) {
  return RefuseAll("deleteInstance");
}

/// A slot that only the libraries fill which fail at every call.
template <class TFunction>
TFunction Slot(TFunction function) {
  return DIAGS_IS("codes") || DIAGS_IS("throwsall") ? function : nullptr;
}

const CMPIInstanceMIFT kTable = {DIAGS_IS("oldtable") ? 90 : CMPIVersion200,
                                 CMPIVersion200,
                                 "Bad",
                                 Cleanup,
                                 Slot(EnumerateInstanceNames),
                                 DIAGS_IS("nullslots") ? nullptr : EnumerateInstances,
                                 Slot(GetInstance),
                                 Slot(CreateInstance),
                                 Slot(ModifyInstance),
                                 Slot(DeleteInstance),
                                 nullptr,
                                 nullptr};

CMPIInstanceMI theMI = {nullptr, DIAGS_IS("nulltable") ? nullptr : &kTable};

CMPIInstanceMI* Create(const CMPIBroker* broker, CMPIStatus* status) {
  theBroker = broker;
  if (DIAGS_IS("factorycrashes")) std::raise(SIGSEGV);
  if (DIAGS_IS("factoryexits")) _exit(3);
  if (DIAGS_IS("factoryhangs")) Hang();
  if (DIAGS_IS("stdout")) std::puts("words of the factory");
  if (DIAGS_IS("factorythrows")) throw std::runtime_error("factory on strike");
  if (DIAGS_IS("factorynull")) return nullptr;
  if (DIAGS_IS("factoryunknown")) {
    *status = {CMPI_RC_ERR_NOT_FOUND, Text("no provider of that name")};
    return nullptr;
  }
  if (DIAGS_IS("factoryrefuses")) {
    *status = {CMPI_RC_ERR_FAILED, Text("no hardware here")};
    return &theMI;
  }
  return &theMI;
}

CMPIStatus Associate(CMPIAssociationMI*, const CMPIContext*, const CMPIResult*,
                     const CMPIObjectPath*, const char*, const char*, const char*, const char*,
                     const char**) {
  return RefuseAll("associators");
}
CMPIStatus AssociateNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*, const char*, const char*, const char*,
                          const char*) {
  return RefuseAll("associatorNames");
}
CMPIStatus Refer(CMPIAssociationMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*,
                 const char*, const char*, const char**) {
  return RefuseAll("references");
}
CMPIStatus ReferNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult*,
                      const CMPIObjectPath*, const char*, const char*) {
  return RefuseAll("referenceNames");
}
CMPIStatus CleanupAssociation(CMPIAssociationMI*, const CMPIContext*, CMPIBoolean) {
  return RefuseAll("cleanup");
}

const CMPIAssociationMIFT kAssociationTable = {
    CMPIVersion200, CMPIVersion200, "Bad",  CleanupAssociation, Associate, AssociateNames, Refer,
    ReferNames,     nullptr,        nullptr};
[[maybe_unused]] CMPIAssociationMI theAssociationMI = {nullptr, &kAssociationTable};

CMPIStatus Invoke(CMPIMethodMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*,
                  const char*, const CMPIArgs*, CMPIArgs*) {
  return RefuseAll("invokeMethod");
}
CMPIStatus CleanupMethod(CMPIMethodMI*, const CMPIContext*, CMPIBoolean) {
  return RefuseAll("cleanup");
}
const CMPIMethodMIFT kMethodTable = {CMPIVersion200, CMPIVersion200, "Bad", CleanupMethod, Invoke};
[[maybe_unused]] CMPIMethodMI theMethodMI = {nullptr, &kMethodTable};

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
DIAGS_EXPORT CMPIAssociationMI* Bad_Create_AssociationMI(const CMPIBroker*, const CMPIContext*,
                                                         CMPIStatus*);
CMPIAssociationMI* Bad_Create_AssociationMI(const CMPIBroker* broker, const CMPIContext*,
                                            CMPIStatus*) {
  theBroker = broker;
  return &theAssociationMI;
}
DIAGS_EXPORT CMPIMethodMI* Bad_Create_MethodMI(const CMPIBroker*, const CMPIContext*, CMPIStatus*);
CMPIMethodMI* Bad_Create_MethodMI(const CMPIBroker* broker, const CMPIContext*, CMPIStatus*) {
  theBroker = broker;
  return &theMethodMI;
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
