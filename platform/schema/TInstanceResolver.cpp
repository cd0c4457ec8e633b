// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TInstanceResolver.h"

#include <algorithm>
#include <utility>

#include "platform/schema/IMofSink.h"
#include "platform/schema/TMofParser.h"
#include "platform/schema/TMofQualifierTable.h"
#include "platform/schema/TMofSource.h"
#include "platform/schema/TMofValue.h"

namespace NZEPQEL20 {

namespace {

/// Keeps the instances of a text that may hold nothing else.
class TEmbeddedSink : public IMofSink {
 public:
  void OnQualifier(const std::string& /*file*/, TMofQualifierDeclaration&& /*q*/) override {
    ++m_others;
  }
  void OnClass(const std::string& /*file*/, TMofClass&& /*declaration*/) override { ++m_others; }
  void OnInstance(const std::string& /*file*/, TMofInstance&& instance) override {
    m_instances.push_back(std::move(instance));
  }
  void OnInclude(const std::string& /*file*/, TMofPosition /*position*/,
                 const std::string& /*path*/) override {
    ++m_others;
  }
  void OnNamespace(const std::string& /*nameSpace*/) override { ++m_others; }
  bool Reserve(std::size_t count) override {
    constexpr std::size_t kMost = 100'000;
    m_pieces += count;
    return m_pieces <= kMost;
  }

  /// Null unless the text was one instance and nothing else.
  TMofInstance* GetOnly() {
    return m_instances.size() == 1 && m_others == 0 ? &m_instances.front() : nullptr;
  }

 private:
  std::vector<TMofInstance> m_instances;
  std::size_t m_others = 0;
  std::size_t m_pieces = 0;
};

bool IsSameInstance(const TCIMInstanceData& left, const TCIMInstanceData& right) {
  return std::equal(left.properties.begin(), left.properties.end(), right.properties.begin(),
                    right.properties.end(),
                    [](const TCIMPropertyData& one, const TCIMPropertyData& other) {
                      return one.name == other.name && one.value == other.value;
                    });
}

/// The place that the error names, or `otherwise` where what failed does not know of files.
TMofPosition FindPlace(const TQELException& error, TMofPosition otherwise) {
  const auto* placed = dynamic_cast<const TMofValueError*>(&error);
  return placed != nullptr ? placed->position : otherwise;
}

}  // namespace

TInstanceResolver::TInstanceResolver(const TClassRepository& classes,
                                     const std::vector<TMofInstance>& instances,
                                     TMofProblems& problems)
    : m_classes(classes), m_instances(instances), m_problems(problems) {
  for (std::size_t i = 0; i < instances.size(); ++i) {
    const TMofInstance& instance = instances[i];
    if (!instance.alias.empty() &&
        !m_aliases.emplace(GetAliasKey(instance.unit, instance.alias), i).second) {
      m_problems.AddError(instance.file, instance.position,
                          "alias " + instance.alias + " is defined twice; the first one holds");
    }
  }
}

std::string TInstanceResolver::GetAliasKey(unsigned int unit, const std::string& alias) {
  return std::to_string(unit) + FoldName(alias);
}

std::vector<TCIMInstanceData> TInstanceResolver::Resolve() {
  std::vector<TCIMInstanceData> instances;
  for (std::size_t i = 0; i < m_instances.size(); ++i) {
    const TMofInstance& source = m_instances[i];
    TCIMInstanceData instance;
    if (!ResolveInstance(source, 0, instance)) {
      continue;
    }
    try {
      instance.path = MakePath(i);
      AddUnlessSame(std::move(instance), source, instances);
    } catch (const TQELException& error) {
      m_problems.AddError(source.file, FindPlace(error, source.position), error.what());
    }
  }
  return instances;
}

void TInstanceResolver::AddUnlessSame(TCIMInstanceData&& instance, const TMofInstance& source,
                                      std::vector<TCIMInstanceData>& instances) {
  // Without keys nothing tells two instances apart.
  if (!instance.path.GetKeys().empty()) {
    const auto [place, isNew] = m_places.emplace(instance.path.GetPath(), instances.size());
    if (!isNew) {
      TCIMInstanceData& earlier = instances[place->second];
      if (!IsSameInstance(earlier, instance)) {
        m_problems.AddWarning(source.file, source.position,
                              "an instance with the path " + instance.path.GetPath() +
                                  " was declared before; this one holds");
      }
      earlier = std::move(instance);
      return;
    }
  }
  instances.push_back(std::move(instance));
}

bool TInstanceResolver::ResolveInstance(const TMofInstance& source, unsigned int embedded,
                                        TCIMInstanceData& result) {
  const TClassPtr declaration = m_classes.Find(source.className);
  if (declaration == nullptr && m_unknown.insert(FoldName(source.className)).second) {
    m_problems.AddWarning(source.file, source.position,
                          "class " + source.className +
                              " of the instance is not known; its instances have no keys, and "
                              "types are guessed from the values");
  }
  bool isGood = true;
  for (const TMofInstanceProperty& property : source.properties) {
    isGood = ResolveProperty(source, property, declaration, embedded, result) && isGood;
  }
  result.path.SetClassName(declaration != nullptr ? declaration->name : source.className);
  if (declaration != nullptr) {
    for (const TCIMPropertyDeclaration& property : declaration->properties) {
      if (!property.defaultValue.IsNull() && result.Find(property.name) == nullptr) {
        result.properties.push_back({property.name, property.defaultValue});
      }
    }
  }
  return isGood;
}

bool TInstanceResolver::ResolveProperty(const TMofInstance& source,
                                        const TMofInstanceProperty& property,
                                        const TClassPtr& declaration, unsigned int embedded,
                                        TCIMInstanceData& result) {
  const TCIMPropertyDeclaration* type =
      declaration == nullptr ? nullptr : declaration->FindProperty(property.name);
  // What a missing superclass would declare cannot be told from what nobody declares.
  if (declaration != nullptr && type == nullptr && m_classes.IsComplete(declaration->name)) {
    m_problems.AddError(source.file, property.position,
                        "class " + source.className + " has no property " + property.name);
    return false;
  }
  if (result.Find(property.name) != nullptr) {
    m_problems.AddError(source.file, property.position,
                        "property " + property.name + " is given twice");
    return false;
  }
  try {
    const std::string& name = type != nullptr ? type->name : property.name;
    TCIMValue value = type != nullptr
                          ? Convert(source, property.value, type->type, type->isArray, embedded)
                          : Convert(source, property.value, GuessType(property.value),
                                    property.value.isArray, embedded);
    result.properties.push_back({name, std::move(value)});
    return true;
  } catch (const TQELException& error) {
    m_problems.AddError(source.file, FindPlace(error, property.value.position),
                        "property " + property.name + ": " + error.what());
    return false;
  }
}

TCIMValue TInstanceResolver::Convert(const TMofInstance& source, const TMofInitializer& value,
                                     ECIMType type, bool isArray, unsigned int embedded) {
  const bool isNull = !value.isArray && value.literals.front().kind == TMofLiteral::EKind::kNull;
  const bool isPlain = type != ECIMType::kReference && type != ECIMType::kInstance;
  if (isNull || isPlain || (value.isArray && !isArray)) {
    return ConvertOrMend(source, value, type, isArray);
  }
  if (!isArray) {
    return ConvertOne(source, value.literals.front(), type, embedded);
  }
  TCIMValue::TArray elements;
  for (const TMofLiteral& literal : value.literals) {
    elements.push_back(ConvertOne(source, literal, type, embedded));
  }
  if (!value.isArray) {
    m_problems.AddWarning(source.file, value.position,
                          "expected an array between '{' and '}'; it is taken as one");
  }
  return TCIMValue::Array(type, std::move(elements));
}

TCIMValue TInstanceResolver::ConvertOrMend(const TMofInstance& source, const TMofInitializer& value,
                                           ECIMType type, bool isArray) {
  try {
    return ConvertInitializer(value, type, isArray);
  } catch (const TMofValueError& error) {
    const auto mended = MendInitializer(value, type, isArray);
    if (!mended) {
      throw;
    }
    TCIMValue converted = ConvertInitializer(*mended, type, isArray);
    m_problems.AddWarning(source.file, error.position,
                          std::string(error.what()) + "; it is taken as one");
    return converted;
  }
}

TCIMValue TInstanceResolver::ConvertOne(const TMofInstance& source, const TMofLiteral& literal,
                                        ECIMType type, unsigned int embedded) {
  if (literal.kind == TMofLiteral::EKind::kAlias && type == ECIMType::kReference) {
    return TCIMValue(FindAlias(source, literal));
  }
  if (literal.kind == TMofLiteral::EKind::kString && type == ECIMType::kInstance) {
    return ReadEmbedded(source, literal, embedded);
  }
  return ConvertLiteral(literal, type);
}

TCIMValue TInstanceResolver::ReadEmbedded(const TMofInstance& source, const TMofLiteral& literal,
                                          unsigned int embedded) {
  if (embedded == kMaxEmbedded) {
    throw TMofValueError(literal.position, "embedded instances lie too deep in each other");
  }
  TMofProblems problems;
  TEmbeddedSink sink;
  const TMofSource text = TMofSource::FromText("embedded", literal.text);
  TMofParser(text, sink, problems).Parse();
  const std::vector<TMofError> errors = problems.Take();
  const auto error = std::find_if(errors.begin(), errors.end(),
                                  [](const TMofError& one) { return !one.isWarning; });
  if (error != errors.end()) {
    throw TMofValueError(literal.position, error->ToString());
  }
  TMofInstance* inner = sink.GetOnly();
  if (inner == nullptr) {
    throw TMofValueError(literal.position, "expected the MOF text of one instance");
  }
  inner->file = source.file + ": embedded";
  inner->unit = source.unit;
  auto data = std::make_shared<TCIMInstanceData>();
  if (!ResolveInstance(*inner, embedded + 1, *data)) {
    throw TMofValueError(literal.position, "the embedded instance is faulty");
  }
  return TCIMValue::Instance(std::move(data));
}

TCIMReference TInstanceResolver::FindAlias(const TMofInstance& source, const TMofLiteral& literal) {
  const auto found = m_aliases.find(GetAliasKey(source.unit, literal.text));
  if (found == m_aliases.end()) {
    throw TMofValueError(literal.position, "alias " + literal.text + " is not defined");
  }
  if (m_aliasDepth == kMaxAliases) {
    throw TMofValueError(literal.position,
                         "alias " + literal.text + " leads through too many others, or to itself");
  }
  ++m_aliasDepth;
  try {
    TCIMReference path = MakePath(found->second);
    --m_aliasDepth;
    return path;
  } catch (const TQELException& error) {
    --m_aliasDepth;
    throw TMofValueError(literal.position, error.what());
  }
}

TCIMReference TInstanceResolver::MakePath(std::size_t index) {
  const auto known = m_paths.find(index);
  if (known != m_paths.end()) {
    return known->second;
  }
  const TMofInstance& source = m_instances[index];
  const TClassPtr declaration = m_classes.Find(source.className);
  TCIMReference path(source.nameSpace, declaration ? declaration->name : source.className);
  if (declaration != nullptr) {
    for (const TCIMPropertyDeclaration& key : declaration->properties) {
      if (!key.isKey) {
        continue;
      }
      const auto given = std::find_if(
          source.properties.begin(), source.properties.end(),
          [&key](const TMofInstanceProperty& one) { return IsSameName(one.name, key.name); });
      const TCIMValue value = given == source.properties.end()
                                  ? key.defaultValue
                                  : Convert(source, given->value, key.type, key.isArray, 0);
      if (value.IsNull()) {
        throw TMofValueError(source.position, "the instance of " + source.className +
                                                  " has no value for its key " + key.name);
      }
      path.SetKey(key.name, value);
    }
  }
  m_paths.emplace(index, path);
  return path;
}

}  // namespace NZEPQEL20
