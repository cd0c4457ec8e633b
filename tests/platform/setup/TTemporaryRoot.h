// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace NZEPQEL20 {

/// A folder of a test's own, removed with everything in it.
class TTemporaryRoot {
 public:
  TTemporaryRoot() {
    std::string name = (std::filesystem::temp_directory_path() / "setup-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp " + name);
    m_path = name;
  }
  ~TTemporaryRoot() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TTemporaryRoot(const TTemporaryRoot&) = delete;
  TTemporaryRoot& operator=(const TTemporaryRoot&) = delete;

  const std::string& GetPath() const { return m_path; }

  /// Writes a file below the root, with the folders that it needs; answers with its path.
  std::string Write(const std::string& name, const std::string& text) const {
    const std::filesystem::path file = std::filesystem::path(m_path) / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << text;
    return file.string();
  }

 private:
  std::string m_path;
};

}  // namespace NZEPQEL20
