// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TransferFailure.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "platform/cimxml/HttpText.h"

namespace NZEPQEL20::cimxml {
namespace {

std::string DescribeProgress(const TExchange& exchange) {
  if (exchange.GetBodySize() > 0) {
    return DescribeBytes(exchange.GetBodySize()) + " of its body had come";
  }
  if (exchange.GetHead().IsComplete()) return "its header had come, and nothing of its body";
  if (exchange.GetHead().GetSize() > 0) return "a part of its header had come";
  return "nothing of it had come";
}

[[noreturn]] void ThrowTimeout(const TTransferFailure& failure, const TExchange& exchange,
                               const TServerUrl& url) {
  if (!exchange.IsConnected()) {
    ThrowFor(TQELStatusCode::kConnection, url,
             "no connection within " +
                 DescribeTime(std::min(failure.connectTimeout, failure.timeout)) +
                 "; is the host right and reachable?");
  }
  ThrowFor(TQELStatusCode::kConnection, url,
           "no complete answer within " + DescribeTime(failure.timeout) + " (" +
               DescribeProgress(exchange) + ")");
}

// What the system says of a UNIX socket: curl would speak of a port of localhost.
std::string DescribeSocketProblem(const std::string& path, long systemError) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    const int number = errno;
    return "the socket " + MakeSafe(path) + ": " + std::generic_category().message(number) +
           (number == ENOENT ? "; is the CIM server running?" : "");
  }
  if (!S_ISSOCK(status.st_mode)) return MakeSafe(path) + " is not a socket";
  switch (systemError) {
    case EACCES:
    case EPERM:
      return "no permission to use the socket " + MakeSafe(path);
    case ECONNREFUSED:
      return "nobody listens on the socket " + MakeSafe(path) + "; is the CIM server running?";
    // curl keeps quiet about the error of a server that has too many connections waiting.
    case 0:
    case EAGAIN:
      return "the socket " + MakeSafe(path) +
             " takes no more connections now; is the CIM server busy or stuck?";
    default:
      return "the socket " + MakeSafe(path) + ": " +
             std::generic_category().message(static_cast<int>(systemError));
  }
}

// TLS may tell only after the handshake that it wants no more of this client.
bool IsTlsAlert(const std::string& reason) {
  return reason.find("alert") != std::string::npos && reason.find("SSL") != std::string::npos;
}

bool StartsWithHttp(const std::string& url) {
  return EqualsNoCase(std::string_view(url).substr(0, 5), "http:");
}

[[noreturn]] void ThrowLost(const TTransferFailure& failure, const TExchange& exchange,
                            const TServerUrl& url) {
  std::string text = url.GetText() +
                     ": the connection was lost before the whole answer had come (" +
                     DescribeProgress(exchange) + ")";
  if (failure.code == CURLE_RECV_ERROR || failure.code == CURLE_SEND_ERROR) {
    text += ": " + MakeSafe(failure.reason);
  } else if (failure.code == CURLE_GOT_NOTHING && !failure.hasServed &&
             StartsWithHttp(url.GetText())) {
    text += "; when it never answers, does it want https?";
  }
  throw TConnectionLost(text);
}

[[noreturn]] void ThrowNotHttp(const TTransferFailure& failure, const TServerUrl& url) {
  ThrowFor(
      TQELStatusCode::kFailed, url,
      "the answer is not proper HTTP (" + MakeSafe(failure.reason) + ")" +
          (failure.hasServed ? "" : "; is this the port of a CIM server, and does it want https?"));
}

// curl reports broken framing as it reports a broken connection.
bool IsFramingProblem(const TTransferFailure& failure) {
  return failure.reason.find("chunk") != std::string::npos ||
         failure.reason.find("response header") != std::string::npos;
}

// curl says "out of memory" to a line of a header or trailer that is longer than it cares to keep.
bool IsLongTrailer(const TTransferFailure& failure) {
  return failure.reason.find("Out of memory in chunk") != std::string::npos;
}

[[noreturn]] void ThrowLongLine(const TServerUrl& url) {
  ThrowFor(TQELStatusCode::kFailed, url, "the answer has a header field of absurd length");
}

[[noreturn]] void ThrowUnreachable(const TTransferFailure& failure, const TServerUrl& url) {
  if (url.IsLocalSocket()) {
    ThrowFor(TQELStatusCode::kConnection, url,
             DescribeSocketProblem(url.GetSocketPath(), failure.systemError));
  }
  const bool isName = failure.code == CURLE_COULDNT_RESOLVE_HOST;
  ThrowFor(TQELStatusCode::kConnection, url,
           "no connection: " + MakeSafe(failure.reason) +
               (isName ? "; is the host's name right?"
                       : "; is the CIM server running, and are host and port right?"));
}

}  // namespace

void ThrowFor(TQELStatusCode::ECode code, const TServerUrl& url, const std::string& reason) {
  throw TQELException(code, url.GetText() + ": " + reason);
}

void ThrowTransferFailure(const TTransferFailure& failure, const TExchange& exchange,
                          const TServerUrl& url, const TServerOptions& options) {
  if (exchange.WasSecondSendRefused()) ThrowLost(failure, exchange, url);
  const bool isLost = failure.code == CURLE_RECV_ERROR || failure.code == CURLE_SEND_ERROR;
  if (!isLost || IsTlsAlert(failure.reason)) ThrowTlsFailure(failure, url, options);
  switch (failure.code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
      ThrowUnreachable(failure, url);
    case CURLE_OPERATION_TIMEDOUT:
      ThrowTimeout(failure, exchange, url);
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
      if (IsLongTrailer(failure)) ThrowLongLine(url);
      if (IsFramingProblem(failure)) ThrowNotHttp(failure, url);
      ThrowLost(failure, exchange, url);
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_FAIL_REWIND:
      ThrowLost(failure, exchange, url);
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
      ThrowNotHttp(failure, url);
    case CURLE_OUT_OF_MEMORY:
      if (exchange.IsConnected()) ThrowLongLine(url);
      ThrowFor(TQELStatusCode::kNoMemory, url, "no memory for a request");
    default:
      ThrowFor(TQELStatusCode::kFailed, url, MakeSafe(failure.reason));
  }
}

}  // namespace NZEPQEL20::cimxml
