// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "platform/contract/TQELException.h"
#include "platform/services/TCoreLogger.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

class CoreLoggerTest : public ::testing::Test {
 protected:
  std::vector<std::string> ReadLines() const {
    std::ifstream file(m_file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }

  // The lines without their times.
  std::vector<std::string> ReadTexts() const {
    std::vector<std::string> texts;
    for (const std::string& line : ReadLines()) texts.push_back(line.substr(line.find(' ') + 1));
    return texts;
  }

  TTemporaryFolder m_folder;
  std::string m_file = m_folder.GetPath() + "/core.log";
};

TEST_F(CoreLoggerTest, WritesTimeSeverityAndText) {
  TCoreLogger(m_file, ILogger::kTrace).Log(ILogger::kWarning, "left out");
  EXPECT_THAT(ReadLines(),
              ElementsAre(MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}"
                                       "\\.[0-9]{3}[+-][0-9]{2}:[0-9]{2} warning: left out")));
}

struct TLevel {
  const char* word;
  std::vector<std::string> texts;
};
void PrintTo(const TLevel& row, std::ostream* out) {
  *out << row.word;
}

class CoreLoggerLevelTest : public CoreLoggerTest, public ::testing::WithParamInterface<TLevel> {};

TEST_P(CoreLoggerLevelTest, KeepsWhatIsAsSevereOrMore) {
  {
    TCoreLogger logger(m_file, TCoreLogger::ParseLevel(GetParam().word));
    logger.Log(ILogger::kTrace, "d");
    logger.Log(ILogger::kInfo, "c");
    logger.Log(ILogger::kWarning, "b");
    logger.Log(ILogger::kError, "a");
  }
  EXPECT_EQ(ReadTexts(), GetParam().texts);
}
INSTANTIATE_TEST_SUITE_P(
    All, CoreLoggerLevelTest,
    ::testing::Values(TLevel{"error", {"error: a"}}, TLevel{"warning", {"warning: b", "error: a"}},
                      TLevel{"info", {"info: c", "warning: b", "error: a"}},
                      TLevel{"trace", {"trace: d", "info: c", "warning: b", "error: a"}}),
    [](const auto& row) { return row.param.word; });

TEST_F(CoreLoggerTest, RefusesAnUnknownLevelByName) {
  try {
    TCoreLogger::ParseLevel("Loud");
    FAIL() << "nothing was thrown";
  } catch (const TQELException& error) {
    EXPECT_STREQ(error.what(),
                 "Unknown log level 'Loud': it is one of error, warning, info, trace");
    EXPECT_EQ(error.GetStatusCode(), TQELStatusCode(TQELStatusCode::kInvalidArgument));
  }
}

TEST_F(CoreLoggerTest, LetsNoTextForgeALine) {
  using namespace std::string_literals;
  TCoreLogger(m_file, ILogger::kTrace)
      .Log(ILogger::kInfo, "one\n2026-01-01T00:00:00.000+00:00 error: two\r\t\x1B[2J\x7F\0.{}%v"s);
  EXPECT_THAT(ReadTexts(), ElementsAre("info: one\\n2026-01-01T00:00:00.000+00:00 error: "
                                       "two\\r\\t\\x1b[2J\\x7f\\x00.{}%v"));
}

TEST_F(CoreLoggerTest, LeavesLettersBeyondAsciiAlone) {
  TCoreLogger(m_file, ILogger::kTrace).Log(ILogger::kInfo, "gr\xC3\xBC\xC3\x9F");
  EXPECT_THAT(ReadTexts(), ElementsAre("info: gr\xC3\xBC\xC3\x9F"));
}

TEST_F(CoreLoggerTest, WritesAnErrorThroughAtOnce) {
  TCoreLogger logger(m_file, ILogger::kTrace);
  logger.Log(ILogger::kTrace, "step");
  logger.Log(ILogger::kError, "mend this");
  EXPECT_THAT(ReadTexts(), ElementsAre("trace: step", "error: mend this"));
}

TEST_F(CoreLoggerTest, AppendsToAFileThatIsThere) {
  TCoreLogger(m_file, ILogger::kTrace).Log(ILogger::kInfo, "first");
  TCoreLogger(m_file, ILogger::kTrace).Log(ILogger::kInfo, "second");
  EXPECT_THAT(ReadTexts(), ElementsAre("info: first", "info: second"));
}

TEST_F(CoreLoggerTest, WritesToStandardErrorWithoutAFile) {
  ::testing::internal::CaptureStderr();
  TCoreLogger("", ILogger::kError).Log(ILogger::kError, "seen");
  EXPECT_THAT(::testing::internal::GetCapturedStderr(), HasSubstr(" error: seen\n"));
}

TEST_F(CoreLoggerTest, RefusesAFileThatCannotBeWrittenByNameAndReason) {
  try {
    TCoreLogger logger(m_folder.GetPath(), ILogger::kError);
    FAIL() << "nothing was thrown";
  } catch (const TQELException& error) {
    EXPECT_THAT(error.what(), HasSubstr("'" + m_folder.GetPath() + "'"));
    EXPECT_THAT(error.what(), HasSubstr("Is a directory"));
  }
}

TEST_F(CoreLoggerTest, LosesLinesSilentlyOnAFullDisk) {
  ::testing::internal::CaptureStderr();
  {
    TCoreLogger logger("/dev/full", ILogger::kTrace);
    for (int i = 0; i < 100; ++i) logger.Log(ILogger::kError, std::string(1000, 'x'));
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(CoreLoggerTest, KeepsLinesOfSeveralThreadsWhole) {
  constexpr int kLines = 200;
  {
    TCoreLogger logger(m_file, ILogger::kTrace);
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c'}) {
      threads.emplace_back([&logger, letter] {
        for (int i = 0; i < kLines; ++i) logger.Log(ILogger::kInfo, std::string(100, letter));
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
  const std::vector<std::string> texts = ReadTexts();
  EXPECT_EQ(texts.size(), 3U * kLines);
  EXPECT_THAT(texts, ::testing::Each(MatchesRegex("info: (a{100}|b{100}|c{100})")));
}

TEST_F(CoreLoggerTest, WritesNothingOnItsOwn) {
  { const TCoreLogger logger(m_file, ILogger::kTrace); }
  EXPECT_THAT(ReadLines(), IsEmpty());
}

}  // namespace
}  // namespace NZEPQEL20
