// SPDX-License-Identifier: Apache-2.0
//
// A provider of as many alike instances as the class that it is asked for says, and of shelves
// that hold as many.
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/cmpi/abi/cmpi.h"

namespace {

const CMPIBroker* broker = nullptr;

template <class T>
const CMPIValue* In(const T& value) {
  return reinterpret_cast<const CMPIValue*>(&value);
}

const CMPIValue* Chars(const char* text) {
  return reinterpret_cast<const CMPIValue*>(text);
}

// The number behind the last underscore.
unsigned long CountOf(const char* className) {
  const char* const number = std::strrchr(className, '_');
  return number == nullptr ? 0 : std::strtoul(number + 1, nullptr, 10);
}

CMPIInstance* NewArticle(const char* ns, const char* className, unsigned long number) {
  const std::string id = "article-" + std::to_string(number);
  CMPIObjectPath* path = broker->eft->newObjectPath(broker, ns, className, nullptr);
  path->ft->addKey(path, "Id", Chars(id.c_str()), CMPI_chars);
  CMPIInstance* article = broker->eft->newInstance(broker, path, nullptr);
  const CMPIUint16 state = 2;
  const CMPIUint64 size = number * 4096;
  const CMPIBoolean isSold = number % 2 == 0 ? 1 : 0;
  CMPIDateTime* made =
      broker->eft->newDateTimeFromChars(broker, "20240229123456.654321+000", nullptr);
  CMPIArray* modes = broker->eft->newArray(broker, 2, CMPI_uint16, nullptr);
  modes->ft->setElementAt(modes, 0, In(state), CMPI_uint16);
  article->ft->setProperty(article, "Name", Chars(id.c_str()), CMPI_chars);
  article->ft->setProperty(article, "Description", Chars("One of many alike"), CMPI_chars);
  article->ft->setProperty(article, "State", In(state), CMPI_uint16);
  article->ft->setProperty(article, "Size", In(size), CMPI_uint64);
  article->ft->setProperty(article, "Sold", In(isSold), CMPI_boolean);
  article->ft->setProperty(article, "Made", In(made), CMPI_dateTime);
  article->ft->setProperty(article, "Modes", In(modes), CMPI_uint16A);
  return article;
}

CMPIStatus Cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  return {CMPI_RC_OK, nullptr};
}

CMPIStatus EnumerateInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                              const CMPIObjectPath* asked, const char**) {
  const CMPIString* ns = asked->ft->getNameSpace(asked, nullptr);
  const CMPIString* type = asked->ft->getClassName(asked, nullptr);
  const char* const className = type->ft->getCharPtr(type, nullptr);
  const char* const nameSpace = ns->ft->getCharPtr(ns, nullptr);
  const unsigned long count = CountOf(className);
  for (unsigned long i = 0; i < count; ++i) {
    result->ft->returnInstance(result, NewArticle(nameSpace, className, i));
  }
  return result->ft->returnDone(result);
}

CMPIStatus CleanupAssociation(CMPIAssociationMI*, const CMPIContext*, CMPIBoolean) {
  return {CMPI_RC_OK, nullptr};
}

// How many articles lie on the shelf.
unsigned long CountOn(const CMPIObjectPath* shelf) {
  const CMPIData id = shelf->ft->getKey(shelf, "Id", nullptr);
  const char* const text = id.value.string == nullptr
                               ? nullptr
                               : id.value.string->ft->getCharPtr(id.value.string, nullptr);
  return text == nullptr ? 0 : CountOf(text);
}

CMPIStatus Associators(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result,
                       const CMPIObjectPath* shelf, const char*, const char*, const char*,
                       const char*, const char**) {
  const CMPIString* ns = shelf->ft->getNameSpace(shelf, nullptr);
  const char* const nameSpace = ns->ft->getCharPtr(ns, nullptr);
  const unsigned long count = CountOn(shelf);
  for (unsigned long i = 0; i < count; ++i) {
    result->ft->returnInstance(result, NewArticle(nameSpace, "Stock_Article", i));
  }
  return result->ft->returnDone(result);
}

CMPIStatus ReferenceNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* result,
                          const CMPIObjectPath* shelf, const char*, const char*) {
  const CMPIString* ns = shelf->ft->getNameSpace(shelf, nullptr);
  const char* const nameSpace = ns->ft->getCharPtr(ns, nullptr);
  const unsigned long count = CountOn(shelf);
  for (unsigned long i = 0; i < count; ++i) {
    const std::string id = "article-" + std::to_string(i);
    CMPIObjectPath* article =
        broker->eft->newObjectPath(broker, nameSpace, "Stock_Article", nullptr);
    article->ft->addKey(article, "Id", Chars(id.c_str()), CMPI_chars);
    CMPIObjectPath* holds = broker->eft->newObjectPath(broker, nameSpace, "Stock_Holds", nullptr);
    holds->ft->addKey(holds, "Shelf", In(shelf), CMPI_ref);
    holds->ft->addKey(holds, "Article", In(article), CMPI_ref);
    result->ft->returnObjectPath(result, holds);
  }
  return result->ft->returnDone(result);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) CMPIAssociationMI* Stock_Create_AssociationMI(
    const CMPIBroker* mb, const CMPIContext*, CMPIStatus*) {
  static const CMPIAssociationMIFT kTable{CMPIVersion200, 0,       "Stock", CleanupAssociation,
                                          Associators,    nullptr, nullptr, ReferenceNames,
                                          nullptr,        nullptr};
  static CMPIAssociationMI mi{nullptr, &kTable};
  broker = mb;
  return &mi;
}

extern "C" __attribute__((visibility("default"))) CMPIInstanceMI* Stock_Create_InstanceMI(
    const CMPIBroker* mb, const CMPIContext*, CMPIStatus*) {
  static const CMPIInstanceMIFT kTable{
      CMPIVersion200, 0,       "Stock", Cleanup, nullptr, EnumerateInstances,
      nullptr,        nullptr, nullptr, nullptr, nullptr, nullptr};
  static CMPIInstanceMI mi{nullptr, &kTable};
  broker = mb;
  return &mi;
}
