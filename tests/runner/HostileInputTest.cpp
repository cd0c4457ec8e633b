// SPDX-License-Identifier: Apache-2.0
#include <functional>

#include "tests/support/TRunnerTest.h"

namespace scripted {
namespace {

using NZEPQEL20::ECIMType;
using NZEPQEL20::TCIMReference;
using NZEPQEL20::TCIMValue;
using ::testing::AnyOf;

const char kNoMatch[] = "No matching diagnostic test or device found.\n";

/// Identifiers that no test has.
class HostileIdentifierTest : public TRunnerTest,
                              public ::testing::WithParamInterface<std::string> {};

TEST_P(HostileIdentifierTest, IsAnsweredWithTheTextForNothing) {
  m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  const std::string& testID = GetParam();
  EXPECT_EQ(runner.Execute(testID, testID, m_host), kNoMatch);
  EXPECT_EQ(runner.ImmediateResults(testID, m_host), "No Results.\n");
  EXPECT_EQ(runner.ExtendedResults(testID, m_host), "testID is not found in m_diagNS.\n");
  EXPECT_EQ(runner.SimpleResults(testID, m_host), "");
  EXPECT_EQ(Count("invoke"), 0U);
  EXPECT_EQ(Count("system"), 0U);
}

INSTANTIATE_TEST_SUITE_P(Texts, HostileIdentifierTest,
                         ::testing::Values("", ",", ",,", "Quick", "Quick,dev0", "quick,dev0,x",
                                           "Quick,dev0,Device Zero ", "%s%n,%s,%s",
                                           "\xff\xfe,\x80,\xc3\x28",
                                           std::string("Quick,dev0,Device Zero\0x", 24),
                                           std::string(100000, ','), std::string(100000, 'x')));

class HostileHostTest : public TRunnerTest {};

TEST_F(HostileHostTest, ARunnerWithoutANamespaceFindsNothingAndDoesNotCrash) {
  DiagsRunner* runner = DiagsRunner::GetDiagsRunner(TNamespacePtr());
  EXPECT_EQ(runner->EnumerateDiagTests(""), kNoMatch);
  EXPECT_EQ(runner->Execute("a,b,c", "", m_host), kNoMatch);
}

TEST_F(HostileHostTest, ARunIntoNoNamespaceHasNoResults) {
  const TTest test = m_world.AddRunningTest("Quick", "OK");
  DiagsRunner& runner = StartAndEnumerate();
  TNamespacePtr nowhere;
  EXPECT_EQ(runner.Execute(test.identifier, "", nowhere), "No Results.\n");
  EXPECT_EQ(Logs().back(), "DiagsRunner::ImmediateResults caught Exception");
}

/// A property of one of the objects of a run.
struct TTarget {
  const char* object;
  const char* property;
};

std::ostream& operator<<(std::ostream& out, const TTarget& target) {
  return out << target.object << "." << target.property;
}

struct TWrongValue {
  const char* name;
  std::function<void(TScriptedObject&, const std::string&)> put;
};

std::ostream& operator<<(std::ostream& out, const TWrongValue& value) {
  return out << value.name;
}

using TParameter = std::tuple<TTarget, TWrongValue>;

class WrongValueTest : public TRunnerTest, public ::testing::WithParamInterface<TParameter> {
 protected:
  TObjectPtr FindTarget(const TTest& test, const std::string& object) const {
    if (object == "association") {
      return test.association;
    }
    if (object == "service") {
      return test.service;
    }
    if (object == "device") {
      return test.device;
    }
    const bool isJob = object == "job";
    const TCIMReference path(kNamespaceText, isJob ? "Test_Job" : "Test_Record",
                             {{isJob ? "InstanceID" : "Id",
                               TCIMValue((isJob ? "job of " + test.identifier : "of BRCM"))}});
    return m_world.Find(path);
  }
};

TEST_P(WrongValueTest, NeitherCrashesNorHangsNorEndsTheRunner) {
  const TTest test = m_world.AddRunningTest("BRCM", "OK");
  const TTest sound = m_world.AddTest("Sound", "d", "e");
  const TObjectPtr target = FindTarget(test, std::get<0>(GetParam()).object);
  ASSERT_TRUE(target);
  DiagsRunner& runner = StartAndEnumerate();
  std::get<1>(GetParam()).put(*target, std::get<0>(GetParam()).property);
  std::string answer = "(none)";
  ASSERT_NO_THROW(answer = Run(runner, test.identifier));
  EXPECT_THAT(answer, AnyOf("Pass", "Fail", "No Results.\n", "No Status\n", "", kNoMatch,
                            std::string(" ") + kNoMatch));
  EXPECT_EQ(Count("budget"), 0U);
  End();
  std::string list;
  ASSERT_NO_THROW(list = Start().EnumerateDiagTests(""));
  EXPECT_THAT(list, ::testing::HasSubstr(sound.identifier + "|"));
}

INSTANTIATE_TEST_SUITE_P(
    Properties, WrongValueTest,
    ::testing::Combine(
        ::testing::Values(TTarget{"association", "ServiceProvided"},
                          TTarget{"association", "UserOfService"},
                          TTarget{"association", "EstimatedDurationOfService"},
                          TTarget{"service", "Name"}, TTarget{"service", "CreationClassName"},
                          TTarget{"service", "Characteristics"}, TTarget{"device", "DeviceID"},
                          TTarget{"device", "ElementName"}, TTarget{"job", "PercentComplete"},
                          TTarget{"job", "InstanceID"}, TTarget{"record", "ServiceName"},
                          TTarget{"record", "ManagedElementName"}, TTarget{"record", "InstanceID"},
                          TTarget{"record", "CompletionState"}, TTarget{"record", "RecordData"}),
        ::testing::Values(TWrongValue{"missing",
                                      [](TScriptedObject& object, const std::string& name) {
                                        object.Remove(name);
                                      }},
                          TWrongValue{
                              "NULL",
                              [](TScriptedObject& object, const std::string& name) {
                                object.Set(name, TCIMValue());
                              }},
                          TWrongValue{"text",
                                      [](TScriptedObject& object,
                                         const std::string& name) { object.Set(name, "text"); }},
                          TWrongValue{"bytes that are no text",
                                      [](TScriptedObject& object, const std::string& name) {
                                        object.Set(name, "\xff\xc3(\x80");
                                      }},
                          TWrongValue{"huge number",
                                      [](TScriptedObject& object, const std::string& name) {
                                        object.Set(name,
                                                   TCIMValue::Unsigned(ECIMType::kUInt64, ~0ULL));
                                      }},
                          TWrongValue{"boolean",
                                      [](TScriptedObject& object, const std::string& name) {
                                        object.Set(name, TCIMValue::Boolean(true));
                                      }},
                          TWrongValue{"array",
                                      [](TScriptedObject& object, const std::string& name) {
                                        object.Set(name,
                                                   TCIMValue::Array(ECIMType::kString, {"a", "b"}));
                                      }},
                          TWrongValue{"path to nowhere",
                                      [](TScriptedObject& object, const std::string& name) {
                                        object.Set(name, TCIMReference("root/none", "No_Class"));
                                      }})));

}  // namespace
}  // namespace scripted
