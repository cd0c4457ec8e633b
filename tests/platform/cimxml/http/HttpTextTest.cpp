// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "platform/cimxml/HttpText.h"

namespace NZEPQEL20::cimxml {
namespace {

TEST(HttpTextTest, EncodesAllButTheUnreservedCharacters) {
  EXPECT_EQ(PercentEncode("AZaz09-._~"), "AZaz09-._~");
  EXPECT_EQ(PercentEncode("root/cimv2:X.K=\"v w\",L=3"),
            "root%2Fcimv2%3AX.K%3D%22v%20w%22%2CL%3D3");
  EXPECT_EQ(PercentEncode("\xC3\xA4%\r\n"), "%C3%A4%25%0D%0A");
}

TEST(HttpTextTest, DecodesCodesAndKeepsWhatIsNone) {
  EXPECT_EQ(PercentDecode("a%20b%2fC%2F"), "a b/C/");
  EXPECT_EQ(PercentDecode("100% %2 %zz %"), "100% %2 %zz %");
  EXPECT_EQ(PercentDecode("%41"), "A");
  EXPECT_EQ(PercentDecode("a+b"), "a+b");
  EXPECT_EQ(PercentDecode(""), "");
}

TEST(HttpTextTest, MakesAnyTextFitForOneLine) {
  EXPECT_EQ(MakeSafe("plain \xC3\xA4"), "plain \xC3\xA4");
  EXPECT_EQ(MakeSafe("a\tb\r\nc"), "a b  c");
  EXPECT_EQ(MakeSafe("\x1b[31m\x7F"), "?[31m?");
  EXPECT_EQ(MakeSafe("\xC2\x9B"
                     "31m"),
            "?31m");
  EXPECT_EQ(MakeSafe("latin \xE4!"), "latin ?!");
  EXPECT_EQ(MakeSafe(std::string_view("n\0l", 3)), "n?l");
}

TEST(HttpTextTest, CutsLongTextsBetweenCharacters) {
  EXPECT_EQ(MakeSafe("abcdef", 6), "abcdef");
  EXPECT_EQ(MakeSafe("abcdefg", 6), "abcdef...");
  EXPECT_EQ(MakeSafe("abc\xC3\xA4xyz", 3), "abc...");
  EXPECT_EQ(MakeSafe("abc\xC3\xA4xyz", 4), "abc...");
  EXPECT_EQ(MakeSafe("abc\xC3\xA4xyz", 5), "abc\xC3\xA4...");
  EXPECT_EQ(MakeSafe("\xF0\x9F\x94\xA7", 3), "...");
  EXPECT_EQ(MakeSafe("x", 0), "...");
  EXPECT_EQ(MakeSafe("", 0), "");
}

TEST(HttpTextTest, LetsNoControlCharacterThrough) {
  for (int code = 0; code < 0xA0; ++code) {
    const char byte = static_cast<char>(code);
    const std::string text = code < 0x80 ? std::string(1, byte) : std::string("\xC2") + byte;
    const bool isControl = code < 0x20 || code >= 0x7F;
    const bool isBlank = code == '\t' || code == '\n' || code == '\r';
    EXPECT_EQ(MakeSafe("a" + text + "b"), isBlank ? "a b" : isControl ? "a?b" : "a" + text + "b");
  }
}

TEST(HttpTextTest, ComparesLettersWithoutCase) {
  EXPECT_TRUE(EqualsNoCase("Content-LENGTH", "content-length"));
  EXPECT_FALSE(EqualsNoCase("Content-Length", "Content-Lengt"));
  EXPECT_FALSE(EqualsNoCase("a@", "a`"));
}

TEST(HttpTextTest, SaysTimesAndSizesInWords) {
  using std::chrono::milliseconds;
  EXPECT_EQ(DescribeTime(milliseconds(10000)), "10 s");
  EXPECT_EQ(DescribeTime(milliseconds(200)), "0.2 s");
  EXPECT_EQ(DescribeTime(milliseconds(1005)), "1.005 s");
  EXPECT_EQ(DescribeBytes(1), "1 byte");
  EXPECT_EQ(DescribeBytes(0), "0 bytes");
}

}  // namespace
}  // namespace NZEPQEL20::cimxml
