// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

/// A folder of the test's own, removed with everything in it.
class TTemporaryFolder {
 public:
  TTemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "diagsrunner-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) Fail(name);
    m_path = std::filesystem::canonical(name).string();
  }
  ~TTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TTemporaryFolder(const TTemporaryFolder&) = delete;
  TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;

  const std::string& GetPath() const { return m_path; }
  std::string GetPath(const std::string& name) const { return m_path + "/" + name; }

  /// Writes a file whose permissions are exactly `mode`, with the folders on the way to it;
  /// answers with its path.
  std::string Write(const std::string& name, const std::string& text, mode_t mode = 0600) const {
    const std::string path = GetPath(name);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << text;
    if (::chmod(path.c_str(), mode) != 0) Fail(path);
    return path;
  }

 private:
  [[noreturn]] static void Fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
  }

  std::string m_path;
};
