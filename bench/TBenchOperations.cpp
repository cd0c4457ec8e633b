// SPDX-License-Identifier: Apache-2.0
#include "bench/TBenchOperations.h"

#include <utility>

#include "platform/contract/TQELException.h"

namespace bench {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMClassDeclaration;
using NZEPQEL20::TCIMInstanceData;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TQELException;

namespace {

constexpr unsigned int kServices = 10;

TCIMReference ServicePath(unsigned int number) {
  return {"root/cimv2",
          "BENCH_DiagnosticTest",
          {{"Name", TCIMValue("Test " + std::to_string(number))}}};
}

TCIMReference DevicePath(unsigned int number) {
  return {"root/cimv2",
          "BENCH_DiskDrive",
          {{"CreationClassName", TCIMValue("BENCH_DiskDrive")},
           {"DeviceID", TCIMValue("disk" + std::to_string(number))}}};
}

}  // namespace

TBenchOperations::TBenchOperations(unsigned int devices) {
  auto declaration = std::make_shared<TCIMClassDeclaration>();
  declaration->name = "CIM_AvailableDiagnosticService";
  m_declaration = std::move(declaration);
  for (unsigned int i = 0; i < kServices; ++i) AddService(i);
  for (unsigned int i = 0; i < devices; ++i) AddDevice(i);
}

void TBenchOperations::Keep(TCIMInstanceData instance) {
  std::string path = instance.path.GetPath();
  m_instances.emplace(std::move(path), std::move(instance));
}

void TBenchOperations::AddService(unsigned int number) {
  TCIMInstanceData service{ServicePath(number), {}};
  service.Set("CreationClassName", TCIMValue("BENCH_DiagnosticTest"));
  service.Set("Name", TCIMValue("Test " + std::to_string(number)));
  service.Set("Characteristics",
              TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(2), TCIMValue::UInt16(8)}));
  Keep(std::move(service));
}

void TBenchOperations::AddDevice(unsigned int number) {
  TCIMInstanceData device{DevicePath(number), {}};
  device.Set("DeviceID", TCIMValue("disk" + std::to_string(number)));
  device.Set("ElementName", TCIMValue("Disk in bay " + std::to_string(number)));
  Keep(std::move(device));

  TCIMInstanceData association{{"root/cimv2", "BENCH_AvailableService"}, {}};
  association.Set("ServiceProvided", TCIMValue(ServicePath(number % kServices)));
  association.Set("UserOfService", TCIMValue(DevicePath(number)));
  association.path.SetKey("ServiceProvided", TCIMValue(ServicePath(number % kServices)));
  association.path.SetKey("UserOfService", TCIMValue(DevicePath(number)));
  m_associations.push_back(std::move(association));
}

std::shared_ptr<const TCIMClassDeclaration> TBenchOperations::GetClass(
    const std::string& /*nameSpace*/, const std::string& className) {
  if (className == m_declaration->name) return m_declaration;
  auto declaration = std::make_shared<TCIMClassDeclaration>();
  declaration->name = className;
  return declaration;
}

void TBenchOperations::EnumerateInstances(const std::string& /*nameSpace*/,
                                          const std::string& /*className*/,
                                          const TInstanceSink& sink) {
  for (const TCIMInstanceData& association : m_associations) {
    if (!sink(TCIMInstanceData(association))) return;
  }
}

TCIMInstanceData TBenchOperations::GetInstance(const TCIMReference& path) {
  const auto found = m_instances.find(path.GetPath());
  if (found == m_instances.end()) {
    throw TQELException(NZEPQEL20::TQELStatusCode::kNotFound, path.GetPath() + ": not there");
  }
  return found->second;
}

}  // namespace bench
