// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/ServerSetup.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <system_error>
#include <utility>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/TExchange.h"
#include "platform/model/CoreLog.h"

namespace NZEPQEL20::cimxml {
namespace {

[[noreturn]] void Refuse(const TServerUrl& url, const std::string& reason) {
  throw TQELException(TQELStatusCode::kInvalidArgument, url.GetText() + ": " + reason);
}

// More than any server answers, and far from where sums of sizes overflow.
constexpr std::uint64_t kMostReplyBytes = std::uint64_t{1} << 40U;

void CheckTime(const TServerUrl& url, const char* field, std::chrono::milliseconds time) {
  if (time > std::chrono::milliseconds(0) && time <= kMostTime) return;
  Refuse(url, std::string(field) + " must be above 0 and at most 30 days, and is " +
                  std::to_string(time.count()) + " ms");
}

void CheckLimits(const TServerOptions& options, const TServerUrl& url) {
  CheckTime(url, "connectTimeout", options.connectTimeout);
  CheckTime(url, "requestTimeout", options.requestTimeout);
  CheckTime(url, "totalTimeout", options.totalTimeout);
  CheckTime(url, "methodTimeout", options.methodTimeout);
  if (options.maxReplyBytes == 0 || options.maxReplyBytes > kMostReplyBytes) {
    Refuse(url, "maxReplyBytes must be from 1 to " + std::to_string(kMostReplyBytes) + ", and is " +
                    std::to_string(options.maxReplyBytes));
  }
}

// The file that holds the key of the client certificate; empty without one.
const std::string& GetKeyFile(const TServerOptions& options) {
  return options.clientKey.empty() ? options.clientCertificate : options.clientKey;
}

bool IsOpenToOthers(const std::string& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         (status.st_mode & (S_IRWXG | S_IRWXO)) != 0;
}

void Warn(const TServerUrl& url, const std::string& text) {
  LogToCore(ILogger::kWarning, url.GetText() + ": " + text);
}

// Reading a byte is the only way to know: a folder can be opened, too.
void CheckFile(const TServerUrl& url, const char* what, const std::string& path) {
  if (path.empty()) return;
  const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  char byte = 0;
  const bool isReadable = file >= 0 && ::read(file, &byte, 1) >= 0;
  const int number = errno;
  if (file >= 0) ::close(file);
  if (!isReadable) {
    Refuse(url, std::string("the ") + what + " " + MakeSafe(path) +
                    " cannot be read: " + std::generic_category().message(number));
  }
}

void SetLimits(CURL* handle) {
  SetOption(handle, CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
  SetOption(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  SetOption(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  SetOption(handle, CURLOPT_FOLLOWLOCATION, 0L);
  SetOption(handle, CURLOPT_NETRC, long{CURL_NETRC_IGNORED});
  // The environment may name a proxy, which the user of a diagnostics tool has not.
  SetOption(handle, CURLOPT_PROXY, "");
  SetOption(handle, CURLOPT_NOPROXY, "*");
  SetOption(handle, CURLOPT_NOSIGNAL, 1L);
  // Without it, a timeout would wait on for a name server that does not answer.
  SetOption(handle, CURLOPT_QUICK_EXIT, 1L);
  SetOption(handle, CURLOPT_TCP_KEEPALIVE, 1L);
  SetOption(handle, CURLOPT_MAXCONNECTS, 1L);
  SetOption(handle, CURLOPT_HTTP_CONTENT_DECODING, 0L);
  SetOption(handle, CURLOPT_BUFFERSIZE, 256L * 1024);
}

void SetTls(CURL* handle, const TServerOptions& options) {
  SetOption(handle, CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
  SetOption(handle, CURLOPT_SSL_VERIFYPEER, options.isInsecure ? 0L : 1L);
  SetOption(handle, CURLOPT_SSL_VERIFYHOST, options.isInsecure ? 0L : 2L);
  if (!options.caFile.empty()) {
    SetOption(handle, CURLOPT_CAINFO, options.caFile.c_str());
    SetOption(handle, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  }
  if (options.clientCertificate.empty()) return;
  SetOption(handle, CURLOPT_SSLCERT, options.clientCertificate.c_str());
  SetOption(handle, CURLOPT_SSLKEY, GetKeyFile(options).c_str());
  // With none at all, OpenSSL would ask for one on the terminal and wait.
  SetOption(handle, CURLOPT_KEYPASSWD, "");
}

void SetUser(CURL* handle, const TServerOptions& options) {
  if (options.user.empty()) return;
  SetOption(handle, CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
  SetOption(handle, CURLOPT_USERNAME, options.user.c_str());
  SetOption(handle, CURLOPT_PASSWORD, options.password.c_str());
}

void Append(TCurlList& list, const std::string& line) {
  curl_slist* const longer = curl_slist_append(list.get(), line.c_str());
  if (longer == nullptr) {
    throw TQELException(TQELStatusCode::kNoMemory, "no memory for the header of a request");
  }
  static_cast<void>(list.release());
  list.reset(longer);
}

}  // namespace

void InitialiseCurl() {
  // As long as the process: other parts of it may use curl, too.
  static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (code != CURLE_OK) {
    throw TQELException(TQELStatusCode::kFailed, std::string("the HTTP library cannot be used: ") +
                                                     curl_easy_strerror(code));
  }
}

void CheckServerOptions(const TServerOptions& options, const TServerUrl& url) {
  CheckLimits(options, url);
  if (options.user.find(':') != std::string::npos) {
    Refuse(url, "the name of a user must not hold a colon");
  }
  const std::string_view nul("\0", 1);
  if (options.user.find(nul) != std::string::npos ||
      options.password.find(nul) != std::string::npos) {
    Refuse(url, "a user or password must not hold a NUL character");
  }
  if (!options.clientKey.empty() && options.clientCertificate.empty()) {
    Refuse(url, "a client key is given without a client certificate");
  }
  CheckFile(url, "CA file", options.caFile);
  CheckFile(url, "client certificate", options.clientCertificate);
  CheckFile(url, "client key", options.clientKey);
}

void WarnAboutSecrets(const TServerOptions& options, const TServerUrl& url) {
  const std::string& key = GetKeyFile(options);
  if (!key.empty() && IsOpenToOthers(key)) {
    const std::string name = MakeSafe(key);
    Warn(url, "others than its owner have rights on the client key file " + name +
                  "; take them away with: chmod go= " + name);
  }
  if (!options.user.empty() && !options.password.empty() && url.IsOpenOnNetwork()) {
    Warn(url, "the password goes over the network unencrypted; use https if the server has it");
  }
}

TCurlHandle MakeHandle(const TServerOptions& options, const TServerUrl& url) {
  TCurlHandle handle(curl_easy_init());
  if (!handle) throw TQELException(TQELStatusCode::kNoMemory, "no memory for a connection");
  SetLimits(handle.get());
  SetTls(handle.get(), options);
  SetUser(handle.get(), options);
  SetOption(handle.get(), CURLOPT_POST, 1L);
  SetOption(handle.get(), CURLOPT_URL, url.GetEndpoint().c_str());
  SetOption(handle.get(), CURLOPT_USERAGENT, "diagsrun/" DIAGSRUNNER_VERSION);
  if (url.IsLocalSocket()) {
    SetOption(handle.get(), CURLOPT_UNIX_SOCKET_PATH, url.GetSocketPath().c_str());
  }
  const auto connectTime =
      std::min<std::chrono::milliseconds::rep>(options.connectTimeout.count(), INT_MAX);
  SetOption(handle.get(), CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connectTime));
  return handle;
}

TCurlList MakeHeaders(const THttpRequest& request, const std::string& authorization) {
  TCurlList headers;
  Append(headers, "Content-Type: application/xml; charset=\"utf-8\"");
  Append(headers, "CIMOperation: MethodCall");
  Append(headers, "CIMMethod: " + PercentEncode(request.method));
  Append(headers, "CIMObject: " + PercentEncode(request.object));
  // Some servers look for this word at the start, and send errors after the body only then.
  Append(headers, "TE: trailers");
  Append(headers, "Connection: Keep-Alive, TE");
  // Without a value: curl shall not send its own, which some servers refuse.
  Append(headers, "Expect:");
  Append(headers, "Accept:");
  if (!authorization.empty()) Append(headers, "PegasusAuthorization: " + authorization);
  return headers;
}

}  // namespace NZEPQEL20::cimxml
