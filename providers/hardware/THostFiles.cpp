// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/THostFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "providers/hardware/TFileDescriptor.h"
#include "providers/hardware/Text.h"

namespace hardware {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{4} * 1024 * 1024;

std::optional<std::string> ReadAll(int file) {
  std::string text;
  std::array<char, 16384> piece{};
  while (text.size() < kMaxBytes) {
    const ssize_t count = ::read(file, piece.data(), piece.size());
    if (count < 0 && errno == EINTR) continue;
    // Some sysfs files refuse the read itself: a port that is down has no carrier to show.
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    text.append(piece.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

std::optional<std::string> THostFiles::ReadText(const std::string& path) const {
  const std::string place = Locate(path);
  // O_NONBLOCK: a FIFO in the place of the file must not hold the caller up.
  const TFileDescriptor file(::open(place.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  const std::optional<std::string> text = ReadAll(file.Get());
  if (!text) return std::nullopt;
  return std::string(Trim(*text));
}

std::optional<std::uint64_t> THostFiles::ReadNumber(const std::string& path) const {
  const std::optional<std::string> text = ReadText(path);
  return text ? ParseUnsigned(*text) : std::nullopt;
}

std::vector<std::string> THostFiles::ListNames(const std::string& folder) const {
  std::vector<std::string> names;
  std::error_code error;
  std::filesystem::directory_iterator entry(Locate(folder), error);
  while (!error && entry != std::filesystem::directory_iterator()) {
    names.push_back(entry->path().filename().string());
    entry.increment(error);
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string THostFiles::ReadLinkName(const std::string& path) const {
  std::error_code error;
  const std::filesystem::path target = std::filesystem::read_symlink(Locate(path), error);
  return error ? std::string() : target.filename().string();
}

bool THostFiles::Exists(const std::string& path) const {
  std::error_code error;
  return std::filesystem::exists(Locate(path), error) && !error;
}

}  // namespace hardware
