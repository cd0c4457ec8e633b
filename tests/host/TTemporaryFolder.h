// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace host {

/// A folder of the test's own, removed with everything in it.
class TTemporaryFolder {
 public:
  TTemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "diagsrun-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp " + name);
    m_path = name;
  }
  ~TTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TTemporaryFolder(const TTemporaryFolder&) = delete;
  TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;

  const std::string& GetPath() const { return m_path; }
  std::string GetPath(const std::string& name) const { return m_path + "/" + name; }

  /// Writes a file whose permissions are exactly `mode`; answers with its path.
  std::string Write(const std::string& name, const std::string& text, mode_t mode = 0600) const {
    const std::string path = GetPath(name);
    std::ofstream(path, std::ios::binary) << text;
    if (::chmod(path.c_str(), mode) != 0) throw std::runtime_error("chmod " + path);
    return path;
  }

 private:
  std::string m_path;
};

}  // namespace host
