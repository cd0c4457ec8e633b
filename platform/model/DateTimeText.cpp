// SPDX-License-Identifier: Apache-2.0
#include "platform/model/DateTimeText.h"

namespace NZEPQEL20 {
namespace {

constexpr std::size_t kLength = 25;
constexpr std::size_t kPoint = 14;
constexpr std::size_t kSign = 21;

bool IsDigitOrStar(char character) {
  return (character >= '0' && character <= '9') || character == '*';
}

}  // namespace

bool IsDateTimeText(std::string_view text) {
  if (text.size() != kLength || text[kPoint] != '.') return false;
  const bool isInterval = text[kSign] == ':';
  if (!isInterval && text[kSign] != '+' && text[kSign] != '-') return false;
  for (std::size_t i = 0; i < kLength; ++i) {
    if (i != kPoint && i != kSign && !IsDigitOrStar(text[i])) return false;
  }
  return !isInterval || text.substr(kSign + 1) == "000";
}

}  // namespace NZEPQEL20
