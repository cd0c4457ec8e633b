// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

constexpr const char* kClasses =
    "class A_Node { [Key] string Name; uint16 Size = 4; string Text; uint8 List[]; "
    "[EmbeddedInstance(\"A_Node\")] string Inner; };\n"
    "[Association] class A_Link { [Key] A_Node REF From; [Key] A_Node REF To; };\n";

TEST(MofInstanceTest, ValuesAreTypedAndDefaultsFilledIn) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository, std::string(kClasses) +
                                "#pragma namespace (\"root/x\")\n"
                                "[Description(\"d\")] instance of a_node { [Key] name = \"n\"; "
                                "List = { 1, 2 }; Text = NULL; };"),
      TLines());
  EXPECT_EQ(Lines(repository.Check()), TLines());
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].path.GetPath(), "root/x:A_Node.Name=\"n\"");
  ASSERT_EQ(instances[0].properties.size(), 4U);
  EXPECT_EQ(instances[0].properties[0].name, "Name");
  EXPECT_EQ(instances[0].Find("List")->value,
            TCIMValue::Array(ECIMType::kUInt8, {TCIMValue::Unsigned(ECIMType::kUInt8, 1),
                                                TCIMValue::Unsigned(ECIMType::kUInt8, 2)}));
  EXPECT_EQ(instances[0].Find("Text")->value, TCIMValue::Null(ECIMType::kString));
  EXPECT_EQ(instances[0].Find("Size")->value, TCIMValue::UInt16(4));
}

TEST(MofInstanceTest, AliasesHoldBeforeTheirDefinitionAndBesidePathTexts) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, std::string(kClasses) +
                                      "instance of A_Link { From = $LATE; To = "
                                      "\"A_Node.Name=\\\"a\\\\\\\"b\\\"\"; };\n"
                                      "instance of A_Node as $Late { Name = \"l\"; };"),
            TLines());
  EXPECT_EQ(Lines(repository.Check()), TLines());
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 2U);
  const auto from = static_cast<NZEPQEL20::TCIMReference>(instances[0].Find("From")->value);
  EXPECT_EQ(from.GetPath(), "A_Node.Name=\"l\"");
  const auto to = static_cast<NZEPQEL20::TCIMReference>(instances[0].Find("To")->value);
  EXPECT_EQ(to.FindKey("Name")->ToString(10), "a\"b");
  EXPECT_EQ(instances[0].path.GetKeys().size(), 2U);
}

TEST(MofInstanceTest, EmbeddedInstancesAreReadFromTheirText) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository,
                std::string(kClasses) +
                    "instance of A_Node { Name = \"n\"; Inner = \"instance of A_Node { Name = "
                    "\\\"i\\\"; Inner = \\\"instance of A_Node { Size = 9; };\\\"; };\"; };"),
      TLines());
  EXPECT_EQ(Lines(repository.Check()), TLines());
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  const auto inner = instances[0].Find("Inner")->value.ToInstance();
  ASSERT_NE(inner, nullptr);
  EXPECT_EQ(inner->Find("Name")->value, TCIMValue("i"));
  EXPECT_EQ(inner->Find("Inner")->value.ToInstance()->Find("Size")->value, TCIMValue::UInt16(9));
}

/// Classes with what holds one embedded instance, several of them, and one as a key.
constexpr const char* kHolders =
    "class A_In { string s; };\n"
    "class A_Out { [Key] string k; [EmbeddedObject] string many[]; "
    "[EmbeddedInstance(\"A_In\")] string some[]; [EmbeddedObject] string one; };\n"
    "class A_Odd { [Key, EmbeddedObject] string k[]; };\n";

TEST(MofInstanceTest, OneEmbeddedInstanceMayStandForAnArrayOfThem) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      std::string(kHolders) +
                          "instance of A_Out { k = \"1\"; many = \"instance of A_In { s = "
                          "\\\"x\\\"; };\"; some = \"instance of A_In { s = \\\"y\\\"; };\"; };"),
            TLines());
  EXPECT_EQ(
      Lines(repository.Check()),
      (TLines{"t.mof:4:37: warning: expected an array between '{' and '}'; it is taken as one",
              "t.mof:4:80: warning: expected an array between '{' and '}'; it is taken as "
              "one"}));
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  const auto many = static_cast<std::vector<TCIMValue>>(instances[0].Find("many")->value);
  ASSERT_EQ(many.size(), 1U);
  ASSERT_NE(many[0].ToInstance(), nullptr);
  EXPECT_EQ(many[0].ToInstance()->Find("s")->value, TCIMValue("x"));
  EXPECT_TRUE(instances[0].Find("some")->value.IsArray());
}

struct TEmbeddedRow {
  const char* name;
  const char* mof;
};
void PrintTo(const TEmbeddedRow& row, std::ostream* out) {
  *out << row.name;
}

class MofEmbeddedFaultTest : public ::testing::TestWithParam<TEmbeddedRow> {};

TEST_P(MofEmbeddedFaultTest, IsTheInstancesOwnAndNamesItsPlace) {
  TClassRepository repository;
  LoadLines(repository,
            std::string(kHolders) + GetParam().mof + "\ninstance of A_Out { k = \"good\"; };");
  const TLines lines = Lines(repository.Check());
  EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
    return line.find("t.mof:4:") == 0 && line.find("warning") == std::string::npos;
  })) << ::testing::PrintToString(lines);
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].Find("k")->value, TCIMValue("good"));
}

INSTANTIATE_TEST_SUITE_P(
    Values, MofEmbeddedFaultTest,
    ::testing::Values(
        TEmbeddedRow{"Text", "instance of A_Out { k = \"1\"; many = \"rubbish\"; };"},
        TEmbeddedRow{"Number", "instance of A_Out { k = \"1\"; many = 5; };"},
        TEmbeddedRow{"Alias", "instance of A_Out { k = \"1\"; some = $Any; };"},
        TEmbeddedRow{"Mixed", "instance of A_Out { k = \"1\"; some = { 5, \"x\" }; };"},
        TEmbeddedRow{"ArrayForOne", "instance of A_Out { k = \"1\"; one = { \"x\" }; };"},
        TEmbeddedRow{"NumberForOne", "instance of A_Out { k = \"1\"; one = 5; };"},
        TEmbeddedRow{"Key", "instance of A_Odd { k = \"rubbish\"; };"},
        TEmbeddedRow{"NoKey", "instance of A_Odd { };"}),
    [](const auto& row) { return row.param.name; });

TEST(MofInstanceTest, NamespacesAreSwitchedByPragma) {
  TClassRepository repository;
  LoadLines(
      repository,
      std::string(kClasses) +
          "instance of A_Node { Name = \"1\"; };\n"
          "#pragma namespace (\"//host/root/a\")\ninstance of A_Node { Name = \"2\"; };\n"
          "#pragma namespace (\"\\\\.\\root\\b\")\ninstance of A_Node { Name = \"3\"; };\n"
          "# pragma NAMESPACE (\"/root/c/\")\ninstance of A_Node { Name = \"4\"; };\n"
          "#pragma namespace (\"\\\\\\\\.\\\\root\\\\d\")\ninstance of A_Node { Name = \"5\"; };\n"
          "#pragma namespace (\"http://host:5988/root/e\")\n"
          "instance of A_Node { Name = \"6\"; };\n"
          "#pragma namespace (\"root//f/\")\ninstance of A_Node { Name = \"7\"; };\n"
          "#pragma namespace (\"//host\")\ninstance of A_Node { Name = \"8\"; };");
  TLines names;
  for (const TCIMInstanceData& instance : repository.GetInstances()) {
    names.push_back(instance.path.GetNamespaceName());
  }
  EXPECT_EQ(names, (TLines{"", "root/a", "root/b", "root/c", "root/d", "root/e", "root/f", ""}));
}

TEST(MofInstanceTest, InstancesOfUnknownClassesAreKeptWithGuessedTypes) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository,
                      "instance of PG_Provider { Name = \"p\"; Types = { 2, 5 }; On = TRUE; "
                      "Low = -1; Real = 1.5; };\ninstance of PG_Provider { Name = \"q\"; };"),
            TLines());
  EXPECT_EQ(Lines(repository.Check()),
            TLines{"t.mof:1:1: warning: class PG_Provider of the instance is not known; its "
                   "instances have no keys, and types are guessed from the values"});
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 2U);
  EXPECT_EQ(instances[0].path.GetClassName(), "PG_Provider");
  EXPECT_EQ(instances[0].Find("Types")->value.ToString(10), "2,5");
  EXPECT_EQ(instances[0].Find("On")->value, TCIMValue::Boolean(true));
  EXPECT_EQ(instances[0].Find("Low")->value.ToSigned(), -1);
}

TEST(MofInstanceTest, OfTwoWithTheSamePathTheLastOneHolds) {
  TClassRepository repository;
  LoadLines(repository,
            std::string(kClasses) +
                "instance of A_Node { Name = \"n\"; };\ninstance of A_Node { Name = \"n\"; };\n"
                "instance of A_Node { Name = \"n\"; Size = 5; };");
  EXPECT_EQ(Lines(repository.Check()),
            TLines{"t.mof:5:1: warning: an instance with the path A_Node.Name=\"n\" was declared "
                   "before; this one holds"});
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].Find("Size")->value, TCIMValue::UInt16(5));
}

struct TInstanceRow {
  const char* mof;
  const char* line;
};

void PrintTo(const TInstanceRow& row, std::ostream* out) {
  *out << row.mof;
}

class MofInstanceFaultTest : public ::testing::TestWithParam<TInstanceRow> {};

TEST_P(MofInstanceFaultTest, IsReportedAndTheInstanceLeftOut) {
  TClassRepository repository;
  const std::string good = "\ninstance of A_Node as $Good { Name = \"good\"; };";
  EXPECT_EQ(LoadLines(repository, kClasses + std::string(GetParam().mof) + good), TLines());
  EXPECT_EQ(Lines(repository.Check()), TLines{GetParam().line});
  const auto instances = repository.GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].Find("Name")->value, TCIMValue("good"));
}

INSTANTIATE_TEST_SUITE_P(
    Faults, MofInstanceFaultTest,
    ::testing::Values(
        TInstanceRow{"instance of A_Node { Name = \"n\"; Sise = 3; };",
                     "t.mof:3:34: class A_Node has no property Sise"},
        TInstanceRow{"instance of A_Node { Name = \"n\"; name = \"m\"; };",
                     "t.mof:3:34: property name is given twice"},
        TInstanceRow{"instance of A_Node { Size = 3; };",
                     "t.mof:3:1: the instance of A_Node has no value for its key Name"},
        TInstanceRow{"instance of A_Node { Name = \"n\"; Size = 70000; };",
                     "t.mof:3:41: property Size: 70000 is not a value of type uint16"},
        TInstanceRow{"instance of A_Node { Name = \"n\"; List = \"x\"; };",
                     "t.mof:3:41: property List: \"x\" is not a value of type uint8"},
        TInstanceRow{"instance of A_Node { Name = { \"n\" }; };",
                     "t.mof:3:29: property Name: expected one constant, found an array"},
        TInstanceRow{"instance of A_Link { From = $Nobody; To = $Good; };",
                     "t.mof:3:29: property From: alias $Nobody is not defined"},
        TInstanceRow{"instance of A_Node { Name = \"n\"; Inner = \"rubbish\"; };",
                     "t.mof:3:42: property Inner: embedded:1:1: expected a class, instance, "
                     "qualifier or pragma, found 'rubbish'"},
        TInstanceRow{"instance of A_Node { Name = \"n\"; Inner = \"class A_B { };\"; };",
                     "t.mof:3:42: property Inner: expected the MOF text of one instance"}));

TEST(MofInstanceTest, AliasesThatLeadToThemselvesAreReported) {
  TClassRepository repository;
  LoadLines(repository,
            "[Association] class A_Ring { [Key] A_Ring REF Next; };\n"
            "instance of A_Ring as $A { Next = $B; };\ninstance of A_Ring as $B { Next = $A; };");
  const TLines lines = Lines(repository.Check());
  ASSERT_FALSE(lines.empty());
  EXPECT_NE(lines[0].find("leads through too many others, or to itself"), std::string::npos);
  EXPECT_TRUE(repository.GetInstances().empty());
}

TEST(MofInstanceTest, ASecondAliasOfTheSameNameIsReported) {
  TClassRepository repository;
  LoadLines(repository, std::string(kClasses) +
                            "instance of A_Node as $A { Name = \"1\"; };\n"
                            "instance of A_Node as $a { Name = \"2\"; };");
  EXPECT_EQ(Lines(repository.Check()),
            TLines{"t.mof:4:1: alias $a is defined twice; the first one holds"});
}

}  // namespace
