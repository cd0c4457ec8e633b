// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "platform/model/ValueText.h"

namespace NZEPQEL20 {
namespace {

using TTexts = std::vector<std::string>;

struct TWordRow {
  const char* name;
  TTexts valueMap;
  TTexts values;
  TCIMValue value;
  std::string text;
};

void PrintTo(const TWordRow& row, std::ostream* out) {
  *out << row.name;
}

TCIMValue Small(std::uint16_t number) {
  return TCIMValue::UInt16(number);
}
TCIMValue Signed(std::int16_t number) {
  return TCIMValue::Signed(ECIMType::kSInt16, number);
}

class TValueTextTest : public testing::TestWithParam<TWordRow> {};

TEST_P(TValueTextTest, ReadsAsTheDeclarationSays) {
  TCIMElementDeclaration declaration;
  declaration.valueMap = GetParam().valueMap;
  declaration.values = GetParam().values;
  EXPECT_EQ(GetReadableText(declaration, GetParam().value), GetParam().text);
}

const TTexts kMap{"..", "10..20", "15", "30..", "0x1000", "..1"};
const TTexts kWords{"rest", "closed", "exact", "above", "hex", "below"};

INSTANTIATE_TEST_SUITE_P(
    Words, TValueTextTest,
    testing::Values(
        TWordRow{"no words at all", {"1"}, {}, Small(1), "1"},
        TWordRow{"exact before range", kMap, kWords, Small(15), "exact"},
        TWordRow{"closed range", kMap, kWords, Small(10), "closed"},
        TWordRow{"closed range's other end", kMap, kWords, Small(20), "closed"},
        TWordRow{"open above", kMap, kWords, Small(31), "above"},
        TWordRow{"open above's end", kMap, kWords, Small(65535), "above"},
        TWordRow{"hexadecimal before open range", kMap, kWords, Small(4096), "hex"},
        TWordRow{"open below", kMap, kWords, Small(0), "below"},
        TWordRow{"rest", kMap, kWords, Small(25), "rest"},
        TWordRow{"NULL", kMap, kWords, TCIMValue::Null(ECIMType::kUInt16), ""},
        TWordRow{"unmapped", {"1", "2"}, {"a", "b"}, Small(3), "3"},
        TWordRow{"negative", {"-7", "7"}, {"minus", "plus"}, Signed(-7), "minus"},
        TWordRow{"negative range", {"-7..-3"}, {"cold"}, Signed(-5), "cold"},
        TWordRow{"outside a negative range", {"-7..-3"}, {"cold"}, Signed(-8), "-8"},
        TWordRow{"largest number",
                 {"18446744073709551615"},
                 {"all"},
                 TCIMValue::Unsigned(ECIMType::kUInt64, std::numeric_limits<std::uint64_t>::max()),
                 "all"},
        TWordRow{"by position", {}, {"zero", "one"}, Small(1), "one"},
        TWordRow{"beyond the last position", {}, {"zero", "one"}, Small(2), "2"},
        TWordRow{"negative position", {}, {"zero"}, Signed(-1), "-1"},
        TWordRow{"text by text", {"a..b", "x"}, {"range", "ex"}, TCIMValue("a..b"), "range"},
        TWordRow{"text within a range's ends", {"1..3"}, {"range"}, TCIMValue("2"), "2"},
        TWordRow{"more words than entries", {"1"}, {"a", "b"}, Small(2), "2"},
        TWordRow{"more entries than words", {"1", "2"}, {"a"}, Small(2), "2"},
        TWordRow{"garbage entries", {"", "x", "1..x", "..-", "5..1"}, kWords, Small(1), "1"},
        TWordRow{"boolean without a map", {}, {"no", "yes"}, TCIMValue::Boolean(true), "TRUE"},
        TWordRow{"array",
                 {"1", "2"},
                 {"a", "b"},
                 TCIMValue::Array(ECIMType::kUInt16, {Small(2), Small(9), TCIMValue(), Small(1)}),
                 "b,9,,a"}));

}  // namespace
}  // namespace NZEPQEL20
