// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <sstream>

#include "host/ProviderArguments.h"
#include "host/TCommandLine.h"

namespace host {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using TArguments = std::vector<std::string>;

TOptions Parse(const TArguments& arguments) {
  TCommandLine commandLine;
  std::ostringstream out;
  std::ostringstream err;
  const std::optional<TOptions> options = commandLine.Parse(arguments, out, err);
  if (!options) throw std::runtime_error(out.str() + err.str());
  return *options;
}

TEST(ProviderArgumentsTest, ReadsEveryOptionOfAdd) {
  const TOptions options = Parse({"--root", "/r", "provider", "add", "--json", "dir", "--name",
                                  "acme", "--replace", "--force", "--log", "-"});
  ASSERT_TRUE(options.provider);
  EXPECT_EQ(options.provider->action, EProviderAction::kAdd);
  EXPECT_THAT(options.provider->targets, ElementsAre("dir"));
  EXPECT_EQ(options.provider->name, "acme");
  EXPECT_TRUE(options.provider->isReplacing);
  EXPECT_TRUE(options.provider->isForced);
  EXPECT_TRUE(options.isJson);
  EXPECT_EQ(options.root, "/r");
  EXPECT_EQ(options.logFile, "-");
}

TEST(ProviderArgumentsTest, HasDefaults) {
  const TOptions options = Parse({"provider", "add", "dir"});
  EXPECT_EQ(options.provider->name, "");
  EXPECT_FALSE(options.provider->isReplacing);
  EXPECT_FALSE(options.provider->isForced);
  EXPECT_FALSE(options.isJson);
}

TEST(ProviderArgumentsTest, KnowsEachCommand) {
  EXPECT_EQ(Parse({"provider", "list", "--json"}).provider->action, EProviderAction::kList);
  EXPECT_EQ(Parse({"provider", "check"}).provider->action, EProviderAction::kCheck);
  EXPECT_EQ(Parse({"provider", "remove", "acme"}).provider->action, EProviderAction::kRemove);
  EXPECT_FALSE(Parse({"provider", "remove", "acme"}).provider->isForced);
  EXPECT_TRUE(Parse({"provider", "remove", "acme", "--force"}).provider->isForced);
  EXPECT_FALSE(Parse({"list"}).provider);
}

TEST(ProviderArgumentsTest, TakesNamesAsTheyAre) {
  const TArguments names = {"list", "run", "provider", "add", "[a,b]", "a,b"};
  TArguments arguments = {"provider", "check"};
  arguments.insert(arguments.end(), names.begin(), names.end());
  EXPECT_EQ(Parse(arguments).provider->targets, names);
  EXPECT_EQ(Parse({"provider", "remove", "list"}).provider->targets, TArguments{"list"});
  EXPECT_EQ(Parse({"provider", "remove", "[x]"}).provider->targets, TArguments{"[x]"});
  EXPECT_EQ(Parse({"provider", "add", "run", "--name", "[x]"}).provider->name, "[x]");
  EXPECT_EQ(Parse({"provider", "remove", "--", "-x"}).provider->targets, TArguments{"-x"});
  EXPECT_THAT(Parse({"provider", "check"}).provider->targets, IsEmpty());
}

struct TWrong {
  const char* name;
  TArguments arguments;
  const char* message;
};
void PrintTo(const TWrong& row, std::ostream* out) {
  *out << row.name;
}

class WrongProviderUsageTest : public ::testing::TestWithParam<TWrong> {};

TEST_P(WrongProviderUsageTest, IsOneLineThatNamesTheArgument) {
  TCommandLine commandLine;
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_FALSE(commandLine.Parse(GetParam().arguments, out, err));
  EXPECT_EQ(commandLine.GetStatus(), EExitStatus::kWrongUsage);
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(err.str(), std::string("diagsrun: ") + GetParam().message + "; see diagsrun --help\n");
}
INSTANTIATE_TEST_SUITE_P(
    All, WrongProviderUsageTest,
    ::testing::Values(
        TWrong{"NoCommand", {"provider"}, "provider: say what to do: add, remove, list or check"},
        TWrong{"UnknownCommand",
               {"provider", "install", "dir"},
               "install: is no command of provider; say add, remove, list or check"},
        TWrong{"AnotherCommand",
               {"provider", "run"},
               "run: is no command of provider; say add, remove, list or check"},
        TWrong{"Server",
               {"--server", "http://node7", "provider", "list"},
               "--server: cannot be combined with provider: the folders of providers are those of "
               "this machine's installation root"},
        TWrong{"ServerBehind",
               {"provider", "add", "dir", "--server", "http://node7"},
               "--server: cannot be combined with provider: the folders of providers are those of "
               "this machine's installation root"},
        TWrong{"AddNothing", {"provider", "add"}, "path is required"},
        TWrong{"AddTwo", {"provider", "add", "a", "b"}, "path: is given more than once"},
        TWrong{"RemoveNothing", {"provider", "remove"}, "name is required"},
        TWrong{"RemoveTwo", {"provider", "remove", "a", "b"}, "name: is given more than once"},
        TWrong{"ListOfSomething",
               {"provider", "list", "acme"},
               "The following argument was not expected: acme"},
        TWrong{"EmptyPath", {"provider", "add", ""}, "path: needs a text that is not empty"},
        TWrong{"EmptyTarget", {"provider", "check", ""}, "name: needs a text that is not empty"},
        TWrong{"EmptyName",
               {"provider", "add", "a", "--name", ""},
               "--name: needs a text that is not empty"},
        TWrong{"ForcedCheck",
               {"provider", "check", "--force"},
               "The following argument was not expected: --force"},
        TWrong{"JsonWithoutCommand",
               {"provider", "--json"},
               "The following argument was not expected: --json"},
        TWrong{"TwoNames",
               {"provider", "add", "a", "--name", "b", "--name", "c"},
               "--name: is given more than once"}),
    [](const auto& row) { return row.param.name; });

TEST(ProviderArgumentsTest, HelpNamesTheCommands) {
  const TCommandLine commandLine;
  EXPECT_THAT(commandLine.GetHelp(""), HasSubstr("provider"));
  for (const char* word : {"add", "remove", "list", "check"}) {
    EXPECT_THAT(commandLine.GetHelp("provider"), HasSubstr(std::string("\n  ") + word));
    EXPECT_THAT(commandLine.GetHelp(std::string("provider ") + word), HasSubstr("--json"));
  }
  for (const char* option : {"--name", "--replace", "--force", "DIR|FILE"}) {
    EXPECT_THAT(commandLine.GetHelp("provider add"), HasSubstr(option));
  }
  EXPECT_THAT(commandLine.GetHelp("provider remove"), HasSubstr("--force"));
}

TEST(ProviderArgumentsTest, HelpOfACommandGoesToStandardOutput) {
  for (const TArguments& arguments :
       {TArguments{"provider", "--help"}, TArguments{"provider", "add", "-h"}}) {
    TCommandLine commandLine;
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_FALSE(commandLine.Parse(arguments, out, err));
    EXPECT_EQ(commandLine.GetStatus(), EExitStatus::kAllPassed);
    EXPECT_THAT(out.str(), HasSubstr("Usage: diagsrun provider"));
    EXPECT_EQ(err.str(), "");
  }
}

}  // namespace
}  // namespace host
