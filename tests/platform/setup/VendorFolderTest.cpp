// SPDX-License-Identifier: Apache-2.0
// Vendors' folders as they are shipped, read at set-up.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/setup/ProviderSetup.h"
#include "platform/setup/VendorSchema.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20::setup {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr char kBase[] = "class A_Base { [Key] string InstanceID; };\n";

constexpr char kPegasus[] = R"(
  instance of PG_ProviderModule { Name = "M"; InterfaceType = "CMPI"; Location = "acme"; };
  instance of PG_Provider { ProviderModuleName = "M"; Name = "P"; };
  instance of PG_ProviderCapabilities { ProviderModuleName = "M"; ProviderName = "P";
    CapabilityID = "1"; ClassName = "A_Base"; Namespaces = {"root/x"}; ProviderType = {2}; };
)";

class VendorFolderTest : public ::testing::Test {
 protected:
  VendorFolderTest() { m_root.Write("schema/base.mof", kBase); }

  TProviderSetup Open() const { return OpenProviders(m_root.GetPath(), "root/cimv2"); }

  /// What was wrong while reading, without what the libraries have to say.
  std::vector<std::string> GetAllProblems() const {
    const TProviderSetup setup = Open();
    std::vector<std::string> problems = setup.problems;
    for (const std::string& problem : setup.operations->GetProblems()) {
      if (problem.find("cannot be loaded") == std::string::npos) problems.push_back(problem);
    }
    return problems;
  }

  TTemporaryFolder m_root;
};

TEST_F(VendorFolderTest, ClassesAndRegistrationsAreReadFromFoldersBelow) {
  m_root.Write("providers/acme/mof/classes/acme.mof", "class A_Acme : A_Base { };\n");
  m_root.Write("providers/acme/reg/acme.reg",
               "[A_Acme]\nprovider: P\nlocation: acme\ntype: instance\nnamespace: root/acme\n");
  m_root.Write("providers/acme/lib/libacme.so", "");
  const TProviderSetup setup = Open();
  EXPECT_THAT(setup.problems, IsEmpty());
  EXPECT_THAT(setup.operations->GetNamespaces(), ElementsAre("root/cimv2", "root/acme"));
  EXPECT_EQ(setup.operations->GetClass("root/acme", "A_Acme")->superclass, "A_Base");
  EXPECT_THAT(setup.operations->GetProblems(),
              ElementsAre(HasSubstr("provider library " + m_root.GetPath() +
                                    "/providers/acme/lib/libacme.so cannot be loaded: ")));
}

TEST_F(VendorFolderTest, ARegistrationInMofIsNoPartOfTheSchema) {
  m_root.Write("providers/acme/acmeR.mof", kPegasus);
  EXPECT_THAT(GetAllProblems(), IsEmpty());
  EXPECT_THAT(Open().classes->GetInstances(), IsEmpty());
  EXPECT_THAT(Open().operations->GetNamespaces(), ElementsAre("root/cimv2", "root/x"));
}

TEST_F(VendorFolderTest, ARegistrationBesideClassesInOneFileIsReadForBoth) {
  m_root.Write("providers/acme/acme.mof", std::string("class A_More : A_Base { };\n") + kPegasus);
  EXPECT_THAT(GetAllProblems(), IsEmpty());
  EXPECT_NE(Open().classes->Find("A_More"), nullptr);
  EXPECT_THAT(Open().operations->GetNamespaces(), ElementsAre("root/cimv2", "root/x"));
}

TEST_F(VendorFolderTest, AFileThatAnotherIncludesIsReadOnceAndThere) {
  // Read by itself first, the instance would be in no namespace.
  m_root.Write("providers/acme/a_part.mof", "instance of A_Base { InstanceID = \"1\"; };\n");
  m_root.Write("providers/acme/z_all.mof",
               "#pragma namespace (\"root/acme\")\n# Pragma include(\"A_Part.mof\")\n"
               "#pragma include (\"a_part.mof\")\n");
  const TProviderSetup setup = Open();
  const std::vector<TCIMInstanceData> instances = setup.classes->GetInstances();
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(instances[0].path.GetNamespaceName(), "root/acme");
}

TEST_F(VendorFolderTest, AnotherNameOfAnIncludedFileIsReadBehindWhatIncludesIt) {
  const std::string part = m_root.Write("m/part.mof", "class A_A { };");
  const std::string other = m_root.GetPath("m/a_link.mof");
  std::filesystem::create_symlink("part.mof", other);
  for (const char* words : {"part.mof", "PART.mof", "./part.mof", "../m/part.mof", "a_link.mof"}) {
    const std::string all =
        m_root.Write("m/z.mof", "#pragma include (\"" + std::string(words) + "\")\n");
    EXPECT_THAT(OrderByIncludes({other, part, all}), ElementsAre(all, other, part)) << words;
  }
  const std::string none = m_root.Write("m/z.mof", "#pragma include (\"gone.mof\")\n");
  const std::string gone = m_root.GetPath("m/unread.mof");
  EXPECT_THAT(OrderByIncludes({gone, part, none}), ElementsAre(gone, part, none));
}

TEST_F(VendorFolderTest, ALibraryThatIsNotThereIsOneProblemWithItsRule) {
  m_root.Write("providers/acme/acme.registration",
               "A_Base root/x P gone instance\nA_Base root/y P gone instance\n");
  const TProviderSetup setup = Open();
  EXPECT_THAT(
      setup.operations->GetProblems(),
      ElementsAre(::testing::AllOf(HasSubstr("/providers/acme/libgone.so cannot be loaded: "),
                                   HasSubstr("No such file or directory; "),
                                   ::testing::EndsWith("; see rule R13"))));
}

TEST_F(VendorFolderTest, ADifferingClassOfAnotherVendorIsLeftOut) {
  m_root.Write("providers/acme/acme.mof", "class A_Acme : A_Base { };\n");
  m_root.Write("providers/zvil/z.mof", "class A_Acme : CIM_Foo { };\nclass A_Base : A_Acme { };\n");
  const TProviderSetup setup = Open();
  EXPECT_TRUE(setup.classes->IsA("A_Acme", "A_Base"));
  EXPECT_TRUE(setup.classes->IsComplete("A_Acme"));
  EXPECT_THAT(setup.problems, ElementsAre(HasSubstr("holds no provider")));
}

TEST_F(VendorFolderTest, WithoutAnyRegistrationThereIsNoProvider) {
  m_root.Write("providers/acme/acme.mof", "");
  EXPECT_THAT(Open().problems, ElementsAre(HasSubstr("/providers: holds no provider; ")));
}

TEST_F(VendorFolderTest, EveryProblemIsOneLineThatCitesARule) {
  m_root.Write("providers/a/a.registration", "half a line\nA_Nowhere root/x P l instance\n");
  m_root.Write("providers/b/b.reg", "[A_Base]\ncolour: red\n");
  m_root.Write("providers/c/c.mof",
               "instance of PG_ProviderCapabilities { ClassName = \"A_Base\"; "
               "ProviderName = \"P\"; };\n");
  m_root.Write("providers/d/d.mof", "class D_X { string };\n");
  const TProviderSetup setup = Open();
  std::vector<std::string> problems = setup.operations->GetProblems();
  problems.insert(problems.end(), setup.problems.begin(), setup.problems.end());
  EXPECT_EQ(problems.size(), 6U) << testing::PrintToString(problems);
  for (const std::string& problem : problems) {
    EXPECT_THAT(problem, HasSubstr("; see rule R"));
    EXPECT_EQ(problem.find('\n'), std::string::npos) << problem;
  }
}

TEST_F(VendorFolderTest, IncludesAreFoundWhereverTheyLead) {
  const std::string inner = m_root.Write("m/Inner/B.mof", "");
  const std::string file = m_root.Write(
      "m/a.mof",
      "  #  PRAGMA\tInclude ( \"inner\\b.mof\" )\r\n#pragma locale (\"en_US\")\n"
      "#pragma include (\"gone.mof\")\n//#pragma include (\"x.mof\")\n#pragma include");
  m_root.Write("m/x.mof", "");
  EXPECT_THAT(FindAllIncludes({file, "/no/such.mof"}), ElementsAre(inner));
  const std::string late = m_root.Write("m/gone.mof", "#pragma include (\"x.mof\")");
  EXPECT_THAT(FindAllIncludes({file}), ElementsAre(inner, late, m_root.GetPath("m/x.mof")));
  EXPECT_THAT(OrderByIncludes({inner, file}), ElementsAre(file, inner));
}

}  // namespace
}  // namespace NZEPQEL20::setup
