// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <string_view>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/TransferFailure.h"

namespace NZEPQEL20::cimxml {
namespace {

// OpenSSL's numbers for what is wrong with a certificate (X509_V_ERR_...).
constexpr long kNotYetValid = 9;
constexpr long kExpired = 10;
constexpr std::array<long, 5> kUntrusted = {2, 18, 19, 20, 21};

constexpr const char* kOrInsecure = ", or ask for insecure mode";

bool Holds(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

std::string DescribeCertificateProblem(const TTransferFailure& failure,
                                       const TServerOptions& options) {
  const std::string reason = " (" + MakeSafe(failure.reason) + ")";
  // Whether it is trusted is judged later than its name.
  if (Holds(failure.reason, "target host name")) {
    return "the server's certificate is for another name" + reason +
           "; use the name that it was made for" + kOrInsecure;
  }
  if (failure.verifyResult == kExpired) {
    return "the server's certificate has expired" + reason + "; have it renewed" + kOrInsecure;
  }
  if (failure.verifyResult == kNotYetValid) {
    return "the server's certificate is not valid yet" + reason +
           "; compare the clocks of both machines" + kOrInsecure;
  }
  if (std::find(kUntrusted.begin(), kUntrusted.end(), failure.verifyResult) != kUntrusted.end()) {
    return "the server's certificate is not trusted" + reason +
           (options.caFile.empty()
                ? "; give the file of its certificate authority"
                : "; it was not issued by an authority in " + MakeSafe(options.caFile)) +
           kOrInsecure;
  }
  return "the server's certificate is not good" + reason + "; have it mended" + kOrInsecure;
}

// The server has ended the handshake with an alert of its own.
[[noreturn]] void ThrowAlert(const TTransferFailure& failure, const TServerUrl& url,
                             const TServerOptions& options) {
  const std::string reason = " (" + MakeSafe(failure.reason) + ")";
  if (Holds(failure.reason, "certificate required") ||
      (Holds(failure.reason, "handshake failure") && options.clientCertificate.empty())) {
    ThrowFor(TQELStatusCode::kAccessDenied, url,
             options.clientCertificate.empty()
                 ? "the server may want a client certificate, and none is given" + reason
                 : "the server did not take the client certificate" + reason);
  }
  const bool isCertificate =
      Holds(failure.reason, "certificate") || Holds(failure.reason, "unknown ca");
  if (isCertificate) {
    ThrowFor(TQELStatusCode::kAccessDenied, url,
             "the server refuses our client certificate" + reason +
                 "; give one from an authority that it trusts");
  }
  ThrowFor(TQELStatusCode::kConnection, url, "the server broke the TLS handshake off" + reason);
}

bool IsOldVersion(const std::string& reason) {
  return Holds(reason, "protocol version") || Holds(reason, "unsupported protocol") ||
         Holds(reason, "version too low");
}

bool IsPlainText(const std::string& reason) {
  return Holds(reason, "wrong version number") || Holds(reason, "packet length too long") ||
         Holds(reason, "http request") || Holds(reason, "record layer failure");
}

[[noreturn]] void ThrowHandshakeProblem(const TTransferFailure& failure, const TServerUrl& url,
                                        const TServerOptions& options) {
  const std::string reason = " (" + MakeSafe(failure.reason) + ")";
  if (IsOldVersion(failure.reason)) {
    ThrowFor(TQELStatusCode::kConnection, url,
             "the server speaks no TLS of version 1.2 or newer" + reason +
                 "; older versions are not safe and not offered");
  }
  if (IsPlainText(failure.reason)) {
    ThrowFor(TQELStatusCode::kConnection, url,
             "the server does not speak TLS on this port" + reason +
                 "; use http, or the port of its https side");
  }
  if (Holds(failure.reason, "alert")) ThrowAlert(failure, url, options);
  ThrowFor(TQELStatusCode::kConnection, url, "the TLS handshake did not succeed" + reason);
}

}  // namespace

void ThrowTlsFailure(const TTransferFailure& failure, const TServerUrl& url,
                     const TServerOptions& options) {
  switch (failure.code) {
    case CURLE_PEER_FAILED_VERIFICATION:
      ThrowFor(TQELStatusCode::kAccessDenied, url, DescribeCertificateProblem(failure, options));
    case CURLE_SSL_CACERT_BADFILE:
      ThrowFor(TQELStatusCode::kInvalidArgument, url,
               "no certificate can be read from the CA file " + MakeSafe(options.caFile) + " (" +
                   MakeSafe(failure.reason) + ")");
    case CURLE_SSL_CERTPROBLEM:
      ThrowFor(TQELStatusCode::kInvalidArgument, url,
               "the client certificate cannot be used (" + MakeSafe(failure.reason) +
                   "); it must be PEM, with a key that fits and is not encrypted");
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
      ThrowHandshakeProblem(failure, url, options);
    default:
      break;
  }
}

}  // namespace NZEPQEL20::cimxml
