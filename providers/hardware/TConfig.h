// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace hardware {

/// How much the tests do and how long they may take. Ranges: see hardware.conf.
struct TConfig {
  std::uint32_t processorSeconds = 10;
  std::uint32_t processorExtendedMinutes = 1;
  std::uint32_t memoryMib = 16;
  std::uint32_t memoryExtendedMib = 96;
  std::uint32_t memoryExtendedLoops = 1;
  std::uint32_t memoryExtendedMinutes = 1;  ///< Announced; the size and the loops decide.
  std::uint32_t diskMib = 1024;
  std::uint32_t diskSeconds = 10;
  std::uint32_t diskFileMib = 256;
  std::uint32_t selfTestPollSeconds = 10;
  std::uint32_t networkSeconds = 5;
  std::uint32_t deadlineSeconds = 120;
  std::uint32_t extendedDeadlineMinutes = 15;
  std::uint32_t selfTestDeadlineMinutes = 30;
};

/// Deadline of a short test that is planned to take `planned`: the configured one, but never less
/// than the plan and ten seconds more.
std::chrono::seconds GetShortDeadline(const TConfig& config, std::chrono::seconds planned);

/// The same for an extended test.
std::chrono::seconds GetExtendedDeadline(const TConfig& config, std::chrono::seconds planned);

/// Settings together with a line for each part of the text that could not be used.
struct TConfigReading {
  TConfig config;
  std::vector<std::string> problems;
};

/// Reads settings from "key = value" lines; `origin` names the text in problems. What is missing
/// or cannot be used keeps its default.
TConfigReading ParseConfig(std::string_view text, const std::string& origin);

/// Reads the settings from the file that DIAGSRUNNER_HARDWARE_CONF names, else from hardware.conf
/// in `folder`. A file that is not there is a problem only when it was named; a file over 64 KiB
/// is one always.
TConfigReading LoadConfig(const std::string& folder);

}  // namespace hardware
