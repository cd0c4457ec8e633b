// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "providers/hardware/IDiagnosticTest.h"

namespace hardware {

/// States of a job; the numbers are those of CIM_ConcreteJob.JobState.
enum class EJobState : std::uint16_t {
  kStarting = 3,
  kRunning = 4,
  kCompleted = 7,   ///< The test ended by itself, whatever it found.
  kTerminated = 8,  ///< Stopped on request, in order.
  kKilled = 9,      ///< Ended at once: on request, or at its deadline.
  kException = 10   ///< The test itself could not be made.
};

/// Whether a job in this state is over.
bool IsFinal(EJobState state);

/// The outcome of a job.
struct TRecord {
  std::string id;  ///< Begins with the job's id.
  std::string jobId;
  std::string serviceName;
  TDevice device;
  ECompletion state = ECompletion::kIncomplete;
  std::string data;  ///< What was found and how, as text in lines; valid UTF-8.
  std::chrono::system_clock::time_point created;
};

/// What a job looks like at one moment.
struct TJobView {
  std::string id;  ///< "DRH:" and a text that no other job on this machine has or begins with.
  std::string serviceName;
  TDevice device;
  EJobState state = EJobState::kStarting;
  unsigned int percent = 0;  ///< Never falls; 100 exactly when the state is final.
  std::chrono::system_clock::time_point started;
  std::chrono::milliseconds elapsed{0};
};

/// Runs tests as jobs, each on a thread of its own, and keeps jobs and records for those who ask.
///
/// One job per device at a time. A job and its record are kept for five minutes after its end at
/// least; beyond that only as long as there are few. The record is there no later than the final
/// state.
/// Threads: any.
class TJobTable {
 public:
  using TClock = std::function<std::chrono::steady_clock::time_point()>;

  /// Finished jobs up to this number are kept however old they are.
  static constexpr std::size_t kKeptJobs = 256;
  /// No job is started while this many younger than five minutes are kept.
  static constexpr std::size_t kMaxJobs = 4096;

  /// `clock`: what ages are measured with.
  explicit TJobTable(TClock clock = std::chrono::steady_clock::now);
  /// As Shutdown().
  ~TJobTable();
  TJobTable(const TJobTable&) = delete;
  TJobTable& operator=(const TJobTable&) = delete;

  enum class EStart { kStarted, kBusy, kFailed };
  struct TStarted {
    EStart result = EStart::kFailed;
    std::string jobId;   ///< Only for kStarted.
    std::string reason;  ///< Only for kFailed and kBusy.
  };

  /// Starts `test`, which outlives this table, on `device`. Busy while a job for the same device
  /// is not over, when too many jobs are kept, and after Shutdown().
  TStarted Start(const IDiagnosticTest& test, const TDevice& device);

  /// Returns when the job is over; at once when there is no such job.
  void WaitFor(const std::string& jobId);

  enum class EStopResult { kAsked, kNoSuchJob, kIsOver };
  /// Asks for the end of a job that is not over. Does not wait for it.
  EStopResult RequestStop(const std::string& jobId, EStop stop);

  std::vector<TJobView> GetJobs() const;
  std::optional<TJobView> FindJob(const std::string& jobId) const;
  std::vector<TRecord> GetRecords() const;
  std::optional<TRecord> FindRecord(const std::string& recordId) const;

  /// Kills every job and returns when none of their threads and programs is left; nothing can be
  /// started from then on. Jobs and records stay.
  void Shutdown() noexcept;

 private:
  struct TJob;
  using TJobs = std::map<std::string, std::shared_ptr<TJob>>;

  bool IsBusy(const std::string& deviceId) const;
  void Prune();
  std::vector<std::thread> TakeFinishedThreads();
  void Execute(TJob& job) noexcept;
  void Finish(TJob& job, const TVerdict& verdict) noexcept;
  void SetPercent(TJob& job, unsigned int percent);
  TJobView Describe(const TJob& job) const;

  TClock m_clock;
  mutable std::mutex m_mutex;
  std::condition_variable m_changed;
  TJobs m_jobs;  // The ids ascend with time.
  bool m_isShutDown = false;
};

/// The text of a record: what was found, by which program and command, how long it took, what was
/// covered, and the part of the output that matters.
std::string ComposeRecordData(const TVerdict& verdict, std::chrono::milliseconds duration);

}  // namespace hardware
