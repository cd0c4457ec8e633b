// SPDX-License-Identifier: Apache-2.0
#include "platform/model/ValueText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {
namespace {

// A number of any CIM integer type: no single C++ type holds both ends.
struct TNumber {
  bool isNegative = false;
  std::uint64_t magnitude = 0;

  friend bool operator<=(const TNumber& left, const TNumber& right) {
    if (left.isNegative != right.isNegative) return left.isNegative;
    return left.isNegative ? left.magnitude >= right.magnitude : left.magnitude <= right.magnitude;
  }
  friend bool operator==(const TNumber& left, const TNumber& right) {
    return left.isNegative == right.isNegative && left.magnitude == right.magnitude;
  }
};

// Decimal or hexadecimal, with or without a sign, and nothing else.
bool ParseNumber(std::string_view text, TNumber& number) {
  number = TNumber();
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    number.isNegative = text.front() == '-';
    text.remove_prefix(1);
  }
  int radix = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    radix = 16;
    text.remove_prefix(2);
  }
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number.magnitude, radix);
  if (number.magnitude == 0) number.isNegative = false;
  return error == std::errc() && rest == end;
}

// How well an entry of ValueMap fits; the smaller the better.
enum class EFit { kExact, kClosedRange, kOpenRange, kRest, kNone };

EFit GetNumberFit(std::string_view entry, const TNumber& number) {
  const std::string_view::size_type dots = entry.find("..");
  if (dots == std::string_view::npos) {
    TNumber exact;
    return ParseNumber(entry, exact) && exact == number ? EFit::kExact : EFit::kNone;
  }
  const std::string_view low = entry.substr(0, dots);
  const std::string_view high = entry.substr(dots + 2);
  if (low.empty() && high.empty()) return EFit::kRest;
  TNumber first;
  TNumber last;
  const bool isAbove = low.empty() || (ParseNumber(low, first) && first <= number);
  const bool isBelow = high.empty() || (ParseNumber(high, last) && number <= last);
  if (!isAbove || !isBelow) return EFit::kNone;
  return low.empty() || high.empty() ? EFit::kOpenRange : EFit::kClosedRange;
}

std::optional<std::string> FindByPosition(const std::vector<std::string>& values,
                                          const TCIMValue& value) {
  TNumber number;
  if (!ParseNumber(value.ToString(10), number) || number.isNegative) return std::nullopt;
  if (number.magnitude >= values.size()) return std::nullopt;
  return values[static_cast<std::size_t>(number.magnitude)];
}

std::optional<std::string> FindWord(const TCIMElementDeclaration& declaration,
                                    const TCIMValue& value) {
  if (declaration.values.empty() || value.IsNull()) return std::nullopt;
  const bool isInteger = IsIntegerType(value.GetType());
  if (declaration.valueMap.empty()) {
    return isInteger ? FindByPosition(declaration.values, value) : std::nullopt;
  }
  const std::string text = value.ToString(10);
  TNumber number;
  const bool isNumber = isInteger && ParseNumber(text, number);
  EFit best = EFit::kNone;
  std::optional<std::string> word;
  const auto pairs = std::min(declaration.valueMap.size(), declaration.values.size());
  for (std::size_t i = 0; i < pairs; ++i) {
    const std::string& entry = declaration.valueMap[i];
    const EFit fit =
        isNumber ? GetNumberFit(entry, number) : (entry == text ? EFit::kExact : EFit::kNone);
    if (fit >= best) continue;
    best = fit;
    word = declaration.values[i];
  }
  return word;
}

}  // namespace

std::string GetReadableText(const TCIMElementDeclaration& declaration, const TCIMValue& value) {
  if (declaration.values.empty() || value.IsNull()) return value.ToString(10);
  if (!value.IsArray()) return FindWord(declaration, value).value_or(value.ToString(10));
  std::string text;
  bool isFirst = true;
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(value)) {
    if (!isFirst) text += ",";
    isFirst = false;
    text += FindWord(declaration, element).value_or(element.ToString(10));
  }
  return text;
}

std::optional<std::string> FindNumberOf(const TCIMElementDeclaration& declaration,
                                        const std::string& word) {
  const bool isMapped = !declaration.valueMap.empty();
  for (std::size_t i = 0; i < declaration.values.size(); ++i) {
    if (!IsSameName(declaration.values[i], word)) continue;
    if (!isMapped) return std::to_string(i);
    TNumber number;
    if (i >= declaration.valueMap.size() || !ParseNumber(declaration.valueMap[i], number)) continue;
    return (number.isNegative ? "-" : "") + std::to_string(number.magnitude);
  }
  return std::nullopt;
}

}  // namespace NZEPQEL20
