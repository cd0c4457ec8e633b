// SPDX-License-Identifier: Apache-2.0
// A whole discovery by the runner against a bare walk that makes the same platform calls.
#include <boost/make_shared.hpp>
#include <memory>
#include <string>
#include <vector>

#include "bench/Ratio.h"
#include "bench/TBenchOperations.h"
#include "platform/contract/CMPINSPInstanceRegistry.h"
#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/TAddToVectorCallback.h"
#include "platform/contract/TOSSpecific.h"
#include "platform/model/TModelNamespace.h"
#include "platform/model/TRoutingNamespace.h"
#include "runner/DiagsRunner.h"

namespace {

using NZEPQEL20::ICIMClass;
using NZEPQEL20::ICIMInstance;
using NZEPQEL20::ICIMNamespace;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;
using TInstancePtr = boost::shared_ptr<ICIMInstance>;

boost::shared_ptr<ICIMNamespace> MakeWorld(unsigned int devices) {
  auto context = std::make_shared<NZEPQEL20::TModelContext>(
      "cmpi", std::make_shared<bench::TBenchOperations>(devices));
  auto router = boost::make_shared<NZEPQEL20::TRoutingNamespace>();
  context->SetRouter(router);
  const auto home = boost::make_shared<NZEPQEL20::TModelNamespace>(context, "root/cimv2");
  router->AddContext("cmpi", [home](const TKeyMap&) { return home; });
  return router;
}

std::size_t Discover(const boost::shared_ptr<ICIMNamespace>& ns) {
  const std::string list = DiagsRunner::GetDiagsRunner(ns)->EnumerateDiagTests("");
  DiagsRunner::FreeDiagsRunner();
  fgDiagInstance = nullptr;  // The next round needs a runner of its own.
  NZEPQEL20::CMPINSPInstanceRegistry::GetRegistrySingleton().ClearInstances();
  return list.size();
}

TCIMReference GetEnd(ICIMInstance& association, const char* property) {
  return static_cast<TCIMReference>(association.GetProperty(property, {})->GetValue({}));
}

// The platform calls for one association, and nothing done with their answers.
std::size_t WalkOne(ICIMInstance& association, const TKeyMap& keys) {
  const TCIMReference service = GetEnd(association, "ServiceProvided");
  const TCIMReference device = GetEnd(association, "UserOfService");
  std::size_t size = service.GetPath().size() + device.GetPath().size();
  const boost::shared_ptr<ICIMClass> serviceClass = service.GetClass();
  const boost::shared_ptr<ICIMClass> deviceClass = device.GetClass();
  const TInstancePtr served = serviceClass->GetNamespace(keys)->GetInstance(service, keys);
  const TInstancePtr user = deviceClass->GetNamespace(keys)->GetInstance(device, keys);
  size += served->GetProperty("CreationClassName", {})->GetValueText().size();
  const auto elements =
      static_cast<std::vector<TCIMValue>>(served->GetProperty("Characteristics", {})->GetValue({}));
  for (const TCIMValue& element : elements) size += static_cast<unsigned short>(element);
  size += user->GetProperty("ElementName", {})->GetValueText().size();
  size += user->GetProperty("DeviceID", {})->GetValueText().size();
  return size + served->GetProperty("Name", {})->GetValueText().size();
}

std::size_t WalkBare(const boost::shared_ptr<ICIMNamespace>& ns) {
  const TKeyMap keys{{"nspID", TCIMValue("cmpi")}};
  std::vector<TInstancePtr> associations;
  ns->FindClass("CIM_AvailableDiagnosticService", keys)
      ->EnumerateInstances(NZEPQEL20::TAddToVectorCallback(associations), 1, keys);
  std::size_t size = 0;
  for (const TInstancePtr& association : associations) size += WalkOne(*association, keys);
  NZEPQEL20::CMPINSPInstanceRegistry::GetRegistrySingleton().ClearInstances();
  return size;
}

// Argument: associations. "each_us" is the runner's time for one of them.
void BM_DiscoveryAgainstBareWalk(benchmark::State& state) {
  NZEPQEL20::TOSSpecific::SetQELRootPath("/nonexistent");
  const auto associations = static_cast<unsigned int>(state.range(0));
  const boost::shared_ptr<ICIMNamespace> ns = MakeWorld(associations);
  if (Discover(ns) < associations) state.SkipWithError("discovery found nothing");
  bench::MeasureRatio(
      state, [&ns] { benchmark::DoNotOptimize(Discover(ns)); },
      [&ns] { benchmark::DoNotOptimize(WalkBare(ns)); });
  state.counters["each_us"] = state.counters["seconds"] * 1e6 / associations;
}
BENCHMARK(BM_DiscoveryAgainstBareWalk)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
