// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/cimxml/THttpSession.h"
#include "platform/cimxml/TReply.h"
#include "platform/cimxml/TRequestText.h"

namespace NZEPQEL20::cimxml {

/// The bounds of one operation, over all the requests that it takes.
struct TBudget {
  std::chrono::steady_clock::time_point end;   ///< No request goes on after this.
  std::chrono::milliseconds requestTimeout{};  ///< Of each.
  std::uint64_t bytesLeft = 0;                 ///< Of replies.
};

/// What it would mean to send a request twice.
enum class ERepeat {
  kHarmless,  ///< The same as once: it is sent again after a lost connection.
  kHarmful,   ///< Another change: it is sent once, on a connection that nobody can have closed.
  kLost,      ///< Another answer than the one that was lost: it is sent once.
};

/// A request, and what a message says about it.
struct TQuestion {
  std::string what;       ///< Operation and object, for error texts.
  std::string name;       ///< Of the operation or method, as the reply repeats it.
  std::string object;     ///< For the header: namespace, or path of a method call.
  std::string nameSpace;  ///< That paths of the reply lie in when they name none.
  bool isMethodCall = false;
  ERepeat repeat = ERepeat::kHarmless;
  std::uint64_t id = 0;  ///< Of the message.
  std::string body;
};

/// Asks a CIM server and reads its replies.
/// Threads: safe from several.
class TServerConnection {
 public:
  /// Errors: TQELException for options that are unusable.
  explicit TServerConnection(const TServerOptions& options);

  /// The bounds of an operation that begins now.
  TBudget StartOperation() const;
  TBudget StartMethodCall() const;

  std::uint64_t NextId() { return ++m_lastId; }
  const std::string& GetName() const { return m_session.GetName(); }

  /// What has kept the server from answering so far, one line each and each once.
  std::vector<std::string> GetProblems() const;

  /// The last of these, or refusal of a method call, since the previous call; empty for none.
  std::string TakeLastFailure();

  /// Asks, once more after a lost connection where that does no harm.
  /// Errors: TQELException naming `question.what`, the server and its reason; with the CIM status
  /// when the server refused the operation, a THttpError when it did not look at it.
  TReply Ask(const TQuestion& question, TBudget& budget);

  /// Adds the parameters of an operation.
  using TWrite = std::function<void(TRequestText&)>;

  /// Asks for an operation of the server on `nameSpace`, with the parameters that `write` adds.
  /// Errors: as above, and for parameters that cannot be written.
  TReply AskFor(const std::string& operation, const std::string& nameSpace, const std::string& what,
                const TWrite& write);
  /// The same as part of something larger.
  TReply AskFor(const std::string& operation, const std::string& nameSpace, const std::string& what,
                const TWrite& write, ERepeat repeat, TBudget& budget);

 private:
  TReply AskOnce(const TQuestion& question, TBudget& budget, bool isSecond);
  void Check(const TQuestion& question, const TReply& reply) const;
  [[noreturn]] void Refuse(const TReplyError& error) const;
  void NoteProblem(const TQELException& failure, const TQuestion& question);
  void ReportOddities(const TQuestion& question, const TReply& reply) const;

  const TServerOptions m_options;  ///< Without the credentials.
  THttpSession m_session;
  std::atomic<std::uint64_t> m_lastId{1000};
  mutable std::mutex m_mutex;
  std::vector<std::string> m_problems;
  std::string m_lastFailure;
};

}  // namespace NZEPQEL20::cimxml
