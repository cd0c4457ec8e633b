// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/RunningJobs.h"

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "platform/model/CoreLog.h"

namespace NZEPQEL20::setup {
namespace {

constexpr char kJobClass[] = "CIM_ConcreteJob";
// RequestStateChange: end at once, without waiting for the work to tidy up.
constexpr std::uint16_t kKill = 5;

void Note(const std::string& text) {
  LogToCore(ILogger::kWarning, text);
}

// Completed, terminated, killed and exception are final. What cannot be read may be running.
bool HasEnded(const TCIMInstanceData& job) {
  const TCIMPropertyData* state = job.Find("JobState");
  if (state == nullptr || state->value.IsNull()) return false;
  try {
    const auto number = static_cast<unsigned short>(state->value);
    return number >= 7 && number <= 10;
  } catch (const std::exception&) {
    return false;
  }
}

std::vector<TCIMReference> FindRunning(ICIMOperations& operations, const std::string& nameSpace) {
  std::vector<TCIMReference> running;
  try {
    operations.EnumerateInstances(nameSpace, kJobClass, [&](TCIMInstanceData&& job) {
      if (!HasEnded(job)) running.push_back(job.path);
      return true;
    });
  } catch (const std::exception& e) {
    Note(std::string("looking for running jobs: ") + e.what());
  }
  return running;
}

// Completed, and the job of the change has been started (DSP1103).
bool IsAccepted(const TCIMValue& result) {
  const std::string number = result.ToString(10);
  return number == "0" || number == "4096";
}

bool Kill(const TCIMReference& job, const TInvoke& invoke) {
  try {
    TKeyMap parameters = {{"RequestedState", TCIMValue::UInt16(kKill)}};
    const TCIMValue result = invoke(job, "RequestStateChange", parameters);
    if (IsAccepted(result)) return true;
    Note("ending a job: " + job.GetPath() + " answers " + result.ToString(10));
  } catch (const std::exception& e) {
    Note(std::string("ending a job: ") + e.what());
  }
  return false;
}

// A job that cannot be fetched has gone, or cannot be reached to be killed either.
bool IsRunning(ICIMOperations& operations, const TCIMReference& job) {
  try {
    return !HasEnded(operations.GetInstance(job));
  } catch (const std::exception& e) {
    Note(std::string("looking at a job: ") + e.what());
    return false;
  }
}

}  // namespace

unsigned int KillJobs(ICIMOperations& operations, const std::vector<TCIMReference>& jobs,
                      const TInvoke& invoke) noexcept {
  unsigned int asked = 0;
  try {
    for (const TCIMReference& job : jobs) {
      if (IsRunning(operations, job) && Kill(job, invoke)) ++asked;
    }
  } catch (...) {
    // Out of memory: nothing more can be asked, and nothing can be said about it either.
  }
  return asked;
}

unsigned int KillJobs(ICIMOperations& operations, const TIsOurs& isOurs) noexcept {
  unsigned int asked = 0;
  try {
    const TInvoke invoke = [&operations](const TCIMReference& job, const std::string& method,
                                         TKeyMap& parameters) {
      return operations.InvokeMethod(job, method, parameters);
    };
    for (const std::string& nameSpace : operations.GetNamespaces()) {
      for (const TCIMReference& job : FindRunning(operations, nameSpace)) {
        if (isOurs(job) && Kill(job, invoke)) ++asked;
      }
    }
  } catch (...) {
    // Out of memory: nothing more can be asked, and nothing can be said about it either.
  }
  return asked;
}

}  // namespace NZEPQEL20::setup
