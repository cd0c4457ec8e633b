// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/Values.h"

#include <cstring>

#include "platform/cmpi/TBrokerArray.h"
#include "platform/cmpi/TBrokerDateTime.h"
#include "platform/cmpi/TBrokerInstance.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TBrokerString.h"

namespace NZEPQEL20::cmpi {

namespace {

struct TTypePair {
  ECIMType cim;
  CMPIType cmpi;
};

constexpr TTypePair kTypes[] = {
    {ECIMType::kNone, CMPI_null},         {ECIMType::kBoolean, CMPI_boolean},
    {ECIMType::kChar16, CMPI_char16},     {ECIMType::kUInt8, CMPI_uint8},
    {ECIMType::kUInt16, CMPI_uint16},     {ECIMType::kUInt32, CMPI_uint32},
    {ECIMType::kUInt64, CMPI_uint64},     {ECIMType::kSInt8, CMPI_sint8},
    {ECIMType::kSInt16, CMPI_sint16},     {ECIMType::kSInt32, CMPI_sint32},
    {ECIMType::kSInt64, CMPI_sint64},     {ECIMType::kReal32, CMPI_real32},
    {ECIMType::kReal64, CMPI_real64},     {ECIMType::kString, CMPI_string},
    {ECIMType::kDateTime, CMPI_dateTime}, {ECIMType::kReference, CMPI_ref},
    {ECIMType::kInstance, CMPI_instance}, {ECIMType::kString, CMPI_chars},
    {ECIMType::kString, CMPI_charsptr},
};

/// Reads exactly as many bytes as a `T` has.
template <class T>
T ReadAs(const CMPIValue* value) {
  T read;
  // NOLINTNEXTLINE(bugprone-sizeof-expression): a pointer is read as a pointer.
  std::memcpy(&read, value, sizeof read);
  return read;
}

TCIMValue TextValue(const char* text) {
  return text == nullptr ? TCIMValue::Null(ECIMType::kString) : TCIMValue(ToUtf8(text));
}

TCIMValue ReadString(const CMPIValue* value) {
  const TBrokerString* string = TBrokerString::FromOrNull(ReadAs<const CMPIString*>(value));
  return string == nullptr ? TCIMValue::Null(ECIMType::kString)
                           : TCIMValue(ToUtf8(string->GetText()));
}

TCIMValue ReadObject(const CMPIValue* value, ECIMType type) {
  if (type == ECIMType::kDateTime) {
    const auto* time = TBrokerDateTime::FromOrNull(ReadAs<const CMPIDateTime*>(value));
    return time == nullptr ? TCIMValue::Null(type) : TCIMValue::DateTime(time->GetText());
  }
  if (type == ECIMType::kReference) {
    const auto* path = TBrokerPath::FromOrNull(ReadAs<const CMPIObjectPath*>(value));
    return path == nullptr ? TCIMValue::Null(type) : TCIMValue(path->GetContent().ToReference());
  }
  auto* instance = TBrokerInstance::FromOrNull(ReadAs<const CMPIInstance*>(value));
  return instance == nullptr ? TCIMValue::Null(type) : TCIMValue::Instance(instance->GetData());
}

TCIMValue ReadArray(const CMPIValue* value, ECIMType type) {
  const auto* array = TBrokerArray::FromOrNull(ReadAs<const CMPIArray*>(value));
  return array == nullptr ? TCIMValue::Null(type, true) : array->GetValue();
}

TCIMValue ReadScalar(const CMPIValue* value, ECIMType type) {
  switch (type) {
    case ECIMType::kNone:
      return TCIMValue();
    case ECIMType::kBoolean:
      return TCIMValue::Boolean(ReadAs<CMPIBoolean>(value) != 0);
    case ECIMType::kChar16:
      return TCIMValue::Char16(ReadAs<CMPIChar16>(value));
    case ECIMType::kUInt8:
      return TCIMValue::Unsigned(type, ReadAs<CMPIUint8>(value));
    case ECIMType::kUInt16:
      return TCIMValue::Unsigned(type, ReadAs<CMPIUint16>(value));
    case ECIMType::kUInt32:
      return TCIMValue::Unsigned(type, ReadAs<CMPIUint32>(value));
    case ECIMType::kUInt64:
      return TCIMValue::Unsigned(type, ReadAs<CMPIUint64>(value));
    case ECIMType::kSInt8:
      return TCIMValue::Signed(type, ReadAs<CMPISint8>(value));
    case ECIMType::kSInt16:
      return TCIMValue::Signed(type, ReadAs<CMPISint16>(value));
    case ECIMType::kSInt32:
      return TCIMValue::Signed(type, ReadAs<CMPISint32>(value));
    case ECIMType::kSInt64:
      return TCIMValue::Signed(type, ReadAs<CMPISint64>(value));
    case ECIMType::kReal32:
      return TCIMValue::Real32(ReadAs<CMPIReal32>(value));
    case ECIMType::kReal64:
      return TCIMValue::Real64(ReadAs<CMPIReal64>(value));
    case ECIMType::kString:
      return ReadString(value);
    default:
      return ReadObject(value, type);
  }
}

void WriteNumber(CMPIValue& target, const TCIMValue& value) {
  switch (value.GetType()) {
    case ECIMType::kBoolean:
      target.boolean = value.ToBoolean() ? 1 : 0;
      return;
    case ECIMType::kReal32:
      target.real32 = static_cast<CMPIReal32>(value.ToReal());
      return;
    case ECIMType::kReal64:
      target.real64 = value.ToReal();
      return;
    case ECIMType::kSInt8:
    case ECIMType::kSInt16:
    case ECIMType::kSInt32:
    case ECIMType::kSInt64:
      target.sint64 = value.ToSigned();
      return;
    default:
      target.uint64 = value.ToUnsigned();
      return;
  }
}

void WriteScalar(CMPIValue& target, const TCIMValue& value) {
  switch (value.GetType()) {
    case ECIMType::kString:
      target.string = MakeString(static_cast<std::string>(value));
      return;
    case ECIMType::kDateTime:
      target.dateTime = Make<TBrokerDateTime>(value.ToString(10));
      return;
    case ECIMType::kReference:
      target.ref = Make<TBrokerPath>(TPathContent::From(static_cast<TCIMReference>(value)));
      return;
    case ECIMType::kInstance:
      target.inst = Make<TBrokerInstance>(TInstanceContent::From(*value.ToInstance()));
      return;
    default:
      WriteNumber(target, value);
      return;
  }
}

}  // namespace

CMPIType ToCMPIType(ECIMType type) {
  for (const TTypePair& pair : kTypes) {
    if (pair.cim == type) return pair.cmpi;
  }
  return CMPI_null;
}

ECIMType FromCMPIType(CMPIType type) {
  const CMPIType scalar = static_cast<CMPIType>(type & ~CMPI_ARRAY);
  for (const TTypePair& pair : kTypes) {
    if (pair.cmpi == scalar) return pair.cim;
  }
  throw TBrokerFault(CMPI_RC_ERR_INVALID_DATA_TYPE,
                     "no CIM value has the type " + std::to_string(type));
}

TCIMValue FromCMPI(const CMPIValue* value, CMPIType type) {
  const ECIMType cimType = FromCMPIType(type);
  const bool isArray = (type & CMPI_ARRAY) != 0;
  if (value == nullptr) return TCIMValue::Null(cimType, isArray);
  if (isArray) return ReadArray(value, cimType);
  if (type == CMPI_chars) return TextValue(reinterpret_cast<const char*>(value));
  if (type == CMPI_charsptr) return TextValue(ReadAs<const char*>(value));
  return ReadScalar(value, cimType);
}

TCIMValue FromCMPI(const CMPIData& data) {
  if ((data.state & (CMPI_nullValue | CMPI_notFound | CMPI_badValue)) != 0) {
    return FromCMPI(nullptr, data.type);
  }
  if (data.type == CMPI_chars) return TextValue(data.value.chars);
  return FromCMPI(&data.value, data.type);
}

CMPIData ToCMPI(const TCIMValue& value) {
  CMPIData data = {};
  data.type = ToCMPIType(value.GetType());
  if (value.IsArray()) data.type = static_cast<CMPIType>(data.type | CMPI_ARRAY);
  if (value.IsNull()) {
    data.state = CMPI_nullValue;
    return data;
  }
  if (value.IsArray()) {
    data.value.array =
        Make<TBrokerArray>(value.GetType(), static_cast<std::vector<TCIMValue>>(value));
  } else {
    WriteScalar(data.value, value);
  }
  return data;
}

}  // namespace NZEPQEL20::cmpi
