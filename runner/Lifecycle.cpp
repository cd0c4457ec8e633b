// SPDX-License-Identifier: Apache-2.0
#include <boost/algorithm/string/case_conv.hpp>
#include <cstdint>
#include <memory>
#include <utility>

#include "parsers/ResultParser.h"
#include "platform/contract/TOSSpecific.h"
#include "runner/DataFile.h"
#include "runner/DebugLog.h"
#include "runner/DiagsRunner.h"

using NZEPQEL20::TOSSpecific;

DiagsRunner* fgDiagInstance = nullptr;

DiagsRunner* DiagsRunner::GetDiagsRunner(TNamespacePtr ns) {
  if (fgDiagInstance != nullptr) return fgDiagInstance;
  fgDiagInstance = new DiagsRunner(std::move(ns));
  fgDiagInstance->GatherExcludedTests();
  return fgDiagInstance;
}

void DiagsRunner::FreeDiagsRunner() {
  // The pointer stays: hosts compare it, and nothing may be made after this point.
  delete fgDiagInstance;
}

DiagsRunner::DiagsRunner(TNamespacePtr ns) {
  DebugLog("Entreing DiagsRunner::DiagsRunner");
  m_ns = std::move(ns);
  m_biosID = TOSSpecific::GetBiosID();
  boost::algorithm::to_lower(m_biosID);

  const std::string path = TOSSpecific::GetQELRootPath() + "/qdx/data/vendor_diagnostic_msgs.xml";
  const std::uint32_t bufferBytes =
      runner::GetTerminatedSize(static_cast<std::uint32_t>(TOSSpecific::GetFileSize(path)));
  std::unique_ptr<char[]> buffer = runner::AllocateZeroed(bufferBytes);
  if (!buffer) runner::ThrowNoMemory(path);
  if (!runner::ReadFile(path, buffer.get(), runner::GetTextSize(bufferBytes))) return;

  const auto parser = std::make_unique<ResultParser>();
  parser->Parse(buffer.get(), bufferBytes);
  m_resultMsgs = std::move(*parser).getResultMsgs();
  buffer.reset();
  DebugLog("Exiting DiagsRunner::DiagsRunner");
}
