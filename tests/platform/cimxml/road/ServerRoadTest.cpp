// SPDX-License-Identifier: Apache-2.0
// The runner over the whole platform, with a CIM server at the far end of a real socket.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <map>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/ICIMInstance.h"
#include "platform/contract/ICIMProperty.h"
#include "platform/contract/TCMPIInstance.h"
#include "platform/contract/TQELException.h"
#include "platform/setup/ProviderSetup.h"
#include "platform/setup/TPlatform.h"
#include "tests/support/FakeOperations.h"
#include "tests/support/TDiagsRunnerTestAccess.h"
#include "tests/support/cimserver/TCimServer.h"

// The runner pauses between its looks at a job; here nobody has to wait for one.
extern "C" __attribute__((visibility("default"))) unsigned int sleep(unsigned int /*seconds*/) {
  return 0;
}

namespace cimserver {
namespace {

using namespace NZEPQEL20;
using TAccess = TDiagsRunnerTestAccess;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Key;
using testing::Pair;

constexpr char kNameSpace[] = "root/cimv2";
constexpr char kService[] = "CIM_AvailableDiagnosticService";

TServerOptions MakeOptions(const TCimServer& server) {
  TServerOptions options;
  options.url = server.GetUrl();
  return options;
}

TPeerOptions MakeStyle(EStyle style) {
  TPeerOptions options;
  options.style = style;
  return options;
}

// A runner over a platform; both go with it.
class TRunner {
 public:
  explicit TRunner(const TPlatformOptions& options)
      : m_platform(options), m_runner(TAccess::Create(m_platform.GetNamespace())) {}
  ~TRunner() { TAccess::Destroy(m_runner); }
  TRunner(const TRunner&) = delete;
  TRunner& operator=(const TRunner&) = delete;

  std::vector<std::string> List() {
    std::vector<std::string> ids;
    std::string list = m_runner->EnumerateDiagTests("");
    for (std::size_t end = list.find('|'); end != std::string::npos; end = list.find('|')) {
      ids.push_back(list.substr(0, end));
      list.erase(0, end + 1);
    }
    return ids;
  }
  std::string Run(const std::string& id) {
    boost::shared_ptr<ICIMNamespace> store = m_platform.GetRepository();
    return m_runner->Execute(id, "label", store);
  }
  DiagsRunner& Get() { return *m_runner; }
  TPlatform& GetPlatform() { return m_platform; }

 private:
  TPlatform m_platform;
  DiagsRunner* m_runner;
};

class ServerRoadTest : public testing::TestWithParam<EStyle> {
 protected:
  TPlatformOptions GetOptions() const {
    TPlatformOptions options;
    options.root = DIAGSTEST_ROOT;
    return options;
  }
  TPlatformOptions ThroughServer() const {
    TPlatformOptions options = GetOptions();
    options.server = MakeOptions(m_server);
    return options;
  }

  TCimServer m_server{setup::OpenProviders(DIAGSTEST_ROOT, kNameSpace).operations,
                      MakeStyle(GetParam())};
};

std::string FindId(const std::vector<std::string>& ids, const std::string& start) {
  for (const std::string& id : ids) {
    if (id.compare(0, start.size(), start) == 0) return id;
  }
  return "none starts with " + start;
}

TEST_P(ServerRoadTest, OffersTheSameTestsAsTheLibrariesDo) {
  std::vector<std::string> local;
  {
    TRunner runner(GetOptions());
    local = runner.List();
  }
  TRunner runner(ThroughServer());
  EXPECT_EQ(runner.List(), local);
  EXPECT_FALSE(local.empty());
}

void StartHangingTest(TPlatform& platform) {
  const boost::shared_ptr<ICIMNamespace> ns = platform.GetNamespace();
  boost::shared_ptr<ICIMInstance> hanging;
  ns->FindClass("CIM_DiagnosticTest", {})
      ->EnumerateInstances(
          [&hanging](const boost::shared_ptr<ICIMInstance>& test) {
            const bool isIt = test->GetProperty("Name", {})->GetValueText() == "TestHang";
            if (isIt) hanging = test;
            return !isIt;
          },
          1, {});
  boost::shared_ptr<ICIMInstance> disk;
  ns->FindClass("CIM_DiskDrive", {})
      ->EnumerateInstances(
          [&disk](const boost::shared_ptr<ICIMInstance>& found) {
            disk = found;
            return false;
          },
          1, {});
  ASSERT_TRUE(hanging && disk);
  TKeyMap parameters = {{"ManagedElement", TCIMValue(disk->GetObjectPath({}))}};
  hanging->InvokeMethod("RunDiagnostic", parameters, {});
  EXPECT_THAT(parameters, Contains(Key("Job")));
}

// The manner in which the provider behind the server answers, see its own file.
class TManner {
 public:
  explicit TManner(const char* name) { ::setenv("DIAGSTEST_MANNER", name, 1); }
  ~TManner() { ::unsetenv("DIAGSTEST_MANNER"); }
  TManner(const TManner&) = delete;
  TManner& operator=(const TManner&) = delete;
};

TEST_P(ServerRoadTest, RunsTestsOfVendorsThatAnswerInOtherForms) {
  for (const char* name : {"newer", "text", "instance", "null"}) {
    const TManner manner(name);
    TRunner runner(ThroughServer());
    EXPECT_THAT(runner.Run(FindId(runner.List(), "TestPolls,")), HasSubstr("Pass")) << name;
    EXPECT_THAT(runner.GetPlatform().GetProblems(), testing::IsEmpty()) << name;
    EXPECT_EQ(runner.GetPlatform().TakeServerFailure(), "") << name;
  }
}

TEST_P(ServerRoadTest, KillsAJobThatItsServerNamedInAnyForm) {
  for (const char* name : {"text", "instance"}) {
    const TManner manner(name);
    TRunner runner(ThroughServer());
    StartHangingTest(runner.GetPlatform());
    EXPECT_EQ(runner.GetPlatform().KillRunningJobs(), 1U) << name;
  }
}

TEST_P(ServerRoadTest, TellsWhyAServersTestDoesNotStart) {
  const TManner manner("busy");
  TRunner runner(ThroughServer());
  EXPECT_EQ(runner.Run(FindId(runner.List(), "TestPolls,")), "No Status\n");
  EXPECT_THAT(runner.GetPlatform().GetProblems(),
              ElementsAre("RunDiagnosticService of TST_DiagnosticTest answers 6 (Busy)"));
}

TEST_P(ServerRoadTest, FollowsAJobToItsVerdictAndKeepsItsRecord) {
  TRunner runner(ThroughServer());
  const std::vector<std::string> ids = runner.List();
  EXPECT_THAT(runner.Run(FindId(ids, "TestPolls,")), HasSubstr("Pass"));
  EXPECT_GE(m_server.CountRequests("GetInstance"), 4U);
  EXPECT_EQ(m_server.CountRequests("RunDiagnostic"), 1U);
  EXPECT_EQ(runner.GetPlatform().TakeRecords().size(), 1U);
  EXPECT_THAT(runner.Run(FindId(ids, "TestFail,")), HasSubstr("Fail"));
}

TEST_P(ServerRoadTest, HandsOutInstancesAsProvidersDo) {
  TRunner runner(ThroughServer());
  const auto type = runner.GetPlatform().GetNamespace()->FindClass(kService, {});
  ASSERT_TRUE(type);
  boost::shared_ptr<ICIMInstance> found;
  type->EnumerateInstances(
      [&found](const boost::shared_ptr<ICIMInstance>& instance) {
        found = instance;
        return false;
      },
      1, {});
  ASSERT_TRUE(found);
  EXPECT_TRUE(boost::dynamic_pointer_cast<TCMPIInstance>(found));
}

TEST_P(ServerRoadTest, FetchesEachClassOnceForAllThatTheRunnerDoes) {
  TRunner runner(ThroughServer());
  const std::vector<std::string> ids = runner.List();
  runner.Run(FindId(ids, "TestPass,"));
  const std::size_t once = m_server.CountRequests("GetClass");
  runner.List();
  runner.Run(FindId(ids, "TestPass,"));
  EXPECT_EQ(m_server.CountRequests("GetClass"), once);
}

// The server beside the libraries of this process.
class PegasusRoadTest : public ServerRoadTest {
 protected:
  TPlatformOptions Beside() const {
    TPlatformOptions options = GetOptions();
    options.pegasus = MakeOptions(m_server);
    return options;
  }
};

TEST_P(PegasusRoadTest, LeavesTheServerAloneUntilItIsAskedFor) {
  TRunner runner(Beside());
  EXPECT_FALSE(runner.List().empty());
  EXPECT_EQ(m_server.CountAllRequests(), 0U);
  EXPECT_THAT(TAccess::PegasusNS(runner.Get()), testing::IsEmpty());
}

TEST_P(PegasusRoadTest, KeepsTheNamespaceOfEachTestThatTheServerOffers) {
  TRunner runner(Beside());
  std::vector<std::string> ids;
  EXPECT_TRUE(TAccess::Walk(runner.Get(), kService, TCIMValue("pegasus"), ids));
  const TKeyMap& places = TAccess::PegasusNS(runner.Get());
  ASSERT_EQ(places.size(), ids.size());
  for (const std::string& id : ids) EXPECT_EQ(places.at(id), TCIMValue(kNameSpace)) << id;
  EXPECT_EQ(ids, runner.List());
  EXPECT_GT(m_server.CountRequests("GetInstance"), 0U);
}

TEST_P(PegasusRoadTest, FollowsAJobOfTheServerInItsNamespace) {
  TRunner runner(Beside());
  std::vector<std::string> ids;
  TAccess::Walk(runner.Get(), kService, TCIMValue("pegasus"), ids);
  const std::string id = FindId(ids, "TestPolls,");
  runner.List();
  TAccess::DiagNS(runner.Get())[id] = TCIMValue("pegasus");
  const std::size_t before = m_server.CountRequests("GetInstance");
  EXPECT_THAT(runner.Run(id), HasSubstr("Pass"));
  EXPECT_EQ(m_server.CountRequests("RunDiagnostic"), 1U);
  EXPECT_GE(m_server.CountRequests("GetInstance") - before, 4U);
}

TEST_P(PegasusRoadTest, ReachesTheNamespaceThatIsNamed) {
  TRunner runner(Beside());
  const boost::shared_ptr<ICIMNamespace> router = runner.GetPlatform().GetNamespace();
  EXPECT_TRUE(router->FindClass(kService, {{"nspID", "pegasus"}, {"nsp", kNameSpace}}));
  try {
    router->FindClass(kService, {{"nspID", "pegasus"}, {"nsp", "root/elsewhere"}});
    FAIL() << "was found";
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetCIMStatus(), 3U);
  }
}

TEST_P(PegasusRoadTest, IsTheOneServerWhenThereIsNoOther) {
  TRunner runner(ThroughServer());
  std::vector<std::string> ids;
  EXPECT_TRUE(TAccess::Walk(runner.Get(), kService, TCIMValue("pegasus"), ids));
  EXPECT_EQ(ids, runner.List());
}

TEST(PegasusRoadWithoutServerTest, IsRefusedByItsName) {
  TPlatformOptions options;
  options.root = DIAGSTEST_ROOT;
  TRunner runner(options);
  try {
    runner.GetPlatform().GetNamespace()->FindClass(kService, {{"nspID", "pegasus"}});
    FAIL() << "was found";
  } catch (const TQELException& e) {
    EXPECT_THAT(e.what(), HasSubstr("'pegasus'"));
  }
}

std::string NameStyle(const testing::TestParamInfo<EStyle>& row) {
  return row.param == EStyle::kPegasus ? "Pegasus" : "Sfcb";
}

INSTANTIATE_TEST_SUITE_P(Styles, ServerRoadTest, testing::Values(EStyle::kPegasus, EStyle::kSfcb),
                         NameStyle);
INSTANTIATE_TEST_SUITE_P(Styles, PegasusRoadTest, testing::Values(EStyle::kPegasus, EStyle::kSfcb),
                         NameStyle);

TCIMClassDeclaration Declare(const std::string& name, const std::string& superclass,
                             const std::vector<std::string>& keys,
                             const std::vector<std::string>& others, ECIMType keyType) {
  TCIMClassDeclaration type;
  type.name = name;
  type.superclass = superclass;
  for (const auto* names : {&keys, &others}) {
    for (const std::string& property : *names) {
      TCIMPropertyDeclaration declared;
      declared.name = property;
      declared.isKey = names == &keys;
      declared.type = declared.isKey ? keyType : ECIMType::kString;
      type.properties.push_back(declared);
    }
  }
  return type;
}

// Ten services, and as many devices as wanted, each with one of them.
std::shared_ptr<TFakeOperations> MakeMachine(unsigned int devices) {
  auto machine = std::make_shared<TFakeOperations>();
  machine->AddNamespace(kNameSpace);
  machine->AddClass(kNameSpace, Declare("X_Test", "", {"Name"}, {}, ECIMType::kString));
  machine->AddClass(kNameSpace,
                    Declare("X_Disk", "", {"DeviceID"}, {"ElementName"}, ECIMType::kString));
  machine->AddClass(kNameSpace, Declare(kService, "", {"ServiceProvided", "UserOfService"}, {},
                                        ECIMType::kReference));
  for (unsigned int i = 0; i < 10; ++i) {
    TCIMInstanceData test{{kNameSpace, "X_Test", {{"Name", TCIMValue("T" + std::to_string(i))}}},
                          {}};
    test.Set("Name", TCIMValue("T" + std::to_string(i)));
    machine->AddInstance(kNameSpace, test);
  }
  for (unsigned int i = 0; i < devices; ++i) {
    const TCIMValue id("d" + std::to_string(i));
    TCIMInstanceData disk{{kNameSpace, "X_Disk", {{"DeviceID", id}}}, {}};
    disk.Set("DeviceID", id);
    disk.Set("ElementName", TCIMValue("Disk"));
    TCIMInstanceData link{{kNameSpace, kService, {}}, {}};
    const TCIMReference test(kNameSpace, "X_Test",
                             {{"Name", TCIMValue("T" + std::to_string(i % 10))}});
    for (const auto& [name, path] : {std::pair<const char*, TCIMReference>{"ServiceProvided", test},
                                     {"UserOfService", disk.path}}) {
      link.path.SetKey(name, TCIMValue(path));
      link.Set(name, TCIMValue(path));
    }
    machine->AddInstance(kNameSpace, disk);
    machine->AddInstance(kNameSpace, link);
  }
  return machine;
}

// Every fetch asks the provider anew, so each association costs two; the rest does not grow but
// for the replies that the enumeration takes.
TEST(RoundTripsTest, AreTwoForEachAssociationAndAFewMore) {
  const TCimServer server(MakeMachine(200), MakeStyle(EStyle::kPegasus));
  TPlatformOptions options;
  options.root = DIAGSTEST_ROOT;
  options.server = MakeOptions(server);
  TRunner runner(options);
  EXPECT_EQ(runner.List().size(), 200U);
  EXPECT_THAT(server.GetRequestCounts(), ElementsAre(Pair("GetClass", 3), Pair("GetInstance", 400),
                                                     Pair("OpenEnumerateInstances", 1)));
  EXPECT_EQ(server.CountConnections(), 1U);
}

TEST(RoundTripsTest, AreAsManyOnAServerWithoutPullOperationsAndOneMore) {
  const TCimServer server(MakeMachine(100), MakeStyle(EStyle::kSfcb));
  TPlatformOptions options;
  options.root = DIAGSTEST_ROOT;
  options.server = MakeOptions(server);
  TRunner runner(options);
  EXPECT_EQ(runner.List().size(), 100U);
  EXPECT_THAT(server.GetRequestCounts(),
              ElementsAre(Pair("EnumerateInstances", 1), Pair("GetClass", 3),
                          Pair("GetInstance", 200), Pair("OpenEnumerateInstances", 1)));
}

TEST(ServerSetupTest, RefusesAServerThatCannotBeReached) {
  TPlatformOptions options;
  options.root = DIAGSTEST_ROOT;
  options.server.emplace();
  options.server->url = "http://127.0.0.1:1";
  try {
    const TPlatform platform(options);
    FAIL() << "was set up";
  } catch (const TQELException& e) {
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode(TQELStatusCode::kConnection));
    EXPECT_THAT(e.what(), HasSubstr("http://127.0.0.1:1"));
  }
}

TEST(ServerSetupTest, RefusesAServerThatRefusesTheCaller) {
  const auto machine = MakeMachine(1);
  machine->Fail("GetClass", kNameSpace, TQELException(TQELStatusCode::kCIMError, "not you", 2));
  const TCimServer server(machine, MakeStyle(EStyle::kSfcb));
  TPlatformOptions options;
  options.root = DIAGSTEST_ROOT;
  options.server = MakeOptions(server);
  try {
    const TPlatform platform(options);
    FAIL() << "was set up";
  } catch (const TQELException& e) {
    EXPECT_THAT(e.what(), HasSubstr("CIM_ERR_ACCESS_DENIED (2)"));
    EXPECT_THAT(e.what(), testing::Not(HasSubstr("--namespace")));
  }
}

TEST(ServerSetupTest, ReportsANamespaceWithoutTestsAndGoesOn) {
  const TCimServer server(MakeMachine(1), MakeStyle(EStyle::kPegasus));
  TPlatformOptions options;
  options.root = DIAGSTEST_ROOT;
  options.nameSpace = "root/empty";
  options.server = MakeOptions(server);
  TPlatform platform(options);
  EXPECT_THAT(platform.GetProblems(),
              ElementsAre(testing::AllOf(HasSubstr("CIM_ERR_INVALID_NAMESPACE (3)"),
                                         HasSubstr("--namespace names another"))));
  EXPECT_TRUE(platform.GetUnofferedTests().empty());
}

TEST(ServerSetupTest, EndsOfTheJobsOnAServerItsOwn) {
  const TCimServer server(setup::OpenProviders(DIAGSTEST_ROOT, kNameSpace).operations,
                          MakeStyle(EStyle::kPegasus));
  TPlatformOptions options;
  options.root = DIAGSTEST_ROOT;
  options.server = MakeOptions(server);
  TPlatform mine(options);
  TPlatform others(options);
  StartHangingTest(others);
  EXPECT_EQ(mine.KillRunningJobs(), 0U);
  EXPECT_EQ(server.CountRequests("RequestStateChange"), 0U);
  EXPECT_EQ(others.KillRunningJobs(), 1U);
  EXPECT_EQ(server.CountRequests("RequestStateChange"), 1U);
  EXPECT_EQ(others.KillRunningJobs(), 0U);
}

}  // namespace
}  // namespace cimserver
