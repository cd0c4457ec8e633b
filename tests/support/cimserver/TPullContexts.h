// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace cimserver {

/// The enumerations that clients have opened and not pulled empty. Each answer names its
/// enumeration anew, and the name before is worth nothing any more.
/// Threads: safe from several.
class TPullContexts {
 public:
  /// The objects of one answer.
  struct TBatch {
    std::string objects;
    bool isEnd = false;
    std::string context;  ///< Empty at the end.
  };

  /// `objects` are written out one by one; `isPaths` when they are paths.
  TBatch Open(bool isPaths, std::vector<std::string> objects, std::size_t count);
  /// Errors: TQELException (CIM status 21) for a context that is not known or of another kind.
  TBatch Pull(const std::string& context, bool isPaths, std::size_t count);
  /// Errors: the same.
  void Close(const std::string& context);

  /// How many are open.
  std::size_t GetCount() const;

 private:
  struct TEnumeration {
    bool isPaths;
    std::vector<std::string> objects;
    std::size_t next = 0;
  };
  TEnumeration Take(const std::string& context);
  TBatch Continue(TEnumeration enumeration, std::size_t count);

  mutable std::mutex m_mutex;
  std::map<std::string, TEnumeration> m_open;
  std::uint64_t m_lastName = 500'000;
};

}  // namespace cimserver
