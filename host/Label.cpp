// SPDX-License-Identifier: Apache-2.0
#include "host/Label.h"

#include "host/Text.h"

namespace host {
namespace {

const char* FindShellFault(char letter) {
  switch (letter) {
    case '\'':
      return "a single quote";
    case '"':
      return "a double quote";
    case '`':
      return "a backquote";
    case '\\':
      return "a backslash";
    case '$':
      return "a dollar sign";
    default:
      return nullptr;
  }
}

}  // namespace

std::string FindLabelFault(const std::string& label) {
  constexpr char kReason[] = ", and a label can reach a shell";
  for (const char letter : label) {
    if (const char* fault = FindShellFault(letter)) return std::string("holds ") + fault + kReason;
  }
  if (SafeText(label, ELines::kOne) != label) {
    return std::string("holds a control character or a byte that is not UTF-8") + kReason;
  }
  return {};
}

std::string MakeDefaultLabel(const std::string& serviceName) {
  return FindLabelFault(serviceName).empty() ? serviceName : std::string();
}

}  // namespace host
