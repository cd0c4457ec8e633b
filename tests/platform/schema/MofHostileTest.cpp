// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <fstream>
#include <iterator>

#include "platform/schema/TMofLexer.h"
#include "platform/schema/TMofParser.h"
#include "platform/schema/TMofProblems.h"
#include "tests/platform/schema/SchemaSupport.h"

namespace {

using namespace schematest;
using namespace NZEPQEL20;

constexpr const char* kEverything =
    "Qualifier Mine : string[] = { \"a\", \"b\" }, Scope(class, any), Flavor(Restricted);\n"
    "#pragma namespace (\"root/x\")\n"
    "[Abstract, Mine] class A_A { [Key, MaxLen(4)] string k = \"\\x41B\"; /* c */ };\n"
    "[Association] class A_B : A_A { A_A REF r; uint8 n[3] = { 1, -0x0, 0b };\n"
    "uint32 M([In(false), Out] A_A REF o[], [ValueMap{\"1\"}, Values{\"x\"}] uint8 v); };\n"
    "instance of A_B as $X { k = \"v\" \"w\"; r = $X; n = { }; };\n";

TEST(MofHostileTest, ATextCutAnywhereIsReportedAndReadUpToThere) {
  const std::string whole = kEverything;
  std::size_t classes = 0;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    TClassRepository repository;
    LoadLines(repository, whole.substr(0, length));
    repository.Check();
    repository.GetInstances();
    EXPECT_GE(repository.GetCount(), classes) << length;
    classes = std::max(classes, repository.GetCount());
  }
  EXPECT_EQ(classes, 2U);
}

TEST(MofHostileTest, ATextCutInsideADeclarationHasAnError) {
  const std::string whole = "[Key] class A_A { [Key] uint8 p = 1; };";
  for (std::size_t length = 1; length + 2 < whole.size(); ++length) {
    TClassRepository repository;
    const std::vector<TMofError> errors = repository.LoadText(whole.substr(0, length), "t.mof");
    ASSERT_FALSE(errors.empty()) << length;
    EXPECT_FALSE(errors.back().isWarning);
    EXPECT_EQ(repository.GetCount(), 0U);
  }
}

TEST(MofHostileTest, StrayBytesAnywhereAreSurvived) {
  const std::string whole = kEverything;
  for (std::size_t i = 0; i < whole.size(); i += 4) {
    for (const char c : {'\0', '"', '}', ';', '\xFF'}) {
      std::string text = whole;
      text[i] = c;
      TClassRepository repository;
      LoadLines(repository, text);
      repository.Check();
      repository.GetInstances();
      for (const std::string& name : repository.GetSubclasses("", true)) {
        EXPECT_NE(repository.Find(name), nullptr);
      }
    }
  }
}

TEST(MofHostileTest, AFloodOfErrorsEndsTheFile) {
  std::string inClass = "class A_A { ";
  std::string outside;
  for (int i = 0; i < 5000; ++i) {
    inClass += "x; ";
    outside += "x; ";
  }
  for (const std::string& text : {inClass, outside}) {
    TClassRepository repository;
    const TLines lines = LoadLines(repository, text);
    EXPECT_EQ(lines.size(), 1001U);
    EXPECT_NE(lines.back().find("too many errors"), std::string::npos);
  }
}

TEST(MofHostileTest, AFloodOfOpenQualifiersInWhatIsSkippedIsPassedOver) {
  std::string text = "class { ";
  for (int i = 0; i < 5000; ++i) {
    text += "[a ";
  }
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, text + "\n[Version(\"1\")] class A_B { };").size(), 1U);
  // At some time nothing is expected of what stands in brackets any more.
  ASSERT_NE(repository.Find("A_B"), nullptr);
  EXPECT_TRUE(repository.Find("A_B")->qualifiers.empty());
}

TEST(MofHostileTest, AFloodOfWarningsIsCounted) {
  std::string text;
  for (int i = 0; i < 6000; ++i) {
    text += "class A_" + std::to_string(i) + " { }\n";
  }
  TClassRepository repository;
  const TLines lines = LoadLines(repository, text);
  EXPECT_EQ(lines.size(), 5001U);
  EXPECT_EQ(lines.back(), "t.mof: warning: further problems not listed: 1000");
  EXPECT_EQ(repository.GetCount(), 6000U);
}

TEST(MofHostileTest, AnErrorBehindAFloodOfWarningsHasItsPlace) {
  std::string text;
  for (int i = 0; i < 6000; ++i) {
    text += "class A_" + std::to_string(i) + " { }\n";
  }
  TClassRepository repository;
  const TLines lines = LoadLines(repository, text + "class A_B { uint8 p = ; };");
  ASSERT_EQ(lines.size(), 5002U);
  EXPECT_EQ(lines[5000], "t.mof:6001:23: expected a constant, found ';'");
  EXPECT_EQ(lines[5001], "t.mof: warning: further problems not listed: 1000");
}

TEST(MofHostileTest, ThatErrorsAreNotListedIsAnError) {
  // Those of one file are bounded, those of all that are taken together are not.
  NZEPQEL20::TMofProblems problems;
  for (std::size_t i = 0; i < NZEPQEL20::TMofProblems::kMaxKept + 2; ++i) {
    problems.AddError("t.mof", {1, 1}, "x");
  }
  const TLines lines = Lines(problems.Take());
  ASSERT_EQ(lines.size(), NZEPQEL20::TMofProblems::kMaxKept + 1);
  EXPECT_EQ(lines.back(), "t.mof: further problems not listed: 2");
  EXPECT_TRUE(problems.Take().empty());
}

TEST(MofHostileTest, WhatOneElementMayHoldIsBounded) {
  std::string qualifiers = "[Key";
  std::string parameters = "uint8 p";
  std::string features;
  std::string values;
  for (int i = 0; i < 1100; ++i) {
    const std::string number = std::to_string(i);
    qualifiers += ", Q" + number;
    parameters += ", uint8 p" + number;
    features += "uint8 p" + number + "; ";
    values += "p" + number + " = 1; ";
  }
  TClassRepository repository;
  LoadLines(repository, qualifiers + "] class A_A { };class A_B { uint8 f(" + parameters +
                            "); };class A_C { " + features + " };instance of A_C { " + values +
                            " };");
  EXPECT_EQ(repository.Find("A_A")->qualifiers.size(), 0U);
  EXPECT_EQ(repository.Find("A_B")->methods.size(), 0U);
  EXPECT_EQ(repository.Find("A_C")->properties.size(), 1024U);
  EXPECT_EQ(repository.GetInstances().size(), 0U);
}

TEST(MofHostileTest, EmbeddedInstancesNestOnlySoDeep) {
  std::string inner = "instance of A_N { };";
  for (int i = 0; i < 6; ++i) {
    std::string escaped;
    for (const char c : inner) {
      escaped += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    inner = "instance of A_N { i = \"" + escaped + "\"; };";
  }
  TClassRepository repository;
  EXPECT_EQ(LoadLines(repository, "class A_N { [EmbeddedObject] string i; };\n" + inner), TLines());
  const TLines lines = Lines(repository.Check());
  ASSERT_FALSE(lines.empty());
  EXPECT_NE(lines[0].find("lie too deep"), std::string::npos);
}

/// Counts what a parser hands over and asks for.
class TCountingSink : public IMofSink {
 public:
  void OnQualifier(const std::string& /*f*/, TMofQualifierDeclaration&& /*q*/) override {}
  void OnClass(const std::string& /*f*/, TMofClass&& /*c*/) override { ++classes; }
  void OnInstance(const std::string& /*f*/, TMofInstance&& /*i*/) override {}
  void OnInclude(const std::string& /*f*/, TMofPosition /*p*/, const std::string& /*i*/) override {}
  void OnNamespace(const std::string& /*n*/) override {}
  bool Reserve(std::size_t count) override { return (pieces += count) <= limit; }

  std::size_t classes = 0;
  std::size_t pieces = 0;
  std::size_t limit = 10'000'000;
};

std::string MakeSchema(int count) {
  std::string mof;
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    mof += "   [Version ( \"2.6.0\" ), Description ( \"Class \" \n \"number " + number + ".\" )]\n";
    mof += "class G_" + number + (i == 0 ? "" : " : G_" + std::to_string(i / 4)) + " {\n";
    for (int p = 0; p < 5; ++p) {
      mof +=
          "   [Description ( \"A property.\" ), ValueMap { \"0\", \"1\", \"..\" },\n"
          "    Values { \"Unknown\", \"Other\", \"Reserved\" }]\n   uint16 p" +
          number + "_" + std::to_string(p) + ";\n";
    }
    mof += "   uint32 Run([IN] string a, [IN ( false ), OUT] uint16 b);\n};\n";
  }
  return mof;
}

std::size_t CountPieces(int classCount) {
  const TMofSource source = TMofSource::FromText("g.mof", MakeSchema(classCount));
  TCountingSink sink;
  TMofProblems problems;
  TMofParser(source, sink, problems).Parse();
  EXPECT_EQ(problems.Take().size(), 0U);
  EXPECT_EQ(sink.classes, static_cast<std::size_t>(classCount));
  return sink.pieces;
}

TEST(MofHostileTest, WorkGrowsInProportionToTheSchema) {
  EXPECT_EQ(CountPieces(850), 17 * CountPieces(50));
}

TEST(MofHostileTest, AFullSizedSchemaLoadsWhole) {
  TClassRepository repository;
  EXPECT_EQ(Lines(repository.LoadText(MakeSchema(1700), "g.mof")), TLines());
  EXPECT_EQ(Lines(repository.Check()), TLines());
  EXPECT_EQ(repository.GetCount(), 1700U);
  EXPECT_EQ(repository.GetSubclasses("G_0", true).size(), 1699U);
  // 1699, 424, 106, 26, 6, 1, 0: seven classes of five properties.
  EXPECT_EQ(repository.Find("G_1699")->properties.size(), 35U);
}

TEST(MofHostileTest, AParserStopsWhenItsSinkTakesNoMore) {
  const TMofSource source = TMofSource::FromText("g.mof", MakeSchema(100));
  TCountingSink sink;
  sink.limit = 500;
  TMofProblems problems;
  TMofParser(source, sink, problems).Parse();
  const std::vector<TMofError> errors = problems.Take();
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_EQ(errors[0].text, "more declarations than can be held; the rest is not read");
  EXPECT_LT(sink.classes, 100U);
}

}  // namespace
