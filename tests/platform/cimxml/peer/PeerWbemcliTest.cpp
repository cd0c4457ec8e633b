// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/setup/ProviderSetup.h"
#include "tests/platform/cimxml/peer/TPeerWorld.h"
#include "tests/support/cimserver/TSyntheticOperations.h"
#include "tests/support/cimserver/TThrowAwayCa.h"
#include "tests/support/cimserver/TWbemcli.h"

namespace cimserver {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using TTexts = std::map<std::string, std::string>;

constexpr char kNameSpace[] = "root/cimv2";

/// What an independent client makes of the peer in either manner.
class PeerWbemcliTest : public testing::TestWithParam<EStyle> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(TWbemcli::IsInstalled()) << "package sblim-wbemcli is missing";
  }

  static TPeerOptions GetOptions() {
    TPeerOptions options;
    options.style = GetParam();
    return options;
  }
  bool IsPegasus() const { return GetParam() == EStyle::kPegasus; }

  static std::vector<std::string> GetPaths(const TWbemcliAnswer& answer) {
    std::vector<std::string> paths;
    for (const TWbemcliObject& object : answer.objects) paths.push_back(object.path.GetPath());
    return paths;
  }

  TPeerWorld m_world;
  TCimServer m_server{m_world.GetOperations(), GetOptions()};
  TWbemcli m_client{m_server.GetUrl(), kNameSpace};
};

TEST_P(PeerWbemcliTest, AClassHasItsPropertiesWithTheirMarks) {
  const TWbemcliAnswer answer = m_client.GetClass("PEER_Thing");
  EXPECT_EQ(answer.exitStatus, 0) << answer.error;
  EXPECT_THAT(GetPaths(answer), ElementsAre("root/cimv2:PEER_Thing"));
  EXPECT_EQ(answer.objects.at(0).properties, (TTexts{{"Id", "#"},
                                                     {"Caption", ""},
                                                     {"State", ""},
                                                     {"Offset", ""},
                                                     {"Ratio", ""},
                                                     {"IsNew", ""},
                                                     {"Letter", ""},
                                                     {"When", ""},
                                                     {"Numbers", "[]"},
                                                     {"Words", "[]"},
                                                     {"Other", "&"},
                                                     {"Inner", ""}}));
}

TEST_P(PeerWbemcliTest, ClassesAreEnumeratedWholeAndByName) {
  const TWbemcliAnswer whole = m_client.EnumerateClasses("PEER_Base");
  EXPECT_THAT(GetPaths(whole), ElementsAre("root/cimv2:PEER_Thing"));
  EXPECT_THAT(GetPaths(m_client.EnumerateClassNames("")),
              testing::Contains("root/cimv2:PEER_Base"));
  EXPECT_THAT(GetPaths(m_client.EnumerateClassNames("PEER_Base")),
              ElementsAre("root/cimv2:PEER_Thing"));
}

TEST_P(PeerWbemcliTest, InstancesHaveTheirValues) {
  const TWbemcliAnswer answer = m_client.EnumerateInstances("PEER_Base");
  EXPECT_EQ(answer.exitStatus, 0) << answer.error;
  EXPECT_THAT(GetPaths(answer),
              ElementsAre("root/cimv2:PEER_Thing.Id=\"one\"", "root/cimv2:PEER_Thing.Id=\"two\""));
  TTexts one = answer.objects.at(0).properties;
  EXPECT_THAT(one.at("Inner"), StartsWith("<INSTANCE CLASSNAME=\"PEER_Base\""));
  one.erase("Inner");
  EXPECT_EQ(one, (TTexts{{"Id", "one"},
                         {"Caption", "a < b & \"c\" 'd'\n\xC3\xA4"},
                         {"State", "2"},
                         {"Offset", "-5"},
                         {"Ratio", "5.0000000000000000E-01"},
                         {"IsNew", "TRUE"},
                         {"Letter", "\xE2\x82\xAC"},
                         {"When", "20240229123456.000000+060"},
                         {"Numbers", "3,4"},
                         {"Words", "x,y,\\ z"},
                         {"Other", "root/cimv2:PEER_Thing.Id=\"two\""}}));
  for (const auto& [name, text] : answer.objects.at(1).properties) {
    EXPECT_EQ(text, name == "Id" ? "two" : "") << name;
  }
  EXPECT_EQ(answer.objects.at(1).properties.size(), 12U);
}

TEST_P(PeerWbemcliTest, NamesOfInstancesComeAlone) {
  const TWbemcliAnswer answer = m_client.EnumerateInstanceNames("PEER_Thing");
  EXPECT_THAT(GetPaths(answer),
              ElementsAre("root/cimv2:PEER_Thing.Id=\"one\"", "root/cimv2:PEER_Thing.Id=\"two\""));
  EXPECT_TRUE(answer.objects.at(0).properties.empty());
}

TEST_P(PeerWbemcliTest, AFetchedInstanceIsTheEnumeratedOne) {
  const TWbemcliAnswer fetched = m_client.GetInstance(TPeerWorld::GetPath("one"));
  const TWbemcliAnswer enumerated = m_client.EnumerateInstances("PEER_Thing");
  ASSERT_EQ(fetched.objects.size(), 1U) << fetched.error;
  EXPECT_EQ(fetched.objects[0].path, enumerated.objects.at(0).path);
  EXPECT_EQ(fetched.objects[0].properties, enumerated.objects.at(0).properties);
}

TEST_P(PeerWbemcliTest, AMethodTakesParametersAndGivesSomeBack) {
  const TWbemcliAnswer answer =
      m_client.InvokeMethod(TPeerWorld::GetPath("one"), "Add",
                            "Left=3,Right=4,5,To=far/root/cimv2:PEER_Thing.Id=\"two\"");
  EXPECT_EQ(answer.exitStatus, 0) << answer.error;
  EXPECT_EQ(answer.returnValue, "0");
  EXPECT_EQ(answer.outParameters.at("Sum"), "12");
  EXPECT_EQ(answer.outParameters.at("Where"), "root/cimv2:PEER_Thing.Id=\"one\"");
  EXPECT_THAT(answer.outParameters.at("What"), HasSubstr("<VALUE>12</VALUE>"));
  EXPECT_EQ(static_cast<TCIMReference>(m_world.GetCallParameters().at("To")).GetPath(),
            "//far/root/cimv2:PEER_Thing.Id=\"two\"");
}

TEST_P(PeerWbemcliTest, InstancesAreMadeChangedAndDeleted) {
  const TCIMReference path = TPeerWorld::GetPath("new");
  const TWbemcliAnswer made =
      m_client.CreateInstance(path, "Id=\"new\",Caption=\"a-b\",State=1,Numbers=7,8");
  EXPECT_EQ(made.exitStatus, 0) << made.error;
  auto kept = m_world.GetOperations()->GetInstance(path);
  EXPECT_EQ(kept.Find("Caption")->value.ToString(10), "a-b");
  EXPECT_EQ(kept.Find("State")->value, TCIMValue::UInt16(1));
  EXPECT_EQ(kept.Find("Numbers")->value.ToString(10), "7,8");
  EXPECT_EQ(m_client.ModifyInstance(path, "Caption=\"c\"").error, "");
  kept = m_world.GetOperations()->GetInstance(path);
  EXPECT_EQ(kept.Find("Caption")->value.ToString(10), "c");
  EXPECT_EQ(m_client.DeleteInstance(path).error, "");
  EXPECT_EQ(m_client.GetInstance(path).cimStatus, 6U);
}

TEST_P(PeerWbemcliTest, ErrorsHaveTheirNumbersAndWords) {
  const auto check = [](const TWbemcliAnswer& answer, unsigned int status,
                        const std::string& words) {
    EXPECT_EQ(answer.exitStatus, 16);
    EXPECT_EQ(answer.cimStatus, status);
    EXPECT_EQ(answer.error, words);
  };
  check(m_client.GetClass("PEER_None"), 6,
        IsPegasus() ? "PEER_None" : "The requested object could not be found");
  check(m_client.EnumerateInstances("PEER_None"), 5, IsPegasus() ? "PEER_None" : "Class not found");
  check(TWbemcli(m_server.GetUrl(), "root/none").EnumerateInstances("PEER_Thing"), 3,
        IsPegasus() ? "root/none" : "Invalid namespace");
  check(m_client.GetInstance(TPeerWorld::GetPath("three")), 6,
        "no instance root/cimv2:PEER_Thing.Id=\"three\"");
  check(m_client.References(TPeerWorld::GetPath("one")), 7,
        "References root/cimv2:PEER_Thing.Id=\"one\"");
}

TEST_P(PeerWbemcliTest, AssociationsLeadToTheirEnds) {
  const TCimServer server(std::make_shared<TSyntheticOperations>(2), GetOptions());
  const TWbemcli client(server.GetUrl(), kNameSpace);
  const TCIMReference holder(kNameSpace, "BENCH_Holder", {{"Name", TCIMValue("holder")}});
  const std::string tie0 =
      client.EnumerateInstanceNames("BENCH_RecordOfHolder").objects.at(0).path.GetPath();
  EXPECT_EQ(tie0,
            "root/cimv2:BENCH_RecordOfHolder.Holder=\"root/cimv2:BENCH_Holder.Name=\\\"holder\\\"\""
            ",Record=\"root/cimv2:BENCH_Record.InstanceID=\\\"record 0\\\"\"");
  EXPECT_EQ(GetPaths(client.ReferenceNames(holder)).at(0), tie0);
  EXPECT_EQ(GetPaths(client.References(holder)).at(0), tie0);
  const auto records = ElementsAre("root/cimv2:BENCH_Record.InstanceID=\"record 0\"",
                                   "root/cimv2:BENCH_Record.InstanceID=\"record 1\"");
  EXPECT_THAT(GetPaths(client.AssociatorNames(holder)), records);
  const TWbemcliAnswer whole = client.Associators(holder);
  EXPECT_THAT(GetPaths(whole), records);
  EXPECT_EQ(whole.objects.at(1).properties.at("Size"), "1099511627777");
}

TEST_P(PeerWbemcliTest, ProvidersStandBehindItAsBehindAnyServer) {
  const auto providers = NZEPQEL20::setup::OpenProviders(DIAGSTEST_ROOT, kNameSpace);
  const TCimServer server(providers.operations, GetOptions());
  const TWbemcli client(server.GetUrl(), kNameSpace);
  const TWbemcliAnswer offers = client.EnumerateInstances("CIM_AvailableDiagnosticService");
  ASSERT_EQ(offers.objects.size(), 11U) << offers.error;
  const TTexts& offer = offers.objects[0].properties;
  const auto test = TCIMReference::Parse(offer.at("ServiceProvided"));
  const TWbemcliAnswer run = client.InvokeMethod(
      test, "RunDiagnostic", "ManagedElement=peer/" + offer.at("UserOfService"));
  EXPECT_EQ(run.returnValue, "0") << run.error;
  const auto job = TCIMReference::Parse(run.outParameters.at("Job"));
  EXPECT_EQ(job.GetClassName(), "TST_ConcreteJob");
  EXPECT_EQ(client.GetInstance(job).objects.at(0).properties.at("JobState"), "7");
  const TWbemcliAnswer records = client.EnumerateInstances("CIM_DiagnosticCompletionRecord");
  EXPECT_EQ(records.objects.at(0).properties.at("RecordData"), "Data of TestPass\n");
}

INSTANTIATE_TEST_SUITE_P(Styles, PeerWbemcliTest, testing::Values(EStyle::kPegasus, EStyle::kSfcb),
                         [](const auto& row) {
                           return row.param == EStyle::kPegasus ? "Pegasus" : "Sfcb";
                         });

/// The same client by TLS.
class PeerTlsTest : public testing::Test {
 protected:
  /// What a client by TLS, with `arguments`, makes of a server with these files.
  TWbemcliAnswer Ask(const TThrowAwayCa::TFiles& files, const TWbemcli::TArguments& arguments,
                     const std::string& clientCa = "") {
    TPeerOptions options;
    options.certificate = files.certificate;
    options.key = files.key;
    options.clientCa = clientCa;
    const TCimServer server(m_world.GetOperations(), options);
    EXPECT_THAT(server.GetUrl(), StartsWith("https://127.0.0.1:"));
    return TWbemcli(server.GetUrl(), kNameSpace, arguments).EnumerateInstanceNames("PEER_Thing");
  }

  TPeerWorld m_world;
  TThrowAwayCa m_ca;
  TWbemcli::TArguments m_trusting = {"-cacert", m_ca.GetCaFile()};
};

TEST_F(PeerTlsTest, ATrustedServerAnswers) {
  const TWbemcliAnswer answer = Ask(m_ca.GetServer(), m_trusting);
  EXPECT_EQ(answer.objects.size(), 2U) << answer.error;
}

// A name that is not the server's is nothing that this client looks at.
TEST_F(PeerTlsTest, ServersThatAreNotToBeTrustedAreNotAsked) {
  const TThrowAwayCa stranger;
  EXPECT_THAT(Ask(m_ca.GetExpiredServer(), m_trusting).error, StartsWith("Http Exception: "));
  EXPECT_THAT(Ask(stranger.GetServer(), m_trusting).error, StartsWith("Http Exception: "));
  EXPECT_EQ(Ask(stranger.GetServer(), {"-noverify"}).objects.size(), 2U);
}

TEST_F(PeerTlsTest, AClientMayHaveToShowACertificate) {
  EXPECT_THAT(Ask(m_ca.GetServer(), m_trusting, m_ca.GetCaFile()).error,
              StartsWith("Http Exception: "));
  TWbemcli::TArguments showing = m_trusting;
  for (const std::string& argument : {std::string("-clientcert"), m_ca.GetClient().certificate,
                                      std::string("-clientkey"), m_ca.GetClient().key}) {
    showing.push_back(argument);
  }
  const TWbemcliAnswer answer = Ask(m_ca.GetServer(), showing, m_ca.GetCaFile());
  EXPECT_EQ(answer.objects.size(), 2U) << answer.error;
}

TEST_F(PeerTlsTest, ACertificateThatCannotBeUsedIsNamed) {
  TPeerOptions options;
  options.certificate = m_ca.GetServer().certificate;
  options.key = m_ca.GetClient().key;
  try {
    const TCimServer server(m_world.GetOperations(), options);
    FAIL() << "no exception";
  } catch (const std::exception& failure) {
    EXPECT_THAT(failure.what(), HasSubstr(options.key));
  }
}

TEST(PeerBasicTest, CredentialsInTheUrlAreTaken) {
  const TPeerWorld world;
  TPeerOptions options;
  options.user = "me";
  options.password = "secret";
  const TCimServer server(world.GetOperations(), options);
  const std::string place = "127.0.0.1:" + std::to_string(server.GetPort());
  EXPECT_EQ(TWbemcli("http://me:secret@" + place, kNameSpace)
                .EnumerateInstanceNames("PEER_Thing")
                .objects.size(),
            2U);
  EXPECT_EQ(TWbemcli("http://me:wrong@" + place, kNameSpace)
                .EnumerateInstanceNames("PEER_Thing")
                .exitStatus,
            16);
}

}  // namespace
}  // namespace cimserver
