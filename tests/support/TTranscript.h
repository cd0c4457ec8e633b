// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace scripted {

/// Everything that happened around the runner, in order, one line each: "kind text".
///
/// Kinds: "out" (bytes of standard output, neighbours joined), "flush", "log0".."log3", "sleep",
/// "system", and the kinds of platform calls (TFaultPlan).
/// Threads: safe from several.
class TTranscript {
 public:
  using TLines = std::vector<std::string>;

  /// The one transcript of the process.
  static TTranscript& Get();

  void Clear();
  void Add(const std::string& kind, const std::string& text);
  /// Bytes of standard output; control characters are shown escaped ("\n", "\b").
  void AddOutput(const std::string& bytes);

  TLines All() const;
  /// The lines of the given kinds; output that then stands side by side is joined.
  TLines Only(const std::set<std::string>& kinds) const;
  /// The log lines without their kind.
  TLines Logs() const;
  /// All output, escaped, without flushes.
  std::string Output() const;
  /// How many lines begin with `prefix`.
  std::size_t Count(const std::string& prefix) const;

 private:
  mutable std::mutex m_mutex;
  TLines m_lines;
};

/// `bytes` with control characters, quotes excepted, as escapes.
std::string Escape(const std::string& bytes);

}  // namespace scripted
