// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <memory>
#include <string>

#include "platform/cimxml/TConnectionPool.h"
#include "platform/cimxml/THttpSession.h"
#include "platform/cimxml/TServerOptions.h"
#include "platform/cimxml/TServerUrl.h"

namespace NZEPQEL20::cimxml {

struct TCurlListCleanup {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using TCurlList = std::unique_ptr<curl_slist, TCurlListCleanup>;

/// Readies curl for this process, once.
/// Errors: TQELException (kFailed) with curl's reason.
/// Threads: safe from several.
void InitialiseCurl();

/// Longer than anything takes, and short enough to be added to any time.
constexpr std::chrono::milliseconds kMostTime = std::chrono::hours(30 * 24);

/// Errors: TQELException (kInvalidArgument) naming the option or file that cannot be used.
void CheckServerOptions(const TServerOptions& options, const TServerUrl& url);

/// Writes a warning to the core logger for a client key that others may use, and for a password
/// that others on the network may read.
void WarnAboutSecrets(const TServerOptions& options, const TServerUrl& url);

/// A handle with everything set that holds for all requests to one server.
/// Errors: TQELException, kNoMemory or kFailed with curl's reason.
TCurlHandle MakeHandle(const TServerOptions& options, const TServerUrl& url);

/// The header fields of one request, without those that curl adds. `authorization` is the value
/// of the field for local authentication; empty: none is sent.
/// Errors: TQELException (kNoMemory).
TCurlList MakeHeaders(const THttpRequest& request, const std::string& authorization);

}  // namespace NZEPQEL20::cimxml
