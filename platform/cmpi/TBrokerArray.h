// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/contract/TCIMValue.h"

namespace NZEPQEL20::cmpi {

/// CMPIArray: a fixed number of elements of one type, NULL at birth.
class TBrokerArray : public TBrokerObjectOf<TBrokerArray, CMPIArray> {
 public:
  static const CMPIArrayFT kTable;

  TBrokerArray(ECIMType type, TCIMValue::TArray elements)
      : m_type(type), m_elements(std::move(elements)) {}

  ECIMType GetType() const { return m_type; }
  TCIMValue::TArray& GetElements() { return m_elements; }
  TCIMValue GetValue() const { return TCIMValue::Array(m_type, m_elements); }

  std::string Describe() const override;
  std::unique_ptr<TBrokerArray> Copy() const {
    return std::make_unique<TBrokerArray>(m_type, m_elements);
  }

 private:
  ECIMType m_type;
  TCIMValue::TArray m_elements;
};

}  // namespace NZEPQEL20::cmpi
