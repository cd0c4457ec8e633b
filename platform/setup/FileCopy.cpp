// SPDX-License-Identifier: Apache-2.0
#include "platform/setup/FileCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "platform/contract/TQELException.h"

namespace NZEPQEL20::setup {
namespace {

constexpr std::size_t kPiece = 65536;

constexpr char kCannotBeRead[] = "cannot be read";

[[noreturn]] void Refuse(const std::string& file, const std::string& what, int error) {
  const bool isDenied = error == EACCES || error == EPERM || error == EROFS;
  const std::string reason =
      what == kCannotBeRead ? std::generic_category().message(error) : DescribeWriteFault(error);
  throw TQELException(isDenied ? TQELStatusCode::kAccessDenied : TQELStatusCode::kFailed,
                      file + ": " + what + ": " + reason);
}

/// An open file.
class TFile {
 public:
  TFile(const std::string& name, int flags, mode_t mode, const char* what) : m_name(name) {
    m_number = ::open(name.c_str(), flags | O_CLOEXEC, mode);
    if (m_number < 0) Refuse(name, what, errno);
  }
  ~TFile() {
    if (m_number >= 0) ::close(m_number);
  }
  TFile(const TFile&) = delete;
  TFile& operator=(const TFile&) = delete;

  /// 0 at the end of the file.
  std::size_t Read(char* bytes, std::size_t size) const {
    for (;;) {
      const ssize_t count = ::read(m_number, bytes, size);
      if (count >= 0) return static_cast<std::size_t>(count);
      if (errno != EINTR) Refuse(m_name, kCannotBeRead, errno);
    }
  }

  void Write(const char* bytes, std::size_t size) const {
    while (size > 0) {
      const ssize_t count = ::write(m_number, bytes, size);
      if (count < 0 && errno != EINTR) Refuse(m_name, "cannot be written", errno);
      if (count <= 0) continue;
      bytes += count;
      size -= static_cast<std::size_t>(count);
    }
  }

  /// A full disk may show itself here for the first time.
  void Finish(mode_t mode) {
    if (::fchmod(m_number, mode) != 0) Refuse(m_name, "cannot have its permissions", errno);
    if (::fsync(m_number) != 0) Refuse(m_name, "cannot be written", errno);
    const int number = m_number;
    m_number = -1;
    if (::close(number) != 0) Refuse(m_name, "cannot be written", errno);
  }

  int GetNumber() const { return m_number; }

 private:
  std::string m_name;
  int m_number = -1;
};

}  // namespace

std::string DescribeWriteFault(int error) {
  const std::string reason = std::generic_category().message(error);
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

void CopyFile(const std::string& from, const std::string& to) {
  // Without waiting: a pipe without a writer would hold us up before we see that it is one.
  const TFile source(from, O_RDONLY | O_NOFOLLOW | O_NONBLOCK, 0, kCannotBeRead);
  struct stat status = {};
  if (::fstat(source.GetNumber(), &status) != 0) Refuse(from, kCannotBeRead, errno);
  if (!S_ISREG(status.st_mode)) {
    throw TQELException(TQELStatusCode::kFailed,
                        from + ": is not a regular file; take it out of the folder; see rule R20");
  }
  TFile target(to, O_WRONLY | O_CREAT | O_EXCL, 0600, "cannot be made");
  std::array<char, kPiece> piece;
  for (std::size_t count = 0; (count = source.Read(piece.data(), piece.size())) > 0;) {
    target.Write(piece.data(), count);
  }
  const bool isProgram = (status.st_mode & S_IXUSR) != 0;
  target.Finish(isProgram ? 0755 : 0644);
}

}  // namespace NZEPQEL20::setup
