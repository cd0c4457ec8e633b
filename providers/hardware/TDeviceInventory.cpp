// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TDeviceInventory.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "providers/hardware/Text.h"
#include "providers/hardware/Units.h"

namespace hardware {
namespace {

constexpr std::size_t kMaxProcessors = 8192;
constexpr std::uint64_t kEthernetType = 1;  // ARPHRD_ETHER

// What the processor's description calls its model, by architecture.
constexpr std::array<std::string_view, 4> kModelKeys = {"model name", "cpu model", "cpu", "Model"};

struct TProcessorFacts {
  std::string model;
  unsigned int clockMHz = 0;
};

unsigned int ToMHz(std::string_view text) {
  const std::optional<double> mhz = ParseDecimal(text);
  return mhz && *mhz < 1e6 ? static_cast<unsigned int>(*mhz) : 0;
}

// /proc/cpuinfo is a block of "key : value" lines per processor; some architectures tell the model
// once, after all blocks: it is kept under the number that no processor has.
std::map<std::optional<unsigned int>, TProcessorFacts> ParseCpuInfo(std::string_view text) {
  std::map<std::optional<unsigned int>, TProcessorFacts> facts;
  std::optional<unsigned int> current;
  for (const std::string_view line : SplitLines(text)) {
    const std::size_t colon = line.find(':');
    if (Trim(line).empty()) current.reset();
    if (colon == std::string_view::npos) continue;
    const std::string_view key = Trim(line.substr(0, colon));
    const std::string_view value = Trim(line.substr(colon + 1));
    if (key == "processor") {
      const std::optional<std::uint64_t> number = ParseUnsigned(value);
      if (!number || *number >= kMaxProcessors) continue;
      current = static_cast<unsigned int>(*number);
      facts[current];  // It exists, whatever else is told about it.
    } else if (std::find(kModelKeys.begin(), kModelKeys.end(), key) != kModelKeys.end()) {
      facts[current].model = CleanName(value);
    } else if (key == "cpu MHz") {
      facts[current].clockMHz = ToMHz(value);
    }
  }
  return facts;
}

// A name that no disk of its own has: files, memory, other disks, or media that come and go.
bool IsNoWholeDisk(const std::string& name) {
  static constexpr std::array<std::string_view, 9> kStarts = {
      "loop", "ram", "zram", "dm-", "md", "sr", "fd", "nbd", "mtdblock"};
  const auto matches = [&name](std::string_view start) { return StartsWith(name, start); };
  // The boot and key areas of an MMC card are parts of the card.
  return std::any_of(kStarts.begin(), kStarts.end(), matches) ||
         (StartsWith(name, "mmcblk") && (Contains(name, "boot") || Contains(name, "rpmb")));
}

}  // namespace

std::vector<unsigned int> ParseCpuList(std::string_view list) {
  std::vector<unsigned int> numbers;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(','), list.size());
    const std::string_view part = Trim(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
    const std::size_t dash = std::min(part.find('-'), part.size());
    const std::optional<std::uint64_t> first = ParseUnsigned(part.substr(0, dash));
    const std::optional<std::uint64_t> last =
        dash < part.size() ? ParseUnsigned(part.substr(dash + 1)) : first;
    if (!first || !last || *last >= kMaxProcessors) continue;
    for (std::uint64_t i = *first; i <= *last && numbers.size() < kMaxProcessors; ++i) {
      numbers.push_back(static_cast<unsigned int>(i));
    }
  }
  return numbers;
}

std::vector<TDevice> TDeviceInventory::FindDevices() const {
  std::vector<TDevice> devices = FindProcessors();
  for (auto find : {&TDeviceInventory::FindMemory, &TDeviceInventory::FindDisks,
                    &TDeviceInventory::FindNetworkPorts}) {
    std::vector<TDevice> more = (this->*find)();
    std::move(more.begin(), more.end(), std::back_inserter(devices));
  }
  return devices;
}

std::vector<TDevice> TDeviceInventory::FindProcessors() const {
  const auto facts = ParseCpuInfo(m_files.ReadText("/proc/cpuinfo").value_or(""));
  std::vector<unsigned int> numbers =
      ParseCpuList(m_files.ReadText("/sys/devices/system/cpu/online").value_or(""));
  if (numbers.empty()) {
    for (const auto& entry : facts) {
      if (entry.first) numbers.push_back(*entry.first);
    }
  }
  const auto common = facts.find(std::nullopt);
  std::vector<TDevice> processors;
  for (const unsigned int number : numbers) {
    TDevice device;
    device.kind = EDeviceKind::kProcessor;
    device.number = number;
    device.id = "cpu" + std::to_string(number);
    auto own = facts.find(number);
    if (own == facts.end() || own->second.model.empty()) own = common;
    const std::string model = own != facts.end() ? own->second.model : std::string();
    device.name = (model.empty() ? "Processor" : model) + " CPU " + std::to_string(number);
    const std::optional<std::uint64_t> maxKHz =
        m_files.ReadNumber("/sys/devices/system/cpu/" + device.id + "/cpufreq/cpuinfo_max_freq");
    device.clockMHz = maxKHz && *maxKHz < 1000000000ULL ? static_cast<unsigned int>(*maxKHz / 1000)
                      : own != facts.end()              ? own->second.clockMHz
                                                        : 0;
    processors.push_back(std::move(device));
  }
  return processors;
}

std::string TDeviceInventory::ReadMachineName() const {
  const std::string folder = "/sys/class/dmi/id/";
  return CleanName(m_files.ReadText(folder + "sys_vendor").value_or("") + " " +
                   m_files.ReadText(folder + "product_name").value_or(""));
}

std::vector<TDevice> TDeviceInventory::FindMemory() const {
  const std::string text = m_files.ReadText("/proc/meminfo").value_or("");
  for (const std::string_view line : SplitLines(text)) {
    const std::vector<std::string_view> words = SplitWords(line);
    if (words.size() < 2 || words[0] != "MemTotal:") continue;
    const std::optional<std::uint64_t> kib = ParseUnsigned(words[1]);
    if (!kib || *kib == 0 || *kib > UINT64_MAX / 1024) break;
    TDevice device;
    device.kind = EDeviceKind::kMemory;
    device.id = "memory0";
    device.bytes = *kib * 1024;
    const std::string machine = ReadMachineName();
    device.name = CleanName((machine.empty() ? "Memory " : machine + " memory ") +
                            DescribeBytes(device.bytes));
    return {device};
  }
  return {};
}

std::vector<TDevice> TDeviceInventory::FindDisks() const {
  std::vector<TDevice> disks;
  for (const std::string& name : m_files.ListNames("/sys/block")) {
    const std::string folder = "/sys/block/" + name;
    // "hidden": one path of a disk that is reached over several, without a device file.
    if (IsNoWholeDisk(name) || !m_files.Exists(folder + "/device") ||
        m_files.ReadNumber(folder + "/hidden").value_or(0) != 0) {
      continue;
    }
    TDevice disk = DescribeDisk(name);
    if (disk.bytes != 0) disks.push_back(std::move(disk));
  }
  return disks;
}

TDevice TDeviceInventory::DescribeDisk(const std::string& name) const {
  const std::string folder = "/sys/block/" + name;
  TDevice disk;
  disk.kind = EDeviceKind::kDisk;
  disk.id = CleanName(name);
  disk.kernelName = name;
  // In sysfs "!" stands for the "/" of names such as cciss/c0d0.
  disk.node = "/dev/" + name;
  std::replace(disk.node.begin(), disk.node.end(), '!', '/');
  const std::uint64_t sectors = m_files.ReadNumber(folder + "/size").value_or(0);
  disk.bytes = sectors <= UINT64_MAX / kSectorBytes ? sectors * kSectorBytes : 0;
  std::string model = CleanName(m_files.ReadText(folder + "/device/model").value_or(""));
  // Only SCSI keeps a readable vendor beside the model; virtio has a number there.
  const std::string vendor = CleanName(m_files.ReadText(folder + "/device/vendor").value_or(""));
  if (!vendor.empty() && vendor != "ATA" && !StartsWith(vendor, "0x")) model = vendor + " " + model;
  if (model.empty()) model = StartsWith(name, "vd") ? "Virtual disk" : "Disk";
  disk.name = CleanName(model + " " + DescribeBytes(disk.bytes));
  if (StartsWith(name, "nvme")) {
    // nvme0n1 belongs to the controller nvme0.
    const std::size_t end = name.find_first_not_of("0123456789", 4);
    if (end != std::string::npos && end > 4) disk.controllerNode = "/dev/" + name.substr(0, end);
  }
  return disk;
}

std::vector<TDevice> TDeviceInventory::FindNetworkPorts() const {
  std::vector<TDevice> ports;
  for (const std::string& name : m_files.ListNames("/sys/class/net")) {
    const std::string folder = "/sys/class/net/" + name;
    // A name that begins like an option could not be handed to any program.
    if (name.front() == '-' || !m_files.Exists(folder + "/device") ||
        m_files.Exists(folder + "/wireless") || m_files.Exists(folder + "/phy80211") ||
        m_files.ReadNumber(folder + "/type").value_or(0) != kEthernetType) {
      continue;
    }
    ports.push_back(DescribePort(name));
  }
  return ports;
}

TDevice TDeviceInventory::DescribePort(const std::string& name) const {
  const std::string folder = "/sys/class/net/" + name;
  TDevice port;
  port.kind = EDeviceKind::kNetworkPort;
  port.id = CleanName(name);
  port.kernelName = name;
  port.address = CleanName(m_files.ReadText(folder + "/address").value_or(""));
  const std::string driver = m_files.ReadLinkName(folder + "/device/driver");
  port.name = CleanName("Ethernet port " + name + (driver.empty() ? "" : " (" + driver + ")"));
  // A port without a link shows -1, which is no number here.
  const std::uint64_t mbits = m_files.ReadNumber(folder + "/speed").value_or(0);
  port.linkBitsPerSecond = mbits < 0xFFFFFFFFULL ? mbits * 1000000 : 0;
  return port;
}

}  // namespace hardware
