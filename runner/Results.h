// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMInstance.h"

/// What the three result operations share.
namespace runner {

using TRecords = std::vector<boost::shared_ptr<NZEPQEL20::ICIMInstance>>;

/// The first record that names a device, a service whose name contains `name`, and the job
/// `jobID`; null when there is none.
boost::shared_ptr<NZEPQEL20::ICIMInstance> ChooseRecord(const TRecords& records,
                                                        const std::string& name,
                                                        const std::string& jobID);

/// Whether the record's service is known and its name contains `name`.
bool IsOfService(NZEPQEL20::ICIMInstance& record, const std::string& name);

/// Whether `lowerName`, in lower case, is a diagnostic service of the one vendor under its three
/// names.
bool IsVendorService(const std::string& lowerName);

/// The record's completion state as a result word: "Pass", "Fail", "Aborted" or "Incomplete".
/// `name` is the test's name: for the one vendor a warning counts as passed.
std::string GetResultWord(NZEPQEL20::ICIMInstance& record, const std::string& name);

}  // namespace runner
