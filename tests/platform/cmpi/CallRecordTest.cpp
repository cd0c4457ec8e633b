// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <thread>

#include "platform/cmpi/TCallRecord.h"

namespace NZEPQEL20::cmpi {
namespace {

constexpr TCallee kOuter{"Outer", "/libouter.so", "invokeMethod"};
constexpr TCallee kInner{"Inner", "/libinner.so", "getInstance"};

TEST(CallRecordTest, TheInnermostCallHoldsAndTheOuterOneAgainBehindIt) {
  EXPECT_EQ(TCallRecord::GetOwn().library, nullptr);
  {
    const TCallRecord outer(kOuter);
    {
      const TCallRecord inner(kInner);
      EXPECT_STREQ(TCallRecord::GetOwn().provider, "Inner");
      EXPECT_STREQ(TCallRecord::GetOwn().function, "getInstance");
    }
    EXPECT_STREQ(TCallRecord::GetOwn().library, "/libouter.so");
  }
  EXPECT_EQ(TCallRecord::GetOwn().library, nullptr);
}

TEST(CallRecordTest, ACallIsThatOfItsThreadAndSeenByAll) {
  const TCallRecord outer(kOuter);
  std::thread([] {
    EXPECT_EQ(TCallRecord::GetOwn().library, nullptr);
    const TCallRecord inner(kInner);
    const auto all = TCallRecord::GetAll();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].provider, "Outer");
    EXPECT_EQ(all[1].provider, "Inner");
    EXPECT_LT(all[0].number, all[1].number);
  }).join();
  ASSERT_EQ(TCallRecord::GetAll().size(), 1U);
  EXPECT_EQ(TCallRecord::GetAll().front().library, "/libouter.so");
  EXPECT_EQ(TCallRecord::GetAll().front().function, "invokeMethod");
}

TEST(CallRecordTest, NoTwoCallsHaveANumberInCommon) {
  const auto getNumber = [] {
    const TCallRecord record(kOuter);
    return TCallRecord::GetAll().front().number;
  };
  EXPECT_NE(getNumber(), getNumber());
}

TEST(CallRecordTest, ALibraryThatIsBeingLoadedHasNoProvider) {
  const TCallRecord record({nullptr, "/libx.so", "dlopen"});
  EXPECT_EQ(TCallRecord::GetOwn().provider, nullptr);
  EXPECT_EQ(TCallRecord::GetAll().front().provider, "");
}

TEST(CallRecordTest, NobodyIsCalledWithoutALibrary) {
  const TCallRecord outer(kOuter);
  const TCallRecord nobody{TCallee()};
  EXPECT_STREQ(TCallRecord::GetOwn().provider, "Outer");
  EXPECT_EQ(TCallRecord::GetAll().size(), 1U);
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
