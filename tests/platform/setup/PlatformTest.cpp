// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/TOSSpecific.h"
#include "platform/contract/TQELException.h"
#include "platform/contract/TRootObject.h"
#include "platform/setup/TPlatform.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class TKeepingLogger : public ILogger {
 public:
  void Log(EQELLogSeverity /*severity*/, const std::string& text) override {
    lines.push_back(text);
  }
  std::vector<std::string> lines;
};

class PlatformTest : public ::testing::Test {
 protected:
  PlatformTest() {
    m_root.Write("schema/base.mof", "class A_Base { [Key] string InstanceID; };\n");
    m_options.root = m_root.GetPath();
    TRootObject::SetCoreLogger(&m_logger);
  }
  ~PlatformTest() override { TRootObject::SetCoreLogger(nullptr); }

  TTemporaryFolder m_root;
  TPlatformOptions m_options;
  TKeepingLogger m_logger;
};

TEST_F(PlatformTest, RefusesARootThatIsNotThereAndLeavesTheProcessAsItWas) {
  const std::string before = TOSSpecific::GetQELRootPath();
  m_options.root = "/no/such/root";
  EXPECT_THROW(TPlatform{m_options}, TQELException);
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), before);
}

TEST_F(PlatformTest, TellsWhereTestsAreRegistered) {
  m_root.Write("schema/uses.mof",
               "class CIM_AvailableDiagnosticService { [Key] string InstanceID; };\n"
               "class A_Uses : CIM_AvailableDiagnosticService { };\n");
  m_root.Write("providers/a/a.registration",
               "A_Uses root/cimv2 A a instance\nA_Uses root/a A a association\n"
               "A_Uses root/b A a method\nA_Base root/c A a instance\n"
               "CIM_AvailableDiagnosticService root/a A a instance\n");
  const TTestPlaces places = TPlatform(m_options).GetTestPlaces();
  EXPECT_THAT(places.classes, ElementsAre("A_Uses"));
  EXPECT_THAT(places.otherNamespaces, ElementsAre("root/a"));
  m_options.nameSpace = "root/d";
  EXPECT_THAT(TPlatform(m_options).GetTestPlaces().classes, IsEmpty());
}

TEST_F(PlatformTest, SetsTheRootForTheProcessAndTakesItBack) {
  const std::string before = TOSSpecific::GetQELRootPath();
  {
    m_options.isOEMBuild = true;
    const TPlatform platform(m_options);
    EXPECT_EQ(TOSSpecific::GetQELRootPath(), m_root.GetPath());
    EXPECT_TRUE(TOSSpecific::isOEMBuild());
  }
  EXPECT_EQ(TOSSpecific::GetQELRootPath(), before);
  EXPECT_FALSE(TOSSpecific::isOEMBuild());
}

TEST_F(PlatformTest, ReportsEachFaultyFileOnceAndGoesOn) {
  const std::string mof = m_root.Write("schema/faulty.mof", "class { };\n");
  m_root.Write("providers/acme/acme.registration",
               "A_Base root/cimv2 Acme nosuchlibrary instance\nhalf a line\n");
  TPlatform platform(m_options);
  const std::vector<std::string>& first = platform.GetProblems();
  const std::vector<std::string> problems(first.begin(), first.end());
  EXPECT_THAT(problems, Contains(HasSubstr(mof)));
  EXPECT_THAT(problems, Contains(HasSubstr("acme.registration:2")));
  EXPECT_THAT(problems, Contains(HasSubstr("nosuchlibrary")));
  EXPECT_EQ(platform.GetProblems(), problems);
  for (const std::string& problem : problems) {
    EXPECT_EQ(std::count(m_logger.lines.begin(), m_logger.lines.end(), problem), 1) << problem;
  }
}

TEST_F(PlatformTest, FindsClassesInTheConfiguredContextsOnly) {
  TPlatform platform(m_options);
  const auto ns = platform.GetNamespace();
  EXPECT_EQ(ns->FindClass("A_Base", {})->GetName({}), "A_Base");
  EXPECT_EQ(ns->FindClass("a_base", {{"nspID", "cmpi"}})->GetName({}), "A_Base");
  EXPECT_THAT(ns->FindClass("A_Base", {{"nspID", "plugin"}}), ::testing::NotNull());
  try {
    ns->FindClass("A_Base", {{"nspID", "pegasus"}});
    FAIL() << "was found";
  } catch (const TQELException& e) {
    EXPECT_THAT(e.what(), HasSubstr("pegasus"));
  }
}

TEST_F(PlatformTest, HasNothingToKillAndNothingUnofferedWithoutProviders) {
  TPlatform platform(m_options);
  EXPECT_EQ(platform.KillRunningJobs(), 0U);
  EXPECT_THAT(platform.GetUnofferedTests(), IsEmpty());
  EXPECT_THAT(platform.TakeRecords(), IsEmpty());
}

TEST_F(PlatformTest, SaysThatThereIsNoProvider) {
  const TPlatform platform(m_options);
  EXPECT_THAT(platform.GetProblems(), ElementsAre(HasSubstr("holds no provider")));
}

}  // namespace
}  // namespace NZEPQEL20
