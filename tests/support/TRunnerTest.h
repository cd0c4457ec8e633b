// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tests/support/TDataRoot.h"
#include "tests/support/TDiagsRunnerTestAccess.h"
#include "tests/support/TDiagsWorld.h"
#include "tests/support/TFaultPlan.h"
#include "tests/support/TRecordingOutput.h"
#include "tests/support/TScriptedCopies.h"
#include "tests/support/TScriptedSystem.h"
#include "tests/support/TTranscript.h"

namespace scripted {

/// A scripted platform, an empty data folder and, once asked for, a runner; each test begins with
/// no runner and an empty transcript.
class TRunnerTest : public ::testing::Test {
 protected:
  using TLines = TTranscript::TLines;
  using TAccess = TDiagsRunnerTestAccess;
  using TTest = TDiagsWorld::TTest;

  TRunnerTest();
  ~TRunnerTest() override;

  /// Makes the runner through GetDiagsRunner(); the transcript then starts anew.
  DiagsRunner& Start();
  /// The same, after an enumeration.
  DiagsRunner& StartAndEnumerate();
  /// Ends the runner, and makes GetDiagsRunner() able to make another.
  void End();

  static void ClearTranscript() { TTranscript::Get().Clear(); }
  static TLines Logs() { return TTranscript::Get().Logs(); }
  static TLines Only(const std::set<std::string>& kinds) { return TTranscript::Get().Only(kinds); }
  static std::size_t Count(const std::string& prefix) { return TTranscript::Get().Count(prefix); }
  static std::string Output() { return TTranscript::Get().Output(); }

  /// Runs a test with the host's namespace and `label`.
  std::string Run(DiagsRunner& runner, const std::string& testID, const std::string& label = "");
  /// The text of a property of the last instance that was copied.
  static std::string GetCopied(const std::string& property);

  TScriptedSystem& m_system = TScriptedSystem::Get();
  TFaultPlan& m_faults = TFaultPlan::Get();
  TDataRoot m_dataRoot;
  TDiagsWorld m_world;
  TNamespacePtr m_host;

 private:
  std::unique_ptr<TRecordingOutput> m_output;
};

}  // namespace scripted
