// SPDX-License-Identifier: Apache-2.0
//
// A provider whose answers do not fit what the MOF declares. Its name, behind "Misfit_", is what it
// gives as the level of a thing; with "Garbage" the ends of its associations are no paths, with
// "Silent" it finds nothing and says that all is well. With "Ignoring" its functions have the
// process ignore SIGCHLD, with "NoWait" its child processes leave nothing; with "Maker" its factory
// does, and the variant MISFIT_IGNORES does so when it is loaded.
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include "platform/cmpi/abi/cmpi.h"
#include "tests/platform/cmpi/operations/ProviderSide.h"

namespace misfit {

using providerside::Chars;
using providerside::ClassOf;
using providerside::In;
using providerside::PlaceOf;
using providerside::TextOf;

const CMPIBroker* broker = nullptr;

std::string TraitOf(const CMPIInstanceMI* mi) {
  return static_cast<const char*>(mi->hdl);
}

void SetText(CMPIInstance* instance, const char* name, const std::string& text) {
  instance->ft->setProperty(instance, name, Chars(text), CMPI_chars);
}

void SetList(CMPIInstance* instance, const char* name, const std::vector<std::string>& texts) {
  const auto count = static_cast<CMPICount>(texts.size());
  CMPIArray* array = broker->eft->newArray(broker, count, CMPI_string, nullptr);
  for (CMPICount i = 0; i < count; ++i) {
    const CMPIString* text = broker->eft->newString(broker, texts[i].c_str(), nullptr);
    array->ft->setElementAt(array, i, In(text), CMPI_string);
  }
  instance->ft->setProperty(instance, name, In(array), CMPI_stringA);
}

CMPIInstance* NewInstance(const std::string& place, const std::string& className) {
  CMPIObjectPath* path =
      broker->eft->newObjectPath(broker, place.c_str(), className.c_str(), nullptr);
  return broker->eft->newInstance(broker, path, nullptr);
}

CMPIInstance* NewLink(const std::string& place, const std::string& trait) {
  CMPIInstance* link = NewInstance(place, "M_Joins");
  SetText(link, "Left", trait == "Garbage" ? "under the left rug" : "root/far:M_Thing.Id=\"L\"");
  SetText(link, "Right", "M_Thing.Id=\"R\"");
  return link;
}

CMPIInstance* NewThing(const std::string& place, const std::string& id, const std::string& trait,
                       const CMPIContext* context) {
  CMPIInstance* thing = NewInstance(place, "M_Thing");
  SetText(thing, "Id", id);
  SetText(thing, "Level", trait);
  SetText(thing, "Count", "12");
  SetText(thing, "When", "20260102030405.000000+000");
  SetText(thing, "Note",
          "Gr\xFC\xDF"
          "e aus \xC3\xA4");
  SetText(thing, "Kinds", "4");
  SetList(thing, "Levels", {"low", "9", "Spare"});
  const CMPIData user = context->ft->getEntry(context, CMPIPrincipal, nullptr);
  SetText(thing, "User", TextOf(user.value.string));
  const CMPIUint32 wide = 70000;
  thing->ft->setProperty(thing, "Number", In(wide), CMPI_uint32);
  return thing;
}

CMPIStatus Cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  return {CMPI_RC_OK, nullptr};
}

// The second thing is as misfit as the first.
CMPIStatus Enumerate(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
                     const CMPIObjectPath* asked, const char**) {
  const std::string place = PlaceOf(asked);
  if (ClassOf(asked) == "M_Joins") {
    result->ft->returnInstance(result, NewLink(place, TraitOf(mi)));
    return {CMPI_RC_OK, nullptr};
  }
  for (const char* id : {"T1", "T2"}) {
    result->ft->returnInstance(result, NewThing(place, id, TraitOf(mi), context));
  }
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus EnumerateNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                          const CMPIObjectPath* asked) {
  CMPIObjectPath* path =
      broker->eft->newObjectPath(broker, PlaceOf(asked).c_str(), ClassOf(asked).c_str(), nullptr);
  path->ft->addKey(path, "Left", Chars("root/far:M_Thing.Id=\"L\""), CMPI_chars);
  path->ft->addKey(path, "Right", Chars("M_Thing.Id=\"R\""), CMPI_chars);
  result->ft->returnObjectPath(result, path);
  return {CMPI_RC_OK, nullptr};
}

void IgnoreChildren(bool isWhollyIgnored) {
  struct sigaction action = {};
  action.sa_handler = isWhollyIgnored ? SIG_IGN : SIG_DFL;
  action.sa_flags = isWhollyIgnored ? 0 : SA_NOCLDWAIT;
  sigaction(SIGCHLD, &action, nullptr);
}

#ifdef MISFIT_IGNORES
__attribute__((constructor)) void IgnoreAtLoad() {
  IgnoreChildren(true);
}
#endif

CMPIStatus Get(CMPIInstanceMI* mi, const CMPIContext* context, const CMPIResult* result,
               const CMPIObjectPath* path, const char**) {
  if (TraitOf(mi) == "Silent") return {CMPI_RC_OK, nullptr};
  if (TraitOf(mi) == "Ignoring") IgnoreChildren(true);
  if (TraitOf(mi) == "NoWait") IgnoreChildren(false);
  result->ft->returnInstance(result, NewThing(PlaceOf(path), "T1", TraitOf(mi), context));
  return {CMPI_RC_OK, nullptr};
}

const CMPIInstanceMIFT kTable{CMPIVersion100, 0,         "Misfit", Cleanup,
                              EnumerateNames, Enumerate, Get,      nullptr,
                              nullptr,        nullptr,   nullptr,  nullptr};

}  // namespace misfit

// NOLINTBEGIN(readability-identifier-naming): the name is fixed by the interface.
extern "C" __attribute__((visibility("default"))) CMPIInstanceMI* _Generic_Create_InstanceMI(
    const CMPIBroker* mb, const CMPIContext*, const char* name, CMPIStatus*) {
  misfit::broker = mb;
  const std::string* trait = providerside::Keep(std::string(name + std::strlen("Misfit_")));
  if (*trait == "Maker") misfit::IgnoreChildren(true);
  return providerside::Keep(CMPIInstanceMI{trait->c_str(), &misfit::kTable});
}
// NOLINTEND(readability-identifier-naming)
