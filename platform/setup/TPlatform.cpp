// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/TPlatform.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "platform/contract/TOSSpecific.h"
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
constexpr char kUnofferedClass[] = "DRH_UnofferedTest";

std::string GetText(const TCIMInstanceData& instance, const char* name) {
  const TCIMPropertyData* property = instance.Find(name);
  return property != nullptr ? property->value.ToString(10) : std::string();
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
    setup::TProviderSetup providers = setup::OpenProviders(settings.GetRoot(), options.nameSpace);
    setupProblems = std::move(providers.problems);
    classes = std::move(providers.classes);
    operations = std::move(providers.operations);
    Route();
  }

  ~TParts() {
    // Native instances hold on to objects of the providers.
    CMPINSPInstanceRegistry::GetRegistrySingleton().ClearInstances();
  }
  TParts(const TParts&) = delete;
  TParts& operator=(const TParts&) = delete;

  void Route() {
    auto context = std::make_shared<TModelContext>(kContextId, operations);
    context->SetRouter(router);
    auto connection = boost::make_shared<TModelNamespace>(context, nameSpaceName);
    router->AddContext(kContextId, [connection](const TKeyMap& /*keys*/) { return connection; });
  }

  TProcessSettings settings;
  std::string nameSpaceName;
  std::vector<std::string> setupProblems;
  std::vector<std::string> problems;  // Those of set-up and of the providers together.
  std::shared_ptr<const TClassRepository> classes;
  std::shared_ptr<TCMPIOperations> operations;
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
  for (std::string& problem : m_parts->operations->GetProblems()) {
    m_parts->problems.push_back(std::move(problem));
  }
  return m_parts->problems;
}

std::vector<TUnofferedTest> TPlatform::GetUnofferedTests() const {
  std::vector<TUnofferedTest> tests;
  if (!m_parts->classes->Find(kUnofferedClass)) return tests;
  m_parts->operations->EnumerateInstances(
      m_parts->nameSpaceName, kUnofferedClass, [&](TCIMInstanceData&& test) {
        tests.push_back({GetText(test, "ServiceName"), GetText(test, "ElementName"),
                         GetText(test, "Reason"), GetText(test, "Remedy")});
        return true;
      });
  return tests;
}

unsigned int TPlatform::KillRunningJobs() noexcept {
  return setup::KillJobs(*m_parts->operations);
}

}  // namespace NZEPQEL20
