// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cimxml/peer/TRawClient.h"

#include <arpa/inet.h>
#include <poll.h>
#include <strings.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace cimserver {
namespace {

constexpr int kPatienceMilliseconds = 30'000;
constexpr char kBlankLine[] = "\r\n\r\n";

int Connect(int family, const sockaddr* address, socklen_t size) {
  const int socket = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (socket < 0 || ::connect(socket, address, size) < 0) {
    const int reason = errno;
    if (socket >= 0) ::close(socket);
    throw std::system_error(reason, std::generic_category(), "connect");
  }
  return socket;
}

// The value of a header, or an empty text.
std::string FindHeader(const std::string& head, const std::string& name) {
  for (std::size_t line = head.find("\r\n"); line != std::string::npos;
       line = head.find("\r\n", line + 2)) {
    const std::size_t start = line + 2;
    if (::strncasecmp(head.c_str() + start, (name + ": ").c_str(), name.size() + 2) != 0) continue;
    const std::size_t value = start + name.size() + 2;
    return head.substr(value, head.find("\r\n", value) - value);
  }
  return {};
}

}  // namespace

TRawClient::TRawClient(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  m_socket = Connect(AF_INET, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

TRawClient::TRawClient(const std::string& unixPath) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  unixPath.copy(address.sun_path, sizeof address.sun_path - 1);
  m_socket = Connect(AF_UNIX, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

TRawClient::~TRawClient() {
  ::close(m_socket);
}

void TRawClient::Send(const std::string& bytes) const {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t size = ::send(m_socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (size < 0) throw std::system_error(errno, std::generic_category(), "send");
    sent += static_cast<std::size_t>(size);
  }
}

bool TRawClient::ReadSome() {
  pollfd waiting{m_socket, POLLIN, 0};
  if (::poll(&waiting, 1, kPatienceMilliseconds) <= 0) throw std::runtime_error("no reply");
  std::array<char, 65536> buffer{};
  const ssize_t size = ::recv(m_socket, buffer.data(), buffer.size(), 0);
  if (size <= 0) return false;
  m_received.append(buffer.data(), static_cast<std::size_t>(size));
  return true;
}

bool TRawClient::IsClosed() {
  return m_received.empty() && !ReadSome();
}

std::string TRawClient::Take(std::size_t size) {
  while (m_received.size() < size) {
    if (!ReadSome()) throw std::runtime_error("broken off: " + m_received);
  }
  std::string taken = m_received.substr(0, size);
  m_received.erase(0, size);
  return taken;
}

// Where the text is, once it is there.
std::size_t TRawClient::NeedText(const std::string& text, std::size_t from) {
  for (;;) {
    const std::size_t found = m_received.find(text, from);
    if (found != std::string::npos) return found;
    if (!ReadSome()) throw std::runtime_error("broken off: " + m_received);
  }
}

// The end of chunks that start there, trailers included.
std::size_t TRawClient::FindChunkedEnd(std::size_t start) {
  for (;;) {
    const std::size_t end = NeedText("\r\n", start) + 2;
    const std::size_t size = std::stoul(m_received.substr(start, end - start), nullptr, 16);
    if (size == 0) return NeedText(kBlankLine, end - 2) + 4;
    start = end + size + 2;
  }
}

std::string TRawClient::Receive() {
  const std::size_t headSize = NeedText(kBlankLine, 0) + 4;
  const std::string head = m_received.substr(0, headSize);
  if (!FindHeader(head, "Transfer-Encoding").empty()) return Take(FindChunkedEnd(headSize));
  const std::string length = FindHeader(head, "Content-Length");
  return Take(headSize + (length.empty() ? 0 : std::stoul(length, nullptr, 10)));
}

std::string MakePost(const std::string& method, const std::string& object, const std::string& body,
                     const std::string& more) {
  return "POST /cimom HTTP/1.1\r\nHost: 127.0.0.1\r\n"
         "Content-Type: application/xml; charset=\"utf-8\"\r\nCIMOperation: MethodCall\r\n"
         "CIMMethod: " +
         method + "\r\nCIMObject: " + object + "\r\n" + more +
         "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string MakeIntrinsic(const std::string& name, const std::string& parameters) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>"
         "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" PROTOCOLVERSION=\"1.0\">"
         "<SIMPLEREQ><IMETHODCALL NAME=\"" +
         name +
         "\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/>"
         "</LOCALNAMESPACEPATH>" +
         parameters + "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
}

std::string PostIntrinsic(const std::string& name, const std::string& parameters,
                          const std::string& more) {
  return MakePost(name, "root%2Fcimv2", MakeIntrinsic(name, parameters), more);
}

std::string ClassParameter(const std::string& className, const std::string& name) {
  return "<IPARAMVALUE NAME=\"" + name + "\"><CLASSNAME NAME=\"" + className + "\"/></IPARAMVALUE>";
}

std::string ValueParameter(const std::string& name, const std::string& value) {
  return "<IPARAMVALUE NAME=\"" + name + "\"><VALUE>" + value + "</VALUE></IPARAMVALUE>";
}

std::string GetBody(const std::string& reply) {
  return reply.substr(reply.find(kBlankLine) + 4);
}

std::string GetError(const std::string& reply) {
  static const std::string kStart = "<ERROR CODE=\"";
  static const std::string kMiddle = "\" DESCRIPTION=\"";
  const std::size_t start = reply.find(kStart);
  if (start == std::string::npos) return {};
  const std::size_t middle = reply.find(kMiddle, start);
  const std::size_t text = middle + kMiddle.size();
  return reply.substr(start + kStart.size(), middle - start - kStart.size()) + ' ' +
         reply.substr(text, reply.find('"', text) - text);
}

}  // namespace cimserver
