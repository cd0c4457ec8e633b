// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerPath.h"

#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/THostLease.h"
#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIStatus SetNameSpace(const CMPIObjectPath* self, const char* text) noexcept {
  return AnswerStatus(
      [&] { TBrokerPath::From(self).GetContent().nameSpace = ToUtf8(TextOrEmpty(text)); });
}

CMPIString* GetNameSpace(const CMPIObjectPath* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(TBrokerPath::From(self).GetContent().nameSpace); });
}

CMPIStatus SetHostname(const CMPIObjectPath* self, const char* text) noexcept {
  return AnswerStatus(
      [&] { TBrokerPath::From(self).GetContent().host = ToUtf8(TextOrEmpty(text)); });
}

CMPIString* GetHostname(const CMPIObjectPath* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(TBrokerPath::From(self).GetContent().host); });
}

CMPIStatus SetClassName(const CMPIObjectPath* self, const char* text) noexcept {
  return AnswerStatus(
      [&] { TBrokerPath::From(self).GetContent().className = ToUtf8(TextOrEmpty(text)); });
}

CMPIString* GetClassName(const CMPIObjectPath* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(TBrokerPath::From(self).GetContent().className); });
}

CMPIStatus AddKey(const CMPIObjectPath* self, const char* name, const CMPIValue* value,
                  const CMPIType type) noexcept {
  return AnswerStatus([&] {
    TPathContent& content = TBrokerPath::From(self).GetContent();
    const std::string key = ToUtf8(RequireName(name, "key name"));
    const TCIMValue given = FromCMPI(value, type);
    if (given.IsArray() || given.GetType() == ECIMType::kInstance ||
        given.GetType() == ECIMType::kNone) {
      throw TBrokerFault(CMPI_RC_ERR_INVALID_DATA_TYPE, "no type for a key: " + key);
    }
    if (given.IsNull()) {
      throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "a key without a value: " + key);
    }
    SetNamed(content.keys, key, given);
  });
}

CMPIData KeyData(const TCIMValue& value) {
  CMPIData data = ToCMPI(value);
  data.state = static_cast<CMPIValueState>(data.state | CMPI_keyValue);
  return data;
}

CMPIData GetKey(const CMPIObjectPath* self, const char* name, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TNamedValues& keys = TBrokerPath::From(self).GetContent().keys;
    const TCIMPropertyData* key = FindNamed(keys, RequireName(name, "key name"));
    if (key == nullptr) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, std::string("no key ") + name);
    }
    return KeyData(key->value);
  });
}

CMPIData GetKeyAt(const CMPIObjectPath* self, CMPICount index, CMPIString** name,
                  CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TNamedValues& keys = TBrokerPath::From(self).GetContent().keys;
    if (index >= keys.size()) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, "index beyond the last key");
    }
    if (name != nullptr) *name = MakeString(keys[index].name);
    return KeyData(keys[index].value);
  });
}

CMPICount GetKeyCount(const CMPIObjectPath* self, CMPIStatus* rc) noexcept {
  return Answer(
      rc, [&] { return static_cast<CMPICount>(TBrokerPath::From(self).GetContent().keys.size()); });
}

CMPIStatus SetNameSpaceFrom(const CMPIObjectPath* self, const CMPIObjectPath* source) noexcept {
  return AnswerStatus([&] {
    TBrokerPath::From(self).GetContent().nameSpace =
        TBrokerPath::From(source).GetContent().nameSpace;
  });
}

CMPIStatus SetHostAndNameSpaceFrom(const CMPIObjectPath* self,
                                   const CMPIObjectPath* source) noexcept {
  return AnswerStatus([&] {
    TPathContent& target = TBrokerPath::From(self).GetContent();
    const TPathContent& given = TBrokerPath::From(source).GetContent();
    target.host = given.host;
    target.nameSpace = given.nameSpace;
  });
}

using TDeclaration = std::shared_ptr<const TCIMClassDeclaration>;

/// The declared class of a path.
/// Errors: TBrokerFault (CMPI_RC_ERR_INVALID_CLASS) for one that is not known.
TDeclaration RequireClass(const CMPIObjectPath* self) {
  const std::string& className = TBrokerPath::From(self).GetContent().className;
  const THostLease host(nullptr);
  TDeclaration declaration = host.Require().FindClass(className);
  if (declaration == nullptr) {
    throw TBrokerFault(CMPI_RC_ERR_INVALID_CLASS, "no class " + className);
  }
  return declaration;
}

/// The element called `name` of a class or a method.
/// Errors: TBrokerFault with `code` when there is none.
template <class TElement>
const TElement& RequireElement(const std::vector<TElement>& elements, const char* name,
                               CMPIrc code) {
  const std::string wanted = RequireName(name, "element name");
  for (const TElement& element : elements) {
    if (IsSameName(element.name, wanted)) return element;
  }
  throw TBrokerFault(code, "nothing is called " + wanted);
}

CMPIData QualifierOf(const std::vector<TCIMQualifier>& qualifiers, const char* name) {
  return ToCMPI(RequireElement(qualifiers, name, CMPI_RC_ERR_NOT_FOUND).value);
}

CMPIData GetClassQualifier(const CMPIObjectPath* self, const char* name, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return QualifierOf(RequireClass(self)->qualifiers, name); });
}

CMPIData GetPropertyQualifier(const CMPIObjectPath* self, const char* property, const char* name,
                              CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TDeclaration declaration = RequireClass(self);
    const auto& element =
        RequireElement(declaration->properties, property, CMPI_RC_ERR_NO_SUCH_PROPERTY);
    return QualifierOf(element.qualifiers, name);
  });
}

CMPIData GetMethodQualifier(const CMPIObjectPath* self, const char* method, const char* name,
                            CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TDeclaration declaration = RequireClass(self);
    const auto& element =
        RequireElement(declaration->methods, method, CMPI_RC_ERR_METHOD_NOT_FOUND);
    return QualifierOf(element.qualifiers, name);
  });
}

CMPIData GetParameterQualifier(const CMPIObjectPath* self, const char* method,
                               const char* parameter, const char* name, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TDeclaration declaration = RequireClass(self);
    const auto& owner = RequireElement(declaration->methods, method, CMPI_RC_ERR_METHOD_NOT_FOUND);
    const auto& element =
        RequireElement(owner.parameters, parameter, CMPI_RC_ERR_INVALID_PARAMETER);
    return QualifierOf(element.qualifiers, name);
  });
}

CMPIString* ToString(const CMPIObjectPath* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(TBrokerPath::From(self).Describe()); });
}

}  // namespace

const CMPIObjectPathFT TBrokerPath::kTable = {kBrokerVersion,
                                              Release,
                                              Clone,
                                              SetNameSpace,
                                              GetNameSpace,
                                              SetHostname,
                                              GetHostname,
                                              SetClassName,
                                              GetClassName,
                                              AddKey,
                                              GetKey,
                                              GetKeyAt,
                                              GetKeyCount,
                                              SetNameSpaceFrom,
                                              SetHostAndNameSpaceFrom,
                                              GetClassQualifier,
                                              GetPropertyQualifier,
                                              GetMethodQualifier,
                                              GetParameterQualifier,
                                              ToString};

}  // namespace NZEPQEL20::cmpi
