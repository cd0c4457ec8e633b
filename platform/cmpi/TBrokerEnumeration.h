// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cmpi {

/// CMPIEnumeration: a forward cursor over the results of an upcall.
class TBrokerEnumeration : public TBrokerObjectOf<TBrokerEnumeration, CMPIEnumeration> {
 public:
  static const CMPIEnumerationFT kTable;

  /// `type` is kInstance or kReference.
  TBrokerEnumeration(ECIMType type, TCIMValue::TArray elements)
      : m_type(type), m_elements(std::move(elements)) {}

  bool HasNext() const { return m_next < m_elements.size(); }
  /// Errors: TBrokerFault (CMPI_RC_NO_MORE_ELEMENTS) past the end.
  const TCIMValue& GetNext();
  const TCIMValue::TArray& GetElements() const { return m_elements; }
  ECIMType GetType() const { return m_type; }

  std::string Describe() const override {
    return "enumeration of " + std::to_string(m_elements.size());
  }
  std::unique_ptr<TBrokerEnumeration> Copy() const;

 private:
  ECIMType m_type;
  TCIMValue::TArray m_elements;
  std::size_t m_next = 0;
};

}  // namespace NZEPQEL20::cmpi
