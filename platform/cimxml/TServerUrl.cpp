// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TServerUrl.h"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <strings.h>
#include <sys/un.h>

#include <memory>

#include "platform/cimxml/HttpText.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20::cimxml {
namespace {

constexpr const char* kDefaultPath = "/cimom";
constexpr const char* kForms =
    "http://host[:port][/path], https://host[:port][/path] or unix:///path";

struct TUrlCleanup {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using TUrlHandle = std::unique_ptr<CURLU, TUrlCleanup>;

// The text as far as a message may repeat it: nothing in front of an '@', no query, no fragment.
std::string Show(const std::string& text) {
  std::string shown = text.substr(0, text.find_first_of("?#"));
  const std::size_t at = text.rfind('@');
  if (at != std::string::npos) {
    const std::size_t scheme = text.find("://");
    const bool hasScheme = scheme != std::string::npos && scheme < at;
    shown = (hasScheme ? text.substr(0, scheme + 3) : std::string()) + "..." + text.substr(at);
    shown = shown.substr(0, shown.find_first_of("?#"));
  }
  return MakeSafe(shown);
}

[[noreturn]] void Refuse(const std::string& text, const std::string& reason) {
  throw TQELException(TQELStatusCode::kInvalidArgument,
                      "the server URL \"" + Show(text) + "\": " + reason);
}

bool StartsWith(const std::string& text, const char* prefix) {
  return ::strncasecmp(text.c_str(), prefix, std::char_traits<char>::length(prefix)) == 0;
}

void RefuseOddCharacters(const std::string& text) {
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte <= 0x20 || byte == 0x7F) Refuse(text, "holds a blank or a control character");
  }
}

std::string GetPart(CURLU* url, CURLUPart part) {
  char* value = nullptr;
  if (curl_url_get(url, part, &value, 0) != CURLUE_OK) return {};
  const std::unique_ptr<char, void (*)(void*)> owner(value, curl_free);
  return value;
}

// Whether `host`, as curl gives it back, is this machine: what is sent there stays in it.
bool IsThisMachine(std::string host) {
  if (EqualsNoCase(host, "localhost")) return true;
  in_addr address{};
  if (::inet_pton(AF_INET, host.c_str(), &address) == 1) {
    return ntohl(address.s_addr) >> 24U == IN_LOOPBACKNET;
  }
  if (host.size() < 2 || host.front() != '[' || host.back() != ']') return false;
  host = host.substr(1, host.size() - 2);
  in6_addr longAddress{};
  return ::inet_pton(AF_INET6, host.c_str(), &longAddress) == 1 &&
         IN6_IS_ADDR_LOOPBACK(&longAddress);
}

}  // namespace

TServerUrl::TServerUrl(const std::string& text) : m_text(text) {
  if (text.empty()) {
    throw TQELException(TQELStatusCode::kInvalidArgument,
                        std::string("no server URL is given; use ") + kForms);
  }
  RefuseOddCharacters(text);
  if (StartsWith(text, "unix:")) {
    ReadSocket(text.substr(5));
  } else if (StartsWith(text, "http://")) {
    ReadHttp(false);
  } else if (StartsWith(text, "https://")) {
    ReadHttp(true);
  } else {
    Refuse(text, std::string("is none of ") + kForms);
  }
}

void TServerUrl::ReadSocket(const std::string& rest) {
  const bool hasSlashes = rest.compare(0, 2, "//") == 0;
  m_socketPath = hasSlashes ? rest.substr(2) : rest;
  if (m_socketPath.empty() || m_socketPath[0] != '/') {
    Refuse(m_text, "the path of a socket must be absolute, as in unix:///path/of/socket");
  }
  const std::size_t limit = sizeof(sockaddr_un::sun_path) - 1;
  if (m_socketPath.size() > limit) {
    Refuse(m_text, "the path of a socket has at most " + std::to_string(limit) +
                       " bytes, and this one has " + std::to_string(m_socketPath.size()));
  }
  m_endpoint = std::string("http://localhost") + kDefaultPath;
}

void TServerUrl::ReadHttp(bool isSecure) {
  if (m_text.find('@') != std::string::npos) {
    Refuse(m_text,
           "a user and a password do not belong into it; give them apart from it (an '@' of the "
           "path is written %40)");
  }
  if (m_text.find_first_of("?#") != std::string::npos) {
    Refuse(m_text, "has a query ('?') or a fragment ('#'), and a CIM server takes neither");
  }
  // curl would overlook more than two slashes.
  const std::size_t host = m_text.find("://") + 3;
  if (host == m_text.size() || m_text[host] == '/') Refuse(m_text, "names no host");

  const TUrlHandle url(curl_url());
  if (!url) throw TQELException(TQELStatusCode::kNoMemory, "no memory for a server URL");
  const CURLUcode problem = curl_url_set(url.get(), CURLUPART_URL, m_text.c_str(), 0);
  if (problem == CURLUE_BAD_PORT_NUMBER) Refuse(m_text, "its port is no number from 1 to 65535");
  if (problem == CURLUE_NO_HOST) Refuse(m_text, "names no host");
  if (problem != CURLUE_OK) Refuse(m_text, curl_url_strerror(problem));

  const std::string port = GetPart(url.get(), CURLUPART_PORT);
  if (port == "0") Refuse(m_text, "its port is no number from 1 to 65535");
  if (port.empty()) curl_url_set(url.get(), CURLUPART_PORT, isSecure ? "5989" : "5988", 0);
  if (GetPart(url.get(), CURLUPART_PATH) == "/") {
    curl_url_set(url.get(), CURLUPART_PATH, kDefaultPath, 0);
  }
  m_isOpenOnNetwork = !isSecure && !IsThisMachine(GetPart(url.get(), CURLUPART_HOST));
  m_endpoint = GetPart(url.get(), CURLUPART_URL);
  if (m_endpoint.empty()) throw TQELException(TQELStatusCode::kNoMemory, "no memory for a URL");
}

}  // namespace NZEPQEL20::cimxml
