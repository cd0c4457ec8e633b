// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <ostream>
#include <string>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TCIMReference.h"
#include "platform/contract/TCIMValue.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

std::shared_ptr<const TCIMInstanceData> MakeInstance(const std::string& className,
                                                     const std::string& size) {
  TCIMInstanceData data;
  data.path.SetClassName(className);
  data.Set("Size", size);
  data.Set("Nothing", TCIMValue::Null(ECIMType::kUInt8));
  return std::make_shared<const TCIMInstanceData>(data);
}

struct TTextRow {
  const char* name;
  TCIMValue value;
  unsigned char radix;
  std::string text;
};

void PrintTo(const TTextRow& row, std::ostream* out) {
  *out << row.name;
}

class TCIMValueTextTest : public testing::TestWithParam<TTextRow> {};

TEST_P(TCIMValueTextTest, ReadsAsTheTableSays) {
  EXPECT_EQ(GetParam().value.ToString(GetParam().radix), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Values, TCIMValueTextTest,
    testing::Values(
        TTextRow{"untyped NULL", TCIMValue(), 10, ""},
        TTextRow{"typed NULL", TCIMValue::Null(ECIMType::kBoolean), 10, ""},
        TTextRow{"NULL array", TCIMValue::Null(ECIMType::kUInt8, true), 10, ""},
        TTextRow{"true", TCIMValue::Boolean(true), 10, "TRUE"},
        TTextRow{"false", TCIMValue::Boolean(false), 16, "FALSE"},
        TTextRow{"largest uint64",
                 TCIMValue::Unsigned(ECIMType::kUInt64, std::numeric_limits<std::uint64_t>::max()),
                 10, "18446744073709551615"},
        TTextRow{"uint64 in twos",
                 TCIMValue::Unsigned(ECIMType::kUInt64, std::numeric_limits<std::uint64_t>::max()),
                 2, std::string(64, '1')},
        TTextRow{"uint16 in sixteens", TCIMValue::UInt16(48879), 16, "beef"},
        TTextRow{"uint16 in thirty-sixes", TCIMValue::UInt16(35), 36, "z"},
        TTextRow{"radix 0 is 10", TCIMValue::UInt16(48879), 0, "48879"},
        TTextRow{"radix 1 is 10", TCIMValue::UInt16(48879), 1, "48879"},
        TTextRow{"radix 37 is 10", TCIMValue::UInt16(48879), 37, "48879"},
        TTextRow{"radix 255 is 10", TCIMValue::UInt16(48879), 255, "48879"},
        TTextRow{"smallest sint64",
                 TCIMValue::Signed(ECIMType::kSInt64, std::numeric_limits<std::int64_t>::min()), 10,
                 "-9223372036854775808"},
        TTextRow{"sint8 in sixteens", TCIMValue::Signed(ECIMType::kSInt8, -128), 16, "-80"},
        TTextRow{"real32 in its shortest form", TCIMValue::Real32(0.1F), 10, "0.1"},
        TTextRow{"real64 in its shortest form", TCIMValue::Real64(0.1), 10, "0.1"},
        TTextRow{"real64 with all digits", TCIMValue::Real64(1.0 / 3.0), 10, "0.3333333333333333"},
        TTextRow{"whole real", TCIMValue::Real64(-2.0), 10, "-2"},
        TTextRow{"string", TCIMValue("a,\"b\""), 10, "a,\"b\""},
        TTextRow{"string with NUL and stray bytes", TCIMValue(std::string("a\0\xff", 3)), 10,
                 std::string("a\0\xff", 3)},
        TTextRow{"null pointer", TCIMValue(static_cast<const char*>(nullptr)), 10, ""},
        TTextRow{"datetime", TCIMValue::DateTime("20260131120000.000000+060"), 10,
                 "20260131120000.000000+060"},
        TTextRow{"one-byte char16", TCIMValue::Char16('A'), 10, "A"},
        TTextRow{"two-byte char16", TCIMValue::Char16(0xE9), 10, "\xC3\xA9"},
        TTextRow{"three-byte char16", TCIMValue::Char16(0x20AC), 10, "\xE2\x82\xAC"},
        TTextRow{"half a surrogate pair", TCIMValue::Char16(0xD800), 10, "\xEF\xBF\xBD"},
        TTextRow{"reference", TCIMValue(TCIMReference("root", "C", {{"K", "v"}})), 10,
                 "root:C.K=\"v\""},
        TTextRow{"instance", TCIMValue::Instance(MakeInstance("C", "7")), 10,
                 "instance of C { Size = 7; Nothing = NULL; }"},
        TTextRow{"array with a gap",
                 TCIMValue::Array(ECIMType::kUInt16,
                                  {TCIMValue::UInt16(10), TCIMValue(), TCIMValue::UInt16(11)}),
                 16, "a,,b"},
        TTextRow{"empty array", TCIMValue::Array(ECIMType::kString, {}), 10, ""}));

TEST(CIMValueTest, KnowsNullFromEmpty) {
  EXPECT_TRUE(TCIMValue().IsNull());
  EXPECT_TRUE(TCIMValue(static_cast<const char*>(nullptr)).IsNull());
  EXPECT_TRUE(TCIMValue::Instance(nullptr).IsNull());
  EXPECT_FALSE(TCIMValue("").IsNull());
  EXPECT_FALSE(TCIMValue::Array(ECIMType::kString, {}).IsNull());
}

TEST(CIMValueTest, KeepsTheTypeOfWhatIsNull) {
  const TCIMValue value = TCIMValue::Null(ECIMType::kUInt32, true);
  EXPECT_EQ(value.GetType(), ECIMType::kUInt32);
  EXPECT_TRUE(value.IsArray());
  EXPECT_EQ(TCIMValue::Instance(nullptr).GetType(), ECIMType::kInstance);
}

TEST(CIMValueTest, NamesEveryType) {
  EXPECT_STREQ(GetTypeName(ECIMType::kNone), "null");
  EXPECT_STREQ(GetTypeName(ECIMType::kUInt16), "uint16");
  EXPECT_STREQ(GetTypeName(ECIMType::kReal64), "real64");
  EXPECT_STREQ(GetTypeName(ECIMType::kDateTime), "datetime");
  EXPECT_STREQ(GetTypeName(ECIMType::kInstance), "instance");
}

TEST(CIMValueTest, RefusesNumbersThatTheirTypeCannotHold) {
  EXPECT_THROW(TCIMValue::Unsigned(ECIMType::kUInt8, 256), TQELException);
  EXPECT_THROW(TCIMValue::Unsigned(ECIMType::kUInt32, 4294967296U), TQELException);
  EXPECT_THROW(TCIMValue::Signed(ECIMType::kSInt8, 128), TQELException);
  EXPECT_THROW(TCIMValue::Signed(ECIMType::kSInt16, -32769), TQELException);
  EXPECT_NO_THROW(TCIMValue::Unsigned(ECIMType::kUInt8, 255));
  EXPECT_NO_THROW(TCIMValue::Signed(ECIMType::kSInt16, -32768));
}

TEST(CIMValueTest, RefusesATypeOfTheOtherKind) {
  EXPECT_THROW(TCIMValue::Unsigned(ECIMType::kSInt8, 1), TQELException);
  EXPECT_THROW(TCIMValue::Signed(ECIMType::kUInt8, 1), TQELException);
  EXPECT_THROW(TCIMValue::Unsigned(ECIMType::kString, 1), TQELException);
}

TEST(CIMValueTest, RefusesElementsOfAnotherType) {
  try {
    TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(1), TCIMValue("two")});
    FAIL() << "an array took an element of another type";
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kTypeMismatch));
    EXPECT_NE(std::string(e.what()).find("string"), std::string::npos) << e.what();
    EXPECT_NE(std::string(e.what()).find("uint16"), std::string::npos) << e.what();
  }
  EXPECT_THROW(TCIMValue::Array(ECIMType::kUInt16,
                                {TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(1)})}),
               TQELException);
}

TEST(CIMValueTest, ComparesByTypeAndValue) {
  EXPECT_EQ(TCIMValue("pegasus"), TCIMValue(std::string("pegasus")));
  EXPECT_NE(TCIMValue("pegasus"), TCIMValue("Pegasus"));
  EXPECT_NE(TCIMValue("1"), TCIMValue::UInt16(1));
  EXPECT_NE(TCIMValue::UInt16(1), TCIMValue::UInt32(1));
  EXPECT_NE(TCIMValue::Boolean(true), TCIMValue::Boolean(false));
  EXPECT_EQ(TCIMValue(), TCIMValue());
  EXPECT_NE(TCIMValue(), TCIMValue(""));
  EXPECT_NE(TCIMValue("a"), TCIMValue::DateTime("a"));
}

TEST(CIMValueTest, ComparesArraysByTheirElements) {
  const auto array = [](std::uint16_t last) {
    return TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(1), TCIMValue::UInt16(last)});
  };
  EXPECT_EQ(array(2), array(2));
  EXPECT_NE(array(2), array(3));
  EXPECT_NE(array(2), TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(1)}));
  EXPECT_NE(TCIMValue::Null(ECIMType::kUInt16, true), TCIMValue::Array(ECIMType::kUInt16, {}));
}

TEST(CIMValueTest, ComparesReferencesByPathAndInstancesByContent) {
  EXPECT_EQ(TCIMValue(TCIMReference("root", "C")), TCIMValue(TCIMReference("root", "C")));
  EXPECT_NE(TCIMValue(TCIMReference("root", "C")), TCIMValue(TCIMReference("root", "D")));
  EXPECT_EQ(TCIMValue::Instance(MakeInstance("C", "1")),
            TCIMValue::Instance(MakeInstance("c", "1")));
  EXPECT_NE(TCIMValue::Instance(MakeInstance("C", "1")),
            TCIMValue::Instance(MakeInstance("C", "2")));
  EXPECT_NE(TCIMValue::Instance(MakeInstance("C", "1")),
            TCIMValue::Instance(MakeInstance("D", "1")));
}

}  // namespace
}  // namespace NZEPQEL20
