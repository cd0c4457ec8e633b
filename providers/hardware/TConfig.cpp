// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TConfig.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <set>

#include "providers/hardware/THostFiles.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

using std::chrono::seconds;

constexpr std::size_t kMaxConfigBytes = std::size_t{64} * 1024;
constexpr std::size_t kMaxProblems = 20;
constexpr seconds kSlack{10};

struct TKey {
  std::string_view name;
  std::uint32_t TConfig::*value;
  std::uint32_t min;
  std::uint32_t max;
};

constexpr std::array<TKey, 14> kKeys = {{
    {"processor_seconds", &TConfig::processorSeconds, 1, 3600},
    {"processor_extended_minutes", &TConfig::processorExtendedMinutes, 1, 240},
    {"memory_mib", &TConfig::memoryMib, 1, 65536},
    {"memory_extended_mib", &TConfig::memoryExtendedMib, 1, 65536},
    {"memory_extended_loops", &TConfig::memoryExtendedLoops, 1, 1000},
    {"memory_extended_minutes", &TConfig::memoryExtendedMinutes, 1, 1440},
    {"disk_mib", &TConfig::diskMib, 1, 1048576},
    {"disk_seconds", &TConfig::diskSeconds, 1, 3600},
    {"disk_file_mib", &TConfig::diskFileMib, 1, 1048576},
    {"self_test_poll_seconds", &TConfig::selfTestPollSeconds, 1, 60},
    {"network_seconds", &TConfig::networkSeconds, 1, 600},
    {"deadline_seconds", &TConfig::deadlineSeconds, 10, 3600},
    {"extended_deadline_minutes", &TConfig::extendedDeadlineMinutes, 1, 1440},
    {"self_test_deadline_minutes", &TConfig::selfTestDeadlineMinutes, 1, 1440},
}};

/// Reads one text, line by line.
class TConfigReader {
 public:
  explicit TConfigReader(const std::string& origin) : m_origin(origin) {}

  TConfigReading Read(std::string_view text) {
    for (const std::string_view line : SplitLines(text)) {
      ++m_line;
      const std::string_view setting = Trim(line.substr(0, line.find('#')));
      if (!setting.empty()) ReadSetting(setting);
    }
    return std::move(m_reading);
  }

 private:
  void ReadSetting(std::string_view setting) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string_view::npos) return Report("no \"key = value\"", setting);
    const std::string_view name = Trim(setting.substr(0, equals));
    const std::string_view text = Trim(setting.substr(equals + 1));
    const auto* const key = std::find_if(kKeys.begin(), kKeys.end(),
                                         [name](const TKey& known) { return known.name == name; });
    if (key == kKeys.end()) return Report("unknown key", name);
    if (!m_seen.insert(key->name).second) return Report("key given twice, first value kept", name);
    const std::optional<std::uint64_t> number = ParseUnsigned(text);
    if (!number || *number < key->min || *number > key->max) {
      return Report(std::string(name) + " must be a whole number from " + std::to_string(key->min) +
                        " to " + std::to_string(key->max) + ", not",
                    text);
    }
    m_reading.config.*key->value = static_cast<std::uint32_t>(*number);
  }

  void Report(const std::string& reason, std::string_view part) {
    if (m_reading.problems.size() >= kMaxProblems) return;
    m_reading.problems.push_back(m_origin + ": line " + std::to_string(m_line) + ": " + reason +
                                 ": " + Excerpt(part.substr(0, 80), 80));
  }

  const std::string& m_origin;
  std::size_t m_line = 0;
  std::set<std::string_view> m_seen;
  TConfigReading m_reading;
};

}  // namespace

seconds GetShortDeadline(const TConfig& config, seconds planned) {
  return std::max(seconds(config.deadlineSeconds), planned + kSlack);
}

seconds GetExtendedDeadline(const TConfig& config, seconds planned) {
  return std::max<seconds>(std::chrono::minutes(config.extendedDeadlineMinutes), planned + kSlack);
}

TConfigReading ParseConfig(std::string_view text, const std::string& origin) {
  return TConfigReader(origin).Read(text);
}

TConfigReading LoadConfig(const std::string& folder) {
  const char* const named = std::getenv("DIAGSRUNNER_HARDWARE_CONF");
  const std::string file = named != nullptr ? named : folder + "/hardware.conf";
  const std::optional<std::string> text = THostFiles("").ReadText(file);
  TConfigReading reading;
  if (text && text->size() <= kMaxConfigBytes) return ParseConfig(*text, file);
  if (text) {
    reading.problems.push_back(file + ": larger than 64 KiB; the defaults are used");
  } else if (named != nullptr || THostFiles("").Exists(file)) {
    reading.problems.push_back(file + ": cannot be read; the defaults are used");
  }
  return reading;
}

}  // namespace hardware
