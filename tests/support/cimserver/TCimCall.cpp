// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TCimCall.h"

#include <strings.h>

#include "tests/support/cimserver/HttpText.h"
#include "tests/support/cimserver/RequestValues.h"

namespace cimserver {
namespace {

constexpr unsigned int kBadRequest = 400;
constexpr unsigned int kNotImplemented = 501;

[[noreturn]] void Mismatch(const std::string& detail) {
  throw THttpFault(kBadRequest, "header-mismatch", detail);
}

std::string GetHeader(const TPeerRequest& request, const std::string& name) {
  const std::string* header = request.FindHeader(name);
  if (header == nullptr) Mismatch(name + " header missing");
  return PercentDecode(*header);
}

void CheckFrame(const TPeerRequest& request) {
  if (request.method != "POST") {
    throw THttpFault(kNotImplemented, "", request.method + " is not implemented");
  }
  const std::string* type = request.FindHeader("Content-Type");
  if (type == nullptr ||
      (type->rfind("application/xml", 0) != 0 && type->rfind("text/xml", 0) != 0)) {
    throw THttpFault(kBadRequest, "", "HTTP Content-Type header error");
  }
  const std::string* operation = request.FindHeader("CIMOperation");
  if (operation == nullptr) throw THttpFault(kBadRequest, "", "CIMOperation header missing");
  if (!IsSameName(*operation, "MethodCall")) {
    throw THttpFault(kBadRequest, "unsupported-operation", "CIMOperation is " + *operation);
  }
  if (request.FindHeader("CIMBatch") != nullptr) {
    throw THttpFault(kNotImplemented, "multiple-requests-unsupported", "CIMBatch header");
  }
}

// Versions agree when their major numbers do.
void CheckVersion(const TXmlElement& element, const char* attribute, const char* major,
                  const char* error) {
  const std::string& version = element.GetAttribute(attribute);
  if (version.rfind(major, 0) == 0) return;
  throw THttpFault(kNotImplemented, error, std::string(attribute) + " is " + version);
}

void CheckProtocol(const TXmlElement& message, const TPeerRequest& request) {
  const std::string* header = request.FindHeader("CIMProtocolVersion");
  const std::string said = header != nullptr ? *header : "1.0";
  const std::string& meant = message.GetAttribute("PROTOCOLVERSION");
  if (said != meant) Mismatch("CIMProtocolVersion is " + said + ", PROTOCOLVERSION " + meant);
}

std::vector<TXmlElement> TakeOperands(const TXmlElement& element) {
  std::vector<TXmlElement> operands;
  for (std::size_t i = 1; i < element.children.size(); ++i) {
    const TXmlElement& operand = element.children[i];
    if (operand.name != "IPARAMVALUE") throw TNotValid("IMETHODCALL with " + operand.name);
    operand.GetAttribute("NAME");
    if (operand.children.size() > 1) operand.GetOnlyChild();
    operands.push_back(operand);
  }
  return operands;
}

void ReadIntrinsic(const TXmlElement& element, const TPeerRequest& request, TCimCall& call) {
  if (element.children.empty() || element.children[0].name != "LOCALNAMESPACEPATH") {
    throw TNotValid("IMETHODCALL without LOCALNAMESPACEPATH in its place");
  }
  call.nameSpace = ReadNameSpacePath(element.children[0]);
  call.operands = TakeOperands(element);
  const std::string method = GetHeader(request, "CIMMethod");
  if (!IsSameName(method, call.name)) Mismatch("CIMMethod is " + method + ", NAME " + call.name);
  const std::string object = GetHeader(request, "CIMObject");
  if (!IsSameName(object, call.nameSpace)) {
    Mismatch("CIMObject is " + object + ", the namespace " + call.nameSpace);
  }
}

bool IsSameKey(const TCIMValue& said, const TCIMValue& meant);

// The path in the header is text: keys in any order, without types.
bool IsSameClassAndKeys(const TCIMReference& said, const TCIMReference& meant) {
  if (!IsSameName(said.GetClassName(), meant.GetClassName())) return false;
  if (said.GetKeys().size() != meant.GetKeys().size()) return false;
  for (const auto& [name, value] : said.GetKeys()) {
    const TCIMValue* key = meant.FindKey(name);
    if (key == nullptr || !IsSameKey(value, *key)) return false;
  }
  return true;
}

// A path inside a path may name its namespace or leave that to the outer one.
bool IsSameKey(const TCIMValue& said, const TCIMValue& meant) {
  const std::string text = said.ToString(10);
  if (meant.GetType() != ECIMType::kReference) return text == meant.ToString(10);
  return IsSameClassAndKeys(TCIMReference::Parse(text), static_cast<TCIMReference>(meant));
}

bool IsSameObject(const TCIMReference& said, const TCIMReference& meant) {
  return IsSameName(said.GetNamespaceName(), meant.GetNamespaceName()) &&
         IsSameClassAndKeys(said, meant);
}

void CheckObject(const TPeerRequest& request, const TCimCall& call) {
  const std::string object = GetHeader(request, "CIMObject");
  try {
    if (IsSameObject(TCIMReference::Parse(object), call.target)) return;
  } catch (const TQELException& failure) {
    Mismatch(std::string("CIMObject: ") + failure.what());
  }
  Mismatch("CIMObject is " + object + ", the path " + call.target.GetPath());
}

void ReadExtrinsic(const TXmlElement& element, const TPeerRequest& request, TCimCall& call) {
  call.isExtrinsic = true;
  if (element.children.empty()) throw TNotValid("METHODCALL without a path");
  const TXmlElement& path = element.children[0];
  if (path.name != "LOCALINSTANCEPATH" && path.name != "LOCALCLASSPATH") {
    throw TNotValid("METHODCALL of " + path.name);
  }
  call.target = ReadPath(path, "");
  call.nameSpace = call.target.GetNamespaceName();
  for (std::size_t i = 1; i < element.children.size(); ++i) {
    const TXmlElement& parameter = element.children[i];
    if (parameter.name != "PARAMVALUE") throw TNotValid("METHODCALL with " + parameter.name);
    const bool isNew =
        call.parameters
            .emplace(parameter.GetAttribute("NAME"), ReadParameter(parameter, call.nameSpace))
            .second;
    if (!isNew) throw TNotValid("PARAMVALUE " + parameter.GetAttribute("NAME") + " twice");
  }
  const std::string method = GetHeader(request, "CIMMethod");
  if (method != call.name) Mismatch("CIMMethod is " + method + ", NAME " + call.name);
  CheckObject(request, call);
}

TCimCall ReadMessage(const TXmlElement& root, const TPeerRequest& request) {
  if (root.name != "CIM") throw TNotValid(root.name + " in the place of CIM");
  CheckVersion(root, "CIMVERSION", "2.", "unsupported-cim-version");
  CheckVersion(root, "DTDVERSION", "2.", "unsupported-dtd-version");
  const TXmlElement& message = root.GetOnlyChild("MESSAGE");
  CheckVersion(message, "PROTOCOLVERSION", "1.", "unsupported-protocol-version");
  CheckProtocol(message, request);
  if (message.FindChild("MULTIREQ") != nullptr) {
    throw THttpFault(kNotImplemented, "multiple-requests-unsupported", "MULTIREQ");
  }
  const TXmlElement& element = message.GetOnlyChild("SIMPLEREQ").GetOnlyChild();
  TCimCall call;
  call.messageId = message.GetAttribute("ID");
  call.name = element.GetAttribute("NAME");
  if (element.name == "IMETHODCALL") {
    ReadIntrinsic(element, request, call);
  } else if (element.name == "METHODCALL") {
    ReadExtrinsic(element, request, call);
  } else {
    throw TNotValid("SIMPLEREQ with " + element.name);
  }
  return call;
}

}  // namespace

bool TNameOrder::operator()(const std::string& left, const std::string& right) const {
  return ::strcasecmp(left.c_str(), right.c_str()) < 0;
}

const std::string* TPeerRequest::FindHeader(const std::string& name) const {
  const auto found = headers.find(name);
  return found != headers.end() ? &found->second : nullptr;
}

TCimCall ReadCall(const TPeerRequest& request) {
  CheckFrame(request);
  try {
    return ReadMessage(ReadXml(request.body), request);
  } catch (const TNotWellFormed& fault) {
    throw THttpFault(kBadRequest, "request-not-well-formed", fault.what());
  } catch (const TNotValid& fault) {
    throw THttpFault(kBadRequest, "request-not-valid", fault.what());
  }
}

}  // namespace cimserver
