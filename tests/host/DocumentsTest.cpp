// SPDX-License-Identifier: Apache-2.0
//
// The manual page, the help and the completion say what the code does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "host/ExitStatus.h"
#include "host/TCommandLine.h"

namespace host {
namespace {

using ::testing::HasSubstr;

std::string Read(const char* name) {
  std::ifstream file(std::string(DIAGSRUNNER_HOST_DIR "/") + name);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The manual page without its `\-` for a dash.
std::string ReadManual() {
  std::string text = Read("diagsrun.1");
  for (std::size_t at = text.find("\\-"); at != std::string::npos; at = text.find("\\-", at)) {
    text.erase(at, 1);
  }
  return text;
}

const std::vector<std::string>& GetCommands() {
  static const std::vector<std::string> commands = {"",
                                                    "list",
                                                    "run",
                                                    "inspect",
                                                    "provider",
                                                    "provider add",
                                                    "provider list",
                                                    "provider remove",
                                                    "provider check"};
  return commands;
}

TEST(DocumentsTest, TheManualHasEveryExitStatusWithItsMeaning) {
  const std::string manual = ReadManual();
  ASSERT_EQ(GetExitStatusTexts().size(), 4U);
  for (const TExitStatusText& text : GetExitStatusTexts()) {
    EXPECT_THAT(manual, HasSubstr(".TP\n.B " + std::to_string(static_cast<int>(text.status)) +
                                  "\n" + text.meaning + "\n"));
  }
}

TEST(DocumentsTest, EveryHelpHasEveryExitStatusWithItsMeaning) {
  const TCommandLine commandLine;
  for (const std::string& command : GetCommands()) {
    for (const TExitStatusText& text : GetExitStatusTexts()) {
      EXPECT_THAT(commandLine.GetHelp(command),
                  HasSubstr(std::to_string(static_cast<int>(text.status)) + "  " + text.meaning));
    }
  }
}

TEST(DocumentsTest, ManualHelpAndCompletionHaveEveryOption) {
  const TCommandLine commandLine;
  const std::string manual = ReadManual();
  const std::string completion = Read("diagsrun.bash");
  std::size_t count = 0;
  for (const std::string& command : GetCommands()) {
    for (const std::string& option : commandLine.GetOptionNames(command)) {
      ++count;
      EXPECT_THAT(manual, HasSubstr(option));
      EXPECT_THAT(completion, HasSubstr(option));
      EXPECT_THAT(commandLine.GetHelp(command), HasSubstr(option));
    }
  }
  EXPECT_GE(count, 15U);
}

TEST(DocumentsTest, TheHelpOfACommandPointsToTheOptionsOfEveryCommand) {
  const TCommandLine commandLine;
  for (const std::string& command : GetCommands()) {
    if (command.empty()) continue;
    EXPECT_THAT(commandLine.GetHelp(command), HasSubstr("(see diagsrun --help) may stand behind"));
  }
}

TEST(DocumentsTest, HelpAndManualTellWhereAUrlLeadsAndWhatALogIs) {
  const std::string help = TCommandLine().GetHelp("");
  const std::string manual = ReadManual();
  EXPECT_THAT(help, HasSubstr("https://HOST[:PORT][/PATH] (/cimom)"));
  EXPECT_THAT(help, HasSubstr("Append a log"));
  EXPECT_THAT(manual, HasSubstr("Append a log"));
  EXPECT_THAT(manual, HasSubstr("a path left out is /cimom"));
}

TEST(DocumentsTest, HelpAndManualTellWhereTheRulesAre) {
  const char* const place = "share/doc/diagsrunner/provider-rules.md";
  EXPECT_THAT(ReadManual(), HasSubstr(place));
  for (const char* command : {"provider add", "provider check", "provider list"}) {
    EXPECT_THAT(TCommandLine().GetHelp(command), HasSubstr(place));
  }
}

TEST(DocumentsTest, TheManualHasEveryJsonKey) {
  const std::string manual = ReadManual();
  for (const char* key :
       {"format",    "command",     "tests",           "number",    "id",        "service",
        "device",    "element",     "unoffered",       "reason",    "remedy",    "problems",
        "status",    "interrupted", "outcome",         "answer",    "started",   "seconds",
        "record",    "path",        "completionState", "data",      "summary",   "selected",
        "passed",    "failed",      "errors",          "notRun",    "server",    "class",
        "known",     "instances",   "properties",      "providers", "name",      "folder",
        "libraries", "schema",      "registrations",   "services",  "namespace", "provider",
        "library",   "types",       "errors",          "warnings",  "findings",  "severity",
        "rule",      "text",        "added",           "removed"}) {
    EXPECT_THAT(manual, HasSubstr(key));
  }
}

}  // namespace
}  // namespace host
