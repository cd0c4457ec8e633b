// SPDX-License-Identifier: Apache-2.0
#include "tests/providers/TFakeMachine.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace hardware {

namespace fs = std::filesystem;

TFakeMachine::TFakeMachine() : m_root((fs::temp_directory_path() / "machineXXXXXX").string()) {
  if (::mkdtemp(m_root.data()) == nullptr) throw std::runtime_error("mkdtemp " + m_root);
  fs::create_directories(GetToolFolder());
}

TFakeMachine::~TFakeMachine() {
  std::error_code error;
  fs::remove_all(m_root, error);
}

void TFakeMachine::Write(const std::string& path, const std::string& text) const {
  const fs::path file = m_root + path;
  fs::create_directories(file.parent_path());
  std::ofstream(file) << text;
}

void TFakeMachine::Link(const std::string& path, const std::string& name) const {
  const fs::path link = m_root + path;
  fs::create_directories(link.parent_path());
  fs::create_symlink("../../somewhere/" + name, link);
}

void TFakeMachine::AddTool(const std::string& name, const std::string& body) const {
  const std::string path = "/tools/" + name;
  Write(path, "#!/bin/sh\n" + body + "\n");
  if (::chmod((m_root + path).c_str(), 0755) != 0) throw std::runtime_error("chmod " + path);
}

std::string TFakeMachine::Read(const std::string& path) const {
  std::ostringstream text;
  text << std::ifstream(m_root + path).rdbuf();
  return text.str();
}

void TFakeMachine::AddProcessors(unsigned int count, const std::string& model) const {
  std::string text;
  for (unsigned int i = 0; i < count; ++i) {
    text += "processor\t: " + std::to_string(i) + "\nmodel name\t: " + model +
            "\ncpu MHz\t\t: 2445.432\n\n";
  }
  Write("/proc/cpuinfo", text);
  Write("/sys/devices/system/cpu/online", "0-" + std::to_string(count - 1) + "\n");
}

void TFakeMachine::AddMemory(unsigned int mib) const {
  const std::string kib = std::to_string(mib * 1024UL);
  Write("/proc/meminfo", "MemTotal:       " + kib + " kB\nMemFree: 1 kB\nMemAvailable:   " + kib +
                             " kB\nBuffers: 1 kB\n");
}

void TFakeMachine::AddDisk(const std::string& name, unsigned int mib) const {
  Write("/sys/block/" + name + "/size", std::to_string(mib * 2048UL) + "\n");
  Write("/sys/block/" + name + "/device/type", "0\n");
  Write("/dev/" + name, "");
}

void TFakeMachine::AddPort(const std::string& name, const std::string& driver) const {
  const std::string folder = "/sys/class/net/" + name;
  Write(folder + "/type", "1\n");
  Write(folder + "/address", "02:fc:00:00:00:01\n");
  Write(folder + "/flags", "0x1003\n");
  Write(folder + "/carrier", "1\n");
  Write(folder + "/carrier_changes", "2\n");
  Write(folder + "/operstate", "up\n");
  Write(folder + "/speed", "1000\n");
  for (const char* const counter : {"rx_errors", "tx_errors", "rx_crc_errors"}) {
    Write(folder + "/statistics/" + counter, "7\n");
  }
  Link(folder + "/device/driver", driver);
}

}  // namespace hardware
