// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TFaultPlan.h"

#include <stdexcept>

#include "platform/contract/TQELException.h"
#include "tests/support/TTranscript.h"

namespace scripted {

const char kFaultText[] = "scripted fault";
const int kFaultNumber = 4711;

std::ostream& operator<<(std::ostream& out, EFault fault) {
  switch (fault) {
    case EFault::kNone:
      return out << "none";
    case EFault::kQELException:
      return out << "TQELException";
    case EFault::kStdException:
      return out << "std::runtime_error";
    case EFault::kInt:
      return out << "int";
    case EFault::kNull:
      return out << "null";
  }
  return out;
}

TFaultPlan& TFaultPlan::Get() {
  static TFaultPlan plan;
  return plan;
}

void TFaultPlan::Clear() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_rules.clear();
  m_countedThread = std::thread::id();
  m_strikeAt = 0;
  m_calls = 0;
  m_hasStruck = false;
  m_strikeFault = EFault::kNone;
}

void TFaultPlan::When(const std::string& prefix, EFault fault, int times) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_rules.push_back({prefix, fault, times});
}

void TFaultPlan::StrikeNth(unsigned int n, EFault fault) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_countedThread = std::this_thread::get_id();
  m_strikeAt = n;
  m_calls = 0;
  m_hasStruck = false;
  m_strikeFault = fault;
}

unsigned int TFaultPlan::GetCallCount() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_calls;
}

bool TFaultPlan::HasStruck() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_hasStruck;
}

EFault TFaultPlan::Choose(const std::string& line) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_countedThread == std::this_thread::get_id() && ++m_calls == m_strikeAt) {
    m_hasStruck = true;
    return m_strikeFault;
  }
  for (TRule& rule : m_rules) {
    if (rule.times != 0 && line.compare(0, rule.prefix.size(), rule.prefix) == 0) {
      rule.times -= rule.times > 0 ? 1 : 0;
      return rule.fault;
    }
  }
  return EFault::kNone;
}

bool TFaultPlan::Enter(const std::string& kind, const std::string& text) {
  TTranscript::Get().Add(kind, text);
  switch (Choose(text.empty() ? kind : kind + " " + text)) {
    case EFault::kQELException:
      throw NZEPQEL20::TQELException(NZEPQEL20::TQELStatusCode::kFailed, kFaultText);
    case EFault::kStdException:
      throw std::runtime_error(kFaultText);
    case EFault::kInt:
      throw kFaultNumber;
    case EFault::kNull:
      return true;
    case EFault::kNone:
      break;
  }
  return false;
}

}  // namespace scripted
