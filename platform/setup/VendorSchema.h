// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/schema/TMofOutlines.h"

namespace NZEPQEL20::setup {

/// The path of `file` with every link followed; `file` itself when it leads nowhere.
std::string MakeCanonical(const std::string& file);

/// `files` in the order in which they are to be read: those that another one includes behind those
/// that nobody includes, so that an include finds its file unread. Otherwise the order stays.
std::vector<std::string> OrderByIncludes(const std::vector<std::string>& files);
std::vector<std::string> OrderByIncludes(const std::vector<std::string>& files,
                                         TMofOutlines& outlines);

/// The files that `files` include, and those that these include; only such as are there. What
/// cannot be read includes nothing.
std::vector<std::string> FindAllIncludes(const std::vector<std::string>& files);

}  // namespace NZEPQEL20::setup
