// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TJobTable.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <exception>
#include <utility>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::chrono::minutes kKeptTime{5};

// Digits in front of the number make it `width` characters long.
std::string Pad(unsigned long number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return std::string(width - std::min(width, digits.size()), '0') + digits;
}

// Ids of the same length that differ in time, process or number: none is contained in another.
std::string MakeJobId() {
  static std::atomic<unsigned int> counter{0};
  const auto now = static_cast<unsigned long>(std::time(nullptr));
  return "DRH:" + Pad(now, 10) + "-" + Pad(static_cast<unsigned long>(::getpid()), 7) + "-" +
         Pad(++counter, 10);
}

EJobState ToJobState(const TVerdict& verdict) {
  if (verdict.isBroken) return EJobState::kException;
  if (verdict.state == ECompletion::kAborted) return EJobState::kKilled;
  if (verdict.state == ECompletion::kStopped) return EJobState::kTerminated;
  return EJobState::kCompleted;
}

std::string NameVerdict(ECompletion state) {
  switch (state) {
    case ECompletion::kOk:
      return "passed";
    case ECompletion::kWarning:
      return "warning";
    case ECompletion::kIncomplete:
      return "incomplete";
    case ECompletion::kFailed:
      return "failed";
    case ECompletion::kAborted:
      return "aborted";
    case ECompletion::kStopped:
      return "stopped";
  }
  return "unknown";
}

TVerdict MakeBroken(const char* reason) {
  TVerdict verdict =
      MakeVerdict(ECompletion::kIncomplete, std::string("the test could not be made: ") + reason);
  verdict.isBroken = true;
  return verdict;
}

}  // namespace

bool IsFinal(EJobState state) {
  return state != EJobState::kStarting && state != EJobState::kRunning;
}

std::string ComposeRecordData(const TVerdict& verdict, std::chrono::milliseconds duration) {
  const std::string seconds = std::to_string(duration.count() / 1000) + "." +
                              std::to_string(duration.count() % 1000 / 100) + " s";
  std::string text = "Verdict: " + NameVerdict(verdict.state) + ": " + verdict.summary + "\n";
  const auto add = [&text](const char* label, const std::string& value) {
    if (!value.empty()) text += std::string(label) + ": " + value + "\n";
  };
  add("Covered", verdict.covered);
  add("Tool", verdict.tool);
  add("Command", verdict.command);
  add("Ended with", verdict.exit);
  add("Duration", seconds);
  if (!verdict.excerpt.empty()) text += "Output:\n" + verdict.excerpt + "\n";
  return CleanText(text);
}

/// One run. All but the stop signal and what is fixed at its start is guarded by the table.
struct TJobTable::TJob {
  const IDiagnosticTest* test = nullptr;
  TDevice device;
  TStopSignal stop;
  TRecord record;  // Complete but for its outcome, so that the end has next to nothing to do.
  EJobState state = EJobState::kStarting;
  unsigned int percent = 0;
  std::chrono::system_clock::time_point started;
  std::chrono::steady_clock::time_point start;
  std::chrono::steady_clock::time_point end;
  std::thread thread;
};

TJobTable::TJobTable(TClock clock) : m_clock(std::move(clock)) {}

TJobTable::~TJobTable() {
  Shutdown();
}

bool TJobTable::IsBusy(const std::string& deviceId) const {
  return std::any_of(m_jobs.begin(), m_jobs.end(), [&deviceId](const auto& entry) {
    return !IsFinal(entry.second->state) && entry.second->device.id == deviceId;
  });
}

void TJobTable::Prune() {
  const std::chrono::steady_clock::time_point now = m_clock();
  for (auto entry = m_jobs.begin(); entry != m_jobs.end() && m_jobs.size() > kKeptJobs;) {
    const TJob& job = *entry->second;
    const bool isOld = IsFinal(job.state) && now - job.end >= kKeptTime && !job.thread.joinable();
    entry = isOld ? m_jobs.erase(entry) : std::next(entry);
  }
}

std::vector<std::thread> TJobTable::TakeFinishedThreads() {
  std::vector<std::thread> threads;
  for (const auto& entry : m_jobs) {
    if (IsFinal(entry.second->state) && entry.second->thread.joinable()) {
      threads.push_back(std::move(entry.second->thread));
    }
  }
  return threads;
}

TJobTable::TStarted TJobTable::Start(const IDiagnosticTest& test, const TDevice& device) {
  std::vector<std::thread> finished;
  TStarted started;
  try {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isShutDown) {
      finished = TakeFinishedThreads();
      Prune();
    }
    started.result = EStart::kBusy;
    if (m_isShutDown) started.reason = "the provider is being ended";
    if (m_jobs.size() >= kMaxJobs) started.reason = "too many tests ended in the last minutes";
    if (IsBusy(device.id)) started.reason = device.id + " is under test already";
    if (started.reason.empty()) {
      auto job = std::make_shared<TJob>();
      job->test = &test;
      job->device = job->record.device = device;
      job->record.jobId = MakeJobId();
      job->record.id = job->record.jobId + ":record";
      job->record.serviceName = test.GetService().name;
      job->started = std::chrono::system_clock::now();
      job->start = m_clock();
      // The job is in the table before its thread runs, and out again when there is no thread.
      const auto place = m_jobs.emplace(job->record.jobId, job).first;
      try {
        job->thread = std::thread([this, job] { Execute(*job); });
      } catch (...) {
        m_jobs.erase(place);
        throw;
      }
      started.jobId = job->record.jobId;
      started.result = EStart::kStarted;
    }
  } catch (const std::exception& error) {
    started.result = EStart::kFailed;
    started.reason = error.what();
  }
  // Joined without the lock, which their last steps need.
  for (std::thread& thread : finished) thread.join();
  return started;
}

void TJobTable::Execute(TJob& job) noexcept {
  TVerdict verdict;
  try {
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      job.state = EJobState::kRunning;
    }
    const TRunControl control{job.stop,
                              [this, &job](unsigned int percent) { SetPercent(job, percent); }};
    verdict = job.test->Run(job.device, control);
  } catch (const std::exception& error) {
    verdict = MakeBroken(error.what());
  } catch (...) {
    verdict = MakeBroken("unknown exception");
  }
  Finish(job, verdict);
}

void TJobTable::SetPercent(TJob& job, unsigned int percent) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  job.percent = std::max(job.percent, std::min(percent, 99U));
}

void TJobTable::Finish(TJob& job, const TVerdict& verdict) noexcept {
  const std::lock_guard<std::mutex> lock(m_mutex);
  job.end = m_clock();
  job.record.created = std::chrono::system_clock::now();
  job.record.state = verdict.state;
  try {
    job.record.data = ComposeRecordData(
        verdict, std::chrono::duration_cast<std::chrono::milliseconds>(job.end - job.start));
  } catch (const std::exception&) {
    job.record.data = "out of memory";  // Short enough to need none.
  }
  job.percent = 100;
  job.state = ToJobState(verdict);
  m_changed.notify_all();
}

void TJobTable::WaitFor(const std::string& jobId) {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_changed.wait(lock, [this, &jobId] {
    const auto entry = m_jobs.find(jobId);
    return entry == m_jobs.end() || IsFinal(entry->second->state);
  });
}

TJobTable::EStopResult TJobTable::RequestStop(const std::string& jobId, EStop stop) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  const auto entry = m_jobs.find(jobId);
  if (entry == m_jobs.end()) return EStopResult::kNoSuchJob;
  if (IsFinal(entry->second->state)) return EStopResult::kIsOver;
  entry->second->stop.Request(stop);
  return EStopResult::kAsked;
}

TJobView TJobTable::Describe(const TJob& job) const {
  TJobView view;
  view.id = job.record.jobId;
  view.serviceName = job.record.serviceName;
  view.device = job.device;
  view.state = job.state;
  view.percent = job.percent;
  view.started = job.started;
  view.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
      (IsFinal(job.state) ? job.end : m_clock()) - job.start);
  return view;
}

std::vector<TJobView> TJobTable::GetJobs() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  std::vector<TJobView> views;
  for (const auto& entry : m_jobs) views.push_back(Describe(*entry.second));
  return views;
}

std::optional<TJobView> TJobTable::FindJob(const std::string& jobId) const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  const auto entry = m_jobs.find(jobId);
  if (entry == m_jobs.end()) return std::nullopt;
  return Describe(*entry->second);
}

std::vector<TRecord> TJobTable::GetRecords() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  std::vector<TRecord> records;
  for (const auto& entry : m_jobs) {
    if (IsFinal(entry.second->state)) records.push_back(entry.second->record);
  }
  return records;
}

std::optional<TRecord> TJobTable::FindRecord(const std::string& recordId) const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  for (const auto& entry : m_jobs) {
    if (entry.second->record.id == recordId && IsFinal(entry.second->state)) {
      return entry.second->record;
    }
  }
  return std::nullopt;
}

void TJobTable::Shutdown() noexcept {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isShutDown = true;
    for (const auto& entry : m_jobs) {
      if (!IsFinal(entry.second->state)) entry.second->stop.Request(EStop::kKill);
    }
  }
  // From here on no job is added or removed, and the threads themselves only change states.
  for (const auto& entry : m_jobs) {
    if (entry.second->thread.joinable()) entry.second->thread.join();
  }
}

}  // namespace hardware
