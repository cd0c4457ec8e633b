// SPDX-License-Identifier: Apache-2.0
//
// The query languages: what matches, what is refused and where, and the normal forms.
#include <gtest/gtest.h>

#include <map>
#include <ostream>

#include "platform/cmpi/Border.h"
#include "platform/cmpi/query/TQuery.h"
#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20::cmpi {
namespace {

/// A thing with a value of each kind, of class T_Derived below T_Base.
class TThing : public IQueryObject {
 public:
  TThing() {
    m_values["Name"] = TCIMValue("disk_1");
    m_values["Quote"] = TCIMValue("it's \"so\"");
    m_values["Small"] = TCIMValue::UInt16(7);
    m_values["Huge"] = TCIMValue::Unsigned(ECIMType::kUInt64, UINT64_MAX);
    m_values["Low"] = TCIMValue::Signed(ECIMType::kSInt64, INT64_MIN);
    m_values["Share"] = TCIMValue::Real32(0.5F);
    m_values["On"] = TCIMValue::Boolean(true);
    m_values["Nothing"] = TCIMValue::Null(ECIMType::kString);
    m_values["List"] = TCIMValue::Array(ECIMType::kUInt8, {});
    m_values["When"] = TCIMValue::DateTime("20260102120000.000000+060");
    m_values["Letter"] = TCIMValue::Char16('x');
    m_values["Owner"] = TCIMValue(TCIMReference("root", "T_Owner", {}));
    TCIMInstanceData inner;
    inner.path = TCIMReference("", "T_Inner", {});
    m_values["Inner"] = TCIMValue::Instance(std::make_shared<TCIMInstanceData>(inner));
    m_values["Inner.Depth"] = TCIMValue::UInt16(2);
  }
  std::optional<TCIMValue> Find(const std::string& name) const override {
    for (const auto& [known, value] : m_values) {
      if (IsSameName(known, name)) return value;
    }
    return std::nullopt;
  }
  std::string GetClassName() const override { return "T_Derived"; }
  bool IsA(const std::string& className, const std::string& superclass) const override {
    return IsSameName(className, superclass) ||
           (IsSameName(className, "T_Derived") && IsSameName(superclass, "T_Base"));
  }

 private:
  std::map<std::string, TCIMValue> m_values;
};

struct TRow {
  const char* condition;
  bool matches;
};
std::ostream& operator<<(std::ostream& out, const TRow& row) {
  return out << row.condition;
}

class QueryConditionTest : public testing::TestWithParam<TRow> {};

TEST_P(QueryConditionTest, MatchesOrNot) {
  const std::string condition = GetParam().condition;
  const TThing thing;
  EXPECT_EQ(TQuery::Parse(condition, "DMTF:FQL").Matches(thing), GetParam().matches);
  EXPECT_EQ(TQuery::Parse("SELECT * FROM T_Base WHERE " + condition, "WQL").Matches(thing),
            GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(
    All, QueryConditionTest,
    testing::Values(
        TRow{"Name = 'disk_1'", true}, TRow{"Name = \"disk_1\"", true},
        TRow{"Name = 'DISK_1'", false}, TRow{"name <> 'x'", true}, TRow{"Name != 'disk_1'", false},
        TRow{"'disk_1' = Name", true}, TRow{"Name < 'disk_2'", true}, TRow{"'e' < Name", false},
        TRow{"Quote = 'it''s \"so\"'", true}, TRow{"Quote = \"it's \\\"so\\\"\"", true},
        TRow{"Small = 7", true}, TRow{"Small = 0x7", true}, TRow{"Small = +7", true},
        TRow{"Small > -1", true}, TRow{"Small >= 8", false}, TRow{"8 >= Small", true},
        TRow{"Small = 7.0", true}, TRow{"Small < 7.5", true}, TRow{"Small = '7'", false},
        TRow{"Huge = 18446744073709551615", true}, TRow{"Huge = -1", false},
        TRow{"Huge > -1", true}, TRow{"Low = -9223372036854775808", true}, TRow{"Low < Huge", true},
        TRow{"Low < 0", true}, TRow{"Low > -9223372036854775807", false}, TRow{"Share = .5", true},
        TRow{"Share <= 5e-1", true}, TRow{"Share > Small", false}, TRow{"On = TRUE", true},
        TRow{"On <> false", true}, TRow{"On = 'TRUE'", false}, TRow{"Letter = 'x'", true},
        TRow{"List = 1", false}, TRow{"NOT List = 1", false},
        TRow{"When = '20260102110000.000000+000'", true},
        TRow{"When < '20260102110000.000001+000'", true},
        TRow{"When < '00000001000000.000000:000'", false}, TRow{"When = 'noon'", false},
        TRow{"Nothing IS NULL", true}, TRow{"Nothing IS NOT NULL", false},
        TRow{"Nothing = NULL", true}, TRow{"Name <> NULL", true}, TRow{"Absent IS NULL", true},
        TRow{"Nothing = 'x'", false}, TRow{"NOT Nothing = 'x'", false},
        TRow{"Absent = 1 OR Small = 7", true}, TRow{"Absent = 1 AND Small = 7", false},
        TRow{"NOT (Absent = 1 AND Small = 8)", true}, TRow{"Name LIKE 'disk%'", true},
        TRow{"Name LIKE '%_1'", true}, TRow{"Name LIKE '____'", false},
        TRow{"Name NOT LIKE 'fan%'", true}, TRow{"Name LIKE ''", false},
        TRow{"Nothing NOT LIKE 'x'", false}, TRow{"Inner ISA T_Inner", true},
        TRow{"Owner ISA 'T_Owner'", true}, TRow{"Inner ISA T_Base", false},
        TRow{"Name ISA T_Base", false}, TRow{"Inner.Depth = 2", true},
        TRow{"Small = 1 OR Small = 7 AND On = FALSE", false},
        TRow{"(Small = 1 OR Small = 7) AND On = TRUE", true}, TRow{"NOT NOT Small = 7", true},
        TRow{"not small=8 and NOT(small=9)", true}));

struct TFault {
  const char* query;
  const char* message;
};
std::ostream& operator<<(std::ostream& out, const TFault& fault) {
  return out << fault.query;
}

class BadQueryTest : public testing::TestWithParam<TFault> {};

TEST_P(BadQueryTest, IsRefusedWithThePositionAndWhatWasExpected) {
  try {
    TQuery::Parse(GetParam().query, "CIM:CQL");
    FAIL() << "no exception";
  } catch (const TBrokerFault& fault) {
    EXPECT_EQ(fault.GetCode(), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_STREQ(fault.what(), GetParam().message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, BadQueryTest,
    testing::Values(
        TFault{"", "query, position 1: expected SELECT, found the end"},
        TFault{"Small = 7", "query, position 1: expected SELECT, found \"Small\""},
        TFault{"SELECT FROM C", "query, position 8: expected a property name, found \"FROM\""},
        TFault{"SELECT *", "query, position 9: expected FROM, found the end"},
        TFault{"SELECT a b FROM C", "query, position 10: expected \",\" or FROM, found \"b\""},
        TFault{"SELECT * FROM 'C'", "query, position 15: expected a class name, found \"C\""},
        TFault{"SELECT * FROM C c x",
               "query, position 19: expected AND, OR or the end, found \"x\""},
        TFault{"SELECT * FROM C WHERE",
               "query, position 22: expected a property or a value, found the end"},
        TFault{"SELECT * FROM C WHERE a",
               "query, position 24: expected a comparison, found the end"},
        TFault{"SELECT * FROM C WHERE a =",
               "query, position 26: expected a property or a value, found the end"},
        TFault{"SELECT * FROM C WHERE 1 = 2", "query, position 23: a comparison needs a property"},
        TFault{"SELECT * FROM C WHERE C = 2",
               "query, position 23: a comparison needs a property, not a class"},
        TFault{"SELECT * FROM C WHERE (a = 1",
               "query, position 29: expected AND, OR or \")\", found the end"},
        TFault{"SELECT * FROM C WHERE a = 1)",
               "query, position 28: expected AND, OR or the end, found \")\""},
        TFault{"SELECT * FROM C WHERE a = 'x", "query, position 27: a text without its end"},
        TFault{"SELECT * FROM C WHERE a = 1x", "query, position 27: not a number"},
        TFault{"SELECT * FROM C WHERE a = 18446744073709551616",
               "query, position 27: the number is too large"},
        TFault{"SELECT * FROM C WHERE a = -9223372036854775809",
               "query, position 27: the number is too large"},
        TFault{"SELECT * FROM C WHERE a = 1e999", "query, position 27: the number is too large"},
        TFault{"SELECT * FROM C WHERE a < NULL",
               "query, position 23: nothing is less or greater than NULL"},
        TFault{"SELECT * FROM C WHERE a NOT 5", "query, position 29: expected LIKE, found \"5\""},
        TFault{"SELECT * FROM C WHERE a LIKE 5",
               "query, position 30: expected a text, found \"5\""},
        TFault{"SELECT * FROM C WHERE a IS 5", "query, position 28: expected NULL, found \"5\""},
        TFault{"SELECT * FROM C WHERE a ; b", "query, position 25: unexpected character"},
        TFault{"SELECT * FROM C WHERE a. = 1",
               "query, position 26: expected a property name, found \"=\""}));

TEST(QueryTest, ALanguageThatIsNotKnownIsNamed) {
  for (const char* language : {"", "SQL", "DMTF:XQL"}) {
    try {
      TQuery::Parse("SELECT * FROM C", language);
      FAIL() << language;
    } catch (const TBrokerFault& fault) {
      EXPECT_EQ(fault.GetCode(), CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED);
      EXPECT_NE(std::string(fault.what()).find('"' + std::string(language) + '"'),
                std::string::npos);
    }
  }
  for (const char* language : {"WQL", "cql", "CIM:CQL", "dmtf:cql"}) {
    EXPECT_EQ(TQuery::Parse("SELECT * FROM C", language).GetClassName(), "C");
  }
}

TEST(QueryTest, AHostileQueryCostsAnErrorAndNoStack) {
  const auto codeOf = [](const std::string& condition) {
    try {
      TQuery::Parse(condition, "DMTF:FQL");
    } catch (const TBrokerFault& fault) {
      return fault.GetCode();
    }
    return CMPI_RC_OK;
  };
  EXPECT_EQ(codeOf(std::string(30000, '(')), CMPI_RC_ERR_INVALID_QUERY);
  std::string nots;
  for (int i = 0; i < 10000; ++i) nots += "NOT ";
  EXPECT_EQ(codeOf(nots + "a = 1"), CMPI_RC_ERR_INVALID_QUERY);
  EXPECT_EQ(codeOf("a = 1" + std::string(65536, ' ')), CMPI_RC_ERR_INVALID_QUERY);
  EXPECT_EQ(codeOf(std::string("a = \0", 5)), CMPI_RC_ERR_INVALID_QUERY);
  EXPECT_EQ(codeOf(std::string(60, '(') + "a = 1" + std::string(60, ')')), CMPI_RC_OK);
  std::string many = "a = 0";
  for (int i = 1; i < 3000; ++i) many += " AND a = " + std::to_string(i);
  EXPECT_EQ(codeOf(many), CMPI_RC_OK);
}

TEST(QueryTest, TheSelectedPropertiesComeWithoutTheirClass) {
  const auto select = [](const char* list, const char* from = "T_Base") {
    return TQuery::Parse(std::string("select ") + list + " from " + from, "WQL").GetProperties();
  };
  using TNames = std::vector<std::string>;
  EXPECT_EQ(select("Name, T_Base.Small"), (TNames{"Name", "Small"}));
  EXPECT_EQ(select("b.Name,Inner.Depth", "T_Base b"), (TNames{"Name", "Inner.Depth"}));
  EXPECT_EQ(select("*"), TNames());
  EXPECT_EQ(select("Name, *"), TNames());
  EXPECT_EQ(select("t_base.*"), TNames());
}

TEST(QueryTest, OnlyObjectsOfTheClassMatch) {
  const TThing thing;
  EXPECT_TRUE(TQuery::Parse("SELECT * FROM t_base", "WQL").Matches(thing));
  EXPECT_FALSE(TQuery::Parse("SELECT * FROM T_Other", "WQL").Matches(thing));
  EXPECT_TRUE(TQuery::Parse("SELECT * FROM T_Base t WHERE t ISA T_Derived", "CQL").Matches(thing));
  EXPECT_TRUE(TQuery::Parse("SELECT * FROM T_Base t WHERE t.Small = 7", "CQL").Matches(thing));
}

/// Clauses as text: comparisons joined with "&", clauses with " | ".
std::string Describe(const std::vector<TClause>& clauses) {
  std::string text;
  for (const TClause& clause : clauses) {
    if (!text.empty()) text += " | ";
    for (std::size_t i = 0; i < clause.size(); ++i) {
      text += (i == 0 ? "" : "&") + clause[i].property + std::to_string(clause[i].op) +
              clause[i].value.ToString(10);
    }
  }
  return text;
}

TEST(QueryTest, AConditionHasTwoNormalForms) {
  const auto normalize = [](const char* condition, bool isConjunctive) {
    return Describe(Normalize(*TQuery::Parse(condition, "FQL").GetCondition(), isConjunctive));
  };
  EXPECT_EQ(normalize("a = 1 AND (b = 2 OR c < 3)", false), "a11&b12 | a11&c33");
  EXPECT_EQ(normalize("a = 1 AND (b = 2 OR c < 3)", true), "a11 | b12&c33");
  EXPECT_EQ(normalize("NOT (a = 1 AND (b > 2 OR c IS NULL))", false), "a21 | b62&c11");
  EXPECT_EQ(normalize("NOT (a LIKE 'x' OR b ISA C)", true), "a10x | b8C");
  EXPECT_EQ(normalize("a >= 1", true), "a41");
}

TEST(QueryTest, ANormalFormThatWouldExplodeIsRefused) {
  std::string condition = "(a = 1 OR b = 1)";
  for (int i = 0; i < 20; ++i) condition += " AND (a = 1 OR b = 1)";
  const TQuery query = TQuery::Parse(condition, "FQL");
  EXPECT_EQ(Normalize(*query.GetCondition(), true).size(), 21U);
  try {
    Normalize(*query.GetCondition(), false);
    FAIL() << "no exception";
  } catch (const TBrokerFault& fault) {
    EXPECT_EQ(fault.GetCode(), CMPI_RC_ERR_QUERY_FEATURE_NOT_SUPPORTED);
  }
}

TEST(QueryTest, APatternWithManyWildcardsIsMatchedInNoTime) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "%a";
  EXPECT_FALSE(IsLike(std::string(2000, 'a') + 'b', pattern));
  EXPECT_TRUE(IsLike(std::string(2000, 'a') + 'b', pattern + '%'));
  EXPECT_TRUE(IsLike("\xC3\xA4rger", "_rger")) << "a character may have several bytes";
}

}  // namespace
}  // namespace NZEPQEL20::cmpi
