// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/cmpi/TInstanceContent.h"

namespace NZEPQEL20::cmpi {

/// CMPIInstance. Copies share their content until one of them changes it, so that a provider's
/// results travel on without being copied.
class TBrokerInstance : public TBrokerObjectOf<TBrokerInstance, CMPIInstance> {
 public:
  static const CMPIInstanceFT kTable;

  explicit TBrokerInstance(TInstanceContent content)
      : m_content(std::make_shared<TInstanceContent>(std::move(content))) {}
  explicit TBrokerInstance(std::shared_ptr<TInstanceContent> content)
      : m_content(std::move(content)) {}

  const TInstanceContent& GetContent() const { return *m_content; }
  /// The content for changing; nobody else sees the change.
  TInstanceContent& ChangeContent();
  const std::shared_ptr<TInstanceContent>& Share() const { return m_content; }
  /// The content as an embedded instance.
  std::shared_ptr<const TCIMInstanceData> GetData() const;

  std::string Describe() const override;
  std::unique_ptr<TBrokerInstance> Copy() const {
    return std::make_unique<TBrokerInstance>(m_content);
  }

 private:
  std::shared_ptr<TInstanceContent> m_content;
};

}  // namespace NZEPQEL20::cmpi
