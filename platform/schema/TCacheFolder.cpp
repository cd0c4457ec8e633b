// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TCacheFolder.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace NZEPQEL20 {

namespace {

std::string Explain(int error) {
  return std::generic_category().message(error);
}

/// The reason why what `fd` is open on is not to be believed; empty when it is.
std::string FindDoubt(int fd, mode_t kind) {
  struct stat info = {};
  if (fstat(fd, &info) != 0) {
    return Explain(errno);
  }
  if ((info.st_mode & S_IFMT) != kind) {
    return "is not what it should be";
  }
  if (info.st_uid != 0 && info.st_uid != geteuid()) {
    return "belongs to somebody else";
  }
  return (info.st_mode & (S_IWGRP | S_IWOTH)) != 0 ? "others may write to it" : "";
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

std::string GetTemporaryStart(const std::string& name) {
  return "." + name + ".";
}

/// A name that nobody else uses, in this container or another one over the same folder; empty, with
/// the reason in errno, when there is no chance to draw it from.
std::string MakeTemporaryName(const std::string& name) {
  std::uint64_t number = 0;
  // So few bytes come whole.
  if (getrandom(&number, sizeof(number), 0) < 0) {
    return {};
  }
  return GetTemporaryStart(name) + std::to_string(number);
}

/// Removes what writers that were killed have left behind, a day ago or longer.
void RemoveLeftovers(const std::string& path, int folder, const std::string& name) {
  constexpr time_t kDay = 86'400;
  const time_t now = time(nullptr);
  const std::string start = GetTemporaryStart(name);
  std::error_code error;
  std::filesystem::directory_iterator entry(path, error);
  for (const std::filesystem::directory_iterator end; !error && entry != end;
       entry.increment(error)) {
    const std::string other = entry->path().filename().string();
    struct stat info = {};
    if (other.compare(0, start.size(), start) == 0 &&
        fstatat(folder, other.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
        info.st_mtime < now - kDay) {
      unlinkat(folder, other.c_str(), 0);
    }
  }
}

/// Makes the folder and those above it that are missing.
void MakeFolders(const std::string& path) {
  const std::filesystem::path above = std::filesystem::path(path).parent_path();
  struct stat info = {};
  if (!above.empty() && stat(above.c_str(), &info) != 0 && above != path) {
    MakeFolders(above.string());
  }
  mkdir(path.c_str(), S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH);
}

}  // namespace

TDescriptor TCacheFolder::OpenFolder(std::string& reason) const {
  TDescriptor folder(open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!folder.IsOpen()) {
    reason = errno == ENOENT ? "" : m_path + ": " + Explain(errno);
    return folder;
  }
  const std::string doubt = FindDoubt(folder.Get(), S_IFDIR);
  if (!doubt.empty()) {
    reason = m_path + ": " + doubt;
    return TDescriptor();
  }
  return folder;
}

TDescriptor TCacheFolder::Open(const std::string& name, std::string& reason) const {
  const TDescriptor folder = OpenFolder(reason);
  if (!folder.IsOpen()) {
    return TDescriptor();
  }
  TDescriptor file(
      openat(folder.Get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.IsOpen()) {
    reason = errno == ENOENT ? "" : m_path + "/" + name + ": " + Explain(errno);
    return file;
  }
  const std::string doubt = FindDoubt(file.Get(), S_IFREG);
  if (!doubt.empty()) {
    reason = m_path + "/" + name + ": " + doubt;
    return TDescriptor();
  }
  return file;
}

std::string TCacheFolder::Write(const std::string& name,
                                const std::vector<std::string_view>& parts) const {
  MakeFolders(m_path);
  std::string reason;
  const TDescriptor folder = OpenFolder(reason);
  if (!folder.IsOpen()) {
    return reason.empty() ? m_path + ": cannot be made" : reason;
  }
  const std::string temporary = MakeTemporaryName(name);
  if (temporary.empty()) {
    return m_path + ": " + Explain(errno);
  }
  const TDescriptor file(openat(folder.Get(), temporary.c_str(),
                                O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH));
  if (!file.IsOpen()) {
    return m_path + ": " + Explain(errno);
  }
  bool isDone = true;
  for (const std::string_view part : parts) {
    isDone = isDone && WriteAll(file.Get(), part);
  }
  isDone = isDone && fsync(file.Get()) == 0 &&
           renameat(folder.Get(), temporary.c_str(), folder.Get(), name.c_str()) == 0;
  if (isDone) {
    RemoveLeftovers(m_path, folder.Get(), name);
    return {};
  }
  const std::string failure = Explain(errno);
  unlinkat(folder.Get(), temporary.c_str(), 0);
  return m_path + "/" + name + ": " + failure;
}

}  // namespace NZEPQEL20
