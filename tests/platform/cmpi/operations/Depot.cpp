// SPDX-License-Identifier: Apache-2.0
//
// A provider that offers just the functions that its name lists, one letter each, after "Depot_":
//   e n g     enumerateInstances, enumerateInstanceNames, getInstance
//   a A r R   associators, associatorNames, references, referenceNames
//   m p       methods, properties
// What it lacks is NULL in its tables, or with "x" a function that answers "not supported"; with
// "f" every function fails; with "q" its references are none, with "u" they fail; with "o" it
// enumerates no association; with "b" its boxes are crates, too; with "i" it ignores what it is
// asked to leave out; with "s" its associations are those of boxes to each other, otherwise those
// of shelves to boxes.
//
// Its tables are those of the first interface, and nothing readable lies behind them.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "platform/cmpi/abi/cmpi.h"
#include "tests/platform/cmpi/operations/ProviderSide.h"

#define DEPOT_EXPORT extern "C" __attribute__((visibility("default")))

namespace depot {

using providerside::Chars;
using providerside::ClassOf;
using providerside::IdOf;
using providerside::In;
using providerside::Keep;
using providerside::PlaceOf;
using providerside::TextOf;

const CMPIBroker* broker = nullptr;

struct TObject {
  const char* className;
  const char* id;
  const char* place;
};
const TObject kObjects[] = {{"D_Shelf", "S1", ""},         {"D_Shelf", "S2", ""},
                            {"D_Box", "B1", ""},           {"D_Crate", "B2", ""},
                            {"D_Box", "B3", ""},           {"D_Box", "B9", "root/remote"},
                            {"D_Remote", "R1", "root/far"}};

struct TLink {
  const char* className;
  const char* id;  // Of the association itself; empty when its ends are its keys.
  const char* leftRole;
  const char* left;
  const char* rightRole;
  const char* right;
};
const TLink kLinks[] = {{"D_Holds", "", "Shelf", "S1", "Box", "B1"},
                        {"D_HoldsSafely", "", "Shelf", "S1", "Box", "B2"},
                        {"D_Holds", "", "Shelf", "S2", "Box", "B3"},
                        {"D_Holds", "", "Shelf", "S2", "Box", "B9"},
                        {"D_Stacks", "X1", "Lower", "B1", "Upper", "B3"},
                        {"D_Stacks", "X2", "Lower", "B3", "Upper", "B1"},
                        {"D_Stacks", "X3", "Lower", "B1", "Upper", "B2"}};

const TObject* FindObject(const std::string& id) {
  for (const TObject& object : kObjects) {
    if (id == object.id) return &object;
  }
  return nullptr;
}

bool IsIn(const TObject& object, const std::string& place) {
  return *object.place == '\0' ? place == "root/cimv2" : place == object.place;
}

std::string TraitsOf(const void* mi) {
  return static_cast<const char*>(static_cast<const CMPIInstanceMI*>(mi)->hdl);
}
bool Has(const void* mi, char letter) {
  return TraitsOf(mi).find(letter) != std::string::npos;
}

CMPIObjectPath* NewPath(const std::string& place, const TObject& object) {
  const std::string own = *object.place == '\0' ? place : object.place;
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, own.c_str(), object.className, nullptr);
  path->ft->addKey(path, "Id", Chars(object.id), CMPI_chars);
  return path;
}

// The instance, with the properties that it was made for in "Asked".
CMPIInstance* NewInstance(const std::string& place, const TObject& object, const char** props) {
  CMPIInstance* instance = broker->eft->newInstance(broker, NewPath(place, object), nullptr);
  std::string asked = props == nullptr ? "all" : "";
  for (; props != nullptr && *props != nullptr; ++props) asked += std::string("+") + *props;
  instance->ft->setProperty(instance, "Asked", Chars(asked), CMPI_chars);
  const CMPIUint16 number = static_cast<CMPIUint16>(object.id[1] - '0');
  instance->ft->setProperty(instance, "Number", In(number), CMPI_uint16);
  return instance;
}

CMPIInstance* NewLink(const std::string& place, const TLink& link) {
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, place.c_str(), link.className, nullptr);
  if (*link.id != '\0') path->ft->addKey(path, "InstanceID", Chars(link.id), CMPI_chars);
  CMPIInstance* instance = broker->eft->newInstance(broker, path, nullptr);
  CMPIObjectPath* left = NewPath("root/cimv2", *FindObject(link.left));
  CMPIObjectPath* right = NewPath("root/cimv2", *FindObject(link.right));
  instance->ft->setProperty(instance, link.leftRole, In(left), CMPI_ref);
  instance->ft->setProperty(instance, link.rightRole, In(right), CMPI_ref);
  return instance;
}

CMPIStatus Fail(CMPIrc code, const char* message) {
  return {code, broker->eft->newString(broker, message, nullptr)};
}

// Why a function with `letter` does not answer.
CMPIStatus Check(const void* mi, char letter) {
  const bool isReference = letter == 'r' || letter == 'R';
  if (Has(mi, 'f') || (Has(mi, 'u') && isReference))
    return Fail(CMPI_RC_ERR_FAILED, "the depot burns");
  if (!Has(mi, letter)) return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus Cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  return {CMPI_RC_OK, nullptr};
}

template <class TTake>
void EachOfClass(const void* mi, const CMPIObjectPath* asked, const TTake& take) {
  const std::string wanted = ClassOf(asked);
  for (const TObject& object : kObjects) {
    const std::string name = object.className;
    const bool isBelow = Has(mi, 'b') && wanted == "D_Box" && name == "D_Crate";
    if ((wanted == name || isBelow) && IsIn(object, PlaceOf(asked))) take(object);
  }
}

template <class TTake>
void EachLinkOfClass(const void* mi, const CMPIObjectPath* asked, const TTake& take) {
  if (Has(mi, 'o')) return;
  for (const TLink& link : kLinks) {
    if (ClassOf(asked) == link.className && Has(mi, 's') == (*link.id != '\0')) take(link);
  }
}

CMPIStatus EnumerateNames(CMPIInstanceMI* mi, const CMPIContext*, const CMPIResult* result,
                          const CMPIObjectPath* asked) {
  const CMPIStatus status = Check(mi, 'n');
  if (status.rc != CMPI_RC_OK) return status;
  EachOfClass(mi, asked, [&](const TObject& object) {
    result->ft->returnObjectPath(result, NewPath(PlaceOf(asked), object));
  });
  EachLinkOfClass(mi, asked, [&](const TLink& link) {
    CMPIInstance* instance = NewLink(PlaceOf(asked), link);
    result->ft->returnObjectPath(result, instance->ft->getObjectPath(instance, nullptr));
  });
  return result->ft->returnDone(result);
}

CMPIStatus Enumerate(CMPIInstanceMI* mi, const CMPIContext*, const CMPIResult* result,
                     const CMPIObjectPath* asked, const char** props) {
  const CMPIStatus status = Check(mi, 'e');
  if (status.rc != CMPI_RC_OK) return status;
  EachOfClass(mi, asked, [&](const TObject& object) {
    result->ft->returnInstance(result, NewInstance(PlaceOf(asked), object, props));
  });
  EachLinkOfClass(mi, asked, [&](const TLink& link) {
    result->ft->returnInstance(result, NewLink(PlaceOf(asked), link));
  });
  return result->ft->returnDone(result);
}

CMPIStatus Get(CMPIInstanceMI* mi, const CMPIContext*, const CMPIResult* result,
               const CMPIObjectPath* path, const char** props) {
  const CMPIStatus status = Check(mi, 'g');
  if (status.rc != CMPI_RC_OK) return status;
  const TObject* object = FindObject(IdOf(path));
  if (object != nullptr && ClassOf(path) == object->className && IsIn(*object, PlaceOf(path))) {
    return result->ft->returnInstance(result, NewInstance(PlaceOf(path), *object, props));
  }
  const CMPIData own = path->ft->getKey(path, "InstanceID", nullptr);
  const CMPIData shelf = path->ft->getKey(path, "Shelf", nullptr);
  const CMPIData box = path->ft->getKey(path, "Box", nullptr);
  for (const TLink& link : kLinks) {
    const bool isMeant =
        shelf.value.ref != nullptr && box.value.ref != nullptr
            ? IdOf(shelf.value.ref) == link.left && IdOf(box.value.ref) == link.right
            : *link.id != '\0' && TextOf(own.value.string) == link.id;
    if (isMeant) return result->ft->returnInstance(result, NewLink(PlaceOf(path), link));
  }
  return Fail(CMPI_RC_ERR_NOT_FOUND, "not in this depot");
}

// What is asked for about an object.
struct TRequest {
  const void* mi;
  const CMPIObjectPath* path;
  const char* association = nullptr;
  const char* resultClass = nullptr;
  const char* role = nullptr;
  const char* resultRole = nullptr;
};

bool IsWanted(const TRequest& request, const char* wanted, const char* found) {
  return wanted == nullptr || Has(request.mi, 'i') || std::strcmp(wanted, found) == 0;
}

// Every association of the object, seen from each end where it is.
template <class TTake>
void EachLink(const TRequest& request, const TTake& take) {
  for (const TLink& link : kLinks) {
    if (Has(request.mi, 's') != (*link.id != '\0')) continue;
    if (!IsWanted(request, request.association, link.className)) continue;
    const std::string id = IdOf(request.path);
    if (id == link.left && IsWanted(request, request.role, link.leftRole) &&
        IsWanted(request, request.resultRole, link.rightRole)) {
      take(link, *FindObject(link.right));
    }
    if (id == link.right && IsWanted(request, request.role, link.rightRole) &&
        IsWanted(request, request.resultRole, link.leftRole)) {
      take(link, *FindObject(link.left));
    }
  }
}

CMPIStatus Associators(CMPIAssociationMI* mi, const CMPIContext*, const CMPIResult* result,
                       const CMPIObjectPath* path, const char* association, const char* resultClass,
                       const char* role, const char* resultRole, const char** props) {
  const CMPIStatus status = Check(mi, 'a');
  if (status.rc != CMPI_RC_OK) return status;
  const TRequest request{mi, path, association, resultClass, role, resultRole};
  EachLink(request, [&](const TLink&, const TObject& far) {
    if (!IsWanted(request, resultClass, far.className)) return;
    result->ft->returnInstance(result, NewInstance("root/cimv2", far, props));
  });
  return result->ft->returnDone(result);
}

CMPIStatus AssociatorNames(CMPIAssociationMI* mi, const CMPIContext*, const CMPIResult* result,
                           const CMPIObjectPath* path, const char* association,
                           const char* resultClass, const char* role, const char* resultRole) {
  const CMPIStatus status = Check(mi, 'A');
  if (status.rc != CMPI_RC_OK) return status;
  const TRequest request{mi, path, association, resultClass, role, resultRole};
  EachLink(request, [&](const TLink&, const TObject& far) {
    if (!IsWanted(request, resultClass, far.className)) return;
    result->ft->returnObjectPath(result, NewPath("root/cimv2", far));
  });
  return result->ft->returnDone(result);
}

CMPIStatus References(CMPIAssociationMI* mi, const CMPIContext*, const CMPIResult* result,
                      const CMPIObjectPath* path, const char* resultClass, const char* role,
                      const char**) {
  const CMPIStatus status = Check(mi, 'r');
  if (status.rc != CMPI_RC_OK || Has(mi, 'q')) return status;
  EachLink({mi, path, resultClass, nullptr, role, nullptr}, [&](const TLink& link, const TObject&) {
    result->ft->returnInstance(result, NewLink("root/cimv2", link));
  });
  return result->ft->returnDone(result);
}

CMPIStatus ReferenceNames(CMPIAssociationMI* mi, const CMPIContext*, const CMPIResult* result,
                          const CMPIObjectPath* path, const char* resultClass, const char* role) {
  const CMPIStatus status = Check(mi, 'R');
  if (status.rc != CMPI_RC_OK || Has(mi, 'q')) return status;
  EachLink({mi, path, resultClass, nullptr, role, nullptr}, [&](const TLink& link, const TObject&) {
    CMPIInstance* instance = NewLink("root/cimv2", link);
    result->ft->returnObjectPath(result, instance->ft->getObjectPath(instance, nullptr));
  });
  return result->ft->returnDone(result);
}

std::string stored;  // What was last set, as one text.
std::string home;    // What the factory of the properties was told.

std::string EntryOf(const CMPIContext* context, const char* name) {
  const CMPIData entry = context->ft->getEntry(context, name, nullptr);
  return entry.type == CMPI_string ? TextOf(entry.value.string) : "(none)";
}

CMPIStatus SetProperty(CMPIPropertyMI* mi, const CMPIContext*, const CMPIResult*,
                       const CMPIObjectPath* path, const char* name, const CMPIData value) {
  const CMPIStatus status = Check(mi, 'p');
  if (status.rc != CMPI_RC_OK) return status;
  if (std::strcmp(name, "Number") == 0) return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
  stored = IdOf(path) + '.' + name + '=';
  stored += value.type == CMPI_string && value.state == CMPI_goodValue ? TextOf(value.value.string)
                                                                       : "(null)";
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus GetProperty(CMPIPropertyMI* mi, const CMPIContext* context, const CMPIResult* result,
                       const CMPIObjectPath* path, const char* name) {
  const CMPIStatus status = Check(mi, 'p');
  if (status.rc != CMPI_RC_OK) return status;
  if (std::strcmp(name, "Number") == 0) return {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
  if (std::strcmp(name, "Locked") == 0) return Fail(CMPI_RC_ERR_ACCESS_DENIED, "locked away");
  std::string text = std::strcmp(name, "Stored") == 0 ? stored : IdOf(path) + '!' + name;
  if (std::strcmp(name, "Home") == 0) text = home;
  if (std::strcmp(name, "Told") == 0) text = EntryOf(context, "sfcbProviderParameters");
  return result->ft->returnData(result, Chars(text), CMPI_chars);
}

std::string Argument(const CMPIArgs* in, const char* name) {
  const CMPIData data = in->ft->getArg(in, name, nullptr);
  return data.type == CMPI_string ? TextOf(data.value.string) : "";
}

// "Class:Id" of a path, with its namespace when that is not root/cimv2.
std::string Name(const CMPIObjectPath* path) {
  const std::string place = PlaceOf(path);
  return (place == "root/cimv2" ? "" : place + ':') + ClassOf(path) + ':' + IdOf(path);
}

// The same for an instance, with what it was made for.
std::string Name(const CMPIInstance* instance) {
  const CMPIData asked = instance->ft->getProperty(instance, "Asked", nullptr);
  std::string text = Name(instance->ft->getObjectPath(instance, nullptr));
  if (asked.type == CMPI_string) text += '(' + TextOf(asked.value.string) + ')';
  return text;
}

std::string Names(CMPIEnumeration* found) {
  std::string text;
  while (found != nullptr && found->ft->hasNext(found, nullptr) != 0) {
    const CMPIData data = found->ft->getNext(found, nullptr);
    text += (text.empty() ? "" : " ");
    text += data.type == CMPI_ref ? Name(data.value.ref) : Name(data.value.inst);
  }
  return text;
}

std::string Name(const CMPIData& data) {
  if (data.type == CMPI_string && data.value.string != nullptr) return TextOf(data.value.string);
  return std::to_string(data.value.uint16);
}

// What the broker finds when it is asked for "What".
std::string AskBroker(const CMPIContext* context, const CMPIArgs* in, CMPIStatus* rc) {
  const CMPIBrokerFT& bft = *broker->bft;
  const std::string what = Argument(in, "What");
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, Argument(in, "Place").c_str(),
                                                    Argument(in, "Class").c_str(), nullptr);
  const std::string id = Argument(in, "Id");
  if (!id.empty()) path->ft->addKey(path, "Id", Chars(id), CMPI_chars);
  const std::string property = Argument(in, "Property");
  const std::string query = Argument(in, "Query");
  const std::string language = Argument(in, "Language");
  const char* props[] = {property.c_str(), nullptr};
  const char** wanted = property.empty() ? nullptr : props;
  if (what == "get") {
    const CMPIInstance* found = bft.getInstance(broker, context, path, wanted, rc);
    return found == nullptr ? "" : Name(found);
  }
  if (what == "names") return Names(bft.enumerateInstanceNames(broker, context, path, rc));
  if (what == "enumerate") return Names(bft.enumerateInstances(broker, context, path, wanted, rc));
  if (what == "associators") {
    return Names(
        bft.associators(broker, context, path, nullptr, nullptr, nullptr, nullptr, wanted, rc));
  }
  if (what == "query") {
    return Names(bft.execQuery(broker, context, path, query.c_str(), language.c_str(), rc));
  }
  if (what == "filter") {
    return Names(bft.associatorsFiltered(broker, context, path, nullptr, nullptr, nullptr, nullptr,
                                         wanted, language.c_str(), query.c_str(), rc));
  }
  if (what == "property") {
    return Name(bft.getProperty(broker, context, path, property.c_str(), rc));
  }
  if (what == "set") {
    *rc = bft.setProperty(broker, context, path, property.c_str(), Chars(query), CMPI_chars);
    return "";
  }
  CMPIArgs* none = broker->eft->newArgs(broker, nullptr);
  return Name(bft.invokeMethod(broker, context, path, what.c_str(), none, nullptr, rc));
}

CMPIStatus InvokeMethod(CMPIMethodMI* mi, const CMPIContext* context, const CMPIResult* result,
                        const CMPIObjectPath* target, const char* method, const CMPIArgs* in,
                        CMPIArgs*) {
  CMPIStatus status = Check(mi, 'm');
  if (status.rc != CMPI_RC_OK) return status;
  std::string answer = ClassOf(target) + "." + method;
  if (std::strcmp(method, "Ask") == 0) answer = AskBroker(context, in, &status);
  if (status.rc != CMPI_RC_OK) return status;
  return result->ft->returnData(result, Chars(answer), CMPI_chars);
}

// A copy of the first `size` bytes of a table, the last of which is the last readable one.
template <class TTable>
const TTable* AtTheEdge(const TTable& table, std::size_t size) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* memory =
      mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  char* edge = static_cast<char*>(memory) + page;
  std::memcpy(edge - size, &table, size);
  mprotect(edge, page, PROT_NONE);
  return reinterpret_cast<const TTable*>(edge - size);
}

struct TTraits {
  explicit TTraits(const char* name) : text(name) {}
  template <class TFunction>
  TFunction IfHas(char letter, TFunction function) const {
    const bool isThere = text.find(letter) != std::string::npos ||
                         text.find('x') != std::string::npos || text.find('f') != std::string::npos;
    return isThere ? function : nullptr;
  }
  std::string text;
};

}  // namespace depot

using namespace depot;

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

DEPOT_EXPORT CMPIInstanceMI* _Generic_Create_InstanceMI(const CMPIBroker* mb, const CMPIContext*,
                                                        const char* name, CMPIStatus*) {
  broker = mb;
  const TTraits* traits = Keep(TTraits(name + std::strlen("Depot_")));
  const CMPIInstanceMIFT table{CMPIVersion100,
                               0,
                               "Depot",
                               Cleanup,
                               traits->IfHas('n', EnumerateNames),
                               traits->IfHas('e', Enumerate),
                               traits->IfHas('g', Get),
                               nullptr,
                               nullptr,
                               nullptr,
                               nullptr,
                               nullptr};
  return Keep(
      CMPIInstanceMI{traits->text.c_str(),
                     AtTheEdge(table, offsetof(CMPIInstanceMIFT, enumerateInstancesFiltered))});
}

DEPOT_EXPORT CMPIAssociationMI* _Generic_Create_AssociationMI(const CMPIBroker* mb,
                                                              const CMPIContext*, const char* name,
                                                              CMPIStatus*) {
  broker = mb;
  const TTraits* traits = Keep(TTraits(name + std::strlen("Depot_")));
  const CMPIAssociationMIFT table{CMPIVersion100,
                                  0,
                                  "Depot",
                                  nullptr,
                                  traits->IfHas('a', Associators),
                                  traits->IfHas('A', AssociatorNames),
                                  traits->IfHas('r', References),
                                  traits->IfHas('R', ReferenceNames),
                                  nullptr,
                                  nullptr};
  return Keep(CMPIAssociationMI{
      traits->text.c_str(), AtTheEdge(table, offsetof(CMPIAssociationMIFT, associatorsFiltered))});
}

DEPOT_EXPORT CMPIMethodMI* _Generic_Create_MethodMI(const CMPIBroker* mb, const CMPIContext*,
                                                    const char* name, CMPIStatus*) {
  broker = mb;
  const TTraits* traits = Keep(TTraits(name + std::strlen("Depot_")));
  const CMPIMethodMIFT table{CMPIVersion100, 0, "Depot", nullptr, traits->IfHas('m', InvokeMethod)};
  return Keep(CMPIMethodMI{traits->text.c_str(), AtTheEdge(table, sizeof table)});
}

DEPOT_EXPORT CMPIPropertyMI* _Generic_Create_PropertyMI(const CMPIBroker* mb,
                                                        const CMPIContext* context,
                                                        const char* name, CMPIStatus*) {
  broker = mb;
  home = EntryOf(context, CMPIInitNameSpace) + ' ' + EntryOf(context, "sfcbProviderParameters");
  const TTraits* traits = Keep(TTraits(name + std::strlen("Depot_")));
  const CMPIPropertyMIFT table{CMPIVersion100,
                               0,
                               "Depot",
                               nullptr,
                               traits->IfHas('p', SetProperty),
                               traits->IfHas('p', GetProperty),
                               nullptr};
  return Keep(CMPIPropertyMI{traits->text.c_str(),
                             AtTheEdge(table, offsetof(CMPIPropertyMIFT, setPropertyWithOrigin))});
}

// NOLINTEND(readability-identifier-naming)
