// SPDX-License-Identifier: Apache-2.0
// Enumerating instances through the operations against the provider's own function, called with
// the same broker objects and nothing done with what it returns.
#include <memory>
#include <string>

#include "bench/Ratio.h"
#include "platform/cmpi/ProviderCall.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TCMPIOperations.h"
#include "platform/cmpi/TProviderLibrary.h"

namespace {

using namespace NZEPQEL20;
using cmpi::TBrokerResult;

constexpr char kNamespace[] = "root/cimv2";

std::shared_ptr<TClassRepository> MakeClasses() {
  auto classes = std::make_shared<TClassRepository>();
  classes->LoadText(
      "class Stock_Article { [Key] string Id; string Name; string Description; uint16 State;\n"
      "  uint64 Size; boolean Sold; datetime Made; uint16 Modes[]; };\n"
      "class Stock_100 : Stock_Article { };\n"
      "class Stock_1000 : Stock_Article { };\n"
      "class Stock_10000 : Stock_Article { };\n",
      "stock.mof");
  return classes;
}

// The provider without anything between: a broker of its own, whose other services nobody asks
// for.
class TBareCall : private cmpi::IBrokerHost {
 public:
  TBareCall(ICIMOperations& operations, const TClassRepository& classes)
      : m_operations(operations),
        m_classes(classes),
        m_broker(cmpi::TBroker::Take(*this)),
        m_mi(*m_library.Create<CMPIInstanceMI>("Instance", "Stock", m_broker)) {}
  ~TBareCall() override { m_broker.Retire(); }
  TBareCall(const TBareCall&) = delete;
  TBareCall& operator=(const TBareCall&) = delete;

  std::size_t Enumerate(const std::string& className) {
    const auto result = TBrokerResult::Open(TBrokerResult::EKind::kInstances);
    const cmpi::TCallFrame frame(m_broker);
    const cmpi::TBrokerContext context(cmpi::TBrokerContext::EntriesFor(kNamespace));
    const cmpi::TBrokerPath path(cmpi::TPathContent{{}, kNamespace, className, {}});
    m_mi.ft->enumerateInstances(&m_mi, &context, result.get(), &path, nullptr);
    return result->Close().instances.size();
  }

 private:
  ICIMOperations& GetOperations() override { return m_operations; }
  std::string FindNamespace(const std::string& nameSpace,
                            const std::string& /*className*/) const override {
    return nameSpace;
  }
  std::shared_ptr<const TCIMClassDeclaration> FindClass(
      const std::string& className) const override {
    return m_classes.Find(className);
  }
  bool IsA(const std::string& className, const std::string& superclass) const override {
    return m_classes.IsA(className, superclass);
  }

  ICIMOperations& m_operations;
  const TClassRepository& m_classes;
  cmpi::TBroker& m_broker;
  cmpi::TProviderLibrary m_library{STOCK_DIR "/libstock.so"};
  CMPIInstanceMI& m_mi;
};

std::size_t Enumerate(ICIMOperations& operations, const std::string& className) {
  std::size_t size = 0;
  operations.EnumerateInstances(kNamespace, className, [&size](TCIMInstanceData&& instance) {
    size += instance.properties.size();
    return true;
  });
  return size;
}

// Argument: instances. "each_us" is the operations' time for one of them.
void BM_EnumerationAgainstProvider(benchmark::State& state) {
  const auto classes = MakeClasses();
  TRegistrations registrations;
  registrations.Load(STOCK_DIR "/stock.registration");
  TCMPIOperations operations(classes, registrations);
  TBareCall bare(operations, *classes);
  const auto count = static_cast<std::size_t>(state.range(0));
  const std::string className = "Stock_" + std::to_string(count);
  constexpr std::size_t kProperties = 8;
  if (Enumerate(operations, className) != count * kProperties ||
      bare.Enumerate(className) != count) {
    state.SkipWithError("not every instance came");
  }
  bench::MeasureRatio(
      state,
      [&operations, &className] { benchmark::DoNotOptimize(Enumerate(operations, className)); },
      [&bare, &className] { benchmark::DoNotOptimize(bare.Enumerate(className)); });
  state.counters["each_us"] = state.counters["seconds"] * 1e6 / static_cast<double>(count);
}
BENCHMARK(BM_EnumerationAgainstProvider)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
