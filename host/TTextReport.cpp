// SPDX-License-Identifier: Apache-2.0
#include "host/TTextReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ostream>
#include <sstream>

#include "host/Text.h"

namespace host {
namespace {

constexpr std::size_t kColumns = 5;
using TRow = std::array<std::string, kColumns>;

TRow MakeRow(const TTest& test) {
  return {"#" + std::to_string(test.number), SafeText(test.service, ELines::kOne),
          SafeText(test.device, ELines::kOne), SafeText(test.element, ELines::kOne),
          SafeText(test.id, ELines::kOne)};
}

std::array<std::size_t, kColumns> GetWidths(const std::vector<TRow>& rows) {
  std::array<std::size_t, kColumns> widths{};
  for (const TRow& row : rows) {
    for (std::size_t i = 0; i < kColumns; ++i) widths[i] = std::max(widths[i], GetWidth(row[i]));
  }
  return widths;
}

// Every line of `text` behind `indent`; an empty text gives no line.
void WriteIndented(std::ostream& out, const std::string& text, const std::string& indent) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) out << indent << line << "\n";
}

std::string FormatSeconds(double seconds) {
  std::array<char, 64> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%.1f s", seconds));
  return text.data();
}

}  // namespace

void TTextReport::ShowList(const TListReport& list) {
  if (list.tests.empty() && list.found > 0) {
    *m_out << "No test matches, out of " << list.found << m_place << ".\n";
    return;
  }
  if (list.tests.empty()) {
    *m_out << "No tests found" << m_place << ".\n";
    return;
  }
  std::vector<TRow> rows = {{"NO.", "SERVICE", "DEVICE", "ELEMENT", "TEST ID"}};
  std::transform(list.tests.begin(), list.tests.end(), std::back_inserter(rows), MakeRow);
  const auto widths = GetWidths(rows);
  for (const TRow& row : rows) {
    for (std::size_t i = 0; i + 1 < kColumns; ++i) *m_out << PadTo(row[i], widths[i]) << "  ";
    *m_out << row.back() << "\n";
  }
}

void TTextReport::ShowTestStart(const TTest& test, std::size_t position, std::size_t total) {
  *m_out << "[" << position << "/" << total << "] " << SafeText(test.id, ELines::kOne) << "\n";
  m_out->flush();
}

void TTextReport::ShowTestEnd(const TTestReport& report) {
  std::string answer = DescribeReason(report);
  if (answer.empty()) answer = report.answer.empty() ? "No answer" : report.answer;
  *m_out << "      " << SafeText(answer, ELines::kOne) << " (" << FormatSeconds(report.seconds)
         << ")\n";
  if (report.record) {
    WriteIndented(*m_out, SafeText(Trim(report.record->data), ELines::kKeep), "      | ");
  }
  m_out->flush();
}

void TTextReport::ShowRunEnd(const TRunReport& run) {
  *m_out << run.tests.size() << (run.tests.size() == 1 ? " test" : " tests") << m_place << ": "
         << run.Count(EOutcome::kPassed) << " passed, " << run.Count(EOutcome::kFailed)
         << " failed, " << run.Count(EOutcome::kError) << " could not run or finish, "
         << run.Count(EOutcome::kNotRun) << " not started"
         << (run.isInterrupted ? " (interrupted)" : "") << "\n";
  m_out->flush();
}

std::string DescribeReason(const TTestReport& report) {
  if (report.reason.empty()) return {};
  return "could not run or did not finish: " + report.reason +
         "; the test may still be going on at the server";
}

std::size_t TRunReport::Count(EOutcome outcome) const {
  return static_cast<std::size_t>(
      std::count_if(tests.begin(), tests.end(),
                    [&](const TTestReport& report) { return report.outcome == outcome; }));
}

}  // namespace host
