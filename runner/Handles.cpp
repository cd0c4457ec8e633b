// SPDX-License-Identifier: Apache-2.0
#include "runner/Handles.h"

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/TCMPINamespace.h"
#include "platform/contract/TQELException.h"

namespace runner {

using NZEPQEL20::ICIMClass;
using NZEPQEL20::ICIMInstance;
using NZEPQEL20::ICIMNamespace;
using NZEPQEL20::ICIMProperty;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using NZEPQEL20::TCMPINamespace;
using NZEPQEL20::TKeyMap;

void ThrowMissing(const char* what) {
  throw NZEPQEL20::TQELException(NZEPQEL20::TQELStatusCode::kNotFound,
                                 std::string(what) + ": the platform gave no object");
}

TCIMValue GetValue(ICIMInstance& instance, const std::string& property) {
  const boost::shared_ptr<ICIMProperty> found = instance.GetProperty(property, {});
  return found ? found->GetValue({}) : TCIMValue();
}

std::string GetText(ICIMInstance& instance, const char* property) {
  const boost::shared_ptr<ICIMProperty> found = instance.GetProperty(property, {});
  return found ? found->GetValueText() : std::string();
}

TCIMReference GetReference(ICIMInstance& instance, const std::string& property) {
  return static_cast<TCIMReference>(GetValue(instance, property));
}

boost::shared_ptr<ICIMInstance> Fetch(const TCIMReference& path, const TKeyMap& context) {
  const boost::shared_ptr<ICIMClass> type = path.GetClass();
  const boost::shared_ptr<ICIMNamespace> ns = Need(type, "class of the reference").GetNamespace({});
  return Need(ns, "namespace of the class").GetInstance(path, context);
}

boost::shared_ptr<ICIMNamespace> GetUpcallNamespace(
    const TCIMReference& path, const boost::shared_ptr<ICIMNamespace>& fallback) {
  const TKeyMap plugin{{"nspID", TCIMValue("plugin")}};
  const boost::shared_ptr<ICIMClass> type = path.GetClass();
  boost::shared_ptr<TCMPINamespace> cmpi = boost::dynamic_pointer_cast<TCMPINamespace>(
      Need(type, "class of the reference").GetNamespace(plugin));
  if (!cmpi) cmpi = boost::dynamic_pointer_cast<TCMPINamespace>(fallback);

  boost::shared_ptr<ICIMNamespace> upcall =
      Need(cmpi, "CMPI namespace \"plugin\"").GetUpcallNamespace();
  Need(upcall, "upcall namespace");
  return upcall;
}

}  // namespace runner
