// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TCimModel.h"

#include <algorithm>
#include <optional>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr const char* kProcessor = "DRH_Processor";
constexpr const char* kMemory = "DRH_Memory";
constexpr const char* kDisk = "DRH_DiskDrive";
constexpr const char* kPort = "DRH_EthernetPort";
constexpr const char* kTest = "DRH_DiagnosticTest";
constexpr const char* kOffer = "DRH_AvailableDiagnosticService";
constexpr const char* kJob = "DRH_Job";
constexpr const char* kRecord = "DRH_CompletionRecord";
constexpr const char* kRecordOf = "DRH_RecordAppliesToElement";
constexpr const char* kUnoffered = "DRH_UnofferedTest";

constexpr std::uint16_t kEnabled = 2;              // EnabledState
constexpr std::uint16_t kResults = 2;              // RecordType
constexpr std::uint16_t kEthernet = 2;             // LinkTechnology
constexpr std::uint64_t kJobKeptTime = 300000000;  // TimeBeforeRemoval, in microseconds.

bool IsSameName(const std::string& left, const std::string& right) {
  return ::strcasecmp(left.c_str(), right.c_str()) == 0;
}

const char* ClassOf(EDeviceKind kind) {
  switch (kind) {
    case EDeviceKind::kProcessor:
      return kProcessor;
    case EDeviceKind::kMemory:
      return kMemory;
    case EDeviceKind::kDisk:
      return kDisk;
    case EDeviceKind::kNetworkPort:
      break;
  }
  return kPort;
}

// The key that tells one object of a class from the others.
const char* MainKeyOf(const std::string& className) {
  if (IsSameName(className, kTest)) return "Name";
  for (const char* const known : {kJob, kRecord, kUnoffered}) {
    if (IsSameName(className, known)) return "InstanceID";
  }
  return "DeviceID";
}

TCimTime ToTime(std::chrono::system_clock::time_point time) {
  const auto since = std::chrono::duration_cast<std::chrono::microseconds>(time.time_since_epoch());
  return {static_cast<std::uint64_t>(std::max<std::int64_t>(since.count(), 0)), false};
}

TCimPath MakeIdPath(const char* className, const std::string& id) {
  TCimPath path;
  path.className = className;
  path.keys["InstanceID"] = id;
  return path;
}

// An instance that holds its keys as properties, as CIM wants it.
TCimInstance StartInstance(TCimPath path) {
  TCimInstance instance;
  for (const auto& [name, value] : path.keys) instance.properties.emplace_back(name, value);
  for (const TCimRole& role : path.roles) instance.properties.emplace_back(role.name, role.path);
  instance.path = std::move(path);
  return instance;
}

TCimPath MakeAssociationPath(const char* className, const char* first, TCimPath firstPath,
                             const char* second, TCimPath secondPath) {
  TCimPath path;
  path.className = className;
  path.roles.push_back({first, std::move(firstPath)});
  path.roles.push_back({second, std::move(secondPath)});
  return path;
}

// The universal form is twelve hexadecimal digits.
std::string ToPermanentAddress(std::string address) {
  address.erase(std::remove(address.begin(), address.end(), ':'), address.end());
  return address;
}

std::string DescribeState(const TJobView& job) {
  switch (job.state) {
    case EJobState::kStarting:
      return "starting";
    case EJobState::kRunning:
      return "running";
    case EJobState::kCompleted:
      return "completed; the completion record tells what was found";
    case EJobState::kTerminated:
      return "stopped on request";
    case EJobState::kKilled:
      return "killed on request or at its deadline";
    case EJobState::kException:
      break;
  }
  return "the test could not be made; the completion record tells why";
}

std::vector<std::uint16_t> OperationalStatusOf(EJobState state) {
  if (!IsFinal(state)) return {2};                     // OK
  if (state == EJobState::kCompleted) return {17, 2};  // Completed, OK
  if (state == EJobState::kException) return {6};      // Error
  return {10};                                         // Stopped
}

// Wider or narrower than the declared type: clients differ.
std::optional<std::uint64_t> ToNumber(const TCimValue& value) {
  if (const auto* const number = std::get_if<std::uint16_t>(&value)) return *number;
  if (const auto* const number = std::get_if<std::uint32_t>(&value)) return *number;
  if (const auto* const number = std::get_if<std::uint64_t>(&value)) return *number;
  return std::nullopt;
}

}  // namespace

bool IsSameObject(const TCimPath& path, const TCimPath& candidate) {
  if (!IsSameName(path.className, candidate.className)) return false;
  for (const TCimRole& role : candidate.roles) {
    const auto given =
        std::find_if(path.roles.begin(), path.roles.end(),
                     [&role](const TCimRole& other) { return IsSameName(other.name, role.name); });
    if (given == path.roles.end() || !IsSameObject(given->path, role.path)) return false;
  }
  if (candidate.roles.empty() && path.keys.count(MainKeyOf(path.className)) == 0) return false;
  return std::all_of(path.keys.begin(), path.keys.end(), [&candidate](const auto& key) {
    const auto own = candidate.keys.find(key.first);
    return own != candidate.keys.end() && own->second == key.second;
  });
}

TCimModel::TCimModel(THardware& hardware, std::string systemName)
    : m_hardware(hardware), m_systemName(std::move(systemName)) {}

TCimPath TCimModel::MakeSystemPath(const char* className, const char* key,
                                   const std::string& value) const {
  TCimPath path;
  path.className = className;
  path.keys["SystemCreationClassName"] = "CIM_ComputerSystem";
  path.keys["SystemName"] = m_systemName;
  path.keys["CreationClassName"] = className;
  path.keys[key] = value;
  return path;
}

TCimPath TCimModel::MakePath(const TDevice& device) const {
  return MakeSystemPath(ClassOf(device.kind), "DeviceID", device.id);
}

TCimPath TCimModel::MakePath(const TService& service) const {
  return MakeSystemPath(kTest, "Name", service.name);
}

TCimInstance TCimModel::Show(const TDevice& device) const {
  TCimInstance instance = StartInstance(MakePath(device));
  auto& properties = instance.properties;
  properties.emplace_back("ElementName", device.name);
  properties.emplace_back("EnabledState", kEnabled);
  if (device.kind == EDeviceKind::kProcessor && device.clockMHz > 0) {
    properties.emplace_back("MaxClockSpeed", std::uint32_t{device.clockMHz});
  }
  if (device.kind == EDeviceKind::kMemory) {
    properties.emplace_back("BlockSize", std::uint64_t{1024});
    properties.emplace_back("NumberOfBlocks", device.bytes / 1024);
  }
  if (device.kind == EDeviceKind::kDisk) {
    properties.emplace_back("MaxMediaSize", device.bytes / 1024);
  }
  if (device.kind == EDeviceKind::kNetworkPort) {
    properties.emplace_back("LinkTechnology", kEthernet);
    properties.emplace_back("PermanentAddress", ToPermanentAddress(device.address));
    if (device.linkBitsPerSecond > 0) properties.emplace_back("Speed", device.linkBitsPerSecond);
  }
  return instance;
}

TCimInstance TCimModel::Show(const TService& service) const {
  TCimInstance instance = StartInstance(MakePath(service));
  auto& properties = instance.properties;
  properties.emplace_back("ElementName", service.name);
  properties.emplace_back("Description", service.description);
  properties.emplace_back("EnabledState", kEnabled);
  properties.emplace_back("Started", true);
  if (!service.characteristics.empty()) {
    properties.emplace_back("Characteristics", service.characteristics);
  }
  properties.emplace_back("TestTypes", service.testTypes);
  return instance;
}

TCimInstance TCimModel::Show(const THardware::TOffer& offer) const {
  const TService& service = offer.test->GetService();
  TCimInstance instance = StartInstance(MakeAssociationPath(
      kOffer, "ServiceProvided", MakePath(service), "UserOfService", MakePath(offer.device)));
  instance.properties.emplace_back("EstimatedDurationOfService", service.durationUnit);
  instance.properties.emplace_back("EstimatedDurationQualifier", service.durationCount);
  return instance;
}

TCimInstance TCimModel::Show(const TJobView& job) {
  TCimInstance instance = StartInstance(MakeIdPath(kJob, job.id));
  auto& properties = instance.properties;
  properties.emplace_back("Name", job.serviceName);
  properties.emplace_back("ElementName", job.serviceName + " on " + job.device.id);
  properties.emplace_back("JobState", static_cast<std::uint16_t>(job.state));
  properties.emplace_back("JobStatus", DescribeState(job));
  properties.emplace_back("PercentComplete", static_cast<std::uint16_t>(job.percent));
  properties.emplace_back("OperationalStatus", OperationalStatusOf(job.state));
  properties.emplace_back("StartTime", ToTime(job.started));
  properties.emplace_back("ElapsedTime",
                          TCimTime{static_cast<std::uint64_t>(job.elapsed.count()) * 1000, true});
  properties.emplace_back("TimeBeforeRemoval", TCimTime{kJobKeptTime, true});
  properties.emplace_back("DeleteOnCompletion", true);
  return instance;
}

TCimInstance TCimModel::Show(const TRecord& record) {
  TCimInstance instance = StartInstance(MakeIdPath(kRecord, record.id));
  auto& properties = instance.properties;
  properties.emplace_back("ElementName", record.serviceName + " on " + record.device.id);
  properties.emplace_back("ServiceName", record.serviceName);
  properties.emplace_back("ManagedElementName", record.device.name);
  properties.emplace_back("CompletionState", static_cast<std::uint16_t>(record.state));
  properties.emplace_back("RecordType", kResults);
  properties.emplace_back("RecordData", record.data);
  properties.emplace_back("CreationTimeStamp", ToTime(record.created));
  return instance;
}

TCimInstance TCimModel::ShowAssociation(const TRecord& record) const {
  return StartInstance(MakeAssociationPath(kRecordOf, "Antecedent", MakeIdPath(kRecord, record.id),
                                           "Dependent", MakePath(record.device)));
}

TCimInstance TCimModel::Show(const THardware::TUnoffered& unoffered) {
  TCimInstance instance = StartInstance(MakeIdPath(kUnoffered, unoffered.id));
  auto& properties = instance.properties;
  properties.emplace_back("ServiceName", unoffered.serviceName);
  properties.emplace_back("ElementName", unoffered.deviceNames);
  properties.emplace_back("Reason", unoffered.reason);
  properties.emplace_back("Remedy", unoffered.remedy);
  return instance;
}

std::vector<TCimInstance> TCimModel::Enumerate(const std::string& className) {
  const bool isRecorded = IsSameName(className, kJob) || IsSameName(className, kRecord) ||
                          IsSameName(className, kRecordOf);
  if (!isRecorded) m_hardware.Refresh();
  return List(className);
}

std::vector<TCimInstance> TCimModel::List(const std::string& className) {
  std::vector<TCimInstance> instances;
  const auto view = m_hardware.GetView();
  const auto is = [&className](const char* name) { return IsSameName(className, name); };
  if (is(kProcessor) || is(kMemory) || is(kDisk) || is(kPort)) {
    for (const TDevice& device : view->devices) {
      if (is(ClassOf(device.kind))) instances.push_back(Show(device));
    }
  } else if (is(kTest)) {
    for (const IDiagnosticTest* const test : m_hardware.GetTests()) {
      instances.push_back(Show(test->GetService()));
    }
  } else if (is(kOffer)) {
    for (const THardware::TOffer& offer : view->offers) instances.push_back(Show(offer));
  } else if (is(kJob)) {
    for (const TJobView& job : m_hardware.GetJobs().GetJobs()) instances.push_back(Show(job));
  } else if (is(kRecord) || is(kRecordOf)) {
    for (const TRecord& record : m_hardware.GetJobs().GetRecords()) {
      instances.push_back(is(kRecord) ? Show(record) : ShowAssociation(record));
    }
  } else if (is(kUnoffered)) {
    for (const THardware::TUnoffered& entry : view->unoffered) instances.push_back(Show(entry));
  } else {
    throw TCimError(TCimError::kInvalidClass, className + ": not a class of this provider");
  }
  return instances;
}

TCimInstance TCimModel::Get(const TCimPath& path) {
  for (TCimInstance& instance : List(path.className)) {
    if (IsSameObject(path, instance.path)) return std::move(instance);
  }
  std::string keys;
  for (const auto& [name, value] : path.keys)
    keys.append(".").append(name).append("=\"").append(value).append("\"");
  throw TCimError(TCimError::kNotFound, path.className + CleanText(keys) + ": no such instance");
}

std::vector<TCimInstance> TCimModel::FindReferences(const TCimPath& object) {
  std::vector<TCimInstance> found;
  for (const char* const association : {kOffer, kRecordOf}) {
    for (TCimInstance& instance : List(association)) {
      const auto& roles = instance.path.roles;
      const bool isEnd = std::any_of(roles.begin(), roles.end(), [&object](const TCimRole& role) {
        return IsSameObject(object, role.path);
      });
      if (isEnd) found.push_back(std::move(instance));
    }
  }
  return found;
}

std::uint32_t TCimModel::Invoke(const TCimPath& target, const std::string& method,
                                const TCimArguments& in, TCimArguments& out) {
  if (IsSameName(target.className, kTest)) {
    if (IsSameName(method, "RunDiagnostic")) return RunTest(target, in, false, out);
    if (IsSameName(method, "RunDiagnosticService")) return RunTest(target, in, true, out);
  } else if (IsSameName(target.className, kJob) && IsSameName(method, "RequestStateChange")) {
    return RequestStateChange(target, in);
  }
  throw TCimError(TCimError::kMethodNotFound,
                  target.className + "." + method + ": no such method here");
}

std::uint32_t TCimModel::RunTest(const TCimPath& target, const TCimArguments& in, bool isService,
                                 TCimArguments& out) {
  constexpr std::uint32_t kDone = 0;
  constexpr std::uint32_t kFailed = 4;
  constexpr std::uint32_t kInvalidParameter = 5;
  constexpr std::uint32_t kBusy = 6;
  constexpr std::uint32_t kJobStarted = 4096;
  Get(target);  // Throws unless it is there.
  const auto offer = FindOffer(target, in);
  if (offer == nullptr) return kInvalidParameter;
  TJobTable& jobs = m_hardware.GetJobs();
  const TJobTable::TStarted started = jobs.Start(*offer->test, offer->device);
  if (started.result == TJobTable::EStart::kBusy) return kBusy;
  if (started.result == TJobTable::EStart::kFailed) return kFailed;
  out["Job"] = MakeIdPath(kJob, started.jobId);
  if (isService) return kDone;
  if (!offer->test->GetService().isBlocking) return kJobStarted;
  jobs.WaitFor(started.jobId);
  return kDone;
}

// The offer of the test `target` for the device that the parameters name; null when they name
// none, or one that the test is not for.
std::shared_ptr<const THardware::TOffer> TCimModel::FindOffer(const TCimPath& target,
                                                              const TCimArguments& in) {
  const auto element = in.find("ManagedElement");
  if (element == in.end()) return nullptr;
  const auto* const path = std::get_if<TCimPath>(&element->second);
  if (path == nullptr || path->keys.count("DeviceID") == 0) return nullptr;
  auto offer = m_hardware.FindOffer(target.keys.at("Name"), path->keys.at("DeviceID"));
  return offer != nullptr && IsSameObject(*path, MakePath(offer->device)) ? offer : nullptr;
}

std::uint32_t TCimModel::RequestStateChange(const TCimPath& target, const TCimArguments& in) {
  constexpr std::uint32_t kNotSupported = 1;
  constexpr std::uint32_t kInvalidParameter = 5;
  constexpr std::uint32_t kStarted = 4096;
  constexpr std::uint32_t kInvalidTransition = 4097;
  constexpr std::uint32_t kNoTimeout = 4098;
  constexpr std::uint64_t kTerminate = 4;
  constexpr std::uint64_t kKill = 5;
  constexpr std::uint64_t kLastState = 6;
  Get(target);  // Throws unless it is there.
  const auto timeout = in.find("TimeoutPeriod");
  if (timeout != in.end()) {
    const auto* const time = std::get_if<TCimTime>(&timeout->second);
    if (time != nullptr && time->microseconds != 0) return kNoTimeout;
  }
  const auto state = in.find("RequestedState");
  const auto number = state != in.end() ? ToNumber(state->second) : std::nullopt;
  if (!number || *number < 2) return kInvalidParameter;
  if (*number != kTerminate && *number != kKill) {
    return *number <= kLastState ? kNotSupported : kInvalidParameter;
  }
  const auto asked = m_hardware.GetJobs().RequestStop(
      target.keys.at("InstanceID"), *number == kKill ? EStop::kKill : EStop::kTerminate);
  // A job that is over, or that aged out of the table meanwhile, changes no more.
  return asked == TJobTable::EStopResult::kAsked ? kStarted : kInvalidTransition;
}

}  // namespace hardware
