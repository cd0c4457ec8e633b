// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "tests/support/TSubprocess.h"
#include "tests/support/TTemporaryFolder.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// What the shell offers for the last of `words`, a line each.
std::string Complete(const std::vector<std::string>& words, const std::string& folder = "/") {
  programs::TProgram program;
  program.arguments = {"/bin/bash", "-c",
                       "source \"$0\"; cd \"$1\"; shift; COMP_WORDS=(diagsrun \"$@\");"
                       "COMP_CWORD=$#; _diagsrun; printf '%s\\n' \"${COMPREPLY[@]}\"",
                       DIAGSRUNNER_HOST_DIR "/diagsrun.bash", folder};
  program.arguments.insert(program.arguments.end(), words.begin(), words.end());
  return programs::RunToEnd(program).out;
}

struct TCompletion {
  const char* name;
  std::vector<std::string> words;
  const char* offers;
};
void PrintTo(const TCompletion& row, std::ostream* out) {
  *out << row.name;
}

class CompletionTest : public ::testing::TestWithParam<TCompletion> {};

TEST_P(CompletionTest, OffersWhatFits) {
  EXPECT_EQ(Complete(GetParam().words), GetParam().offers);
}
INSTANTIATE_TEST_SUITE_P(
    All, CompletionTest,
    ::testing::Values(
        TCompletion{"Command", {"l"}, "list\n"},
        TCompletion{"CommandBehindAServer", {"--server", "http://h", "r"}, "run\n"},
        TCompletion{"ServerOption", {"--ser"}, "--server\n"},
        TCompletion{"ServerOptionBehindACommand", {"run", "--cl"}, "--client-cert\n--client-key\n"},
        TCompletion{"Timeouts", {"list", "--m"}, "--method-timeout\n--max-reply\n--match\n"},
        TCompletion{"Scheme", {"--server", "https"}, "https://\n"},
        TCompletion{"ProviderCommands", {"provider", "l"}, "list\n"},
        TCompletion{"ProviderNotTheListOfTests",
                    {"provider", "list", "--m"},
                    "--method-timeout\n--max-reply\n"},
        TCompletion{"OptionsOfAdd", {"provider", "add", "--fo"}, "--force\n"},
        TCompletion{"OptionsOfRemove", {"provider", "remove", "--fo"}, "--force\n"},
        TCompletion{"OptionsOfCheck", {"provider", "check", "--js"}, "--json\n"},
        TCompletion{"NothingForAName", {"provider", "add", "x", "--name", ""}, "\n"},
        TCompletion{"CommandOnceMore", {"list", "provider", "--dev"}, "--device\n"},
        TCompletion{"NothingForAUser", {"--user", ""}, "\n"},
        TCompletion{"NothingForATime", {"--connect-timeout", ""}, "\n"}),
    [](const auto& row) { return row.param.name; });

TEST(CompletionOfFilesTest, OffersFilesWhereFilesBelong) {
  const TTemporaryFolder folder;
  folder.Write("login", "");
  for (const char* option : {"--log", "--credentials", "--ca", "--client-cert", "--client-key"}) {
    EXPECT_EQ(Complete({option, "lo"}, folder.GetPath()), "login\n") << option;
  }
  EXPECT_THAT(Complete({"--server", "lo"}, folder.GetPath()), Not(HasSubstr("login")));
}

TEST(CompletionOfFilesTest, AnEqualsSignIsAWordOfItsOwn) {
  const TTemporaryFolder folder;
  folder.Write("login", "");
  EXPECT_EQ(Complete({"--log", "=", "lo"}, folder.GetPath()), "login\n");
  EXPECT_EQ(Complete({"--log", "="}, folder.GetPath()), "login\n");
}

TEST(CompletionOfProvidersTest, OffersTheInstalledOnesBelowTheRoot) {
  const TTemporaryFolder root;
  for (const char* name : {"acme", "acorn", "hardware", "acute; rm", "ac$(touch x)"}) {
    std::filesystem::create_directories(root.GetPath("providers") + "/" + name);
  }
  const TTemporaryFolder folder;
  folder.Write("acid", "");
  const std::vector<std::string> remove = {"--root", root.GetPath(), "provider", "remove", "ac"};
  EXPECT_EQ(Complete(remove, folder.GetPath()), "acme\nacorn\n");
  const std::vector<std::string> equals = {"--root",   "=",      root.GetPath(),
                                           "provider", "remove", "ac"};
  EXPECT_EQ(Complete(equals, folder.GetPath()), "acme\nacorn\n");
  const std::vector<std::string> check = {"provider", "check", "--root", root.GetPath(), "ac"};
  EXPECT_EQ(Complete(check, folder.GetPath()), "acme\nacorn\nacid\n");
  EXPECT_FALSE(std::filesystem::exists(folder.GetPath("x")));
  EXPECT_EQ(Complete({"provider", "add", "ac"}, folder.GetPath()), "acid\n");
}

TEST(CompletionOfProvidersTest, OffersNothingWhereNothingIsInstalled) {
  EXPECT_EQ(Complete({"--root", "/no/such", "provider", "remove", ""}), "\n");
}

}  // namespace
}  // namespace host
