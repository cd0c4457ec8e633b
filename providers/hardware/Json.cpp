// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/Json.h"

#include <algorithm>
#include <cctype>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

bool EqualsWithoutCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
  });
}

const nlohmann::json& Null() {
  static const nlohmann::json null;
  return null;
}

}  // namespace

nlohmann::json ParseJson(std::string_view text) {
  nlohmann::json value = nlohmann::json::parse(text, nullptr, false);
  return value.is_discarded() ? nlohmann::json() : value;
}

nlohmann::json ParseLastDocument(std::string_view text) {
  std::size_t end = text.size();
  while (end > 0) {
    // A report that is still being written has no closing line; the one before it counts then.
    const std::size_t close = text.substr(0, end).rfind("\n}");
    if (close == std::string_view::npos) break;
    std::size_t open = text.substr(0, close).rfind("\n{");
    open = open == std::string_view::npos ? 0 : open + 1;
    if (text[open] == '{') {
      nlohmann::json value = ParseJson(text.substr(open, close + 2 - open));
      if (value.is_object()) return value;
    }
    end = close;
  }
  return {};
}

const nlohmann::json& FindMember(const nlohmann::json& object,
                                 std::initializer_list<std::string_view> path) {
  const nlohmann::json* current = &object;
  for (const std::string_view step : path) {
    if (!current->is_object()) return Null();
    auto member = current->begin();
    while (member != current->end() && !EqualsWithoutCase(member.key(), step)) ++member;
    if (member == current->end()) return Null();
    current = &*member;
  }
  return *current;
}

std::optional<std::uint64_t> ToUnsigned(const nlohmann::json& value) {
  if (!value.is_number_unsigned()) return std::nullopt;
  return value.get<std::uint64_t>();
}

std::string ToText(const nlohmann::json& value) {
  return value.is_string() ? CleanText(value.get_ref<const std::string&>()) : std::string();
}

bool IsTrue(const nlohmann::json& value) {
  return value.is_boolean() && value.get<bool>();
}

bool IsFalse(const nlohmann::json& value) {
  return value.is_boolean() && !value.get<bool>();
}

}  // namespace hardware
