// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TProcessRunner.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <optional>

#include "providers/hardware/TChildProcess.h"
#include "providers/hardware/THeadTailBuffer.h"

namespace hardware {
namespace {

using TClock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::size_t kHeadBytes = std::size_t{16} * 1024;
constexpr std::size_t kTailBytes = std::size_t{240} * 1024;
constexpr milliseconds kPollTime{50};
constexpr milliseconds kWatchInterval{250};
// How long output is awaited after the whole group was killed.
constexpr milliseconds kDrainTime{300};
// How long a killed program may take to go away before the caller is no longer held up.
constexpr milliseconds kGiveUpTime{5000};

/// One run, from start to end.
class TRun {
 public:
  TRun(const std::vector<std::string>& arguments, milliseconds deadline, milliseconds grace,
       const TStopSignal& stop, const TProcessRunner::TWatcher& watcher)
      : m_start(TClock::now()),
        m_deadline(m_start + deadline),
        m_grace(grace),
        m_stop(stop),
        m_watcher(watcher),
        m_child(arguments) {}

  TProcessOutcome Follow() {
    while (true) {
      WaitForEvents();
      ReadPipes();
      if (const auto exit = m_child.TryReap()) return Conclude(*exit);
      Control();
      if (m_giveUp && TClock::now() >= *m_giveUp) return Conclude({0, SIGKILL, true});
      Watch();
    }
  }

 private:
  void WaitForEvents() {
    std::array<struct pollfd, 3> events{};
    events[0].fd = m_child.GetOutput().Get();
    events[1].fd = m_child.GetErrors().Get();
    // Once a stop is under way its descriptor stays readable and would keep this loop spinning.
    events[2].fd = m_ending ? -1 : m_stop.GetFd();
    for (struct pollfd& event : events) event.events = POLLIN;
    ::poll(events.data(), events.size(), static_cast<int>(kPollTime.count()));
  }

  static void ReadPipe(TFileDescriptor& pipe, THeadTailBuffer& buffer) {
    std::array<char, 65536> piece;  // NOLINT(cppcoreguidelines-pro-type-member-init): 64 KiB.
    // A flood of output must not keep this thread from looking at the clock.
    for (int i = 0; i < 16 && pipe.IsOpen(); ++i) {
      const ssize_t count = ::read(pipe.Get(), piece.data(), piece.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0 && errno == EAGAIN) return;
      if (count <= 0) {
        pipe.Close();
        return;
      }
      buffer.Append({piece.data(), static_cast<std::size_t>(count)});
    }
  }

  void ReadPipes() {
    ReadPipe(m_child.GetOutput(), m_output);
    ReadPipe(m_child.GetErrors(), m_errors);
  }

  void Control() {
    const TClock::time_point now = TClock::now();
    const EStop stop = m_stop.Get();
    if (!m_ending && stop != EStop::kNone) {
      End(stop == EStop::kKill ? EProcessEnd::kKilled : EProcessEnd::kTerminated);
    } else if (!m_ending && now >= m_deadline) {
      End(EProcessEnd::kDeadline);
    } else if (m_ending == EProcessEnd::kTerminated && stop == EStop::kKill) {
      m_ending = EProcessEnd::kKilled;
      m_killAt = now;
    }
    if (m_ending && now >= m_killAt) {
      m_child.SignalGroup(SIGKILL);
      if (!m_giveUp) m_giveUp = now + kGiveUpTime;
    }
  }

  void End(EProcessEnd end) {
    m_ending = end;
    m_killAt = TClock::now();
    if (end == EProcessEnd::kKilled) return;
    m_child.SignalGroup(SIGTERM);
    m_killAt += m_grace;
  }

  void Watch() {
    const TClock::time_point now = TClock::now();
    if (!m_watcher || now - m_lastWatch < kWatchInterval) return;
    m_lastWatch = now;
    m_watcher(m_output.GetText(), Elapsed());
  }

  milliseconds Elapsed() const {
    return std::chrono::duration_cast<milliseconds>(TClock::now() - m_start);
  }

  TProcessOutcome Conclude(const TChildProcess::TExit& exit) {
    TProcessOutcome outcome;
    outcome.duration = Elapsed();
    const TClock::time_point end = TClock::now() + kDrainTime;
    ReadPipes();
    while ((m_child.GetOutput().IsOpen() || m_child.GetErrors().IsOpen()) && TClock::now() < end) {
      WaitForEvents();
      ReadPipes();
    }
    outcome.output = m_output.GetText();
    outcome.errors = m_errors.GetText();
    outcome.exitStatus = exit.status;
    outcome.signal = exit.signal;
    outcome.isIgnored = exit.isIgnored;
    outcome.end = m_ending          ? *m_ending
                  : exit.isLost     ? EProcessEnd::kLost
                  : exit.signal > 0 ? EProcessEnd::kSignalled
                                    : EProcessEnd::kExited;
    return outcome;
  }

  TClock::time_point m_start;
  TClock::time_point m_deadline;
  milliseconds m_grace;
  const TStopSignal& m_stop;
  const TProcessRunner::TWatcher& m_watcher;
  THeadTailBuffer m_output{kHeadBytes, kTailBytes};
  THeadTailBuffer m_errors{kHeadBytes, kTailBytes};
  std::optional<EProcessEnd> m_ending;
  TClock::time_point m_killAt;
  std::optional<TClock::time_point> m_giveUp;
  TClock::time_point m_lastWatch;
  TChildProcess m_child;
};

}  // namespace

TProcessOutcome TProcessRunner::Run(const std::vector<std::string>& arguments,
                                    milliseconds deadline, const TStopSignal& stop,
                                    const TWatcher& watcher) const {
  TProcessOutcome outcome;
  try {
    outcome = TRun(arguments, deadline, m_grace, stop, watcher).Follow();
  } catch (const std::exception& error) {
    outcome.end = EProcessEnd::kNotStarted;
    outcome.startError = error.what();
  }
  outcome.arguments = arguments;
  return outcome;
}

}  // namespace hardware
