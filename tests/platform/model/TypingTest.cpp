// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"
#include "platform/model/Typing.h"

namespace NZEPQEL20 {
namespace {

/// What a value becomes where something is declared; nothing when it cannot be.
struct TGivenRow {
  const char* name;
  ECIMType type;
  bool isArray;
  TCIMValue given;
  std::optional<TCIMValue> converted;
};

void PrintTo(const TGivenRow& row, std::ostream* out) {
  *out << row.name;
}

TCIMElementDeclaration Declare(ECIMType type, bool isArray) {
  TCIMElementDeclaration declared;
  declared.name = "Level";
  declared.type = type;
  declared.isArray = isArray;
  declared.valueMap = {"0", "0x05", "6..9", "-2", "9"};
  declared.values = {"Unknown", "Low", "Some", "Below", "High"};
  return declared;
}

TCIMValue Texts(std::initializer_list<const char*> texts) {
  TCIMValue::TArray elements;
  for (const char* text : texts) elements.emplace_back(text);
  return TCIMValue::Array(ECIMType::kString, elements);
}

TCIMValue Numbers(std::initializer_list<std::uint16_t> numbers) {
  TCIMValue::TArray elements;
  for (const std::uint16_t number : numbers) elements.push_back(TCIMValue::UInt16(number));
  return TCIMValue::Array(ECIMType::kUInt16, elements);
}

class GivenTest : public testing::TestWithParam<TGivenRow> {};

TEST_P(GivenTest, BecomesWhatIsDeclared) {
  const TGivenRow& row = GetParam();
  const TCIMElementDeclaration declared = Declare(row.type, row.isArray);
  if (row.converted) {
    EXPECT_EQ(ConvertGiven(declared, row.given, "X.Level"), *row.converted);
    return;
  }
  try {
    ConvertGiven(declared, row.given, "X.Level");
    ADD_FAILURE() << "converted";
  } catch (const TQELException& failure) {
    EXPECT_EQ(failure.GetStatusCode().GetValue(), TQELStatusCode::kTypeMismatch);
    EXPECT_EQ(std::string(failure.what()).find("X.Level should be a "), 0U) << failure.what();
  }
}

constexpr ECIMType kNumber = ECIMType::kUInt16;
const TCIMReference kPath("root/x", "A_Thing", {{"Id", TCIMValue("1")}});

INSTANTIATE_TEST_SUITE_P(
    Values, GivenTest,
    testing::Values(
        TGivenRow{"Same", kNumber, false, TCIMValue::UInt16(3), TCIMValue::UInt16(3)},
        TGivenRow{"Digits", kNumber, false, "65535", TCIMValue::UInt16(65535)},
        TGivenRow{"TooLarge", kNumber, false, "65536", std::nullopt},
        TGivenRow{"Below", kNumber, false, "-1", std::nullopt},
        TGivenRow{"Empty", kNumber, false, "", std::nullopt},
        TGivenRow{"Word", kNumber, false, "High", TCIMValue::UInt16(9)},
        TGivenRow{"WordInOtherCase", kNumber, false, "HIGH", TCIMValue::UInt16(9)},
        TGivenRow{"HexadecimalMap", kNumber, false, "Low", TCIMValue::UInt16(5)},
        TGivenRow{"WordOfARange", kNumber, false, "Some", std::nullopt},
        TGivenRow{"NegativeWord", kNumber, false, "Below", std::nullopt},
        TGivenRow{"SignedWord", ECIMType::kSInt8, false, "Below",
                  TCIMValue::Signed(ECIMType::kSInt8, -2)},
        TGivenRow{"NoWord", kNumber, false, "purple", std::nullopt},
        TGivenRow{"Words", kNumber, true, Texts({"Low", "7"}), Numbers({5, 7})},
        TGivenRow{"OneNoWord", kNumber, true, Texts({"Low", "purple"}), std::nullopt},
        TGivenRow{"ScalarForArray", kNumber, true, "Low", Numbers({5})},
        TGivenRow{"ArrayOfOne", kNumber, false, Texts({"High"}), TCIMValue::UInt16(9)},
        TGivenRow{"ArrayOfTwo", kNumber, false, Numbers({5, 7}), std::nullopt},
        TGivenRow{"Wider", kNumber, false, TCIMValue::UInt32(7), TCIMValue::UInt16(7)},
        TGivenRow{"TooWide", kNumber, false, TCIMValue::UInt32(70000), std::nullopt},
        TGivenRow{"Null", kNumber, false, TCIMValue::Null(ECIMType::kString),
                  TCIMValue::Null(ECIMType::kString)},
        TGivenRow{"WordAsText", ECIMType::kString, false, "Low", "Low"},
        TGivenRow{"NumberAsText", ECIMType::kString, false, TCIMValue::UInt16(7), "7"},
        TGivenRow{"Path", ECIMType::kReference, false, "root/x:A_Thing.Id=\"1\"", TCIMValue(kPath)},
        TGivenRow{"NoPath", ECIMType::kReference, false, "a rug", std::nullopt},
        TGivenRow{"NumberAsPath", ECIMType::kReference, false, TCIMValue::UInt16(7), std::nullopt},
        TGivenRow{"UndeclaredPath", ECIMType::kString, false, TCIMValue(kPath), TCIMValue(kPath)},
        TGivenRow{"Embedded", ECIMType::kInstance, false, "instance of", "instance of"},
        TGivenRow{"NoTime", ECIMType::kDateTime, false, "noon", std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(TypingTest, WithoutAValueMapAWordIsItsPosition) {
  TCIMElementDeclaration declared = Declare(kNumber, false);
  declared.valueMap.clear();
  EXPECT_EQ(ConvertGiven(declared, "High", "X"), TCIMValue::UInt16(4));
}

TEST(TypingTest, ANumberCountsBeforeAWordThatLooksLikeOne) {
  TCIMElementDeclaration declared = Declare(kNumber, false);
  declared.values = {"5", "0"};
  EXPECT_EQ(ConvertGiven(declared, "5", "X"), TCIMValue::UInt16(5));
}

TEST(TypingTest, AWordBeyondTheValueMapHasNoNumber) {
  TCIMElementDeclaration declared = Declare(kNumber, false);
  declared.valueMap = {"3"};
  EXPECT_THROW(ConvertGiven(declared, "High", "X"), TQELException);
  EXPECT_EQ(ConvertGiven(declared, "Unknown", "X"), TCIMValue::UInt16(3));
}

}  // namespace
}  // namespace NZEPQEL20
