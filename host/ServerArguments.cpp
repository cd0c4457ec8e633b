// SPDX-License-Identifier: Apache-2.0
#include "host/ServerArguments.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <system_error>

#include "host/TDescriptor.h"
#include "host/TUsageError.h"
#include "host/Text.h"

namespace host {
namespace {

using std::chrono::milliseconds;

constexpr char kServer[] = "--server";
constexpr char kGroup[] = "CIM server";
constexpr char kNoPassword[] =
    "a password is never taken from the command line, where others can read it; use --credentials "
    "FILE, DIAGSRUNNER_SERVER_PASSWORD or the prompt";

constexpr std::uint64_t kMostSeconds = 604'800;  // A week.
constexpr std::uint64_t kMostMegabytes = 4096;

bool IsDigits(const std::string& text, std::size_t most) {
  return !text.empty() && text.size() <= most &&
         text.find_first_not_of("0123456789") == std::string::npos;
}

// "12", "0.5" and ".5"; what is finer than a millisecond is cut off.
bool ReadSeconds(const std::string& text, milliseconds& time) {
  constexpr std::size_t kMostDigits = 9;
  const std::size_t point = text.find('.');
  std::string whole = text.substr(0, point);
  if (whole.empty() && point == 0) whole = "0";
  std::string part = point == std::string::npos ? "0" : text.substr(point + 1);
  if (!IsDigits(whole, kMostDigits) || !IsDigits(part, kMostDigits)) return false;
  part = (part + "000").substr(0, 3);
  const std::uint64_t count = std::stoull(whole) * 1000 + std::stoull(part);
  if (count == 0 || count > kMostSeconds * 1000) return false;
  time = milliseconds(count);
  return true;
}

bool ReadMegabytes(const std::string& text, std::uint64_t& bytes) {
  constexpr std::size_t kMostDigits = 9;
  if (!IsDigits(text, kMostDigits)) return false;
  const std::uint64_t count = std::stoull(text);
  if (count == 0 || count > kMostMegabytes) return false;
  bytes = count << 20U;
  return true;
}

void AddText(CLI::App& app, const char* name, std::string& value, const char* type,
             const char* text) {
  app.add_option(name, value, text)->type_name(type)->group(kGroup);
}

void AddSeconds(CLI::App& app, const char* name, milliseconds& time, const char* text) {
  const auto read = [name, &time](const std::string& value) {
    if (ReadSeconds(value, time)) return;
    throw TUsageError(name,
                      "needs a number of seconds from 0.001 to " + std::to_string(kMostSeconds));
  };
  app.add_option_function<std::string>(name, read, text)->type_name("SECONDS")->group(kGroup);
}

void AddMegabytes(CLI::App& app, const char* name, std::uint64_t& bytes, const char* text) {
  const auto read = [name, &bytes](const std::string& value) {
    if (ReadMegabytes(value, bytes)) return;
    throw TUsageError(
        name, "needs a whole number of megabytes from 1 to " + std::to_string(kMostMegabytes));
  };
  app.add_option_function<std::string>(name, read, text)->type_name("MB")->group(kGroup);
}

bool IsGiven(const CLI::App& app, const std::string& name) {
  return app.get_option(name)->count() > 0;
}

bool StartsWithNoCase(const std::string& text, const std::string& start) {
  return text.size() >= start.size() && ContainsNoCase(text.substr(0, start.size()), start);
}

bool IsUnixUrl(const std::string& url) {
  return StartsWithNoCase(url, "unix:");
}

// "user@" or "user:password@", also where the rest of the URL is wrong. The path of a socket may
// hold an "@".
bool HasUserInfo(const std::string& url) {
  if (!IsUnixUrl(url)) return url.find('@') != std::string::npos;
  const std::size_t slashes = url.find("://");
  if (slashes == std::string::npos) return false;
  const std::string host = url.substr(slashes + 3, url.find('/', slashes + 3) - slashes - 3);
  return host.find('@') != std::string::npos;
}

void CheckUrl(const std::string& url) {
  if (url.empty()) throw TUsageError(kServer, "needs a URL that is not empty");
  if (HasUserInfo(url)) {
    throw TUsageError(kServer, std::string("the URL holds a user or a password; name the user "
                                           "with --user; ") +
                                   kNoPassword);
  }
  if (!IsUnixUrl(url) && url.find_first_of("?#") != std::string::npos) {
    throw TUsageError(kServer, "the URL has a query or a fragment, and a CIM server takes neither");
  }
  if (SafeText(url, ELines::kOne) != url) {
    throw TUsageError(kServer, "the URL holds a control character or a byte that is not UTF-8");
  }
}

void CheckUser(const CLI::App& app, const TServerArguments& arguments) {
  if (!IsGiven(app, "--user")) return;
  const std::string fault = FindUserFault(arguments.options.user);
  if (!fault.empty()) throw TUsageError("--user", fault);
  if (IsGiven(app, "--credentials")) {
    throw TUsageError("--user", "cannot be combined with --credentials, whose file names the user");
  }
}

void CheckCertificates(const CLI::App& app, const std::string& url) {
  const bool isPlain = IsUnixUrl(url) || StartsWithNoCase(url, "http:");
  for (const char* name : {"--ca", "--client-cert", "--client-key", "--insecure"}) {
    if (isPlain && IsGiven(app, name)) {
      throw TUsageError(name, "is about certificates, which only an https:// URL has");
    }
  }
  if (IsGiven(app, "--ca") && IsGiven(app, "--insecure")) {
    throw TUsageError("--ca", "cannot be combined with --insecure, which looks at no certificate");
  }
  if (IsGiven(app, "--client-key") && !IsGiven(app, "--client-cert")) {
    throw TUsageError("--client-key", "needs --client-cert, the certificate that the key is for");
  }
}

void CheckFile(const char* option, const std::string& name) {
  if (name.empty()) return;
  const std::string shown = SafeText(name, ELines::kOne);
  // Without O_NONBLOCK the opening of a pipe waits for somebody to write.
  const TDescriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  struct stat status {};
  if (file.Get() < 0 || ::fstat(file.Get(), &status) != 0) {
    throw TUsageError(option, shown + ": " + std::generic_category().message(errno));
  }
  if (!S_ISREG(status.st_mode)) throw TUsageError(option, shown + ": is not a regular file");
}

}  // namespace

void AddServerOptions(CLI::App& app, TServerArguments& arguments) {
  NZEPQEL20::TServerOptions& options = arguments.options;
  AddText(app, kServer, options.url, "URL",
          "Use the tests of this CIM server: http://HOST[:PORT][/PATH], "
          "https://HOST[:PORT][/PATH] (/cimom) or unix:///SOCKET");
  AddText(app, "--user", options.user, "NAME",
          "User of the server (else $DIAGSRUNNER_SERVER_USER); not with --credentials");
  AddText(app, "--credentials", arguments.credentialsFile, "FILE",
          "Read user=... and password=... from FILE, which is nobody else's to read");
  AddText(app, "--ca", options.caFile, "FILE", "Trust the certificates in FILE, not the system's");
  AddText(app, "--client-cert", options.clientCertificate, "FILE",
          "Show the server this certificate");
  AddText(app, "--client-key", options.clientKey, "FILE",
          "Its key (else in the file of the certificate)");
  app.add_flag("--insecure", options.isInsecure,
               "Take ANY certificate for ANY name: whoever sits in between reads the password and "
               "can fake results")
      ->group(kGroup);
  AddSeconds(app, "--connect-timeout", options.connectTimeout, "For reaching the server (10)");
  AddSeconds(app, "--request-timeout", options.requestTimeout, "For one request (120)");
  AddSeconds(app, "--total-timeout", options.totalTimeout,
             "For one operation with all its requests (600)");
  AddSeconds(app, "--method-timeout", options.methodTimeout,
             "For one method call, which may be a whole test (43200)");
  AddMegabytes(app, "--max-reply", options.maxReplyBytes, "Largest reply that is read (64)");
}

bool HasServer(const CLI::App& app) {
  return IsGiven(app, kServer);
}

void CheckServerOptions(const CLI::App& app, const TServerArguments& arguments) {
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group() != kGroup || option->count() == 0) continue;
    const std::string name = option->get_name();
    if (!HasServer(app)) throw TUsageError(name, "is about a CIM server; name that with --server");
    if (name == kServer || option->get_type_size() == 0) continue;
    if (option->results().front().empty()) {
      throw TUsageError(name, "needs a text that is not empty");
    }
  }
  if (!HasServer(app)) return;
  CheckUrl(arguments.options.url);
  CheckUser(app, arguments);
  CheckCertificates(app, arguments.options.url);
}

void CheckServerFiles(const TServerArguments& arguments) {
  const NZEPQEL20::TServerOptions& options = arguments.options;
  CheckFile("--ca", options.caFile);
  CheckFile("--client-cert", options.clientCertificate);
  CheckFile("--client-key", options.clientKey);
}

void RefusePasswordOptions(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    if (argument == "--") return;
    if (argument.rfind("--pass", 0) != 0) continue;
    throw TUsageError(SafeText(argument.substr(0, argument.find('=')), ELines::kOne), kNoPassword);
  }
}

std::vector<std::string*> GetTexts(TServerArguments& arguments) {
  NZEPQEL20::TServerOptions& options = arguments.options;
  return {&options.url,
          &options.user,
          &arguments.credentialsFile,
          &options.caFile,
          &options.clientCertificate,
          &options.clientKey};
}

std::string HideUserInfo(const std::string& text) {
  const std::size_t slashes = text.find("://");
  const std::size_t end = text.rfind('@');
  if (slashes == std::string::npos || end == std::string::npos || end < slashes) return text;
  return text.substr(0, slashes + 3) + "***" + text.substr(end);
}

std::string FindUserFault(const std::string& user) {
  if (user.empty()) return "needs a name that is not empty";
  if (user.find(':') != std::string::npos) {
    return "holds a colon, which HTTP takes for the end of the name";
  }
  const auto isControl = [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; };
  if (std::any_of(user.begin(), user.end(), isControl)) return "holds a control character";
  return {};
}

}  // namespace host
