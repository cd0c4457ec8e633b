// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/cimxml/http/IServerStream.h"

namespace diagstest {

/// What a scripted server does in answer to one request, step by step.
class TPlay {
 public:
  enum class EStep { kSend, kTrickle, kTake, kWait, kClose, kReset };

  struct TStep {
    EStep kind;
    std::string bytes;
    std::size_t count = 0;
    std::chrono::milliseconds pause{0};
  };

  /// Acts when a connection opens, before any request is read.
  static TPlay AtOnce();

  TPlay& Send(const std::string& bytes);
  /// Sends `bytes` `count` times over, until the other side has gone.
  TPlay& Repeat(const std::string& bytes, std::size_t count);
  /// Sends `bytes` one at a time with a pause after each.
  TPlay& Trickle(const std::string& bytes, std::chrono::milliseconds pause);
  /// Reads that much of the next request, which then counts as not seen.
  TPlay& Take(std::size_t size);
  /// Does nothing for `time`, or until the server ends.
  TPlay& Wait(std::chrono::milliseconds time);
  /// Does nothing until the server ends, or the other side goes.
  TPlay& Hang();
  /// Ends the connection, as TLS wants it where there is TLS.
  TPlay& Close();
  /// Breaks the connection.
  TPlay& Reset();

  bool IsAtOnce() const { return m_isAtOnce; }
  const std::vector<TStep>& GetSteps() const { return m_steps; }

 private:
  std::vector<TStep> m_steps;
  bool m_isAtOnce = false;
};

/// A request as it came.
struct TSeenRequest {
  int connection = 0;  ///< Counted from 1.
  std::string head;    ///< With the empty line at its end.
  std::string body;

  /// Whether `line` is one line of the head, to the byte.
  bool HasLine(const std::string& line) const;
};

/// A server that does nothing but what its plays say: for the n-th request the n-th play, and a
/// good answer when there is none left. Ends, with all its connections, when it is destroyed.
/// Threads: safe from several.
class TScriptedServer {
 public:
  /// Listens on a free port of 127.0.0.1.
  TScriptedServer();
  /// The same with TLS.
  explicit TScriptedServer(const TTlsSettings& tls);
  /// Listens on a UNIX socket, which must not exist yet.
  explicit TScriptedServer(const std::string& socketPath);
  ~TScriptedServer();
  TScriptedServer(const TScriptedServer&) = delete;
  TScriptedServer& operator=(const TScriptedServer&) = delete;

  /// A CIM-XML reply with a length, on a connection that stays open.
  static std::string GetGoodReply();
  /// The body of that reply.
  static std::string GetGoodBody();

  void Queue(const TPlay& play);

  int GetPort() const { return m_port; }
  std::vector<TSeenRequest> GetRequests() const;
  int CountConnections() const;
  /// Bytes that were sent by all plays together.
  std::size_t CountSentBytes() const;

 private:
  // A connection, and what was read of it and not used yet.
  struct TConversation {
    IServerStream& stream;
    std::string input;
  };

  void Start();
  void AcceptAll();
  void Serve(int socket, int cord, int connection);
  void ServeUntilEnd(int socket, int connection);
  void Converse(TConversation& conversation, int connection);
  bool ReadRequest(TConversation& conversation, TSeenRequest& request) const;
  bool TakePlayAtOnce(TPlay& play);
  TPlay TakePlay();
  bool Act(TConversation& conversation, const TPlay& play);
  bool ActStep(TConversation& conversation, const TPlay::TStep& step);
  bool SendCounted(IServerStream& stream, const std::string& bytes);
  bool TakeBytes(TConversation& conversation, std::size_t size) const;
  bool WaitFor(const IServerStream& stream, std::chrono::milliseconds time) const;

  std::unique_ptr<TTlsSettings> m_tls;
  std::string m_socketPath;
  int m_port = 0;
  int m_listener = -1;
  int m_stopPipe[2] = {-1, -1};
  mutable std::mutex m_mutex;
  std::deque<TPlay> m_plays;
  std::vector<TSeenRequest> m_requests;
  std::vector<std::thread> m_threads;
  std::set<int> m_cords;
  int m_connections = 0;
  std::size_t m_sentBytes = 0;
  std::thread m_acceptor;
};

}  // namespace diagstest
