// SPDX-License-Identifier: Apache-2.0
//
// A provider that tells in its answers what it was asked.
#include <atomic>
#include <cstring>
#include <iomanip>
#include <mutex>
#include <sstream>
#include <string>

#include "platform/cmpi/abi/cmpi.h"
#include "tests/platform/cmpi/operations/ProviderSide.h"

#define WORKSHOP_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

using providerside::Chars;
using providerside::ClassOf;
using providerside::IdOf;
using providerside::In;
using providerside::TextOf;

// Set by each of the functions that make a provider, while others may be serving.
std::atomic<const CMPIBroker*> heldBroker{nullptr};

const CMPIBroker* Broker() {
  return heldBroker;
}

std::mutex mutex;
std::string last;      // What was last made, changed or deleted.
std::string cleanups;  // A letter per cleaned part, capital when the process ends.

CMPIStatus Fail(CMPIrc code, const char* message) {
  return {code, Broker()->eft->newString(Broker(), message, nullptr)};
}

CMPIObjectPath* NewPath(const CMPIObjectPath* asked, const char* className) {
  const std::string ns = providerside::PlaceOf(asked);
  return Broker()->eft->newObjectPath(Broker(), ns.c_str(), className, nullptr);
}

CMPIObjectPath* NewPart(const CMPIObjectPath* asked, const char* className) {
  CMPIObjectPath* path = NewPath(asked, className);
  path->ft->addKey(path, "Id", Chars(std::string(className) + "-1"), CMPI_chars);
  return path;
}

// Its path has no keys: the broker is to make them from the properties.
CMPIInstance* NewPartInstance(const CMPIObjectPath* asked, const char* className,
                              const std::string& note) {
  CMPIInstance* instance = Broker()->eft->newInstance(Broker(), NewPath(asked, className), nullptr);
  instance->ft->setProperty(instance, "Id", Chars(std::string(className) + "-1"), CMPI_chars);
  instance->ft->setProperty(instance, "Note", Chars(note), CMPI_chars);
  return instance;
}

// A name with a C type, in hexadecimal digits.
std::string Describe(const CMPIString* name, CMPIType type) {
  std::ostringstream text;
  text << TextOf(name) << ':' << std::hex << std::setw(4) << std::setfill('0') << type << ' ';
  return text.str();
}

// The keys of a path with their types.
std::string DescribeKeys(const CMPIObjectPath* path) {
  std::string text;
  for (CMPICount i = 0; i < path->ft->getKeyCount(path, nullptr); ++i) {
    CMPIString* name = nullptr;
    const CMPIData key = path->ft->getKeyAt(path, i, &name, nullptr);
    text += Describe(name, key.type);
  }
  return text;
}

// What the broker is asked to refuse, by class.
CMPIStatus CheckClass(const CMPIObjectPath* asked) {
  if (ClassOf(asked) == "W_Crate") return Fail(CMPI_RC_ERR_ACCESS_DENIED, "the crate is locked");
  if (ClassOf(asked) == "W_Ghost") return Fail(CMPI_RC_ERR_NOT_FOUND, "no ghosts");
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus Cleanup(char part, CMPIBoolean isTerminating) {
  const std::lock_guard<std::mutex> lock(mutex);
  cleanups += isTerminating != 0 ? part : static_cast<char>(part - 'A' + 'a');
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus CleanupInstance(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean isTerminating) {
  return Cleanup('I', isTerminating);
}

CMPIStatus EnumerateInstanceNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                                  const CMPIObjectPath* asked) {
  const CMPIStatus status = CheckClass(asked);
  if (status.rc != CMPI_RC_OK) return status;
  // Neither namespace nor, for nuts, a class: the broker knows both.
  CMPIObjectPath* path = NewPart(asked, ClassOf(asked).c_str());
  path->ft->setNameSpace(path, "");
  if (ClassOf(asked) == "W_Nut") path->ft->setClassName(path, "");
  result->ft->returnObjectPath(result, path);
  return result->ft->returnDone(result);
}

CMPIStatus EnumerateInstances(CMPIInstanceMI*, const CMPIContext* context, const CMPIResult* result,
                              const CMPIObjectPath* asked, const char**) {
  const CMPIStatus status = CheckClass(asked);
  if (status.rc != CMPI_RC_OK) return status;
  const CMPIData ns = context->ft->getEntry(context, CMPIInitNameSpace, nullptr);
  result->ft->returnInstance(
      result, NewPartInstance(asked, ClassOf(asked).c_str(), TextOf(ns.value.string)));
  return result->ft->returnDone(result);
}

CMPIStatus GetInstance(CMPIInstanceMI*, const CMPIContext* context, const CMPIResult* result,
                       const CMPIObjectPath* path, const char**) {
  if (IdOf(path) == "silent") return {CMPI_RC_OK, nullptr};
  if (IdOf(path) == "nested" || IdOf(path) == "endless") {
    // Comes back to this very function.
    const CMPIObjectPath* next =
        IdOf(path) == "endless" ? path : NewPart(path, ClassOf(path).c_str());
    CMPIStatus rc = {CMPI_RC_OK, nullptr};
    CMPIInstance* inner = Broker()->bft->getInstance(Broker(), context, next, nullptr, &rc);
    if (inner != nullptr) result->ft->returnInstance(result, inner);
    return rc;
  }
  const std::lock_guard<std::mutex> lock(mutex);
  const std::string note = IdOf(path) == "last" ? last : DescribeKeys(path);
  result->ft->returnInstance(result, NewPartInstance(path, ClassOf(path).c_str(), note));
  return result->ft->returnDone(result);
}

CMPIStatus CreateInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                          const CMPIObjectPath* asked, const CMPIInstance* instance) {
  const CMPIData note = instance->ft->getProperty(instance, "Note", nullptr);
  const std::lock_guard<std::mutex> lock(mutex);
  last = "made " + ClassOf(asked) + ' ' + TextOf(note.value.string);
  if (TextOf(note.value.string) == "quiet") return {CMPI_RC_OK, nullptr};
  return result->ft->returnObjectPath(result, NewPart(asked, ClassOf(asked).c_str()));
}

CMPIStatus ModifyInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath* path, const CMPIInstance*, const char** names) {
  const std::lock_guard<std::mutex> lock(mutex);
  last = "changed " + IdOf(path);
  for (; names != nullptr && *names != nullptr; ++names) last += std::string(" ") + *names;
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus DeleteInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath* path) {
  const std::lock_guard<std::mutex> lock(mutex);
  last = "deleted " + IdOf(path);
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus CleanupAssociation(CMPIAssociationMI*, const CMPIContext*, CMPIBoolean isTerminating) {
  return Cleanup('A', isTerminating);
}

std::string OrDash(const char* text) {
  return text == nullptr ? "-" : text;
}

CMPIStatus Associators(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result,
                       const CMPIObjectPath* path, const char* association, const char* resultClass,
                       const char* role, const char* resultRole, const char**) {
  if (IdOf(path) == "fails") return Fail(CMPI_RC_ERR_FAILED, "nothing fits");
  const std::string note = OrDash(association) + ' ' + OrDash(resultClass) + ' ' + OrDash(role) +
                           ' ' + OrDash(resultRole);
  result->ft->returnInstance(result, NewPartInstance(path, "W_Nut", note));
  result->ft->returnInstance(result, NewPartInstance(path, "W_Bolt", note));
  return result->ft->returnDone(result);
}

CMPIStatus AssociatorNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result,
                           const CMPIObjectPath* path, const char*, const char*, const char*,
                           const char*) {
  result->ft->returnObjectPath(result, NewPart(path, "W_Nut"));
  result->ft->returnObjectPath(result, NewPart(path, "W_Bolt"));
  return result->ft->returnDone(result);
}

CMPIInstance* NewFit(const CMPIObjectPath* path) {
  CMPIInstance* fit = Broker()->eft->newInstance(Broker(), NewPath(path, "W_Fits"), nullptr);
  CMPIObjectPath* right = NewPart(path, "W_Nut");
  fit->ft->setProperty(fit, "Left", In(path), CMPI_ref);
  fit->ft->setProperty(fit, "Right", In(right), CMPI_ref);
  return fit;
}

CMPIStatus References(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result,
                      const CMPIObjectPath* path, const char*, const char*, const char**) {
  result->ft->returnInstance(result, NewFit(path));
  return result->ft->returnDone(result);
}

CMPIStatus ReferenceNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result,
                          const CMPIObjectPath* path, const char*, const char*) {
  CMPIInstance* fit = NewFit(path);
  result->ft->returnObjectPath(result, fit->ft->getObjectPath(fit, nullptr));
  return result->ft->returnDone(result);
}

CMPIStatus CleanupMethod(CMPIMethodMI*, const CMPIContext*, CMPIBoolean isTerminating) {
  return Cleanup('M', isTerminating);
}

void Echo(const CMPIArgs* in, CMPIArgs* out) {
  std::string seen;
  for (CMPICount i = 0; i < in->ft->getArgCount(in, nullptr); ++i) {
    CMPIString* name = nullptr;
    const CMPIData argument = in->ft->getArgAt(in, i, &name, nullptr);
    seen += Describe(name, argument.type);
  }
  out->ft->addArg(out, "Seen", Chars(seen), CMPI_chars);
}

// How many objects the broker finds beside `target`, by all four upcalls.
CMPIUint32 CountNeighbours(const CMPIContext* context, const CMPIObjectPath* target) {
  const CMPIBrokerFT& bft = *Broker()->bft;
  CMPIUint32 count = 0;
  for (CMPIEnumeration* found :
       {bft.associators(Broker(), context, target, "W_Fits", nullptr, nullptr, nullptr, nullptr,
                        nullptr),
        bft.associatorNames(Broker(), context, target, nullptr, "W_Nut", nullptr, nullptr, nullptr),
        bft.references(Broker(), context, target, nullptr, "Left", nullptr, nullptr),
        bft.referenceNames(Broker(), context, target, "W_Fits", nullptr, nullptr)}) {
    if (found == nullptr) continue;
    const CMPIArray* all = found->ft->toArray(found, nullptr);
    count = count * 10 + all->ft->getSize(all, nullptr);
  }
  return count;
}

CMPIStatus InvokeMethod(CMPIMethodMI*, const CMPIContext* context, const CMPIResult* result,
                        const CMPIObjectPath* target, const char* method, const CMPIArgs* in,
                        CMPIArgs* out) {
  CMPIUint32 answer = 0;
  if (std::strcmp(method, "Echo") == 0) Echo(in, out);
  if (std::strcmp(method, "Fail") == 0) {
    out->ft->addArg(out, "Seen", Chars("half done"), CMPI_chars);
    return Fail(CMPI_RC_ERR_METHOD_NOT_AVAILABLE, "not today");
  }
  if (std::strcmp(method, "Leave") == 0) Broker()->xft->exitThread(nullptr);
  if (std::strcmp(method, "Nothing") == 0) {
    const std::lock_guard<std::mutex> lock(mutex);
    last = "nothing of " + ClassOf(target);
    return {CMPI_RC_OK, nullptr};
  }
  if (std::strcmp(method, "Neighbours") == 0) answer = CountNeighbours(context, target);
  if (std::strcmp(method, "Instance") == 0) {
    return result->ft->returnInstance(result, NewPartInstance(target, "W_Nut", "embedded"));
  }
  if (std::strcmp(method, "Path") == 0) {
    return result->ft->returnObjectPath(result, NewPart(target, "W_Nut"));
  }
  return result->ft->returnData(result, In(answer), CMPI_uint32);
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

WORKSHOP_EXPORT CMPIInstanceMI* Workshop_Create_InstanceMI(const CMPIBroker* mb, const CMPIContext*,
                                                           CMPIStatus*) {
  static const CMPIInstanceMIFT kTable{CMPIVersion100,
                                       0,
                                       "Workshop",
                                       CleanupInstance,
                                       EnumerateInstanceNames,
                                       EnumerateInstances,
                                       GetInstance,
                                       CreateInstance,
                                       ModifyInstance,
                                       DeleteInstance,
                                       nullptr,
                                       nullptr};
  static CMPIInstanceMI mi{nullptr, &kTable};
  heldBroker = mb;
  return &mi;
}

WORKSHOP_EXPORT CMPIAssociationMI* Workshop_Create_AssociationMI(const CMPIBroker* mb,
                                                                 const CMPIContext*, CMPIStatus*) {
  static const CMPIAssociationMIFT kTable{CMPIVersion100, 0,
                                          "Workshop",     CleanupAssociation,
                                          Associators,    AssociatorNames,
                                          References,     ReferenceNames,
                                          nullptr,        nullptr};
  static CMPIAssociationMI mi{nullptr, &kTable};
  heldBroker = mb;
  return &mi;
}

WORKSHOP_EXPORT CMPIMethodMI* Workshop_Create_MethodMI(const CMPIBroker* mb, const CMPIContext*,
                                                       CMPIStatus*) {
  static const CMPIMethodMIFT kTable{CMPIVersion100, 0, "Workshop", CleanupMethod, InvokeMethod};
  static CMPIMethodMI mi{nullptr, &kTable};
  heldBroker = mb;
  return &mi;
}

// NOLINTEND(readability-identifier-naming)

// Which parts were cleaned up since the last call.
WORKSHOP_EXPORT const char* WorkshopCleanups(void) {
  static std::string told;
  const std::lock_guard<std::mutex> lock(mutex);
  told.swap(cleanups);
  cleanups.clear();
  return told.c_str();
}
