// SPDX-License-Identifier: Apache-2.0
#include "host/SecretFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "host/TDescriptor.h"
#include "host/TUsageError.h"
#include "host/Text.h"

namespace host {
namespace {

// A word for the shell: in single quotes, a single quote itself outside of them.
std::string Quote(const std::string& name) {
  std::string quoted = "'";
  for (const char letter : name) {
    if (letter == '\'') {
      quoted += "'\\''";
    } else {
      quoted += letter;
    }
  }
  return quoted + "'";
}

std::string FormatMode(mode_t mode) {
  std::array<char, 16> text{};
  static_cast<void>(
      std::snprintf(text.data(), text.size(), "%04o", static_cast<unsigned int>(mode & ALLPERMS)));
  return text.data();
}

[[noreturn]] void RefuseWithReason(const std::string& shown, int error) {
  throw TUsageError(shown, std::generic_category().message(error));
}

void Check(int descriptor, const std::string& shown, const std::string& name) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) RefuseWithReason(shown, errno);
  if (!S_ISREG(status.st_mode)) throw TUsageError(shown, "is not a regular file");
  if (status.st_uid != ::geteuid() && status.st_uid != 0) {
    throw TUsageError(shown, "belongs to user " + std::to_string(status.st_uid) +
                                 "; it must be owned by user " + std::to_string(::geteuid()) +
                                 " or root");
  }
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    throw TUsageError(shown, "is open to others (mode " + FormatMode(status.st_mode) +
                                 "); `chmod 600 " + SafeText(Quote(name), ELines::kOne) +
                                 "` mends it");
  }
}

}  // namespace

TSecret ReadSecretFile(const std::string& name) {
  const std::string shown = SafeText(name, ELines::kOne);
  // Without O_NONBLOCK the opening of a pipe waits for somebody to write.
  const TDescriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  if (file.Get() < 0) RefuseWithReason(shown, errno);
  Check(file.Get(), shown, name);
  // One block from the start: a text that grows leaves copies behind.
  std::string text(kLargestSecretFile + 1, '\0');
  std::size_t size = 0;
  ssize_t got = 0;
  do {
    got = ::read(file.Get(), text.data() + size, text.size() - size);
    if (got > 0) size += static_cast<std::size_t>(got);
  } while (size < text.size() && (got > 0 || (got < 0 && errno == EINTR)));
  const int error = got < 0 ? errno : 0;
  TSecret secret(std::string_view(text).substr(0, size));
  Wipe(text);
  if (error != 0) RefuseWithReason(shown, error);
  if (size > kLargestSecretFile) {
    throw TUsageError(shown, "is larger than " + std::to_string(kLargestSecretFile >> 10U) +
                                 " KiB, which no credentials are");
  }
  return secret;
}

}  // namespace host
