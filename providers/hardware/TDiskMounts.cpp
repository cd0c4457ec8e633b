// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TDiskMounts.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "providers/hardware/Text.h"

namespace hardware {
namespace {

bool IsOctal(char digit) {
  return digit >= '0' && digit <= '7';
}

// The kernel writes blanks, line feeds and backslashes of a path as "\" and three octal digits.
std::string Unescape(std::string_view field) {
  std::string text;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size() && IsOctal(field[i + 1]) &&
        IsOctal(field[i + 2]) && IsOctal(field[i + 3])) {
      text += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                (field[i + 3] - '0'));
      i += 3;
    } else {
      text += field[i];
    }
  }
  return text;
}

std::optional<TMount> ParseMount(std::string_view line) {
  // number, parent, major:minor, root, mount point, options, any number of fields, "-", type,
  // source, options
  const std::vector<std::string_view> fields = SplitWords(line);
  if (fields.size() < 6) return std::nullopt;
  const auto end = std::find(fields.begin() + 6, fields.end(), "-");
  if (fields.end() - end < 3) return std::nullopt;
  TMount mount;
  mount.device = fields[2];
  mount.point = Unescape(fields[4]);
  mount.type = Unescape(end[1]);
  mount.source = Unescape(end[2]);
  return mount;
}

// "/dev/" and the kernel's name, in which "!" stands for "/".
std::string MakeNode(const std::string& name) {
  std::string node = "/dev/" + name;
  std::replace(node.begin(), node.end(), '!', '/');
  return node;
}

}  // namespace

std::vector<TMount> ParseMountInfo(std::string_view text) {
  std::vector<TMount> mounts;
  for (const std::string_view line : SplitLines(text)) {
    if (std::optional<TMount> mount = ParseMount(line)) mounts.push_back(std::move(*mount));
  }
  return mounts;
}

std::vector<TMount> TDiskMounts::Find(const TDevice& disk) const {
  const std::vector<std::string> names = ListBlockNames(disk);
  const std::vector<TMount> mounts =
      ParseMountInfo(m_files.ReadText("/proc/self/mountinfo").value_or(""));
  std::vector<TMount> found;
  for (auto mount = mounts.begin(); mount != mounts.end(); ++mount) {
    // A later mount at the same place lies on top.
    const bool isHidden = std::any_of(mount + 1, mounts.end(), [mount](const TMount& later) {
      return later.point == mount->point;
    });
    if (!isHidden && IsOnBlock(*mount, names)) found.push_back(*mount);
  }
  return found;
}

std::vector<std::string> TDiskMounts::ListBlockNames(const TDevice& disk) const {
  std::vector<std::string> names = {disk.kernelName};
  for (const std::string& name : m_files.ListNames("/sys/block/" + disk.kernelName)) {
    std::string path = disk.kernelName;
    path.append("/").append(name);
    if (m_files.Exists("/sys/block/" + path + "/partition")) names.push_back(std::move(path));
  }
  return names;
}

bool TDiskMounts::IsOnBlock(const TMount& mount, const std::vector<std::string>& names) const {
  // Only file systems that manage their devices themselves have files with a number of no block
  // device; a source is just a text with all the others.
  const bool isByNumber = !StartsWith(mount.device, "0:");
  if (!isByNumber && mount.type != "btrfs") return false;
  // The source may be one of udev's links.
  const std::string target = isByNumber ? std::string() : m_files.ReadLinkName(mount.source);
  const std::string source = target.empty() ? mount.source : "/dev/" + target;
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    if (isByNumber) return m_files.ReadText("/sys/block/" + name + "/dev") == mount.device;
    const std::string own = name.substr(name.rfind('/') + 1);
    return source == MakeNode(own) && IsAlone(own);
  });
}

bool TDiskMounts::IsAlone(const std::string& name) const {
  for (const std::string& id : m_files.ListNames("/sys/fs/btrfs")) {
    const std::vector<std::string> devices = m_files.ListNames("/sys/fs/btrfs/" + id + "/devices");
    if (std::find(devices.begin(), devices.end(), name) != devices.end()) {
      return devices.size() == 1;
    }
  }
  return false;
}

}  // namespace hardware
