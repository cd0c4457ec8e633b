// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/cimserver/CimTypes.h"

namespace cimserver {

/// Which parts of classes and instances a request asks for.
struct TContentOptions {
  bool isLocalOnly = false;
  bool hasQualifiers = false;
  bool hasClassOrigin = false;
  bool hasPropertyList = false;
  std::vector<std::string> propertyList;  ///< Counts when `hasPropertyList` is set.
  /// The class whose properties alone are wanted; null: those of each instance's own class.
  std::shared_ptr<const TCIMClassDeclaration> shallowClass;

  /// Whether the list allows the property called `name`.
  bool IsListed(const std::string& name) const;
};

/// Writes CIM elements as text, in the manner of one maker: its spacing, its order, its gaps.
class TXmlWriter {
 public:
  /// `host` is what HOST elements say.
  TXmlWriter(EStyle style, std::string host, TClassFinder findClass);

  const std::string& GetText() const { return m_text; }
  std::string Take() { return std::exchange(m_text, {}); }
  /// Appends `text` as it is.
  void Raw(std::string_view text) { m_text += text; }

  /// A start tag with attributes. Behind every tag there is a line feed, as both makers have it.
  void Start(std::string_view element,
             const std::vector<std::pair<std::string, std::string>>& attributes);
  void Class(const TCIMClassDeclaration& declaration, const TContentOptions& options);
  void ClassName(const std::string& name);
  void Instance(const TCIMInstanceData& instance, const TContentOptions& options);
  void InstanceName(const TCIMReference& path);
  /// INSTANCEPATH, with the host; `nameSpace` stands in for one that the path does not name.
  void InstancePath(const TCIMReference& path, const std::string& nameSpace);
  /// VALUE, VALUE.ARRAY or VALUE.REFERENCE; nothing for NULL.
  void Value(const TCIMValue& value);
  /// RETURNVALUE; nothing for NULL.
  void ReturnValue(const TCIMValue& value);
  void Parameter(const std::string& name, const TCIMValue& value);
  void Error(unsigned int code, const std::string& description);

 private:
  struct TRow;
  std::vector<TRow> GetRows(const TCIMInstanceData& instance,
                            const TCIMClassDeclaration* declaration) const;
  void Property(const TRow& row, const std::string& className, const TContentOptions& options);
  void ClassProperty(const TRow& row, const std::string& className, const TContentOptions& options);
  void Method(const NZEPQEL20::TCIMMethodDeclaration& method, const std::string& className,
              const TContentOptions& options);
  void MethodParameter(const NZEPQEL20::TCIMParameterDeclaration& parameter, bool hasQualifiers);
  void Qualifiers(const std::vector<NZEPQEL20::TCIMQualifier>& qualifiers);
  void Reference(const TCIMReference& path);
  void NameSpacePath(const std::string& nameSpace);
  void KeyBinding(const std::string& name, const TCIMValue& value);
  void Scalar(const TCIMValue& value);
  void Attribute(std::string_view name, std::string_view value);
  void EmbeddedAttribute(ECIMType type);
  void Origin(const std::string& classOrigin, const std::string& className, bool hasClassOrigin);
  void Escaped(std::string_view text);
  std::shared_ptr<const TCIMClassDeclaration> FindClass(const std::string& nameSpace,
                                                        const std::string& className);

  EStyle m_style;
  std::string m_host;
  TClassFinder m_findClass;
  std::map<std::string, std::shared_ptr<const TCIMClassDeclaration>> m_classes;
  std::string m_text;
};

}  // namespace cimserver
