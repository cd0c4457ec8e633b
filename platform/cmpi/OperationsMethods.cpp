// SPDX-License-Identifier: Apache-2.0
// The chapter of TCMPIOperations about methods.
#include <optional>

#include "platform/cmpi/TBrokerArgs.h"
#include "platform/cmpi/TOperationsParts.h"
#include "platform/model/DiagnosticMethods.h"
#include "platform/model/Typing.h"

namespace NZEPQEL20 {

using namespace cmpi;

namespace {

/// In-parameters of the declared types.
TNamedValues ConvertParameters(const TKeyMap& parameters, const TCIMMethodDeclaration* method,
                               const std::string& what) {
  TNamedValues converted;
  for (const auto& [name, value] : parameters) {
    const TCIMParameterDeclaration* declared = FindParameter(method, name);
    // Objects may be embedded as the text that describes them.
    const bool isText = declared != nullptr && declared->type == ECIMType::kInstance &&
                        value.GetType() == ECIMType::kString;
    if (declared == nullptr || isText) {
      converted.push_back({name, value});
      continue;
    }
    std::string place = what;
    place.append(": parameter ").append(name);
    converted.push_back({name, ConvertTo(*declared, value, place)});
  }
  return converted;
}

using TPassedArgs = TPassed<TBrokerArgs>;

/// The job that a method has started and tells of in `value`, if it is one: what changes the state
/// of a job gives back the job that makes the change, which is no test.
std::optional<TCIMReference> FindStartedJob(const TProviders& providers, const std::string& method,
                                            const std::string& name, const TCIMValue& value) {
  if (IsSameName(method, "RequestStateChange") || value.IsNull() || value.IsArray()) return {};
  const bool isNamedJob = IsSameName(name, "Job");
  if (!isNamedJob && value.GetType() != ECIMType::kReference) return {};
  try {
    TCIMReference job = GetJobReference(value);
    if (isNamedJob || providers.IsA(job.GetClassName(), "CIM_ConcreteJob")) return job;
  } catch (const TQELException&) {
    // Whoever called is told.
  }
  return {};
}

}  // namespace

TCIMValue TCMPIOperations::InvokeMethod(const TCIMReference& path, const std::string& method,
                                        TKeyMap& parameters) {
  TProviders& providers = m_parts->providers;
  const std::string& nameSpace = path.GetNamespaceName();
  const std::string what = "InvokeMethod " + method + " of " + path.GetPath();
  const auto declaration = providers.FindClass(path.GetClassName());
  const TCIMMethodDeclaration* declared =
      declaration == nullptr ? nullptr : declaration->FindMethod(method);
  const TNamedValues in = ConvertParameters(parameters, declared, what);
  // Providers compare names letter by letter.
  const std::string& name = declared == nullptr ? method : declared->name;
  TKeyMap results;
  const auto ask = [&](const TParts::TService& service) {
    const auto functions = service.provider->GetMethodMI(providers.GetBroker());
    CMPIMethodMI& mi = *functions;
    const TPassedPath target(m_parts->ForService(service, m_parts->ToContent(path)));
    const TPassedArgs inArgs(in);
    const TPassedArgs outArgs{TNamedValues()};
    const TStartedWork::TCall call(m_parts->work, service.provider);
    TCallOutcome outcome =
        m_parts->Call(service, "invokeMethod", what, nameSpace, TBrokerResult::EKind::kData,
                      [&](auto* ctx, auto* result) {
                        return mi.ft->invokeMethod == nullptr
                                   ? NoSuchFunction()
                                   : mi.ft->invokeMethod(&mi, ctx, result, target.Get(),
                                                         name.c_str(), inArgs.Get(), outArgs.Get());
                      });
    for (const TCIMPropertyData& out : outArgs.Get()->GetValues()) results[out.name] = out.value;
    return outcome;
  };
  const TCallOutcome outcome = m_parts->AskFirst(
      providers.FindServicesOfObject(nameSpace, path.GetClassName(), ERole::kMethod), ask,
      what + ": no provider offers methods of the class there");
  for (const auto& [result, value] : results) {
    std::optional<TCIMReference> job = FindStartedJob(providers, method, result, value);
    if (!job) continue;
    if (job->GetNamespaceName().empty()) job->SetNamespaceName(nameSpace);
    m_parts->work.AddJob(*job);
  }
  parameters = std::move(results);
  return outcome.content.data.empty() ? TCIMValue() : outcome.content.data.front();
}

}  // namespace NZEPQEL20
