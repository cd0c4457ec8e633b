// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>

namespace host {

/// A document whose keys keep their order.
using TJson = nlohmann::ordered_json;

/// What every document begins with: "format" and "command".
TJson MakeDocument(const std::string& command);

/// Writes it with a line end behind it; bytes that are not UTF-8 come out as U+FFFD.
void WriteDocument(std::ostream& out, const TJson& document);

}  // namespace host
