// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;

TLines GetPropertyNames(const TCIMClassDeclaration& declaration) {
  TLines names;
  for (const auto& property : declaration.properties) {
    names.push_back(property.name);
  }
  return names;
}

TEST(ClassInheritanceTest, PropertiesOfTheRootComeFirstAndOverridesKeepTheirPlace) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository,
                "class A_C : A_B { uint8 e; [Override(\"a\")] uint8 A = 7; uint8 M(uint8 x); };\n"
                "class A_B : A_A { uint8 c; uint8 N(); };\n"
                "class A_A { [Key] uint8 k; uint8 a = 5; uint8 b = 6; uint8 M(); };"),
      TLines());
  EXPECT_EQ(Lines(repository.Check()), TLines());
  const auto declaration = repository.Find("a_c");
  ASSERT_NE(declaration, nullptr);
  EXPECT_EQ(declaration->name, "A_C");
  EXPECT_EQ(declaration->superclass, "A_B");
  EXPECT_EQ(GetPropertyNames(*declaration), (TLines{"k", "A", "b", "c", "e"}));
  EXPECT_EQ(declaration->FindProperty("a")->defaultValue.ToString(10), "7");
  EXPECT_EQ(declaration->FindProperty("b")->defaultValue.ToString(10), "6");
  EXPECT_EQ(declaration->FindProperty("a")->classOrigin, "A_A");
  EXPECT_EQ(declaration->FindProperty("e")->classOrigin, "A_C");
  EXPECT_TRUE(declaration->FindProperty("k")->isKey);
  ASSERT_EQ(declaration->methods.size(), 2U);
  EXPECT_EQ(declaration->methods[0].name, "M");
  EXPECT_EQ(declaration->methods[0].parameters.size(), 1U);
}

TEST(ClassInheritanceTest, QualifiersFlowDownUnlessRestrictedOrRestated) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(
          repository,
          "[Abstract, Association, Version(\"1\"), Description(\"A\"), UMLPackagePath(\"x\")]\n"
          "class A_A { [Key, Description(\"k\"), Deprecated{\"no\"}, MaxLen(5)] string k = \"d\";"
          " [ValueMap{\"0\",\"1\"}, Values{\"no\",\"yes\"}] uint8 v; };\n"
          "[Description(\"B\")] class A_B : A_A { [Override(\"k\"), Description(\"b\")] string k;"
          " [Override(\"v\"), Values{\"nein\",\"ja\"}] uint8 v; };"),
      TLines());
  const auto declaration = repository.Find("A_B");
  EXPECT_FALSE(declaration->isAbstract);
  EXPECT_TRUE(declaration->isAssociation);
  EXPECT_EQ(FindValue(declaration->qualifiers, "Version"), nullptr);
  EXPECT_EQ(*FindValue(declaration->qualifiers, "Description"), TCIMValue("B"));
  EXPECT_EQ(*FindValue(declaration->qualifiers, "UMLPackagePath"), TCIMValue("x"));
  const auto* key = declaration->FindProperty("k");
  EXPECT_TRUE(key->isKey);
  EXPECT_EQ(*FindValue(key->qualifiers, "Description"), TCIMValue("b"));
  EXPECT_EQ(*FindValue(key->qualifiers, "MaxLen"), TCIMValue::UInt32(5));
  EXPECT_EQ(FindValue(key->qualifiers, "Deprecated"), nullptr);
  EXPECT_EQ(key->defaultValue, TCIMValue("d"));
  EXPECT_EQ(declaration->FindProperty("v")->valueMap, (TLines{"0", "1"}));
  EXPECT_EQ(declaration->FindProperty("v")->values, (TLines{"nein", "ja"}));
  EXPECT_TRUE(repository.Find("A_A")->isAbstract);
}

TEST(ClassInheritanceTest, EmbeddedInstancesAndDirectionsOfParameters) {
  TClassRepository repository;
  EXPECT_EQ(
      LoadLines(repository,
                "class A_A { [EmbeddedInstance(\"A_A\")] string i; [EmbeddedObject] string o[]; "
                "[EmbeddedObject(false)] string s;\n"
                "uint8 M(uint8 a, [In] uint8 b, [Out] uint8 c, [In(false), Out] uint8 d, "
                "[In, EmbeddedInstance(\"A_A\")] string e); };"),
      TLines());
  const auto declaration = repository.Find("A_A");
  EXPECT_EQ(declaration->properties[0].type, ECIMType::kInstance);
  EXPECT_EQ(declaration->properties[0].defaultValue, TCIMValue::Null(ECIMType::kInstance));
  EXPECT_EQ(declaration->properties[1].type, ECIMType::kInstance);
  EXPECT_TRUE(declaration->properties[1].isArray);
  EXPECT_EQ(declaration->properties[2].type, ECIMType::kString);
  const auto& parameters = declaration->methods.at(0).parameters;
  const std::vector<std::pair<bool, bool>> expected = {
      {true, false}, {true, false}, {true, true}, {false, true}, {true, false}};
  ASSERT_EQ(parameters.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(std::make_pair(parameters[i].isIn, parameters[i].isOut), expected[i]) << i;
  }
  EXPECT_EQ(parameters[4].type, ECIMType::kInstance);
}

TEST(ClassInheritanceTest, TheTreeIsKnownByName) {
  TClassRepository repository;
  LoadLines(repository,
            "class A_A { }; class A_C : A_B { }; class A_B : A_A { }; class A_D : A_A { }; "
            "class V_X : CIM_Missing { };");
  EXPECT_TRUE(repository.IsA("a_c", "A_a"));
  EXPECT_TRUE(repository.IsA("A_C", "A_C"));
  EXPECT_FALSE(repository.IsA("A_A", "A_C"));
  EXPECT_TRUE(repository.IsA("V_X", "CIM_Missing"));
  EXPECT_FALSE(repository.IsA("Unknown", "A_A"));
  EXPECT_EQ(repository.GetSubclasses("a_a", false), (TLines{"A_B", "A_D"}));
  EXPECT_EQ(repository.GetSubclasses("A_A", true), (TLines{"A_B", "A_C", "A_D"}));
  EXPECT_EQ(repository.GetSubclasses("", false), (TLines{"A_A", "V_X"}));
  EXPECT_EQ(repository.GetSubclasses("", true), (TLines{"A_A", "A_B", "A_C", "A_D", "V_X"}));
  EXPECT_EQ(repository.GetSubclasses("CIM_Missing", true), TLines{"V_X"});
  EXPECT_EQ(repository.GetSubclasses("A_D", true), TLines());
  EXPECT_EQ(repository.Find("CIM_Missing"), nullptr);
}

TEST(ClassInheritanceTest, AMissingSuperclassIsReportedOnceAndTheClassStays) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, "class V_X : CIM_Missing { uint8 p; };"), TLines());
  EXPECT_EQ(Lines(repository.Check()),
            TLines{"t.mof:1:7: warning: superclass CIM_Missing of class V_X is not known; what "
                   "they would inherit is lacking"});
  EXPECT_EQ(Lines(repository.Check()), TLines());
  EXPECT_EQ(GetPropertyNames(*repository.Find("V_X")), TLines{"p"});
  LoadLines(repository, "class CIM_Missing { uint8 q; };");
  EXPECT_EQ(GetPropertyNames(*repository.Find("V_X")), (TLines{"q", "p"}));
}

TEST(ClassInheritanceTest, CirclesAndEndlessChainsAreReported) {
  TClassRepository repository;
  std::string chain = "class A_0 { uint8 p0; };";
  for (int i = 1; i < 80; ++i) {
    chain += "class A_" + std::to_string(i) + " : A_" + std::to_string(i - 1) + " { uint8 p" +
             std::to_string(i) + "; };";
  }
  LoadLines(repository,
            "class B_A : B_B { uint8 a; };\nclass B_B : B_A { };\nclass B_C : B_B { };");
  repository.LoadText(chain, "chain.mof");
  const TLines lines = Lines(repository.Check());
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_NE(lines[0].find("class A_64 has more than 63 superclasses"), std::string::npos);
  EXPECT_EQ(lines[1], "t.mof:1:7: the superclasses of class B_A form a loop");
  EXPECT_EQ(lines[3], "t.mof:3:7: the superclasses of class B_C form a loop");
  EXPECT_EQ(repository.Find("A_79")->properties.size(), 64U);
  EXPECT_EQ(repository.Find("B_C")->properties.size(), 1U);
  EXPECT_TRUE(repository.IsA("B_A", "B_B"));
  EXPECT_FALSE(repository.IsA("B_A", "B_C"));
  EXPECT_EQ(repository.GetSubclasses("B_A", true), (TLines{"B_B", "B_A", "B_C"}));
}

struct TCheckRow {
  const char* mof;
  const char* line;
};

void PrintTo(const TCheckRow& row, std::ostream* out) {
  *out << row.mof;
}

class SchemaCheckTest : public ::testing::TestWithParam<TCheckRow> {};

TEST_P(SchemaCheckTest, IsReportedWhenEverythingIsLoaded) {
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, GetParam().mof), TLines());
  const std::string line = GetParam().line;
  EXPECT_EQ(Lines(repository.Check()), line.empty() ? TLines() : TLines{line});
}

INSTANTIATE_TEST_SUITE_P(
    Rules, SchemaCheckTest,
    ::testing::Values(
        TCheckRow{"class A_A { uint8 p; };\nclass A_B : A_A { string p; };",
                  "t.mof:2:26: property p of class A_B is string, but uint8 where it comes from"},
        TCheckRow{"class A_A { uint8 p; };\nclass A_B : A_A { uint8 p[]; };",
                  "t.mof:2:25: property p of class A_B is uint8[], but uint8 where it comes from"},
        TCheckRow{"class A_A { [Key] uint8 p; };\nclass A_B : A_A { [Key] uint8 q; };",
                  "t.mof:2:31: warning: class A_B adds the key q to those of its superclasses"},
        TCheckRow{"class A_A { [Key] uint8 p; };\nclass A_B : A_A { [Key] uint8 p; };", ""},
        TCheckRow{"class A_A { uint8 p; };\nclass A_B : A_A { [Key] uint8 p; };", ""},
        TCheckRow{
            "class A_A { [Key] uint8 p; };\nclass A_B : A_A { [Key(false)] uint8 p; };",
            "t.mof:2:38: warning: qualifier Key of property p of class A_B cannot be changed; "
            "the inherited value holds"},
        TCheckRow{"class A_A { A_A REF r; };",
                  "t.mof:1:21: warning: reference r in class A_A, which is not an association"},
        TCheckRow{"[Indication] class A_A { A_A REF r; };", ""},
        TCheckRow{"[Association] class A_A { A_A REF r; };\nclass A_B : A_A { A_B REF r; };", ""},
        TCheckRow{
            "[Association] class A_A { A_A REF r; };\nclass A_X { };\nclass A_B : A_A { A_X REF "
            "r; };",
            "t.mof:3:27: warning: property r of class A_B refers to A_X, which is not a A_A"}));

TEST(ClassRepositoryTest, RedefinitionsAreSilentWhenTheySayTheSame) {
  TClassRepository repository;
  const std::string mof = "[Version(\"1\")] class A_A { [Key] uint8 p = 3; uint8 M(uint8 x); };";
  EXPECT_EQ(LoadLines(repository, mof), TLines());
  EXPECT_EQ(Lines(repository.LoadText("\n\n" + mof, "u.mof")), TLines());
  EXPECT_EQ(repository.Find("A_A")->properties.size(), 1U);
  EXPECT_EQ(Lines(repository.LoadText("class A_X { };\nclass a_a : A_X { uint8 q; };", "v.mof")),
            TLines());
  EXPECT_EQ(
      Lines(repository.Check()),
      TLines{"v.mof:2:7: warning: class a_a differs from its declaration at t.mof:1; this one "
             "holds"});
  EXPECT_EQ(GetPropertyNames(*repository.Find("A_A")), TLines{"q"});
  EXPECT_EQ(repository.GetSubclasses("", true), (TLines{"A_X", "a_a"}));
  EXPECT_EQ(repository.GetCount(), 2U);
}

TEST(ClassRepositoryTest, ASecondVersionOfASchemaIsOneWarning) {
  TClassRepository repository;
  repository.LoadText("class A_A { };\nclass A_B { };\nclass A_C { };", "old.mof");
  repository.LoadText("class A_A { uint8 p; };\nclass A_B { uint8 p; };\nclass A_C { uint8 p; };",
                      "new.mof");
  EXPECT_EQ(Lines(repository.Check()),
            TLines{"new.mof:1:7: warning: class A_A differs from its declaration at old.mof:1; "
                   "this one holds, and so do later declarations of 2 more classes"});
  EXPECT_EQ(Lines(repository.Check()), TLines());
  EXPECT_EQ(GetPropertyNames(*repository.Find("A_B")), TLines{"p"});
  EXPECT_EQ(repository.GetSubclasses("", true), (TLines{"A_A", "A_B", "A_C"}));
}

TEST(ClassInheritanceTest, ClassesOfOneMissingSuperclassAreOneWarning) {
  TClassRepository repository;
  LoadLines(repository,
            "class V_A : CIM_Gone { };\nclass V_B : cim_gone { };\nclass V_C : V_A { };");
  EXPECT_EQ(Lines(repository.Check()),
            TLines{"t.mof:1:7: warning: superclass CIM_Gone of class V_A and 1 more is not known; "
                   "what they would inherit is lacking"});
  EXPECT_TRUE(repository.IsA("V_C", "CIM_Gone"));
}

TEST(ClassRepositoryTest, AnswersSeveralThreadsAtOnce) {
  TClassRepository repository;
  std::string mof = "class A_0 { [Key] uint8 k; };";
  for (int i = 1; i < 200; ++i) {
    mof += "class A_" + std::to_string(i) + " : A_" + std::to_string(i / 8) + " { string p" +
           std::to_string(i) + "; };";
  }
  mof += "instance of A_5 { k = 1; };";
  ASSERT_EQ(LoadLines(repository, mof), TLines());
  const auto ask = [&repository](int& good) {
    for (int i = 0; i < 200; ++i) {
      const std::string name = "A_" + std::to_string(i);
      const auto declaration = repository.Find(name);
      good += declaration != nullptr && declaration->FindProperty("k")->isKey &&
                      repository.IsA(name, "A_0") && repository.GetInstances().size() == 1
                  ? 1
                  : 0;
    }
    good += repository.GetSubclasses("A_0", true).size() == 199 ? 1 : 0;
  };
  std::vector<int> good(4, 0);
  std::vector<std::thread> threads;
  for (int& count : good) {
    threads.emplace_back(ask, std::ref(count));
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(good, std::vector<int>(4, 201));
}

}  // namespace
