// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"

namespace NZEPQEL20::cmpi {

/// CMPIDateTime: the 25 characters of the CIM form, kept as they were given.
class TBrokerDateTime : public TBrokerObjectOf<TBrokerDateTime, CMPIDateTime> {
 public:
  static const CMPIDateTimeFT kTable;

  explicit TBrokerDateTime(std::string text) : m_text(std::move(text)) {}

  /// A point in time is written in UTC.
  /// Errors: TBrokerFault for a time after the year 9999, or an interval that is too long.
  static std::string Format(std::uint64_t microseconds, bool isInterval);

  const std::string& GetText() const { return m_text; }
  bool IsInterval() const { return m_text.size() == 25 && m_text[21] == ':'; }
  /// Microseconds, of a point in time since 1970 in UTC; unknown digits count as 0.
  /// Errors: TBrokerFault for a text that has not the CIM form, or a time before 1970.
  std::uint64_t GetMicroseconds() const;

  std::string Describe() const override { return m_text; }
  std::unique_ptr<TBrokerDateTime> Copy() const {
    return std::make_unique<TBrokerDateTime>(m_text);
  }

 private:
  const std::string m_text;
};

}  // namespace NZEPQEL20::cmpi
