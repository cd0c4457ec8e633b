// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "tests/support/FakeOperations.h"
#include "tests/support/cimserver/TCimServer.h"

namespace cimserver {

/// A few classes and objects in memory, in root/cimv2, for a server to be tried out on: PEER_Base
/// with the subclass PEER_Thing, and two things, "one" and "two".
class TPeerWorld {
 public:
  TPeerWorld();

  const std::shared_ptr<NZEPQEL20::TFakeOperations>& GetOperations() const { return m_operations; }

  /// What the method of a thing was called with last; it adds Left and Right to Sum.
  TKeyMap GetCallParameters() const;

  static TCIMReference GetPath(const std::string& id);

 private:
  struct TLastCall;

  std::shared_ptr<NZEPQEL20::TFakeOperations> m_operations;
  std::shared_ptr<TLastCall> m_lastCall;
};

}  // namespace cimserver
