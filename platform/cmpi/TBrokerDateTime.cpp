// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerDateTime.h"

#include <cstddef>
#include <cstdio>
#include <ctime>

#include "platform/cmpi/TBrokerString.h"
#include "platform/model/DateTimeText.h"

namespace NZEPQEL20::cmpi {

namespace {

constexpr std::int64_t kMicro = 1000000;

CMPIUint64 GetBinaryFormat(const CMPIDateTime* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return CMPIUint64{TBrokerDateTime::From(self).GetMicroseconds()}; });
}

CMPIString* GetStringFormat(const CMPIDateTime* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(TBrokerDateTime::From(self).GetText()); });
}

CMPIBoolean IsIntervalFT(const CMPIDateTime* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    return static_cast<CMPIBoolean>(TBrokerDateTime::From(self).IsInterval() ? 1 : 0);
  });
}

/// The number in `count` digits at `at`.
std::int64_t Number(const std::string& text, std::size_t at, std::size_t count) {
  std::int64_t number = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    number = number * 10 + (text[i] == '*' ? 0 : text[i] - '0');
  }
  return number;
}

std::int64_t TimeOfDay(const std::string& text) {
  return Number(text, 8, 2) * 3600 + Number(text, 10, 2) * 60 + Number(text, 12, 2);
}

/// Seconds since 1970 in UTC of the point in time that `text` names.
std::int64_t SecondsOfPoint(const std::string& text) {
  std::tm date = {};
  date.tm_year = static_cast<int>(Number(text, 0, 4)) - 1900;
  date.tm_mon = static_cast<int>(Number(text, 4, 2)) - 1;
  date.tm_mday = static_cast<int>(Number(text, 6, 2));
  const std::int64_t local = timegm(&date) + TimeOfDay(text);
  const std::int64_t offset = Number(text, 22, 3) * 60;
  return text[21] == '-' ? local + offset : local - offset;
}

}  // namespace

std::string TBrokerDateTime::Format(std::uint64_t microseconds, bool isInterval) {
  const auto fraction = static_cast<unsigned int>(microseconds % kMicro);
  const std::uint64_t seconds = microseconds / kMicro;
  char text[64];
  if (isInterval) {
    const std::uint64_t days = seconds / 86400;
    if (days > 99999999) {
      throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "interval too long");
    }
    const auto rest = static_cast<unsigned int>(seconds % 86400);
    static_cast<void>(std::snprintf(text, sizeof text, "%08llu%02u%02u%02u.%06u:000",
                                    static_cast<unsigned long long>(days), rest / 3600,
                                    rest / 60 % 60, rest % 60, fraction));
    return text;
  }
  std::tm date = {};
  const auto time = static_cast<std::time_t>(seconds);
  if (gmtime_r(&time, &date) == nullptr || date.tm_year > 9999 - 1900) {
    throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "time after the year 9999");
  }
  const std::size_t length = std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &date);
  static_cast<void>(std::snprintf(text + length, sizeof text - length, ".%06u+000", fraction));
  return text;
}

std::uint64_t TBrokerDateTime::GetMicroseconds() const {
  if (!IsDateTimeText(m_text)) {
    throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "not a CIM datetime: " + m_text);
  }
  const std::int64_t seconds =
      IsInterval() ? Number(m_text, 0, 8) * 86400 + TimeOfDay(m_text) : SecondsOfPoint(m_text);
  if (seconds < 0) throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "time before 1970");
  return static_cast<std::uint64_t>(seconds * kMicro + Number(m_text, 15, 6));
}

const CMPIDateTimeFT TBrokerDateTime::kTable = {kBrokerVersion,  Release,         Clone,
                                                GetBinaryFormat, GetStringFormat, IsIntervalFT};

}  // namespace NZEPQEL20::cmpi
