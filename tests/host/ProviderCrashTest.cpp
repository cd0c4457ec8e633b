// SPDX-License-Identifier: Apache-2.0
//
// The real command over providers' libraries that end the process with a signal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

#include "tests/host/TProviderFixture.h"

namespace host {
namespace {

using nlohmann::json;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class ProviderCrashTest : public TProviderFixture {
 protected:
  void SetUp() override {
#ifdef DIAGSRUNNER_SANITIZED
    GTEST_SKIP() << "the sanitizer takes these signals";
#endif
  }
  void InstallBad(const std::string& word) const {
    ASSERT_EQ(Do({"provider", "add", MakeBad(word), "--force"}).status, 0);
  }
  std::string GetLibrary(const std::string& word) const {
    return GetInstalled("bad") + "/lib" + word + ".so";
  }
};

struct TCrashingRow {
  const char* word;      // The library is `lib<word>.so`.
  const char* function;  // What it crashes in.
  int signal;
  const char* meaning;
};
void PrintTo(const TCrashingRow& row, std::ostream* out) {
  *out << row.word;
}

class CrashingLibraryTest : public ProviderCrashTest,
                            public ::testing::WithParamInterface<TCrashingRow> {};

TEST_P(CrashingLibraryTest, IsNamedWithTheFunctionTheSignalAndARemedy) {
  const TCrashingRow& row = GetParam();
  InstallBad(row.word);
  const TFinished listed = Do({"list"});
  EXPECT_EQ(listed.status, 128 + row.signal);
  EXPECT_THAT(listed.err, EndsWith("diagsrun: provider Bad of " + GetLibrary(row.word) +
                                   " crashed in " + row.function + " (signal " +
                                   std::to_string(row.signal) + ", " + row.meaning +
                                   "); what was under way is not known; `diagsrun provider "
                                   "remove bad` takes it out; see rule R7\n"));
  EXPECT_EQ(Do({"provider", "remove", "bad"}).status, 0);
}
INSTANTIATE_TEST_SUITE_P(
    Libraries, CrashingLibraryTest,
    ::testing::Values(
        TCrashingRow{"crashes", "enumerateInstances", SIGSEGV, "Segmentation fault"},
        TCrashingRow{"overflows", "enumerateInstances", SIGSEGV, "Segmentation fault"},
        TCrashingRow{"factorycrashes", "Bad_Create_InstanceMI", SIGSEGV, "Segmentation fault"},
        TCrashingRow{"cleanupcrashes", "cleanup", SIGABRT, "Aborted"}),
    [](const auto& row) { return std::string(row.param.word); });

TEST_F(ProviderCrashTest, AThreadOfALibraryThatCrashesIsToldAsSuch) {
  InstallBad("threadcrashes");
  const TFinished listed = Do({"list"});
  EXPECT_EQ(listed.status, 128 + SIGABRT);
  EXPECT_EQ(listed.err,
            "diagsrun: a thread crashed outside of any call to a provider (signal 6, Aborted); a "
            "provider's library may have started it; what was under way is not known; see rule "
            "R7\n");
}

class CrashInCleanupTest : public ProviderCrashTest,
                           public ::testing::WithParamInterface<const char*> {};

// Into a file and through a pipe: there, nothing is written before somebody flushes.
TEST_P(CrashInCleanupTest, LosesNothingOfTheReport) {
  InstallAcme();
  InstallBad("cleanupcrashes");
  TProgram program = MakeCommand({"run", "TestPass,tst0,Test device", "--json"});
  program.environment["DIAGSRUNNER_ROOT"] = GetRoot();
  program.arguments.insert(program.arguments.begin(),
                           {"/bin/bash", "-c",
                            std::string("set -o pipefail; \"$0\" \"$@\" ") + GetParam() + " '" +
                                GetFolder() + "/report'"});
  const TFinished finished = RunToEnd(program);
  EXPECT_EQ(finished.status, 128 + SIGABRT) << finished.err;
  EXPECT_THAT(finished.err, HasSubstr("crashed in cleanup (signal 6, Aborted)"));
  std::ifstream file(GetFolder() + "/report");
  std::ostringstream text;
  text << file.rdbuf();
  const json document = json::parse(text.str(), nullptr, false);
  ASSERT_FALSE(document.is_discarded()) << text.str();
  EXPECT_EQ(document["summary"]["passed"], 1);
}
INSTANTIATE_TEST_SUITE_P(Outputs, CrashInCleanupTest, ::testing::Values(">", "| cat >"),
                         [](const auto& row) {
                           return std::string(row.param)[0] == '>' ? "File" : "Pipe";
                         });

}  // namespace
}  // namespace host
