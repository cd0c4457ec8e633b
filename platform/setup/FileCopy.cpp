// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/FileCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20::setup {
namespace {

// Of the original's permissions; nobody else writes, and no file lends its owner's rights.
constexpr mode_t kKept = 0755;
constexpr std::size_t kPiece = 65536;

constexpr int kNew = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;

[[noreturn]] void Refuse(const std::string& text, int error) {
  const bool isDenied = error == EACCES || error == EPERM || error == EROFS;
  throw TQELException(isDenied ? TQELStatusCode::kAccessDenied : TQELStatusCode::kFailed, text);
}

/// An open file and its name.
class TFile {
 public:
  TFile(std::string name, TDescriptor file) : m_name(std::move(name)), m_file(std::move(file)) {
    if (m_file.Get() < 0) RefusePlace(m_name, "cannot be made", errno);
  }

  int Get() const { return m_file.Get(); }

  /// 0 at the end of the file.
  std::size_t Read(char* bytes, std::size_t size) const {
    for (;;) {
      const ssize_t count = ::read(m_file.Get(), bytes, size);
      if (count >= 0) return static_cast<std::size_t>(count);
      if (errno != EINTR) RefuseRead(errno);
    }
  }

  void Write(const char* bytes, std::size_t size) const {
    while (size > 0) {
      const ssize_t count = ::write(m_file.Get(), bytes, size);
      if (count < 0 && errno != EINTR) RefusePlace(m_name, "cannot be written", errno);
      if (count <= 0) continue;
      bytes += count;
      size -= static_cast<std::size_t>(count);
    }
  }

  /// A full disk may show itself here for the first time.
  void Finish(mode_t mode) {
    if (::fchmod(m_file.Get(), mode) != 0)
      RefusePlace(m_name, "cannot have its permissions", errno);
    if (::fsync(m_file.Get()) != 0) RefusePlace(m_name, "cannot be written", errno);
    if (::close(m_file.Release()) != 0) RefusePlace(m_name, "cannot be written", errno);
  }

 private:
  [[noreturn]] void RefuseRead(int error) const {
    Refuse(m_name + ": cannot be read: " + std::generic_category().message(error), error);
  }

  std::string m_name;
  TDescriptor m_file;
};

}  // namespace

std::string DescribeWriteFault(int error) {
  std::string reason = std::generic_category().message(error);
  switch (error) {
    case EACCES:
    case EPERM:
      return reason +
             "; run the command as the owner of the installation root, or name another root";
    case EROFS:
      return reason + "; the installation root is read-only, name another root or remount it";
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return reason + "; make room there and try again, nothing was changed";
    default:
      return reason;
  }
}

void RefusePlace(const std::string& place, const std::string& what, int error) {
  Refuse(place + ": " + what + ": " + DescribeWriteFault(error), error);
}

void CopyFile(const TVendorFile& from, const std::string& to) {
  const TFile source(from.name, TVendorFolder::Open(from));
  TFile target(to, TDescriptor(::open(to.c_str(), kNew, 0600)));
  std::array<char, kPiece> piece;
  auto left = static_cast<std::size_t>(from.status.st_size);
  for (std::size_t count = 0; (count = source.Read(piece.data(), piece.size())) > 0;) {
    // One that grows as fast as it is read would have no end.
    if (count > left) RefuseChanged(from.name);
    left -= count;
    target.Write(piece.data(), count);
  }
  target.Finish(from.status.st_mode & kKept);
  TVendorFolder::CheckUnchanged(from, source.Get());
}

}  // namespace NZEPQEL20::setup
