// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/ValueCodec.h"

#include <cstring>
#include <utility>
#include <vector>

#include "platform/contract/TCIMReference.h"

namespace NZEPQEL20 {

namespace {

/// Values lie in references and instances, and these in values again.
constexpr unsigned int kMaxDepth = 32;
/// Bytes of the shortest value: its type and its kind.
constexpr std::size_t kLeastValue = 2;

enum EShape : std::uint8_t { kScalar, kNull, kArray, kNullArray };

void EncodeReference(TByteWriter& out, const TCIMReference& reference) {
  out.PutText(reference.GetHost());
  out.PutText(reference.GetNamespaceName());
  out.PutText(reference.GetClassName());
  out.PutCount(reference.GetKeys().size());
  for (const auto& [name, value] : reference.GetKeys()) {
    out.PutText(name);
    EncodeValue(out, value);
  }
}

TCIMReference DecodeReference(TByteReader& in, unsigned int depth) {
  std::string host = in.TakeText();
  std::string nameSpace = in.TakeText();
  std::string className = in.TakeText();
  TKeyMap keys;
  for (std::size_t count = in.TakeCount(sizeof(std::uint32_t) + kLeastValue); count > 0; --count) {
    std::string name = in.TakeText();
    keys.emplace(std::move(name), DecodeValue(in, depth + 1));
  }
  TCIMReference reference(std::move(nameSpace), std::move(className), std::move(keys));
  reference.SetHost(host);
  return reference;
}

void EncodeReal(TByteWriter& out, double value) {
  std::uint64_t bits = 0;
  static_assert(sizeof(bits) == sizeof(value));
  std::memcpy(&bits, &value, sizeof(bits));
  out.PutLong(bits);
}

double DecodeReal(TByteReader& in) {
  const std::uint64_t bits = in.TakeLong();
  double value = 0;
  std::memcpy(&value, &bits, sizeof(value));
  return value;
}

void EncodeScalar(TByteWriter& out, const TCIMValue& value) {
  switch (value.GetType()) {
    case ECIMType::kBoolean:
      return out.PutFlag(value.ToBoolean());
    case ECIMType::kChar16:
      return out.PutNumber(static_cast<unsigned short>(value));
    case ECIMType::kUInt8:
    case ECIMType::kUInt16:
    case ECIMType::kUInt32:
    case ECIMType::kUInt64:
      return out.PutLong(value.ToUnsigned());
    case ECIMType::kSInt8:
    case ECIMType::kSInt16:
    case ECIMType::kSInt32:
    case ECIMType::kSInt64:
      return out.PutSigned(value.ToSigned());
    case ECIMType::kReal32:
    case ECIMType::kReal64:
      return EncodeReal(out, value.ToReal());
    case ECIMType::kReference:
      return EncodeReference(out, static_cast<TCIMReference>(value));
    case ECIMType::kInstance:
      return EncodeInstance(out, *value.ToInstance());
    default:
      return out.PutText(static_cast<std::string>(value));
  }
}

TCIMValue DecodeScalar(TByteReader& in, ECIMType type, unsigned int depth) {
  switch (type) {
    case ECIMType::kBoolean:
      return TCIMValue::Boolean(in.TakeFlag());
    case ECIMType::kChar16:
      return TCIMValue::Char16(static_cast<std::uint16_t>(in.TakeNumber()));
    case ECIMType::kUInt8:
    case ECIMType::kUInt16:
    case ECIMType::kUInt32:
    case ECIMType::kUInt64:
      return TCIMValue::Unsigned(type, in.TakeLong());
    case ECIMType::kSInt8:
    case ECIMType::kSInt16:
    case ECIMType::kSInt32:
    case ECIMType::kSInt64:
      return TCIMValue::Signed(type, in.TakeSigned());
    case ECIMType::kReal32:
      return TCIMValue::Real32(static_cast<float>(DecodeReal(in)));
    case ECIMType::kReal64:
      return TCIMValue::Real64(DecodeReal(in));
    case ECIMType::kDateTime:
      return TCIMValue::DateTime(in.TakeText());
    case ECIMType::kReference:
      return TCIMValue(DecodeReference(in, depth));
    case ECIMType::kInstance:
      return TCIMValue::Instance(
          std::make_shared<const TCIMInstanceData>(DecodeInstance(in, depth + 1)));
    case ECIMType::kString:
      return TCIMValue(in.TakeText());
    default:
      throw TDamagedError();
  }
}

}  // namespace

ECIMType DecodeType(TByteReader& in) {
  return static_cast<ECIMType>(in.TakeUpTo(static_cast<std::uint8_t>(ECIMType::kInstance)));
}

void EncodeValue(TByteWriter& out, const TCIMValue& value) {
  out.PutByte(static_cast<std::uint8_t>(value.GetType()));
  if (value.IsNull()) {
    return out.PutByte(value.IsArray() ? kNullArray : kNull);
  }
  out.PutByte(value.IsArray() ? kArray : kScalar);
  if (!value.IsArray()) {
    return EncodeScalar(out, value);
  }
  const auto elements = static_cast<std::vector<TCIMValue>>(value);
  out.PutCount(elements.size());
  for (const TCIMValue& element : elements) {
    out.PutFlag(element.IsNull());
    if (!element.IsNull()) {
      EncodeScalar(out, element);
    }
  }
}

TCIMValue DecodeValue(TByteReader& in, unsigned int depth) {
  if (depth > kMaxDepth) {
    throw TDamagedError();
  }
  const ECIMType type = DecodeType(in);
  const std::uint8_t shape = in.TakeUpTo(kNullArray);
  if (shape == kNull || shape == kNullArray) {
    return TCIMValue::Null(type, shape == kNullArray);
  }
  if (shape == kScalar) {
    return DecodeScalar(in, type, depth);
  }
  TCIMValue::TArray elements;
  for (std::size_t count = in.TakeCount(1); count > 0; --count) {
    elements.push_back(in.TakeFlag() ? TCIMValue::Null(type) : DecodeScalar(in, type, depth));
  }
  return TCIMValue::Array(type, std::move(elements));
}

void EncodeInstance(TByteWriter& out, const TCIMInstanceData& instance) {
  EncodeReference(out, instance.path);
  out.PutCount(instance.properties.size());
  for (const TCIMPropertyData& property : instance.properties) {
    out.PutText(property.name);
    EncodeValue(out, property.value);
  }
}

TCIMInstanceData DecodeInstance(TByteReader& in, unsigned int depth) {
  TCIMInstanceData instance;
  instance.path = DecodeReference(in, depth);
  for (std::size_t count = in.TakeCount(sizeof(std::uint32_t) + kLeastValue); count > 0; --count) {
    std::string name = in.TakeText();
    instance.properties.push_back({std::move(name), DecodeValue(in, depth + 1)});
  }
  return instance;
}

}  // namespace NZEPQEL20
