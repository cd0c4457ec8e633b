// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TSyntheticOperations.h"

#include <algorithm>
#include <cstdint>

namespace cimserver {
namespace {

using NZEPQEL20::TCIMPropertyDeclaration;

constexpr char kIdPrefix[] = "record ";

[[noreturn]] void Refuse(unsigned int status, const std::string& about) {
  throw TQELException(TQELStatusCode::kCIMError, about, status);
}

TCIMPropertyDeclaration Declare(const std::string& name, ECIMType type, bool isKey = false) {
  TCIMPropertyDeclaration property;
  property.name = name;
  property.type = type;
  property.defaultValue = TCIMValue::Null(type);
  property.isKey = isKey;
  if (isKey) property.qualifiers.push_back({"Key", TCIMValue::Boolean(true)});
  return property;
}

std::shared_ptr<const TCIMClassDeclaration> Finish(TCIMClassDeclaration declaration) {
  for (TCIMPropertyDeclaration& property : declaration.properties) {
    property.classOrigin = declaration.name;
  }
  return std::make_shared<const TCIMClassDeclaration>(std::move(declaration));
}

std::shared_ptr<const TCIMClassDeclaration> DeclareRecord() {
  TCIMClassDeclaration record;
  record.name = TSyntheticOperations::kRecord;
  record.properties.push_back(Declare("InstanceID", ECIMType::kString, true));
  for (const char* name : {"ElementName", "Caption", "Description", "SerialNumber", "Owner"}) {
    record.properties.push_back(Declare(name, ECIMType::kString));
  }
  for (const char* name : {"State", "Health", "Kind"}) {
    record.properties.push_back(Declare(name, ECIMType::kUInt16));
  }
  for (const char* name : {"Errors", "Warnings"}) {
    record.properties.push_back(Declare(name, ECIMType::kUInt32));
  }
  for (const char* name : {"Size", "Used"}) {
    record.properties.push_back(Declare(name, ECIMType::kUInt64));
  }
  for (const char* name : {"IsEnabled", "IsRemote"}) {
    record.properties.push_back(Declare(name, ECIMType::kBoolean));
  }
  record.properties.push_back(Declare("Offset", ECIMType::kSInt32));
  record.properties.push_back(Declare("Load", ECIMType::kReal64));
  record.properties.push_back(Declare("Created", ECIMType::kDateTime));
  for (const auto& [name, type] :
       {std::pair("Status", ECIMType::kUInt16), std::pair("Remarks", ECIMType::kString)}) {
    TCIMPropertyDeclaration array = Declare(name, type);
    array.isArray = true;
    array.defaultValue = TCIMValue::Null(type, true);
    record.properties.push_back(array);
  }
  return Finish(std::move(record));
}

std::shared_ptr<const TCIMClassDeclaration> DeclareHolder() {
  TCIMClassDeclaration holder;
  holder.name = TSyntheticOperations::kHolder;
  holder.properties.push_back(Declare("Name", ECIMType::kString, true));
  return Finish(std::move(holder));
}

std::shared_ptr<const TCIMClassDeclaration> DeclareAssociation() {
  TCIMClassDeclaration association;
  association.name = TSyntheticOperations::kAssociation;
  association.isAssociation = true;
  association.qualifiers.push_back({"Association", TCIMValue::Boolean(true)});
  for (const auto& [name, target] : {std::pair("Holder", TSyntheticOperations::kHolder),
                                     std::pair("Record", TSyntheticOperations::kRecord)}) {
    TCIMPropertyDeclaration end = Declare(name, ECIMType::kReference, true);
    end.referenceClass = target;
    association.properties.push_back(end);
  }
  return Finish(std::move(association));
}

TCIMReference HolderPath() {
  return {TSyntheticOperations::kNameSpace,
          TSyntheticOperations::kHolder,
          {{"Name", TCIMValue("holder")}}};
}

TCIMReference RecordPath(unsigned int number) {
  return {TSyntheticOperations::kNameSpace,
          TSyntheticOperations::kRecord,
          {{"InstanceID", TCIMValue(kIdPrefix + std::to_string(number))}}};
}

TCIMReference AssociationPath(unsigned int number) {
  return {TSyntheticOperations::kNameSpace,
          TSyntheticOperations::kAssociation,
          {{"Holder", TCIMValue(HolderPath())}, {"Record", TCIMValue(RecordPath(number))}}};
}

// The path's keys as properties: all that holder and association have.
TCIMInstanceData MakeOfKeys(TCIMReference path) {
  TCIMInstanceData instance{std::move(path), {}};
  for (const auto& [name, value] : instance.path.GetKeys()) {
    instance.properties.push_back({name, value});
  }
  return instance;
}

std::vector<TCIMPropertyData> MakeTexts(const std::string& number) {
  return {{"InstanceID", TCIMValue(kIdPrefix + number)},
          {"ElementName", TCIMValue("Record " + number)},
          {"Caption", TCIMValue("<" + number + "> & \"more\"")},
          {"Description", TCIMValue("What stands here of record " + number +
                                    " is as long as a description mostly is.")},
          {"SerialNumber", TCIMValue("SN-" + number + "-\xC3\xA4")},
          {"Owner", TCIMValue::Null(ECIMType::kString)}};
}

TCIMInstanceData MakeRecord(unsigned int number) {
  const auto small = static_cast<std::uint16_t>(number % 7);
  const auto wide = [](ECIMType type, std::uint64_t value) {
    return TCIMValue::Unsigned(type, value);
  };
  TCIMInstanceData record{RecordPath(number), MakeTexts(std::to_string(number))};
  const std::vector<TCIMPropertyData> rest = {
      {"State", TCIMValue::UInt16(small)},
      {"Health", TCIMValue::UInt16(5)},
      {"Kind", TCIMValue::Null(ECIMType::kUInt16)},
      {"Errors", TCIMValue::UInt32(number)},
      {"Warnings", TCIMValue::UInt32(number * 3)},
      {"Size", wide(ECIMType::kUInt64, (std::uint64_t{1} << 40U) + number)},
      {"Used", wide(ECIMType::kUInt64, std::uint64_t{number} << 20U)},
      {"IsEnabled", TCIMValue::Boolean(number % 2 == 0)},
      {"IsRemote", TCIMValue::Boolean(number % 3 == 0)},
      {"Offset", TCIMValue::Signed(ECIMType::kSInt32, -static_cast<std::int64_t>(number))},
      {"Load", TCIMValue::Real64(number / 8.0)},
      {"Created", TCIMValue::DateTime("20240229123456.000000+060")},
      {"Status",
       TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(2), TCIMValue::UInt16(small)})},
      {"Remarks", TCIMValue::Array(ECIMType::kString, {TCIMValue("first"), TCIMValue("second")})}};
  record.properties.insert(record.properties.end(), rest.begin(), rest.end());
  return record;
}

// Whether a filter lets the class or role called `name` pass.
bool Passes(const std::string& filter, const std::string& name) {
  return filter.empty() || IsSameName(filter, name);
}

}  // namespace

TSyntheticOperations::TSyntheticOperations(unsigned int count)
    : m_count(count), m_classes{DeclareRecord(), DeclareHolder(), DeclareAssociation()} {}

std::shared_ptr<const TCIMClassDeclaration> TSyntheticOperations::GetClass(
    const std::string& nameSpace, const std::string& className) {
  for (const auto& declaration : m_classes) {
    if (IsSameName(declaration->name, className)) return declaration;
  }
  Refuse(kCIMInvalidClass, nameSpace + ':' + className);
}

std::vector<std::string> TSyntheticOperations::EnumerateClassNames(const std::string& nameSpace,
                                                                   const std::string& className,
                                                                   bool /*deep*/) {
  std::vector<std::string> names;
  if (!className.empty()) {
    GetClass(nameSpace, className);
    return names;
  }
  for (const auto& declaration : m_classes) names.push_back(declaration->name);
  return names;
}

void TSyntheticOperations::EnumerateInstances(const std::string& nameSpace,
                                              const std::string& className,
                                              const TInstanceSink& sink) {
  const std::string name = GetClass(nameSpace, className)->name;
  if (name == kHolder) {
    sink(MakeOfKeys(HolderPath()));
    return;
  }
  for (unsigned int i = 0; i < m_count; ++i) {
    if (!sink(name == kRecord ? MakeRecord(i) : MakeOfKeys(AssociationPath(i)))) return;
  }
}

std::vector<TCIMReference> TSyntheticOperations::EnumerateInstanceNames(
    const std::string& nameSpace, const std::string& className) {
  std::vector<TCIMReference> paths;
  EnumerateInstances(nameSpace, className, [&paths](TCIMInstanceData&& instance) {
    paths.push_back(instance.path);
    return true;
  });
  return paths;
}

TCIMInstanceData TSyntheticOperations::GetInstance(const TCIMReference& path) {
  const std::string name = GetClass(path.GetNamespaceName(), path.GetClassName())->name;
  if (name == kHolder && path == HolderPath()) return MakeOfKeys(path);
  // The number is the end of the identifier, of the record itself or of the one tied.
  const std::string text = path.GetPath();
  const std::size_t start = text.rfind(kIdPrefix);
  const std::size_t digits = start + sizeof kIdPrefix - 1;
  if (start != std::string::npos && text.find_first_of("0123456789", digits) == digits) {
    const auto number = static_cast<unsigned int>(std::stoul(text.substr(digits, 9)));
    if (number < m_count && name == kRecord && path == RecordPath(number)) {
      return MakeRecord(number);
    }
    if (number < m_count && name == kAssociation && path == AssociationPath(number)) {
      return MakeOfKeys(path);
    }
  }
  Refuse(kCIMNotFound, text);
}

// The objects tied to `path`, or what ties them.
std::vector<TCIMReference> TSyntheticOperations::FindRelated(const TCIMReference& path,
                                                             const TAssociationFilter& filter,
                                                             bool isAssociation) const {
  std::vector<TCIMReference> found;
  const bool isHolder = IsSameName(path.GetClassName(), kHolder);
  const std::string& associationClass =
      isAssociation ? filter.resultClass : filter.associationClass;
  if (!Passes(associationClass, kAssociation)) return found;
  if (!Passes(filter.role, isHolder ? "Holder" : "Record")) return found;
  if (!isAssociation && !Passes(filter.resultRole, isHolder ? "Record" : "Holder")) return found;
  if (!isAssociation && !Passes(filter.resultClass, isHolder ? kRecord : kHolder)) return found;
  for (unsigned int i = 0; i < m_count; ++i) {
    if (!isHolder && !(path == RecordPath(i))) continue;
    found.push_back(isAssociation ? AssociationPath(i) : isHolder ? RecordPath(i) : HolderPath());
  }
  return found;
}

void TSyntheticOperations::Associators(const TCIMReference& path, const TAssociationFilter& filter,
                                       const TInstanceSink& sink) {
  for (const TCIMReference& found : FindRelated(path, filter, false)) {
    if (!sink(GetInstance(found))) return;
  }
}

std::vector<TCIMReference> TSyntheticOperations::AssociatorNames(const TCIMReference& path,
                                                                 const TAssociationFilter& filter) {
  return FindRelated(path, filter, false);
}

void TSyntheticOperations::References(const TCIMReference& path, const TAssociationFilter& filter,
                                      const TInstanceSink& sink) {
  for (const TCIMReference& found : FindRelated(path, filter, true)) {
    if (!sink(MakeOfKeys(found))) return;
  }
}

std::vector<TCIMReference> TSyntheticOperations::ReferenceNames(const TCIMReference& path,
                                                                const TAssociationFilter& filter) {
  return FindRelated(path, filter, true);
}

std::vector<ICIMOperations::TProviderInfo> TSyntheticOperations::GetProviders() {
  return {{"Synthetic", kNameSpace, {kRecord, kHolder, kAssociation}}};
}

TCIMReference TSyntheticOperations::CreateInstance(const std::string& /*nameSpace*/,
                                                   const TCIMInstanceData& instance) {
  Refuse(kCIMNotSupported, instance.path.GetPath());
}

void TSyntheticOperations::ModifyInstance(const TCIMInstanceData& instance) {
  Refuse(kCIMNotSupported, instance.path.GetPath());
}

void TSyntheticOperations::DeleteInstance(const TCIMReference& path) {
  Refuse(kCIMNotSupported, path.GetPath());
}

TCIMValue TSyntheticOperations::InvokeMethod(const TCIMReference& path, const std::string& method,
                                             TKeyMap& /*parameters*/) {
  Refuse(kCIMNotSupported, path.GetPath() + ": " + method);
}

}  // namespace cimserver
