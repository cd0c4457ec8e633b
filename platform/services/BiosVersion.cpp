// SPDX-License-Identifier: Apache-2.0
#include "platform/services/BiosVersion.h"

#include <boost/algorithm/string/trim.hpp>
#include <fstream>

namespace NZEPQEL20::services {

std::string ReadBiosVersion(const std::string& file) {
  std::ifstream attribute(file);
  std::string line;
  std::getline(attribute, line);
  boost::algorithm::trim(line);
  return line;
}

}  // namespace NZEPQEL20::services
