// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

/// A folder of the test's own, removed with its content.
class TTemporaryFolder {
 public:
  TTemporaryFolder() {
    std::string name = ::testing::TempDir() + "diagsrunner-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category());
    m_path = std::filesystem::canonical(name).string();
  }
  ~TTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TTemporaryFolder(const TTemporaryFolder&) = delete;
  TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;

  const std::string& GetPath() const { return m_path; }

  /// Writes a file, with the folders on the way to it; answers with its full path.
  std::string Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path file = std::filesystem::path(m_path) / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
  }

 private:
  std::string m_path;
};
