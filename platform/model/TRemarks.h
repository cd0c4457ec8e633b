// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace NZEPQEL20 {

/// Why tests of one connection were not started, in the words that their objects answered with: one
/// text each, every text once.
/// Threads: safe from several.
class TRemarks {
 public:
  /// Texts beyond so many are dropped.
  static constexpr std::size_t kMaxRemarks = 100;

  void Add(const std::string& text);

  /// Keeps `text` back until it is known whether another way to start the test that is called
  /// `object` works. One text is kept at a time, the last.
  void Hold(const std::string& object, const std::string& text);
  /// No other way has worked: what was kept back for `object` is added.
  void Release(const std::string& object);
  /// Another way has worked, or has given its own reason.
  void Forget(const std::string& object);

  /// In the order of adding.
  std::vector<std::string> Get() const;

 private:
  void AddLocked(const std::string& text);

  mutable std::mutex m_mutex;
  std::vector<std::string> m_texts;
  std::string m_heldFor;
  std::string m_held;
};

}  // namespace NZEPQEL20
