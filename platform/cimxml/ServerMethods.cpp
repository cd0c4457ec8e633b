// SPDX-License-Identifier: Apache-2.0
// The chapter of TCIMXMLOperations about methods.
#include <algorithm>
#include <utility>

#include "platform/cimxml/TReplyReader.h"
#include "platform/cimxml/TServerParts.h"
#include "platform/model/CoreLog.h"
#include "platform/model/DiagnosticMethods.h"
#include "platform/model/Typing.h"

namespace NZEPQEL20 {

using cimxml::TReply;
using cimxml::TRequestText;

namespace {

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

void Warn(const std::string& text) {
  LogToCore(ILogger::kWarning, text);
}

TCIMValue ReadEmbedded(const TCIMValue& text, const std::string& nameSpace) {
  if (text.IsNull()) return TCIMValue::Null(ECIMType::kInstance);
  return TCIMValue::Instance(
      cimxml::TReplyReader::ReadEmbedded(static_cast<std::string>(text), nameSpace));
}

// What came back as the class declares it: servers leave the type out, or call an embedded
// instance a text.
TCIMValue Convert(const TCIMElementDeclaration& declared, const TCIMValue& value,
                  const std::string& nameSpace, const std::string& what) {
  const bool isText = value.GetType() == ECIMType::kString && !value.IsNull();
  if (declared.type != ECIMType::kInstance || !isText) return ConvertTo(declared, value, what);
  if (!value.IsArray()) return ReadEmbedded(value, nameSpace);
  TCIMValue::TArray elements;
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(value)) {
    elements.push_back(ReadEmbedded(element, nameSpace));
  }
  return TCIMValue::Array(ECIMType::kInstance, std::move(elements));
}

std::shared_ptr<const TCIMClassDeclaration> FindClass(TCIMXMLOperations& operations,
                                                      const TCIMReference& path,
                                                      const std::string& nameSpace) {
  try {
    return operations.GetClass(nameSpace, path.GetClassName());
  } catch (const TQELException& e) {
    // A server may serve an object without knowing its class; then the values' own types hold.
    if (e.GetCIMStatus() == TQELException::kNoCIMStatus) throw;
    Warn(e.what());
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

bool IsJob(const std::string& name) {
  return IsSameName(name, "Job");
}

// A result that is NULL is none. One that cannot be used is reported and left out, but for the job:
// without it nobody would follow what has been started. That of a test may take other forms.
TKeyMap ConvertResults(const TKeyMap& came, const TCIMMethodDeclaration* declared,
                       const cimxml::TQuestion& question) {
  TKeyMap results;
  for (const auto& [name, value] : came) {
    if (value.IsNull()) continue;
    const TCIMParameterDeclaration* const parameter = FindParameter(declared, name);
    if (parameter == nullptr) {
      results[name] = value;
      continue;
    }
    try {
      results[parameter->name] =
          Convert(*parameter, value, question.nameSpace, question.what + ": parameter " + name);
    } catch (const TQELException& e) {
      if (!IsJob(name)) {
        Warn(e.what());
        continue;
      }
      if (!StartsDiagnostic(question.name)) throw;
      results[parameter->name] = value;
    }
  }
  return results;
}

}  // namespace

void TCIMXMLOperations::TParts::NoteJob(const TKeyMap& results, const std::string& nameSpace) {
  for (const auto& [name, value] : results) {
    if (!IsJob(name) || value.IsNull()) continue;
    TCIMReference job;
    try {
      job = GetJobReference(value);
    } catch (const TQELException&) {
      // Whoever called is told.
      continue;
    }
    if (job.GetNamespaceName().empty()) job.SetNamespaceName(nameSpace);
    const std::lock_guard<std::mutex> lock(mutex);
    if (std::find(startedJobs.begin(), startedJobs.end(), job) == startedJobs.end()) {
      startedJobs.push_back(std::move(job));
    }
  }
}

TCIMValue TCIMXMLOperations::TParts::Invoke(TCIMXMLOperations& operations,
                                            const TCIMReference& path, const std::string& method,
                                            TKeyMap& parameters, cimxml::TBudget budget,
                                            bool mayStartJob) {
  TCIMReference target = path;
  target.SetNamespaceName(OrDefault(path.GetNamespaceName()));
  target.SetHost({});
  const auto declaration = FindClass(operations, target, target.GetNamespaceName());
  const TCIMMethodDeclaration* const declared =
      declaration ? declaration->FindMethod(method) : nullptr;
  const cimxml::TQuestion question =
      MakeQuestion(Type(target), method, parameters, declared, connection.NextId());
  TReply reply = connection.Ask(question, budget);
  // Whatever else of the reply cannot be used: the job runs.
  if (mayStartJob) NoteJob(reply.parameters, question.nameSpace);
  TKeyMap results = ConvertResults(reply.parameters, declared, question);
  TCIMValue result = std::move(reply.returnValue);
  if (declared != nullptr) {
    result = Convert(*declared, result, question.nameSpace, question.what + ": its result");
  }
  parameters.swap(results);
  return result;
}

TCIMValue TCIMXMLOperations::InvokeMethod(const TCIMReference& path, const std::string& method,
                                          TKeyMap& parameters) {
  // What changes the state of a job gives back the job that makes the change, which is no test.
  const bool mayStartJob = !IsSameName(method, "RequestStateChange");
  return m_parts->Invoke(*this, path, method, parameters, m_parts->connection.StartMethodCall(),
                         mayStartJob);
}

TCIMValue TCIMXMLOperations::InvokeOnJob(const TCIMReference& job, const std::string& method,
                                         TKeyMap& parameters) {
  return m_parts->Invoke(*this, job, method, parameters, m_parts->connection.StartOperation(),
                         false);
}

}  // namespace NZEPQEL20
