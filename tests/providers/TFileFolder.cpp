// SPDX-License-Identifier: Apache-2.0
#include "tests/providers/TFileFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <filesystem>
#include <random>
#include <stdexcept>
#include <utility>

#include "providers/hardware/TFileDescriptor.h"

namespace hardware {

TFileFolder::TFileFolder(const TFakeMachine& machine, std::string path)
    : m_machine(machine), m_path(std::move(path)) {
  std::filesystem::create_directories(GetPlace());
}

std::string TFileFolder::GetDevice() const {
  struct stat status {};
  if (::stat(GetPlace().c_str(), &status) != 0) throw std::runtime_error("stat " + m_path);
  return std::to_string(major(status.st_dev)) + ":" + std::to_string(minor(status.st_dev));
}

bool TFileFolder::CanReadDirectly() const {
  m_machine.Write("/direct", "text");
  const std::string file = m_machine.GetRoot() + "/direct";
  return TFileDescriptor(::open(file.c_str(), O_RDONLY | O_DIRECT | O_CLOEXEC)).IsOpen();
}

void TFileFolder::AddFile(const std::string& name, std::uint64_t bytes) const {
  // Not to be compressed: such a file would take up less space than its size tells.
  std::mt19937 generator(static_cast<std::mt19937::result_type>(bytes));
  std::string text(bytes, '\0');
  for (char& letter : text) letter = static_cast<char>(generator());
  m_machine.Write(m_path + "/" + name, text);
}

void TFileFolder::AddHole(const std::string& name, std::uint64_t bytes) const {
  m_machine.Write(m_path + "/" + name, "");
  std::filesystem::resize_file(GetPlace() + "/" + name, bytes);
}

}  // namespace hardware
