// SPDX-License-Identifier: Apache-2.0
// What a schema of the size of the published one costs: read from its files, taken from the cache,
// and one class of it.
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/Ratio.h"
#include "platform/schema/SchemaLoad.h"
#include "tests/platform/schema/FullSchema.h"

namespace {

using NZEPQEL20::LoadSchema;
using NZEPQEL20::TLoadedSchema;
using NZEPQEL20::TSchemaCachePlace;
using NZEPQEL20::TSchemaInputs;

// A schema in a folder of its own, gone with the process.
class TSchemaFolder {
 public:
  TSchemaFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "schemabenchXXXXXX").string();
    m_path = mkdtemp(name.data()) == nullptr ? std::string() : name;
    m_inputs.files.push_back(fullschema::Write(m_path + "/schema", fullschema::kClassCount));
    m_place.folders.push_back(m_path + "/cache");
    m_place.fileName = "schema.cache";
    // The first one writes the cache.
    m_size = LoadSchema(m_inputs, m_place).classes->GetSources().GetSize();
  }
  TSchemaFolder(const TSchemaFolder&) = delete;
  TSchemaFolder& operator=(const TSchemaFolder&) = delete;
  ~TSchemaFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }

  TLoadedSchema ReadFiles() const { return LoadSchema(m_inputs, {}); }
  TLoadedSchema Open() const { return LoadSchema(m_inputs, m_place); }
  double GetMegabytes() const { return static_cast<double>(m_size) / 1e6; }

 private:
  std::string m_path;
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

}  // namespace

BENCHMARK_MAIN();
