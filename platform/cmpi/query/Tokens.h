// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace NZEPQEL20::cmpi {

/// What a piece of a query is.
enum class EToken {
  kName,     ///< Also the words of the language.
  kText,     ///< In quotes; `text` is what they hold.
  kInteger,  ///< `text` in decimal digits with a sign, or in hexadecimal ones after "0x".
  kReal,
  kSign,  ///< An operator, a bracket, a comma, a dot or an asterisk.
  kEnd
};

struct TToken {
  EToken kind = EToken::kEnd;
  std::string text;
  std::size_t at = 0;  ///< Counted in bytes from 1.
};

/// Whether `token` is the word `word`, in any case.
bool IsWord(const TToken& token, const char* word);
inline bool IsSign(const TToken& token, const char* sign) {
  return token.kind == EToken::kSign && token.text == sign;
}

/// The pieces of `query`, the last one being kEnd.
/// Errors: TBrokerFault (CMPI_RC_ERR_INVALID_QUERY) with the position of what cannot be read, and
/// for a query of more than 64 KiB.
std::vector<TToken> Tokenize(const std::string& query);

/// Refuses a query because of what stands at `at`.
[[noreturn]] void RefuseQuery(std::size_t at, const std::string& reason);

}  // namespace NZEPQEL20::cmpi
