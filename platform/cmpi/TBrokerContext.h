// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/cmpi/TPathContent.h"

namespace NZEPQEL20::cmpi {

/// CMPIContext.
class TBrokerContext : public TBrokerObjectOf<TBrokerContext, CMPIContext> {
 public:
  static const CMPIContextFT kTable;

  explicit TBrokerContext(TNamedValues entries) : m_entries(std::move(entries)) {}

  /// The entries that every call has: the principal is the effective user, role and languages are
  /// empty. `parameters`, those of the registration, are an entry when there are any.
  static TNamedValues EntriesFor(const std::string& nameSpace, const std::string& parameters = {});

  TNamedValues& GetEntries() { return m_entries; }
  const TNamedValues& GetEntries() const { return m_entries; }
  std::string Describe() const override;
  std::unique_ptr<TBrokerContext> Copy() const {
    return std::make_unique<TBrokerContext>(m_entries);
  }

 private:
  TNamedValues m_entries;
};

}  // namespace NZEPQEL20::cmpi
