// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>
#include <vector>

#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMNamespace.h"
#include "platform/model/TModelNamespace.h"
#include "platform/model/TRoutingNamespace.h"
#include "tests/support/FakeOperations.h"

namespace NZEPQEL20 {

/// A connection "cmpi" with two namespaces: "root/cimv2" has T_Device (with subclass T_Disk and
/// two instances, device "a" and disk "b") and T_Link; "root/other" has T_Far and one instance.
class TModelTest : public testing::Test {
 protected:
  TModelTest();
  ~TModelTest() override;

  static TCIMPropertyDeclaration MakeProperty(const std::string& name, ECIMType type);
  static TCIMInstanceData MakeInstance(const std::string& className, const std::string& id);
  /// The text of the TQELException that `act` throws; empty when it throws none.
  template <typename TAct>
  static std::string WhatIsThrownBy(TAct act) {
    try {
      act();
    } catch (const TQELException& e) {
      return e.what();
    }
    return {};
  }
  std::vector<std::string> EnumerateIds(const std::string& className, int deep);
  boost::shared_ptr<ICIMInstance> GetDevice(const std::string& id);

  const std::shared_ptr<TFakeOperations> m_operations = std::make_shared<TFakeOperations>();
  const std::shared_ptr<TModelContext> m_context =
      std::make_shared<TModelContext>("cmpi", m_operations);
  const boost::shared_ptr<TModelNamespace> m_ns{new TModelNamespace(m_context, "root/cimv2")};
};

}  // namespace NZEPQEL20
