// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TChallenge.h"

#include <algorithm>
#include <string_view>

#include "platform/cimxml/HttpText.h"

namespace NZEPQEL20::cimxml {
namespace {

// The pieces between the commas that are not inside quotes.
std::vector<std::string_view> SplitAtCommas(std::string_view text) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  bool isQuoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isQuoted && text[i] == '\\') {
      ++i;
    } else if (text[i] == '"') {
      isQuoted = !isQuoted;
    } else if (text[i] == ',' && !isQuoted) {
      pieces.push_back(Trim(text.substr(start, i - start)));
      start = i + 1;
    }
  }
  pieces.push_back(Trim(text.substr(start)));
  return pieces;
}

// `realm="x"` goes on with the challenge before it; `Basic realm="x"` starts a new one.
bool IsParameter(std::string_view piece) {
  const std::size_t end = piece.find_first_of(" \t=\"");
  if (end == std::string_view::npos) return false;
  const std::size_t next = piece.find_first_not_of(" \t", end);
  return next != std::string_view::npos && piece[next] == '=';
}

}  // namespace

std::vector<TChallenge> ReadChallenges(const std::vector<std::string>& fields) {
  std::vector<TChallenge> challenges;
  for (const std::string& field : fields) {
    for (const std::string_view piece : SplitAtCommas(field)) {
      if (piece.empty()) continue;
      if (IsParameter(piece) && !challenges.empty()) {
        challenges.back().rest.append(", ").append(piece);
        continue;
      }
      const std::size_t end = std::min(piece.find_first_of(" \t"), piece.size());
      challenges.push_back(
          {std::string(piece.substr(0, end)), std::string(Trim(piece.substr(end)))});
    }
  }
  return challenges;
}

std::string ListSchemes(const std::vector<std::string>& fields) {
  std::string names;
  for (const TChallenge& challenge : ReadChallenges(fields)) {
    if (!names.empty()) names += ", ";
    names += MakeSafe(challenge.scheme, 40);
  }
  return MakeSafe(names, 200);
}

}  // namespace NZEPQEL20::cimxml
