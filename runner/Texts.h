// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// Texts and text tests that several chapters of the runner share.
namespace runner {

inline constexpr char kServiceClass[] = "CIM_AvailableDiagnosticService";
inline constexpr char kServiceProperty[] = "ServiceProvided";
inline constexpr char kDeviceProperty[] = "UserOfService";
inline constexpr char kRecordClass[] = "CIM_DiagnosticCompletionRecord";
inline constexpr char kNoMatch[] = "No matching diagnostic test or device found.\n";

/// Whether `part` occurs anywhere in `text`, case counting; an empty part occurs everywhere.
inline bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace runner
