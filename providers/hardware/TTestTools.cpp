// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TTestTools.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "providers/hardware/TFileDescriptor.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::chrono::seconds kQuestionTime{5};
// A device that is exchanged gets a new name or size, and with it new questions; the limit keeps a
// server that runs for years with changing disks from growing.
constexpr std::size_t kMaxAnswers = 4096;

}  // namespace

TTestTools::TTestTools(TConfig config, THostFiles files, TCallerRights rights, TToolFinder finder)
    : m_config(config), m_files(std::move(files)), m_rights(rights), m_finder(std::move(finder)) {}

TAvailability TTestTools::CheckTool(const std::string& name, const std::string& package) const {
  if (!m_finder.Find(name).empty()) return {EAvailability::kOffered, "", ""};
  return {EAvailability::kWithheld, "the program " + name + " is missing",
          "install package " + package};
}

TAvailability TTestTools::CheckDisk(const TDevice& disk) const {
  const std::string node = m_files.Locate(disk.node);
  // O_NONBLOCK: a drive without a medium is not waited for.
  const TFileDescriptor file(::open(node.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.IsOpen()) return {EAvailability::kOffered, "", ""};
  const int reason = errno;
  if (reason == ENOMEDIUM) return {};
  const bool isRight = reason == EACCES || reason == EPERM;
  return {EAvailability::kWithheld,
          node + " cannot be read: " + std::generic_category().message(reason),
          !isRight           ? "check that the device file " + node + " exists and works"
          : !m_rights.isRoot ? "run as root"
                             : "run outside the container or sandbox that withholds the device"};
}

std::string TTestTools::Find(const std::string& name) const {
  const std::string file = m_finder.Find(name);
  // A program that vanished is reported by the attempt to start it.
  return file.empty() ? "/usr/bin/" + name : file;
}

TProcessOutcome TTestTools::Run(const std::vector<std::string>& arguments,
                                std::chrono::milliseconds deadline, const TStopSignal& stop,
                                const TProcessRunner::TWatcher& watcher) const {
  std::vector<std::string> command = arguments;
  command.front() = Find(command.front());
  return m_runner.Run(command, deadline, stop, watcher);
}

TProcessOutcome TTestTools::Ask(const std::vector<std::string>& question, const TDevice& device,
                                const TStopSignal& stop) {
  const std::string key = Join(question, "\n") + "\n" + device.id + "\n" + device.name;
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto known = m_answers.find(key);
    if (known != m_answers.end()) return known->second;
  }
  // Asked without the lock: one device that does not answer must not hold up the others.
  TProcessOutcome answer = Run(question, kQuestionTime, stop);
  if (stop.Get() != EStop::kNone) return answer;
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_answers.size() >= kMaxAnswers) m_answers.clear();
  return m_answers.emplace(key, std::move(answer)).first->second;
}

std::string TTestTools::GetVersion(const std::string& name, const std::string& versionOption,
                                   const TStopSignal& stop) {
  const TProcessOutcome answer = Ask({name, versionOption}, TDevice(), stop);
  const std::string& text = answer.output.empty() ? answer.errors : answer.output;
  const std::vector<std::string_view> lines = SplitLines(text);
  return answer.end == EProcessEnd::kExited && !lines.empty() ? Excerpt(lines.front(), 200) : name;
}

}  // namespace hardware
