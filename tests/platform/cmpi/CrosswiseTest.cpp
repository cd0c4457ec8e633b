// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "platform/cmpi/TCMPIOperations.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

TEST(CrosswiseTest, TwoProvidersThatAreMadeAtOnceAndNeedEachOtherDoNotWaitForEver) {
  const TTemporaryFolder folder;
  std::filesystem::copy(CROSSWISE_DIR "/libcrosswise.so", folder.GetPath());
  folder.Write("x.registration",
               "X_Left root/cimv2 Left crosswise instance\n"
               "X_Right root/cimv2 Right crosswise instance\n");
  auto classes = std::make_shared<TClassRepository>();
  classes->LoadText("class X_Left { [Key] string Id; }; class X_Right { [Key] string Id; };",
                    "x.mof");
  TRegistrations registrations;
  registrations.Load(folder.GetPath("x.registration"));
  TCMPIOperations operations(classes, registrations);
  const auto count = [&operations](const char* name) {
    return operations.EnumerateInstanceNames("root/cimv2", name).size();
  };
  std::size_t right = 0;
  std::thread other([&] { right = count("X_Right"); });
  EXPECT_EQ(count("X_Left"), 1U);
  other.join();
  EXPECT_EQ(right, 1U);
  // Later each finds the other.
  EXPECT_EQ(count("X_Left"), 1U);
}

}  // namespace
}  // namespace NZEPQEL20
