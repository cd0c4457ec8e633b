// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "host/Remedy.h"

namespace host {
namespace {

struct TFailure {
  const char* name;
  const char* text;
  const char* suffix;
};
void PrintTo(const TFailure& row, std::ostream* out) {
  *out << row.name;
}

class RemedyTest : public ::testing::TestWithParam<TFailure> {};

TEST_P(RemedyTest, IsBehindTheTextOnce) {
  const std::string text = std::string("https://node7: ") + GetParam().text;
  const std::string helped = AddRemedy(text);
  EXPECT_EQ(helped, text + GetParam().suffix);
  EXPECT_EQ(AddRemedy(helped), helped);
}

constexpr char kAuthority[] = " (--ca FILE, or --insecure)";
constexpr char kCertificate[] = " (--client-cert FILE, --client-key FILE)";
constexpr char kUser[] = " (--user NAME, or --credentials FILE)";

INSTANTIATE_TEST_SUITE_P(
    All, RemedyTest,
    ::testing::Values(
        TFailure{"UnknownAuthority",
                 "the server's certificate is not trusted (self-signed certificate); give the file "
                 "of its certificate authority, or ask for insecure mode",
                 kAuthority},
        TFailure{"OtherAuthority",
                 "the server's certificate is not trusted (x); it was not issued by an authority "
                 "in /ca, or ask for insecure mode",
                 kAuthority},
        TFailure{"Expired",
                 "the server's certificate has expired (x); have it renewed, or ask for insecure "
                 "mode",
                 " (--insecure)"},
        TFailure{"CertificateWanted",
                 "the server may want a client certificate, and none is given (alert)",
                 kCertificate},
        TFailure{"CertificateNotTaken", "the server did not take the client certificate (alert)",
                 kCertificate},
        TFailure{"CertificateRefused", "the server refuses our client certificate (alert); give",
                 kCertificate},
        TFailure{"NoUser",
                 "HTTP 401 Unauthorized; a user and a password are needed, and none are given "
                 "(the server offers Basic)",
                 kUser},
        TFailure{"WrongUser", "HTTP 401; the user or password is refused (x)", kUser},
        TFailure{"WrongLocalUser", "HTTP 401; the local user is refused (x)", kUser},
        TFailure{"Forbidden", "HTTP 403 Forbidden; this user may not use the server", kUser},
        TFailure{"Unreachable", "no connection within 10 s; is the host right and reachable?",
                 " (--connect-timeout SECONDS)"},
        TFailure{"Slow", "no complete answer within 120 s (nothing of it had come)",
                 " (--request-timeout SECONDS; --method-timeout SECONDS for a method call)"},
        TFailure{"TimeIsUp", "no time was left for the request", " (--total-timeout SECONDS)"},
        TFailure{"TooLarge",
                 "the answer is larger than the limit of 9 bytes for one answer, which can be "
                 "raised",
                 " (--max-reply MB)"},
        TFailure{"NotSupported",
                 "HTTP 501 Unsupported method; the server does not support this request",
                 "; is this a CIM server?"},
        TFailure{"NotThere", "HTTP 404 Not Found; no CIM server is at this path; most have /cimom",
                 "; is this a CIM server?"},
        TFailure{"Plain", "the server does not speak TLS on this port (x); use http",
                 " (--server http://...)"},
        TFailure{"NotWritable",
                 "/r/providers: cannot be made: Permission denied; run the command as the owner of "
                 "the installation root, or name another root",
                 " (--root DIR)"},
        TFailure{"ReadOnly",
                 "/r/providers: cannot be made: Read-only file system; the installation root is "
                 "read-only, name another root or remount it",
                 " (--root DIR)"},
        TFailure{"TakenName", "/r/providers/acme: is there already; remove it first, or replace it",
                 " (--replace)"},
        TFailure{"Thrown",
                 "EnumerateInstances of root/cimv2:A failed in provider P (/r/libp.so): the "
                 "provider threw an exception: out of luck",
                 "; its vendor is to catch it; see rule R7"},
        TFailure{"EmptySlot",
                 "EnumerateInstances of root/cimv2:A failed in provider P (/r/libp.so): "
                 "CIM_ERR_NOT_SUPPORTED",
                 "; fill the function in, or mend the types; see rule R6"},
        TFailure{
            "ProvidersOwnAnswer",
            "EnumerateInstances of root/cimv2:A failed in provider P (/r/libp.so): not for you",
            "; its vendor is to look into it"}),
    [](const auto& row) { return row.param.name; });

struct TRuleRow {
  const char* name;
  const char* fault;
  const char* remedy;
};
void PrintTo(const TRuleRow& row, std::ostream* out) {
  *out << row.name;
}

class RuleRemedyTest : public ::testing::TestWithParam<TRuleRow> {};

TEST_P(RuleRemedyTest, IsBeforeTheRuleThatTheTextEndsWith) {
  const std::string text = std::string("provider P in /r/libp.so: its Instance functions ");
  const std::string helped = AddRemedy(text + GetParam().fault + "; see rule R4");
  EXPECT_EQ(helped, text + GetParam().fault + "; " + GetParam().remedy + "; see rule R4");
  EXPECT_EQ(AddRemedy(helped), helped);
}
INSTANTIATE_TEST_SUITE_P(
    All, RuleRemedyTest,
    ::testing::Values(
        TRuleRow{"NoEntry", "have no entry point: neither A nor B (it has C)",
                 "export it, or mend the provider's name or types in the registration"},
        TRuleRow{"Refused", "were refused: no hardware here", "mend the factory, or what it needs"},
        TRuleRow{"Thrown", "were refused: the provider threw an exception: on strike",
                 "mend the factory, or what it needs"},
        TRuleRow{"NotMade", "were not made", "mend the factory, or what it needs"},
        TRuleRow{"NoTable", "have no function table", "mend the factory, or what it needs"}),
    [](const auto& row) { return row.param.name; });

TEST(MofRemedyTest, AFaultInAMofFileIsToBeMendedThere) {
  EXPECT_EQ(AddRemedy("/r/providers/acme/a.mof:35:25: expected ';'; see rule R17"),
            "/r/providers/acme/a.mof:35:25: expected ';'; mend the MOF; see rule R17");
}

TEST(NoRemedyTest, ATextThatNoOptionHelpsStaysAsItIs) {
  for (const char* text : {"", "http://h: HTTP 500", "h: the connection was lost"}) {
    EXPECT_EQ(AddRemedy(text), text);
  }
}

}  // namespace
}  // namespace host
