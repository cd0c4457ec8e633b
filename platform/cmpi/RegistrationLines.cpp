// SPDX-License-Identifier: Apache-2.0
// The form with one line for each class.
#include "platform/cmpi/TRegistrationTaker.h"

namespace NZEPQEL20 {

namespace {

constexpr std::size_t kFirstType = 4;
constexpr char kLineRule[] = "R2";
constexpr char kForm[] = "write: Class Namespace Provider Library type...";

void ReadLine(const TTextLine& line, const std::string& file, TRegistrationTaker& taker) {
  const std::string fault = FindLineFault(line);
  if (!fault.empty()) return taker.Fail(line.source + ": " + fault, kForm, kLineRule);
  // A comment may follow without a blank.
  const std::vector<std::string> words = SplitWords(line.text.substr(0, line.text.find('#')));
  if (words.empty()) return;
  const auto fail = [&](const std::string& reason, const std::string& remedy) {
    taker.Fail(line.source + ": " + reason, remedy, kLineRule);
  };
  if (words.size() <= kFirstType) {
    return fail("expected at least 5 words, found " + std::to_string(words.size()) + " words",
                kForm);
  }
  if (!IsPlainName(words[0])) return fail("\"" + words[0] + "\" is not a class name", kForm);
  if (!IsProviderName(words[2])) return fail("\"" + words[2] + "\" is not a provider name", kForm);
  TRegistration entry;
  for (std::size_t i = kFirstType; i < words.size(); ++i) {
    if (!MarkType(entry, words[i])) {
      return fail("unknown provider type \"" + words[i] + "\"", kTypeRemedy);
    }
  }
  entry.className = words[0];
  entry.nameSpace = words[1];
  entry.providerName = words[2];
  entry.source = line.source;
  taker.Add(entry, words[3], file);
}

}  // namespace

void ReadRegistrationLines(const std::string& text, const std::string& file,
                           TRegistrationTaker& taker) {
  for (const TTextLine& line : SplitLines(text, file)) ReadLine(line, file, taker);
}

}  // namespace NZEPQEL20
