// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace cimserver {

/// `text` with all but letters, digits and "-_.~" as "%" and two digits each.
std::string PercentEncode(const std::string& text);

/// The reverse; a "%" that no two digits follow stands for itself.
std::string PercentDecode(const std::string& text);

/// What `Authorization` holds for HTTP Basic.
std::string MakeBasicCredentials(const std::string& user, const std::string& password);

}  // namespace cimserver
