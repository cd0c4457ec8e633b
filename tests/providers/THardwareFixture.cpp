// SPDX-License-Identifier: Apache-2.0
#include "tests/providers/THardwareFixture.h"

#include <chrono>
#include <thread>

namespace hardware {

const char* const kGoodStress =
    "stress-ng: metrc: [1] cpu 2601 1.00 1.00 0.00 1297.38 1297.51\n"
    "stress-ng: info:  [1] successful run completed in 1.00s\n";
const char* const kGoodMemory =
    "memtester version 4.6.0 (64-bit)\nwant 16MB (16777216 bytes)\n"
    "got  16MB (16777216 bytes), trying mlock ...locked.\nLoop 1/1:\n"
    "  16-bit Writes       : ok\n\nDone.\n";

THardwareFixture::THardwareFixture() {
  m_config.processorSeconds = 1;
  m_config.networkSeconds = 1;
  m_config.diskSeconds = 1;
  m_config.selfTestPollSeconds = 1;
  m_rights = {true, true, true, 0};
}

void THardwareFixture::Open() {
  m_hardware = std::make_unique<THardware>(m_config, THostFiles(m_machine.GetRoot()), m_rights,
                                           TToolFinder(m_machine.GetToolFolder()));
}

std::string THardwareFixture::Start(const std::string& serviceName, const std::string& deviceId) {
  const auto offer = m_hardware->FindOffer(serviceName, deviceId);
  if (offer == nullptr) {
    ADD_FAILURE() << serviceName << " is not offered for " << deviceId;
    return {};
  }
  const TJobTable::TStarted started = m_hardware->GetJobs().Start(*offer->test, offer->device);
  EXPECT_EQ(started.result, TJobTable::EStart::kStarted) << started.reason;
  return started.jobId;
}

TRecord THardwareFixture::RunToEnd(const std::string& serviceName, const std::string& deviceId) {
  const std::string jobId = Start(serviceName, deviceId);
  m_hardware->GetJobs().WaitFor(jobId);
  const std::optional<TRecord> record = m_hardware->GetJobs().FindRecord(jobId + ":record");
  if (!record) ADD_FAILURE() << "no record of " << serviceName << " on " << deviceId;
  return record.value_or(TRecord());
}

void THardwareFixture::WaitForPercent(const std::string& jobId, unsigned int percent) {
  for (int i = 0; i < 1000; ++i) {
    const std::optional<TJobView> job = m_hardware->GetJobs().FindJob(jobId);
    if (job && job->percent >= percent) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ADD_FAILURE() << jobId << " never came to " << percent << " %";
}

std::vector<std::string> THardwareFixture::ListOffers() {
  std::vector<std::string> offers;
  for (const THardware::TOffer& offer : m_hardware->Refresh()->offers) {
    offers.push_back(offer.test->GetService().name + " on " + offer.device.id);
  }
  return offers;
}

}  // namespace hardware
