// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>

#include "host/IReport.h"

namespace host {

/// Renders for people. Whatever comes from a provider is shown through SafeText().
class TTextReport : public IReport {
 public:
  explicit TTextReport(std::ostream& out) : m_out(&out) {}

  void ShowList(const TListReport& list) override;
  void ShowTestStart(const TTest& test, std::size_t position, std::size_t total) override;
  void ShowTestEnd(const TTestReport& report) override;
  void ShowRunEnd(const TRunReport& run) override;

 private:
  std::ostream* m_out;
};

}  // namespace host
