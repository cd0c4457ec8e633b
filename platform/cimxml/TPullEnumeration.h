// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cimxml/TServerConnection.h"

namespace NZEPQEL20::cimxml {

/// An enumeration of instances by the pull operations (DSP0200): the server keeps its state, and is
/// told when it is left before its end.
/// Threads: one.
class TPullEnumeration {
 public:
  /// How Open() may end: with instances, because there are no pull operations, or because the
  /// server cannot keep one more enumeration just now.
  enum class EStart { kOpened, kNoPull, kNotNow };

  /// `connection` and `budget` must outlive the enumeration.
  TPullEnumeration(TServerConnection& connection, TBudget& budget, std::string nameSpace,
                   std::string className);
  ~TPullEnumeration();
  TPullEnumeration(const TPullEnumeration&) = delete;
  TPullEnumeration& operator=(const TPullEnumeration&) = delete;

  /// Asks for the first instances.
  /// Errors: as TServerConnection::AskFor(), when they would be the same without pull operations.
  EStart Open(TReply& reply);

  /// Whether more may follow.
  bool IsOpen() const { return !m_context.empty(); }

  /// The next instances, perhaps none. Never asked a second time: the server may have moved on.
  TReply Pull();

 private:
  void OpenWith(const char* objectCount, TReply& reply);
  void Close();
  TReply Ask(const char* operation, ERepeat repeat, const TServerConnection::TWrite& write);
  void Follow(const TReply& reply);
  [[noreturn]] void Refuse(const char* reason) const;

  TServerConnection& m_connection;
  const std::string m_nameSpace;
  const std::string m_className;
  const std::string m_what;
  TBudget& m_budget;
  const char* m_objectCount;
  std::string m_context;
  unsigned int m_emptyReplies = 0;
};

}  // namespace NZEPQEL20::cimxml
