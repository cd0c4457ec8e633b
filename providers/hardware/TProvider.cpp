// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TProvider.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <mutex>
#include <set>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

/// What there is once per process.
struct TShared {
  std::mutex mutex;
  std::set<TProvider::ETable> tables;
  std::shared_ptr<TProvider> provider;
};

TShared& Shared() {
  static TShared shared;
  return shared;
}

// The folder this library was loaded from.
std::string FindLibraryFolder() {
  Dl_info info{};
  if (::dladdr(reinterpret_cast<const void*>(&FindLibraryFolder), &info) == 0 ||
      info.dli_fname == nullptr) {
    return ".";
  }
  const std::string file = info.dli_fname;
  const std::size_t slash = file.rfind('/');
  return slash == std::string::npos ? "." : file.substr(0, slash);
}

std::string FindSystemName(const THostFiles& files) {
  std::string own = CleanName(files.ReadText("/proc/sys/kernel/hostname").value_or(""));
  if (!own.empty()) return own;
  std::array<char, 256> name{};
  return ::gethostname(name.data(), name.size() - 1) == 0 ? CleanName(name.data()) : "localhost";
}

std::shared_ptr<TProvider> MakeProvider(const CMPIBroker* broker) {
  const char* const root = std::getenv("DIAGSRUNNER_HARDWARE_SYSROOT");
  const TConfigReading reading = LoadConfig(FindLibraryFolder());
  for (const std::string& problem : reading.problems) {
    broker->eft->logMessage(broker, CMPI_SEV_WARNING, "DiagsHardware", problem.c_str(), nullptr);
  }
  return std::make_shared<TProvider>(broker, reading.config,
                                     THostFiles(root != nullptr ? root : ""));
}

}  // namespace

TProvider::TProvider(const CMPIBroker* broker, const TConfig& config, const THostFiles& files)
    : m_broker(broker),
      m_hardware(config, files, TCallerRights::Read(), TToolFinder()),
      m_model(m_hardware, FindSystemName(files)) {}

void TProvider::Acquire(ETable table, const CMPIBroker* broker) {
  TShared& shared = Shared();
  const std::lock_guard<std::mutex> lock(shared.mutex);
  if (!shared.provider) shared.provider = MakeProvider(broker);
  shared.tables.insert(table);
}

bool TProvider::HasRunningJobs() {
  const std::vector<TJobView> jobs = m_hardware.GetJobs().GetJobs();
  return std::any_of(jobs.begin(), jobs.end(),
                     [](const TJobView& job) { return !IsFinal(job.state); });
}

bool TProvider::Release(ETable table, bool isTerminating) {
  TShared& shared = Shared();
  std::shared_ptr<TProvider> provider;
  {
    const std::lock_guard<std::mutex> lock(shared.mutex);
    provider = shared.provider;
    if (!provider || shared.tables.count(table) == 0) return true;
    if (!isTerminating && provider->HasRunningJobs()) return false;
    shared.tables.erase(table);
    if (shared.tables.empty()) shared.provider.reset();
  }
  // Without the lock: calls that wait for these jobs still need it. A method that blocks in one
  // of them returns by this, so that its own table can be cleaned up.
  if (isTerminating) provider->m_hardware.GetJobs().Shutdown();
  return true;
}

std::shared_ptr<TProvider> TProvider::Get() {
  TShared& shared = Shared();
  const std::lock_guard<std::mutex> lock(shared.mutex);
  if (!shared.provider) throw TCimError(TCimError::kFailed, "the provider was cleaned up");
  return shared.provider;
}

}  // namespace hardware
