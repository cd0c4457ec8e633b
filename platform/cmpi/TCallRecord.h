// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace NZEPQEL20::cmpi {

/// Whom a call goes to. Texts that whoever makes the call keeps for as long as it lasts.
struct TCallee {
  const char* provider = nullptr;  ///< NULL while a library is being loaded.
  const char* library = nullptr;   ///< Its path; NULL for nobody.
  const char* function = nullptr;
};

/// Says that a call is under way for as long as it lives: to the thread that makes the call, and to
/// whoever looks from another one. Within it there may be others; the outer one holds again when
/// they end. Nothing is said of a callee without a library.
/// Threads: made and destroyed on one.
class TCallRecord {
 public:
  explicit TCallRecord(const TCallee& callee);
  ~TCallRecord();
  TCallRecord(const TCallRecord&) = delete;
  TCallRecord& operator=(const TCallRecord&) = delete;

  /// The innermost call that this thread is in; all NULL outside of calls. Safe in a handler of
  /// signals.
  static TCallee GetOwn() noexcept;

  /// A call of any thread, copied.
  struct TUnderWay {
    std::uint64_t number;  ///< No other call of the process has it.
    std::string provider;
    std::string library;
    std::string function;
  };
  /// Every call that is under way, in the order of their beginning.
  static std::vector<TUnderWay> GetAll();

 private:
  const TCallee m_callee;
  const TCallRecord* m_outer = nullptr;
  std::uint64_t m_number = 0;
};

}  // namespace NZEPQEL20::cmpi
