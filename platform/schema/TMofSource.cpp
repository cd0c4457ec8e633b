// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TMofSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"
#include "platform/schema/TDescriptor.h"
#include "platform/schema/Utf8.h"

namespace NZEPQEL20 {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void ThrowErrno(int error) {
  const unsigned int status = error == ENOENT   ? TQELStatusCode::kNotFound
                              : error == EACCES ? TQELStatusCode::kAccessDenied
                                                : TQELStatusCode::kFailed;
  throw TQELException(status, std::generic_category().message(error));
}

void CheckKind(int fd, TFileStamp& stamp) {
  struct stat info = {};
  if (fstat(fd, &info) != 0) {
    ThrowErrno(errno);
  }
  if (S_ISDIR(info.st_mode)) {
    throw TQELException(TQELStatusCode::kInvalidArgument, "is a directory");
  }
  if (!S_ISREG(info.st_mode)) {
    throw TQELException(TQELStatusCode::kInvalidArgument, "is not a regular file");
  }
  if (static_cast<std::size_t>(info.st_size) > TMofSource::kMaxSize) {
    throw TQELException(TQELStatusCode::kInvalidArgument, "larger than 256 MiB");
  }
  stamp.Take(info);
}

std::string ConvertUtf16(const std::string& bytes, bool isBigEndian) {
  const auto unit = [&bytes, isBigEndian](std::size_t i) {
    const auto low = static_cast<unsigned char>(bytes[isBigEndian ? i + 1 : i]);
    const auto high = static_cast<unsigned char>(bytes[isBigEndian ? i : i + 1]);
    return static_cast<unsigned int>((high << 8U) | low);
  };
  std::string text;
  for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
    unsigned int codePoint = unit(i);
    const bool isPair = (codePoint & 0xFC00U) == 0xD800U && i + 3 < bytes.size() &&
                        (unit(i + 2) & 0xFC00U) == 0xDC00U;
    if (isPair) {
      codePoint = 0x10000 + ((codePoint - 0xD800) << 10U) + (unit(i + 2) - 0xDC00);
      i += 2;
    }
    AppendUtf8(text, codePoint);
  }
  return text;
}

}  // namespace

std::string ReadMofBytes(const std::string& path, TFileStamp& stamp) {
  // Not blocking, so that a pipe in the place of a file cannot hold the host up.
  const TDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.IsOpen()) {
    ThrowErrno(errno);
  }
  CheckKind(file.Get(), stamp);
  std::string bytes;
  // One byte more, so that the end shows without another read of a whole block.
  std::size_t room = static_cast<std::size_t>(stamp.size) + 1;
  while (bytes.size() <= TMofSource::kMaxSize) {
    const std::size_t before = bytes.size();
    bytes.resize(before + room);
    const ssize_t count = read(file.Get(), bytes.data() + before, room);
    if (count < 0 && errno != EINTR) {
      ThrowErrno(errno);
    }
    bytes.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count == 0) {
      return bytes;
    }
    constexpr std::size_t kBlock = 65536;
    room = bytes.size() > stamp.size ? kBlock
                                     : static_cast<std::size_t>(stamp.size) + 1 - bytes.size();
  }
  // The file grew while it was read.
  throw TQELException(TQELStatusCode::kInvalidArgument, "larger than 256 MiB");
}

TMofSource TMofSource::ReadFile(const std::string& path, TSchemaSources* sources) {
  TFileStamp stamp;
  std::string bytes = ReadMofBytes(path, stamp);
  if (sources != nullptr) {
    sources->AddFile(path, stamp, bytes);
  }
  return FromText(path, std::move(bytes));
}

TMofSource TMofSource::FromText(const std::string& name, std::string bytes) {
  if (bytes.compare(0, 2, "\xFF\xFE") == 0 || bytes.compare(0, 2, "\xFE\xFF") == 0) {
    return {name, ConvertUtf16(bytes, bytes[0] == '\xFE')};
  }
  if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    bytes.erase(0, 3);
  }
  return {name, MendUtf8(std::move(bytes), EByteText::kWindows1252)};
}

bool IsBinary(const std::string& text) {
  constexpr std::size_t kLookedAt = 4096;
  constexpr std::ptrdiff_t kOneIn = 32;
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(text.size(), kLookedAt));
  const auto isControl = [](char c) {
    // The end-of-file mark of old systems is among what a text may hold.
    return (static_cast<unsigned char>(c) < ' ' || c == '\x7F') &&
           std::strchr("\t\n\v\f\r\x1A", c) == nullptr;
  };
  const auto isOdd = [&](char c) { return c == '\0' || isControl(c); };
  const auto count = std::count_if(text.begin(), end, isOdd);
  return count > 1 && count * kOneIn >= end - text.begin();
}

std::string ResolveMofPath(const std::string& path, const std::string& includingFile,
                           TFolderNames& names) {
  std::string plain = path;
  std::replace(plain.begin(), plain.end(), '\\', '/');
  const fs::path wanted = fs::path(includingFile).parent_path() / plain;
  std::error_code error;
  if (fs::exists(wanted, error)) {
    return wanted.string();
  }
  // Written on a file system without case: each part may be spelled differently here.
  fs::path found;
  for (const fs::path& part : wanted) {
    const fs::path exact = found / part;
    const std::string similar =
        fs::exists(exact, error) ? exact.string() : names.Find(found.string(), part.string());
    if (similar.empty()) {
      return wanted.string();
    }
    found = similar;
  }
  return found.string();
}

}  // namespace NZEPQEL20
