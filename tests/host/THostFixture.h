// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/TSubprocess.h"
#include "tests/support/TTemporaryFolder.h"

namespace host {

using programs::FindDescendants;
using programs::IsRunning;
using programs::RunToEnd;
using programs::TFinished;
using programs::TProgram;
using programs::TSubprocess;

/// Runs the real command over the bundled provider, whose tools and settings a test can replace.
class THostFixture : public ::testing::Test {
 protected:
  THostFixture();

  /// The command with its sleeping shortened; `arguments` without the program's name.
  TProgram MakeCommand(const std::vector<std::string>& arguments) const;
  TFinished Run(const std::vector<std::string>& arguments) const;

  /// Puts an executable script first in the command's search path. "$here" is its folder.
  void AddTool(const std::string& name, const std::string& script) const;
  /// A stress-ng that runs for a second, prints `lines` and ends with `status`.
  void AddStress(const std::string& lines, int status) const;
  /// A stress-ng that never ends by itself and has a child of its own.
  void AddEndlessStress() const;
  std::string Write(const std::string& name, const std::string& text) const;

  /// Identifiers of the offered tests that contain `text`, by the command's own list.
  std::vector<std::string> FindTests(const std::string& text) const;

  const std::string& GetFolder() const { return m_folder.GetPath(); }

  /// What MakeCommand() adds to the environment of the command.
  std::map<std::string, std::string> m_environment;

 private:
  TTemporaryFolder m_folder;
};

/// What a stress-ng says at the end of a full run.
extern const char* const kGoodStress;

}  // namespace host
