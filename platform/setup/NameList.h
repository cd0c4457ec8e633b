// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

namespace NZEPQEL20::setup {

/// The first `shown` of some names in one line, and how many there are more: "a, b, c and 2 more".
template <class TNames>
std::string ListNames(const TNames& names, std::size_t shown = 3) {
  std::string text;
  std::size_t count = 0;
  for (const std::string& name : names) {
    if (++count > shown) break;
    text += (count > 1 ? ", " : "") + name;
  }
  if (names.size() <= shown) return text;
  return text + " and " + std::to_string(names.size() - shown) + " more";
}

}  // namespace NZEPQEL20::setup
