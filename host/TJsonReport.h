// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>
#include <string>
#include <utility>

#include "host/IReport.h"

namespace host {

/// Renders one JSON document (RFC 8259, UTF-8, a line end behind it). Texts are as the provider
/// gave them; bytes that are not UTF-8 come out as U+FFFD. The keys are part of the interface:
/// they are added to, never renamed, and "format" counts changes that break a reader.
class TJsonReport : public IReport {
 public:
  static constexpr int kFormat = 1;

  /// `server` is the URL of the CIM server that the tests are behind; empty: they are here.
  explicit TJsonReport(std::ostream& out, std::string server = {})
      : m_out(&out), m_server(std::move(server)) {}

  void ShowList(const TListReport& list) override;
  /// Nothing: the document is written as a whole, at the end.
  void ShowTestStart(const TTest& test, std::size_t position, std::size_t total) override;
  void ShowTestEnd(const TTestReport& report) override;
  void ShowRunEnd(const TRunReport& run) override;
  void ShowInstances(const TInspectReport& inspected);

 private:
  std::ostream* m_out;
  std::string m_server;
};

}  // namespace host
