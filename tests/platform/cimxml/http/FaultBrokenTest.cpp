// SPDX-License-Identifier: Apache-2.0
// Servers that break off, are too slow, or send what is not HTTP.
#include <gtest/gtest.h>

#include "tests/platform/cimxml/http/TFault.h"

namespace diagstest {
namespace {

using NZEPQEL20::TQELStatusCode;
using std::chrono::milliseconds;

class FaultBrokenTest : public ::testing::TestWithParam<TFault> {};

TEST_P(FaultBrokenTest, IsToldAndTheNextRequestWorks) {
  ExpectFault(GetParam());
}

constexpr const char* kHead =
    "HTTP/1.1 200 OK\r\nContent-Type: application/xml\r\nCIMOperation: MethodResponse\r\n";

std::string WithLength(const std::string& length, const std::string& body) {
  return std::string(kHead) + "Content-Length: " + length + "\r\n\r\n" + body;
}

std::string Chunked(const std::string& chunks) {
  return std::string(kHead) + "Transfer-Encoding: chunked\r\n\r\n" + chunks;
}

TFault Lost(const char* name, const TPlay& play, const std::string& text) {
  return {name, play, TOutcome::kLost, TQELStatusCode::kConnection,
          "the connection was lost before the whole answer had come (" + text};
}

TFault Slow(const char* name, const TPlay& play, const std::string& text) {
  return {name,
          play,
          TOutcome::kOther,
          TQELStatusCode::kConnection,
          "no complete answer within 0.2 s (" + text + ")",
          milliseconds(200)};
}

TFault Bad(const char* name, const TPlay& play, const std::string& text) {
  return {name, play, TOutcome::kOther, TQELStatusCode::kFailed, text};
}

TFault NotHttp(const char* name, const TPlay& play, const std::string& reason) {
  TFault fault = Bad(name, play, "the answer is not proper HTTP (" + reason + ")");
  fault.hint = "; is this the port of a CIM server, and does it want https?";
  return fault;
}

INSTANTIATE_TEST_SUITE_P(
    Lost, FaultBrokenTest,
    ::testing::Values(
        Lost("ClosesAfterTheRequest", TPlay().Close(), "nothing of it had come)~"),
        Lost("ClosesBeforeTheRequest", TPlay::AtOnce().Close(), "nothing of it had come)~"),
        Lost("ResetsAfterTheRequest", TPlay().Reset(), "nothing of it had come)~"),
        Lost("ClosesInTheHeader", TPlay().Send(kHead).Close(), "a part of its header had come)~"),
        Lost("ClosesAfterTheHeader", TPlay().Send(WithLength("50", "")).Close(),
             "its header had come, and nothing of its body)"),
        Lost("ClosesInTheBody", TPlay().Send(WithLength("50", "<CIM>")).Close(),
             "5 bytes of its body had come)"),
        Lost("ResetsInTheBody",
             TPlay().Send(WithLength("50", "<CIM>")).Wait(milliseconds(50)).Reset(),
             "5 bytes of its body had come)~"),
        Lost("ClosesInAChunk", TPlay().Send(Chunked("10\r\n<CIM>")).Close(),
             "5 bytes of its body had come)"),
        Lost("ClosesBetweenChunks", TPlay().Send(Chunked("5\r\n<CIM>\r\n")).Close(),
             "5 bytes of its body had come)"),
        Lost("ClosesBeforeTheEndOfTrailers",
             TPlay().Send(Chunked("5\r\n<CIM>\r\n0\r\nX: y\r\n")).Close(),
             "5 bytes of its body had come)")),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Slow, FaultBrokenTest,
    ::testing::Values(
        Slow("NeverAnswers", TPlay().Hang(), "nothing of it had come"),
        Slow("StopsInTheHeader", TPlay().Send("HTTP/1.1 200 OK\r\n").Hang(),
             "a part of its header had come"),
        Slow("StopsAfterTheHeader", TPlay().Send(WithLength("50", "")).Hang(),
             "its header had come, and nothing of its body"),
        Slow("StopsInTheBody", TPlay().Send(WithLength("50", "<CIM>")).Hang(),
             "5 bytes of its body had come"),
        Slow("StopsInAChunk", TPlay().Send(Chunked("20\r\n<")).Hang(),
             "1 byte of its body had come"),
        Slow("TricklesItsHeader", TPlay().Trickle(WithLength("1", "x"), milliseconds(20)),
             "nothing of it had come"),
        Slow("AnnouncesMoreThanItSends", TPlay().Send(WithLength("6", "<CIM>")).Hang(),
             "5 bytes of its body had come"),
        Slow("GivesNoLengthAndDoesNotClose", TPlay().Send(std::string(kHead) + "\r\n<CIM>").Hang(),
             "5 bytes of its body had come"),
        Slow("SendsInterimRepliesOnly",
             TPlay().Send("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 102 Wait\r\n\r\n").Hang(),
             "a part of its header had come")),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    NotHttp, FaultBrokenTest,
    ::testing::Values(
        NotHttp("Garbage", TPlay().Send("\x01\x02garbage\r\n\r\n").Close(),
                "Received HTTP/0.9 when not allowed"),
        NotHttp("BodyWithoutHeader", TPlay().Send("<?xml version=\"1.0\"?><CIM/>").Close(),
                "Received HTTP/0.9 when not allowed"),
        NotHttp("Http2", TPlay().Send("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n").Hang(),
                "Received HTTP/0.9 when not allowed"),
        NotHttp("Http2Frames", TPlay().Send(std::string("\0\0\x12\4\0\0\0\0\0", 9)).Hang(),
                "Received HTTP/0.9 when not allowed"),
        Bad("Http2StatusLine", TPlay().Send("HTTP/2 200\r\n\r\n").Hang(),
            "answers in a version of HTTP that was not asked for"),
        NotHttp("StatusThatIsNoNumber", TPlay().Send("HTTP/1.1 abc OK\r\n\r\n").Hang(),
                "Unsupported HTTP version in response"),
        NotHttp("HeaderWithoutColon", TPlay().Send("HTTP/1.1 200 OK\r\nnonsense\r\n\r\n").Hang(),
                "Header without colon"),
        NotHttp("NulInHeader",
                TPlay().Send("HTTP/1.1 200 OK\r\nA: b" + std::string(1, '\0') + "c\r\n\r\n").Hang(),
                "Nul byte in header"),
        NotHttp("BadChunkSize", TPlay().Send(Chunked("zz\r\n<CIM>\r\n0\r\n\r\n")).Hang(),
                "Illegal or missing hexadecimal sequence in chunked-encoding"),
        NotHttp("HugeChunkSize", TPlay().Send(Chunked("ffffffffffffffffff\r\n<CIM>")).Hang(),
                "Too long hexadecimal number in chunked-encoding"),
        NotHttp("ChunkLongerThanItSays", TPlay().Send(Chunked("3\r\n<CIM>\r\n0\r\n\r\n")).Hang(),
                "Malformed encoding found in chunked-encoding")),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Lengths, FaultBrokenTest,
    ::testing::Values(
        Bad("TwoLengths",
            TPlay()
                .Send(std::string(kHead) + "Content-Length: 5\r\nContent-Length: 6\r\n\r\n<CIM>x")
                .Hang(),
            "the answer has two different lengths, 5 and 6 bytes"),
        NotHttp("NegativeLength", TPlay().Send(WithLength("-5", "<CIM>")).Hang(),
                "Invalid Content-Length: value"),
        NotHttp("LengthOfLetters", TPlay().Send(WithLength("five", "<CIM>")).Hang(),
                "Invalid Content-Length: value"),
        Bad("LengthWithRest", TPlay().Send(WithLength("5 bytes", "<CIM>")).Hang(),
            "the answer has an unusable Content-Length \"5 bytes\""),
        Bad("ListOfLengths", TPlay().Send(WithLength("5, 6", "<CIM>x")).Hang(),
            "the answer has an unusable Content-Length \"5, 6\""),
        Bad("LengthAboveTheLimit", TPlay().Send(WithLength("1048577", "<CIM>")).Hang(),
            "the answer is larger than the limit of 1048576 bytes for one answer, which can be "
            "raised"),
        Bad("LengthAboveAllNumbers", TPlay().Send(WithLength(std::string(40, '9'), "<CIM>")).Hang(),
            "the answer is larger than the limit of 1048576 bytes for one answer, which can be "
            "raised")),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Floods, FaultBrokenTest,
    ::testing::Values(
        Bad("HundredMegabytesUnannounced",
            TPlay().Send(std::string(kHead) + "\r\n").Repeat(std::string(65536, 'x'), 1600),
            "the answer is larger than the limit of 1048576 bytes for one answer, which can be "
            "raised"),
        Bad("HundredMegabytesInChunks",
            TPlay().Send(Chunked("")).Repeat("10000\r\n" + std::string(65536, 'x') + "\r\n", 1600),
            "the answer is larger than the limit of 1048576 bytes for one answer, which can be "
            "raised"),
        Bad("EndlessHeader",
            TPlay()
                .Send("HTTP/1.1 200 OK\r\n")
                .Repeat("A: " + std::string(997, 'x') + "\r\n", 100000),
            "the answer has more than 65536 bytes of header fields"),
        Bad("EndlessInterimReplies", TPlay().Repeat("HTTP/1.1 100 Continue\r\n\r\n", 1000000),
            "the answer has more than 65536 bytes of header fields"),
        Bad("OneHugeHeaderField",
            TPlay().Send("HTTP/1.1 200 OK\r\nA: ").Repeat(std::string(65536, 'x'), 1600),
            "the answer has a header field of absurd length"),
        Bad("EndlessStatusLine",
            TPlay().Send("HTTP/1.1 200 ").Repeat(std::string(65536, 'x'), 1600),
            "the answer has a header field of absurd length"),
        Bad("EndlessTrailers",
            TPlay()
                .Send(Chunked("5\r\n<CIM>\r\n0\r\n"))
                .Repeat("A: " + std::string(997, 'x') + "\r\n", 100000),
            "the answer has more than 65536 bytes of header fields"),
        Bad("OneHugeTrailer",
            TPlay().Send(Chunked("5\r\n<CIM>\r\n0\r\nA: ")).Repeat(std::string(65536, 'x'), 1600),
            "the answer has a header field of absurd length"),
        Slow("EndlessChunkExtension",
             TPlay().Send(Chunked("5;")).Repeat(std::string(65536, 'x'), 100000),
             "its header had come, and nothing of its body")),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace diagstest
