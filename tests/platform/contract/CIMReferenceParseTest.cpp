// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "platform/contract/TCIMReference.h"
#include "platform/contract/TQELException.h"

namespace NZEPQEL20 {
namespace {

struct TPathRow {
  const char* name;
  std::string text;
  std::string printed;
};

void PrintTo(const TPathRow& row, std::ostream* out) {
  *out << row.name;
}

class TPathReadingTest : public testing::TestWithParam<TPathRow> {};

TEST_P(TPathReadingTest, ReadsAndPrintsTheSameFromThenOn) {
  const TCIMReference path = TCIMReference::Parse(GetParam().text);
  EXPECT_EQ(path.GetPath(), GetParam().printed);
  EXPECT_EQ(TCIMReference::Parse(path.GetPath()), path);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, TPathReadingTest,
    testing::Values(
        TPathRow{"class", "CIM_Disk", "CIM_Disk"},
        TPathRow{"namespace and class", "root/cimv2:CIM_Disk", "root/cimv2:CIM_Disk"},
        TPathRow{"namespace with a dot", "root/emc.com:C.K=1", "root/emc.com:C.K=\"1\""},
        TPathRow{"leading slash", "/root/cimv2:C", "root/cimv2:C"},
        TPathRow{"host", "//h.example:5989/root/cimv2:C.K=\"v\"",
                 "//h.example:5989/root/cimv2:C.K=\"v\""},
        TPathRow{"host without namespace", "//h/C.K=\"v\"", "//h/C.K=\"v\""},
        TPathRow{"keys without namespace", "C.B=\"2\",A=\"1\"", "C.A=\"1\",B=\"2\""},
        TPathRow{"bare number", "C.K=007", "C.K=\"7\""},
        TPathRow{"plus sign", "C.K=+7", "C.K=\"7\""},
        TPathRow{"negative number", "C.K=-7", "C.K=\"-7\""},
        TPathRow{"hexadecimal number", "C.K=0x1F", "C.K=\"31\""},
        TPathRow{"real number", "C.K=1.5", "C.K=\"1.5\""},
        TPathRow{"largest number", "C.K=18446744073709551615", "C.K=\"18446744073709551615\""},
        TPathRow{"boolean", "C.K=true,L=FALSE", "C.K=\"TRUE\",L=\"FALSE\""},
        TPathRow{"blanks", " C. K = 1 ,\tL = \"2\" \n", "C.K=\"1\",L=\"2\""},
        TPathRow{"empty value", "C.K=\"\"", "C.K=\"\""},
        TPathRow{"escapes", R"(C.K="a\"b\\c")", R"(C.K="a\"b\\c")"},
        TPathRow{"backslash of its own", R"(C.K="a\b")", R"(C.K="a\\b")"},
        TPathRow{"separators in a value", "C.K=\"a,b=c.d:e\"", "C.K=\"a,b=c.d:e\""},
        TPathRow{"NUL in a value", std::string("C.K=\"a\0b\"", 9), std::string("C.K=\"a\0b\"", 9)},
        TPathRow{"path in a path", R"(n:C.K="m:D.L=\"x\\\"y\"")", R"(n:C.K="m:D.L=\"x\\\"y\"")"},
        TPathRow{"singleton", "root:C=@", "root:C"}));

struct TFaultRow {
  const char* name;
  std::string text;
  unsigned int place;
};

void PrintTo(const TFaultRow& row, std::ostream* out) {
  *out << row.name;
}

class TPathFaultTest : public testing::TestWithParam<TFaultRow> {};

TEST_P(TPathFaultTest, IsRefusedAtThePlaceOfTheFault) {
  try {
    FAIL() << "read as " << TCIMReference::Parse(GetParam().text).GetPath();
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kInvalidArgument));
    const std::string place = "at character " + std::to_string(GetParam().place);
    EXPECT_EQ(std::string(e.what()).substr(std::string(e.what()).rfind("at ")), place) << e.what();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Paths, TPathFaultTest,
    testing::Values(
        TFaultRow{"empty", "", 1}, TFaultRow{"only blanks", "  ", 3},
        TFaultRow{"host alone", "//host", 3}, TFaultRow{"empty host", "///n:C", 3},
        TFaultRow{"empty namespace", ":C", 1}, TFaultRow{"no class", "root:", 6},
        TFaultRow{"keys without a class", ".K=1", 1}, TFaultRow{"sentence", "no path at all", 4},
        TFaultRow{"colon in the namespace", "a:b:C", 2}, TFaultRow{"dot without keys", "C.", 3},
        TFaultRow{"key without value", "C.K", 4}, TFaultRow{"empty bare value", "C.K=", 5},
        TFaultRow{"missing value", "C.K=,L=1", 5}, TFaultRow{"bare word", "C.K=word", 5},
        TFaultRow{"bare nan", "C.K=nan", 5}, TFaultRow{"bare infinity", "C.K=inf", 5},
        TFaultRow{"number beyond 64 bits", "C.K=18446744073709551616", 5},
        TFaultRow{"two signs", "C.K=+-1", 5}, TFaultRow{"sign alone", "C.K=+", 5},
        TFaultRow{"open quote", "C.K=\"a", 7}, TFaultRow{"escape at the end", "C.K=\"a\\", 8},
        TFaultRow{"escaped closing quote", "C.K=\"a\\\"", 9},
        TFaultRow{"comma at the end", "C.K=1,", 7}, TFaultRow{"no comma", "C.K=\"1\"L=2", 8},
        TFaultRow{"key twice", "C.K=1,k=2", 7}, TFaultRow{"tail behind a singleton", "C=@x", 4},
        TFaultRow{"value without a key", "C=1", 3}));

TEST(PathFaultTest, ShowsOnlyTheBeginningOfALongText) {
  try {
    TCIMReference::Parse(std::string(1000000, '='));
    FAIL() << "a row of signs was read as a path";
  } catch (const TQELException& e) {
    EXPECT_LT(std::string(e.what()).size(), 400U);
  }
}

TEST(PathReadingTest, ReadsEveryPrefixOfAPathOrRefusesIt) {
  const std::string whole = R"(//h/root/cimv2:C.A="x\"y\\",B=-12,C=TRUE)";
  unsigned int refused = 0;
  for (std::string::size_type size = 0; size < whole.size(); ++size) {
    try {
      const TCIMReference path = TCIMReference::Parse(whole.substr(0, size));
      EXPECT_EQ(TCIMReference::Parse(path.GetPath()), path);
    } catch (const TQELException&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 20U);
}

TEST(PathReadingTest, KeepsTheTypesOfBareValues) {
  const TCIMReference path = TCIMReference::Parse("C.A=5,B=-5,D=TRUE,E=\"5\",F=0.5");
  EXPECT_EQ(path.FindKey("a")->GetType(), ECIMType::kUInt64);
  EXPECT_EQ(path.FindKey("b")->GetType(), ECIMType::kSInt64);
  EXPECT_EQ(path.FindKey("d")->GetType(), ECIMType::kBoolean);
  EXPECT_EQ(path.FindKey("e")->GetType(), ECIMType::kString);
  EXPECT_EQ(path.FindKey("f")->GetType(), ECIMType::kReal64);
}

TEST(PathReadingTest, TakesThePartsApart) {
  const TCIMReference path = TCIMReference::Parse("//h:1/root/cimv2:C.K=\"v\"");
  EXPECT_EQ(path.GetHost(), "h:1");
  EXPECT_EQ(path.GetNamespaceName(), "root/cimv2");
  EXPECT_EQ(path.GetClassName(), "C");
  EXPECT_EQ(path.GetKeys(), (TKeyMap{{"K", TCIMValue("v")}}));
  EXPECT_EQ(path.GetNamespace(), nullptr);
}

}  // namespace
}  // namespace NZEPQEL20
