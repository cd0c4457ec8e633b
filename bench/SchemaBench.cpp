// SPDX-License-Identifier: Apache-2.0
// What a schema of the size of the published one costs: read from its files, taken from the cache,
// and one class of it; and a start with one that a vendor ships in the provider's own folder.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "bench/Ratio.h"
#include "platform/schema/SchemaLoad.h"
#include "platform/setup/InstalledSchema.h"
#include "tests/platform/schema/FullSchema.h"
#include "tests/support/TTemporaryFolder.h"

namespace {

using NZEPQEL20::LoadSchema;
using NZEPQEL20::TLoadedSchema;
using NZEPQEL20::TSchemaCachePlace;
using NZEPQEL20::TSchemaInputs;

// A schema in a folder of its own, gone with the process.
class TSchemaFolder {
 public:
  TSchemaFolder() {
    const std::string schema = m_folder.GetPath("schema");
    m_inputs.files.push_back(fullschema::Write(schema, fullschema::kClassCount));
    m_place.folders.push_back(m_folder.GetPath("cache"));
    m_place.fileName = "schema.cache";
    // The first one writes the cache.
    m_size = LoadSchema(m_inputs, m_place).classes->GetSources().GetSize();
  }

  TLoadedSchema ReadFiles() const { return LoadSchema(m_inputs, {}); }
  TLoadedSchema Open() const { return LoadSchema(m_inputs, m_place); }
  double GetMegabytes() const { return static_cast<double>(m_size) / 1e6; }

 private:
  TTemporaryFolder m_folder;
  TSchemaInputs m_inputs;
  TSchemaCachePlace m_place;
  std::size_t m_size = 0;
};

const TSchemaFolder& GetFolder() {
  static const TSchemaFolder folder;
  return folder;
}

bool IsWhole(const TLoadedSchema& schema) {
  return schema.problems.empty() && schema.classes->GetCount() == fullschema::kClassCount;
}

// Reading the files against going over as many bytes once.
void BM_ReadAgainstOneLookAtTheBytes(benchmark::State& state) {
  const TSchemaFolder& folder = GetFolder();
  const std::string bytes(static_cast<std::size_t>(folder.GetMegabytes() * 1e6), 'x');
  if (!IsWhole(folder.ReadFiles())) state.SkipWithError("the schema is not read whole");
  bench::MeasureRatio(
      state, [&folder] { folder.ReadFiles(); },
      [&bytes] {
        std::size_t sum = 0;
        for (const char c : bytes) benchmark::DoNotOptimize(sum += static_cast<unsigned char>(c));
      });
  state.counters["MB"] = folder.GetMegabytes();
  state.counters["MB/s"] = folder.GetMegabytes() / state.counters["seconds"];
}
BENCHMARK(BM_ReadAgainstOneLookAtTheBytes)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_CachedAgainstRead(benchmark::State& state) {
  const TSchemaFolder& folder = GetFolder();
  const TLoadedSchema cached = folder.Open();
  if (!cached.isFromCache || !IsWhole(cached)) state.SkipWithError("the cache is not used");
  bench::MeasureRatio(
      state, [&folder] { folder.Open(); }, [&folder] { folder.ReadFiles(); });
}
BENCHMARK(BM_CachedAgainstRead)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    // The reference is what takes the time.
    ->Iterations(3);

// The start and the first look at a class, against the start.
void BM_CachedWithOneClassAgainstCached(benchmark::State& state) {
  const TSchemaFolder& folder = GetFolder();
  const std::string name = fullschema::GetClassName(fullschema::kClassCount - 1);
  if (folder.Open().classes->Find(name) == nullptr) state.SkipWithError("a class is missing");
  bench::MeasureRatio(
      state, [&] { benchmark::DoNotOptimize(folder.Open().classes->Find(name)); },
      [&folder] { folder.Open(); });
}
BENCHMARK(BM_CachedWithOneClassAgainstCached)->UseManualTime()->Unit(benchmark::kMillisecond);

// An installation whose vendor ships the whole schema beside the library and its registration.
class TVendorRoot {
 public:
  TVendorRoot() {
    m_folder.Write("schema/base.mof", "class B_Base { [Key] uint8 k; };\n");
    m_folder.Write("providers/acme/acme.registration", "CIM_Gen0 root/cimv2 Acme acme instance\n");
    m_folder.Write("providers/acme/libacme.so", "");
    fullschema::Write(m_folder.GetPath("providers/acme/mof"), fullschema::kClassCount);
    // Younger stamps are not believed.
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    Start("");
  }

  // With the cache where it always is, or "off".
  NZEPQEL20::setup::TInstalledSchema Start(const char* cache) const {
    setenv("DIAGSRUNNER_SCHEMA_CACHE", cache, 1);
    return NZEPQEL20::setup::LoadInstalledSchema(m_folder.GetPath());
  }

 private:
  TTemporaryFolder m_folder;
};

void BM_CachedStartWithAVendorsSchemaAgainstRead(benchmark::State& state) {
  const TVendorRoot root;
  const NZEPQEL20::setup::TInstalledSchema cached = root.Start("");
  if (!cached.schema.isFromCache || cached.registrations.GetEntries().size() != 1 ||
      cached.schema.classes->GetCount() != fullschema::kClassCount + 1) {
    state.SkipWithError("the cache is not used");
  }
  bench::MeasureRatio(
      state, [&root] { root.Start(""); }, [&root] { root.Start("off"); });
}
BENCHMARK(BM_CachedStartWithAVendorsSchemaAgainstRead)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    // The reference is what takes the time.
    ->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
