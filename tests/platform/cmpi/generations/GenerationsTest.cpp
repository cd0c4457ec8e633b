// SPDX-License-Identifier: Apache-2.0
//
// Providers built against the interface of other years, which the broker's own header has no part
// in.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <ostream>
#include <string>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/contract/TQELException.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

/// `library` is the parameter.
class GenerationsTest : public testing::TestWithParam<const char*> {
 protected:
  GenerationsTest() {
    std::filesystem::copy(std::string(GENERATIONS_DIR "/lib") + GetParam() + ".so",
                          m_folder.GetPath());
    m_folder.Write("g.registration",
                   std::string("G_Thing root/cimv2 Generation ") + GetParam() + " instance\n");
    auto classes = std::make_shared<TClassRepository>();
    classes->LoadText("class G_Thing { [Key] string Name; uint16 Level; string Home; };", "g.mof");
    TRegistrations registrations;
    registrations.Load(m_folder.GetPath("g.registration"));
    m_operations = std::make_unique<TCMPIOperations>(classes, registrations);
    m_operations->OpenLibraries();
    EXPECT_EQ(m_operations->GetProblems(), std::vector<std::string>());
  }

  static std::string Describe(const TCIMInstanceData& thing) {
    std::string text = thing.path.GetPath();
    for (const char* name : {"Name", "Level", "Home"}) {
      const TCIMPropertyData* property = thing.Find(name);
      text += ' ' + (property == nullptr ? "-" : property->value.ToString(10));
    }
    return text;
  }

  TTemporaryFolder m_folder;
  std::unique_ptr<TCMPIOperations> m_operations;
};

TEST_P(GenerationsTest, NamesItsInstances) {
  const auto names = m_operations->EnumerateInstanceNames("root/cimv2", "G_Thing");
  ASSERT_EQ(names.size(), 2U);
  EXPECT_EQ(names[0].GetPath(), "root/cimv2:G_Thing.Name=\"one\"");
  EXPECT_EQ(names[1].GetPath(), "root/cimv2:G_Thing.Name=\"two\"");
}

TEST_P(GenerationsTest, GivesItsInstancesAndAsksTheBrokerBack) {
  std::vector<std::string> things;
  m_operations->EnumerateInstances("root/cimv2", "G_Thing", [&](TCIMInstanceData&& thing) {
    things.push_back(Describe(thing));
    return true;
  });
  EXPECT_EQ(things, (std::vector<std::string>{"root/cimv2:G_Thing.Name=\"one\" one 1 root/cimv2",
                                              "root/cimv2:G_Thing.Name=\"two\" two 2 root/cimv2"}));
}

TEST_P(GenerationsTest, GivesOneInstanceByItsKey) {
  const TCIMReference path("root/cimv2", "G_Thing", {{"Name", TCIMValue("four")}});
  EXPECT_EQ(Describe(m_operations->GetInstance(path)),
            "root/cimv2:G_Thing.Name=\"four\" four 7 root/cimv2");
}

TEST_P(GenerationsTest, SaysWhatIsNotThere) {
  const TCIMReference path("root/cimv2", "G_Thing", {{"Name", TCIMValue("three")}});
  try {
    m_operations->GetInstance(path);
    FAIL() << "no exception";
  } catch (const TQELException& failure) {
    EXPECT_EQ(failure.GetCIMStatus(), 6U) << failure.what();
  }
}

TEST_P(GenerationsTest, AnswersNotSupportedForWhatItsTableDoesNotHave) {
  TCIMInstanceData thing;
  thing.path = TCIMReference("root/cimv2", "G_Thing", {{"Name", TCIMValue("one")}});
  try {
    m_operations->ModifyInstance(thing);
    FAIL() << "no exception";
  } catch (const TQELException& failure) {
    EXPECT_EQ(failure.GetCIMStatus(), 7U) << failure.what();
  }
}

INSTANTIATE_TEST_SUITE_P(Years, GenerationsTest,
                         testing::Values("generation90", "generation100", "generation200",
                                         "wrapped100"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace NZEPQEL20
