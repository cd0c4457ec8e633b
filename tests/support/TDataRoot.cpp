// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TDataRoot.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace scripted {

namespace fs = std::filesystem;

const char kExcludedTests[] = "/qdx/data/excludetests.xml";
const char kMatrix[] = "/qdx/data/excludetestmatrix.xml";
const char kCatalogue[] = "/qdx/data/vendor_diagnostic_msgs.xml";

TDataRoot::TDataRoot() {
  fs::create_directories(GetPath() + "/qdx/data");
}

void TDataRoot::Write(const std::string& name, const std::string& content) const {
  std::ofstream file(GetPath() + name, std::ios::binary | std::ios::trunc);
  file << content;
  if (!file.flush()) {
    throw std::runtime_error("cannot write " + GetPath() + name);
  }
}

void TDataRoot::WriteSparse(const std::string& name, long bytes) const {
  Write(name, "");
  fs::resize_file(GetPath() + name, static_cast<std::uintmax_t>(bytes));
}

void TDataRoot::MakeDirectory(const std::string& name) const {
  fs::create_directories(GetPath() + name);
}

void TDataRoot::Remove(const std::string& name) const {
  fs::remove_all(GetPath() + name);
}

}  // namespace scripted
