// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/cmpi/TBrokerObjectOf.h"
#include "platform/cmpi/TInstanceContent.h"

namespace NZEPQEL20::cmpi {

/// CMPIResult: what a provider function gives back while it runs.
/// Threads: takes results from several; after Close() it refuses them.
class TBrokerResult : public TBrokerObjectOf<TBrokerResult, CMPIResult> {
 public:
  static const CMPIResultFT kTable;

  /// What a call may return.
  enum class EKind { kNothing, kInstances, kPaths, kData };

  /// What was returned; `data` also takes a method's instance or path.
  struct TContent {
    std::vector<std::shared_ptr<TInstanceContent>> instances;
    std::vector<TPathContent> paths;
    std::vector<TCIMValue> data;
    std::string error;  ///< Message of the first detailed error.
  };

  explicit TBrokerResult(EKind kind) : m_kind(kind) { SetLifetime(ELifetime::kPassed); }

  /// A result that takes results until the returned object's Close().
  /// A shell outlives its call for a while, so that a provider thread that comes too late meets a
  /// refusal and not freed memory.
  static std::shared_ptr<TBrokerResult> Open(EKind kind);

  /// Takes what was returned, and refuses the rest.
  TContent Close();

  void AddInstance(const CMPIInstance* instance);
  void AddPath(const CMPIObjectPath* path);
  void AddData(const TCIMValue& value);
  void AddError(const std::string& message);
  void CheckOpen();

  std::string Describe() const override { return "result"; }
  std::unique_ptr<TBrokerResult> Copy() const;

 private:
  void Require(bool isAllowed) const;

  EKind m_kind;
  mutable std::mutex m_mutex;
  bool m_isOpen = true;
  TContent m_content;
};

}  // namespace NZEPQEL20::cmpi
