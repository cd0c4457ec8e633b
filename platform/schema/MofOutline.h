// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace NZEPQEL20 {

/// What a MOF text says at a glance, without being parsed.
struct TMofOutline {
  std::vector<std::string> includes;  ///< As written, without those in comments.
  /// An instance of a class named PG_Provider... is declared: it registers providers.
  bool registersProviders = false;
  /// There is some text, and no such class is as much as named in it.
  bool isMereSchema = false;
};

TMofOutline OutlineMof(const std::string& text);

}  // namespace NZEPQEL20
