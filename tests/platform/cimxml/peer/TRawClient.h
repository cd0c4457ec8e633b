// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace cimserver {

/// A client that sends and shows bytes as they are.
class TRawClient {
 public:
  /// Errors: std::system_error when nobody listens there.
  explicit TRawClient(std::uint16_t port);
  explicit TRawClient(const std::string& unixPath);
  ~TRawClient();
  TRawClient(const TRawClient&) = delete;
  TRawClient& operator=(const TRawClient&) = delete;

  void Send(const std::string& bytes) const;
  /// The next reply to its end, as Content-Length or chunks have it; one with neither ends with
  /// its header.
  /// Errors: std::runtime_error with what there was when the connection ends before.
  std::string Receive();
  std::string Exchange(const std::string& request) {
    Send(request);
    return Receive();
  }
  /// Whether the other side ends the connection; waits for that or for bytes, but not for ever.
  bool IsClosed();

 private:
  bool ReadSome();
  std::string Take(std::size_t size);
  std::size_t FindChunkedEnd(std::size_t start);
  std::size_t NeedText(const std::string& text, std::size_t from);

  int m_socket = -1;
  std::string m_received;
};

/// A POST of `body` with the headers that CIM needs, and `more`, lines with CR LF.
std::string MakePost(const std::string& method, const std::string& object, const std::string& body,
                     const std::string& more = "");

/// The message of an intrinsic operation in root/cimv2 with `parameters` as XML.
std::string MakeIntrinsic(const std::string& name, const std::string& parameters);

/// A POST of that message.
std::string PostIntrinsic(const std::string& name, const std::string& parameters,
                          const std::string& more = "");

/// IPARAMVALUE with CLASSNAME.
std::string ClassParameter(const std::string& className, const std::string& name = "ClassName");
/// IPARAMVALUE with VALUE.
std::string ValueParameter(const std::string& name, const std::string& value);

/// The reply's text behind the header.
std::string GetBody(const std::string& reply);

/// The number of the ERROR in the reply, with its description: "6 words"; empty without one.
std::string GetError(const std::string& reply);

}  // namespace cimserver
