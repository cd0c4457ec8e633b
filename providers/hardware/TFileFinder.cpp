// SPDX-License-Identifier: Apache-2.0
#include "providers/hardware/TFileFinder.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <utility>

#include "providers/hardware/Text.h"
#include "providers/hardware/Units.h"

namespace hardware {
namespace {

using std::chrono::steady_clock;

constexpr std::size_t kEntriesPerLook = 256;
constexpr std::size_t kMaxPathBytes = 1024;

// Opens what lies below the mount point without leaving it: neither a link nor another mount that
// somebody puts into the way meanwhile can lead elsewhere.
TFileDescriptor OpenBelow(int mountPoint, const std::string& path, int flags) {
  struct open_how how {};
  how.flags = static_cast<std::uint64_t>(flags) | O_NOFOLLOW | O_CLOEXEC;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS | RESOLVE_NO_XDEV;
  // The C library has no function for this call.
  return TFileDescriptor(
      static_cast<int>(::syscall(SYS_openat2, mountPoint, path.c_str(), &how, sizeof how)));
}

// Whole MiB of a file that can be read from the disk; 0 for all that is not to be read. What takes
// up less space than its size tells has parts that are not on the disk as they are read.
std::uint64_t GetReadableBytes(const struct stat& status) {
  if (!S_ISREG(status.st_mode) || status.st_size < 0 || status.st_blocks < 0) return 0;
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (static_cast<std::uint64_t>(status.st_blocks) < size / kSectorBytes) return 0;
  return size - size % kMib;
}

struct TFolderCloser {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using TFolder = std::unique_ptr<DIR, TFolderCloser>;

TFolder OpenFolder(int mountPoint, const std::string& path) {
  TFileDescriptor file = OpenBelow(mountPoint, path, O_RDONLY | O_DIRECTORY);
  TFolder folder(file.IsOpen() ? ::fdopendir(file.Get()) : nullptr);
  if (folder) file.Release();
  return folder;
}

}  // namespace

/// One search, folder by folder, upper ones first.
class TFileFinder::TWalk {
 public:
  TWalk(int mountPoint, const TLimits& limits, const TVisitor& visit)
      : m_mountPoint(mountPoint),
        m_limits(limits),
        m_visit(visit),
        m_end(steady_clock::now() + limits.time) {}

  void Run() {
    m_folders.emplace_back(".");
    while (!m_isOver && !m_folders.empty()) {
      const std::string path = std::move(m_folders.front());
      m_folders.pop_front();
      if (const TFolder folder = OpenFolder(m_mountPoint, path)) Search(folder.get(), path);
    }
  }

 private:
  void Search(DIR* folder, const std::string& path) {
    const std::string start = path == "." ? "" : path + "/";
    while (!m_isOver) {
      // NOLINTNEXTLINE(concurrency-mt-unsafe): the folder is this thread's own.
      const struct dirent* const entry = ::readdir(folder);
      if (entry == nullptr) return;
      const std::string name = static_cast<const char*>(entry->d_name);
      if (name == "." || name == "..") continue;
      Count();
      if (!m_isOver) Look(::dirfd(folder), entry->d_type, name, start + name);
    }
  }

  void Count() {
    ++m_entries;
    const bool isLook = m_entries % kEntriesPerLook == 1;
    m_isOver = m_entries > m_limits.entries || (isLook && steady_clock::now() >= m_end);
  }

  void Look(int folder, unsigned char type, const std::string& name, const std::string& path) {
    if (path.size() > kMaxPathBytes) return;
    if (type == DT_DIR) {
      m_folders.push_back(path);
      return;
    }
    if (type != DT_REG && type != DT_UNKNOWN) return;
    struct stat status {};
    constexpr int kFlags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
    if (::fstatat(folder, name.c_str(), &status, kFlags) != 0) return;
    if (S_ISDIR(status.st_mode)) m_folders.push_back(path);
    const std::uint64_t bytes = GetReadableBytes(status);
    if (bytes != 0 && !m_visit({path, bytes})) m_isOver = true;
  }

  int m_mountPoint;
  const TLimits& m_limits;
  const TVisitor& m_visit;
  steady_clock::time_point m_end;
  std::deque<std::string> m_folders;
  std::size_t m_entries = 0;
  bool m_isOver = false;
};

TFileFinder::TFileFinder(std::string mountPoint, std::string device, TLimits limits)
    : m_mountPoint(std::move(mountPoint)), m_device(std::move(device)), m_limits(limits) {}

TFileDescriptor TFileFinder::OpenMountPoint() const {
  TFileDescriptor folder(::open(m_mountPoint.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  struct stat status {};
  if (!folder.IsOpen() || ::fstat(folder.Get(), &status) != 0) return TFileDescriptor();
  const std::string major = std::to_string(major(status.st_dev));
  const bool isExpected = StartsWith(m_device, "0:")
                              ? major == "0"
                              : m_device == major + ":" + std::to_string(minor(status.st_dev));
  return isExpected ? std::move(folder) : TFileDescriptor();
}

std::optional<TChosenFile> TFileFinder::Open(int mountPoint, const TCandidate& candidate) const {
  // Looked at before it is opened: to open a device or a FIFO that took the file's place could do
  // something to it.
  const TFileDescriptor place = OpenBelow(mountPoint, candidate.path, O_PATH);
  struct stat status {};
  if (!place.IsOpen() || ::fstat(place.Get(), &status) != 0) return std::nullopt;
  TChosenFile chosen;
  chosen.bytes = GetReadableBytes(status);
  if (chosen.bytes == 0) return std::nullopt;
  const std::string link = "/proc/self/fd/" + std::to_string(place.Get());
  chosen.file = TFileDescriptor(
      ::open(link.c_str(), O_RDONLY | O_DIRECT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!chosen.file.IsOpen()) return std::nullopt;
  chosen.path = m_mountPoint + (m_mountPoint.back() == '/' ? "" : "/") + candidate.path;
  return chosen;
}

bool TFileFinder::HasAny() const {
  const TFileDescriptor mountPoint = OpenMountPoint();
  bool isFound = false;
  const TVisitor visit = [&](const TCandidate& candidate) {
    isFound = Open(mountPoint.Get(), candidate).has_value();
    return !isFound;
  };
  if (mountPoint.IsOpen()) TWalk(mountPoint.Get(), m_limits, visit).Run();
  return isFound;
}

std::vector<TChosenFile> TFileFinder::Choose(std::uint64_t bytes) const {
  const TFileDescriptor mountPoint = OpenMountPoint();
  std::vector<TCandidate> candidates;
  const TVisitor visit = [&candidates](TCandidate candidate) {
    candidates.push_back(std::move(candidate));
    return true;
  };
  if (mountPoint.IsOpen()) TWalk(mountPoint.Get(), m_limits, visit).Run();
  std::stable_sort(
      candidates.begin(), candidates.end(),
      [](const TCandidate& left, const TCandidate& right) { return left.bytes > right.bytes; });
  std::vector<TChosenFile> chosen;
  const std::uint64_t maxFiles = std::min<std::uint64_t>(m_limits.files, bytes / kMib);
  for (const TCandidate& candidate : candidates) {
    if (chosen.size() >= maxFiles) break;
    if (auto file = Open(mountPoint.Get(), candidate)) chosen.push_back(std::move(*file));
  }
  std::uint64_t filesLeft = chosen.size();
  std::uint64_t bytesLeft = bytes;
  for (auto file = chosen.rbegin(); file != chosen.rend(); ++file, --filesLeft) {
    const std::uint64_t share = bytesLeft / filesLeft;
    file->bytes = std::min(file->bytes, share - share % kMib);
    bytesLeft -= file->bytes;
  }
  return chosen;
}

}  // namespace hardware
