// SPDX-License-Identifier: Apache-2.0
#include "platform/model/EndedJobs.h"

#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

constexpr char kJobClass[] = "CIM_ConcreteJob";
// Values of "JobState" of a job that was ended from outside.
constexpr unsigned short kTerminated = 8;
constexpr unsigned short kKilled = 9;
constexpr unsigned short kComplete = 100;
// Classes may be a server's, and name each other in a circle.
constexpr unsigned int kMaxInheritance = 64;

bool WasEnded(const TCIMPropertyData* state) {
  if (state == nullptr || state->value.IsNull()) return false;
  try {
    const auto number = static_cast<unsigned short>(state->value);
    return number == kTerminated || number == kKilled;
  } catch (const TQELException&) {
    return false;
  }
}

bool MayBeJob(TModelContext& context, const std::string& nameSpace, std::string className) {
  for (unsigned int depth = 0; depth < kMaxInheritance; ++depth) {
    if (IsSameName(className, kJobClass)) return true;
    const auto declaration = context.FindDeclaration(nameSpace, className);
    if (!declaration) return true;
    if (declaration->superclass.empty()) return false;
    className = declaration->superclass;
  }
  return false;
}

TCIMValue MakeComplete(ECIMType type) {
  if (type >= ECIMType::kUInt8 && type <= ECIMType::kUInt64) {
    return TCIMValue::Unsigned(type, kComplete);
  }
  if (type >= ECIMType::kSInt8 && type <= ECIMType::kSInt64) {
    return TCIMValue::Signed(type, kComplete);
  }
  // As the class of all jobs declares it.
  return TCIMValue::UInt16(kComplete);
}

}  // namespace

void CompleteEndedJob(TModelContext& context, const std::string& nameSpace,
                      TCIMInstanceData& instance) {
  if (!WasEnded(instance.Find("JobState"))) return;
  TCIMPropertyData* const percent = instance.Find("PercentComplete");
  if (percent == nullptr || percent->value.IsNull()) return;
  if (!MayBeJob(context, nameSpace, instance.path.GetClassName())) return;
  percent->value = MakeComplete(percent->value.GetType());
}

}  // namespace NZEPQEL20
