// SPDX-License-Identifier: Apache-2.0
#include "runner/DiagsRunner.h"

bool DiagsRunner::GetTestName(std::string testID, std::string& name, std::string& deviceID,
                              std::string& elementName) {
  std::string::size_type comma = testID.find(',');
  if (comma == std::string::npos) return false;
  name = testID.substr(0, comma);
  testID.erase(0, comma + 1);

  comma = testID.find(',');
  if (comma == std::string::npos) return false;  // `name` keeps what was found.
  deviceID = testID.substr(0, comma);
  testID.erase(0, comma + 1);

  elementName = testID;
  return true;
}
