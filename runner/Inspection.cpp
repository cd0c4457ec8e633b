// SPDX-License-Identifier: Apache-2.0
#include <exception>
#include <utility>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/IProvider.h"
#include "platform/contract/TAddToVectorCallback.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"
#include "runner/DebugLog.h"
#include "runner/DiagsRunner.h"
#include "runner/Handles.h"

using NZEPQEL20::ICIMClass;
using NZEPQEL20::ICIMInstance;
using NZEPQEL20::ICIMNamespace;
using NZEPQEL20::ICIMProperty;
using NZEPQEL20::IProvider;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TKeyMap;
using NZEPQEL20::TQELException;

namespace {

// The one class that is asked for directly: its provider does not list it.
constexpr char kProductClass[] = "ZEPSG_QELProduct";

// What an inspection has gathered so far.
struct TInspected {
  std::vector<boost::shared_ptr<ICIMInstance>> instances;
  std::string problems;
  bool isClassKnown = false;
  bool isComplete = false;

  void Report(const std::string& line) {
    DebugLog(line);
    problems += line + "\n";
  }
};

// Collects the instances of a class that bears the wanted name.
class TRunnerCollectClassInstances {
 public:
  TRunnerCollectClassInstances(std::string className, TInspected& inspected)
      : m_className(std::move(className)), m_inspected(&inspected) {}

  // The enumeration of a class reaches all its providers, so one that succeeds is enough.
  bool operator()(const boost::shared_ptr<ICIMClass>& type) const {
    if (!type || !NZEPQEL20::IsSameName(type->GetName({}), m_className)) return true;
    m_inspected->isClassKnown = true;
    m_inspected->instances.clear();
    type->EnumerateInstances(NZEPQEL20::TAddToVectorCallback(m_inspected->instances), 1, {});
    m_inspected->isComplete = true;
    return false;
  }

 private:
  std::string m_className;
  TInspected* m_inspected;
};

// Looks for the class among those of each provider.
class TRunnerCollectClassFromProvider {
 public:
  TRunnerCollectClassFromProvider(std::string className, TInspected& inspected)
      : m_className(std::move(className)), m_inspected(&inspected) {}

  bool operator()(const boost::shared_ptr<IProvider>& provider) const {
    if (!provider) return true;
    std::string name = "?";
    const auto report = [this, &name](const char* reason) {
      m_inspected->Report("TRunnerCollectClassFromProvider for: " + name + " threw exception " +
                          reason);
    };
    try {
      name = provider->GetName();
      provider->EnumerateClasses(TRunnerCollectClassInstances(m_className, *m_inspected), {});
    } catch (const std::exception& e) {
      report(e.what());
    } catch (...) {
      report("no reason given");
    }
    return !m_inspected->isComplete;
  }

 private:
  std::string m_className;
  TInspected* m_inspected;
};

// Whether the reason says no more than that there is no such class.
bool IsUnknownClass(const TQELException& reason) {
  constexpr unsigned int kInvalidClass = 5;
  return reason.GetStatusCode() ==
             NZEPQEL20::TQELStatusCode(NZEPQEL20::TQELStatusCode::kNotFound) ||
         reason.GetCIMStatus() == kInvalidClass;
}

// The class as the namespace knows it: a superclass is served by no provider under its own name.
void CollectFromNamespace(const std::string& className, ICIMNamespace& ns, TInspected& inspected) {
  try {
    const boost::shared_ptr<ICIMClass> type = ns.FindClass(className, {});
    if (type) TRunnerCollectClassInstances(className, inspected)(type);
  } catch (const TQELException& e) {
    if (IsUnknownClass(e)) {
      DebugLog(e.what());
    } else {
      inspected.Report(e.what());
    }
  }
}

std::string GetElementsText(const TCIMValue& value) {
  std::string text;
  for (const TCIMValue& element : static_cast<std::vector<TCIMValue>>(value)) {
    text += (text.empty() ? "{" : ",{") + element.ToString(10) + "}";
  }
  return text;
}

}  // namespace

std::string DiagsRunner::EI(std::string className) {
  return EI(std::move(className), m_ns);
}

std::string DiagsRunner::EI(std::string className, TNamespacePtr ns) {
  DebugLog("DiagsRunner::EI");
  ICIMNamespace& place = runner::Need(ns, "namespace to inspect");
  TInspected inspected;
  if (className != kProductClass) {
    place.EnumerateProviders(TRunnerCollectClassFromProvider(className, inspected), {});
  }
  if (!inspected.isClassKnown) CollectFromNamespace(className, place, inspected);
  if (!inspected.isClassKnown) return inspected.problems + "Class Not Found\n";

  std::string text = inspected.problems;
  for (const TInstancePtr& instance : inspected.instances) {
    if (!instance) continue;
    if (!text.empty()) text += "\n";
    text += instance->GetObjectPath({}).GetPath() + "\n";
    EnumProperties(instance, text);
  }
  return text;
}

void DiagsRunner::EnumProperties(TInstancePtr instance, std::string& out) {
  DebugLog("DiagsRunner::EnumerateProperties");
  ICIMInstance& shown = runner::Need(instance, "instance to show");
  for (const std::string& name : shown.GetPropertyNames({})) {
    const boost::shared_ptr<ICIMProperty> property = shown.GetProperty(name, {});
    if (!property) continue;
    const TCIMValue value = property->GetValue({});
    if (value.IsNull()) continue;
    out += name + " : " + (value.IsArray() ? GetElementsText(value) : property->GetValueText());
    out += "\n";
  }
}
