// SPDX-License-Identifier: Apache-2.0
// Servers that answer in proper HTTP, and not with CIM-XML.
#include <gtest/gtest.h>

#include "tests/platform/cimxml/http/TFault.h"

namespace diagstest {
namespace {

using NZEPQEL20::TQELStatusCode;

class FaultReplyTest : public ::testing::TestWithParam<TFault> {};

TEST_P(FaultReplyTest, IsToldAndTheNextRequestWorks) {
  ExpectFault(GetParam());
}

// The connection stays open, with nothing behind the header: waiting for more would last for ever.
TFault Status(const char* name, const std::string& head, const std::string& text,
              unsigned int code = TQELStatusCode::kFailed) {
  return {name, TPlay().Send("HTTP/1.1 " + head + "\r\n").Hang(), TOutcome::kHttpError, code, text};
}

TFault Kind(const char* name, const std::string& fields, const std::string& text) {
  const std::string body = "<html>Welcome</html>";
  return {name,
          TPlay().Send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
                       "\r\n" + fields + "\r\n" + body),
          TOutcome::kOther, TQELStatusCode::kFailed, text};
}

constexpr unsigned int kDenied = TQELStatusCode::kAccessDenied;
constexpr const char* kNoneGiven = "a user and a password are needed, and none are given ";

INSTANTIATE_TEST_SUITE_P(
    Statuses, FaultReplyTest,
    ::testing::Values(
        Status("CIMErrorWithDetail",
               "400 Bad Request\r\nCIMError: request-not-valid\r\n"
               "PGErrorDetail: Bad%20value%20%22x%22%0Ain%20line%201%1B\r\n",
               "HTTP 400 Bad Request, CIMError request-not-valid: Bad value \"x\" in line 1?"),
        Status("NothingButTheStatus", "400 Bad Request\r\n", "HTTP 400 Bad Request"),
        Status("NoWords", "400\r\n", "HTTP 400"),
        Status("CIMErrorInSpiteOf200", "200 OK\r\ncimerror: header-mismatch\r\n",
               "HTTP 200 OK, CIMError header-mismatch"),
        Status("EmptyReasons", "400 Bad Request\r\nCIMError:\r\nPGErrorDetail: \r\n",
               "HTTP 400 Bad Request"),
        Status("CIMErrorBehindAnEmptyOne", "200 OK\r\nCIMError: \r\nCIMError: a\r\n",
               "HTTP 200 OK, CIMError a"),
        Status("OddWords", "400 \xC2\x9Bx\x7F\xE4" + std::string(95, 'x') + "\xC3\xA4\r\n",
               "HTTP 400 ?x??" + std::string(95, 'x') + "..."),
        Status("MovedForGood", "301 Moved\r\nLocation: https://other/cimom\r\n",
               "HTTP 301 Moved; it sends us to https://other/cimom, which is not followed"),
        Status("MovedNowhere", "302 Found\r\n",
               "HTTP 302 Found; it sends us elsewhere, without saying where"),
        Status("MovedForNow", "307 Temporary Redirect\r\nLocation: http://x/\x1b[2J\r\n",
               "HTTP 307 Temporary Redirect; it sends us to http://x/?[2J, which is not followed"),
        Status("UnauthorizedWithoutSchemes", "401 Unauthorized\r\n",
               std::string("HTTP 401 Unauthorized; ") + kNoneGiven +
                   "(the server offers no way to log in)",
               kDenied),
        Status("UnauthorizedWithRealm",
               "401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"a, b\"\r\n",
               std::string("HTTP 401 Unauthorized; ") + kNoneGiven + "(the server offers Basic)",
               kDenied),
        Status("UnauthorizedWithHost",
               "401 Unauthorized\r\nWWW-Authenticate: Basic \"node:5988\"\r\n",
               std::string("HTTP 401 Unauthorized; ") + kNoneGiven + "(the server offers Basic)",
               kDenied),
        Status("UnauthorizedWithSeveral",
               "401 Unauthorized\r\nWWW-Authenticate: Negotiate, Basic realm=\"x\"\r\n"
               "WWW-Authenticate: Digest realm=\"y\", nonce=\"z\"\r\n",
               std::string("HTTP 401 Unauthorized; ") + kNoneGiven +
                   "(the server offers Negotiate, Basic, Digest)",
               kDenied),
        Status("LocalChallengeOverTcp",
               "401 Unauthorized\r\nWWW-Authenticate: Local \"/tmp/x\"\r\n",
               std::string("HTTP 401 Unauthorized; ") + kNoneGiven + "(the server offers Local)",
               kDenied),
        Status("Forbidden", "403 Forbidden\r\n",
               "HTTP 403 Forbidden; this user may not use the server", kDenied),
        Status("NotFound", "404 Not Found\r\nContent-Length: 500\r\n",
               "HTTP 404 Not Found; no CIM server is at this path; most have /cimom"),
        Status("TooLarge", "413 Request Entity Too Large\r\n",
               "HTTP 413 Request Entity Too Large; the request is too large for the server"),
        Status("ExpectationFailed", "417 Expectation Failed\r\n", "HTTP 417 Expectation Failed"),
        Status("ServerError", "500 Internal Server Error\r\nContent-Length: 9\r\n",
               "HTTP 500 Internal Server Error"),
        Status("NotImplemented",
               "501 Not Implemented\r\nCIMError: unsupported-protocol-version\r\n",
               "HTTP 501 Not Implemented, CIMError unsupported-protocol-version; the server does "
               "not support this request"),
        Status("Busy", "503 Service Unavailable\r\n",
               "HTTP 503 Service Unavailable; the server is busy or shutting down; try again later",
               TQELStatusCode::kConnection),
        Status("NoContent", "204 No Content\r\n", "HTTP 204 No Content"),
        Status("OtherProtocol", "101 Switching Protocols\r\nUpgrade: x\r\n",
               "HTTP 101 Switching Protocols"),
        Status("LongDetail",
               "400 Bad Request\r\nCIMError: " + std::string(5000, 'e') +
                   "\r\nPGErrorDetail: " + std::string(5000, 'd') + "\r\n",
               "HTTP 400 Bad Request, CIMError " + std::string(300, 'e') +
                   "...: " + std::string(1000, 'd') + "...")),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Kinds, FaultReplyTest,
    ::testing::Values(
        Kind("HtmlPage", "Content-Type: text/html; charset=utf-8\r\n",
             "answers with text/html, not with XML: a proxy, or another kind of server"),
        Kind("EmptyType", "Content-Type:\r\n",
             "answers with , not with XML: a proxy, or another kind of server"),
        Kind("BinaryProtocol", "Content-Type: application/x-openpegasus\r\n",
             "answers with application/x-openpegasus, not with XML: a proxy, or another kind of "
             "server"),
        Kind("Gzip", "Content-Type: text/xml\r\nContent-Encoding: gzip\r\n",
             "the answer is packed (Content-Encoding gzip), which was not asked for"),
        Kind("TransferGzip", "Content-Type: text/xml\r\nTransfer-Encoding: gzip, chunked\r\n",
             "the answer is packed (Transfer-Encoding gzip, chunked), which was not asked for"),
        Kind("OtherMessage", "Content-Type: text/xml\r\nCIMOperation: MethodRequest\r\n",
             "answers with a CIM message of the kind \"MethodRequest\", not with the response to a "
             "call")),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace diagstest
