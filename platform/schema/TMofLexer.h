// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/schema/TMofProblems.h"
#include "platform/schema/TMofToken.h"

namespace NZEPQEL20 {

/// Cuts a MOF text into tokens.
///
/// Every call makes progress until the end, whatever the text holds: what is no MOF comes as a
/// kBad token. Comments and white space (form feed, control-Z, no-break spaces and byte order marks
/// among it) are passed over; LF,
/// CR LF and CR each end a line.
class TMofLexer {
 public:
  /// `text` is UTF-8 and must outlive the lexer and its tokens. Warnings go to `problems` under
  /// the name `file`.
  TMofLexer(std::string_view text, std::string file, TMofProblems& problems);

  TMofToken Next();

  /// While on, backslashes in strings are plain characters, as include paths have them.
  void SetRawStrings(bool isRaw) { m_isRaw = isRaw; }

 private:
  char At(std::size_t ahead = 0) const {
    return m_next + ahead < m_text.size() ? m_text[m_next + ahead] : '\0';
  }
  bool IsEnd() const { return m_next >= m_text.size(); }

  /// Bytes of the character at the next place, if it is one beyond ASCII that shows as nothing.
  std::size_t GetWideBlank() const;
  /// Whether a name goes on at the next place.
  bool IsInName() const;
  /// False, with `token` made a bad one, for a comment that is never closed.
  bool SkipBlanks(TMofToken& token);
  bool SkipBlockComment();
  void SkipLineEnd();
  TMofPosition Locate();

  void ReadName(TMofToken& token, EMofToken kind);
  void ReadNumber(TMofToken& token);
  void ReadString(TMofToken& token);
  void ReadChar(TMofToken& token);
  bool ReadHexChar(TMofToken& token);
  void ReadBadBytes(TMofToken& token);
  void ReadEscape(std::string& out, bool& isKnown);
  unsigned int ReadHexDigits(std::size_t& count);
  void AppendHexEscape(std::string& out);

  std::string_view m_text;
  std::string m_file;
  TMofProblems& m_problems;
  std::size_t m_next = 0;
  unsigned int m_line = 1;
  std::size_t m_counted = 0;  ///< Bytes before this one are in `m_column`.
  unsigned int m_column = 1;  ///< Column of the byte `m_counted`.
  bool m_isRaw = false;
};

/// The number literal `text` as a token's value; false when it is none. Sets `kind`, `magnitude`,
/// `isNegative`, `isOverflow` and `real` of `token`.
bool ParseMofNumber(std::string_view text, TMofToken& token);

}  // namespace NZEPQEL20
