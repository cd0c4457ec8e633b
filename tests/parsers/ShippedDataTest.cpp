// SPDX-License-Identifier: Apache-2.0
// The data files of the installation root, read as the runner reads them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/algorithm/string/case_conv.hpp>
#include <fstream>
#include <iterator>

#include "parsers/ExcludeParser.h"
#include "parsers/FilterDiagsParser.h"
#include "parsers/ResultParser.h"
#include "platform/contract/TOSSpecific.h"
#include "tests/parsers/TLogCapture.h"
#include "tests/parsers/TReportingParser.h"

namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::Not;

// Parses a shipped file and answers with the parser.
template <typename TParser>
void ReadShipped(const char* name, TParser& parser) {
  std::ifstream file(std::string(DIAGSRUNNER_DATA_DIR "/qdx/data/") + name);
  ASSERT_TRUE(file.is_open()) << name;
  std::string document((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  parser.Parse(document.data());
}

class ShippedDataTest : public ::testing::TestWithParam<bool> {
 protected:
  ShippedDataTest() { NZEPQEL20::TOSSpecific::SetOEMBuild(GetParam()); }
  ~ShippedDataTest() override { NZEPQEL20::TOSSpecific::SetOEMBuild(false); }
};

TEST(ShippedListTest, NamesTestsAndHasNoError) {
  TLogCapture log;
  ExcludeParser parser;
  ReadShipped("excludetests.xml", parser);
  EXPECT_THAT(log.m_lines, IsEmpty());
  EXPECT_THAT(parser.GetRequestedData(), Not(IsEmpty()));
  EXPECT_THAT(parser.GetRequestedData(), Each(Not(IsEmpty())));
}

TEST(ShippedMatrixTest, HasKeysThatCanMatchAndNoFragmentThatMatchesEverything) {
  TReportingParser<FilterDiagsParser> parser;
  ReadShipped("excludetestmatrix.xml", parser);
  EXPECT_EQ(parser.m_reports.size(), 2U);  // The document element may have any name.
  const auto matrix = parser.getDiagnosticMatrix();
  EXPECT_THAT(matrix, Not(IsEmpty()));
  for (const auto& [biosID, tests] : matrix) {
    EXPECT_EQ(biosID, boost::algorithm::to_lower_copy(biosID));
    EXPECT_THAT(tests, Not(IsEmpty())) << biosID;
    EXPECT_THAT(tests, Each(Not(IsEmpty()))) << biosID;
  }
}

TEST_P(ShippedDataTest, ExplainsEveryOutcomeOfTheDiskTestsOnce) {
  TReportingParser<ResultParser> parser;
  ReadShipped("vendor_diagnostic_msgs.xml", parser);
  EXPECT_THAT(parser.m_reports, IsEmpty());
  const auto entries = parser.getResultMsgs();
  EXPECT_EQ(entries.size(), 24U);
  for (const char* test : {"diskdefault read verify", "diskdefault file read verify",
                           "diskdefault smart self-test", "diskdefault nvme self-test"}) {
    for (const char* state : {"ok", "warning", "failed", "aborted", "incomplete", "stopped"}) {
      int found = 0;
      const auto [begin, end] = entries.equal_range(test);
      for (auto entry = begin; entry != end; ++entry) {
        if (entry->second.state != state) continue;
        ++found;
        EXPECT_EQ(entry->second.messages.size(), 1U);
        EXPECT_FALSE(entry->second.errorCode.empty());
        // Whatever is not in order comes with something to do.
        EXPECT_EQ(entry->second.actions.empty(), std::string(state) == "ok");
      }
      EXPECT_EQ(found, 1) << test << ", " << state;
    }
  }
}
INSTANTIATE_TEST_SUITE_P(InBothBuilds, ShippedDataTest, ::testing::Bool());

}  // namespace
