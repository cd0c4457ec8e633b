// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/cmpi/TPathContent.h"

namespace NZEPQEL20::cmpi {

/// CMPIObjectPath.
class TBrokerPath : public TBrokerObjectOf<TBrokerPath, CMPIObjectPath> {
 public:
  static const CMPIObjectPathFT kTable;

  explicit TBrokerPath(TPathContent content) : m_content(std::move(content)) {}

  const TPathContent& GetContent() const { return m_content; }
  TPathContent& GetContent() { return m_content; }

  std::string Describe() const override { return m_content.ToReference().GetPath(); }
  std::unique_ptr<TBrokerPath> Copy() const { return std::make_unique<TBrokerPath>(m_content); }

 private:
  TPathContent m_content;
};

using TPassedPath = TPassed<TBrokerPath>;

}  // namespace NZEPQEL20::cmpi
