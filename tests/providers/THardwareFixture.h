// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "providers/hardware/THardware.h"
#include "tests/providers/TFakeMachine.h"

namespace hardware {

/// What stress-ng prints at the end of a good run of one second.
extern const char* const kGoodStress;
/// What memtester prints in a good run over 16 MiB.
extern const char* const kGoodMemory;

/// A fake machine with its tests.
class THardwareFixture : public ::testing::Test {
 protected:
  THardwareFixture();

  /// Makes the provider of the machine as it is now; its programs are the fake ones alone.
  void Open();

  /// Starts a test that is offered, waits for its end, and returns its record.
  TRecord RunToEnd(const std::string& serviceName, const std::string& deviceId);

  /// Starts a test that is offered and returns its job's id.
  std::string Start(const std::string& serviceName, const std::string& deviceId);

  /// Waits until the job is at least this far; fails the test after some seconds.
  void WaitForPercent(const std::string& jobId, unsigned int percent);

  /// "service on device" of everything offered.
  std::vector<std::string> ListOffers();

  TFakeMachine m_machine;
  TConfig m_config;
  TCallerRights m_rights;
  std::unique_ptr<THardware> m_hardware;
};

}  // namespace hardware
