// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TScriptedSystem.h"

#include <algorithm>

#include "tests/support/TTranscript.h"

namespace scripted {

TScriptedSystem& TScriptedSystem::Get() {
  static TScriptedSystem instance;
  return instance;
}

void TScriptedSystem::Start() {
  *this = TScriptedSystem();
  m_isActive = true;
}

void TScriptedSystem::Stop() {
  *this = TScriptedSystem();
}

void TScriptedSystem::ScriptClock(std::vector<std::time_t> seconds,
                                  std::map<std::size_t, THook> hooks) {
  m_seconds = std::move(seconds);
  m_hooks = std::move(hooks);
  m_ticks = 0;
  m_clockThread = std::this_thread::get_id();
}

std::string TScriptedSystem::Shorten(const std::string& path) const {
  const bool isBelow = !m_root.empty() && path.compare(0, m_root.size(), m_root) == 0;
  return isBelow ? path.substr(m_root.size()) : path;
}

unsigned int TScriptedSystem::Sleep(unsigned int seconds) {
  if (!m_isActive) {
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    return 0;
  }
  if (m_sleepBudget <= 0) {
    TTranscript::Get().Add("budget", "spent");
    throw TSleepBudgetSpent();
  }
  --m_sleepBudget;
  TTranscript::Get().Add("sleep", std::to_string(seconds));
  return 0;
}

std::time_t TScriptedSystem::GetTime() {
  if (!m_isActive || m_seconds.empty() || m_clockThread != std::this_thread::get_id()) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec;
  }
  const std::size_t tick = m_ticks++;
  const auto hook = m_hooks.find(tick);
  if (hook != m_hooks.end()) {
    hook->second();
  }
  return m_seconds[std::min(tick, m_seconds.size() - 1)];
}

}  // namespace scripted
