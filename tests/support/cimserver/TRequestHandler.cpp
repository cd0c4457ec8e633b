// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TRequestHandler.h"

#include "platform/model/CIMStatus.h"

namespace cimserver {
namespace {

// The words of one maker for what the other says by the name of the thing.
const char* GetSfcbText(unsigned int status) {
  switch (status) {
    case kCIMInvalidNamespace:
      return "Invalid namespace";
    case kCIMInvalidClass:
      return "Class not found";
    case kCIMNotFound:
      return "The requested object could not be found";
    default:
      return "invalid imethodcall XML";
  }
}

// What the peer itself refuses, before any provider is asked.
struct TOwnRefusal {
  unsigned int status;
  std::string about;
};

}  // namespace

const std::vector<TRequestHandler::TEntry>& TRequestHandler::GetEntries() {
  using T = TRequestHandler;
  static const std::vector<TEntry> kEntries = {
      {"GetClass",
       &T::GetClass,
       false,
       {"ClassName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}},
      {"EnumerateClasses",
       &T::EnumerateClasses,
       false,
       {"ClassName", "DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin"}},
      {"EnumerateClassNames", &T::EnumerateClassNames, false, {"ClassName", "DeepInheritance"}},
      {"GetInstance",
       &T::GetInstance,
       false,
       {"InstanceName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}},
      {"EnumerateInstances",
       &T::EnumerateInstances,
       false,
       {"ClassName", "LocalOnly", "DeepInheritance", "IncludeQualifiers", "IncludeClassOrigin",
        "PropertyList"}},
      {"EnumerateInstanceNames", &T::EnumerateInstanceNames, false, {"ClassName"}},
      {"CreateInstance", &T::CreateInstance, false, {"NewInstance"}},
      {"ModifyInstance",
       &T::ModifyInstance,
       false,
       {"ModifiedInstance", "IncludeQualifiers", "PropertyList"}},
      {"DeleteInstance", &T::DeleteInstance, false, {"InstanceName"}},
      {"Associators",
       &T::Associators,
       false,
       {"ObjectName", "AssocClass", "ResultClass", "Role", "ResultRole", "IncludeQualifiers",
        "IncludeClassOrigin", "PropertyList"}},
      {"AssociatorNames",
       &T::AssociatorNames,
       false,
       {"ObjectName", "AssocClass", "ResultClass", "Role", "ResultRole"}},
      {"References",
       &T::References,
       false,
       {"ObjectName", "ResultClass", "Role", "IncludeQualifiers", "IncludeClassOrigin",
        "PropertyList"}},
      {"ReferenceNames", &T::ReferenceNames, false, {"ObjectName", "ResultClass", "Role"}},
      {"OpenEnumerateInstances",
       &T::OpenEnumerateInstances,
       true,
       {"ClassName", "DeepInheritance", "IncludeClassOrigin", "PropertyList", "FilterQueryLanguage",
        "FilterQuery", "OperationTimeout", "ContinueOnError", "MaxObjectCount"}},
      {"OpenEnumerateInstancePaths",
       &T::OpenEnumerateInstancePaths,
       true,
       {"ClassName", "FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError",
        "MaxObjectCount"}},
      {"OpenAssociatorInstances",
       &T::OpenAssociatorInstances,
       true,
       {"InstanceName", "AssocClass", "ResultClass", "Role", "ResultRole", "IncludeClassOrigin",
        "PropertyList", "FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError",
        "MaxObjectCount"}},
      {"OpenAssociatorInstancePaths",
       &T::OpenAssociatorInstancePaths,
       true,
       {"InstanceName", "AssocClass", "ResultClass", "Role", "ResultRole", "FilterQueryLanguage",
        "FilterQuery", "OperationTimeout", "ContinueOnError", "MaxObjectCount"}},
      {"OpenReferenceInstances",
       &T::OpenReferenceInstances,
       true,
       {"InstanceName", "ResultClass", "Role", "IncludeClassOrigin", "PropertyList",
        "FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError",
        "MaxObjectCount"}},
      {"OpenReferenceInstancePaths",
       &T::OpenReferenceInstancePaths,
       true,
       {"InstanceName", "ResultClass", "Role", "FilterQueryLanguage", "FilterQuery",
        "OperationTimeout", "ContinueOnError", "MaxObjectCount"}},
      {"PullInstancesWithPath",
       &T::PullInstancesWithPath,
       true,
       {"EnumerationContext", "MaxObjectCount"}},
      {"PullInstancePaths", &T::PullInstancePaths, true, {"EnumerationContext", "MaxObjectCount"}},
      {"CloseEnumeration", &T::CloseEnumeration, true, {"EnumerationContext"}},
  };
  return kEntries;
}

TRequestHandler::TRequestHandler(std::shared_ptr<ICIMOperations> operations, TSettings settings)
    : m_operations(std::move(operations)), m_settings(std::move(settings)) {}

TCimReply TRequestHandler::Handle(const TCimCall& call) {
  try {
    return Frame(call, Carry(call));
  } catch (const TNotValid& fault) {
    throw THttpFault(400, "request-not-valid", fault.what());
  } catch (const TOwnRefusal& refusal) {
    const bool isPegasus = m_settings.style == EStyle::kPegasus;
    return FrameError(call, refusal.status,
                      isPegasus ? refusal.about : GetSfcbText(refusal.status));
  } catch (const TQELException& failure) {
    const unsigned int status = failure.GetCIMStatus();
    return FrameError(call, status != TQELException::kNoCIMStatus ? status : kCIMFailed,
                      failure.what());
  } catch (const std::exception& failure) {
    return FrameError(call, kCIMFailed, failure.what());
  }
}

TCimReply TRequestHandler::Frame(const TCimCall& call, const std::string& content) const {
  const char* const element = call.isExtrinsic ? "METHODRESPONSE" : "IMETHODRESPONSE";
  TXmlWriter message = MakeWriter();
  message.Raw(
      "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n"
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n");
  message.Start("MESSAGE", {{"ID", call.messageId}, {"PROTOCOLVERSION", "1.0"}});
  message.Raw("<SIMPLERSP>\n");
  message.Start(element, {{"NAME", call.name}});
  TCimReply reply;
  reply.head = message.Take();
  reply.content = content;
  reply.tail = std::string("</") + element + ">\n</SIMPLERSP>\n</MESSAGE>\n</CIM>";
  if (m_settings.style == EStyle::kPegasus) reply.tail += '\n';
  return reply;
}

TCimReply TRequestHandler::FrameError(const TCimCall& call, unsigned int status,
                                      const std::string& text) const {
  const bool isNamed = m_settings.style == EStyle::kPegasus;
  const std::string description =
      isNamed ? NZEPQEL20::GetCIMStatusName(status) + ": " + text : text;
  TXmlWriter content = MakeWriter();
  content.Error(status, description);
  TCimReply reply = Frame(call, content.Take());
  reply.cimStatus = status;
  reply.description = description;
  return reply;
}

std::string TRequestHandler::Carry(const TCimCall& call) {
  return call.isExtrinsic ? CarryMethod(call) : CarryIntrinsic(call);
}

const TRequestHandler::TEntry& TRequestHandler::FindEntry(const std::string& name) const {
  const bool hasPull = m_settings.style == EStyle::kPegasus && m_settings.hasPull;
  for (const TEntry& entry : GetEntries()) {
    if (IsSameName(entry.name, name) && (hasPull || !entry.isPull)) return entry;
  }
  const bool isPegasus = m_settings.style == EStyle::kPegasus;
  throw TOwnRefusal{isPegasus ? kCIMNotSupported : kCIMFailed, name};
}

std::string TRequestHandler::CarryIntrinsic(const TCimCall& call) {
  const TEntry& entry = FindEntry(call.name);
  for (const TXmlElement& operand : call.operands) {
    const std::string& name = operand.GetAttribute("NAME");
    bool isKnown = false;
    for (const char* parameter : entry.parameters) isKnown |= IsSameName(parameter, name);
    const bool isPegasus = m_settings.style == EStyle::kPegasus;
    if (!isKnown) throw TOwnRefusal{isPegasus ? kCIMNotSupported : kCIMFailed, name};
  }
  TCimCall local = call;
  local.nameSpace = RequireNameSpace(call.nameSpace);
  TResult result{MakeWriter(), {}};
  (this->*entry.operation)(TOperands(local), result);
  return Wrap(result);
}

// Nothing at all comes without IRETURNVALUE from one maker, in an empty one from the other.
std::string TRequestHandler::Wrap(TResult& result) const {
  const std::string objects = result.objects.Take();
  const bool isBare = objects.empty() && m_settings.style == EStyle::kPegasus;
  std::string content;
  if (!isBare) content.append("<IRETURNVALUE>\n").append(objects).append("</IRETURNVALUE>\n");
  return content + result.outParameters;
}

std::string TRequestHandler::CarryMethod(const TCimCall& call) {
  TCIMReference target = call.target;
  target.SetNamespaceName(RequireNameSpace(call.nameSpace));
  RequireClass(target.GetNamespaceName(), target.GetClassName(), kCIMInvalidClass);
  if (m_settings.beforeMethod) m_settings.beforeMethod(call.name);
  TKeyMap parameters = call.parameters;
  const TCIMValue value = m_operations->InvokeMethod(target, call.name, parameters);
  TXmlWriter content = MakeWriter();
  content.ReturnValue(value);
  for (const auto& [name, out] : parameters) content.Parameter(name, out);
  return content.Take();
}

TXmlWriter TRequestHandler::MakeWriter() const {
  return {m_settings.style, m_settings.host,
          [this](const std::string& nameSpace, const std::string& className) {
            return FindClass(nameSpace, className);
          }};
}

std::shared_ptr<const TCIMClassDeclaration> TRequestHandler::FindClass(
    const std::string& nameSpace, const std::string& className) const {
  try {
    return m_operations->GetClass(nameSpace, className);
  } catch (const TQELException&) {
    return nullptr;
  }
}

// An unknown class is told by each operation in its own way, whatever the model says.
std::shared_ptr<const TCIMClassDeclaration> TRequestHandler::RequireClass(
    const std::string& nameSpace, const std::string& className, unsigned int otherwise) const {
  try {
    return m_operations->GetClass(nameSpace, className);
  } catch (const TQELException& failure) {
    if (failure.GetCIMStatus() != kCIMInvalidClass) throw;
    throw TOwnRefusal{otherwise, className};
  }
}

std::string TRequestHandler::RequireNameSpace(const std::string& nameSpace) const {
  for (const std::string& known : m_operations->GetNamespaces()) {
    if (IsSameName(known, nameSpace)) return known;
  }
  throw TOwnRefusal{kCIMInvalidNamespace, nameSpace};
}

TCIMReference TRequestHandler::RequireObject(const TOperands& operands, const char* name) const {
  TCIMReference path = operands.RequirePath(name);
  RequireClass(path.GetNamespaceName(), path.GetClassName(), kCIMInvalidClass);
  return path;
}

// One maker writes whole instances whatever is asked; the other leaves out what the class that was
// asked for does not have.
TContentOptions TRequestHandler::GetInstanceOptions(const TOperands& operands) const {
  TContentOptions options = operands.GetContentOptions();
  if (m_settings.style == EStyle::kSfcb && !operands.GetFlag("DeepInheritance", true)) {
    options.shallowClass =
        FindClass(operands.GetNameSpace(), operands.RequireClassName("ClassName"));
  }
  return options;
}

}  // namespace cimserver
