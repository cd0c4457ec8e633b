// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/model/TRemarks.h"

namespace NZEPQEL20 {
namespace {

using TTexts = std::vector<std::string>;

TEST(RemarksTest, ATextIsThereOnceInTheOrderOfAdding) {
  TRemarks remarks;
  for (const char* text : {"b", "a", "b"}) remarks.Add(text);
  EXPECT_EQ(remarks.Get(), (TTexts{"b", "a"}));
}

TEST(RemarksTest, ThereAreNoMoreThanAUserCanRead) {
  TRemarks remarks;
  for (std::size_t i = 0; i <= TRemarks::kMaxRemarks; ++i) remarks.Add(std::to_string(i));
  EXPECT_EQ(remarks.Get().size(), TRemarks::kMaxRemarks);
  EXPECT_EQ(remarks.Get().back(), std::to_string(TRemarks::kMaxRemarks - 1));
}

TEST(RemarksTest, WhatIsHeldCountsOnceItIsReleasedForItsObject) {
  TRemarks remarks;
  remarks.Hold("test", "why");
  remarks.Release("another");
  EXPECT_EQ(remarks.Get(), TTexts());
  remarks.Release("test");
  remarks.Release("test");
  EXPECT_EQ(remarks.Get(), TTexts{"why"});
}

TEST(RemarksTest, WhatIsForgottenDoesNotCount) {
  TRemarks remarks;
  remarks.Hold("test", "why");
  remarks.Forget("another");
  remarks.Forget("test");
  remarks.Release("test");
  EXPECT_EQ(remarks.Get(), TTexts());
}

TEST(RemarksTest, OnlyTheLastOneIsHeld) {
  TRemarks remarks;
  remarks.Hold("test", "first");
  remarks.Hold("another", "second");
  remarks.Release("test");
  EXPECT_EQ(remarks.Get(), TTexts());
  remarks.Release("another");
  EXPECT_EQ(remarks.Get(), TTexts{"second"});
}

}  // namespace
}  // namespace NZEPQEL20
