// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/THardware.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "providers/hardware/TDeviceInventory.h"
#include "providers/hardware/TDiskFileReadVerify.h"
#include "providers/hardware/TDiskReadVerify.h"
#include "providers/hardware/TMemoryPattern.h"
#include "providers/hardware/TNetworkDriverTest.h"
#include "providers/hardware/TNetworkLinkCheck.h"
#include "providers/hardware/TNvmeSelfTest.h"
#include "providers/hardware/TProcessorStress.h"
#include "providers/hardware/TSmartSelfTest.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::size_t kNamedDevices = 3;

using TReason = std::tuple<std::string, std::string, std::string>;  // Service, reason, remedy.

// One entry per test and reason, not per device: a missing program would otherwise be reported
// once for each of two hundred processors.
std::vector<THardware::TUnoffered> Summarize(
    const std::map<TReason, std::vector<std::string>>& reasons) {
  std::vector<THardware::TUnoffered> unoffered;
  for (const auto& [reason, names] : reasons) {
    THardware::TUnoffered entry;
    std::tie(entry.serviceName, entry.reason, entry.remedy) = reason;
    entry.id = "DRH:" + CleanName(entry.serviceName + ": " + entry.reason);
    const std::size_t shown = std::min(names.size(), kNamedDevices);
    entry.deviceNames =
        Join({names.begin(), names.begin() + static_cast<std::ptrdiff_t>(shown)}, "; ");
    if (names.size() > shown) {
      entry.deviceNames += "; and " + std::to_string(names.size() - shown) + " more";
    }
    unoffered.push_back(std::move(entry));
  }
  return unoffered;
}

}  // namespace

THardware::THardware(TConfig config, THostFiles files, TCallerRights rights, TToolFinder finder)
    : m_tools(config, std::move(files), rights, std::move(finder)) {
  MakeTests();
}

void THardware::MakeTests() {
  m_tests.push_back(std::make_unique<TProcessorStress>(m_tools, false));
  m_tests.push_back(std::make_unique<TProcessorStress>(m_tools, true));
  m_tests.push_back(std::make_unique<TMemoryPattern>(m_tools, false));
  m_tests.push_back(std::make_unique<TMemoryPattern>(m_tools, true));
  auto smart = std::make_unique<TSmartSelfTest>(m_tools);
  auto nvme = std::make_unique<TNvmeSelfTest>(m_tools);
  auto driver = std::make_unique<TNetworkDriverTest>(m_tools);
  auto read = std::make_unique<TDiskReadVerify>(
      m_tools, std::vector<const IDiagnosticTest*>{smart.get(), nvme.get()});
  auto link = std::make_unique<TNetworkLinkCheck>(m_tools, *driver);
  m_tests.push_back(std::move(smart));
  m_tests.push_back(std::move(nvme));
  m_tests.push_back(std::move(read));
  m_tests.push_back(std::make_unique<TDiskFileReadVerify>(m_tools));
  m_tests.push_back(std::move(driver));
  m_tests.push_back(std::move(link));
}

std::shared_ptr<const THardware::TView> THardware::Refresh() {
  auto view = std::make_shared<TView>();
  view->devices = TDeviceInventory(m_tools.GetFiles()).FindDevices();
  std::map<TReason, std::vector<std::string>> reasons;
  for (const TDevice& device : view->devices) {
    for (const auto& test : m_tests) {
      const TAvailability availability = test->Check(device);
      if (availability.answer == EAvailability::kOffered) {
        view->offers.push_back({test.get(), device});
      } else if (availability.answer == EAvailability::kWithheld) {
        reasons[{test->GetService().name, availability.reason, availability.remedy}].push_back(
            device.id);
      }
    }
  }
  view->unoffered = Summarize(reasons);
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_view = view;
  return m_view;
}

std::shared_ptr<const THardware::TView> THardware::GetView() {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_view) return m_view;
  }
  return Refresh();
}

std::vector<const IDiagnosticTest*> THardware::GetTests() {
  const std::shared_ptr<const TView> view = GetView();
  std::vector<const IDiagnosticTest*> tests;
  for (const auto& test : m_tests) {
    const bool isOffered =
        std::any_of(view->offers.begin(), view->offers.end(),
                    [&test](const TOffer& offer) { return offer.test == test.get(); });
    if (isOffered) tests.push_back(test.get());
  }
  return tests;
}

std::shared_ptr<const TDevice> THardware::FindDevice(const std::string& id) {
  const std::shared_ptr<const TView> view = GetView();
  for (const TDevice& device : view->devices) {
    if (device.id == id) return {view, &device};
  }
  return nullptr;
}

std::shared_ptr<const THardware::TOffer> THardware::FindOffer(const std::string& serviceName,
                                                              const std::string& deviceId) {
  const std::shared_ptr<const TView> view = GetView();
  for (const TOffer& offer : view->offers) {
    if (offer.test->GetService().name == serviceName && offer.device.id == deviceId) {
      return {view, &offer};
    }
  }
  return nullptr;
}

}  // namespace hardware
