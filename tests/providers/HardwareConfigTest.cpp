// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <ostream>

#include "providers/hardware/TConfig.h"
#include "tests/providers/TFakeMachine.h"

namespace hardware {
namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(HardwareConfigTest, ReadsSettingsAmongCommentsAndBlanks) {
  const TConfigReading reading = ParseConfig(
      "# comment\n\n processor_seconds = 3 # as short as can be\nmemory_mib=32\r\n", "conf");
  EXPECT_THAT(reading.problems, IsEmpty());
  EXPECT_EQ(reading.config.processorSeconds, 3U);
  EXPECT_EQ(reading.config.memoryMib, 32U);
  EXPECT_EQ(reading.config.diskMib, TConfig().diskMib);
}

struct TBadLine {
  const char* name;
  const char* line;
  const char* problem;
};
void PrintTo(const TBadLine& row, std::ostream* out) {
  *out << row.line;
}

class BadLineTest : public ::testing::TestWithParam<TBadLine> {};

TEST_P(BadLineTest, IsReportedAndTheDefaultStays) {
  const std::string text = std::string(GetParam().line) + "\nnetwork_seconds = 2\n";
  const TConfigReading reading = ParseConfig(text, "conf");
  EXPECT_THAT(reading.problems, ElementsAre(GetParam().problem));
  EXPECT_EQ(reading.config.processorSeconds, TConfig().processorSeconds);
  EXPECT_EQ(reading.config.networkSeconds, 2U);
}
INSTANTIATE_TEST_SUITE_P(
    All, BadLineTest,
    ::testing::Values(
        TBadLine{"NoEquals", "processor_seconds 3",
                 "conf: line 1: no \"key = value\": processor_seconds 3"},
        TBadLine{"UnknownKey", "procesor_seconds = 3",
                 "conf: line 1: unknown key: procesor_seconds"},
        TBadLine{"Zero", "processor_seconds = 0",
                 "conf: line 1: processor_seconds must be a whole number from 1 to 3600, not: 0"},
        TBadLine{
            "TooLarge", "processor_seconds = 3601",
            "conf: line 1: processor_seconds must be a whole number from 1 to 3600, not: 3601"},
        TBadLine{"Negative", "processor_seconds = -1",
                 "conf: line 1: processor_seconds must be a whole number from 1 to 3600, not: -1"},
        TBadLine{"Unit", "processor_seconds = 3s",
                 "conf: line 1: processor_seconds must be a whole number from 1 to 3600, not: 3s"},
        TBadLine{"Empty", "processor_seconds =",
                 "conf: line 1: processor_seconds must be a whole number from 1 to 3600, not: "}),
    [](const auto& row) { return row.param.name; });

TEST(HardwareConfigTest, AKeyGivenTwiceKeepsItsFirstValue) {
  const TConfigReading reading = ParseConfig("disk_seconds = 3\ndisk_seconds = 4\n", "conf");
  EXPECT_THAT(reading.problems,
              ElementsAre("conf: line 2: key given twice, first value kept: disk_seconds"));
  EXPECT_EQ(reading.config.diskSeconds, 3U);
}

TEST(HardwareConfigTest, AFileFullOfRubbishYieldsABoundedReport) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "rubbish\xFF\n";
  EXPECT_THAT(ParseConfig(text, "conf").problems, SizeIs(20));
}

class ConfigFileTest : public ::testing::Test {
 protected:
  ~ConfigFileTest() override { ::unsetenv("DIAGSRUNNER_HARDWARE_CONF"); }

  TFakeMachine m_machine;
};

TEST_F(ConfigFileTest, IsTakenFromTheFolderOfTheLibrary) {
  m_machine.Write("/hardware.conf", "disk_seconds = 3\n");
  EXPECT_EQ(LoadConfig(m_machine.GetRoot()).config.diskSeconds, 3U);
}

TEST_F(ConfigFileTest, ThatIsNotThereMeansDefaults) {
  const TConfigReading reading = LoadConfig(m_machine.GetRoot());
  EXPECT_THAT(reading.problems, IsEmpty());
  EXPECT_EQ(reading.config.diskSeconds, TConfig().diskSeconds);
}

TEST_F(ConfigFileTest, NamedByTheEnvironmentComesFirst) {
  m_machine.Write("/hardware.conf", "disk_seconds = 3\n");
  m_machine.Write("/other.conf", "disk_seconds = 4\n");
  ::setenv("DIAGSRUNNER_HARDWARE_CONF", (m_machine.GetRoot() + "/other.conf").c_str(), 1);
  EXPECT_EQ(LoadConfig(m_machine.GetRoot()).config.diskSeconds, 4U);
}

TEST_F(ConfigFileTest, NamedByTheEnvironmentHasToBeThere) {
  ::setenv("DIAGSRUNNER_HARDWARE_CONF", (m_machine.GetRoot() + "/none.conf").c_str(), 1);
  EXPECT_THAT(LoadConfig(m_machine.GetRoot()).problems, ElementsAre(HasSubstr("cannot be read")));
}

TEST_F(ConfigFileTest, ThatIsAFolderOrTooLargeIsReported) {
  m_machine.Write("/hardware.conf/file", "");
  EXPECT_THAT(LoadConfig(m_machine.GetRoot()).problems, ElementsAre(HasSubstr("cannot be read")));
  m_machine.Write("/big/hardware.conf", std::string(70000, 'x'));
  EXPECT_THAT(LoadConfig(m_machine.GetRoot() + "/big").problems,
              ElementsAre(HasSubstr("larger than 64 KiB")));
}

TEST(HardwareConfigTest, ADeadlineLeavesATestItsOwnTime) {
  TConfig config;
  config.deadlineSeconds = 60;
  config.extendedDeadlineMinutes = 1;
  EXPECT_EQ(GetShortDeadline(config, seconds(10)), seconds(60));
  EXPECT_EQ(GetShortDeadline(config, seconds(100)), seconds(110));
  EXPECT_EQ(GetExtendedDeadline(config, seconds(60)), seconds(70));
}

}  // namespace
}  // namespace hardware
