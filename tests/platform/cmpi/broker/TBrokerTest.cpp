// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cmpi/broker/TBrokerTest.h"

namespace NZEPQEL20::cmpi {

TBrokerTest::TBrokerTest() : m_taken(TBroker::Take(*this)), m_broker(m_taken.GetTable()) {
  const auto faults = m_classes.LoadText(
      "class T_Base { [Key] string Name; uint16 Count; string Colour; };\n"
      "class T_Derived : T_Base { };\n"
      "[Association] class T_Link { [Key] T_Base REF One; [Key] T_Base REF Two; };\n",
      "classes");
  EXPECT_TRUE(faults.empty());
  BeginCall();
}

TBrokerTest::~TBrokerTest() {
  m_frame.reset();
  m_taken.Retire();
}

std::string TBrokerTest::FindNamespace(const std::string& nameSpace,
                                       const std::string& className) const {
  return className == "T_Derived" ? "root/other" : nameSpace;
}

std::optional<TCIMValue> TBrokerTest::GetProperty(const TCIMReference& /*path*/,
                                                  const std::string& name) {
  return name == "Single" ? std::optional<TCIMValue>(m_single) : std::nullopt;
}

bool TBrokerTest::SetProperty(const TCIMReference& /*path*/, const std::string& name,
                              const TCIMValue& value) {
  if (name == "Single") m_single = value;
  return name == "Single";
}

CMPIObjectPath* TBrokerTest::NewPath(const char* className) const {
  return m_broker->eft->newObjectPath(m_broker, "root/test", className, nullptr);
}

CMPIInstance* TBrokerTest::NewInstance(const char* className) const {
  return m_broker->eft->newInstance(m_broker, NewPath(className), nullptr);
}

CMPIString* TBrokerTest::NewString(const char* text) const {
  return m_broker->eft->newString(m_broker, text, nullptr);
}

std::string TBrokerTest::Text(const CMPIString* string) {
  return string == nullptr ? "(NULL)" : string->ft->getCharPtr(string, nullptr);
}

}  // namespace NZEPQEL20::cmpi
