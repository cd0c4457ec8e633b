// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TCmpiMarshal.h"

namespace hardware {
namespace {

// References nest at most one level in what clients may send: an association's ends.
constexpr int kMaxDepth = 2;

void Require(const CMPIStatus& status, const std::string& what) {
  if (status.rc != CMPI_RC_OK) {
    throw TCimError(TCimError::kFailed,
                    "the broker refuses " + what + ": " + std::to_string(status.rc));
  }
}

template <typename TObject>
TObject* RequireObject(TObject* object, const CMPIStatus& status, const std::string& what) {
  Require(status, what);
  if (object == nullptr) throw TCimError(TCimError::kFailed, "the broker makes no " + what);
  return object;
}

// Text values are handed over by the address of the text itself.
const CMPIValue* AsValue(const std::string& text) {
  return reinterpret_cast<const CMPIValue*>(text.c_str());
}

std::string ToText(const CMPIString* string) {
  if (string == nullptr || string->ft == nullptr) return {};
  const char* const text = string->ft->getCharPtr(string, nullptr);
  return text != nullptr ? text : "";
}

bool IsNull(const CMPIData& data) {
  return (data.state & (CMPI_nullValue | CMPI_notFound | CMPI_badValue)) != 0;
}

TCimPath FromPathAt(const CMPIObjectPath* path, int depth);

TCimValue FromData(const CMPIData& data, int depth) {
  if (IsNull(data)) return {};
  switch (data.type) {
    case CMPI_boolean:
      return data.value.boolean != 0;
    case CMPI_uint8:
      return std::uint64_t{data.value.uint8};
    case CMPI_uint16:
      return std::uint64_t{data.value.uint16};
    case CMPI_uint32:
      return std::uint64_t{data.value.uint32};
    case CMPI_uint64:
      return std::uint64_t{data.value.uint64};
    case CMPI_sint64:
      // Some brokers widen integer keys to this.
      return data.value.sint64 >= 0 ? TCimValue(static_cast<std::uint64_t>(data.value.sint64))
                                    : TCimValue();
    case CMPI_string:
      return ToText(data.value.string);
    case CMPI_chars:
      return std::string(data.value.chars != nullptr ? data.value.chars : "");
    case CMPI_ref:
      if (data.value.ref == nullptr || depth >= kMaxDepth) return {};
      return FromPathAt(data.value.ref, depth + 1);
    case CMPI_dateTime: {
      const CMPIDateTime* const time = data.value.dateTime;
      if (time == nullptr) return {};
      return TCimTime{time->ft->getBinaryFormat(time, nullptr),
                      time->ft->isInterval(time, nullptr) != 0};
    }
    default:
      return {};
  }
}

TCimPath FromPathAt(const CMPIObjectPath* path, int depth) {
  TCimPath plain;
  plain.className = ToText(path->ft->getClassName(path, nullptr));
  const CMPICount count = path->ft->getKeyCount(path, nullptr);
  for (CMPICount i = 0; i < count; ++i) {
    CMPIString* name = nullptr;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const CMPIData data = path->ft->getKeyAt(path, i, &name, &status);
    if (status.rc != CMPI_RC_OK) continue;
    const TCimValue value = FromData(data, depth);
    if (const auto* const text = std::get_if<std::string>(&value)) {
      plain.keys[ToText(name)] = *text;
    } else if (const auto* const number = std::get_if<std::uint64_t>(&value)) {
      plain.keys[ToText(name)] = std::to_string(*number);
    } else if (const auto* const reference = std::get_if<TCimPath>(&value)) {
      plain.roles.push_back({ToText(name), *reference});
    }
  }
  return plain;
}

}  // namespace

CMPIStatus TCmpiMarshal::MakeStatus(const CMPIBroker* broker, int status,
                                    const char* message) noexcept {
  CMPIStatus made{static_cast<CMPIrc>(status), nullptr};
  if (message != nullptr) made.msg = broker->eft->newString(broker, message, nullptr);
  return made;
}

TCimPath TCmpiMarshal::FromPath(const CMPIObjectPath* path) {
  return FromPathAt(path, 0);
}

std::string TCmpiMarshal::GetNameSpace(const CMPIObjectPath* path) {
  return ToText(path->ft->getNameSpace(path, nullptr));
}

TCimArguments TCmpiMarshal::FromArguments(const CMPIArgs* arguments) {
  TCimArguments plain;
  const CMPICount count = arguments == nullptr ? 0 : arguments->ft->getArgCount(arguments, nullptr);
  for (CMPICount i = 0; i < count; ++i) {
    CMPIString* name = nullptr;
    CMPIStatus status{CMPI_RC_OK, nullptr};
    const CMPIData data = arguments->ft->getArgAt(arguments, i, &name, &status);
    if (status.rc == CMPI_RC_OK) plain[ToText(name)] = FromData(data, 0);
  }
  return plain;
}

CMPIObjectPath* TCmpiMarshal::ToPath(const TCimPath& path) const {
  CMPIStatus status{CMPI_RC_OK, nullptr};
  CMPIObjectPath* const made =
      m_broker->eft->newObjectPath(m_broker, m_nameSpace.c_str(), path.className.c_str(), &status);
  RequireObject(made, status, "path of " + path.className);
  for (const auto& [name, text] : path.keys) {
    Require(made->ft->addKey(made, name.c_str(), AsValue(text), CMPI_chars), "key " + name);
  }
  for (const TCimRole& role : path.roles) {
    CMPIValue value{};
    value.ref = ToPath(role.path);
    Require(made->ft->addKey(made, role.name.c_str(), &value, CMPI_ref), "key " + role.name);
  }
  return made;
}

CMPIInstance* TCmpiMarshal::ToInstance(const TCimInstance& instance) const {
  CMPIStatus status{CMPI_RC_OK, nullptr};
  CMPIObjectPath* const path = ToPath(instance.path);
  CMPIInstance* const made = m_broker->eft->newInstance(m_broker, path, &status);
  RequireObject(made, status, "instance of " + instance.path.className);
  for (const auto& [name, value] : instance.properties) SetProperty(made, name, value);
  return made;
}

CMPIArray* TCmpiMarshal::ToArray(const std::vector<std::uint16_t>& numbers) const {
  CMPIStatus status{CMPI_RC_OK, nullptr};
  CMPIArray* const array = m_broker->eft->newArray(m_broker, static_cast<CMPICount>(numbers.size()),
                                                   CMPI_uint16, &status);
  RequireObject(array, status, "array");
  CMPICount index = 0;
  for (const std::uint16_t number : numbers) {
    CMPIValue value{};
    value.uint16 = number;
    Require(array->ft->setElementAt(array, index++, &value, CMPI_uint16), "array element");
  }
  return array;
}

void TCmpiMarshal::SetProperty(CMPIInstance* instance, const std::string& name,
                               const TCimValue& plain) const {
  CMPIValue value{};
  CMPIType type = CMPI_null;
  const CMPIValue* place = &value;
  if (const auto* const text = std::get_if<std::string>(&plain)) {
    place = AsValue(*text);
    type = CMPI_chars;
  } else if (const auto* const flag = std::get_if<bool>(&plain)) {
    value.boolean = *flag ? 1 : 0;
    type = CMPI_boolean;
  } else if (const auto* const small = std::get_if<std::uint16_t>(&plain)) {
    value.uint16 = *small;
    type = CMPI_uint16;
  } else if (const auto* const number = std::get_if<std::uint32_t>(&plain)) {
    value.uint32 = *number;
    type = CMPI_uint32;
  } else if (const auto* const large = std::get_if<std::uint64_t>(&plain)) {
    value.uint64 = *large;
    type = CMPI_uint64;
  } else if (const auto* const numbers = std::get_if<std::vector<std::uint16_t>>(&plain)) {
    value.array = ToArray(*numbers);
    type = CMPI_uint16A;
  } else if (const auto* const path = std::get_if<TCimPath>(&plain)) {
    value.ref = ToPath(*path);
    type = CMPI_ref;
  } else if (const auto* const time = std::get_if<TCimTime>(&plain)) {
    CMPIStatus status{CMPI_RC_OK, nullptr};
    value.dateTime = m_broker->eft->newDateTimeFromBinary(m_broker, time->microseconds,
                                                          time->isInterval ? 1 : 0, &status);
    RequireObject(value.dateTime, status, "time");
    type = CMPI_dateTime;
  }
  Require(instance->ft->setProperty(instance, name.c_str(), place, type), "property " + name);
}

void TCmpiMarshal::AddArguments(const TCimArguments& arguments, CMPIArgs* out) const {
  if (out == nullptr) return;
  for (const auto& [name, plain] : arguments) {
    const auto* const path = std::get_if<TCimPath>(&plain);
    if (path == nullptr) continue;
    CMPIValue value{};
    value.ref = ToPath(*path);
    Require(out->ft->addArg(out, name.c_str(), &value, CMPI_ref), "parameter " + name);
  }
}

}  // namespace hardware
