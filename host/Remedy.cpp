// SPDX-License-Identifier: Apache-2.0
#include "host/Remedy.h"

#include <algorithm>
#include <array>

namespace host {
namespace {

struct TRemedy {
  const char* phrase;  // As the platform words it, whatever the host.
  const char* suffix;
};

constexpr char kMendRegistration[] =
    "; export it, or mend the provider's name or types in the registration";
constexpr char kMendFactory[] = "; mend the factory, or what it needs";

// The first phrase that is found counts.
constexpr std::array<TRemedy, 27> kRemedies{{
    {"; give the file of its certificate authority", " (--ca FILE, or --insecure)"},
    {"; it was not issued by an authority in ", " (--ca FILE, or --insecure)"},
    {", or ask for insecure mode", " (--insecure)"},
    {"the server may want a client certificate", " (--client-cert FILE, --client-key FILE)"},
    {"did not take the client certificate", " (--client-cert FILE, --client-key FILE)"},
    {"refuses our client certificate", " (--client-cert FILE, --client-key FILE)"},
    {"a user and a password are needed", " (--user NAME, or --credentials FILE)"},
    {"the user or password is refused", " (--user NAME, or --credentials FILE)"},
    {"the local user is refused", " (--user NAME, or --credentials FILE)"},
    {"; this user may not use the server", " (--user NAME, or --credentials FILE)"},
    {"no connection within ", " (--connect-timeout SECONDS)"},
    {"no complete answer within ",
     " (--request-timeout SECONDS; --method-timeout SECONDS for a method call)"},
    {"no time was left for the request", " (--total-timeout SECONDS)"},
    {"for one answer, which can be raised", " (--max-reply MB)"},
    {"; the server does not support this request", "; is this a CIM server?"},
    {"; no CIM server is at this path", "; is this a CIM server?"},
    {"the server does not speak TLS on this port", " (--server http://...)"},
    {"name another root", " (--root DIR)"},
    {"; remove it first, or replace it", " (--replace)"},
    {" functions have no entry point", kMendRegistration},
    {" functions were refused", kMendFactory},
    {" functions were not made", kMendFactory},
    {" functions have no function table", kMendFactory},
    {": the provider threw an exception", "; its vendor is to catch it; see rule R7"},
    {".so): CIM_ERR_NOT_SUPPORTED", "; fill the function in, or mend the types; see rule R6"},
    {" failed in provider ", "; its vendor is to look into it"},
    {"; see rule R17", "; mend the MOF"},
}};

bool Holds(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

std::string AddRemedy(const std::string& text) {
  const auto found = std::find_if(kRemedies.begin(), kRemedies.end(), [&](const TRemedy& remedy) {
    return Holds(text, remedy.phrase);
  });
  if (found == kRemedies.end() || Holds(text, found->suffix)) return text;
  // The number of a rule stays last.
  std::string helped = text;
  return helped.insert(std::min(text.rfind("; see rule "), text.size()), found->suffix);
}

}  // namespace host
