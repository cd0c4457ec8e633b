// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>

#include "platform/cimxml/ReplyCheck.h"
#include "platform/cimxml/THttpSession.h"
#include "platform/cimxml/TReplyHead.h"

namespace NZEPQEL20::cimxml {

/// One request on its way out and its reply on the way in, as curl's callbacks see them.
///
/// What a callback throws is kept, ends the transfer, and leaves RethrowProblem().
class TExchange {
 public:
  /// All arguments must outlive it. `takesChallenge`: a reply that asks for local authentication
  /// is no failure.
  TExchange(const TReplyRules& rules, const THttpRequest& request, IReplyBody& body,
            bool takesChallenge);

  /// Makes `handle` send this request and hand the reply in here.
  /// Errors: TQELException (kNoMemory).
  void Attach(CURL* handle);

  /// Throws what ended the exchange from this side; returns when nothing did.
  void RethrowProblem() const;

  /// The quoted text of a challenge for local authentication; empty when none came.
  const std::string& GetChallenge() const { return m_challenge; }

  /// Whether there is a connection, TLS included, and the request may be on its way.
  bool IsConnected() const { return m_isConnected; }

  /// Whether curl wanted to send the request for a second time, which was refused.
  bool WasSecondSendRefused() const { return m_wasSecondSendRefused; }

  const TReplyHead& GetHead() const { return m_head; }

  /// Bytes of the body so far.
  std::uint64_t GetBodySize() const { return m_bodySize; }

 private:
  static std::size_t OnRead(char* buffer, std::size_t size, std::size_t count, void* self);
  static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self);
  static int OnConnected(void* self, char* toAddress, char* fromAddress, int toPort, int fromPort);

  std::size_t Read(char* buffer, std::size_t size);
  void TakeHeader(const char* data, std::size_t size);
  void TakeHeadEnd();
  void TakeBody(const char* data, std::size_t size);

  const TReplyRules& m_rules;
  const THttpRequest& m_request;
  IReplyBody& m_body;
  TReplyHead m_head;
  std::exception_ptr m_problem;
  std::string m_challenge;
  std::size_t m_sent = 0;
  std::uint64_t m_bodySize = 0;
  bool m_takesChallenge;
  bool m_isConnected = false;
  bool m_wasSecondSendRefused = false;
};

/// Sets one option of a curl handle.
/// Errors: TQELException, kNoMemory or kFailed with curl's reason.
template <typename TValue>
void SetOption(CURL* handle, CURLoption option, TValue value) {
  const CURLcode code = curl_easy_setopt(handle, option, value);
  if (code == CURLE_OK) return;
  const bool isMemory = code == CURLE_OUT_OF_MEMORY;
  throw TQELException(
      isMemory ? TQELStatusCode::kNoMemory : TQELStatusCode::kFailed,
      std::string("the HTTP library refuses an option: ") + curl_easy_strerror(code));
}

}  // namespace NZEPQEL20::cimxml
