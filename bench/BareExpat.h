// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>
#include <expat.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>

namespace bench {

/// Has expat alone parse `document` and look at each of its parts: the least that any reader of
/// the same bytes costs. They are handed over at once, or in pieces as a reply arrives.
inline void ParseBare(const std::string& document,
                      std::size_t piece = std::numeric_limits<std::size_t>::max()) {
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate(nullptr), &XML_ParserFree);
  XML_SetElementHandler(
      parser.get(),
      [](void*, const XML_Char* name, const XML_Char** pairs) {
        benchmark::DoNotOptimize(name);
        benchmark::DoNotOptimize(pairs);
      },
      [](void*, const XML_Char* name) { benchmark::DoNotOptimize(name); });
  XML_SetCharacterDataHandler(parser.get(), [](void*, const XML_Char* text, int length) {
    benchmark::DoNotOptimize(text);
    benchmark::DoNotOptimize(length);
  });
  for (std::size_t at = 0; at < document.size();) {
    const std::size_t size = std::min(piece, document.size() - at);
    const char* start = document.data() + at;
    at += size;
    XML_Parse(parser.get(), start, static_cast<int>(size), at == document.size() ? 1 : 0);
  }
}

}  // namespace bench
