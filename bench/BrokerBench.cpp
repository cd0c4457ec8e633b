// SPDX-License-Identifier: Apache-2.0
// Enumerations and associations through the operations against the provider's own functions,
// called with the same broker objects and nothing done with what they return.
#include <memory>
#include <optional>
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
      "class Stock_10000 : Stock_Article { };\n"
      "class Stock_1000000 : Stock_Article { };\n"
      "class Stock_Shelf { [Key] string Id; };\n"
      "[Association] class Stock_Holds { [Key] Stock_Shelf REF Shelf;\n"
      "  [Key] Stock_Article REF Article; };\n",
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
        m_instances(*m_library.Create<CMPIInstanceMI>("Instance", "Stock", {}, m_broker)),
        m_associations(*m_library.Create<CMPIAssociationMI>("Association", "Stock", {}, m_broker)) {
  }
  ~TBareCall() override { m_broker.Retire(); }
  TBareCall(const TBareCall&) = delete;
  TBareCall& operator=(const TBareCall&) = delete;

  std::size_t Enumerate(const std::string& className) {
    const cmpi::TPathContent path{{}, kNamespace, className, {}};
    return Call(TBrokerResult::EKind::kInstances, path,
                [this](auto* context, auto* result, auto* given) {
                  m_instances.ft->enumerateInstances(&m_instances, context, result, given, nullptr);
                });
  }
  std::size_t Associate(const TCIMReference& shelf) {
    return Call(TBrokerResult::EKind::kInstances, cmpi::TPathContent::From(shelf),
                [this](auto* context, auto* result, auto* given) {
                  m_associations.ft->associators(&m_associations, context, result, given, nullptr,
                                                 nullptr, nullptr, nullptr, nullptr);
                });
  }
  std::size_t Refer(const TCIMReference& shelf) {
    return Call(TBrokerResult::EKind::kPaths, cmpi::TPathContent::From(shelf),
                [this](auto* context, auto* result, auto* given) {
                  m_associations.ft->referenceNames(&m_associations, context, result, given,
                                                    nullptr, nullptr);
                });
  }

 private:
  // Answers with how many results came.
  template <class TFunction>
  std::size_t Call(TBrokerResult::EKind kind, const cmpi::TPathContent& content,
                   const TFunction& function) {
    const auto result = TBrokerResult::Open(kind);
    const cmpi::TCallFrame frame(m_broker);
    const cmpi::TBrokerContext context(cmpi::TBrokerContext::EntriesFor(kNamespace));
    const cmpi::TBrokerPath path(content);
    function(&context, result.get(), &path);
    const TBrokerResult::TContent returned = result->Close();
    return returned.instances.size() + returned.paths.size();
  }

  ICIMOperations& GetOperations() override { return m_operations; }
  std::string FindNamespace(const std::string& nameSpace,
                            const std::string& /*className*/) const override {
    return nameSpace;
  }
  std::string FindMethodNamespace(const std::string& nameSpace,
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

  std::optional<TCIMValue> GetProperty(const TCIMReference& /*path*/,
                                       const std::string& /*name*/) override {
    return std::nullopt;
  }
  bool SetProperty(const TCIMReference& /*path*/, const std::string& /*name*/,
                   const TCIMValue& /*value*/) override {
    return false;
  }

  ICIMOperations& m_operations;
  const TClassRepository& m_classes;
  cmpi::TBroker& m_broker;
  cmpi::TProviderLibrary m_library{STOCK_DIR "/libstock.so", STOCK_DIR};
  CMPIInstanceMI& m_instances;
  CMPIAssociationMI& m_associations;
};

// The operations over the stock, and the stock alone.
struct TStock {
  TStock() { operations.OpenLibraries(); }
  static TRegistrations MakeRegistrations() {
    TRegistrations registrations;
    registrations.Load(STOCK_DIR "/stock.registration");
    return registrations;
  }

  std::shared_ptr<const TClassRepository> classes = MakeClasses();
  TCMPIOperations operations{classes, MakeRegistrations()};
  TBareCall bare{operations, *classes};
};

// `all` and `bare` answer with how many instances came. "each_us" is the operations' time for one.
template <class TAll, class TBare>
void Measure(benchmark::State& state, const TAll& all, const TBare& bare) {
  const auto count = static_cast<std::size_t>(state.range(0));
  if (all() != count || bare() != count) state.SkipWithError("not every instance came");
  bench::MeasureRatio(
      state, [&all] { benchmark::DoNotOptimize(all()); },
      [&bare] { benchmark::DoNotOptimize(bare()); });
  state.counters["each_us"] = state.counters["seconds"] * 1e6 / static_cast<double>(count);
}

TCIMReference GetShelf(const benchmark::State& state) {
  const std::string id = "shelf_" + std::to_string(state.range(0));
  return TCIMReference(kNamespace, "Stock_Shelf", {{"Id", TCIMValue(id)}});
}

// Counts instances, with a look into each.
class TCounter {
 public:
  ICIMOperations::TInstanceSink Sink() {
    return [this](TCIMInstanceData&& instance) {
      m_count += instance.properties.empty() ? 0 : 1;
      return true;
    };
  }
  std::size_t GetCount() const { return m_count; }

 private:
  std::size_t m_count = 0;
};

// Argument: instances, here and below.
void BM_EnumerationAgainstProvider(benchmark::State& state) {
  TStock stock;
  const std::string className = "Stock_" + std::to_string(state.range(0));
  Measure(
      state,
      [&] {
        TCounter counter;
        stock.operations.EnumerateInstances(kNamespace, className, counter.Sink());
        return counter.GetCount();
      },
      [&] { return stock.bare.Enumerate(className); });
}

void BM_AssociatorsAgainstProvider(benchmark::State& state) {
  TStock stock;
  const TCIMReference shelf = GetShelf(state);
  Measure(
      state,
      [&] {
        TCounter counter;
        stock.operations.Associators(shelf, {}, counter.Sink());
        return counter.GetCount();
      },
      [&] { return stock.bare.Associate(shelf); });
}

void BM_ReferenceNamesAgainstProvider(benchmark::State& state) {
  TStock stock;
  const TCIMReference shelf = GetShelf(state);
  Measure(
      state, [&] { return stock.operations.ReferenceNames(shelf, {}).size(); },
      [&] { return stock.bare.Refer(shelf); });
}

// The provider has no such function: the names are made from its references.
void BM_DerivedAssociatorNamesAgainstReferenceNames(benchmark::State& state) {
  TStock stock;
  const TCIMReference shelf = GetShelf(state);
  Measure(
      state, [&] { return stock.operations.AssociatorNames(shelf, {}).size(); },
      [&] { return stock.bare.Refer(shelf); });
}

// Were there anything that grows with their number for each of them, it would take far longer than
// a hundred times ten thousand of them.
void BM_AMillionInstancesAgainstAHundredTimesTenThousand(benchmark::State& state) {
  TStock stock;
  const auto enumerate = [&stock](const char* className) {
    TCounter counter;
    stock.operations.EnumerateInstances(kNamespace, className, counter.Sink());
    return counter.GetCount();
  };
  std::size_t count = 0;
  bench::MeasureRatio(
      state, [&] { count = enumerate("Stock_1000000"); },
      [&] {
        for (int i = 0; i < 100; ++i) enumerate("Stock_10000");
      });
  if (count != 1'000'000) state.SkipWithError("not every instance came");
  state.counters["each_us"] = state.counters["seconds"];
}
BENCHMARK(BM_AMillionInstancesAgainstAHundredTimesTenThousand)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void SetArguments(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);
}
BENCHMARK(BM_EnumerationAgainstProvider)->Apply(SetArguments);
BENCHMARK(BM_AssociatorsAgainstProvider)->Apply(SetArguments);
BENCHMARK(BM_ReferenceNamesAgainstProvider)->Apply(SetArguments);
BENCHMARK(BM_DerivedAssociatorNamesAgainstReferenceNames)->Apply(SetArguments);

}  // namespace

BENCHMARK_MAIN();
