// SPDX-License-Identifier: Apache-2.0
// Our client and an independent one, wbemcli, ask the same server and must see the same.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "platform/cimxml/TCIMXMLOperations.h"
#include "platform/contract/TQELException.h"
#include "platform/model/CIMStatus.h"
#include "platform/setup/ProviderSetup.h"
#include "tests/platform/cimxml/peer/TPeerWorld.h"
#include "tests/support/cimserver/TThrowAwayCa.h"
#include "tests/support/cimserver/TWbemcli.h"

namespace cimserver {
namespace {

using NZEPQEL20::TCIMClassDeclaration;
using NZEPQEL20::TCIMPropertyData;
using NZEPQEL20::TCIMPropertyDeclaration;
using NZEPQEL20::TCIMXMLOperations;
using NZEPQEL20::TServerOptions;

constexpr char kNameSpace[] = "root/cimv2";

struct TSeen {
  std::string path;
  std::map<std::string, std::string> properties;

  bool operator==(const TSeen& other) const {
    return path == other.path && properties == other.properties;
  }
};

void PrintTo(const TSeen& seen, std::ostream* out) {
  *out << seen.path;
  for (const auto& [name, text] : seen.properties) *out << "\n  " << name << " = " << text;
}

// The two clients write reals and embedded instances each in its own way.
std::string Level(ECIMType type, const std::string& text) {
  const bool isReal = type == ECIMType::kReal32 || type == ECIMType::kReal64;
  return isReal && !text.empty() ? std::to_string(std::stod(text)) : text;
}

TSeen Render(const TCIMInstanceData& instance, const TWbemcliObject& other) {
  TSeen seen{instance.path.GetPath(), {}};
  for (const TCIMPropertyData& property : instance.properties) {
    const auto inner =
        property.value.GetType() == ECIMType::kInstance ? property.value.ToInstance() : nullptr;
    // What is inside is compared by the class that the other one's text names.
    const auto text = other.properties.find(property.name);
    const bool isSame =
        inner != nullptr && text != other.properties.end() &&
        text->second.find("CLASSNAME=\"" + inner->path.GetClassName() + "\"") != std::string::npos;
    seen.properties[property.name] =
        isSame ? text->second : Level(property.value.GetType(), property.value.ToString(10));
  }
  return seen;
}

TSeen Render(const TWbemcliObject& object, const TCIMInstanceData& instance) {
  TSeen seen{object.path.GetPath(), {}};
  for (const auto& [name, text] : object.properties) {
    const TCIMPropertyData* const property = instance.Find(name);
    seen.properties[name] = property != nullptr ? Level(property->value.GetType(), text) : text;
  }
  return seen;
}

void ExpectSame(const std::vector<TCIMInstanceData>& ours, const TWbemcliAnswer& theirs) {
  EXPECT_EQ(theirs.exitStatus, 0) << theirs.error;
  ASSERT_EQ(ours.size(), theirs.objects.size());
  for (std::size_t i = 0; i < ours.size(); ++i) {
    EXPECT_EQ(Render(ours[i], theirs.objects[i]), Render(theirs.objects[i], ours[i]));
  }
}

std::string GetMarks(const TCIMPropertyDeclaration& property) {
  std::string marks = property.isKey ? "#" : "";
  if (property.type == ECIMType::kReference) marks += "&";
  return property.isArray ? marks + "[]" : marks;
}

class AgreementTest : public testing::TestWithParam<EStyle> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(TWbemcli::IsInstalled()) << "package sblim-wbemcli is missing";
  }

  static TPeerOptions GetOptions() {
    TPeerOptions options;
    options.style = GetParam();
    return options;
  }
  static TServerOptions MakeOptions(const TCimServer& server) {
    TServerOptions options;
    options.url = server.GetUrl();
    return options;
  }
  static std::vector<TCIMInstanceData> Enumerate(ICIMOperations& operations,
                                                 const std::string& className) {
    std::vector<TCIMInstanceData> found;
    operations.EnumerateInstances(kNameSpace, className, [&found](TCIMInstanceData&& instance) {
      found.push_back(std::move(instance));
      return true;
    });
    return found;
  }
  void ExpectSameRefusal(const std::function<void()>& ask, const TWbemcliAnswer& theirs,
                         unsigned int status) {
    try {
      ask();
      ADD_FAILURE() << "was not refused";
    } catch (const TQELException& e) {
      EXPECT_EQ(e.GetCIMStatus(), status);
      EXPECT_THAT(e.what(), testing::HasSubstr(NZEPQEL20::GetCIMStatusName(status) + " (" +
                                               std::to_string(status) + ")"));
    }
    EXPECT_EQ(theirs.cimStatus, status) << theirs.error;
    EXPECT_EQ(theirs.exitStatus, 16);
  }

  TPeerWorld m_world;
  TCimServer m_server{m_world.GetOperations(), GetOptions()};
  TWbemcli m_wbemcli{m_server.GetUrl(), kNameSpace};
  TCIMXMLOperations m_client{MakeOptions(m_server), kNameSpace};
};

TEST_P(AgreementTest, AboutAClass) {
  const TWbemcliAnswer theirs = m_wbemcli.GetClass("PEER_Thing");
  const auto ours = m_client.GetClass(kNameSpace, "PEER_Thing");
  std::map<std::string, std::string> marks;
  for (const TCIMPropertyDeclaration& property : ours->properties) {
    marks[property.name] = GetMarks(property);
  }
  ASSERT_EQ(theirs.objects.size(), 1U) << theirs.error;
  EXPECT_EQ(marks, theirs.objects[0].properties);
  EXPECT_EQ(ours->name, theirs.objects[0].path.GetClassName());
}

TEST_P(AgreementTest, AboutTheNamesOfClasses) {
  std::vector<std::string> theirs;
  for (const TWbemcliObject& object : m_wbemcli.EnumerateClassNames("").objects) {
    theirs.push_back(object.path.GetClassName());
  }
  EXPECT_EQ(m_client.EnumerateClassNames(kNameSpace, "", true), theirs);
}

TEST_P(AgreementTest, AboutAnEnumeration) {
  const std::vector<TCIMInstanceData> ours = Enumerate(m_client, "PEER_Base");
  ASSERT_EQ(ours.size(), 2U);
  ExpectSame(ours, m_wbemcli.EnumerateInstances("PEER_Base"));
}

TEST_P(AgreementTest, AboutTheNamesOfInstances) {
  std::vector<std::string> ours;
  for (const TCIMReference& path : m_client.EnumerateInstanceNames(kNameSpace, "PEER_Thing")) {
    ours.push_back(path.GetPath());
  }
  std::vector<std::string> theirs;
  for (const TWbemcliObject& object : m_wbemcli.EnumerateInstanceNames("PEER_Thing").objects) {
    theirs.push_back(object.path.GetPath());
  }
  EXPECT_EQ(ours, theirs);
  EXPECT_EQ(ours.size(), 2U);
}

TEST_P(AgreementTest, AboutAFetchedInstance) {
  for (const char* id : {"one", "two"}) {
    const TCIMReference path = TPeerWorld::GetPath(id);
    ExpectSame({m_client.GetInstance(path)}, m_wbemcli.GetInstance(path));
  }
}

TEST_P(AgreementTest, AboutAMethodCall) {
  const TCIMReference path = TPeerWorld::GetPath("one");
  const TWbemcliAnswer theirs = m_wbemcli.InvokeMethod(
      path, "Add", "Left=3,Right=4,5,To=far/root/cimv2:PEER_Thing.Id=\"two\"");
  // wbemcli names a host in the reference that it sends; our client has none to name.
  const TKeyMap theirParameters = m_world.GetCallParameters();
  TKeyMap parameters = {
      {"Left", TCIMValue("3")},
      {"Right", TCIMValue::Array(ECIMType::kString, {TCIMValue("4"), TCIMValue("5")})},
      {"To", TCIMValue(TPeerWorld::GetPath("two"))}};
  const TCIMValue result = m_client.InvokeMethod(path, "Add", parameters);
  EXPECT_EQ(theirs.exitStatus, 0) << theirs.error;
  EXPECT_EQ(result.ToString(10), theirs.returnValue);
  EXPECT_EQ(parameters.at("Sum").ToString(10), theirs.outParameters.at("Sum"));
  EXPECT_EQ(parameters.at("Where").ToString(10), theirs.outParameters.at("Where"));
  EXPECT_EQ(parameters.size(), theirs.outParameters.size());
  // Nor does wbemcli name types, so to it everything is a text.
  TKeyMap ourParameters = m_world.GetCallParameters();
  for (const char* name : {"Left", "Right"}) {
    EXPECT_EQ(ourParameters.at(name).ToString(10), theirParameters.at(name).ToString(10));
    EXPECT_EQ(ourParameters.at(name).GetType(), ECIMType::kUInt16);
  }
  auto to = static_cast<TCIMReference>(theirParameters.at("To"));
  to.SetHost("");
  EXPECT_EQ(ourParameters.at("To").ToString(10), to.GetPath());
}

TEST_P(AgreementTest, AboutErrors) {
  ExpectSameRefusal([this] { m_client.GetClass(kNameSpace, "PEER_None"); },
                    m_wbemcli.GetClass("PEER_None"), 6);
  ExpectSameRefusal([this] { Enumerate(m_client, "PEER_None"); },
                    m_wbemcli.EnumerateInstances("PEER_None"), 5);
  const TCIMReference none = TPeerWorld::GetPath("none");
  ExpectSameRefusal([this, &none] { m_client.GetInstance(none); }, m_wbemcli.GetInstance(none), 6);
  const TWbemcli elsewhere(m_server.GetUrl(), "root/none");
  ExpectSameRefusal([this] { m_client.GetClass("root/none", "PEER_Thing"); },
                    elsewhere.GetClass("PEER_Thing"), 3);
}

TEST_P(AgreementTest, AboutTheTestsOfAProvider) {
  TCimServer server(NZEPQEL20::setup::OpenProviders(DIAGSTEST_ROOT, kNameSpace).operations,
                    GetOptions());
  TCIMXMLOperations client(MakeOptions(server), kNameSpace);
  const TWbemcli wbemcli(server.GetUrl(), kNameSpace);
  for (const char* name :
       {"CIM_AvailableDiagnosticService", "CIM_DiagnosticTest", "CIM_DiskDrive"}) {
    const std::vector<TCIMInstanceData> ours = Enumerate(client, name);
    EXPECT_FALSE(ours.empty()) << name;
    ExpectSame(ours, wbemcli.EnumerateInstances(name));
  }
}

TEST_P(AgreementTest, AboutAnEnumerationOverTls) {
  const TThrowAwayCa ca;
  TPeerOptions options = GetOptions();
  options.certificate = ca.GetServer().certificate;
  options.key = ca.GetServer().key;
  TCimServer server(m_world.GetOperations(), options);
  TServerOptions trusted = MakeOptions(server);
  trusted.caFile = ca.GetCaFile();
  TCIMXMLOperations client(trusted, kNameSpace);
  const TWbemcli wbemcli(server.GetUrl(), kNameSpace, {"-cacert", ca.GetCaFile()});
  ExpectSame(Enumerate(client, "PEER_Base"), wbemcli.EnumerateInstances("PEER_Base"));
}

INSTANTIATE_TEST_SUITE_P(Styles, AgreementTest, testing::Values(EStyle::kPegasus, EStyle::kSfcb),
                         [](const testing::TestParamInfo<EStyle>& row) {
                           return row.param == EStyle::kPegasus ? "Pegasus" : "Sfcb";
                         });

}  // namespace
}  // namespace cimserver
