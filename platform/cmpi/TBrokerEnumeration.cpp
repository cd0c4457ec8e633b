// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerEnumeration.h"

#include "platform/cmpi/TBrokerArray.h"
#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIData GetNextFT(const CMPIEnumeration* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return ToCMPI(TBrokerEnumeration::From(self).GetNext()); });
}

CMPIBoolean HasNextFT(const CMPIEnumeration* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    return static_cast<CMPIBoolean>(TBrokerEnumeration::From(self).HasNext() ? 1 : 0);
  });
}

CMPIArray* ToArray(const CMPIEnumeration* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIArray* {
    const TBrokerEnumeration& enumeration = TBrokerEnumeration::From(self);
    return Make<TBrokerArray>(enumeration.GetType(), enumeration.GetElements());
  });
}

}  // namespace

const TCIMValue& TBrokerEnumeration::GetNext() {
  if (!HasNext()) throw TBrokerFault(CMPI_RC_NO_MORE_ELEMENTS, "no more elements");
  return m_elements[m_next++];
}

std::unique_ptr<TBrokerEnumeration> TBrokerEnumeration::Copy() const {
  auto copy = std::make_unique<TBrokerEnumeration>(m_type, m_elements);
  copy->m_next = m_next;
  return copy;
}

const CMPIEnumerationFT TBrokerEnumeration::kTable = {kBrokerVersion, Release,   Clone,
                                                      GetNextFT,      HasNextFT, ToArray};

}  // namespace NZEPQEL20::cmpi
