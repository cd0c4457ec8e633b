// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "platform/model/CIMStatus.h"

namespace NZEPQEL20 {
namespace {

TEST(CIMStatusTest, NamesTheFirstTheLastAndSomeBetween) {
  EXPECT_EQ(GetCIMStatusName(1), "CIM_ERR_FAILED");
  EXPECT_EQ(GetCIMStatusName(6), "CIM_ERR_NOT_FOUND");
  EXPECT_EQ(GetCIMStatusName(17), "CIM_ERR_METHOD_NOT_FOUND");
  EXPECT_EQ(GetCIMStatusName(21), "CIM_ERR_INVALID_ENUMERATION_CONTEXT");
  EXPECT_EQ(GetCIMStatusName(29), "CIM_ERR_QUERY_FEATURE_NOT_SUPPORTED");
}

TEST(CIMStatusTest, GivesTheNumberWhereThereIsNoName) {
  EXPECT_EQ(GetCIMStatusName(0), "CIM status 0");
  EXPECT_EQ(GetCIMStatusName(30), "CIM status 30");
  EXPECT_EQ(FindCIMStatusName(0), nullptr);
  EXPECT_EQ(FindCIMStatusName(4294967295U), nullptr);
}

}  // namespace
}  // namespace NZEPQEL20
