// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/SchemaCodec.h"

#include <utility>

#include "platform/schema/ValueCodec.h"

namespace NZEPQEL20 {

namespace {

/// Bytes that an item takes at the least; what its count may promise is bounded by them.
constexpr std::size_t kLeastQualifier = 8;
constexpr std::size_t kLeastElement = 22;
constexpr std::size_t kLeastInstance = 20;

void EncodePosition(TByteWriter& out, TMofPosition position) {
  out.PutNumber(position.line);
  out.PutNumber(position.column);
}

TMofPosition DecodePosition(TByteReader& in) {
  TMofPosition position;
  position.line = in.TakeNumber();
  position.column = in.TakeNumber();
  return position;
}

void EncodeQualifiers(TByteWriter& out, const TSchemaQualifiers& qualifiers) {
  out.PutCount(qualifiers.size());
  for (const TSchemaQualifier& qualifier : qualifiers) {
    out.PutText(qualifier.name);
    EncodeValue(out, qualifier.value);
    out.PutFlag(qualifier.toSubclass);
    out.PutFlag(qualifier.isOverridable);
  }
}

TSchemaQualifiers DecodeQualifiers(TByteReader& in) {
  const std::size_t count = in.TakeCount(kLeastQualifier);
  TSchemaQualifiers qualifiers(count);
  for (TSchemaQualifier& qualifier : qualifiers) {
    qualifier.name = in.TakeText();
    qualifier.value = DecodeValue(in);
    qualifier.toSubclass = in.TakeFlag();
    qualifier.isOverridable = in.TakeFlag();
  }
  return qualifiers;
}

void EncodeElement(TByteWriter& out, const TSchemaElement& element) {
  out.PutText(element.name);
  out.PutByte(static_cast<std::uint8_t>(element.type));
  out.PutFlag(element.isArray);
  out.PutText(element.referenceClass);
  EncodeQualifiers(out, element.qualifiers);
  EncodePosition(out, element.position);
}

void DecodeElement(TByteReader& in, TSchemaElement& element) {
  element.name = in.TakeText();
  element.type = DecodeType(in);
  element.isArray = in.TakeFlag();
  element.referenceClass = in.TakeText();
  element.qualifiers = DecodeQualifiers(in);
  element.position = DecodePosition(in);
}

void DecodeMethod(TByteReader& in, TSchemaMethod& method) {
  DecodeElement(in, method);
  const std::size_t count = in.TakeCount(kLeastElement);
  method.parameters.resize(count);
  for (TSchemaElement& parameter : method.parameters) {
    DecodeElement(in, parameter);
  }
}

}  // namespace

std::string EncodeClass(const TSchemaClass& declaration) {
  TByteWriter out;
  out.PutText(declaration.name);
  out.PutText(declaration.superclass);
  out.PutText(declaration.file);
  EncodePosition(out, declaration.position);
  EncodeQualifiers(out, declaration.qualifiers);
  out.PutCount(declaration.properties.size());
  for (const TSchemaProperty& property : declaration.properties) {
    EncodeElement(out, property);
    out.PutFlag(property.hasDefault);
    EncodeValue(out, property.defaultValue);
  }
  out.PutCount(declaration.methods.size());
  for (const TSchemaMethod& method : declaration.methods) {
    EncodeElement(out, method);
    out.PutCount(method.parameters.size());
    for (const TSchemaElement& parameter : method.parameters) {
      EncodeElement(out, parameter);
    }
  }
  return out.Take();
}

TSchemaClass DecodeClass(std::string_view bytes) {
  TByteReader in(bytes);
  TSchemaClass declaration;
  declaration.name = in.TakeText();
  declaration.superclass = in.TakeText();
  declaration.file = in.TakeText();
  declaration.position = DecodePosition(in);
  declaration.qualifiers = DecodeQualifiers(in);
  declaration.properties.resize(in.TakeCount(kLeastElement));
  for (TSchemaProperty& property : declaration.properties) {
    DecodeElement(in, property);
    property.hasDefault = in.TakeFlag();
    property.defaultValue = DecodeValue(in);
  }
  declaration.methods.resize(in.TakeCount(kLeastElement));
  for (TSchemaMethod& method : declaration.methods) {
    DecodeMethod(in, method);
  }
  in.Finish();
  return declaration;
}

std::string EncodeInstances(const std::vector<TCIMInstanceData>& instances) {
  TByteWriter out;
  out.PutCount(instances.size());
  for (const TCIMInstanceData& instance : instances) {
    EncodeInstance(out, instance);
  }
  return out.Take();
}

std::vector<TCIMInstanceData> DecodeInstances(std::string_view bytes) {
  TByteReader in(bytes);
  std::vector<TCIMInstanceData> instances(in.TakeCount(kLeastInstance));
  for (TCIMInstanceData& instance : instances) {
    instance = DecodeInstance(in);
  }
  in.Finish();
  return instances;
}

void EncodeProblem(TByteWriter& out, const TMofError& problem) {
  out.PutText(problem.file);
  out.PutNumber(problem.line);
  out.PutNumber(problem.column);
  out.PutText(problem.text);
  out.PutFlag(problem.isWarning);
}

TMofError DecodeProblem(TByteReader& in) {
  TMofError problem;
  problem.file = in.TakeText();
  problem.line = in.TakeNumber();
  problem.column = in.TakeNumber();
  problem.text = in.TakeText();
  problem.isWarning = in.TakeFlag();
  return problem;
}

void EncodeSource(TByteWriter& out, const TSchemaSource& source) {
  out.PutByte(static_cast<std::uint8_t>(source.kind));
  out.PutText(source.path);
  out.PutLong(source.stamp.device);
  out.PutLong(source.stamp.inode);
  out.PutLong(source.stamp.size);
  out.PutSigned(source.stamp.modified);
  out.PutSigned(source.stamp.changed);
  out.PutLong(source.hash);
}

TSchemaSource DecodeSource(TByteReader& in) {
  TSchemaSource source;
  source.kind = static_cast<TSchemaSource::EKind>(
      in.TakeUpTo(static_cast<std::uint8_t>(TSchemaSource::kLastKind)));
  source.path = in.TakeText();
  source.stamp.device = in.TakeLong();
  source.stamp.inode = in.TakeLong();
  source.stamp.size = in.TakeLong();
  source.stamp.modified = in.TakeSigned();
  source.stamp.changed = in.TakeSigned();
  source.hash = in.TakeLong();
  return source;
}

}  // namespace NZEPQEL20
