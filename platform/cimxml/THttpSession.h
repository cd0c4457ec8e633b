// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "platform/cimxml/TServerOptions.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {

/// One CIM operation message on its way out.
struct THttpRequest {
  std::string method;  ///< Name of the operation or method; encoded by the session.
  std::string object;  ///< Namespace, or object path of a method call; encoded by the session.
  std::string body;    ///< The XML document, UTF-8.
  /// Whether the request shall open a connection: one that was kept may have been closed by the
  /// server already, and the request would be lost on it, seen or not.
  bool wantsFreshConnection = false;
  /// Whether it starts something that must not be started twice. Implies `wantsFreshConnection`.
  bool isMethodCall = false;
  /// For the whole exchange; must be above 0, and counts as 30 days when it is longer.
  std::chrono::milliseconds timeout{0};
};

/// What followed the body of a reply in chunks.
struct THttpTrailers {
  unsigned int cimStatus = 0;  ///< CIMStatusCode; 0 when there was none.
  std::string description;     ///< CIMStatusCodeDescription, decoded.
};

/// Takes the body of a reply, piece by piece, after chunks have been put together.
class IReplyBody {
 public:
  virtual ~IReplyBody() = default;
  /// What it throws ends the exchange and leaves THttpSession::Exchange().
  virtual void Take(const char* data, std::size_t size) = 0;
};

/// The connection broke before the whole reply was there: the only failure after which a request
/// that does no harm may be sent once more.
class TConnectionLost : public TQELException {
 public:
  explicit TConnectionLost(const std::string& what)
      : TQELException(TQELStatusCode::kConnection, what) {}
};

/// The server answered the request with an HTTP error (DSP0200): it did not look at the message.
class THttpError : public TQELException {
 public:
  THttpError(TQELStatusCode status, const std::string& what, long httpStatus)
      : TQELException(status, what), m_httpStatus(httpStatus) {}
  long GetHttpStatus() const { return m_httpStatus; }

 private:
  long m_httpStatus;
};

/// The HTTP side of one CIM server: connections that are kept alive, TLS, credentials, limits.
/// Threads: safe from several; each exchange under way has a connection of its own.
class THttpSession {
 public:
  /// Opens no connection yet.
  /// Errors: TQELException (kInvalidArgument) naming what of `options` is unusable.
  explicit THttpSession(const TServerOptions& options);
  ~THttpSession();
  THttpSession(const THttpSession&) = delete;
  THttpSession& operator=(const THttpSession&) = delete;

  /// Posts `request` and hands the body of a good reply (200, XML) to `body`. Sends nothing a
  /// second time, but for the answer to a local authentication challenge. After a TConnectionLost,
  /// no connection that was kept is used any more.
  /// Errors: TConnectionLost; THttpError; TQELException (kConnection) for a server that cannot be
  /// reached or is too slow, (kFailed) for a reply that is no CIM-XML or too large,
  /// (kAccessDenied) for credentials or certificates that are refused. Each text names the
  /// server and the reason, and not the operation.
  THttpTrailers Exchange(const THttpRequest& request, IReplyBody& body);

  /// The server as messages name it: the URL.
  const std::string& GetName() const;

 private:
  struct TParts;
  std::unique_ptr<TParts> m_parts;
};

}  // namespace NZEPQEL20::cimxml
