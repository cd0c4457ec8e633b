// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/cmpi/TPathContent.h"

namespace NZEPQEL20::cmpi {

/// CMPIArgs: the parameters of a method, in the order in which they were added.
class TBrokerArgs : public TBrokerObjectOf<TBrokerArgs, CMPIArgs> {
 public:
  static const CMPIArgsFT kTable;

  TBrokerArgs() = default;
  explicit TBrokerArgs(TNamedValues values) : m_values(std::move(values)) {}

  TNamedValues& GetValues() { return m_values; }
  const TNamedValues& GetValues() const { return m_values; }
  std::string Describe() const override;
  std::unique_ptr<TBrokerArgs> Copy() const { return std::make_unique<TBrokerArgs>(m_values); }

 private:
  TNamedValues m_values;
};

/// `values` as `name=value` pairs for people.
std::string DescribeNamed(const TNamedValues& values);

}  // namespace NZEPQEL20::cmpi
