// SPDX-License-Identifier: Apache-2.0
// Options that a session refuses, and those that it warns of.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <limits>
#include <ostream>

#include "platform/contract/TRootObject.h"
#include "tests/platform/cimxml/http/SessionTest.h"

namespace diagstest {
namespace {

using NZEPQEL20::TQELException;
using NZEPQEL20::TQELStatusCode;
using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::THttpRequest;
using NZEPQEL20::cimxml::THttpSession;
using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct TBadOptions {
  const char* name;
  std::function<void(TServerOptions&)> change;
  std::string text;
};

std::ostream& operator<<(std::ostream& out, const TBadOptions& row) {
  return out << row.name;
}

class BadOptionsTest : public ::testing::TestWithParam<TBadOptions> {};

TEST_P(BadOptionsTest, AreRefusedBeforeAnythingIsSent) {
  TServerOptions options;
  options.url = "https://node";
  GetParam().change(options);
  try {
    const THttpSession session(options);
    FAIL() << "were taken";
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kInvalidArgument));
    EXPECT_EQ(e.what(), "https://node: " + GetParam().text);
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, BadOptionsTest,
    ::testing::Values(
        TBadOptions{"ColonInUser", [](TServerOptions& o) { o.user = "a:b"; },
                    "the name of a user must not hold a colon"},
        TBadOptions{"NulInPassword",
                    [](TServerOptions& o) {
                      o.user = "a";
                      o.password = std::string("b\0c", 3);
                    },
                    "a user or password must not hold a NUL character"},
        TBadOptions{"KeyAlone", [](TServerOptions& o) { o.clientKey = "/dev/null"; },
                    "a client key is given without a client certificate"},
        TBadOptions{"NoCaFile", [](TServerOptions& o) { o.caFile = "/nonexistent/ca.pem"; },
                    "the CA file /nonexistent/ca.pem cannot be read: No such file or directory"},
        TBadOptions{"FolderForCaFile", [](TServerOptions& o) { o.caFile = "/"; },
                    "the CA file / cannot be read: Is a directory"},
        TBadOptions{"NoCertificate",
                    [](TServerOptions& o) { o.clientCertificate = "/nonexistent"; },
                    "the client certificate /nonexistent cannot be read: No such file or "
                    "directory"},
        TBadOptions{"NoKey",
                    [](TServerOptions& o) {
                      o.clientCertificate = "/dev/null";
                      o.clientKey = "/nonexistent";
                    },
                    "the client key /nonexistent cannot be read: No such file or directory"}),
    [](const auto& row) { return row.param.name; });

constexpr milliseconds kThirtyDays = std::chrono::hours(30 * 24);

struct TTimeField {
  const char* name;
  milliseconds TServerOptions::*field;
};

std::ostream& operator<<(std::ostream& out, const TTimeField& row) {
  return out << row.name;
}

class TimeFieldTest : public ::testing::TestWithParam<TTimeField> {
 protected:
  // What is said of `time`; empty when it is taken.
  static std::string Refuse(milliseconds time) {
    TServerOptions options;
    options.url = "http://127.0.0.1";
    options.*GetParam().field = time;
    try {
      const THttpSession session(options);
      return {};
    } catch (const TQELException& e) {
      EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kInvalidArgument));
      return e.what();
    }
  }
};

TEST_P(TimeFieldTest, TakesTimesThatCanBeAddedOnly) {
  const std::string text =
      std::string("http://127.0.0.1: ") + GetParam().name + " must be above 0 and at most 30 days";
  EXPECT_EQ(Refuse(milliseconds(0)), text + ", and is 0 ms");
  EXPECT_EQ(Refuse(milliseconds(-1)), text + ", and is -1 ms");
  EXPECT_EQ(Refuse(milliseconds::min()), text + ", and is -9223372036854775808 ms");
  EXPECT_EQ(Refuse(milliseconds::max()), text + ", and is 9223372036854775807 ms");
  EXPECT_EQ(Refuse(kThirtyDays + milliseconds(1)), text + ", and is 2592000001 ms");
  EXPECT_EQ(Refuse(milliseconds(1)), "");
  EXPECT_EQ(Refuse(kThirtyDays), "");
}

INSTANTIATE_TEST_SUITE_P(
    All, TimeFieldTest,
    ::testing::Values(TTimeField{"connectTimeout", &TServerOptions::connectTimeout},
                      TTimeField{"requestTimeout", &TServerOptions::requestTimeout},
                      TTimeField{"totalTimeout", &TServerOptions::totalTimeout},
                      TTimeField{"methodTimeout", &TServerOptions::methodTimeout}),
    [](const auto& row) { return row.param.name; });

TEST(OptionsTest, TheLargestReplyHasBounds) {
  TServerOptions options;
  options.url = "http://127.0.0.1";
  constexpr std::uint64_t kMost = std::uint64_t{1} << 40U;
  for (const std::uint64_t size : {std::uint64_t{1}, kMost}) {
    options.maxReplyBytes = size;
    EXPECT_NO_THROW(THttpSession{options});
  }
  for (const std::uint64_t size :
       {std::uint64_t{0}, kMost + 1, std::numeric_limits<std::uint64_t>::max()}) {
    options.maxReplyBytes = size;
    try {
      const THttpSession session(options);
      FAIL() << size << " was taken";
    } catch (const TQELException& e) {
      EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kInvalidArgument));
      EXPECT_EQ(e.what(),
                "http://127.0.0.1: maxReplyBytes must be from 1 to 1099511627776, and "
                "is " +
                    std::to_string(size));
    }
  }
}

TEST(OptionsTest, ARequestMayHaveAnyTime) {
  const TScriptedServer server;
  THttpSession session(MakeOptions("http", server.GetPort()));
  THttpRequest request = MakeRequest();
  request.timeout = milliseconds::max();
  EXPECT_EQ(Try(session, request).kind, TOutcome::kGood);
  request.timeout = milliseconds::min();
  EXPECT_THAT(Try(session, request).text,
              ::testing::EndsWith(": no time was left for the request"));
}

TEST(OptionsTest, WarnOfAClientKeyThatOthersHaveRightsOn) {
  const TTemporaryFolder folder;
  const std::string certificate = folder.Write("cert.pem", "x", 0600);
  const std::string key = folder.Write("key.pem", "x", 0600);
  TServerOptions options;
  options.url = "https://node";
  options.clientCertificate = certificate;
  for (const std::string& file : {certificate, key}) {
    if (file == key) options.clientKey = key;
    for (const unsigned int rights : {0644U, 0640U, 0604U, 0620U}) {
      ASSERT_EQ(::chmod(file.c_str(), rights), 0);
      const TWarnings warnings;
      const THttpSession session(options);
      EXPECT_THAT(warnings.Get(),
                  ElementsAre("https://node: others than its owner have rights on the client key "
                              "file " +
                              file + "; take them away with: chmod go= " + file));
    }
    ASSERT_EQ(::chmod(file.c_str(), 0600), 0);
    const TWarnings warnings;
    const THttpSession session(options);
    EXPECT_THAT(warnings.Get(), IsEmpty());
    // The certificate beside a key of its own is no secret.
    ASSERT_EQ(::chmod(certificate.c_str(), 0644), 0);
  }
}

TEST(OptionsTest, WarnOnceOfAPasswordThatCanBeReadOnTheNetwork) {
  const TWarnings warnings;
  TServerOptions options;
  options.url = "http://node";
  options.user = "joe";
  options.password = "secret";
  const THttpSession session(options);
  EXPECT_THAT(warnings.Get(), ElementsAre("http://node: the password goes over the network "
                                          "unencrypted; use https if the server has it"));
}

TEST(OptionsTest, DoNotWarnOfAPasswordThatNobodyElseCanRead) {
  const TWarnings warnings;
  TServerOptions options;
  options.user = "joe";
  options.password = "secret";
  for (const char* url : {"https://node", "http://localhost", "unix:///run/cim.socket"}) {
    options.url = url;
    const THttpSession session(options);
  }
  options.url = "http://node";
  options.password.clear();
  const THttpSession withoutPassword(options);
  options.user.clear();
  options.password = "secret";
  const THttpSession withoutUser(options);
  EXPECT_THAT(warnings.Get(), IsEmpty());
}

TEST(WarningsTest, KeepsWarningsAndLeavesTheRestOut) {
  NZEPQEL20::ILogger* const before = NZEPQEL20::TRootObject::GetCoreLogger();
  {
    const TWarnings warnings;
    NZEPQEL20::TRootObject::GetCoreLogger()->Log(NZEPQEL20::ILogger::kWarning, "a");
    NZEPQEL20::TRootObject::GetCoreLogger()->Log(NZEPQEL20::ILogger::kInfo, "b");
    EXPECT_THAT(warnings.Get(), ElementsAre("a"));
  }
  EXPECT_EQ(NZEPQEL20::TRootObject::GetCoreLogger(), before);
}

}  // namespace
}  // namespace diagstest
