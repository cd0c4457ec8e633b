// SPDX-License-Identifier: Apache-2.0
#include "platform/cimxml/TLocalAuthentication.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/cimxml/HttpText.h"
#include "platform/cimxml/TChallenge.h"
#include "platform/contract/TQELException.h"
#include "platform/schema/TDescriptor.h"

namespace NZEPQEL20::cimxml {
namespace {

constexpr std::size_t kMaxContent = 4096;

// More than any entry of a user needs.
constexpr std::size_t kMaxEntry = std::size_t{1} << 20U;

[[noreturn]] void Refuse(const std::string& file, const std::string& reason) {
  throw TQELException(TQELStatusCode::kAccessDenied, "local authentication asks for the file \"" +
                                                         MakeSafe(file) +
                                                         "\", which is not answered: " + reason);
}

std::string DescribeErrno(int number) {
  return std::generic_category().message(number);
}

// What can stand between quotes in a header field.
bool IsPlain(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char character) {
    return character >= 0x20 && character < 0x7F && character != '"' && character != '\\';
  });
}

void CheckPlace(const std::string& file, const std::vector<std::string>& directories) {
  if (file.empty() || file[0] != '/') Refuse(file, "its path is not absolute");
  if (!IsPlain(file)) Refuse(file, "its path holds odd characters");
  const std::size_t slash = file.rfind('/');
  const std::string name = file.substr(slash + 1);
  const std::string directory = file.substr(0, slash);
  const bool isKnown =
      std::find(directories.begin(), directories.end(), directory) != directories.end();
  if (!isKnown || name.empty() || name == "." || name == "..") {
    Refuse(file, "it is not in a directory that servers use for this");
  }
}

// A file that anybody else could have written, or could read, proves nothing and may be a secret.
void CheckFile(const std::string& file, int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) Refuse(file, DescribeErrno(errno));
  if (!S_ISREG(status.st_mode)) Refuse(file, "it is no regular file");
  if (status.st_uid != ::geteuid()) Refuse(file, "it does not belong to the user we run as");
  if ((status.st_mode & 077U) != 0) Refuse(file, "others than its owner have rights on it");
  if (status.st_nlink != 1) Refuse(file, "it has more than one name");
  if (status.st_size > static_cast<off_t>(kMaxContent)) {
    Refuse(file, "it has more than " + DescribeBytes(kMaxContent));
  }
}

std::string ReadAll(const std::string& file, int descriptor) {
  // One more byte tells a file that grew since it was looked at.
  std::string content(kMaxContent + 1, '\0');
  std::size_t size = 0;
  while (size < content.size()) {
    const ssize_t got = ::read(descriptor, &content[size], content.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Refuse(file, DescribeErrno(errno));
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  if (size > kMaxContent) Refuse(file, "it has more than " + DescribeBytes(kMaxContent));
  content.resize(size);
  return content;
}

}  // namespace

std::string FindUserName(uid_t user, std::size_t buffer) {
  for (; buffer <= kMaxEntry; buffer *= 2) {
    std::vector<char> memory(buffer);
    passwd entry{};
    passwd* found = nullptr;
    const int problem = ::getpwuid_r(user, &entry, memory.data(), memory.size(), &found);
    if (problem == ERANGE) continue;
    if (problem != 0 || found == nullptr || !IsPlain(found->pw_name)) return {};
    return found->pw_name;
  }
  return {};
}

std::string FindLocalChallenge(const std::vector<std::string>& fields) {
  for (const TChallenge& challenge : ReadChallenges(fields)) {
    const std::string& rest = challenge.rest;
    const bool isQuoted = rest.size() > 2 && rest.front() == '"' && rest.back() == '"';
    if (EqualsNoCase(challenge.scheme, "Local") && isQuoted) {
      return rest.substr(1, rest.size() - 2);
    }
  }
  return {};
}

std::vector<std::string> TLocalAuthentication::GetKnownDirectories(const std::string& socketPath) {
  return {"/run/tog-pegasus",
          "/run/tog-pegasus/socket",
          "/var/run/tog-pegasus",
          "/var/run/tog-pegasus/socket",
          "/var/lib/Pegasus/cache/localauth",
          "/var/lib/pegasus/cache/localauth",
          "/tmp",
          socketPath.substr(0, socketPath.rfind('/'))};
}

TLocalAuthentication::TLocalAuthentication(std::vector<std::string> directories, std::string user)
    : m_directories(std::move(directories)), m_user(std::move(user)) {}

std::string TLocalAuthentication::GetGreeting() const {
  return m_user.empty() ? std::string() : "Local \"" + m_user + "\"";
}

std::string TLocalAuthentication::Answer(const std::string& file) const {
  if (m_user.empty()) {
    throw TQELException(
        TQELStatusCode::kAccessDenied,
        "local authentication needs a user name, and the system has none for user number " +
            std::to_string(::geteuid()));
  }
  CheckPlace(file, m_directories);
  // Without waiting: opening a pipe would otherwise last until somebody writes to it.
  const TDescriptor opened(
      ::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (opened.Get() < 0) {
    Refuse(file, errno == ELOOP ? std::string("it is a symbolic link") : DescribeErrno(errno));
  }
  CheckFile(file, opened.Get());
  const std::string content(Trim(ReadAll(file, opened.Get())));
  if (content.empty()) Refuse(file, "it is empty");
  if (!IsPlain(content)) Refuse(file, "its content is not one line of printable text");
  return "Local \"" + m_user + ":" + file + ":" + content + "\"";
}

}  // namespace NZEPQEL20::cimxml
