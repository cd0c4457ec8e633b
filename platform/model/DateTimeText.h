// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace NZEPQEL20 {

/// Whether `text` has the form of a CIM datetime (DSP0004): 25 characters, a point in time with its
/// offset from UTC in minutes, or an interval; asterisks for unknown digits. That the digits name
/// a real date is not checked.
bool IsDateTimeText(std::string_view text);

}  // namespace NZEPQEL20
