// SPDX-License-Identifier: Apache-2.0
// Whether discovery would find the tests of a folder.
#include <gmock/gmock.h>

#include <filesystem>

#include "platform/setup/OfferCheck.h"
#include "tests/platform/setup/store/TStoreTest.h"

namespace NZEPQEL20::setup {
namespace {

using ::testing::HasSubstr;

constexpr char kSchema[] =
    "class CIM_DiagnosticService { [Key] string Name; };\n"
    "class CIM_DiagnosticTest : CIM_DiagnosticService { };\n"
    "class CIM_AvailableDiagnosticService { [Key] string Id; };\n"
    "class A_Test : CIM_DiagnosticTest { };\n"
    "class A_Link : CIM_AvailableDiagnosticService { };\n"
    "class A_Other : CIM_AvailableDiagnosticService { };\n"
    "class CIM_ConcreteJob { [Key] string InstanceID; };\n"
    "class A_Job : CIM_ConcreteJob { };\n"
    "class CIM_DiagnosticCompletionRecord { [Key] string InstanceID; };\n"
    "class A_Record : CIM_DiagnosticCompletionRecord { };\n"
    "class A_Device { [Key] string Id; };\n";

struct TOffer {
  const char* name;
  const char* registration;  ///< Namespace "root/x" is looked in.
  const char* finding;       ///< Behind the folder's name; empty for none.
};
void PrintTo(const TOffer& row, std::ostream* out) {
  *out << row.name;
}

class OfferCheckBase : public TStoreTest {
 protected:
  OfferCheckBase() { m_classes.LoadText(kSchema, "schema"); }
  std::string CheckIn(const std::string& nameSpace) const {
    return ShowAll(
        CheckOffer(m_classes, m_store.Read(m_vendor.GetPath()), m_store.List(), nameSpace));
  }
  TClassRepository m_classes;
};

class OfferCheckTest : public OfferCheckBase, public testing::WithParamInterface<TOffer> {};

TEST_P(OfferCheckTest, SaysWhyNoTestWouldBeFound) {
  m_vendor.Write("x.registration", GetParam().registration);
  const std::string finding = GetParam().finding;
  EXPECT_EQ(CheckIn("root/x"),
            finding.empty() ? "" : "warning T1: " + m_vendor.GetPath() + ": " + finding + '\n');
}

constexpr char kNoLink[] =
    "registers the test A_Test and no subclass of CIM_AvailableDiagnosticService, so that no test "
    "of it is found; register one as instance";
constexpr char kNotFound[] =
    "A_Link, A_Other: registered neither as instance nor as association, so that no test of it is "
    "found; add the type instance to the registration";
constexpr char kElsewhere[] =
    "is registered in root/y, root/z, and `diagsrun list` looks in root/x; `diagsrun --namespace "
    "root/y list` looks there";

INSTANTIATE_TEST_SUITE_P(
    Offers, OfferCheckTest,
    testing::Values(
        TOffer{"Whole",
               "A_Test root/x P l instance method\nA_Link root/x P l instance\n"
               "A_Job root/x P l instance method\nA_Record root/x P l instance\n",
               ""},
        TOffer{"AnyNamespace", "A_Link * P l instance\n", ""},
        TOffer{"OtherCase", "a_link ROOT/X P l instance\n", ""},
        TOffer{"OneOfSeveralNamespaces", "A_Link root/y P l instance\nA_Link root/x P l instance\n",
               ""},
        TOffer{"NoTests", "A_Device root/x P l instance\n", ""},
        TOffer{"NoLink", "A_Test root/x P l instance method\n", kNoLink},
        TOffer{"AssociationAlone", "A_Link root/x P l association\n", ""},
        TOffer{"MethodAlone", "A_Link root/x P l method\nA_Other root/x P l method property\n",
               kNotFound},
        TOffer{"OneOfTwoIsEnumerated",
               "A_Link root/x P l method\nA_Other root/x P l instance association\n", ""},
        TOffer{"LinkElsewhere",
               "A_Link root/z P l instance\nA_Link root/y P l instance\nA_Test root/x P l "
               "instance\n",
               kElsewhere},
        TOffer{"AllElsewhere", "A_Device root/z P l instance\nA_Device root/y P l instance\n",
               kElsewhere}),
    [](const auto& row) { return row.param.name; });

TEST_F(OfferCheckTest, TheNamespaceThatIsLookedInIsTheOneThatWasNamed) {
  m_vendor.Write("x.registration", "A_Link root/y P l instance\n");
  EXPECT_EQ(CheckIn("root/y"), "");
  EXPECT_THAT(CheckIn("root/q"), HasSubstr("looks in root/q; "));
}

struct TPartsOffer {
  const char* name;
  std::string registration;  ///< Beside the class that joins tests and devices.
  std::vector<const char*> findings;
};
void PrintTo(const TPartsOffer& row, std::ostream* out) {
  *out << row.name;
}

class PartsCheckTest : public OfferCheckBase, public testing::WithParamInterface<TPartsOffer> {};

TEST_P(PartsCheckTest, SaysWhyATestCouldNotBeRunToItsEnd) {
  m_vendor.Write("x.registration", "A_Link root/x P l instance\n" + GetParam().registration);
  std::string expected;
  for (const char* finding : GetParam().findings) {
    std::string line = finding;
    expected += "warning " + line.replace(2, 0, ": " + m_vendor.GetPath() + ':') + '\n';
  }
  EXPECT_EQ(CheckIn("root/x"), expected);
}

constexpr char kTestLine[] = "A_Test root/x P l instance method\n";
constexpr char kJobLine[] = "CIM_ConcreteJob root/x P l instance\n";
constexpr char kRecordLine[] = "A_Record root/x P l instance\n";
constexpr char kNoJob[] =
    "T6 registers tests and no subclass of CIM_ConcreteJob as instance, so that no test of it can "
    "be followed; register one as instance";

INSTANTIATE_TEST_SUITE_P(
    Offers, PartsCheckTest,
    testing::Values(
        TPartsOffer{"Whole", std::string(kTestLine) + kJobLine + kRecordLine, {}},
        TPartsOffer{"NoMethod",
                    std::string("A_Test root/x P l instance\n") + kJobLine + kRecordLine,
                    {"T1 A_Test: not registered as method, so that none of their tests can be "
                     "started; add the type method to the registration"}},
        TPartsOffer{"NoInstance",
                    std::string("A_Test root/x P l method\n") + kJobLine + kRecordLine,
                    {"T1 A_Test: not registered as instance, so that none of their tests is found; "
                     "add the type instance to the registration"}},
        TPartsOffer{
            "MethodOfTheClassAbove",
            std::string("A_Test root/x P l instance\nCIM_DiagnosticTest root/x P l instance "
                        "method\n") +
                kJobLine + kRecordLine,
            {}},
        TPartsOffer{"NoJob", std::string(kTestLine) + kRecordLine, {kNoJob}},
        TPartsOffer{"JobAsMethod",
                    std::string(kTestLine) + "A_Job root/x P l method\n" + kRecordLine,
                    {kNoJob}},
        TPartsOffer{"NoRecord",
                    std::string(kTestLine) + kJobLine,
                    {"T7 registers tests and no subclass of CIM_DiagnosticCompletionRecord as "
                     "instance, so that no test of it gets a verdict; register one as instance"}}),
    [](const auto& row) { return row.param.name; });

TEST_F(OfferCheckTest, TheVersionThatIsReplacedHelpsNoTest) {
  const std::string rest = std::string("A_Link root/x P l instance\n") + kJobLine + kRecordLine;
  const std::string name = std::filesystem::path(m_vendor.GetPath()).filename().string();
  m_root.Write("providers/" + name + "/x.registration", rest + kTestLine);
  m_vendor.Write("x.registration", rest + "A_Test root/x P l instance\n");
  EXPECT_THAT(CheckIn("root/x"), HasSubstr("A_Test: not registered as method"));
}

TEST_F(OfferCheckTest, AnotherFolderMayJoinTheTestsToTheirDevices) {
  m_vendor.Write("x.registration", std::string(kTestLine) + kJobLine + kRecordLine);
  m_root.Write("providers/links/l.registration", "A_Link root/x Q l instance\n");
  EXPECT_EQ(CheckIn("root/x"), "");
}

TEST_F(OfferCheckTest, TheCheckOfAFolderHasIt) {
  Take(DIAGS_PROBED_DIR "/libgood.so", "libgood.so");
  m_vendor.Write("x.registration", "A_Base root/y Probed good instance\n");
  EXPECT_THAT(ShowAll(Check()), HasSubstr("warning T1: " + m_vendor.GetPath()));
}

class FollowerTest : public TStoreTest, public testing::WithParamInterface<TOffer> {};

TEST_P(FollowerTest, IsNotToldBesideItsCause) {
  Take(DIAGS_PROBED_DIR "/libgood.so", "libgood.so");
  m_vendor.Write("x.registration", GetParam().registration);
  const auto findings = Check();
  ASSERT_EQ(findings.size(), 1U) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]), testing::StartsWith(GetParam().finding));
}

INSTANTIATE_TEST_SUITE_P(
    Causes, FollowerTest,
    testing::Values(
        TOffer{"MisspeltProvider", "A_Base root/x Probde good instance\n", "error R4: "},
        TOffer{"MisspeltLibrary", "A_Base root/x Probed goood instance\n", "error R13: "},
        TOffer{"HalfALine", "A_Base root/x Probed good\n", "error R2: "},
        TOffer{"HalfASection", "[A_Base]\nprovider: Probed\n", "error R11: "}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace NZEPQEL20::setup
