// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/cmpi/abi/cmpi.h"

namespace hardware {

/// An instance, an object path, a list of parameters or a result: all four are named values here,
/// kept as text beside what the C side is given back.
struct TTinyObject {
  struct TField {
    std::string name;
    CMPIType type = CMPI_null;
    std::string text;  ///< Numbers in decimal, references as their path, arrays joined by ",".
    CMPIValue value{};
    CMPIString string{};  ///< What `value` points to when it is a text.
  };

  CMPIInstance instance{};
  CMPIObjectPath path{};
  CMPIArgs arguments{};
  CMPIResult result{};
  CMPIArray array{};
  CMPIDateTime time{};
  std::string nameSpace;
  std::string className;
  std::vector<std::shared_ptr<TField>> fields;
  std::vector<TTinyObject*> returned;  ///< Instances and paths that a result took.

  /// The value's text; "null" when there is none.
  std::string Show(const std::string& name) const;
  /// "Class.key=value,key=value"
  std::string ShowPath() const;
  /// The object that a reference leads to; null when there is none.
  TTinyObject* Follow(const std::string& name) const;
};

/// As much of a CMPI broker as a well-behaved provider needs: objects, results and a log. Slots
/// that no provider under test uses are null.
///
/// Owns: every object it makes, until it goes.
class TTinyBroker {
 public:
  TTinyBroker();
  TTinyBroker(const TTinyBroker&) = delete;
  TTinyBroker& operator=(const TTinyBroker&) = delete;

  const CMPIBroker* Get() const { return &m_broker; }

  /// A new object, empty.
  TTinyObject& Make();
  TTinyObject& MakePath(const std::string& className,
                        const std::map<std::string, std::string>& keys = {});

  /// Text of a string that a status carries.
  static std::string Text(const CMPIString* string);

  std::vector<std::string>& GetLog() { return m_log; }

 private:
  CMPIBroker m_broker{};
  std::vector<std::unique_ptr<TTinyObject>> m_objects;
  std::vector<std::string> m_log;
};

}  // namespace hardware
