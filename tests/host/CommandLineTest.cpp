// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <sstream>

#include "host/Progress.h"
#include "host/TCommandLine.h"

namespace host {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using TArguments = std::vector<std::string>;

struct TParsed {
  std::optional<TOptions> options;
  EExitStatus status;
  std::string out;
  std::string err;
};

TParsed Parse(const TArguments& arguments) {
  TCommandLine commandLine;
  std::ostringstream out;
  std::ostringstream err;
  std::optional<TOptions> options = commandLine.Parse(arguments, out, err);
  return {std::move(options), commandLine.GetStatus(), out.str(), err.str()};
}

TEST(CommandLineTest, ReadsEveryOptionOfRun) {
  const TParsed parsed =
      Parse({"--root", "/r", "run", "a,b,c", "#2", "--json", "--label", "my test", "--progress",
             "never", "--log", "-", "--log-level", "trace", "--namespace", "root/x"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_EQ(parsed.options->command, ECommand::kRun);
  EXPECT_EQ(parsed.options->root, "/r");
  EXPECT_EQ(parsed.options->selection.ids, (TArguments{"a,b,c", "#2"}));
  EXPECT_TRUE(parsed.options->isJson);
  EXPECT_EQ(parsed.options->label, "my test");
  EXPECT_EQ(parsed.options->progress, EProgress::kNever);
  EXPECT_EQ(parsed.options->logFile, "-");
  EXPECT_EQ(parsed.options->logLevel, NZEPQEL20::ILogger::kTrace);
  EXPECT_EQ(parsed.options->nameSpace, "root/x");
}

TEST(CommandLineTest, HasDefaults) {
  const TParsed parsed = Parse({"list"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_EQ(parsed.options->command, ECommand::kList);
  EXPECT_EQ(parsed.options->nameSpace, "root/cimv2");
  EXPECT_EQ(parsed.options->root + parsed.options->logFile, "");
  EXPECT_EQ(parsed.options->progress, EProgress::kAuto);
  EXPECT_FALSE(parsed.options->label);
  EXPECT_FALSE(parsed.options->isJson);
}

TEST(CommandLineTest, TakesIdsAsTheyAre) {
  const TArguments ids = {"[a],b,[c]", "a b, c ,d=e", "%x,{y},\"z\"", "#1"};
  TArguments arguments = {"run"};
  arguments.insert(arguments.end(), ids.begin(), ids.end());
  const TParsed parsed = Parse(arguments);
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_EQ(parsed.options->selection.ids, ids);
}

TEST(CommandLineTest, TakesBracketsInEveryTextAsTheyAre) {
  const TParsed parsed =
      Parse({"run", "--device", "[a,b]", "--match=[c]", "--label", "[d]", "--root", "[e]"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_EQ(parsed.options->selection.device, "[a,b]");
  EXPECT_EQ(parsed.options->selection.match, "[c]");
  EXPECT_EQ(parsed.options->label, "[d]");
  EXPECT_EQ(parsed.options->root, "[e]");
}

TEST(CommandLineTest, TakesAnIdWithADashBehindTwoDashes) {
  const TParsed parsed = Parse({"run", "--", "-a,b,c"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_EQ(parsed.options->selection.ids, (TArguments{"-a,b,c"}));
}

TEST(CommandLineTest, CombinesDeviceAndMatch) {
  const TParsed parsed = Parse({"run", "--device", "cpu0", "--match", "stress"});
  ASSERT_TRUE(parsed.options) << parsed.err;
  EXPECT_EQ(parsed.options->selection.device, "cpu0");
  EXPECT_EQ(parsed.options->selection.match, "stress");
}

struct TWrong {
  const char* name;
  TArguments arguments;
  const char* message;
};
void PrintTo(const TWrong& row, std::ostream* out) {
  *out << row.name;
}

class WrongUsageTest : public ::testing::TestWithParam<TWrong> {};

TEST_P(WrongUsageTest, IsOneLineThatNamesTheArgument) {
  const TParsed parsed = Parse(GetParam().arguments);
  EXPECT_FALSE(parsed.options);
  EXPECT_EQ(parsed.status, EExitStatus::kWrongUsage);
  EXPECT_EQ(parsed.out, "");
  EXPECT_THAT(parsed.err, StartsWith("diagsrun: "));
  EXPECT_THAT(parsed.err, HasSubstr(GetParam().message));
  EXPECT_THAT(parsed.err, EndsWith("; see diagsrun --help\n"));
  EXPECT_EQ(parsed.err.find('\n'), parsed.err.size() - 1);
}
INSTANTIATE_TEST_SUITE_P(
    All, WrongUsageTest,
    ::testing::Values(
        TWrong{"Nothing", {}, "list, run, inspect or provider"},
        TWrong{
            "UnknownCommand", {"frob"}, "frob: is no command; say list, run, inspect or provider"},
        TWrong{
            "OptionTwice", {"--log", "a", "list", "--log", "b"}, "--log: is given more than once"},
        TWrong{"SlashNamespace", {"--namespace", "//", "list"}, "--namespace: holds no name"},
        TWrong{"UnknownOption", {"list", "--frob"}, "--frob"},
        TWrong{"TwoCommands", {"list", "run", "--all"}, "run"},
        TWrong{"StrayArgument", {"list", "stray"}, "stray"},
        TWrong{"NoTests", {"run"}, "say which tests"},
        TWrong{"IdsAndAll", {"run", "a,b,c", "--all"}, "cannot be combined"},
        TWrong{"IdsAndMatch", {"run", "a,b,c", "--match", "x"}, "cannot be combined"},
        TWrong{"EmptyMatch", {"run", "--match", ""}, "--match"},
        TWrong{"EmptyDevice", {"list", "--device", ""}, "--device"},
        TWrong{"EmptyRoot", {"--root", "", "list"}, "--root"},
        TWrong{"EmptyNamespace", {"--namespace", "", "list"}, "--namespace"},
        TWrong{"ControlNamespace", {"--namespace", "a\nb", "list"}, "--namespace"},
        TWrong{"EmptyLog", {"--log", "", "list"}, "--log"},
        TWrong{"MissingValue", {"list", "--root"}, "--root"},
        TWrong{"BadLevel", {"list", "--log-level", "loud"}, "error|warning|info|trace"},
        TWrong{"BadProgress", {"run", "--all", "--progress", "some"}, "auto|always|never"},
        TWrong{"QuotedLabel", {"run", "--all", "--label", "it's"}, "single quote"},
        TWrong{"NoClass", {"inspect"}, "class"}, TWrong{"EmptyClass", {"inspect", ""}, "class"},
        TWrong{"TwoClasses", {"inspect", "A", "B"}, "B"},
        TWrong{"ControlCharacters", {"list", "\x1b[2J"}, "\\x1b[2J"}),
    [](const auto& row) { return row.param.name; });

TEST(CommandLineTest, ANamespaceMayHaveSpareSlashes) {
  for (const char* given : {"root/vendor", "/root/vendor", "root/vendor//", "//root///vendor/"}) {
    const TParsed parsed = Parse({"--namespace", given, "list"});
    ASSERT_TRUE(parsed.options) << given;
    EXPECT_EQ(parsed.options->nameSpace, "root/vendor") << given;
  }
}

TEST(CommandLineTest, PrintsTheVersionAndHelpOnStandardOutput) {
  const TParsed version = Parse({"--version"});
  EXPECT_FALSE(version.options);
  EXPECT_EQ(version.status, EExitStatus::kAllPassed);
  EXPECT_THAT(version.out, StartsWith("diagsrun "));
  EXPECT_EQ(version.err, "");
  const TParsed help = Parse({"run", "--help"});
  EXPECT_EQ(help.status, EExitStatus::kAllPassed);
  EXPECT_THAT(help.out, HasSubstr("--label"));
  EXPECT_EQ(help.err, "");
}

struct TProgressCase {
  const char* name;
  EProgress progress;
  bool isJson;
  bool isOutTerminal;
  bool isErrTerminal;
  EOutputTarget target;
};
void PrintTo(const TProgressCase& row, std::ostream* out) {
  *out << row.name;
}

class ProgressTest : public ::testing::TestWithParam<TProgressCase> {};

TEST_P(ProgressTest, NeverMixesWithADocument) {
  TOptions options;
  options.progress = GetParam().progress;
  options.isJson = GetParam().isJson;
  EXPECT_EQ(ChooseProgressTarget(options, GetParam().isOutTerminal, GetParam().isErrTerminal),
            GetParam().target);
}
INSTANTIATE_TEST_SUITE_P(
    All, ProgressTest,
    ::testing::Values(
        TProgressCase{"AutoTerminal", EProgress::kAuto, false, true, false,
                      EOutputTarget::kUnchanged},
        TProgressCase{"AutoPipe", EProgress::kAuto, false, false, true, EOutputTarget::kNowhere},
        TProgressCase{"AlwaysPipe", EProgress::kAlways, false, false, false,
                      EOutputTarget::kUnchanged},
        TProgressCase{"NeverTerminal", EProgress::kNever, false, true, true,
                      EOutputTarget::kNowhere},
        TProgressCase{"JsonTerminal", EProgress::kAuto, true, true, true,
                      EOutputTarget::kStandardError},
        TProgressCase{"JsonPipe", EProgress::kAuto, true, false, false, EOutputTarget::kNowhere},
        TProgressCase{"JsonAlways", EProgress::kAlways, true, true, false,
                      EOutputTarget::kStandardError},
        TProgressCase{"JsonNever", EProgress::kNever, true, true, true, EOutputTarget::kNowhere}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace host
