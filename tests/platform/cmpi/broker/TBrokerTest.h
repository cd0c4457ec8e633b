// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/cmpi/TBroker.h"
#include "platform/schema/TClassRepository.h"
#include "tests/support/FakeOperations.h"

namespace NZEPQEL20::cmpi {

/// `value` as the functions of the interface take it; it must outlive the call.
template <class T>
const CMPIValue* In(const T& value) {
  return reinterpret_cast<const CMPIValue*>(&value);
}
/// A text as CMPI_chars wants it.
inline const CMPIValue* Chars(const char* text) {
  return reinterpret_cast<const CMPIValue*>(text);
}

/// The test stands where a provider function would: inside a call, with a broker over operations
/// in memory. Known are T_Base (key Name), T_Derived below it, and the association T_Link.
class TBrokerTest : public testing::Test, protected IBrokerHost {
 protected:
  TBrokerTest();
  ~TBrokerTest() override;

  ICIMOperations& GetOperations() override { return m_operations; }
  /// T_Derived lives in root/other, everything else where it is looked for.
  std::string FindNamespace(const std::string& nameSpace,
                            const std::string& className) const override;
  std::string FindMethodNamespace(const std::string& nameSpace,
                                  const std::string& className) const override {
    return FindNamespace(nameSpace, className);
  }
  std::shared_ptr<const TCIMClassDeclaration> FindClass(
      const std::string& className) const override {
    return m_classes.Find(className);
  }
  bool IsA(const std::string& className, const std::string& superclass) const override {
    return IsSameName(className, superclass) || m_classes.IsA(className, superclass);
  }

  /// m_single is the property "Single" of every object, as a provider of properties would serve it.
  std::optional<TCIMValue> GetProperty(const TCIMReference& path, const std::string& name) override;
  bool SetProperty(const TCIMReference& path, const std::string& name,
                   const TCIMValue& value) override;

  CMPIObjectPath* NewPath(const char* className = "T_Base") const;
  CMPIInstance* NewInstance(const char* className = "T_Base") const;
  CMPIString* NewString(const char* text) const;
  /// The text of `string`, "(NULL)" for NULL.
  static std::string Text(const CMPIString* string);
  /// Ends the provider call, with all objects made in it.
  void EndCall() { m_frame.reset(); }
  void BeginCall() { m_frame = std::make_unique<TCallFrame>(m_taken); }

  TClassRepository m_classes;
  TFakeOperations m_operations;
  TCIMValue m_single = TCIMValue::UInt16(1);
  TBroker& m_taken;
  const CMPIBroker* m_broker;
  CMPIStatus m_rc = {CMPI_RC_ERROR, nullptr};

 private:
  std::unique_ptr<TCallFrame> m_frame;
};

}  // namespace NZEPQEL20::cmpi
