// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {

/// Operations over the workshop provider, which tells what it was asked.
class TWorkshopTest : public testing::Test {
 protected:
  TWorkshopTest();

  std::vector<TCIMInstanceData> Enumerate(const std::string& className,
                                          const std::string& nameSpace = "root/cimv2");
  /// The property "Note" of what GetInstance() gives for `path`.
  std::string GetNote(const TCIMReference& path);
  static std::string NoteOf(const TCIMInstanceData& instance);
  static TCIMReference PathTo(const std::string& id, const std::string& className = "W_Bolt");
  /// Runs `action`, which is to throw, and gives what it threw.
  template <class TAction>
  static TQELException Failure(const TAction& action) {
    try {
      action();
    } catch (const TQELException& failure) {
      return failure;
    }
    ADD_FAILURE() << "no exception";
    return TQELException(TQELStatusCode::kFailed, "none");
  }
  /// A letter for each part of the provider that was cleaned up since the last call.
  static std::string GetCleanups();

  std::unique_ptr<TCMPIOperations> m_operations;
};

}  // namespace NZEPQEL20
