// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <sstream>

#include "host/ServerArguments.h"
#include "host/TCommandLine.h"
#include "host/TUsageError.h"
#include "tests/support/TTemporaryFolder.h"

namespace host {
namespace {

using std::chrono::milliseconds;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using TArguments = std::vector<std::string>;

struct TParsed {
  std::optional<TOptions> options;
  EExitStatus status;
  std::string err;
};

TParsed Parse(const TArguments& arguments) {
  TCommandLine commandLine;
  std::ostringstream out;
  std::ostringstream err;
  std::optional<TOptions> options = commandLine.Parse(arguments, out, err);
  EXPECT_EQ(out.str(), "");
  return {std::move(options), commandLine.GetStatus(), err.str()};
}

const TArguments kAll = {"--server",
                         "https://h:1/p",
                         "--user",
                         "me",
                         "--ca",
                         "ca.pem",
                         "--client-cert",
                         "c.pem",
                         "--client-key",
                         "k.pem",
                         "--connect-timeout",
                         "1",
                         "--request-timeout",
                         "0.5",
                         "--total-timeout",
                         "604800",
                         "--method-timeout",
                         ".001",
                         "--max-reply",
                         "4096"};

void ExpectAll(const TParsed& parsed) {
  ASSERT_TRUE(parsed.options) << parsed.err;
  ASSERT_TRUE(parsed.options->server);
  const NZEPQEL20::TServerOptions& options = parsed.options->server->options;
  EXPECT_EQ(options.url, "https://h:1/p");
  EXPECT_EQ(options.user, "me");
  EXPECT_EQ(options.password, "");
  EXPECT_EQ(options.caFile, "ca.pem");
  EXPECT_EQ(options.clientCertificate, "c.pem");
  EXPECT_EQ(options.clientKey, "k.pem");
  EXPECT_FALSE(options.isInsecure);
  EXPECT_EQ(options.connectTimeout, milliseconds(1000));
  EXPECT_EQ(options.requestTimeout, milliseconds(500));
  EXPECT_EQ(options.totalTimeout, milliseconds(604'800'000));
  EXPECT_EQ(options.methodTimeout, milliseconds(1));
  EXPECT_EQ(options.maxReplyBytes, std::uint64_t{4096} << 20U);
}

TEST(ServerArgumentsTest, ReadsEveryOptionBehindTheCommand) {
  TArguments arguments = {"list"};
  arguments.insert(arguments.end(), kAll.begin(), kAll.end());
  ExpectAll(Parse(arguments));
}

TEST(ServerArgumentsTest, ReadsEveryOptionBeforeTheCommand) {
  TArguments arguments = kAll;
  arguments.emplace_back("list");
  ExpectAll(Parse(arguments));
}

TEST(ServerArgumentsTest, HasNoServerWhenNoneIsNamed) {
  const TParsed parsed = Parse({"list"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_FALSE(parsed.options->server);
}

TEST(ServerArgumentsTest, HasTheDefaultsThatTheHelpNames) {
  const TParsed parsed = Parse({"--server", "http://h", "list"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  const NZEPQEL20::TServerOptions& options = parsed.options->server->options;
  const std::string help = TCommandLine().GetHelp("");
  const auto inSeconds = [](milliseconds time) {
    return "(" + std::to_string(time.count() / 1000) + ")";
  };
  EXPECT_THAT(help, HasSubstr("For reaching the server " + inSeconds(options.connectTimeout)));
  EXPECT_THAT(help, HasSubstr("For one request " + inSeconds(options.requestTimeout)));
  EXPECT_THAT(help, HasSubstr("with all its requests " + inSeconds(options.totalTimeout)));
  EXPECT_THAT(help, HasSubstr("may be a whole test " + inSeconds(options.methodTimeout)));
  EXPECT_THAT(help, HasSubstr("Largest reply that is read (" +
                              std::to_string(options.maxReplyBytes >> 20U) + ")"));
}

TEST(ServerArgumentsTest, HelpNamesChoicesWithoutAStrayColon) {
  EXPECT_THAT(TCommandLine().GetHelp(""), HasSubstr("--log-level error|warning|info|trace\n"));
  EXPECT_THAT(TCommandLine().GetHelp("run"), HasSubstr("--progress auto|always|never\n"));
}

struct TGood {
  const char* name;
  TArguments arguments;
};
void PrintTo(const TGood& row, std::ostream* out) {
  *out << row.name;
}

class GoodServerTest : public ::testing::TestWithParam<TGood> {};

TEST_P(GoodServerTest, IsTaken) {
  TArguments arguments = {"list"};
  arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
  const TParsed parsed = Parse(arguments);
  ASSERT_TRUE(parsed.options) << parsed.err;
  ASSERT_TRUE(parsed.options->server);
  EXPECT_EQ(parsed.options->server->options.url, GetParam().arguments[1]);
}
INSTANTIATE_TEST_SUITE_P(
    All, GoodServerTest,
    ::testing::Values(TGood{"Http", {"--server", "http://h"}},
                      TGood{"Unix", {"--server", "unix:///run/x"}},
                      TGood{"AtInTheSocketsName", {"--server", "unix:///run/@x"}},
                      TGood{"UserOfASocket", {"--server", "unix:///run/x", "--user", "me"}},
                      TGood{"CredentialsOfASocket",
                            {"--server", "unix:///run/x", "--credentials", "f"}},
                      TGood{"Insecure", {"--server", "https://h", "--insecure"}},
                      TGood{"InsecureWithACertificate",
                            {"--server", "HTTPS://h", "--insecure", "--client-cert", "f"}},
                      TGood{"CertificateAlone", {"--server", "https://h", "--client-cert", "f"}},
                      TGood{"Address", {"--server", "http://[::1]:5988/cimom"}},
                      TGood{"BracketsAllAround", {"--server", "[a,b]"}},
                      // What is wrong with a URL is the platform's to say.
                      TGood{"OtherScheme", {"--server", "ftp://h"}}),
    [](const auto& row) { return row.param.name; });

struct TWrong {
  const char* name;
  TArguments arguments;
  const char* message;
};
void PrintTo(const TWrong& row, std::ostream* out) {
  *out << row.name;
}

class WrongServerTest : public ::testing::TestWithParam<TWrong> {};

// "sesame" is the password of every row that has one.
TEST_P(WrongServerTest, IsOneLineThatNamesTheOptionAndNoPassword) {
  TArguments arguments = GetParam().arguments;
  arguments.emplace_back("list");
  const TParsed parsed = Parse(arguments);
  EXPECT_FALSE(parsed.options);
  EXPECT_EQ(parsed.status, EExitStatus::kWrongUsage);
  EXPECT_THAT(parsed.err, StartsWith("diagsrun: "));
  EXPECT_THAT(parsed.err, HasSubstr(GetParam().message));
  EXPECT_THAT(parsed.err, Not(HasSubstr("sesame")));
  EXPECT_THAT(parsed.err, EndsWith("; see diagsrun --help\n"));
  EXPECT_EQ(parsed.err.find('\n'), parsed.err.size() - 1);
}

constexpr char kNeedsServer[] = "name that with --server";
constexpr char kNeverTaken[] = "never taken from the command line";
constexpr char kHttps[] = "https://h";

INSTANTIATE_TEST_SUITE_P(
    NoServer, WrongServerTest,
    ::testing::Values(TWrong{"User", {"--user", "me"}, kNeedsServer},
                      TWrong{"Credentials", {"--credentials", "f"}, kNeedsServer},
                      TWrong{"Authority", {"--ca", "f"}, kNeedsServer},
                      TWrong{"Certificate", {"--client-cert", "f"}, kNeedsServer},
                      TWrong{"Key", {"--client-key", "f"}, kNeedsServer},
                      TWrong{"Insecure", {"--insecure"}, "--insecure: is about a CIM server"},
                      TWrong{"Connect", {"--connect-timeout", "1"}, kNeedsServer},
                      TWrong{"Request", {"--request-timeout", "1"}, kNeedsServer},
                      TWrong{"Total", {"--total-timeout", "1"}, kNeedsServer},
                      TWrong{"Method", {"--method-timeout", "1"}, kNeedsServer},
                      TWrong{"Reply", {"--max-reply", "1"}, kNeedsServer}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Combined, WrongServerTest,
    ::testing::Values(
        TWrong{"AuthorityAndInsecure", {"--server", kHttps, "--ca", "f", "--insecure"}, "--ca: "},
        TWrong{"KeyAlone", {"--server", kHttps, "--client-key", "f"}, "needs --client-cert"},
        TWrong{"AuthorityOfHttp", {"--server", "http://h", "--ca", "f"}, "--ca: is about"},
        TWrong{"InsecureHttp", {"--server", "HTTP://h", "--insecure"}, "--insecure: is about"},
        TWrong{"CertificateOfASocket", {"--server", "unix:///s", "--client-cert", "f"}, "https://"},
        TWrong{"KeyOfASocket", {"--server", "UNIX:///s", "--client-key", "f"}, "https://"},
        TWrong{"UserAndCredentials",
               {"--server", kHttps, "--user", "me", "--credentials", "f"},
               "--user: cannot be combined"},
        TWrong{"TwoServers", {"--server", kHttps, "--server", kHttps}, "--server"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Value, WrongServerTest,
    ::testing::Values(
        TWrong{"EmptyServer", {"--server", ""}, "--server: needs a URL"},
        TWrong{"ControlInServer", {"--server", "http://h\x1b[2J"}, "control character"},
        TWrong{"NoUtf8InServer", {"--server", "http://h\xff"}, "not UTF-8"},
        TWrong{"EmptyUser", {"--server", kHttps, "--user", ""}, "--user: needs"},
        TWrong{"ColonInUser", {"--server", kHttps, "--user", "me:sesame"}, "colon"},
        TWrong{"ControlInUser", {"--server", kHttps, "--user", "a\nb"}, "control character"},
        TWrong{"EmptyCredentials", {"--server", kHttps, "--credentials", ""}, "--credentials: "},
        TWrong{"EmptyAuthority", {"--server", kHttps, "--ca", ""}, "--ca: needs"},
        TWrong{"EmptyCertificate", {"--server", kHttps, "--client-cert", ""}, "--client-cert: "},
        TWrong{"EmptyKey",
               {"--server", kHttps, "--client-cert", "f", "--client-key", ""},
               "--client-key: needs"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Password, WrongServerTest,
    ::testing::Values(
        TWrong{"InHttp", {"--server", "http://me:sesame@h"}, kNeverTaken},
        TWrong{"InHttps", {"--server", "https://me:sesame@h:5989/cimom"}, kNeverTaken},
        TWrong{"WithASlash", {"--server", "https://me:se/sesame@h"}, kNeverTaken},
        TWrong{"WithoutAScheme", {"--server", "me:sesame@h"}, kNeverTaken},
        TWrong{"BeforeASocket", {"--server", "unix://me:sesame@h/s"}, kNeverTaken},
        TWrong{"InAQuery", {"--server", "http://h/?password=sesame"}, "query or a fragment"},
        TWrong{"InAFragment", {"--server", "http://h/#sesame"}, "query or a fragment"},
        TWrong{"UserAlone", {"--server", "http://me@h"}, "name the user with --user"},
        TWrong{"Option", {"--password", "sesame"}, "--password: a password is never"},
        TWrong{"OptionWithItsValue", {"--password=sesame"}, kNeverTaken},
        TWrong{"OtherSpelling", {"--passwd", "sesame"}, "--passwd: "},
        TWrong{"UnknownOption", {"--pw=sesame"}, "--pw"},
        TWrong{"ShortOption", {"list", "-p", "sesame"}, "-p"},
        TWrong{"UrlOfAnUnknownOption", {"list", "http://me:sesame@h"}, "***@h"}),
    [](const auto& row) { return row.param.name; });

class WrongNumberTest : public ::testing::TestWithParam<const char*> {};

TEST_P(WrongNumberTest, IsNoTime) {
  for (const char* name :
       {"--connect-timeout", "--request-timeout", "--total-timeout", "--method-timeout"}) {
    const TParsed parsed =
        Parse({"--server", kHttps, std::string(name) + "=" + GetParam(), "list"});
    EXPECT_FALSE(parsed.options) << name;
    EXPECT_EQ(parsed.status, EExitStatus::kWrongUsage);
    EXPECT_THAT(parsed.err, HasSubstr(std::string(name) + ": needs"));
  }
}

TEST_P(WrongNumberTest, IsNoSize) {
  const TParsed parsed =
      Parse({"--server", kHttps, std::string("--max-reply=") + GetParam(), "list"});
  EXPECT_FALSE(parsed.options);
  EXPECT_THAT(parsed.err, HasSubstr("--max-reply: needs a whole number of megabytes from 1 to"));
}
INSTANTIATE_TEST_SUITE_P(All, WrongNumberTest,
                         ::testing::Values("0", "0.0", "0.0009", "-1", "+1", "1e3", "0x10", "inf",
                                           "nan", "1,5", "1.", ".", "1.2.3", "1s", " 1",
                                           "604800.001", "604801", "9999999999999999999999",
                                           "[5]"));

TEST(ServerArgumentsTest, TakesAFractionOfASecondDownToAMillisecond) {
  const TParsed parsed = Parse({"--server", kHttps, "--connect-timeout", "1.2345", "list"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_EQ(parsed.options->server->options.connectTimeout, milliseconds(1234));
}

TEST(ServerArgumentsTest, ASizeHasNoFractionAndABound) {
  EXPECT_FALSE(Parse({"--server", kHttps, "--max-reply", "1.5", "list"}).options);
  EXPECT_FALSE(Parse({"--server", kHttps, "--max-reply", "4097", "list"}).options);
}

// The text of the refusal of the certificate files; empty when there is none.
std::string CheckFiles(const TServerArguments& arguments) {
  try {
    CheckServerFiles(arguments);
    return {};
  } catch (const TUsageError& e) {
    return e.what();
  }
}

TEST(ServerArgumentsTest, EachCertificateFileIsNamedByItsOption) {
  const TTemporaryFolder folder;
  const std::string missing = folder.GetPath("none");
  TServerArguments arguments;
  EXPECT_EQ(CheckFiles(arguments), "");
  arguments.options.clientKey = missing;
  EXPECT_EQ(CheckFiles(arguments), "--client-key: " + missing + ": No such file or directory");
  arguments.options.clientCertificate = folder.GetPath();
  EXPECT_EQ(CheckFiles(arguments),
            "--client-cert: " + folder.GetPath() + ": is not a regular file");
  arguments.options.caFile = folder.Write("ca\x1b", "") + "/below";
  EXPECT_EQ(CheckFiles(arguments),
            "--ca: " + folder.GetPath("ca\\x1b/below") + ": Not a directory");
}

TEST(ServerArgumentsTest, CertificateFilesThatAreThereAreTaken) {
  const TTemporaryFolder folder;
  TServerArguments arguments;
  arguments.options.caFile = folder.Write("ca", "");
  arguments.options.clientCertificate = folder.Write("certificate", "");
  arguments.options.clientKey = folder.Write("key", "");
  EXPECT_EQ(CheckFiles(arguments), "");
}

TEST(ServerArgumentsTest, ATestIdMayLookLikeAPasswordOptionBehindTwoDashes) {
  const TParsed parsed = Parse({"run", "--", "--pass,b,c"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_EQ(parsed.options->selection.ids, (TArguments{"--pass,b,c"}));
}

TEST(ServerArgumentsTest, HidesWhatStandsBeforeTheHostOfAUrl) {
  EXPECT_EQ(HideUserInfo("http://a:b@h/x"), "http://***@h/x");
  EXPECT_EQ(HideUserInfo("a@b http://h"), "a@b http://h");
  EXPECT_EQ(HideUserInfo("nothing"), "nothing");
}

}  // namespace
}  // namespace host
