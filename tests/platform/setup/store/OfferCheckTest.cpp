// SPDX-License-Identifier: Apache-2.0
// Whether discovery would find the tests of a folder.
#include <gmock/gmock.h>

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
    "class A_Device { [Key] string Id; };\n";

struct TOffer {
  const char* name;
  const char* registration;  ///< Namespace "root/x" is looked in.
  const char* finding;       ///< Behind the folder's name; empty for none.
};
void PrintTo(const TOffer& row, std::ostream* out) {
  *out << row.name;
}

class OfferCheckTest : public TStoreTest, public testing::WithParamInterface<TOffer> {
 protected:
  OfferCheckTest() { m_classes.LoadText(kSchema, "schema"); }
  std::string CheckIn(const std::string& nameSpace) const {
    return ShowAll(
        CheckOffer(m_classes, m_store.Read(m_vendor.GetPath()), m_store.List(), nameSpace));
  }
  TClassRepository m_classes;
};

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
        TOffer{"Whole", "A_Test root/x P l instance method\nA_Link root/x P l instance\n", ""},
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

TEST_F(OfferCheckTest, AnotherFolderMayJoinTheTestsToTheirDevices) {
  m_vendor.Write("x.registration", "A_Test root/x P l instance method\n");
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
