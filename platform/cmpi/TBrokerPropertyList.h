// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "platform/cmpi/TBrokerObjectOf.h"

namespace NZEPQEL20::cmpi {

/// CMPIPropertyList: names of properties, or all of them.
class TBrokerPropertyList : public TBrokerObjectOf<TBrokerPropertyList, CMPIPropertyList> {
 public:
  static const CMPIPropertyListFT kTable;

  TBrokerPropertyList(bool isAll, std::vector<std::string> names);

  bool Contains(const std::string& name) const;
  /// NULL-terminated; NULL for all properties. Lives as long as the list.
  const char** GetNames() { return m_isAll ? nullptr : m_pointers.data(); }

  std::string Describe() const override;
  std::unique_ptr<TBrokerPropertyList> Copy() const {
    return std::make_unique<TBrokerPropertyList>(m_isAll, m_names);
  }

 private:
  bool m_isAll;
  const std::vector<std::string> m_names;
  std::vector<const char*> m_pointers;
};

}  // namespace NZEPQEL20::cmpi
