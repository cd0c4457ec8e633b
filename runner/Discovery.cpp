// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <utility>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/TAddToVectorCallback.h"
#include "platform/contract/TQELException.h"
#include "runner/DebugLog.h"
#include "runner/DiagsRunner.h"
#include "runner/Handles.h"
#include "runner/Texts.h"

using NZEPQEL20::ICIMClass;
using NZEPQEL20::ICIMInstance;
using NZEPQEL20::ICIMNamespace;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;
using NZEPQEL20::TQELException;

namespace {

using TTestIDs = std::vector<std::string>;

// The mode of GetCIMData() that enumerates tests.
constexpr int kEnumTest = 3;
// Value of a service's "Characteristics" that withholds it: the test is a package of others.
constexpr unsigned short kIsPackage = 6;

// Which end of an association is being fetched; its number stands in the traces.
enum class EEnd { kService = 1, kDevice = 2 };

std::string Number(EEnd end) {
  return std::to_string(static_cast<int>(end));
}

// The first way to an object: the namespace of its class. `giveUp` is set when no retry is due.
boost::shared_ptr<ICIMInstance> FetchEnd(EEnd end, const TCIMReference& path, ICIMClass& type,
                                         const TKeyMap& keys, bool& giveUp) {
  try {
    const boost::shared_ptr<ICIMNamespace> ns = type.GetNamespace(keys);
    return ns ? ns->GetInstance(path, keys) : nullptr;
  } catch (const TQELException&) {
    DebugLog("DiagsRunner::GetCIMData, caught qel exception when get instRef" + Number(end) +
             " instance");
  } catch (...) {
    DebugLog("DiagsRunner::GetCIMData, caught exception when get instRef" + Number(end) +
             " instance");
    giveUp = true;
  }
  return nullptr;
}

// The second way: as a provider's own upcall finds it. The trace speaks of instRef1 at both ends.
boost::shared_ptr<ICIMInstance> RetryEnd(EEnd end, const TCIMReference& path) {
  try {
    const TKeyMap plugin{{"nspID", TCIMValue("plugin")}};
    const boost::shared_ptr<ICIMNamespace> upcall = runner::GetUpcallNamespace(path, nullptr);
    const boost::shared_ptr<ICIMClass> found = upcall->FindClass(path.GetClassName(), plugin);
    const boost::shared_ptr<ICIMNamespace> home =
        runner::Need(found, "class behind the upcall namespace").GetNamespace({});
    boost::shared_ptr<ICIMInstance> instance =
        runner::Need(home, "namespace of the class").GetInstance(path, plugin);
    runner::Need(instance, "instance behind the upcall namespace");
    return instance;
  } catch (...) {
    DebugLog("DiagsRunner::GetCIMData, bGetResult" + Number(end) +
             " false, caught exception when get instRef1 instance");
    return nullptr;
  }
}

boost::shared_ptr<ICIMInstance> ReachEnd(EEnd end, const TCIMReference& path, ICIMClass& type,
                                         const TKeyMap& keys) {
  bool giveUp = false;
  boost::shared_ptr<ICIMInstance> instance = FetchEnd(end, path, type, keys, giveUp);
  if (instance || giveUp) return instance;
  return RetryEnd(end, path);
}

bool IsNamedIn(const TTestIDs& excluded, const std::string& text) {
  return std::any_of(excluded.begin(), excluded.end(),
                     [&text](const std::string& entry) { return runner::Contains(entry, text); });
}

bool IsPackage(ICIMInstance& service) {
  const TCIMValue value = runner::GetValue(service, "Characteristics");
  if (value.IsNull()) return false;
  const auto elements = static_cast<std::vector<TCIMValue>>(value);
  return std::any_of(elements.begin(), elements.end(), [](const TCIMValue& element) {
    return static_cast<unsigned short>(element) == kIsPackage;
  });
}

// An empty name occurs in every entry and so is withheld; an empty class name is not looked for.
bool IsExcluded(ICIMInstance& service, const TTestIDs& excluded) {
  if (!excluded.empty() && IsNamedIn(excluded, runner::GetText(service, "Name"))) return true;
  const std::string className = runner::GetText(service, "CreationClassName");
  if (!className.empty() && IsNamedIn(excluded, className)) return true;
  return IsPackage(service);
}

}  // namespace

/// One walk over the instances of an association class.
struct DiagsRunner::TWalk {
  DiagsRunner& runner;
  TCIMReference& instRef1;
  TCIMReference& instRef2;
  const std::string& className;
  const std::string& property1;
  const std::string& property2;
  const int retType;
  const TCIMValue& nspID;
  const TKeyMap keys;

  bool Collect(TInstances& associations);
  bool ReadEnds(ICIMInstance& association, boost::shared_ptr<ICIMClass>& class1,
                boost::shared_ptr<ICIMClass>& class2);
  bool IsWithheld(ICIMInstance& service);
  bool Identify(ICIMInstance& association, ICIMInstance& service, ICIMInstance& device,
                std::string& testID);
  bool Visit(ICIMInstance& association, std::string& testID);
};

// The associations that may be offered on this machine; false when the walk ends here.
bool DiagsRunner::TWalk::Collect(TInstances& associations) {
  try {
    const boost::shared_ptr<ICIMClass> found =
        runner::Need(runner.m_ns, "namespace of the runner").FindClass(className, keys);
    if (!found) return false;
    found->EnumerateInstances(NZEPQEL20::TAddToVectorCallback(associations), 1, keys);
    // An enumeration may hand out empty handles; nothing below can use one.
    associations.erase(std::remove(associations.begin(), associations.end(), nullptr),
                       associations.end());
    if (retType == kEnumTest) runner.filterDiagsItems(associations);
    return true;
  } catch (const TQELException&) {
    DebugLog("DiagsRunner::GetCIMData, caught qel exception");
  } catch (...) {
    DebugLog("DiagsRunner::GetCIMData, caught exception");
  }
  return false;
}

bool DiagsRunner::TWalk::ReadEnds(ICIMInstance& association, boost::shared_ptr<ICIMClass>& class1,
                                  boost::shared_ptr<ICIMClass>& class2) {
  try {
    instRef1 = runner::GetReference(association, property1);
    instRef2 = runner::GetReference(association, property2);
    DebugLog({"DiagsRunner::GetCIMData:Property 1: ", property1, "=", instRef1.GetPath()});
    DebugLog({"DiagsRunner::GetCIMData:Property 2: ", property2, "=", instRef2.GetPath()});
    class1 = instRef1.GetClass();
    class2 = instRef2.GetClass();
    runner::Need(class1, "class of the service");
    runner::Need(class2, "class of the device");
    return true;
  } catch (...) {
    DebugLog("DiagsRunner::GetCIMData, caught exception when get class");
    return false;
  }
}

bool DiagsRunner::TWalk::IsWithheld(ICIMInstance& service) {
  if (retType != kEnumTest) return false;
  try {
    return IsExcluded(service, runner.m_excludedTests);
  } catch (const TQELException& e) {
    DebugLog(std::string("DiagsRunner::GetCIMData, get qel exception when retType == EENUMTEST ") +
             e.what());
  } catch (...) {
    DebugLog("DiagsRunner::GetCIMData, get exception when retType == EENUMTEST");
  }
  return true;
}

bool DiagsRunner::TWalk::Identify(ICIMInstance& association, ICIMInstance& service,
                                  ICIMInstance& device, std::string& testID) {
  try {
    const std::string elementName = runner::GetText(device, "ElementName");
    const std::string deviceID = runner::GetText(device, "DeviceID");
    testID = runner::GetText(service, "Name");
    testID.append(",").append(deviceID).append(",").append(elementName);
    if (className == runner::kServiceClass && nspID == TCIMValue("pegasus")) {
      const std::string nameSpace = association.GetNamespaceText({});
      runner.m_diagPegasusNS.insert({testID, TCIMValue(nameSpace)});
      DebugLog("DiagsRunner::GetCIMData m_diagPegasusNS.insert testItemID=" + testID);
      DebugLog("DiagsRunner::GetCIMData m_diagPegasusNS.insert testItemNspStr=" + nameSpace);
    }
    return true;
  } catch (const TQELException&) {
    DebugLog("DiagsRunner::GetCIMData, qel caught exception when diagnostic ");
  } catch (...) {
    DebugLog("DiagsRunner::GetCIMData, caught exception when diagnostic");
  }
  return false;
}

// One association: true with the identifier of the test that it offers.
bool DiagsRunner::TWalk::Visit(ICIMInstance& association, std::string& testID) {
  boost::shared_ptr<ICIMClass> class1;
  boost::shared_ptr<ICIMClass> class2;
  if (!ReadEnds(association, class1, class2)) return false;
  const TInstancePtr service = ReachEnd(EEnd::kService, instRef1, *class1, keys);
  if (!service) return false;
  const TInstancePtr device = ReachEnd(EEnd::kDevice, instRef2, *class2, keys);
  if (!device) return false;
  return !IsWithheld(*service) && Identify(association, *service, *device, testID);
}

bool DiagsRunner::GetCIMData(TCIMReference& instRef1, TCIMReference& instRef2,
                             std::string className, std::string property1, std::string property2,
                             std::string /*unused1*/, std::string /*unused2*/,
                             std::string /*unused3*/, std::string /*unused4*/, TTestIDs& out,
                             int retType, TCIMValue nspID) {
  DebugLog("DiagsRunner::GetCIMData");
  DebugLog("DiagsRunner::GetCIMData:Looking for " + className + " with " + nspID.ToString(10));
  TWalk walk{*this,     instRef1, instRef2, className,         property1,
             property2, retType,  nspID,    {{"nspID", nspID}}};
  TInstances associations;
  if (!walk.Collect(associations)) return false;

  bool found = false;
  for (const TInstancePtr& association : associations) {
    std::string testID;
    if (!walk.Visit(*association, testID)) continue;
    out.push_back(std::move(testID));
    found = true;
  }
  if (className == runner::kServiceClass) {
    m_instances.insert(m_instances.end(), associations.begin(), associations.end());
  }
  return found;
}

std::string DiagsRunner::EnumerateDiagTests(std::string /*unused*/) {
  DebugLog("DiagsRunner::EnumerateDiagTests");
  TCIMReference instRef1{TNamespacePtr(), TKeyMap()};
  TCIMReference instRef2{TNamespacePtr(), TKeyMap()};
  if (!m_testList.empty()) return m_testList;

  TTestIDs list;
  if (GetCIMData(instRef1, instRef2, runner::kServiceClass, runner::kServiceProperty,
                 runner::kDeviceProperty, "", "", "", "", list, kEnumTest, TCIMValue("cmpi"))) {
    const TCIMValue nspID("cmpi");
    for (const std::string& testID : list) {
      if (testID.empty()) continue;
      m_diagNS.try_emplace(testID, nspID);
      m_testList.append(testID).append("|");
    }
  }
  if (m_testList.empty()) m_testList = runner::kNoMatch;
  return m_testList;
}
