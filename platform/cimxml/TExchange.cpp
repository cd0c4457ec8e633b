// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TExchange.h"

#include <algorithm>
#include <string_view>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/TLocalAuthentication.h"

namespace NZEPQEL20::cimxml {
namespace {

// Room for a long PGErrorDetail, and far from hurting anyone.
constexpr std::size_t kMaxHeadBytes = std::size_t{64} * 1024;

}  // namespace

TExchange::TExchange(const TReplyRules& rules, const THttpRequest& request, IReplyBody& body,
                     bool takesChallenge)
    : m_rules(rules), m_request(request), m_body(body), m_takesChallenge(takesChallenge) {}

void TExchange::Attach(CURL* handle) {
  SetOption(handle, CURLOPT_READFUNCTION, &TExchange::OnRead);
  SetOption(handle, CURLOPT_READDATA, static_cast<void*>(this));
  SetOption(handle, CURLOPT_HEADERFUNCTION, &TExchange::OnHeader);
  SetOption(handle, CURLOPT_HEADERDATA, static_cast<void*>(this));
  SetOption(handle, CURLOPT_WRITEFUNCTION, &TExchange::OnBody);
  SetOption(handle, CURLOPT_WRITEDATA, static_cast<void*>(this));
  SetOption(handle, CURLOPT_PREREQFUNCTION, &TExchange::OnConnected);
  SetOption(handle, CURLOPT_PREREQDATA, static_cast<void*>(this));
  SetOption(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_request.body.size()));
}

void TExchange::RethrowProblem() const {
  if (m_problem) std::rethrow_exception(m_problem);
}

std::size_t TExchange::OnRead(char* buffer, std::size_t size, std::size_t count, void* self) {
  return static_cast<TExchange*>(self)->Read(buffer, size * count);
}

std::size_t TExchange::Read(char* buffer, std::size_t size) {
  const std::size_t now = std::min(size, m_request.body.size() - m_sent);
  std::copy_n(m_request.body.data() + m_sent, now, buffer);
  m_sent += now;
  return now;
}

// curl takes any other number than that of the bytes as the wish to stop.
std::size_t TExchange::OnHeader(char* data, std::size_t size, std::size_t count, void* self) {
  auto* const exchange = static_cast<TExchange*>(self);
  try {
    exchange->TakeHeader(data, size * count);
    return size * count;
  } catch (...) {
    exchange->m_problem = std::current_exception();
    return 0;
  }
}

std::size_t TExchange::OnBody(char* data, std::size_t size, std::size_t count, void* self) {
  auto* const exchange = static_cast<TExchange*>(self);
  try {
    exchange->TakeBody(data, size * count);
    return size * count;
  } catch (...) {
    exchange->m_problem = std::current_exception();
    return 0;
  }
}

// A second call means that curl found a connection dead and took another one. When it had asked
// for a part of the body by then, the rest of it would go out as the whole.
int TExchange::OnConnected(void* self, char* /*toAddress*/, char* /*fromAddress*/, int /*toPort*/,
                           int /*fromPort*/) {
  auto* const exchange = static_cast<TExchange*>(self);
  exchange->m_isConnected = true;
  exchange->m_wasSecondSendRefused = exchange->m_sent > 0;
  return exchange->m_wasSecondSendRefused ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

void TExchange::TakeHeader(const char* data, std::size_t size) {
  const bool wasComplete = m_head.IsComplete();
  m_head.TakeLine(std::string_view(data, size));
  if (m_head.GetSize() > kMaxHeadBytes) {
    throw TQELException(TQELStatusCode::kFailed, m_rules.server + ": the answer has more than " +
                                                     DescribeBytes(kMaxHeadBytes) +
                                                     " of header fields");
  }
  if (!wasComplete && m_head.IsComplete()) TakeHeadEnd();
}

void TExchange::TakeHeadEnd() {
  if (m_takesChallenge && m_head.GetStatus() == 401) {
    m_challenge = FindLocalChallenge(m_head.GetFields().FindAll("WWW-Authenticate"));
    // Servers remember the challenge with the connection, so it should live on; but not at the
    // price of a wait for an end that nothing announces.
    if (!m_challenge.empty() && m_head.IsBodyDelimited()) return;
  }
  CheckReplyHead(m_head, m_rules);
}

void TExchange::TakeBody(const char* data, std::size_t size) {
  m_bodySize += size;
  if (!m_challenge.empty()) {
    if (m_bodySize > kMaxHeadBytes) CheckReplyHead(m_head, m_rules);
    return;
  }
  if (m_bodySize > m_rules.maxBodyBytes) {
    throw TQELException(TQELStatusCode::kFailed, m_rules.server + ": " + DescribeTooLarge(m_rules));
  }
  m_body.Take(data, size);
}

}  // namespace NZEPQEL20::cimxml
