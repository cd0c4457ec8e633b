// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cimxml/exchanges/Render.h"

#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>

#include "platform/contract/TQELException.h"

namespace diagstest {
namespace {

using namespace NZEPQEL20;

using TWords = std::vector<std::string>;

TWords SplitWords(const std::string& line) {
  TWords words;
  std::istringstream stream(line);
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

std::string RenderInstance(const TCIMInstanceData& instance) {
  std::string text = "instance " + instance.path.GetPath() + "\n";
  for (const TCIMPropertyData& property : instance.properties) {
    text += "  " + property.name + " " + RenderValue(property.value) + "\n";
  }
  return text;
}

std::string RenderPaths(const std::vector<TCIMReference>& paths) {
  std::string text;
  for (const TCIMReference& path : paths) text += "path " + path.GetPath() + "\n";
  return text;
}

std::string RenderElement(const TCIMElementDeclaration& element) {
  std::string text = element.name + " " + GetTypeName(element.type) + (element.isArray ? "[]" : "");
  if (!element.referenceClass.empty()) text += " of " + element.referenceClass;
  for (std::size_t i = 0; i < element.values.size(); ++i) {
    text += " " + element.valueMap[i] + "=" + element.values[i];
  }
  return text;
}

std::string RenderClass(const TCIMClassDeclaration& type) {
  std::string text = "class " + type.name + " : " + type.superclass;
  text += std::string(type.isAssociation ? " association" : "") + "\n";
  for (const TCIMPropertyDeclaration& property : type.properties) {
    text += "  " + RenderElement(property) + (property.isKey ? " key" : "");
    text += property.classOrigin.empty() ? "\n" : " from " + property.classOrigin + "\n";
  }
  for (const TCIMMethodDeclaration& method : type.methods) {
    text += "  method " + RenderElement(method) + "\n";
    for (const TCIMParameterDeclaration& parameter : method.parameters) {
      text += "    " + RenderElement(parameter) + (parameter.isIn ? " in" : "") +
              (parameter.isOut ? " out" : "") + "\n";
    }
  }
  return text;
}

ECIMType ReadType(const std::string& name) {
  for (int type = 0; type <= static_cast<int>(ECIMType::kInstance); ++type) {
    if (name == GetTypeName(static_cast<ECIMType>(type))) return static_cast<ECIMType>(type);
  }
  throw std::runtime_error("no type: " + name);
}

TCIMValue ReadScalar(ECIMType type, const std::string& text) {
  if (text == "NULL") return TCIMValue::Null(type);
  if (type == ECIMType::kString) return TCIMValue(text);
  if (type == ECIMType::kBoolean) return TCIMValue::Boolean(text == "TRUE");
  if (type == ECIMType::kReference) return TCIMValue(TCIMReference::Parse(text));
  if (type == ECIMType::kInstance) {
    auto instance = std::make_shared<TCIMInstanceData>();
    instance->path.SetClassName(text);
    instance->Set("Loops", TCIMValue::UInt16(3));
    return TCIMValue::Instance(instance);
  }
  return TCIMValue::Unsigned(type, std::stoull(text));
}

// "Name type value": the value is the rest of the line; of an array, words.
std::pair<std::string, TCIMValue> ReadLine(const std::string& line) {
  const TWords words = SplitWords(line);
  if (words.size() < 2) throw std::runtime_error("no value: " + line);
  std::string name = words[1];
  const bool isArray = name.size() > 2 && name.compare(name.size() - 2, 2, "[]") == 0;
  if (isArray) name.resize(name.size() - 2);
  const ECIMType type = ReadType(name);
  if (isArray) {
    TCIMValue::TArray elements;
    for (std::size_t i = 2; i < words.size(); ++i) elements.push_back(ReadScalar(type, words[i]));
    return {words[0], TCIMValue::Array(type, elements)};
  }
  const std::size_t begin = words[0].size() + 1 + words[1].size() + 1;
  return {words[0], ReadScalar(type, line.size() > begin ? line.substr(begin) : "")};
}

TCIMInstanceData ReadInstance(const TCIMReference& path, const TWords& lines) {
  TCIMInstanceData instance;
  instance.path = path;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const auto [name, value] = ReadLine(lines[i]);
    instance.Set(name, value);
  }
  return instance;
}

ICIMOperations::TAssociationFilter ReadFilter(const TWords& words) {
  ICIMOperations::TAssociationFilter filter;
  const std::map<std::string, std::string*> places = {{"assocClass", &filter.associationClass},
                                                      {"resultClass", &filter.resultClass},
                                                      {"role", &filter.role},
                                                      {"resultRole", &filter.resultRole}};
  for (std::size_t i = 2; i < words.size(); ++i) {
    const std::size_t equals = words[i].find('=');
    *places.at(words[i].substr(0, equals)) = words[i].substr(equals + 1);
  }
  return filter;
}

std::string Invoke(ICIMOperations& operations, const TWords& words, const TWords& lines) {
  TKeyMap parameters;
  for (std::size_t i = 1; i < lines.size(); ++i) parameters.insert(ReadLine(lines[i]));
  const TCIMValue result =
      operations.InvokeMethod(TCIMReference::Parse(words.at(1)), words.at(2), parameters);
  std::string text = "returned " + RenderValue(result) + "\n";
  for (const auto& [name, value] : parameters)
    text += "  " + name + " " + RenderValue(value) + "\n";
  return text;
}

std::string RenderNames(const char* what, const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += what + (" " + name) + "\n";
  return text;
}

using THandler = std::function<std::string(ICIMOperations&, const TWords&, const TWords&)>;

// Collects what an enumeration delivers.
template <typename TCall>
std::string Collect(const TCall& call) {
  std::string text;
  call([&text](TCIMInstanceData&& instance) {
    text += RenderInstance(instance);
    return true;
  });
  return text;
}

const std::map<std::string, THandler>& GetHandlers() {
  static const std::map<std::string, THandler> handlers = {
      {"GetClass", [](auto& o, const auto& w,
                      const auto&) { return RenderClass(*o.GetClass(w.at(1), w.at(2))); }},
      {"EnumerateClassNames",
       [](auto& o, const auto& w, const auto&) {
         return RenderNames(
             "class", o.EnumerateClassNames(w.at(1), w.size() > 3 ? w[3] : "", w.at(2) == "deep"));
       }},
      {"EnumerateInstances",
       [](auto& o, const auto& w, const auto&) {
         return Collect([&](const auto& sink) { o.EnumerateInstances(w.at(1), w.at(2), sink); });
       }},
      {"EnumerateInstanceNames",
       [](auto& o, const auto& w, const auto&) {
         return RenderPaths(o.EnumerateInstanceNames(w.at(1), w.at(2)));
       }},
      {"GetInstance",
       [](auto& o, const auto& w, const auto&) {
         return RenderInstance(o.GetInstance(TCIMReference::Parse(w.at(1))));
       }},
      {"CreateInstance",
       [](auto& o, const auto& w, const auto& lines) {
         const TCIMInstanceData data = ReadInstance(TCIMReference("", w.at(2)), lines);
         return RenderPaths({o.CreateInstance(w.at(1), data)});
       }},
      {"ModifyInstance",
       [](auto& o, const auto& w, const auto& lines) {
         o.ModifyInstance(ReadInstance(TCIMReference::Parse(w.at(1)), lines));
         return std::string("done\n");
       }},
      {"DeleteInstance",
       [](auto& o, const auto& w, const auto&) {
         o.DeleteInstance(TCIMReference::Parse(w.at(1)));
         return std::string("done\n");
       }},
      {"Associators",
       [](auto& o, const auto& w, const auto&) {
         return Collect([&](const auto& sink) {
           o.Associators(TCIMReference::Parse(w.at(1)), ReadFilter(w), sink);
         });
       }},
      {"AssociatorNames",
       [](auto& o, const auto& w, const auto&) {
         return RenderPaths(o.AssociatorNames(TCIMReference::Parse(w.at(1)), ReadFilter(w)));
       }},
      {"References",
       [](auto& o, const auto& w, const auto&) {
         return Collect([&](const auto& sink) {
           o.References(TCIMReference::Parse(w.at(1)), ReadFilter(w), sink);
         });
       }},
      {"ReferenceNames",
       [](auto& o, const auto& w, const auto&) {
         return RenderPaths(o.ReferenceNames(TCIMReference::Parse(w.at(1)), ReadFilter(w)));
       }},
      {"InvokeMethod", Invoke},
      {"GetNamespaces", [](auto& o, const auto&,
                           const auto&) { return RenderNames("namespace", o.GetNamespaces()); }},
      {"GetProviders",
       [](auto& o, const auto&, const auto&) {
         std::string text;
         for (const auto& provider : o.GetProviders()) {
           text += "provider " + provider.name + " in " + provider.nameSpace + "\n" +
                   RenderNames(" ", provider.classNames);
         }
         return text;
       }},
  };
  return handlers;
}

std::string ReplaceAll(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
    text.replace(at, what.size(), by);
    at += by.size();
  }
  return text;
}

}  // namespace

std::string RenderValue(const TCIMValue& value) {
  std::string text = GetTypeName(value.GetType());
  if (value.IsArray()) text += "[]";
  if (value.IsNull()) return text + " NULL";
  if (value.GetType() == ECIMType::kInstance && !value.IsArray()) {
    return ReplaceAll(text + " {" + RenderInstance(*value.ToInstance()), "\n", ";") + "}";
  }
  return text + " " + value.ToString(10);
}

std::string Perform(ICIMOperations& operations, const std::string& server,
                    const std::vector<std::string>& lines) {
  const TWords words = SplitWords(lines.at(0));
  std::string text;
  try {
    text = GetHandlers().at(words.at(0))(operations, words, lines);
    if (text.empty()) text = "nothing\n";
  } catch (const TQELException& e) {
    text = "error " + std::to_string(e.GetStatusCode().GetValue()) + " " +
           std::to_string(e.GetCIMStatus()) + " " + e.what() + "\n";
  }
  return ReplaceAll(text, server, "@SERVER");
}

}  // namespace diagstest
