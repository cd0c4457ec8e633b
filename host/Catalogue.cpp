// SPDX-License-Identifier: Apache-2.0
#include "host/Catalogue.h"

#include <algorithm>
#include <set>

#include "host/TUsageError.h"
#include "host/Text.h"

namespace host {
namespace {

// Splits at the first two commas; an element's name may hold more of them.
TTest MakeTest(const std::string& id) {
  TTest test;
  test.id = id;
  const std::size_t first = id.find(',');
  test.service = id.substr(0, first);
  if (first == std::string::npos) return test;
  const std::size_t second = id.find(',', first + 1);
  test.device = id.substr(first + 1, second - first - 1);
  if (second != std::string::npos) test.element = id.substr(second + 1);
  return test;
}

bool IsNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

const TTest& FindByNumber(const std::vector<TTest>& tests, const std::string& argument,
                          const std::string& digits) {
  const auto hasNumber = [&](const TTest& test) { return std::to_string(test.number) == digits; };
  const auto found = std::find_if(tests.begin(), tests.end(), hasNumber);
  if (found == tests.end()) {
    throw TUsageError(argument, "no test has this number; `diagsrun list` shows " +
                                    std::to_string(tests.size()) + " tests");
  }
  return *found;
}

const TTest& FindTest(const std::vector<TTest>& tests, const std::string& argument) {
  if (argument.empty()) throw TUsageError("test id", "is empty; `diagsrun list` shows the ids");
  const std::string shown = SafeText(argument, ELines::kOne);
  const std::string digits = argument[0] == '#' ? argument.substr(1) : argument;
  if (IsNumber(digits)) return FindByNumber(tests, shown, digits);
  if (std::count(argument.begin(), argument.end(), ',') < 2) {
    throw TUsageError(shown, "is neither a number nor a test id of the form NAME,DEVICE,ELEMENT");
  }
  const auto found = std::find_if(tests.begin(), tests.end(),
                                  [&](const TTest& test) { return test.id == argument; });
  if (found == tests.end()) {
    throw TUsageError(shown, "no such test; `diagsrun list` shows the ids");
  }
  return *found;
}

}  // namespace

std::vector<TTest> ReadCatalogue(const std::string& list) {
  std::vector<TTest> tests;
  std::set<std::string> seen;
  std::size_t start = 0;
  // What follows the last "|" is no identifier, and the text for an empty list has none at all.
  for (std::size_t end = list.find('|'); end != std::string::npos; end = list.find('|', start)) {
    const std::string id = list.substr(start, end - start);
    start = end + 1;
    if (id.empty() || !seen.insert(id).second) continue;
    tests.push_back(MakeTest(id));
    tests.back().number = tests.size();
  }
  return tests;
}

std::vector<TTest> FilterTests(const std::vector<TTest>& tests, const TSelection& selection) {
  std::vector<TTest> left;
  std::copy_if(tests.begin(), tests.end(), std::back_inserter(left), [&](const TTest& test) {
    return (selection.device.empty() || test.device == selection.device) &&
           (selection.match.empty() || ContainsNoCase(test.id, selection.match));
  });
  return left;
}

std::vector<TTest> SelectTests(const std::vector<TTest>& tests, const TSelection& selection) {
  if (selection.ids.empty()) return FilterTests(tests, selection);
  std::vector<TTest> selected;
  for (const std::string& argument : selection.ids) selected.push_back(FindTest(tests, argument));
  return selected;
}

}  // namespace host
