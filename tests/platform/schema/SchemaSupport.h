// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/schema/TClassRepository.h"
#include "tests/support/TTemporaryFolder.h"

/// What the tests of the MOF reader share.
namespace schematest {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMClassDeclaration;
using NZEPQEL20::TCIMInstanceData;
using NZEPQEL20::TCIMQualifier;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TClassRepository;
using NZEPQEL20::TMofError;

/// The problems as lines, in order.
inline std::vector<std::string> Lines(const std::vector<TMofError>& errors) {
  std::vector<std::string> lines;
  for (const TMofError& error : errors) {
    lines.push_back(error.ToString());
  }
  return lines;
}

/// The problems of a text that is called "t.mof".
inline std::vector<std::string> LoadLines(TClassRepository& repository, const std::string& text) {
  return Lines(repository.LoadText(text, "t.mof"));
}

using TLines = std::vector<std::string>;

/// The qualifier of a declaration; null when there is none.
inline const TCIMValue* FindValue(const std::vector<TCIMQualifier>& qualifiers,
                                  const std::string& name) {
  for (const TCIMQualifier& qualifier : qualifiers) {
    if (qualifier.name == name) {
      return &qualifier.value;
    }
  }
  return nullptr;
}

using TFolder = TTemporaryFolder;

}  // namespace schematest
