// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/TPlatform.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <utility>

#include "platform/cimxml/TCIMXMLOperations.h"
#include "platform/cmpi/TProviders.h"
#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "platform/contract/TOSSpecific.h"
#include "platform/contract/TQELException.h"
#include "platform/model/TModelContext.h"
#include "platform/model/TModelNamespace.h"
#include "platform/model/TRepositoryNamespace.h"
#include "platform/model/TRoutingNamespace.h"
#include "platform/setup/InstalledFiles.h"
#include "platform/setup/ProviderSetup.h"
#include "platform/setup/RunningJobs.h"

namespace NZEPQEL20 {
namespace {

constexpr char kContextId[] = "cmpi";
constexpr char kPegasusId[] = "pegasus";
constexpr char kUnofferedClass[] = "DRH_UnofferedTest";
constexpr char kDiscoveredClass[] = "CIM_AvailableDiagnosticService";

std::string GetText(const TCIMInstanceData& instance, const char* name) {
  const TCIMPropertyData* property = instance.Find(name);
  return property != nullptr ? property->value.ToString(10) : std::string();
}

void AddOnce(const std::string& name, std::vector<std::string>& names) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

// DSP0200: invalid namespace, invalid class, not found, not supported.
bool SaysNobodyServes(const TQELException& reason) {
  const unsigned int status = reason.GetCIMStatus();
  return status == 3 || (status >= 5 && status <= 7);
}

// On a server there are jobs that others have started.
unsigned int KillStartedJobs(TCIMXMLOperations& server) noexcept {
  try {
    return setup::KillJobs(
        server, server.GetStartedJobs(),
        [&server](const TCIMReference& job, const std::string& method, TKeyMap& parameters) {
          return server.InvokeOnJob(job, method, parameters);
        });
  } catch (...) {
    // Out of memory: nothing more can be asked.
    return 0;
  }
}

// What a test that runs inside its method call has started is not known by name: it is among the
// jobs of the provider that is at work.
unsigned int KillStartedJobs(TCMPIOperations& providers) noexcept {
  try {
    const std::vector<TCIMReference> started = providers.GetStartedJobs();
    const auto isUnknown = [&](const TCIMReference& job) {
      return std::find(started.begin(), started.end(), job) == started.end() &&
             providers.IsBusyWith(job.GetClassName());
    };
    const auto invoke = [&](const TCIMReference& job, const std::string& method,
                            TKeyMap& parameters) {
      return providers.InvokeMethod(job, method, parameters);
    };
    return setup::KillJobs(providers, started, invoke) + setup::KillJobs(providers, isUnknown);
  } catch (...) {
    // Out of memory: nothing more can be asked.
    return 0;
  }
}

// The process-wide settings that a platform makes, taken back with it.
class TProcessSettings {
 public:
  explicit TProcessSettings(const TPlatformOptions& options) {
    m_root = setup::CheckRoot(options.root.empty() ? TOSSpecific::GetQELRootPath() : options.root);
    TOSSpecific::SetQELRootPath(m_root);
    TOSSpecific::SetOEMBuild(options.isOEMBuild);
  }
  ~TProcessSettings() {
    TOSSpecific::SetQELRootPath("");
    TOSSpecific::SetOEMBuild(false);
  }
  TProcessSettings(const TProcessSettings&) = delete;
  TProcessSettings& operator=(const TProcessSettings&) = delete;

  const std::string& GetRoot() const { return m_root; }

 private:
  std::string m_root;
};

}  // namespace

// Members go in the reverse order: the namespaces before the operations, and with those the
// providers, before the classes that they use.
struct TPlatform::TParts {
  explicit TParts(const TPlatformOptions& options)
      : settings(options), nameSpaceName(options.nameSpace) {
    if (options.server) {
      server = std::make_shared<TCIMXMLOperations>(*options.server, nameSpaceName);
      CheckServer();
    } else {
      setup::TProviderSetup opened = setup::OpenProviders(settings.GetRoot(), nameSpaceName);
      setupProblems = std::move(opened.problems);
      providers = std::move(opened.operations);
    }
    if (options.pegasus) {
      pegasus = std::make_shared<TCIMXMLOperations>(*options.pegasus, nameSpaceName);
    } else {
      pegasus = server;
    }
    AddContext(kContextId, GetOperations());
    if (pegasus) AddContext(kPegasusId, pegasus);
  }

  ~TParts() {
    // Native instances hold on to objects of the providers.
    CMPINSPInstanceRegistry::GetRegistrySingleton().ClearInstances();
  }
  TParts(const TParts&) = delete;
  TParts& operator=(const TParts&) = delete;

  std::shared_ptr<ICIMOperations> GetOperations() const {
    if (server) return server;
    return providers;
  }

  // Discovery asks for this class first, so a good answer is not asked for twice. A server that
  // cannot be used at all is worth more than an empty list of tests.
  void CheckServer() {
    try {
      server->GetClass(nameSpaceName, kDiscoveredClass);
    } catch (const TQELException& e) {
      if (!SaysNobodyServes(e)) throw;
      setupProblems.push_back(std::string(e.what()) +
                              "; there are no tests in this namespace, --namespace names another");
    }
  }

  void AddContext(const char* id, const std::shared_ptr<ICIMOperations>& operations) {
    auto context = std::make_shared<TModelContext>(id, operations);
    context->SetRouter(router);
    contexts.push_back(context);
    auto connection = boost::make_shared<TModelNamespace>(context, nameSpaceName);
    router->AddContext(id, [connection](const TKeyMap& keys) {
      const auto name = keys.find("nsp");
      return name == keys.end() ? connection : connection->GetSibling(name->second.ToString(10));
    });
  }

  TProcessSettings settings;
  std::string nameSpaceName;
  std::vector<std::string> setupProblems;
  std::vector<std::string> problems;           // Those of set-up and of the providers together.
  std::shared_ptr<TCMPIOperations> providers;  // Either these ...
  std::shared_ptr<TCIMXMLOperations> server;   // ... or this one.
  std::shared_ptr<TCIMXMLOperations> pegasus;
  std::vector<std::shared_ptr<TModelContext>> contexts;
  boost::shared_ptr<TRoutingNamespace> router = boost::make_shared<TRoutingNamespace>();
  boost::shared_ptr<TRepositoryNamespace> repository = boost::make_shared<TRepositoryNamespace>();
};

TPlatform::TPlatform(const TPlatformOptions& options)
    : m_parts(std::make_unique<TParts>(options)) {}

TPlatform::~TPlatform() = default;

boost::shared_ptr<ICIMNamespace> TPlatform::GetNamespace() const {
  return m_parts->router;
}

boost::shared_ptr<ICIMNamespace> TPlatform::GetRepository() const {
  return m_parts->repository;
}

std::vector<boost::shared_ptr<ICIMInstance>> TPlatform::TakeRecords() {
  return m_parts->repository->TakeRecent();
}

const std::vector<std::string>& TPlatform::GetProblems() const {
  m_parts->problems = m_parts->setupProblems;
  const auto add = [this](std::vector<std::string> found) {
    for (std::string& problem : found) m_parts->problems.push_back(std::move(problem));
  };
  if (m_parts->providers) add(m_parts->providers->GetProblems());
  if (m_parts->server) add(m_parts->server->GetProblems());
  if (m_parts->pegasus && m_parts->pegasus != m_parts->server) add(m_parts->pegasus->GetProblems());
  for (const auto& context : m_parts->contexts) add(context->GetRemarks().Get());
  return m_parts->problems;
}

std::string TPlatform::TakeServerFailure() {
  return m_parts->server ? m_parts->server->TakeLastFailure() : std::string();
}

std::vector<TUnofferedTest> TPlatform::GetUnofferedTests() const {
  std::vector<TUnofferedTest> tests;
  const auto take = [&tests](TCIMInstanceData&& test) {
    tests.push_back({GetText(test, "ServiceName"), GetText(test, "ElementName"),
                     GetText(test, "Reason"), GetText(test, "Remedy")});
    return true;
  };
  try {
    m_parts->GetOperations()->EnumerateInstances(m_parts->nameSpaceName, kUnofferedClass, take);
  } catch (const TQELException& e) {
    if (!SaysNobodyServes(e)) throw;
  }
  return tests;
}

TTestPlaces TPlatform::GetTestPlaces() const {
  TTestPlaces places;
  if (!m_parts->providers) return places;
  const cmpi::TProviders& hosted = m_parts->providers->GetHosted();
  for (const auto& service : hosted.GetServices()) {
    const TRegistration& registration = *service.registration;
    const bool isAsked = registration.isInstance || registration.isAssociation;
    if (!isAsked || !hosted.IsA(registration.className, kDiscoveredClass)) continue;
    if (cmpi::IsServedIn(registration, m_parts->nameSpaceName)) {
      AddOnce(registration.className, places.classes);
    } else {
      AddOnce(registration.nameSpace, places.otherNamespaces);
    }
  }
  return places;
}

unsigned int TPlatform::KillRunningJobs() noexcept {
  unsigned int asked = 0;
  if (m_parts->providers) asked += KillStartedJobs(*m_parts->providers);
  if (m_parts->server) asked += KillStartedJobs(*m_parts->server);
  if (m_parts->pegasus && m_parts->pegasus != m_parts->server) {
    asked += KillStartedJobs(*m_parts->pegasus);
  }
  return asked;
}

}  // namespace NZEPQEL20
