// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "platform/setup/NameList.h"

namespace NZEPQEL20::setup {
namespace {

using TList = std::vector<std::string>;

TEST(NameListTest, HasTheFirstFewAndTheNumberOfTheOthers) {
  EXPECT_EQ(ListNames(TList()), "");
  EXPECT_EQ(ListNames(TList{"b", "a"}), "b, a");
  EXPECT_EQ(ListNames(TList{"c", "b", "a"}), "c, b, a");
  EXPECT_EQ(ListNames(TList{"d", "c", "b", "a", "a"}), "d, c, b and 2 more");
  EXPECT_EQ(ListNames(std::set<std::string>{"c", "b", "a"}, 1), "a and 2 more");
}

}  // namespace
}  // namespace NZEPQEL20::setup
