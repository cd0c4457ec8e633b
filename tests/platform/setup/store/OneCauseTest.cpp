// SPDX-License-Identifier: Apache-2.0
// One thing that is wrong with a folder is one line, however much it spoils.
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/platform/setup/store/TStoreTest.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::SizeIs;

constexpr char kGood[] = DIAGS_PROBED_DIR "/libgood.so";

class OneCauseTest : public TStoreTest {
 protected:
  OneCauseTest() { Take(kGood, "lib/libgood.so"); }
  /// Registers A_1 to A_`count`, each in a line of its own.
  void Register(unsigned int count) const {
    std::string text;
    for (unsigned int i = 1; i <= count; ++i) {
      text += "A_" + std::to_string(i) + " root/x Probed good instance\n";
    }
    m_vendor.Write("x.registration", text);
  }
  /// Declares as many, each as `rest` says.
  void Declare(unsigned int count, const std::string& rest) const {
    std::string text;
    for (unsigned int i = 1; i <= count; ++i) text += "class A_" + std::to_string(i) + rest + '\n';
    m_vendor.Write("x.mof", text);
  }
  /// The one thing that the check finds.
  std::string CheckOne() const {
    const auto findings = Check();
    EXPECT_THAT(findings, SizeIs(1)) << ShowAll(findings);
    return findings.empty() ? "" : Show(findings[0]);
  }
};

TEST_F(OneCauseTest, ClassesWithoutTheirMofAreOneLine) {
  Register(50);
  EXPECT_EQ(CheckOne(), "error R3: " + m_vendor.GetPath("x.registration") +
                            ":1: classes A_1, A_2, A_3 and 47 more are not declared; add the MOF "
                            "files that declare them");
}

TEST_F(OneCauseTest, AFewClassesAreAllNamed) {
  Register(3);
  EXPECT_THAT(CheckOne(), HasSubstr(":1: classes A_1, A_2, A_3 are not declared; "));
}

TEST_F(OneCauseTest, ClassesBelowOneThatIsMissingAreOneLine) {
  Register(4);
  Declare(4, " : X_Gone { };");
  EXPECT_THAT(CheckOne(), HasSubstr(":1: classes A_1, A_2, A_3 and 1 more: their superclass X_Gone "
                                    "is not declared; "));
}

TEST_F(OneCauseTest, ClassesWithoutAKeyAreOneLine) {
  Register(5);
  Declare(5, " : A_Keyless { };");
  EXPECT_THAT(CheckOne(), HasSubstr("classes A_1, A_2, A_3 and 2 more have no key, and inherit "));
}

TEST_F(OneCauseTest, EachRegistrationFileHasItsLine) {
  m_vendor.Write("x.registration", "A_1 root/x Probed good instance\n");
  m_vendor.Write("y.registration", "A_2 root/x Probed good instance\n");
  const auto findings = Check();
  ASSERT_THAT(findings, SizeIs(2)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[1]), HasSubstr("y.registration:1: class A_2 is not declared"));
}

TEST_F(OneCauseTest, ALibraryNamedAsMofIsOneLine) {
  m_vendor.Write("x.registration", "A_Base root/x Probed good instance\n");
  Take(kGood, "broken.mof");
  EXPECT_EQ(CheckOne(), "warning R17: " + m_vendor.GetPath("broken.mof") +
                            ": cannot be read: holds binary data and no MOF text; mend the MOF");
}

TEST_F(OneCauseTest, ALibraryNamedAsARegistrationIsOneLine) {
  m_vendor.Write("x.registration", "A_Base root/x Probed good instance\n");
  Take(kGood, "broken.reg");
  EXPECT_EQ(CheckOne(), "error R1: " + m_vendor.GetPath("broken.reg") +
                            ": cannot be read: holds binary data and no registration; make it a "
                            "readable file");
}

TEST_F(OneCauseTest, AMofFileFullOfErrorsShowsTheFirstAndCountsTheOthers) {
  m_vendor.Write("x.registration", "A_Base root/x Probed good instance\n");
  std::string text;
  for (int i = 0; i < 30; ++i) text += "class { };\n";
  m_vendor.Write("x.mof", text);
  const auto findings = Check();
  ASSERT_THAT(findings, SizeIs(21)) << ShowAll(findings);
  EXPECT_THAT(Show(findings[0]), HasSubstr("x.mof:1:"));
  EXPECT_THAT(Show(findings[20]), HasSubstr("x.mof: and 10 more errors; "));
}

TEST_F(OneCauseTest, LinksToOneLibraryAndCopiesOfItAreNoSecondLibrary) {
  fs::rename(m_vendor.GetPath("lib/libgood.so"), m_vendor.GetPath("lib/libgood.so.1.2.3"));
  fs::create_symlink("libgood.so.1.2.3", m_vendor.GetPath("lib/libgood.so.1"));
  fs::create_symlink("libgood.so.1", m_vendor.GetPath("lib/libgood.so"));
  m_vendor.Write("x.registration", "A_Base root/x Probed good instance\n");
  EXPECT_EQ(ShowAll(Check()), "");
  // Without the plain name the versions are looked at.
  fs::remove(m_vendor.GetPath("lib/libgood.so"));
  EXPECT_EQ(ShowAll(Check()), "");
  fs::remove(m_vendor.GetPath("lib/libgood.so.1"));
  Take(kGood, "lib/libgood.so.1");
  Take(kGood, "lib/libgood.so");
  EXPECT_EQ(ShowAll(Check()), "");
  fs::remove(m_vendor.GetPath("lib/libgood.so"));
  fs::remove(m_vendor.GetPath("lib/libgood.so.1"));
  Take(DIAGS_BAD_DIR "/liboldtable.so", "lib/libgood.so.1");
  EXPECT_THAT(ShowAll(Check()), HasSubstr("warning R13: " + m_vendor.GetPath("x.registration") +
                                          ":1: library \"good\" is there several times: "));
}

}  // namespace
}  // namespace NZEPQEL20::setup
