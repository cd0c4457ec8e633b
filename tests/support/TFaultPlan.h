// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

namespace scripted {

/// The ways in which a platform call can go wrong.
enum class EFault { kNone, kQELException, kStdException, kInt, kNull };

std::ostream& operator<<(std::ostream& out, EFault fault);

/// What a struck call throws: TQELException or std::runtime_error with this text, or this number.
extern const char kFaultText[];
extern const int kFaultNumber;

/// Decides which platform calls fail, and writes every one into the transcript.
///
/// The line of a call: "find NS CLASS {KEYS}", "fetch NS PATH {KEYS}", "classname CLASS",
/// "namespace CLASS {KEYS}", "enumerate CLASS deep=D {KEYS}", "path PATH", "property PATH NAME",
/// "value PATH NAME", "text PATH NAME", "set PATH NAME=TEXT", "invoke PATH METHOD {PARAMETERS}",
/// "names PATH", "nstext PATH", "upcall NS", "providers NS {KEYS}", "classes PROVIDER",
/// "providername PROVIDER", "copy PATH NS", "clear", "size FILE", "bios", "root", "oem".
/// Threads: safe from several; only calls of the thread that armed a countdown are counted.
class TFaultPlan {
 public:
  static TFaultPlan& Get();

  void Clear();

  /// Every call whose line begins with `prefix` goes wrong, `times` times at most (-1: always).
  void When(const std::string& prefix, EFault fault, int times = -1);

  /// The `n`-th call from now, counted from 1 on this thread, goes wrong; 0 only counts.
  void StrikeNth(unsigned int n, EFault fault);
  /// Calls counted since StrikeNth().
  unsigned int GetCallCount() const;
  bool HasStruck() const;

  /// A platform call: written down, then struck if it is its turn. True asks the caller to yield
  /// nothing; the other faults are thrown from here.
  bool Enter(const std::string& kind, const std::string& text);

 private:
  struct TRule {
    std::string prefix;
    EFault fault;
    int times;
  };

  EFault Choose(const std::string& line);

  mutable std::mutex m_mutex;
  std::vector<TRule> m_rules;
  std::thread::id m_countedThread;
  unsigned int m_strikeAt = 0;
  unsigned int m_calls = 0;
  bool m_hasStruck = false;
  EFault m_strikeFault = EFault::kNone;
};

}  // namespace scripted
