// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/THttpSession.h"

#include <curl/curl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <memory>
#include <optional>
#include <utility>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/Secrets.h"
#include "platform/cimxml/ServerSetup.h"
#include "platform/cimxml/TConnectionPool.h"
#include "platform/cimxml/TExchange.h"
#include "platform/cimxml/TLocalAuthentication.h"
#include "platform/cimxml/TServerUrl.h"
#include "platform/cimxml/TransferFailure.h"

namespace NZEPQEL20::cimxml {
namespace {

using TClock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The largest time that curl takes.
long ToCurlTime(milliseconds time) {
  return static_cast<long>(std::min<milliseconds::rep>(time.count(), INT_MAX));
}

}  // namespace

struct THttpSession::TParts {
  explicit TParts(const TServerOptions& given)
      : options(given),
        passwordWiper(options.password),
        url(given.url),
        pool([this] { return MakeHandle(options, url); }) {
    CheckServerOptions(options, url);
    WarnAboutSecrets(options, url);
    rules.server = url.GetText();
    rules.maxBodyBytes = options.maxReplyBytes;
    if (!options.user.empty()) rules.credentials = "the user or password";
    if (url.IsLocalSocket() && options.user.empty()) {
      localAuthentication.emplace(TLocalAuthentication::GetKnownDirectories(url.GetSocketPath()),
                                  FindUserName(::geteuid()));
    }
  }

  THttpTrailers Exchange(TCurlHandle& handle, const THttpRequest& request, IReplyBody& body,
                         TClock::time_point deadline) const;
  THttpTrailers ExchangeLocally(TCurlHandle& handle, const THttpRequest& request, IReplyBody& body,
                                TClock::time_point deadline) const;
  void Perform(CURL* handle, TExchange& exchange, const THttpRequest& request,
               const std::string& authorization, TClock::time_point deadline) const;

  TServerOptions options;
  const TTextWiper passwordWiper;
  const TServerUrl url;
  TReplyRules rules;
  // None for a server that is not greeted in this way.
  std::optional<TLocalAuthentication> localAuthentication;
  std::atomic<bool> hasServed{false};
  TConnectionPool pool;
};

void THttpSession::TParts::Perform(CURL* handle, TExchange& exchange, const THttpRequest& request,
                                   const std::string& authorization,
                                   TClock::time_point deadline) const {
  const auto left = std::chrono::duration_cast<milliseconds>(deadline - TClock::now());
  if (left <= milliseconds(0)) {
    throw TQELException(TQELStatusCode::kConnection,
                        url.GetText() + ": no time was left for the request");
  }
  const TCurlList headers = MakeHeaders(request, authorization);
  std::array<char, CURL_ERROR_SIZE> reason{};
  SetOption(handle, CURLOPT_HTTPHEADER, headers.get());
  SetOption(handle, CURLOPT_TIMEOUT_MS, ToCurlTime(left));
  SetOption(handle, CURLOPT_ERRORBUFFER, reason.data());
  exchange.Attach(handle);
  const CURLcode code = [&] {
    const TPipeSignalShield shield;
    return curl_easy_perform(handle);
  }();
  // The handle lives on, and these do not.
  curl_easy_setopt(handle, CURLOPT_HTTPHEADER, nullptr);
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, nullptr);
  exchange.RethrowProblem();
  // curl is content with a header that ends with its connection.
  if (code == CURLE_OK && exchange.GetHead().IsComplete()) return;

  TTransferFailure failure;
  failure.code = code == CURLE_OK ? CURLE_PARTIAL_FILE : code;
  failure.reason = Trim(reason[0] != '\0' ? reason.data() : curl_easy_strerror(code));
  failure.connectTimeout = options.connectTimeout;
  failure.timeout = request.timeout;
  failure.hasServed = hasServed;
  curl_easy_getinfo(handle, CURLINFO_OS_ERRNO, &failure.systemError);
  curl_easy_getinfo(handle, CURLINFO_SSL_VERIFYRESULT, &failure.verifyResult);
  ThrowTransferFailure(failure, exchange, url, options);
}

THttpTrailers THttpSession::TParts::ExchangeLocally(TCurlHandle& handle,
                                                    const THttpRequest& request, IReplyBody& body,
                                                    TClock::time_point deadline) const {
  TExchange first(rules, request, body, true);
  try {
    Perform(handle.get(), first, request, localAuthentication->GetGreeting(), deadline);
  } catch (const THttpError&) {
    if (first.GetChallenge().empty() || first.GetHead().IsBodyDelimited()) throw;
    // A challenge without an end: the connection is of no more use, the challenge may be.
    handle = pool.TakeFresh();
  }
  if (first.GetChallenge().empty()) return ReadTrailers(first.GetHead(), rules);

  std::string answer;
  try {
    answer = localAuthentication->Answer(first.GetChallenge());
  } catch (const TQELException& e) {
    throw TQELException(e.GetStatusCode(), url.GetText() + ": " + e.what());
  }
  TReplyRules secondRules = rules;
  secondRules.credentials = "the local user";
  TExchange second(secondRules, request, body, false);
  Perform(handle.get(), second, request, answer, deadline);
  return ReadTrailers(second.GetHead(), secondRules);
}

THttpTrailers THttpSession::TParts::Exchange(TCurlHandle& handle, const THttpRequest& request,
                                             IReplyBody& body, TClock::time_point deadline) const {
  if (localAuthentication) return ExchangeLocally(handle, request, body, deadline);
  TExchange exchange(rules, request, body, false);
  Perform(handle.get(), exchange, request, std::string(), deadline);
  return ReadTrailers(exchange.GetHead(), rules);
}

THttpSession::THttpSession(const TServerOptions& options) {
  InitialiseCurl();
  m_parts = std::make_unique<TParts>(options);
}

THttpSession::~THttpSession() = default;

THttpTrailers THttpSession::Exchange(const THttpRequest& request, IReplyBody& body) {
  const TClock::time_point deadline =
      TClock::now() + std::clamp(request.timeout, milliseconds(0), kMostTime);
  TConnectionPool& pool = m_parts->pool;
  // A handle that is not returned is closed with its connection: whatever failed on it stays there.
  const bool isFresh = request.isMethodCall || request.wantsFreshConnection;
  TCurlHandle handle = isFresh ? pool.TakeFresh() : pool.Take();
  try {
    THttpTrailers trailers = m_parts->Exchange(handle, request, body, deadline);
    m_parts->hasServed = true;
    pool.Return(std::move(handle));
    return trailers;
  } catch (const TConnectionLost&) {
    // A server that went away took the others with it, and not all of them may know that yet.
    pool.DropIdle();
    throw;
  }
}

const std::string& THttpSession::GetName() const {
  return m_parts->url.GetText();
}

}  // namespace NZEPQEL20::cimxml
