// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <string>

#include "platform/cimxml/TExchange.h"
#include "platform/cimxml/TServerOptions.h"
#include "platform/cimxml/TServerUrl.h"

namespace NZEPQEL20::cimxml {

/// How a transfer ended that did not succeed, in curl's terms.
struct TTransferFailure {
  CURLcode code = CURLE_OK;
  std::string reason;      ///< curl's own words, which hold those of the system and of OpenSSL.
  long verifyResult = 0;   ///< OpenSSL's judgement of the server's certificate; 0: it is fine.
  long systemError = 0;    ///< The errno of the last system call that failed; 0: not known.
  bool hasServed = false;  ///< Whether the server has given this session a good reply before.
  std::chrono::milliseconds connectTimeout{0};  ///< As it was set for this transfer.
  std::chrono::milliseconds timeout{0};         ///< As it was set for this transfer.
};

/// Throws a TQELException whose text starts with the server's address.
[[noreturn]] void ThrowFor(TQELStatusCode::ECode code, const TServerUrl& url,
                           const std::string& reason);

/// Throws what THttpSession::Exchange() promises for `failure`.
[[noreturn]] void ThrowTransferFailure(const TTransferFailure& failure, const TExchange& exchange,
                                       const TServerUrl& url, const TServerOptions& options);

/// Throws for a failure of TLS: a certificate, a version, a port that speaks something else.
/// Returns for any other failure.
void ThrowTlsFailure(const TTransferFailure& failure, const TServerUrl& url,
                     const TServerOptions& options);

}  // namespace NZEPQEL20::cimxml
