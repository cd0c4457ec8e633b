// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/cmpi/registrations/TVendor.h"

namespace NZEPQEL20 {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr char kModule[] = R"(
  instance of PG_ProviderModule { Name = "M"; Vendor = "Acme"; Version = "1.0";
    InterfaceType = "CMPI"; InterfaceVersion = "2.0.0"; Location = "acme"; };
)";
constexpr char kProvider[] = R"(
  instance of PG_Provider { ProviderModuleName = "M"; Name = "P"; };
)";

std::string Capabilities(const std::string& types, const std::string& nameSpaces = "\"root/x\"",
                         const std::string& className = "A", const std::string& id = "C1") {
  return "instance of PG_ProviderCapabilities { ProviderModuleName = \"M\"; ProviderName = \"P\";\n"
         "  CapabilityID = \"" +
         id + "\"; ClassName = \"" + className + "\"; Namespaces = {" + nameSpaces +
         "}; ProviderType = {" + types +
         "};\n"
         "  SupportedProperties = NULL; SupportedMethods = NULL; };\n";
}

TRegistrations Read(const std::string& text) {
  return ReadText(text, "acmeR.mof");
}

TEST(RegistrationMofTest, CapabilitiesRegisterAClassOfAProviderOfAModule) {
  // The instances come in any order, behind comments and pragmas.
  const auto read = Read("// Acme\r\n#pragma namespace(\"root/PG_InterOp\")\r\n" +
                         Capabilities("2, 5", "\"root/x\", \"root/y\"") +
                         Capabilities("3,4", "\"root/x\"", "B", "C2") + kModule + kProvider);
  EXPECT_EQ(ShowFindings(read), "");
  EXPECT_EQ(ShowAll(read),
            "A root/x P libacme.so IM, A root/y P libacme.so IM, "
            "B root/x P libacme.so AN");
  EXPECT_THAT(read.GetEntries()[0].source,
              ::testing::EndsWith("acmeR.mof: PG_ProviderCapabilities \"C1\" of class A"));
}

TEST(RegistrationMofTest, InstancesInSeveralFilesOfAFolderFindEachOther) {
  const TVendor vendor;
  vendor.Write("a/caps.mof", Capabilities("2"));
  vendor.Write("b/module.mof", std::string(kModule) + kProvider);
  const auto read = vendor.Read();
  EXPECT_EQ(ShowFindings(read), "");
  EXPECT_EQ(ShowAll(read), "A root/x P libacme.so I");
}

TEST(RegistrationMofTest, AFileThatDeclaresClassesTooIsNoPureRegistration) {
  const auto read =
      Read(std::string("class A : X_NotHere { };\n") + kModule + kProvider + Capabilities("2"));
  // The missing superclass is for whoever loads the classes to report.
  EXPECT_EQ(ShowFindings(read), "");
  EXPECT_EQ(ShowAll(read), "A root/x P libacme.so I");
  EXPECT_THAT(read.GetFiles(), SizeIs(1));
  EXPECT_THAT(read.GetPureFiles(), IsEmpty());
}

TEST(RegistrationMofTest, SchemaThatARegistrationIncludesIsLeftToWhoeverLoadsTheSchema) {
  const TVendor vendor;
  // Would be told if it were compiled for the registration.
  vendor.Write("cim/schema.inc", "class wrong wrong;\n");
  vendor.Write("provider.inc", kProvider);
  vendor.Write("r.mof",
               "#pragma include(\"cim/schema.inc\")\n# PRAGMA Include ( \"provider.inc\" )\n" +
                   std::string(kModule) + Capabilities("2"));
  const auto read = vendor.Read();
  EXPECT_EQ(ShowFindings(read), "");
  EXPECT_EQ(ShowAll(read), "A root/x P libacme.so I");
  EXPECT_THAT(read.GetFiles(), SizeIs(1));
  EXPECT_THAT(read.GetPureFiles(), IsEmpty());
}

TEST(RegistrationMofTest, MofThatOnlySpeaksOfTheClassesIsNoRegistration) {
  const auto read = Read("/* like a PG_Provider of yours */ class A { string PG_Provider; };");
  EXPECT_THAT(read.GetFiles(), IsEmpty());
  EXPECT_THAT(read.GetFindings(), IsEmpty());
}

TEST(RegistrationMofTest, ConsumersAndQueriesAreNotedAndNotDriven) {
  const auto read = Read(std::string(kModule) + kProvider + Capabilities("6") +
                         Capabilities("2,7", "\"root/x\"", "B", "C2"));
  EXPECT_THAT(read.GetProblems(), IsEmpty());
  EXPECT_EQ(ShowAll(read), "B root/x P libacme.so I");
  EXPECT_THAT(ShowFindings(read), HasSubstr("\"C1\" of class A: ProviderType 6 is not driven"));
  EXPECT_THAT(ShowFindings(read), HasSubstr("\"C2\" of class B: ProviderType 7 is not driven"));
}

TEST(RegistrationMofTest, AProviderWithoutCapabilitiesIsAWarning) {
  const auto read = Read(std::string(kModule) + kProvider);
  EXPECT_THAT(ShowFindings(read), HasSubstr("PG_Provider \"P\" serves no class"));
  EXPECT_THAT(read.GetProblems(), IsEmpty());
}

struct TBadMof {
  const char* name;
  std::string text;
  const char* reason;
};
void PrintTo(const TBadMof& row, std::ostream* out) {
  *out << row.name;
}

class BadMofTest : public testing::TestWithParam<TBadMof> {};

TEST_P(BadMofTest, IsReportedByName) {
  const auto read = Read(GetParam().text);
  ASSERT_THAT(read.GetProblems(), SizeIs(1)) << ShowFindings(read);
  EXPECT_THAT(read.GetProblems()[0], HasSubstr("acmeR.mof"));
  EXPECT_THAT(read.GetProblems()[0], HasSubstr(GetParam().reason));
  EXPECT_THAT(read.GetProblems()[0], ::testing::EndsWith("; see rule R12"));
  EXPECT_EQ(ShowAll(read), "");
}

std::string With(const std::string& module) {
  return module + kProvider + Capabilities("2");
}

INSTANTIATE_TEST_SUITE_P(
    Mof, BadMofTest,
    testing::Values(
        TBadMof{"NoModule", kProvider + Capabilities("2"), "there is no PG_ProviderModule \"M\""},
        TBadMof{"NoProvider", kModule + Capabilities("2"),
                "\"C1\" of class A: there is no PG_Provider \"P\" of module \"M\""},
        TBadMof{"OtherInterface",
                With("instance of PG_ProviderModule { Name = \"M\"; Location = \"l\"; "
                     "InterfaceType = \"C++Default\"; };"),
                "module \"M\" has the interface \"C++Default\", and only CMPI is hosted"},
        TBadMof{"NoInterface",
                With("instance of PG_ProviderModule { Name = \"M\"; Location = \"l\"; };"),
                "has the interface \"\""},
        TBadMof{"NoLocation",
                With("instance of PG_ProviderModule { Name = \"M\"; InterfaceType = \"CMPI\"; };"),
                "module \"M\" has no Location"},
        TBadMof{"NoClass", std::string(kModule) + kProvider + Capabilities("2", "\"x\"", ""),
                "\"\" is not a class name"},
        TBadMof{"NoNamespace", std::string(kModule) + kProvider + Capabilities("2", ""),
                "has no Namespaces"},
        TBadMof{"NoType", std::string(kModule) + kProvider + Capabilities(""),
                "has no ProviderType"},
        TBadMof{"UnknownType", std::string(kModule) + kProvider + Capabilities("2, 99"),
                "unknown ProviderType 99"}),
    [](const auto& row) { return row.param.name; });

TEST(RegistrationMofTest, AnotherInterfaceBesideCmpiIsAWarningAndCmpiCounts) {
  const auto read = Read(With(kModule) +
                         "instance of PG_ProviderModule { Name = \"N\"; Location = \"n\"; "
                         "InterfaceType = \"C++Default\"; };"
                         "instance of PG_Provider { ProviderModuleName = \"N\"; Name = \"Q\"; };"
                         "instance of PG_ProviderCapabilities { ProviderModuleName = \"N\"; "
                         "ProviderName = \"Q\"; CapabilityID = \"C2\"; ClassName = \"B\"; "
                         "Namespaces = {\"root/x\"}; ProviderType = {2}; };");
  EXPECT_THAT(read.GetProblems(), IsEmpty());
  EXPECT_EQ(ShowAll(read), "A root/x P libacme.so I");
  EXPECT_THAT(ShowFindings(read), HasSubstr("\"C2\" of class B: module \"N\" has the interface "
                                            "\"C++Default\", and only CMPI is hosted"));
}

TEST(RegistrationMofTest, ASyntaxErrorHasItsPlaceAndTheOtherInstancesCount) {
  const auto read = Read(std::string("instance of PG_Provider { Name = ; };\n") + kModule +
                         kProvider + Capabilities("2"));
  ASSERT_THAT(read.GetProblems(), SizeIs(1)) << ShowFindings(read);
  EXPECT_THAT(read.GetProblems()[0], HasSubstr("acmeR.mof:1:"));
  EXPECT_EQ(ShowAll(read), "A root/x P libacme.so I");
}

TEST(RegistrationMofTest, PropertiesOfOtherVersionsAreTakenAndUnknownOnesWarnedOf) {
  const auto read = Read(std::string(kProvider) + Capabilities("2") + R"(
      instance of PG_ProviderModule { Name = "M"; InterfaceType = "CMPI"; Location = "acme";
        UserContext = 2; OperationalStatus = {2}; Colour = "red"; };)");
  EXPECT_THAT(read.GetProblems(), IsEmpty());
  EXPECT_EQ(ShowAll(read), "A root/x P libacme.so I");
  EXPECT_THAT(ShowFindings(read), HasSubstr("warning: "));
  EXPECT_THAT(ShowFindings(read), HasSubstr("acmeR.mof: PG_ProviderModule has no property Colour"));
  EXPECT_EQ(read.GetFindings().size(), 1U);
}

}  // namespace
}  // namespace NZEPQEL20
