// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/TCMPINamespace.h"
#include "tests/platform/model/TModelTest.h"

namespace NZEPQEL20 {
namespace {

struct TJobRow {
  const char* name;
  const char* className;
  TCIMValue state;
  TCIMValue percent;
  TCIMValue expected;
};
void PrintTo(const TJobRow& row, std::ostream* out) {
  *out << row.name;
}

/// Jobs of a vendor's subclass, of a subclass of that, and objects that are no jobs.
class EndedJobsTest : public TModelTest {
 protected:
  EndedJobsTest() {
    AddClass("CIM_ConcreteJob", "");
    AddClass("T_Job", "CIM_ConcreteJob");
    AddClass("T_LongJob", "T_Job");
    AddClass("T_Orphan", "T_NeverDeclared");
    AddClass("T_Circle", "T_OtherHalf");
    AddClass("T_OtherHalf", "T_Circle");
  }

  void AddClass(const char* name, const char* superclass) {
    TCIMClassDeclaration declaration;
    declaration.name = name;
    declaration.superclass = superclass;
    m_operations->AddClass("root/cimv2", declaration);
  }
  TCIMReference AddJob(const char* className, const TCIMValue& state, const TCIMValue& percent) {
    TCIMInstanceData data;
    data.path = TCIMReference("", className, {{"InstanceID", "j"}});
    data.Set("JobState", state);
    data.Set("percentcomplete", percent);
    m_operations->AddInstance("root/cimv2", data);
    return data.path;
  }
  static TCIMValue Read(ICIMInstance& instance, const char* property) {
    return instance.GetProperty(property, {})->GetValue({});
  }
};

TCIMValue U16(std::uint16_t value) {
  return TCIMValue::UInt16(value);
}

class EndedJobTest : public EndedJobsTest, public testing::WithParamInterface<TJobRow> {};

TEST_P(EndedJobTest, IsCompleteWhenFetchedAndKeepsItsState) {
  const TJobRow& row = GetParam();
  const auto job = m_ns->GetInstance(AddJob(row.className, row.state, row.percent), {});
  EXPECT_EQ(Read(*job, "PercentComplete"), row.expected);
  EXPECT_EQ(Read(*job, "JobState"), row.state);
}

INSTANTIATE_TEST_SUITE_P(
    Ended, EndedJobTest,
    testing::Values(
        TJobRow{"Terminated", "T_Job", U16(8), U16(50), U16(100)},
        TJobRow{"Killed", "T_Job", U16(9), U16(0), U16(100)},
        TJobRow{"OfTheClassItself", "CIM_ConcreteJob", U16(9), U16(99), U16(100)},
        TJobRow{"OfTheClassInAnotherCase", "cim_concretejob", U16(9), U16(99), U16(100)},
        TJobRow{"FarBelow", "T_LongJob", U16(8), U16(50), U16(100)},
        TJobRow{"BeyondHundred", "T_Job", U16(9), U16(255), U16(100)},
        TJobRow{"StateAsText", "T_Job", "9", U16(50), U16(100)},
        TJobRow{"StateInAnotherType", "T_Job", TCIMValue::Signed(ECIMType::kSInt64, 8), U16(50),
                U16(100)},
        TJobRow{"PercentInAByte", "T_Job", U16(9), TCIMValue::Unsigned(ECIMType::kUInt8, 50),
                TCIMValue::Unsigned(ECIMType::kUInt8, 100)},
        TJobRow{"PercentSigned", "T_Job", U16(9), TCIMValue::Signed(ECIMType::kSInt8, -1),
                TCIMValue::Signed(ECIMType::kSInt8, 100)},
        TJobRow{"PercentWide", "T_Job", U16(9), TCIMValue::Unsigned(ECIMType::kUInt64, 50),
                TCIMValue::Unsigned(ECIMType::kUInt64, 100)},
        TJobRow{"PercentAsText", "T_Job", U16(9), "50", U16(100)},
        TJobRow{"ClassUnknown", "T_NeverDeclared", U16(9), U16(50), U16(100)},
        TJobRow{"SuperclassUnknown", "T_Orphan", U16(9), U16(50), U16(100)}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Others, EndedJobTest,
    testing::Values(TJobRow{"Running", "T_Job", U16(4), U16(50), U16(50)},
                    TJobRow{"Completed", "T_Job", U16(7), U16(50), U16(50)},
                    TJobRow{"InException", "T_Job", U16(10), U16(50), U16(50)},
                    TJobRow{"OfAVendorsState", "T_Job", U16(32768), U16(50), U16(50)},
                    TJobRow{"StateNull", "T_Job", TCIMValue::Null(ECIMType::kUInt16), U16(50),
                            U16(50)},
                    TJobRow{"StateNoNumber", "T_Job", "Killed", U16(50), U16(50)},
                    TJobRow{"StateAnArray", "T_Job", TCIMValue::Array(ECIMType::kUInt16, {U16(9)}),
                            U16(50), U16(50)},
                    TJobRow{"PercentNull", "T_Job", U16(9), TCIMValue::Null(ECIMType::kUInt16),
                            TCIMValue::Null(ECIMType::kUInt16)},
                    TJobRow{"NoJob", "T_Device", U16(9), U16(50), U16(50)},
                    TJobRow{"BelowNoJob", "T_Disk", U16(9), U16(50), U16(50)},
                    TJobRow{"ClassesInACircle", "T_Circle", U16(9), U16(50), U16(50)}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(EndedJobsTest, AreLeftAsTheyAreInAnEnumeration) {
  AddJob("T_Job", U16(9), U16(50));
  TCIMValue percent;
  m_ns->FindClass("T_Job", {})
      ->EnumerateInstances(
          [&percent](const boost::shared_ptr<ICIMInstance>& job) {
            percent = Read(*job, "PercentComplete");
            return true;
          },
          1, {});
  EXPECT_EQ(percent, U16(50));
}

TEST_F(EndedJobsTest, AreCompleteOnEveryRoadThatFetchesOne) {
  const TCIMReference job = AddJob("T_Job", U16(9), U16(50));
  const auto upcalls = m_ns->GetUpcallNamespace();
  EXPECT_EQ(Read(*upcalls->GetInstance(job, {}), "PercentComplete"), U16(100));
  const auto again = m_ns->GetInstance(job, {})->GetObjectPath({});
  const auto home = again.GetClass()->GetNamespace({{"nspID", "cmpi"}});
  EXPECT_EQ(Read(*home->GetInstance(again, {{"nspID", "cmpi"}}), "PercentComplete"), U16(100));
}

TEST_F(EndedJobsTest, WithoutAPercentageGetNone) {
  TCIMInstanceData data;
  data.path = TCIMReference("", "T_Job", {{"InstanceID", "j"}});
  data.Set("JobState", U16(9));
  m_operations->AddInstance("root/cimv2", data);
  EXPECT_FALSE(m_ns->GetInstance(data.path, {})->GetProperty("PercentComplete", {}));
}

}  // namespace
}  // namespace NZEPQEL20
