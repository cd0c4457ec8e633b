// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerPropertyList.h"

#include <algorithm>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIBoolean IsPropertyInList(const CMPIPropertyList* self, const char* name,
                             CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TBrokerPropertyList& list = TBrokerPropertyList::From(self);
    return static_cast<CMPIBoolean>(list.Contains(RequireName(name, "property name")) ? 1 : 0);
  });
}

const char** GetProperties(const CMPIPropertyList* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return TBrokerPropertyList::From(self).GetNames(); });
}

}  // namespace

TBrokerPropertyList::TBrokerPropertyList(bool isAll, std::vector<std::string> names)
    : m_isAll(isAll), m_names(std::move(names)) {
  for (const std::string& name : m_names) m_pointers.push_back(name.c_str());
  m_pointers.push_back(nullptr);
}

bool TBrokerPropertyList::Contains(const std::string& name) const {
  return m_isAll || std::any_of(m_names.begin(), m_names.end(),
                                [&](const std::string& entry) { return IsSameName(entry, name); });
}

std::string TBrokerPropertyList::Describe() const {
  if (m_isAll) return "(all)";
  std::string text = "(";
  for (const std::string& name : m_names) text += (text.size() > 1 ? ", " : "") + name;
  return text + ')';
}

const CMPIPropertyListFT TBrokerPropertyList::kTable = {kBrokerVersion, Release, Clone,
                                                        IsPropertyInList, GetProperties};

}  // namespace NZEPQEL20::cmpi
