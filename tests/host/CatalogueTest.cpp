// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "host/Catalogue.h"
#include "host/TUsageError.h"

namespace host {
namespace {

using ::testing::HasSubstr;

std::vector<std::string> GetIds(const std::vector<TTest>& tests) {
  std::vector<std::string> ids;
  ids.reserve(tests.size());
  for (const TTest& test : tests) ids.push_back(test.id);
  return ids;
}

const std::vector<TTest>& GetTests() {
  static const std::vector<TTest> tests =
      ReadCatalogue("Stress,cpu0,CPU, 3 GHz|Pattern,memory0,Memory|Stress,cpu1,CPU, 3 GHz|");
  return tests;
}

TEST(CatalogueTest, NumbersTheTestsAndTakesTheirIdsApart) {
  ASSERT_EQ(GetTests().size(), 3U);
  const TTest& first = GetTests()[0];
  EXPECT_EQ(first.number, 1U);
  EXPECT_EQ(first.service, "Stress");
  EXPECT_EQ(first.device, "cpu0");
  EXPECT_EQ(first.element, "CPU, 3 GHz");
  EXPECT_EQ(GetTests()[2].number, 3U);
}

TEST(CatalogueTest, ListsAnIdOnceThatWasFoundTwice) {
  EXPECT_EQ(GetIds(ReadCatalogue("a,b,c|x,y,z|a,b,c|")),
            (std::vector<std::string>{"a,b,c", "x,y,z"}));
}

TEST(CatalogueTest, FindsNoTestsInTheTextForAnEmptyList) {
  EXPECT_TRUE(ReadCatalogue("No matching diagnostic test or device found.\n").empty());
  EXPECT_TRUE(ReadCatalogue("").empty());
  EXPECT_TRUE(ReadCatalogue("||").empty());
}

TEST(CatalogueTest, KeepsIdsWithMissingPartsAsTheyAre) {
  const std::vector<TTest> tests = ReadCatalogue("alone|,,|two,parts|");
  ASSERT_EQ(tests.size(), 3U);
  EXPECT_EQ(tests[0].service, "alone");
  EXPECT_EQ(tests[0].device + tests[0].element, "");
  EXPECT_EQ(tests[1].service + tests[1].device + tests[1].element, "");
  EXPECT_EQ(tests[2].device, "parts");
}

TEST(CatalogueTest, FiltersByWholeDeviceIdAndPartOfTheTestId) {
  TSelection selection;
  selection.device = "cpu1";
  EXPECT_EQ(GetIds(FilterTests(GetTests(), selection)),
            (std::vector<std::string>{"Stress,cpu1,CPU, 3 GHz"}));
  selection.match = "pattern";
  EXPECT_TRUE(FilterTests(GetTests(), selection).empty());
  selection.device.clear();
  EXPECT_EQ(GetIds(FilterTests(GetTests(), selection)),
            (std::vector<std::string>{"Pattern,memory0,Memory"}));
  selection = {};
  selection.device = "cpu";
  EXPECT_TRUE(FilterTests(GetTests(), selection).empty());
}

TEST(CatalogueTest, SelectsByIdAndByNumberInTheOrderOfTheArguments) {
  TSelection selection;
  selection.ids = {"#3", "Pattern,memory0,Memory", "1"};
  EXPECT_EQ(GetIds(SelectTests(GetTests(), selection)),
            (std::vector<std::string>{"Stress,cpu1,CPU, 3 GHz", "Pattern,memory0,Memory",
                                      "Stress,cpu0,CPU, 3 GHz"}));
}

TEST(CatalogueTest, SelectsEverythingWithoutIdsAndFilters) {
  TSelection selection;
  selection.isAll = true;
  EXPECT_EQ(SelectTests(GetTests(), selection).size(), 3U);
}

struct TBadId {
  const char* name;
  const char* id;
  const char* shown;
  const char* reason;
};
void PrintTo(const TBadId& row, std::ostream* out) {
  *out << row.name;
}

class BadIdTest : public ::testing::TestWithParam<TBadId> {};

TEST_P(BadIdTest, IsRefusedByNameAndReason) {
  TSelection selection;
  selection.ids = {"#1", GetParam().id};
  try {
    SelectTests(GetTests(), selection);
    FAIL() << "was accepted";
  } catch (const TUsageError& e) {
    EXPECT_THAT(e.what(), HasSubstr(GetParam().shown));
    EXPECT_THAT(e.what(), HasSubstr(GetParam().reason));
  }
}
INSTANTIATE_TEST_SUITE_P(
    All, BadIdTest,
    ::testing::Values(TBadId{"Empty", "", "test id", "is empty"},
                      TBadId{"Unknown", "no,such,test", "no,such,test", "no such test"},
                      TBadId{"OtherCase", "stress,cpu0,CPU, 3 GHz", "stress", "no such test"},
                      TBadId{"NoComma", "Stress", "Stress", "NAME,DEVICE,ELEMENT"},
                      TBadId{"OneComma", "Stress,cpu0", "Stress,cpu0", "NAME,DEVICE,ELEMENT"},
                      TBadId{"Zero", "#0", "#0", "no test has this number"},
                      TBadId{"TooLarge", "#4", "#4", "shows 3 tests"},
                      TBadId{"Huge", "99999999999999999999999", "9999", "no test has this number"},
                      TBadId{"Negative", "-1", "-1", "NAME,DEVICE,ELEMENT"},
                      TBadId{"OnlyHash", "#", "#", "NAME,DEVICE,ELEMENT"},
                      TBadId{"Control", "a,\x1b[2J,c", "a,\\x1b[2J,c", "no such test"}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace host
