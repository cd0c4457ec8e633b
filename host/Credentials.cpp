// SPDX-License-Identifier: Apache-2.0
#include "host/Credentials.h"

#include <string.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "host/SecretFile.h"
#include "host/ServerArguments.h"
#include "host/TUsageError.h"
#include "host/Text.h"

namespace host {
namespace {

constexpr char kUserVariable[] = "DIAGSRUNNER_SERVER_USER";
constexpr char kPasswordVariable[] = "DIAGSRUNNER_SERVER_PASSWORD";

// Takes a variable away, and its text out of the memory that /proc shows of this process.
TSecret TakeVariable(const char* name) {
  char* const value = std::getenv(name);
  if (value == nullptr) return {};
  TSecret secret{std::string_view(value)};
  ::explicit_bzero(value, secret.Get().size());
  ::unsetenv(name);
  return secret;
}

bool IsControl(char letter) {
  const auto byte = static_cast<unsigned char>(letter);
  return byte < 0x20 || byte == 0x7F;
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// What may have been meant by a line that says nothing known; nothing of the line itself.
std::string FindHint(std::string_view line) {
  constexpr std::string_view kBlanks = " \t";
  if (StartsWith(line, "\xEF\xBB\xBF")) {
    return "; it begins with a byte order mark: save the file without one";
  }
  const std::size_t first = line.find_first_not_of(kBlanks);
  const std::string_view word = line.substr(first == std::string_view::npos ? 0 : first);
  for (const std::string_view key : {"user", "password"}) {
    if (!StartsWith(word, key)) continue;
    const std::string_view rest = word.substr(key.size());
    const std::size_t sign = rest.find_first_not_of(kBlanks);
    if (sign == std::string_view::npos) continue;
    if (rest[sign] == ':') return "; write = in the place of the colon";
    if (rest[sign] == '=') return "; take the blanks in front of the word and the = away";
  }
  return {};
}

// One credentials file being read, line by line.
class TReader {
 public:
  explicit TReader(const std::string& name) : m_name(SafeText(name, ELines::kOne)) {}

  void Take(std::string_view line);
  TCredentials Finish();

 private:
  [[noreturn]] void Refuse(const std::string& reason) const {
    throw TUsageError(m_name, "line " + std::to_string(m_line) + ": " + reason);
  }
  void CheckLine(std::string_view line) const;
  void TakeUser(std::string_view value);
  void TakePassword(std::string_view value);

  std::string m_name;
  std::size_t m_line = 0;
  std::optional<std::string> m_user;
  std::optional<TSecret> m_password;
};

void TReader::CheckLine(std::string_view line) const {
  if (line.size() > kLongestCredentialsLine) {
    Refuse("is longer than " + std::to_string(kLongestCredentialsLine) + " bytes");
  }
  if (line.find('\0') != std::string_view::npos) Refuse("holds a NUL byte");
}

void TReader::Take(std::string_view line) {
  constexpr std::string_view kUser = "user=";
  constexpr std::string_view kPassword = "password=";
  ++m_line;
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  CheckLine(line);
  const std::size_t first = line.find_first_not_of(" \t");
  if (first == std::string_view::npos || line[first] == '#') return;
  if (std::any_of(line.begin(), line.end(), IsControl)) Refuse("holds a control character");
  if (line.substr(0, kUser.size()) == kUser) {
    TakeUser(line.substr(kUser.size()));
  } else if (line.substr(0, kPassword.size()) == kPassword) {
    TakePassword(line.substr(kPassword.size()));
  } else {
    Refuse("is neither user=NAME nor password=PASSWORD nor a comment" + FindHint(line));
  }
}

void TReader::TakeUser(std::string_view value) {
  if (m_user) Refuse("names a second user");
  m_user = std::string(value);
  const std::string fault = FindUserFault(*m_user);
  if (!fault.empty()) Refuse("user: " + fault);
}

void TReader::TakePassword(std::string_view value) {
  if (m_password) Refuse("has a second password");
  m_password = TSecret(value);
}

TCredentials TReader::Finish() {
  if (!m_user) throw TUsageError(m_name, "has no line user=NAME");
  if (!m_password) throw TUsageError(m_name, "has no line password=PASSWORD");
  return {*std::move(m_user), *std::move(m_password)};
}

void CheckEnvironment(const TEnvironmentCredentials& environment) {
  if (!environment.user.empty()) {
    const std::string fault = FindUserFault(environment.user);
    if (!fault.empty()) throw TUsageError(kUserVariable, fault);
  }
  if (!environment.password) return;
  const std::string& password = environment.password->Get();
  if (std::any_of(password.begin(), password.end(), IsControl)) {
    throw TUsageError(kPasswordVariable, "holds a control character");
  }
}

}  // namespace

TEnvironmentCredentials TakeEnvironmentCredentials() {
  TEnvironmentCredentials taken;
  taken.user = TakeVariable(kUserVariable).Get();
  TSecret password = TakeVariable(kPasswordVariable);
  if (!password.Get().empty()) taken.password = std::move(password);
  return taken;
}

TCredentials ReadCredentialsFile(const std::string& name) {
  const TSecret text = ReadSecretFile(name);
  TReader reader(name);
  std::string_view rest = text.Get();
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    reader.Take(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return reader.Finish();
}

bool HasUser(const TCredentialSources& sources) {
  return !sources.file.empty() || !sources.user.empty() || !sources.environment.user.empty();
}

TCredentials FindCredentials(TCredentialSources sources) {
  if (!sources.file.empty()) {
    try {
      return ReadCredentialsFile(sources.file);
    } catch (const TUsageError& e) {
      throw TUsageError("--credentials", e.what());
    }
  }
  CheckEnvironment(sources.environment);
  TEnvironmentCredentials& environment = sources.environment;
  const std::string user = sources.user.empty() ? environment.user : sources.user;
  if (user.empty()) return {};
  const bool isItsPassword = environment.user.empty() || environment.user == user;
  if (environment.password && isItsPassword) return {user, *std::move(environment.password)};
  if (sources.ask) return {user, sources.ask(user)};
  throw TUsageError("password of " + SafeText(user, ELines::kOne),
                    std::string("is not known; name a file with --credentials, set ") +
                        kUserVariable + " and " + kPasswordVariable +
                        ", or run on a terminal to be asked");
}

}  // namespace host
