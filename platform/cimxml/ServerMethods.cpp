// SPDX-License-Identifier: Apache-2.0
// The chapter of TCIMXMLOperations about methods.
#include <utility>

#include "platform/cimxml/TReplyReader.h"
#include "platform/cimxml/TServerParts.h"
#include "platform/contract/ILogger.h"
#include "platform/contract/TRootObject.h"
#include "platform/model/Typing.h"

namespace NZEPQEL20 {

using cimxml::TReply;
using cimxml::TRequestText;

namespace {

const TCIMParameterDeclaration* FindParameter(const TCIMMethodDeclaration* method,
                                              const std::string& name) {
  if (method == nullptr) return nullptr;
  for (const TCIMParameterDeclaration& parameter : method->parameters) {
    if (IsSameName(parameter.name, name)) return &parameter;
  }
  return nullptr;
}

const TCIMValue* FindArgument(const TKeyMap& arguments, const std::string& name) {
  for (const auto& [key, value] : arguments) {
    if (IsSameName(key, name)) return &value;
  }
  return nullptr;
}

// Declared parameters first, in the order of the class and under its spelling: some servers want
// both. What the class does not know goes as it is, for the server to refuse.
void AddArguments(TRequestText& request, const TKeyMap& arguments,
                  const TCIMMethodDeclaration* method) {
  if (method != nullptr) {
    for (const TCIMParameterDeclaration& parameter : method->parameters) {
      const TCIMValue* const value = FindArgument(arguments, parameter.name);
      if (value == nullptr) continue;
      request.AddArgument(parameter.name,
                          ConvertTo(parameter, *value, "parameter " + parameter.name));
    }
  }
  for (const auto& [name, value] : arguments) {
    if (FindParameter(method, name) == nullptr) request.AddArgument(name, value);
  }
}

// What came back as the class declares it: servers leave the type out, or call an embedded
// instance a text.
TCIMValue Convert(const TCIMElementDeclaration& declared, TCIMValue value,
                  const std::string& nameSpace, const std::string& what) {
  const bool isText = value.GetType() == ECIMType::kString && !value.IsArray() && !value.IsNull();
  if (declared.type == ECIMType::kInstance && isText) {
    return TCIMValue::Instance(
        cimxml::TReplyReader::ReadEmbedded(value.ToString(10), nameSpace, 1));
  }
  return ConvertTo(declared, value, what);
}

std::shared_ptr<const TCIMClassDeclaration> FindClass(TCIMXMLOperations& operations,
                                                      const TCIMReference& path,
                                                      const std::string& nameSpace) {
  try {
    return operations.GetClass(nameSpace, path.GetClassName());
  } catch (const TQELException& e) {
    // A server may serve an object without knowing its class; then the values' own types hold.
    if (e.GetCIMStatus() == TQELException::kNoCIMStatus) throw;
    ILogger* const logger = TRootObject::GetCoreLogger();
    if (logger != nullptr) logger->Log(ILogger::kWarning, e.what());
    return nullptr;
  }
}

cimxml::TQuestion MakeQuestion(const TCIMReference& target, const std::string& method,
                               const TKeyMap& arguments, const TCIMMethodDeclaration* declared,
                               std::uint64_t id) {
  cimxml::TQuestion question;
  question.what = "InvokeMethod " + method + " of " + target.GetPath();
  question.name = declared != nullptr ? declared->name : method;
  question.object = cimxml::GetObjectText(target);
  question.nameSpace = target.GetNamespaceName();
  question.isMethodCall = true;
  question.id = id;
  try {
    TRequestText text = TRequestText::Method(question.name, target, id);
    AddArguments(text, arguments, declared);
    question.body = text.Finish();
  } catch (const TQELException& e) {
    throw TQELException(e.GetStatusCode(), question.what + ": " + e.what());
  }
  return question;
}

TKeyMap ConvertResults(TReply& reply, const TCIMMethodDeclaration* declared,
                       const cimxml::TQuestion& question) {
  TKeyMap results;
  for (auto& [name, value] : reply.parameters) {
    const TCIMParameterDeclaration* const parameter = FindParameter(declared, name);
    if (parameter == nullptr) {
      results[name] = std::move(value);
    } else {
      results[parameter->name] = Convert(*parameter, std::move(value), question.nameSpace,
                                         question.what + ": parameter " + name);
    }
  }
  return results;
}

}  // namespace

void TCIMXMLOperations::TParts::NoteJob(const TKeyMap& results) {
  const TCIMValue* const job = FindArgument(results, "Job");
  if (job == nullptr || job->IsArray() || job->IsNull()) return;
  if (job->GetType() != ECIMType::kReference) return;
  const std::lock_guard<std::mutex> lock(mutex);
  startedJobs.push_back(static_cast<TCIMReference>(*job));
}

TCIMValue TCIMXMLOperations::InvokeMethod(const TCIMReference& path, const std::string& method,
                                          TKeyMap& parameters) {
  TCIMReference target = path;
  target.SetNamespaceName(m_parts->OrDefault(path.GetNamespaceName()));
  target.SetHost({});
  const auto declaration = FindClass(*this, target, target.GetNamespaceName());
  const TCIMMethodDeclaration* const declared =
      declaration ? declaration->FindMethod(method) : nullptr;
  cimxml::TServerConnection& connection = m_parts->connection;
  const cimxml::TQuestion question =
      MakeQuestion(target, method, parameters, declared, connection.NextId());
  cimxml::TBudget budget = connection.StartMethodCall();
  TReply reply = connection.Ask(question, budget);
  TKeyMap results = ConvertResults(reply, declared, question);
  TCIMValue result = std::move(reply.returnValue);
  if (declared != nullptr) {
    result =
        Convert(*declared, std::move(result), question.nameSpace, question.what + ": its result");
  }
  m_parts->NoteJob(results);
  parameters.swap(results);
  return result;
}

}  // namespace NZEPQEL20
