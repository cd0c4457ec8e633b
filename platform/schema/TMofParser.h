// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "platform/schema/IMofSink.h"
#include "platform/schema/TMofLexer.h"
#include "platform/schema/TMofSource.h"

namespace NZEPQEL20 {

/// Reads the declarations of one MOF text and hands each to a sink as soon as it is complete.
///
/// After a mistake it goes on behind the next `;`, or at the next declaration: a class keeps its
/// other features. After TMofProblems::kMaxErrors mistakes it gives the text up.
class TMofParser {
 public:
  TMofParser(const TMofSource& source, IMofSink& sink, TMofProblems& problems);

  void Parse();

 private:
  struct TSyntaxError;
  /// What a feature, or a property of an instance, has opened and not closed yet.
  struct TOpen {
    std::size_t braces = 0;
    std::size_t brackets = 0;
    std::size_t parentheses = 0;
  };
  using TQualifiers = std::vector<TMofQualifier>;

  // Tokens.
  /// The token `ahead` (at most 3) behind the next one.
  const TMofToken& Peek(std::size_t ahead = 0);
  TMofToken Take();
  void CountOpen(const TMofToken& token);
  bool IsSymbol(char symbol, std::size_t ahead = 0);
  bool IsWord(const char* word, std::size_t ahead = 0);
  bool TakeSymbol(char symbol);
  void Expect(char symbol, const std::string& after);
  TMofToken ExpectName(const std::string& what);
  void Reserve(std::size_t count, TMofPosition position);
  [[noreturn]] void Fail(const std::string& expected);
  void Report(TMofPosition position, const std::string& text);
  void Warn(TMofPosition position, const std::string& text);

  // The file.
  void ParseOrSkip();
  void ParseDeclaration();
  bool IsDeclarationStart();
  void SkipToDeclaration();
  /// Whether the qualifiers that are next are those of a declaration; they are kept for it. So many
  /// faulty ones are looked at as a text may have errors.
  bool TakeQualifiersOfNext();
  void ParseEnd(const std::string& what);
  void ParsePragma();
  /// Passes over the argument of a pragma without meaning: between parentheses, or to the end of
  /// its `line`.
  void SkipPragma(unsigned int line);
  void ParseNamespace(const std::string& text);

  // Classes.
  void ParseClass(TQualifiers&& qualifiers);
  bool ParseFeature(TMofClass& declaration);
  bool IsClassCutOff();
  /// Reports a class or instance without its '}'; `qualifiers` are those of what comes next.
  void ReportCutOff(const std::string& what, TQualifiers&& qualifiers);
  bool IsClosingBrace();
  void SkipFeature();
  void ParseTypeAndName(TMofElement& element);
  bool ParseArrayMark();
  void CheckRoom(std::size_t count, const TMofElement& element);
  void ParseMethod(TMofElement&& element, TMofClass& declaration);
  void ParseProperty(TMofElement&& element, TMofClass& declaration);
  TMofElement ParseParameter();

  // Instances.
  void ParseInstance();
  /// False where the next declaration stands instead.
  bool ParseInstanceProperty(TMofInstance& instance, const std::string& what);

  // Qualifiers.
  TQualifiers ParseQualifiers();
  void ParseQualifierList(TQualifiers& qualifiers);
  TMofQualifier ParseQualifier();
  void ParseQualifierValue(TMofQualifier& qualifier);
  void ParseFlavor(TMofFlavors& flavors);
  void ParseQualifierDeclaration();
  void ParseFlavors(TMofFlavors& flavors);
  void ParseScopes();

  // Constants.
  /// With `takesWords` a word that is no constant is taken as a string.
  TMofInitializer ParseInitializer(bool takesWords = false);
  void ParseArray(TMofInitializer& initializer, bool takesWords);
  TMofLiteral ParseLiteral(bool takesWords);
  bool IsBareWord();
  std::string ParseString();

  const TMofSource& m_source;
  IMofSink& m_sink;
  TMofProblems& m_problems;
  TMofLexer m_lexer;
  /// Tokens that were read and not taken yet, in a ring: the next one is at `m_first`.
  std::array<TMofToken, 4> m_ahead;
  std::size_t m_first = 0;
  std::size_t m_aheadCount = 0;
  std::size_t m_taken = 0;  ///< Tokens taken so far, to see whether a step made progress.
  std::size_t m_errorCount = 0;
  std::size_t m_skippedLists = 0;  ///< Faulty qualifiers within what is skipped.
  TOpen m_open;                    ///< Of the feature that is being read.
  TQualifiers m_pending;           ///< Qualifiers that were read before their class was recognised.
};

/// The type that a MOF keyword names, in any case; kNone when it names none.
ECIMType FindMofType(std::string_view name);

}  // namespace NZEPQEL20
