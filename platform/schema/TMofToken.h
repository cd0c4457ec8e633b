// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace NZEPQEL20 {

/// A place in a MOF text: line and column from 1, the column in characters.
struct TMofPosition {
  unsigned int line = 0;
  unsigned int column = 0;
};

/// Kinds of MOF tokens. Keywords are identifiers: only their place makes them keywords.
enum class EMofToken {
  kEnd,
  kIdentifier,
  kAlias,    ///< `$Name`; the text has the `$`.
  kInteger,  ///< Any base; see `magnitude`, `isNegative` and `isOverflow`.
  kReal,
  kString,  ///< One literal, escapes replaced; adjacent ones are joined by the parser.
  kChar,    ///< `magnitude` is its UCS-2 unit.
  kSymbol,  ///< One of `{}()[],;:=#`.
  kBad      ///< Not MOF; `value` says why.
};

/// One token of a MOF text.
struct TMofToken {
  EMofToken kind = EMofToken::kEnd;
  TMofPosition position;
  std::string_view text;  ///< As spelled; valid as long as the text that is read.
  std::string value;      ///< Content of a string, reason of a bad token.
  std::uint64_t magnitude = 0;
  bool isNegative = false;
  bool isOverflow = false;  ///< The integer needs more than 64 bits.
  double real = 0;
};

}  // namespace NZEPQEL20
