// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TPeerConnection.h"

#include <algorithm>
#include <array>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <cstdio>
#include <optional>

#include "tests/support/cimserver/HttpText.h"

namespace cimserver {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

constexpr std::uint32_t kPegasusHeaderBytes = 64U << 10U;
constexpr std::uint32_t kSfcbHeaderBytes = 5000;
constexpr std::uint64_t kBodyBytes = 10'000'000;
constexpr unsigned int kSfcbRequests = 10;

// A channel as the parser reads from it.
class TBeastStream {
 public:
  explicit TBeastStream(IChannel& channel) : m_channel(channel) {}

  template <typename TBuffers>
  std::size_t read_some(const TBuffers& buffers, beast::error_code& error) {
    const asio::mutable_buffer first = *asio::buffer_sequence_begin(buffers);
    const std::size_t size = m_channel.Read(static_cast<char*>(first.data()), first.size());
    error = size == 0 ? beast::error_code(asio::error::eof) : beast::error_code();
    return size;
  }
  template <typename TBuffers>
  std::size_t read_some(const TBuffers& buffers) {
    beast::error_code error;
    const std::size_t size = read_some(buffers, error);
    if (error) throw beast::system_error(error);
    return size;
  }

 private:
  IChannel& m_channel;
};

const char* GetReason(unsigned int status) {
  switch (status) {
    case 401:
      return "Unauthorized";
    case 413:
      return "Payload Too Large";
    case 417:
      return "Expectation Failed";
    case 501:
      return "Not Implemented";
    default:
      return "Bad Request";
  }
}

std::string StartReply(unsigned int status) {
  return "HTTP/1.1 " + std::to_string(status) + ' ' + GetReason(status) + "\r\n";
}

// Decimal with ten digits, as one maker pads it.
std::string Pad(std::size_t size) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "%010zu", size);
  return text.data();
}

void AppendChunk(std::string& message, std::string_view data) {
  std::array<char, 24> size{};
  std::snprintf(size.data(), size.size(), "%zx\r\n", data.size());
  message.append(size.data()).append(data).append("\r\n");
}

}  // namespace

struct TPeerConnection::TReader {
  TReader(IChannel& channel, EStyle like) : stream(channel), style(like) {}

  // Gets ready for the next request, and reads its header.
  void ReadHeader() {
    parser.emplace();
    parser->header_limit(style == EStyle::kPegasus ? kPegasusHeaderBytes : kSfcbHeaderBytes);
    parser->body_limit(kBodyBytes);
    http::read_header(stream, buffer, *parser, error);
  }
  void ReadBody() { http::read(stream, buffer, *parser, error); }

  TPeerRequest Take() {
    TPeerRequest request;
    request.method = std::string(parser->get().method_string());
    for (const auto& field : parser->get()) {
      request.headers.emplace(std::string(field.name_string()), std::string(field.value()));
    }
    request.body = std::move(parser->get().body());
    return request;
  }

  TBeastStream stream;
  EStyle style;
  beast::flat_buffer buffer;
  std::optional<http::request_parser<http::string_body>> parser;
  beast::error_code error;
};

TPeerConnection::TPeerConnection(IChannel& channel, const TPeerOptions& options,
                                 TRequestHandler& handler, TPeerCounts& counts)
    : m_channel(channel), m_options(options), m_handler(handler), m_counts(counts) {}

void TPeerConnection::Serve() {
  TReader reader(m_channel, m_options.style);
  while (ServeOne(reader)) {
  }
}

// False at the end of the connection.
bool TPeerConnection::ServeOne(TReader& reader) {
  reader.ReadHeader();
  if (reader.error) return RefuseUnread(reader);
  if (reader.parser->get().count(http::field::expect) != 0) {
    if (!IsPegasus()) {
      m_counts.AddRequest(TPeerCounts::kRefused);
      m_channel.Write(WriteFault(THttpFault(417, "", "Expect"), true));
      return false;
    }
    if (!m_channel.Write("HTTP/1.1 100 Continue\r\n\r\n")) return false;
  }
  reader.ReadBody();
  if (reader.error) return RefuseUnread(reader);
  ++m_requests;
  const unsigned int limit =
      m_options.requestsPerConnection.value_or(IsPegasus() ? 0 : kSfcbRequests);
  const bool isLast = !reader.parser->keep_alive() || (limit != 0 && m_requests >= limit);
  return m_channel.Write(Answer(reader.Take(), isLast)) && !isLast;
}

// What is no HTTP, or too much of it. Where the next request would begin is not known then.
bool TPeerConnection::RefuseUnread(const TReader& reader) {
  if (reader.error == http::error::end_of_stream || reader.error == http::error::partial_message ||
      reader.error == asio::error::eof) {
    return false;
  }
  m_counts.AddRequest(TPeerCounts::kRefused);
  const unsigned int status = reader.error == http::error::body_limit ? 413 : 400;
  m_channel.Write(WriteFault(THttpFault(status, "", reader.error.message()), true));
  return false;
}

std::string TPeerConnection::Answer(const TPeerRequest& request, bool isLast) {
  try {
    if (request.FindHeader("Host") == nullptr) throw THttpFault(400, "", "Host header missing");
    if (!IsAllowed(request)) {
      m_counts.AddRequest(TPeerCounts::kRefused);
      return WriteChallenge(isLast);
    }
    const TCimCall call = ReadCall(request);
    const TCimReply reply = m_handler.Handle(call);
    m_counts.AddRequest(call.name);
    return WriteReply(reply, request, isLast);
  } catch (const THttpFault& fault) {
    m_counts.AddRequest(TPeerCounts::kRefused);
    return WriteFault(fault, isLast);
  }
}

bool TPeerConnection::IsAllowed(const TPeerRequest& request) const {
  if (m_options.user.empty()) return true;
  const std::string* shown = request.FindHeader("Authorization");
  return shown != nullptr && *shown == MakeBasicCredentials(m_options.user, m_options.password);
}

std::string TPeerConnection::WriteReply(const TCimReply& reply, const TPeerRequest& request,
                                        bool isLast) const {
  const char* const last = isLast ? "Connection: close\r\n" : "";
  const std::string body = reply.head + reply.content + reply.tail;
  if (!IsPegasus()) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/xml; charset=\"utf-8\"\r\n"
           "Content-Length: " +
           std::to_string(body.size()) +
           "\r\nCache-Control: no-cache\r\nCIMOperation: MethodResponse\r\n" + last + "\r\n" + body;
  }
  const std::string* te = request.FindHeader("TE");
  const bool isChunked = te != nullptr && (te->find("chunked") != std::string::npos ||
                                           te->find("trailers") != std::string::npos);
  std::string message = "HTTP/1.1 200 OK\r\nContent-Type: application/xml; charset=utf-8\r\n";
  if (isChunked) {
    message +=
        "transfer-encoding: chunked\r\nCIMOperation: MethodResponse\r\n"
        "Trailer: CIMStatusCode, CIMStatusCodeDescription, Content-Language\r\n";
    return message + last + "\r\n" + WriteChunked(reply);
  }
  return message + "content-length: " + Pad(body.size()) + "\r\nCIMOperation: MethodResponse\r\n" +
         last + "\r\n" + body;
}

// An error leaves the document without its content, and follows it.
std::string TPeerConnection::WriteChunked(const TCimReply& reply) const {
  const bool isGood = reply.cimStatus == 0;
  const std::string body = reply.head + (isGood ? reply.content : std::string()) + reply.tail;
  const std::size_t size = m_options.chunkBytes != 0 ? m_options.chunkBytes : body.size();
  std::string message;
  for (std::size_t start = 0; start < body.size(); start += size) {
    AppendChunk(message, std::string_view(body).substr(start, size));
  }
  message += "0\r\n";
  if (!isGood) {
    message += "CIMStatusCode: " + std::to_string(reply.cimStatus) +
               "\r\nCIMStatusCodeDescription: " + PercentEncode(reply.description) + "\r\n";
  }
  return message + "\r\n";
}

// One maker says what was wrong, and nothing of the length of a body that it does not send.
std::string TPeerConnection::WriteFault(const THttpFault& fault, bool isLast) const {
  std::string message = StartReply(fault.status);
  if (!fault.cimError.empty()) message += "CIMError: " + fault.cimError + "\r\n";
  if (IsPegasus()) {
    message += "PGErrorDetail: " + PercentEncode(fault.what()) + "\r\n";
  } else {
    message += "Content-Length: 0\r\n";
  }
  if (isLast) message += "Connection: close\r\n";
  return message + "\r\n";
}

std::string TPeerConnection::WriteChallenge(bool isLast) const {
  std::string message = StartReply(401);
  message += IsPegasus() ? "WWW-Authenticate: Basic \"" + m_options.host + "\"\r\n"
                         : "WWW-Authenticate: Basic realm=\"cimom\"\r\n";
  message += "Content-Length: 0\r\n";
  if (isLast) message += "Connection: close\r\n";
  return message + "\r\n";
}

}  // namespace cimserver
