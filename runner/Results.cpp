// SPDX-License-Identifier: Apache-2.0
#include "runner/Results.h"

#include <boost/algorithm/string/case_conv.hpp>

#include "runner/DebugLog.h"
#include "runner/Handles.h"
#include "runner/Texts.h"

namespace runner {

using NZEPQEL20::ICIMInstance;
using NZEPQEL20::TCIMValue;

bool IsOfService(ICIMInstance& record, const std::string& name) {
  const TCIMValue service = GetValue(record, "ServiceName");
  return !service.IsNull() && Contains(service.ToString(10), name);
}

boost::shared_ptr<ICIMInstance> ChooseRecord(const TRecords& records, const std::string& name,
                                             const std::string& jobID) {
  for (const boost::shared_ptr<ICIMInstance>& record : records) {
    if (record && !GetValue(*record, "ManagedElementName").IsNull() && IsOfService(*record, name) &&
        Contains(GetValue(*record, "InstanceID").ToString(10), jobID)) {
      return record;
    }
  }
  return nullptr;
}

bool IsVendorService(const std::string& lowerName) {
  const bool vendor = Contains(lowerName, "fusion-io:") || Contains(lowerName, "fio:") ||
                      Contains(lowerName, "zep:");
  return vendor && Contains(lowerName, ":diag service");
}

std::string GetResultWord(ICIMInstance& record, const std::string& name) {
  std::string tempResult = GetText(record, "CompletionState");
  if (IsVendorService(boost::algorithm::to_lower_copy(name))) {
    DebugLog("tempResult :" + tempResult);
    if (Contains(tempResult, "Warning")) tempResult = "OK";
  }
  if (Contains(tempResult, "OK")) return "Pass";
  if (Contains(tempResult, "Aborted")) return "Aborted";
  if (Contains(tempResult, "Incomplete")) return "Incomplete";
  return "Fail";
}

}  // namespace runner
