// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerResult.h"

#include <deque>

#include "platform/cmpi/TBrokerError.h"
#include "platform/cmpi/TBrokerInstance.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIStatus ReturnData(const CMPIResult* self, const CMPIValue* value,
                      const CMPIType type) noexcept {
  return AnswerStatus([&] { TBrokerResult::From(self).AddData(FromCMPI(value, type)); });
}

CMPIStatus ReturnInstance(const CMPIResult* self, const CMPIInstance* instance) noexcept {
  return AnswerStatus([&] { TBrokerResult::From(self).AddInstance(instance); });
}

CMPIStatus ReturnObjectPath(const CMPIResult* self, const CMPIObjectPath* path) noexcept {
  return AnswerStatus([&] { TBrokerResult::From(self).AddPath(path); });
}

CMPIStatus ReturnDone(const CMPIResult* self) noexcept {
  return AnswerStatus([&] { TBrokerResult::From(self).CheckOpen(); });
}

CMPIStatus ReturnError(const CMPIResult* self, const CMPIError* error) noexcept {
  return AnswerStatus(
      [&] { TBrokerResult::From(self).AddError(TBrokerError::From(error).GetMessage()); });
}

/// Results whose calls have ended, the oldest first.
class TClosedResults {
 public:
  void Keep(std::shared_ptr<TBrokerResult> result) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_results.push_back(std::move(result));
    if (m_results.size() > kCount) m_results.pop_front();
  }

 private:
  static constexpr std::size_t kCount = 256;

  std::mutex m_mutex;
  std::deque<std::shared_ptr<TBrokerResult>> m_results;
};

TClosedResults& ClosedResults() {
  // Never destroyed: provider threads may outlive the end of main().
  static auto* const kResults = new TClosedResults;
  return *kResults;
}

}  // namespace

std::shared_ptr<TBrokerResult> TBrokerResult::Open(EKind kind) {
  auto result = std::make_shared<TBrokerResult>(kind);
  ClosedResults().Keep(result);
  return result;
}

TBrokerResult::TContent TBrokerResult::Close() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_isOpen = false;
  return std::move(m_content);
}

void TBrokerResult::Require(bool isAllowed) const {
  if (!m_isOpen) throw TBrokerFault(CMPI_RC_ERR_INVALID_HANDLE, "the call has ended already");
  if (!isAllowed) {
    throw TBrokerFault(CMPI_RC_ERR_NOT_SUPPORTED, "this operation takes no such result");
  }
}

void TBrokerResult::CheckOpen() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  Require(true);
}

void TBrokerResult::AddInstance(const CMPIInstance* instance) {
  TBrokerInstance& given = TBrokerInstance::From(instance);
  const std::lock_guard<std::mutex> lock(m_mutex);
  Require(m_kind == EKind::kInstances || m_kind == EKind::kData);
  if (m_kind == EKind::kInstances) {
    m_content.instances.push_back(given.Share());
  } else {
    m_content.data.push_back(TCIMValue::Instance(given.GetData()));
  }
}

void TBrokerResult::AddPath(const CMPIObjectPath* path) {
  const TPathContent& given = TBrokerPath::From(path).GetContent();
  const std::lock_guard<std::mutex> lock(m_mutex);
  Require(m_kind == EKind::kPaths || m_kind == EKind::kData);
  if (m_kind == EKind::kPaths) {
    m_content.paths.push_back(given);
  } else {
    m_content.data.emplace_back(given.ToReference());
  }
}

void TBrokerResult::AddData(const TCIMValue& value) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  Require(m_kind == EKind::kData);
  m_content.data.push_back(value);
}

void TBrokerResult::AddError(const std::string& message) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  Require(true);
  if (m_content.error.empty()) m_content.error = message;
}

std::unique_ptr<TBrokerResult> TBrokerResult::Copy() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  auto copy = std::make_unique<TBrokerResult>(m_kind);
  copy->SetLifetime(ELifetime::kClone);
  copy->m_isOpen = m_isOpen;
  copy->m_content = m_content;
  return copy;
}

const CMPIResultFT TBrokerResult::kTable = {kBrokerVersion, Release,        Clone,
                                            ReturnData,     ReturnInstance, ReturnObjectPath,
                                            ReturnDone,     ReturnError};

}  // namespace NZEPQEL20::cmpi
