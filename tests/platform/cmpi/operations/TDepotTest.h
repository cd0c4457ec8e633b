// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/contract/TQELException.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {

/// Operations over depot providers, which have just the functions that their names list.
class TDepotTest : public testing::Test {
 protected:
  using TFilter = ICIMOperations::TAssociationFilter;

  TDepotTest();
  ~TDepotTest() override;

  /// Registers `lines`, each "Class Namespace Provider types..."; to be called once, first.
  void Open(const std::vector<std::string>& lines);
  /// The same with a registration file of one's own.
  void OpenFile(const std::string& name, const std::string& content);
  /// Boxes, crates and shelves by one provider with all functions, and `line`.
  void OpenWith(const std::string& line);

  static TCIMReference PathTo(const std::string& className, const std::string& id,
                              const std::string& nameSpace = "root/cimv2");
  /// "Class:Id", blank-separated and sorted, with the namespace when it is not root/cimv2, and the
  /// ends of an association instead of a missing Id.
  static std::string Names(const std::vector<TCIMReference>& paths);

  std::string Enumerate(const std::string& className, const std::string& ns = "root/cimv2");
  std::string EnumerateNames(const std::string& className, const std::string& ns = "root/cimv2");
  std::string Associators(const TCIMReference& path, const TFilter& filter = {});
  std::string AssociatorNames(const TCIMReference& path, const TFilter& filter = {});
  std::string References(const TCIMReference& path, const TFilter& filter = {});
  std::string ReferenceNames(const TCIMReference& path, const TFilter& filter = {});
  /// What a provider finds through the broker: "Ask" of D_Shelf S1.
  std::string Ask(TKeyMap parameters);

  /// The CIM status of what `action` throws.
  template <class TAction>
  static unsigned int StatusOf(const TAction& action) {
    try {
      action();
    } catch (const TQELException& failure) {
      return failure.GetCIMStatus();
    }
    return 0;
  }

  std::unique_ptr<TCMPIOperations> m_operations;

 private:
  TTemporaryFolder m_folder;
};

}  // namespace NZEPQEL20
