// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TRunnerTest.h"

#include <iostream>

#include "platform/contract/ICIMProperty.h"

namespace scripted {

TRunnerTest::TRunnerTest() : m_host(m_world.GetHost()) {
  TFaultPlan::Get().Clear();
  TScriptedCopies::Get().Clear();
  m_system.Start();
  m_system.m_root = m_dataRoot.GetPath();
  TTranscript::Get().Clear();
  m_output = std::make_unique<TRecordingOutput>(std::cout);
}

TRunnerTest::~TRunnerTest() {
  TFaultPlan::Get().Clear();
  End();
  m_output.reset();
  TScriptedCopies::Get().Clear();
  m_system.Stop();
}

DiagsRunner& TRunnerTest::Start() {
  DiagsRunner* runner = DiagsRunner::GetDiagsRunner(m_world.GetRoot());
  ClearTranscript();
  return *runner;
}

DiagsRunner& TRunnerTest::StartAndEnumerate() {
  DiagsRunner& runner = Start();
  runner.EnumerateDiagTests("");
  ClearTranscript();
  return runner;
}

void TRunnerTest::End() {
  if (fgDiagInstance != nullptr) {
    TDiagsRunnerTestAccess::Destroy(fgDiagInstance);
    fgDiagInstance = nullptr;
  }
}

std::string TRunnerTest::Run(DiagsRunner& runner, const std::string& testID,
                             const std::string& label) {
  return runner.Execute(testID, label, m_host);
}

std::string TRunnerTest::GetCopied(const std::string& property) {
  const auto& copies = TScriptedCopies::Get().All();
  if (copies.empty()) {
    return "(nothing was copied)";
  }
  const auto handle = copies.back().instance->GetProperty(property, {});
  return handle ? handle->GetValueText() : "(no " + property + ")";
}

}  // namespace scripted
