// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TRequestText.h"

#include <algorithm>
#include <vector>

#include "platform/cimxml/ValueElements.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

// The versions that every deployed server takes.
constexpr char kFrame[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"";

std::string OpenMessage(std::uint64_t id) {
  return kFrame + std::to_string(id) + "\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>";
}

// What cannot be written is named by its place.
template <typename TWrite>
void Name(std::string_view parameter, const TWrite& write) {
  try {
    write();
  } catch (const TQELException& e) {
    throw TQELException(e.GetStatusCode(), "parameter " + std::string(parameter) + ": " + e.what());
  }
}

std::string Quote(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') quoted += '\\';
    quoted += character;
  }
  return quoted + '"';
}

bool IsBare(ECIMType type) {
  return type >= ECIMType::kBoolean && type <= ECIMType::kReal64 && type != ECIMType::kChar16;
}

std::string GetKeyText(const TCIMValue& value) {
  if (value.GetType() == ECIMType::kReference && !value.IsNull()) {
    return Quote(GetObjectText(static_cast<TCIMReference>(value)));
  }
  const std::string text = value.ToString(10);
  return IsBare(value.GetType()) ? text : Quote(text);
}

}  // namespace

TRequestText TRequestText::Operation(std::string_view name, const std::string& nameSpace,
                                     std::uint64_t id) {
  TRequestText request;
  request.m_text = OpenMessage(id);
  request.m_text += "<IMETHODCALL";
  AppendAttribute(request.m_text, "NAME", name);
  request.m_text += '>';
  Name("namespace", [&] { AppendNamespace(request.m_text, nameSpace); });
  return request;
}

TRequestText TRequestText::Method(std::string_view name, const TCIMReference& path,
                                  std::uint64_t id) {
  TRequestText request;
  request.m_isMethod = true;
  request.m_text = OpenMessage(id);
  request.m_text += "<METHODCALL";
  Name("name of the method", [&] { AppendAttribute(request.m_text, "NAME", name); });
  request.m_text += '>';
  Name("object", [&] { AppendLocalPath(request.m_text, path); });
  return request;
}

void TRequestText::Open(std::string_view parameter) {
  m_text += "<IPARAMVALUE";
  AppendAttribute(m_text, "NAME", parameter);
  m_text += '>';
}

void TRequestText::Close() {
  m_text += "</IPARAMVALUE>";
}

void TRequestText::AddText(std::string_view parameter, std::string_view value) {
  Open(parameter);
  Name(parameter, [&] { AppendValue(m_text, TCIMValue(std::string(value))); });
  Close();
}

void TRequestText::AddFlag(std::string_view parameter, bool value) {
  AddText(parameter, value ? "TRUE" : "FALSE");
}

void TRequestText::AddClassName(std::string_view parameter, const std::string& className) {
  if (className.empty()) return;
  Open(parameter);
  m_text += "<CLASSNAME";
  Name(parameter, [&] { AppendAttribute(m_text, "NAME", className); });
  m_text += "/>";
  Close();
}

void TRequestText::AddInstanceName(std::string_view parameter, const TCIMReference& path) {
  Open(parameter);
  Name(parameter, [&] { AppendInstanceName(m_text, path); });
  Close();
}

void TRequestText::AddInstance(std::string_view parameter, const TCIMInstanceData& instance) {
  Open(parameter);
  Name(parameter, [&] { AppendInstance(m_text, instance); });
  Close();
}

void TRequestText::AddNamedInstance(std::string_view parameter, const TCIMInstanceData& instance) {
  Open(parameter);
  m_text += "<VALUE.NAMEDINSTANCE>";
  Name(parameter, [&] {
    AppendInstanceName(m_text, instance.path);
    AppendInstance(m_text, instance);
  });
  m_text += "</VALUE.NAMEDINSTANCE>";
  Close();
}

void TRequestText::AddArgument(const std::string& name, const TCIMValue& value) {
  // A server cannot tell whether an empty element stands for a scalar or for an array.
  if (value.IsNull()) return;
  m_text += "<PARAMVALUE";
  Name(name, [&] {
    AppendAttribute(m_text, "NAME", name);
    AppendAttribute(m_text, "PARAMTYPE", GetWireType(value.GetType()));
    if (value.GetType() == ECIMType::kInstance) {
      AppendAttribute(m_text, "EmbeddedObject", "instance");
    }
    m_text += '>';
    AppendValue(m_text, value);
  });
  m_text += "</PARAMVALUE>";
}

std::string TRequestText::Finish() {
  m_text += m_isMethod ? "</METHODCALL>" : "</IMETHODCALL>";
  m_text += "</SIMPLEREQ></MESSAGE></CIM>\n";
  return std::move(m_text);
}

std::string GetObjectText(const TCIMReference& path) {
  std::string text = path.GetNamespaceName();
  if (!text.empty()) text += ':';
  text += path.GetClassName();
  char separator = '.';
  for (const auto& [name, value] : path.GetKeys()) {
    text += separator;
    text.append(name).append("=").append(GetKeyText(value));
    separator = ',';
  }
  return text;
}

}  // namespace NZEPQEL20::cimxml
