// SPDX-License-Identifier: Apache-2.0
//
// A provider whose tests end in every way that a test can end: one device, one service per ending.
// DIAGSTEST_MANNER makes all of them answer in the way of some vendors, see IsOfManner().
#include <strings.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/cmpi/abi/cmpi.h"

namespace {

// Values of CompletionState.
constexpr CMPIUint16 kOk = 2;
constexpr CMPIUint16 kIncomplete = 4;
constexpr CMPIUint16 kFailed = 5;
constexpr CMPIUint16 kAborted = 6;
// Values of JobState.
constexpr CMPIUint16 kRunning = 4;
constexpr CMPIUint16 kCompleted = 7;
constexpr CMPIUint16 kKilled = 9;
// Values that the methods return.
constexpr CMPIUint32 kNoError = 0;
constexpr CMPIUint32 kNotSupported = 1;
constexpr CMPIUint32 kInvalidParameter = 5;
constexpr CMPIUint32 kBusy = 6;
constexpr CMPIUint32 kInvalidTransition = 4097;
// EstimatedDurationOfService.
constexpr CMPIUint16 kMinutes = 4;

constexpr char kTest[] = "TST_DiagnosticTest";
constexpr char kOffer[] = "TST_AvailableDiagnosticService";
constexpr char kJob[] = "TST_ConcreteJob";
constexpr char kRecord[] = "TST_DiagnosticCompletionRecord";
constexpr char kRecordOf[] = "TST_RecordAppliesToElement";
constexpr char kDevice[] = "TST_DiskDrive";
constexpr char kDeviceId[] = "tst0";
constexpr char kDeviceName[] = "Test device";

// How a run goes, beside its verdict.
enum class EConduct { kPlain, kServiceOnly, kNoJob, kPolls, kNoRecord, kTimed, kHangs, kBadText };

struct TService {
  const char* name;
  EConduct conduct;
  CMPIUint16 verdict;
};

constexpr TService kServices[] = {
    {"TestPass", EConduct::kPlain, kOk},          {"TestFail", EConduct::kPlain, kFailed},
    {"TestAborted", EConduct::kPlain, kAborted},  {"TestIncomplete", EConduct::kPlain, kIncomplete},
    {"TestService", EConduct::kServiceOnly, kOk}, {"TestNone", EConduct::kNoJob, kOk},
    {"TestPolls", EConduct::kPolls, kOk},         {"TestNoRecord", EConduct::kNoRecord, kOk},
    {"TestTimed", EConduct::kTimed, kOk},         {"TestHang", EConduct::kHangs, kAborted},
    {"TestBadText", EConduct::kBadText, kOk},
};

constexpr CMPIUint16 kPolls[] = {10, 40, 70, 100};

// Whether the environment asks for a manner: "newer" (without RunDiagnostic), "busy" (no run),
// "text" and "instance" (the job in these forms, behind another out-parameter), "null" (no job of
// RunDiagnostic), "frozen" (a job that is killed keeps its percentage).
bool IsOfManner(const char* manner) {
  const char* const wanted = std::getenv("DIAGSTEST_MANNER");
  return wanted != nullptr && std::strcmp(wanted, manner) == 0;
}

// One run of a service: its job and, once it has ended, its record.
struct TRun {
  std::string id;
  const TService* service;
  std::size_t fetches = 0;
  bool isKilled = false;

  CMPIUint16 GetPercent() const {
    if (isKilled && !IsOfManner("frozen")) return 100;
    if (service->conduct == EConduct::kHangs) return 20;
    if (service->conduct != EConduct::kPolls) return 100;
    const std::size_t last = std::size(kPolls) - 1;
    const std::size_t poll = fetches == 0 ? 0 : fetches - 1;
    return kPolls[poll < last ? poll : last];
  }
  CMPIUint16 GetState() const {
    if (isKilled) return kKilled;
    return GetPercent() == 100 ? kCompleted : kRunning;
  }
  bool HasRecord() const {
    return (isKilled || GetPercent() == 100) && service->conduct != EConduct::kNoRecord;
  }
};

const CMPIBroker* broker = nullptr;
std::mutex mutex;
std::vector<TRun> runs;

using TInstances = std::vector<CMPIInstance*>;

constexpr CMPIStatus kGood{CMPI_RC_OK, nullptr};

CMPIStatus Fail(CMPIrc code, const char* message) {
  return {code, broker->eft->newString(broker, message, nullptr)};
}

const char* TextOf(const CMPIString* text) {
  return text != nullptr ? text->ft->getCharPtr(text, nullptr) : "";
}

bool IsSameName(const char* left, const char* right) {
  return ::strcasecmp(left, right) == 0;
}

std::string ClassOf(const CMPIObjectPath* path) {
  return TextOf(path->ft->getClassName(path, nullptr));
}

// An instance under construction.
class TBuilder {
 public:
  TBuilder(const CMPIObjectPath* asked, const char* className) {
    const char* const ns = TextOf(asked->ft->getNameSpace(asked, nullptr));
    m_path = broker->eft->newObjectPath(broker, ns, className, nullptr);
    m_instance = broker->eft->newInstance(broker, m_path, nullptr);
  }

  TBuilder& Text(const char* name, const std::string& text) {
    m_instance->ft->setProperty(m_instance, name, reinterpret_cast<const CMPIValue*>(text.c_str()),
                                CMPI_chars);
    return *this;
  }
  TBuilder& Number(const char* name, CMPIUint16 number) {
    m_instance->ft->setProperty(m_instance, name, reinterpret_cast<const CMPIValue*>(&number),
                                CMPI_uint16);
    return *this;
  }
  TBuilder& Wide(const char* name, CMPIUint32 number) {
    m_instance->ft->setProperty(m_instance, name, reinterpret_cast<const CMPIValue*>(&number),
                                CMPI_uint32);
    return *this;
  }
  TBuilder& TextKey(const char* name, const std::string& text) {
    m_path->ft->addKey(m_path, name, reinterpret_cast<const CMPIValue*>(text.c_str()), CMPI_chars);
    return Text(name, text);
  }
  TBuilder& Reference(const char* name, CMPIObjectPath* to) {
    m_path->ft->addKey(m_path, name, reinterpret_cast<const CMPIValue*>(&to), CMPI_ref);
    m_instance->ft->setProperty(m_instance, name, reinterpret_cast<const CMPIValue*>(&to),
                                CMPI_ref);
    return *this;
  }
  TBuilder& SystemKeys(const char* className) {
    return TextKey("SystemCreationClassName", "CIM_ComputerSystem")
        .TextKey("SystemName", "test-system")
        .TextKey("CreationClassName", className);
  }
  CMPIInstance* Take() {
    m_instance->ft->setObjectPath(m_instance, m_path);
    return m_instance;
  }
  CMPIObjectPath* TakePath() { return m_path; }

 private:
  CMPIObjectPath* m_path = nullptr;
  CMPIInstance* m_instance = nullptr;
};

TBuilder StartTest(const CMPIObjectPath* asked, const TService& service) {
  return TBuilder(asked, kTest).SystemKeys(kTest).TextKey("Name", service.name);
}

TBuilder StartDevice(const CMPIObjectPath* asked) {
  return TBuilder(asked, kDevice).SystemKeys(kDevice).TextKey("DeviceID", kDeviceId);
}

TBuilder StartJob(const CMPIObjectPath* asked, const TRun& run) {
  return TBuilder(asked, kJob).TextKey("InstanceID", run.id);
}

TBuilder StartRecord(const CMPIObjectPath* asked, const TRun& run) {
  return TBuilder(asked, kRecord).TextKey("InstanceID", run.id + ":record");
}

std::string DataOf(const TRun& run) {
  if (run.service->conduct != EConduct::kBadText) {
    return std::string("Data of ") + run.service->name + "\n";
  }
  return "broken \xC3\x28 \xFF bell \x07 colour \x1B[31mred\x1B[0m end\n";
}

CMPIInstance* MakeOffer(const CMPIObjectPath* asked, const TService& service) {
  TBuilder offer(asked, kOffer);
  offer.Reference("ServiceProvided", StartTest(asked, service).TakePath());
  offer.Reference("UserOfService", StartDevice(asked).TakePath());
  if (service.conduct == EConduct::kTimed) {
    offer.Number("EstimatedDurationOfService", kMinutes).Wide("EstimatedDurationQualifier", 1);
  }
  return offer.Take();
}

CMPIInstance* MakeJob(const CMPIObjectPath* asked, const TRun& run) {
  return StartJob(asked, run)
      .Text("Name", run.service->name)
      .Number("JobState", run.GetState())
      .Number("PercentComplete", run.GetPercent())
      .Take();
}

CMPIInstance* MakeRecord(const CMPIObjectPath* asked, const TRun& run) {
  return StartRecord(asked, run)
      .Text("ServiceName", run.service->name)
      .Text("ManagedElementName", kDeviceName)
      .Number("RecordType", 2)
      .Number("CompletionState", run.isKilled ? kAborted : run.service->verdict)
      .Text("RecordData", DataOf(run))
      .Take();
}

void AddOfRuns(const CMPIObjectPath* asked, const std::string& type, TInstances& found) {
  for (const TRun& run : runs) {
    if (IsSameName(type.c_str(), kJob)) found.push_back(MakeJob(asked, run));
    if (!run.HasRecord()) continue;
    if (IsSameName(type.c_str(), kRecord)) found.push_back(MakeRecord(asked, run));
    if (!IsSameName(type.c_str(), kRecordOf)) continue;
    found.push_back(TBuilder(asked, kRecordOf)
                        .Reference("Antecedent", StartRecord(asked, run).TakePath())
                        .Reference("Dependent", StartDevice(asked).TakePath())
                        .Take());
  }
}

// Every instance of the class that `asked` names.
TInstances FindAll(const CMPIObjectPath* asked) {
  const std::string type = ClassOf(asked);
  TInstances found;
  if (IsSameName(type.c_str(), kDevice)) {
    found.push_back(StartDevice(asked).Text("ElementName", kDeviceName).Take());
  }
  for (const TService& service : kServices) {
    if (IsSameName(type.c_str(), kTest)) {
      found.push_back(StartTest(asked, service).Text("ElementName", service.name).Take());
    }
    if (IsSameName(type.c_str(), kOffer)) found.push_back(MakeOffer(asked, service));
  }
  AddOfRuns(asked, type, found);
  return found;
}

bool IsSamePath(const CMPIObjectPath* left, const CMPIObjectPath* right);

bool IsSameKey(const CMPIData& left, const CMPIData& right) {
  if (left.type != right.type || left.value.ref == nullptr || right.value.ref == nullptr) {
    return false;
  }
  if (left.type == CMPI_ref) return IsSamePath(left.value.ref, right.value.ref);
  return left.type == CMPI_string &&
         std::strcmp(TextOf(left.value.string), TextOf(right.value.string)) == 0;
}

bool IsSamePath(const CMPIObjectPath* left, const CMPIObjectPath* right) {
  if (!IsSameName(ClassOf(left).c_str(), ClassOf(right).c_str())) return false;
  const CMPICount count = left->ft->getKeyCount(left, nullptr);
  for (CMPICount i = 0; i < count; ++i) {
    CMPIString* name = nullptr;
    const CMPIData key = left->ft->getKeyAt(left, i, &name, nullptr);
    if (!IsSameKey(key, right->ft->getKey(right, TextOf(name), nullptr))) return false;
  }
  return true;
}

TRun* FindRun(const CMPIObjectPath* path) {
  const CMPIData key = path->ft->getKey(path, "InstanceID", nullptr);
  if (key.type != CMPI_string || key.value.string == nullptr) return nullptr;
  for (TRun& run : runs) {
    if (run.id == TextOf(key.value.string)) return &run;
  }
  return nullptr;
}

CMPIStatus Cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) {
  const std::lock_guard<std::mutex> lock(mutex);
  runs.clear();
  return kGood;
}

CMPIStatus EnumerateInstanceNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                                  const CMPIObjectPath* type) {
  const std::lock_guard<std::mutex> lock(mutex);
  for (CMPIInstance* instance : FindAll(type)) {
    result->ft->returnObjectPath(result, instance->ft->getObjectPath(instance, nullptr));
  }
  return result->ft->returnDone(result);
}

void Return(const CMPIResult* result, CMPIInstance* instance, const char** properties) {
  if (properties != nullptr) instance->ft->setPropertyFilter(instance, properties, nullptr);
  result->ft->returnInstance(result, instance);
}

CMPIStatus EnumerateInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                              const CMPIObjectPath* type, const char** properties) {
  const std::lock_guard<std::mutex> lock(mutex);
  for (CMPIInstance* instance : FindAll(type)) Return(result, instance, properties);
  return result->ft->returnDone(result);
}

// Fetching a job counts as one look at it.
CMPIStatus GetInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* result,
                       const CMPIObjectPath* path, const char** properties) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (IsSameName(ClassOf(path).c_str(), kJob)) {
    TRun* const run = FindRun(path);
    if (run != nullptr) ++run->fetches;
  }
  for (CMPIInstance* instance : FindAll(path)) {
    if (!IsSamePath(instance->ft->getObjectPath(instance, nullptr), path)) continue;
    Return(result, instance, properties);
    return result->ft->returnDone(result);
  }
  return Fail(CMPI_RC_ERR_NOT_FOUND, "no such object");
}

CMPIStatus CreateInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*, const CMPIInstance*) {
  return Fail(CMPI_RC_ERR_NOT_SUPPORTED, "objects of this provider cannot be made");
}

CMPIStatus ModifyInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*, const CMPIInstance*, const char**) {
  return Fail(CMPI_RC_ERR_NOT_SUPPORTED, "objects of this provider cannot be changed");
}

CMPIStatus DeleteInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                          const CMPIObjectPath*) {
  return Fail(CMPI_RC_ERR_NOT_SUPPORTED, "objects of this provider cannot be deleted");
}

CMPIStatus ExecQuery(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*,
                     const char*, const char*) {
  return Fail(CMPI_RC_ERR_NOT_SUPPORTED, "this provider has no query engine");
}

const TService* FindService(const CMPIObjectPath* path) {
  const CMPIData name = path->ft->getKey(path, "Name", nullptr);
  if (name.type != CMPI_string || name.value.string == nullptr) return nullptr;
  for (const TService& service : kServices) {
    if (std::strcmp(service.name, TextOf(name.value.string)) == 0) return &service;
  }
  return nullptr;
}

bool IsForDevice(const CMPIArgs* in) {
  const CMPIData element = in->ft->getArg(in, "ManagedElement", nullptr);
  if (element.type != CMPI_ref || element.value.ref == nullptr) return false;
  const CMPIData id = element.value.ref->ft->getKey(element.value.ref, "DeviceID", nullptr);
  return id.type == CMPI_string && std::strcmp(TextOf(id.value.string), kDeviceId) == 0;
}

bool OffersJob(const TService& service, bool isByService) {
  if (service.conduct == EConduct::kNoJob) return false;
  return service.conduct != EConduct::kServiceOnly || isByService;
}

void AddJob(const CMPIObjectPath* target, const TRun& run, CMPIArgs* out) {
  CMPIObjectPath* const path = StartJob(target, run).TakePath();
  if (IsOfManner("text") || IsOfManner("instance")) {
    out->ft->addArg(out, "DetailText", reinterpret_cast<const CMPIValue*>("started"), CMPI_chars);
  }
  if (IsOfManner("text")) {
    const char* const text = TextOf(path->ft->toString(path, nullptr));
    out->ft->addArg(out, "Job", reinterpret_cast<const CMPIValue*>(text), CMPI_chars);
  } else if (IsOfManner("instance")) {
    CMPIInstance* const job = MakeJob(target, run);
    out->ft->addArg(out, "Job", reinterpret_cast<const CMPIValue*>(&job), CMPI_instance);
  } else {
    out->ft->addArg(out, "Job", reinterpret_cast<const CMPIValue*>(&path), CMPI_ref);
  }
}

CMPIUint32 RunTest(const CMPIObjectPath* target, const TService& service, CMPIArgs* out) {
  if (service.conduct == EConduct::kTimed) {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  }
  const std::lock_guard<std::mutex> lock(mutex);
  runs.push_back({"TST:" + std::to_string(runs.size() + 1), &service, 0, false});
  AddJob(target, runs.back(), out);
  return kNoError;
}

CMPIUint32 ChangeState(const CMPIObjectPath* target, const CMPIArgs* in) {
  constexpr CMPIUint16 kKill = 5;
  const CMPIData asked = in->ft->getArg(in, "RequestedState", nullptr);
  if (asked.type != CMPI_uint16) return kInvalidParameter;
  const std::lock_guard<std::mutex> lock(mutex);
  TRun* const run = FindRun(target);
  if (run == nullptr) return kInvalidParameter;
  if (asked.value.uint16 != kKill) return kNotSupported;
  if (run->GetPercent() == 100) return kInvalidTransition;
  run->isKilled = true;
  return kNoError;
}

CMPIStatus InvokeMethod(CMPIMethodMI*, const CMPIContext*, const CMPIResult* result,
                        const CMPIObjectPath* target, const char* method, const CMPIArgs* in,
                        CMPIArgs* out) {
  CMPIUint32 code = kNotSupported;
  const bool isByService = IsSameName(method, "RunDiagnosticService");
  if (isByService || IsSameName(method, "RunDiagnostic")) {
    const TService* const service = FindService(target);
    if (service == nullptr) return Fail(CMPI_RC_ERR_NOT_FOUND, "no such service");
    if (!isByService && IsOfManner("newer")) {
      return Fail(CMPI_RC_ERR_METHOD_NOT_FOUND, "it has RunDiagnosticService");
    }
    if (!IsForDevice(in)) {
      code = kInvalidParameter;
    } else if (IsOfManner("busy")) {
      code = kBusy;
    } else if (!isByService && IsOfManner("null")) {
      const CMPIValue none{};
      out->ft->addArg(out, "Job", &none, CMPI_ref);
      code = kNoError;
    } else if (OffersJob(*service, isByService)) {
      code = RunTest(target, *service, out);
    }
  } else if (IsSameName(method, "RequestStateChange")) {
    code = ChangeState(target, in);
  } else {
    return Fail(CMPI_RC_ERR_METHOD_NOT_FOUND, "no such method");
  }
  result->ft->returnData(result, reinterpret_cast<const CMPIValue*>(&code), CMPI_uint32);
  return result->ft->returnDone(result);
}

CMPIStatus CleanupMethods(CMPIMethodMI*, const CMPIContext*, CMPIBoolean) {
  return kGood;
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

extern "C" __attribute__((visibility("default"))) CMPIInstanceMI* DiagsTest_Create_InstanceMI(
    const CMPIBroker* mb, const CMPIContext*, CMPIStatus*) {
  static const CMPIInstanceMIFT kTable{
      CMPIVersion200,     0,           "DiagsTest",    Cleanup,        EnumerateInstanceNames,
      EnumerateInstances, GetInstance, CreateInstance, ModifyInstance, DeleteInstance,
      ExecQuery,          nullptr,
  };
  static CMPIInstanceMI mi{nullptr, &kTable};
  broker = mb;
  return &mi;
}

extern "C" __attribute__((visibility("default"))) CMPIMethodMI* DiagsTest_Create_MethodMI(
    const CMPIBroker* mb, const CMPIContext*, CMPIStatus*) {
  static const CMPIMethodMIFT kTable{CMPIVersion200, 0, "DiagsTest", CleanupMethods, InvokeMethod};
  static CMPIMethodMI mi{nullptr, &kTable};
  broker = mb;
  return &mi;
}

// NOLINTEND(readability-identifier-naming)
