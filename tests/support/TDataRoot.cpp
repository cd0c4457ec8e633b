// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TDataRoot.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace scripted {

namespace fs = std::filesystem;

const char kExcludedTests[] = "/qdx/data/excludetests.xml";
const char kMatrix[] = "/qdx/data/excludetestmatrix.xml";
const char kCatalogue[] = "/qdx/data/vendor_diagnostic_msgs.xml";

TDataRoot::TDataRoot() {
  std::string pattern = (fs::temp_directory_path() / "diagsroot-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("no temporary folder at " + pattern);
  }
  m_path = pattern;
  fs::create_directories(m_path + "/qdx/data");
}

TDataRoot::~TDataRoot() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

void TDataRoot::Write(const std::string& name, const std::string& content) const {
  std::ofstream file(m_path + name, std::ios::binary | std::ios::trunc);
  file << content;
  if (!file.flush()) {
    throw std::runtime_error("cannot write " + m_path + name);
  }
}

void TDataRoot::WriteSparse(const std::string& name, long bytes) const {
  Write(name, "");
  fs::resize_file(m_path + name, static_cast<std::uintmax_t>(bytes));
}

void TDataRoot::MakeDirectory(const std::string& name) const {
  fs::create_directories(m_path + name);
}

void TDataRoot::Remove(const std::string& name) const {
  fs::remove_all(m_path + name);
}

}  // namespace scripted
