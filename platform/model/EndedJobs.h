// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/model/TModelContext.h"

namespace NZEPQEL20 {

/// Sets "PercentComplete" of `instance`, just fetched from `nameSpace`, to 100 in its own integer
/// type when it is a job that was terminated or killed ("JobState" 8 or 9): nothing of it is left
/// to be done, and whoever follows it until 100 would wait for ever. One that is NULL stays NULL.
///
/// A job is an instance of CIM_ConcreteJob or a subclass; without declarations that would tell,
/// what has these two properties counts as one.
void CompleteEndedJob(TModelContext& context, const std::string& nameSpace,
                      TCIMInstanceData& instance);

}  // namespace NZEPQEL20
