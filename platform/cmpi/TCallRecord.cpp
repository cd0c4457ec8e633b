// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TCallRecord.h"

#include <map>
#include <mutex>

namespace NZEPQEL20::cmpi {

namespace {

/// Of this thread. Memory for it is there from the thread's start on, so that a handler of signals
/// may read it.
__attribute__((tls_model("initial-exec"))) thread_local const TCallRecord* ownRecord = nullptr;

/// The calls of all threads, by number.
struct TCallsUnderWay {
  std::mutex mutex;
  std::uint64_t last = 0;
  std::map<std::uint64_t, const TCallee*> calls;
};

TCallsUnderWay& CallsUnderWay() {
  // Never destroyed: provider threads may outlive the end of main().
  static auto* const kCalls = new TCallsUnderWay;
  return *kCalls;
}

std::string ToText(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

}  // namespace

TCallRecord::TCallRecord(const TCallee& callee) : m_callee(callee), m_outer(ownRecord) {
  if (m_callee.library == nullptr) return;
  TCallsUnderWay& all = CallsUnderWay();
  {
    const std::lock_guard<std::mutex> lock(all.mutex);
    m_number = ++all.last;
    all.calls[m_number] = &m_callee;
  }
  ownRecord = this;
}

TCallRecord::~TCallRecord() {
  if (m_callee.library == nullptr) return;
  ownRecord = m_outer;
  TCallsUnderWay& all = CallsUnderWay();
  const std::lock_guard<std::mutex> lock(all.mutex);
  all.calls.erase(m_number);
}

TCallee TCallRecord::GetOwn() noexcept {
  const TCallRecord* const record = ownRecord;
  return record == nullptr ? TCallee() : record->m_callee;
}

std::vector<TCallRecord::TUnderWay> TCallRecord::GetAll() {
  TCallsUnderWay& all = CallsUnderWay();
  const std::lock_guard<std::mutex> lock(all.mutex);
  std::vector<TUnderWay> found;
  for (const auto& [number, callee] : all.calls) {
    found.push_back(
        {number, ToText(callee->provider), ToText(callee->library), ToText(callee->function)});
  }
  return found;
}

}  // namespace NZEPQEL20::cmpi
