// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>
#include <string>
#include <utility>

#include "host/IReport.h"

namespace host {

/// Renders for people. Whatever comes from a provider is shown through SafeText().
class TTextReport : public IReport {
 public:
  /// `place` says where the tests are, as in "No tests found" + place; empty: on this machine.
  explicit TTextReport(std::ostream& out, std::string place = {})
      : m_out(&out), m_place(std::move(place)) {}

  void ShowList(const TListReport& list) override;
  void ShowTestStart(const TTest& test, std::size_t position, std::size_t total) override;
  void ShowTestEnd(const TTestReport& report) override;
  void ShowRunEnd(const TRunReport& run) override;

 private:
  std::ostream* m_out;
  std::string m_place;
};

}  // namespace host
