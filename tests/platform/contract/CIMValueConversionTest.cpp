// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

// What each conversion makes of a value; nothing where it must refuse.
struct TNumberRow {
  const char* name;
  TCIMValue value;
  std::optional<unsigned short> asShort;
  std::optional<unsigned int> asInt;
  std::optional<std::uint64_t> asUnsigned;
  std::optional<std::int64_t> asSigned;
};

void PrintTo(const TNumberRow& row, std::ostream* out) {
  *out << row.name;
}

template <typename TConvert>
auto Try(TConvert convert) -> std::optional<decltype(convert())> {
  try {
    return convert();
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kTypeMismatch)) << e.what();
    return std::nullopt;
  }
}

class TCIMValueNumberTest : public testing::TestWithParam<TNumberRow> {};

TEST_P(TCIMValueNumberTest, BecomesANumberOrIsRefused) {
  const TNumberRow& row = GetParam();
  EXPECT_EQ(Try([&row] { return static_cast<unsigned short>(row.value); }), row.asShort);
  EXPECT_EQ(Try([&row] { return static_cast<unsigned int>(row.value); }), row.asInt);
  EXPECT_EQ(Try([&row] { return row.value.ToUnsigned(); }), row.asUnsigned);
  EXPECT_EQ(Try([&row] { return row.value.ToSigned(); }), row.asSigned);
}

INSTANTIATE_TEST_SUITE_P(
    Values, TCIMValueNumberTest,
    testing::Values(
        TNumberRow{"NULL", TCIMValue(), 0, 0, 0, 0},
        TNumberRow{"NULL array", TCIMValue::Null(ECIMType::kString, true), 0, 0, 0, 0},
        TNumberRow{"true", TCIMValue::Boolean(true), 1, 1, 1, 1},
        TNumberRow{"false", TCIMValue::Boolean(false), 0, 0, 0, 0},
        TNumberRow{"65535", TCIMValue::UInt32(65535), 65535, 65535, 65535, 65535},
        TNumberRow{"65536", TCIMValue::UInt32(65536), {}, 65536, 65536, 65536},
        TNumberRow{"2 to 32",
                   TCIMValue::Unsigned(ECIMType::kUInt64, 4294967296U),
                   {},
                   {},
                   4294967296U,
                   4294967296},
        TNumberRow{
            "2 to 64 less 1", TCIMValue::Unsigned(ECIMType::kUInt64, kMost), {}, {}, kMost, {}},
        TNumberRow{"-1", TCIMValue::Signed(ECIMType::kSInt8, -1), {}, {}, {}, -1},
        TNumberRow{"least", TCIMValue::Signed(ECIMType::kSInt64, kLeast), {}, {}, {}, kLeast},
        TNumberRow{"char16", TCIMValue::Char16(65), 65, 65, 65, 65},
        TNumberRow{"whole real", TCIMValue::Real64(7.0), 7, 7, 7, 7},
        TNumberRow{"negative real", TCIMValue::Real64(-7.0), {}, {}, {}, -7},
        TNumberRow{"broken real", TCIMValue::Real64(7.5), {}, {}, {}, {}},
        TNumberRow{"2 to 64 as real", TCIMValue::Real64(18446744073709551616.0), {}, {}, {}, {}},
        TNumberRow{
            "infinite", TCIMValue::Real64(std::numeric_limits<double>::infinity()), {}, {}, {}, {}},
        TNumberRow{"no number at all",
                   TCIMValue::Real64(std::numeric_limits<double>::quiet_NaN()),
                   {},
                   {},
                   {},
                   {}},
        TNumberRow{"text", TCIMValue("42"), 42, 42, 42, 42},
        TNumberRow{"negative text", TCIMValue("-42"), {}, {}, {}, -42},
        TNumberRow{"text beyond uint16", TCIMValue("70000"), {}, 70000, 70000, 70000},
        TNumberRow{"text beyond 64 bits", TCIMValue("18446744073709551616"), {}, {}, {}, {}},
        TNumberRow{"empty text", TCIMValue(""), {}, {}, {}, {}},
        TNumberRow{"text with a tail", TCIMValue("42 "), {}, {}, {}, {}},
        TNumberRow{"text with a blank", TCIMValue(" 42"), {}, {}, {}, {}},
        TNumberRow{"hexadecimal text", TCIMValue("0x10"), {}, {}, {}, {}},
        TNumberRow{"words", TCIMValue("many"), {}, {}, {}, {}},
        TNumberRow{"datetime", TCIMValue::DateTime("00000001000000.000000:000"), {}, {}, {}, {}},
        TNumberRow{"reference", TCIMValue(TCIMReference("root", "C")), {}, {}, {}, {}},
        TNumberRow{
            "array", TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(1)}), {}, {}, {}, {}}));

std::string WhatRefuses(const TCIMValue& value) {
  try {
    static_cast<void>(static_cast<unsigned short>(value));
  } catch (const TQELException& e) {
    return e.what();
  }
  return {};
}

TEST(CIMValueConversionTest, ARefusalNamesBothTypes) {
  const std::string refusal = WhatRefuses(TCIMValue::UInt32(70000));
  EXPECT_NE(refusal.find("uint32"), std::string::npos) << refusal;
  EXPECT_NE(refusal.find("uint16"), std::string::npos) << refusal;
  EXPECT_NE(refusal.find("70000"), std::string::npos) << refusal;
}

TEST(CIMValueConversionTest, ARefusalShowsOnlyTheBeginningOfALongText) {
  const std::string refusal = WhatRefuses(TCIMValue(std::string(1000000, 'x')));
  EXPECT_NE(refusal.find("xxx..."), std::string::npos);
  EXPECT_LT(refusal.size(), 300U);
}

TEST(CIMValueConversionTest, ReadsReals) {
  EXPECT_EQ(TCIMValue().ToReal(), 0.0);
  EXPECT_EQ(TCIMValue("2.5").ToReal(), 2.5);
  EXPECT_EQ(TCIMValue::Real32(0.5F).ToReal(), 0.5);
  EXPECT_EQ(TCIMValue::Signed(ECIMType::kSInt8, -3).ToReal(), -3.0);
  EXPECT_EQ(TCIMValue::Unsigned(ECIMType::kUInt64, kMost).ToReal(), 18446744073709551616.0);
  for (const char* text : {"", "2.5x", "inf", "nan", "one"}) {
    EXPECT_THROW(TCIMValue(text).ToReal(), TQELException) << text;
  }
  EXPECT_THROW(TCIMValue(TCIMReference("root", "C")).ToReal(), TQELException);
}

TEST(CIMValueConversionTest, ReadsBooleans) {
  EXPECT_FALSE(TCIMValue().ToBoolean());
  EXPECT_TRUE(TCIMValue("True").ToBoolean());
  EXPECT_FALSE(TCIMValue("FALSE").ToBoolean());
  EXPECT_TRUE(TCIMValue::UInt16(1).ToBoolean());
  EXPECT_FALSE(TCIMValue::Signed(ECIMType::kSInt8, 0).ToBoolean());
  EXPECT_THROW(TCIMValue::UInt16(2).ToBoolean(), TQELException);
  EXPECT_THROW(TCIMValue("yes").ToBoolean(), TQELException);
}

TEST(CIMValueConversionTest, EveryValueBecomesTextAsItPrints) {
  EXPECT_EQ(static_cast<std::string>(TCIMValue()), "");
  EXPECT_EQ(static_cast<std::string>(TCIMValue::UInt16(10)), "10");
  EXPECT_EQ(static_cast<std::string>(
                TCIMValue::Array(ECIMType::kString, {TCIMValue("a"), TCIMValue("b")})),
            "a,b");
}

TEST(CIMValueConversionTest, TextBecomesAReferenceByBeingRead) {
  EXPECT_TRUE(static_cast<TCIMReference>(TCIMValue()).IsNull());
  EXPECT_EQ(static_cast<TCIMReference>(TCIMValue("root:C.K=\"v\"")).GetClassName(), "C");
  EXPECT_EQ(static_cast<TCIMReference>(TCIMValue(TCIMReference("root", "C"))),
            TCIMReference("root", "C"));
  EXPECT_THROW(static_cast<void>(static_cast<TCIMReference>(TCIMValue("root:C.K="))),
               TQELException);
  EXPECT_THROW(static_cast<void>(static_cast<TCIMReference>(TCIMValue::UInt16(1))), TQELException);
  EXPECT_THROW(static_cast<void>(static_cast<TCIMReference>(
                   TCIMValue::Array(ECIMType::kString, {TCIMValue("C")}))),
               TQELException);
}

TEST(CIMValueConversionTest, OnlyArraysBecomeVectors) {
  using TVector = std::vector<TCIMValue>;
  EXPECT_TRUE(static_cast<TVector>(TCIMValue()).empty());
  EXPECT_EQ(static_cast<TVector>(TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(6)})),
            TVector{TCIMValue::UInt16(6)});
  EXPECT_THROW(static_cast<void>(static_cast<TVector>(TCIMValue::UInt16(6))), TQELException);
}

TEST(CIMValueConversionTest, OnlyInstancesBecomeInstances) {
  const auto data = std::make_shared<const TCIMInstanceData>();
  EXPECT_EQ(TCIMValue::Instance(data).ToInstance(), data);
  EXPECT_EQ(TCIMValue().ToInstance(), nullptr);
  EXPECT_THROW(TCIMValue("text").ToInstance(), TQELException);
}

}  // namespace
}  // namespace NZEPQEL20
