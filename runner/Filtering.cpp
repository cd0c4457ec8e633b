// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <cstdint>
#include <memory>

#include "parsers/ExcludeParser.h"
#include "parsers/FilterDiagsParser.h"
#include "platform/contract/ILogger.h"
#include "platform/contract/TOSSpecific.h"
#include "platform/contract/TQELException.h"
#include "platform/contract/TRootObject.h"
#include "runner/DataFile.h"
#include "runner/DebugLog.h"
#include "runner/DiagsRunner.h"
#include "runner/Handles.h"
#include "runner/Texts.h"

using NZEPQEL20::ILogger;
using NZEPQEL20::TOSSpecific;
using NZEPQEL20::TQELException;

namespace {

using TMatrix = std::map<std::string, std::vector<std::string>>;

void LogError(const std::string& message) {
  ILogger* const logger = NZEPQEL20::TRootObject::GetCoreLogger();
  if (logger != nullptr) logger->Log(ILogger::kError, message);
}

// What one pass needs of the matrix file: its place and its size.
struct TMatrixFile {
  std::string path;
  std::uint32_t sizeBytes = 0;

  // False, with a line in the log, when the platform cannot size the file.
  bool Locate() {
    try {
      path = TOSSpecific::GetQELRootPath() + "/qdx/data/excludetestmatrix.xml";
      sizeBytes = static_cast<std::uint32_t>(TOSSpecific::GetFileSize(path));
      return true;
    } catch (const TQELException&) {
      LogError("Error opening excludetestmatrix.xml");
      return false;
    }
  }
};

// Whether one of the fragments occurs in the path of the service that the candidate offers.
bool IsForbidden(NZEPQEL20::ICIMInstance& candidate, const std::vector<std::string>& fragments) {
  const std::string service = runner::GetReference(candidate, runner::kServiceProperty).GetPath();
  DebugLog("DiagsRunner::filterDiagsItems serviceProvided OP = " + service);
  const bool forbidden = std::any_of(
      fragments.begin(), fragments.end(),
      [&service](const std::string& fragment) { return runner::Contains(service, fragment); });
  if (!forbidden) return false;
  DebugLog("DiagsRunner::filterDiagsItems - erasing: " + candidate.GetObjectPath({}).GetPath());
  return true;
}

}  // namespace

void DiagsRunner::GatherExcludedTests() {
  const std::string path = TOSSpecific::GetQELRootPath() + "/qdx/data/excludetests.xml";
  const auto sizeBytes = static_cast<std::uint32_t>(TOSSpecific::GetFileSize(path));
  const std::unique_ptr<char[]> buffer = runner::AllocateZeroed(sizeBytes);
  if (!buffer) runner::ThrowNoMemory(path);
  if (!runner::ReadFile(path, buffer.get(), sizeBytes)) return;

  const auto parser = std::make_unique<ExcludeParser>();
  parser->Parse(buffer.get(), sizeBytes);  // Bounded: this buffer has no terminator.
  m_excludedTests = parser->GetRequestedData();
}

void DiagsRunner::filterDiagsItems(TInstances& items) {
  DebugLog("Entering DiagsRunner::filterDiagsItems()");
  TMatrixFile file;
  if (!file.Locate()) return;
  const std::uint32_t bufferBytes = runner::GetTerminatedSize(file.sizeBytes);
  const std::unique_ptr<char[]> buffer = runner::AllocateZeroed(bufferBytes);
  if (!buffer) {
    LogError("Error loading excludetestmatrix.xml");
    runner::ThrowNoMemory(file.path);
  }
  if (!runner::ReadFile(file.path, buffer.get(), runner::GetTextSize(bufferBytes))) return;

  const auto parser = std::make_unique<FilterDiagsParser>();
  parser->Parse(buffer.get(), bufferBytes);
  const TMatrix matrix = parser->getDiagnosticMatrix();
  filterDiagsItemsLogger(matrix);

  const std::string biosID = boost::algorithm::to_lower_copy(m_biosID);
  const auto found = matrix.find(biosID);
  if (found != matrix.end()) {
    for (TInstances::size_type i = 0; i < items.size();) {
      if (IsForbidden(runner::Need(items[i], "association instance"), found->second)) {
        items.erase(items.begin() + static_cast<TInstances::difference_type>(i));
      } else {
        ++i;
      }
    }
  }
  DebugLog("Leaving DiagsRunner::filterDiagsItems()");
}

void DiagsRunner::filterDiagsItemsLogger(TMatrix matrix) {
  DebugLog("Entering DiagsRunner::filterDiagsItemsLogger()");
  for (const auto& [biosID, fragments] : matrix) {
    for (const std::string& fragment : fragments) DebugLog({biosID, " -> ", fragment});
  }
  DebugLog("Leaving DiagsRunner::filterDiagsItemsLogger()");
}
