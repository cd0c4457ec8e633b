// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <set>

#include "tests/support/cimserver/TSyntheticOperations.h"

namespace cimserver {
namespace {

using TFilter = ICIMOperations::TAssociationFilter;

/// The objects that benchmarks ask for.
class SyntheticOperationsTest : public testing::Test {
 protected:
  std::vector<TCIMInstanceData> Enumerate(const std::string& className) {
    std::vector<TCIMInstanceData> found;
    m_operations.EnumerateInstances("root/cimv2", className, [&found](TCIMInstanceData&& data) {
      found.push_back(std::move(data));
      return true;
    });
    return found;
  }

  template <typename TCall>
  unsigned int GetStatus(TCall call) {
    try {
      call();
    } catch (const TQELException& failure) {
      return failure.GetCIMStatus();
    }
    return 0;
  }

  TSyntheticOperations m_operations{3};
  TCIMReference m_holder{"root/cimv2", "BENCH_Holder", {{"Name", TCIMValue("holder")}}};
};

TEST_F(SyntheticOperationsTest, ARecordHasTwentyPropertiesOfItsClassAndMixedTypes) {
  const auto declaration = m_operations.GetClass("root/cimv2", "bench_record");
  const auto records = Enumerate("BENCH_Record");
  ASSERT_EQ(records.size(), 3U);
  ASSERT_EQ(declaration->properties.size(), 20U);
  std::set<ECIMType> types;
  for (std::size_t i = 0; i < 20; ++i) {
    const auto& declared = declaration->properties[i];
    const auto& given = records[2].properties.at(i);
    EXPECT_EQ(given.name, declared.name);
    EXPECT_EQ(given.value.GetType(), declared.type) << declared.name;
    EXPECT_EQ(given.value.IsArray(), declared.isArray) << declared.name;
    types.insert(declared.type);
  }
  EXPECT_EQ(types.size(), 8U);
}

TEST_F(SyntheticOperationsTest, WhatIsEnumeratedCanBeFetched) {
  for (const char* className : {"BENCH_Record", "BENCH_RecordOfHolder", "BENCH_Holder"}) {
    const auto names = m_operations.EnumerateInstanceNames("root/cimv2", className);
    const auto instances = Enumerate(className);
    ASSERT_EQ(names.size(), instances.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
      EXPECT_EQ(names[i], instances[i].path);
      EXPECT_EQ(TCIMValue::Instance(
                    std::make_shared<const TCIMInstanceData>(m_operations.GetInstance(names[i]))),
                TCIMValue::Instance(std::make_shared<const TCIMInstanceData>(instances[i])));
    }
  }
}

TEST_F(SyntheticOperationsTest, AnEnumerationEndsWhenItsTakerHasEnough) {
  int taken = 0;
  m_operations.EnumerateInstances("root/cimv2", "BENCH_Record",
                                  [&taken](TCIMInstanceData&&) { return ++taken < 2; });
  EXPECT_EQ(taken, 2);
}

struct TFilterRow {
  TFilter filter;
  std::size_t associators;
  std::size_t references;
};
void PrintTo(const TFilterRow& row, std::ostream* out) {
  *out << row.filter.associationClass << '/' << row.filter.resultClass << '/' << row.filter.role
       << '/' << row.filter.resultRole;
}

TEST_F(SyntheticOperationsTest, AssociationsAreFollowedThroughTheirFilters) {
  for (const TFilterRow& row : {TFilterRow{{}, 3, 3},
                                {{"BENCH_RecordOfHolder", "", "", ""}, 3, 3},
                                {{"other", "", "", ""}, 0, 3},
                                {{"", "BENCH_Record", "", ""}, 3, 0},
                                {{"", "BENCH_RecordOfHolder", "", ""}, 0, 3},
                                {{"", "", "holder", "record"}, 3, 3},
                                {{"", "", "record", ""}, 0, 0},
                                {{"", "", "", "holder"}, 0, 3}}) {
    EXPECT_EQ(m_operations.AssociatorNames(m_holder, row.filter).size(), row.associators)
        << testing::PrintToString(row);
    EXPECT_EQ(m_operations.ReferenceNames(m_holder, row.filter).size(), row.references)
        << testing::PrintToString(row);
  }
}

TEST_F(SyntheticOperationsTest, ARecordLeadsBackToTheHolder) {
  const TCIMReference record = Enumerate("BENCH_Record").at(1).path;
  EXPECT_THAT(m_operations.AssociatorNames(record, {}), testing::ElementsAre(m_holder));
  std::vector<std::string> ties;
  m_operations.References(record, {}, [&ties](TCIMInstanceData&& tie) {
    ties.push_back(tie.Find("Record")->value.ToString(10));
    return true;
  });
  EXPECT_THAT(ties, testing::ElementsAre(record.GetPath()));
}

TEST_F(SyntheticOperationsTest, WhatIsNotThereHasItsNumber) {
  EXPECT_EQ(GetStatus([this] { m_operations.GetClass("root/cimv2", "other"); }), 5U);
  for (const char* id : {"record 3", "record", "record x", "record 99999999999999999999", ""}) {
    EXPECT_EQ(
        GetStatus([this, id] {
          m_operations.GetInstance({"root/cimv2", "BENCH_Record", {{"InstanceID", TCIMValue(id)}}});
        }),
        6U)
        << id;
  }
  TKeyMap none;
  EXPECT_EQ(GetStatus([&] { m_operations.InvokeMethod(m_holder, "Go", none); }), 7U);
  EXPECT_EQ(GetStatus([&] { m_operations.CreateInstance("root/cimv2", {m_holder, {}}); }), 7U);
  EXPECT_EQ(GetStatus([&] { m_operations.ModifyInstance({m_holder, {}}); }), 7U);
  EXPECT_EQ(GetStatus([&] { m_operations.DeleteInstance(m_holder); }), 7U);
}

}  // namespace
}  // namespace cimserver
