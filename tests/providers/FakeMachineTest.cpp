// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "providers/hardware/THostFiles.h"
#include "providers/hardware/TProcessRunner.h"
#include "providers/hardware/TToolFinder.h"
#include "tests/providers/TFakeMachine.h"

namespace hardware {
namespace {

TEST(FakeMachineTest, ItsFilesReadBackAndGoWithIt) {
  std::string root;
  {
    const TFakeMachine machine;
    root = machine.GetRoot();
    machine.Write("/a/b", "text\n");
    machine.Link("/a/link", "driver");
    const THostFiles files(root);
    EXPECT_EQ(files.ReadText("/a/b"), "text");
    EXPECT_EQ(files.ReadLinkName("/a/link"), "driver");
    EXPECT_EQ(machine.Read("/a/b"), "text\n");
    EXPECT_EQ(machine.Read("/a/c"), "");
  }
  EXPECT_FALSE(std::filesystem::exists(root));
}

TEST(FakeMachineTest, ItsToolsRunAndAreFoundBeforeTheRealOnes) {
  const TFakeMachine machine;
  machine.AddTool("fio", "echo played; exit 3");
  const std::string tool = TToolFinder(machine.GetToolFolder() + ":/usr/bin").Find("fio");
  EXPECT_EQ(tool, machine.GetToolFolder() + "/fio");
  const TProcessOutcome outcome =
      TProcessRunner().Run({tool}, std::chrono::seconds(10), TStopSignal());
  EXPECT_EQ(outcome.output, "played\n");
  EXPECT_EQ(outcome.exitStatus, 3);
}

}  // namespace
}  // namespace hardware
