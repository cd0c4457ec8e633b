// SPDX-License-Identifier: Apache-2.0
// Providers that are registered for any namespace, or for one kind of functions alone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "platform/cmpi/TCMPIOperations.h"
#include "platform/contract/TQELException.h"
#include "tests/support/TTemporaryFolder.h"

namespace NZEPQEL20 {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kClasses[] = R"(
class BAD_Base { [Key] string InstanceID; uint32 Run(); };
class BAD_Object : BAD_Base { };
[Association] class BAD_Link { [Key] BAD_Base ref A; [Key] BAD_Base ref B; };
)";

/// Hosts a library that answers every enumeration with one instance.
std::unique_ptr<TCMPIOperations> Host(const TTemporaryFolder& folder, const std::string& lines) {
  std::filesystem::create_symlink(std::string(DIAGS_BAD_DIR) + "/libnodone.so",
                                  folder.GetPath("libnodone.so"));
  TRegistrations registrations;
  registrations.Load(folder.Write("bad.registration", lines));
  auto classes = std::make_shared<TClassRepository>();
  EXPECT_THAT(classes->LoadText(kClasses, "bad.mof"), IsEmpty());
  return std::make_unique<TCMPIOperations>(classes, registrations);
}

std::size_t Count(TCMPIOperations& operations, const std::string& nameSpace,
                  const std::string& className = "BAD_Base") {
  std::size_t count = 0;
  operations.EnumerateInstances(nameSpace, className, [&count](TCIMInstanceData&&) {
    ++count;
    return true;
  });
  return count;
}

TEST(AnyNamespaceTest, AStarServesEveryNamespaceAndIsNoneItself) {
  const TTemporaryFolder folder;
  const auto operations = Host(folder, "BAD_Object * Bad nodone instance\n");
  EXPECT_EQ(Count(*operations, "root/cimv2"), 1U);
  EXPECT_EQ(Count(*operations, "root/acme/deep"), 1U);
  EXPECT_THAT(operations->GetNamespaces(), ElementsAre("root/cimv2"));
  ASSERT_EQ(operations->GetProviders().size(), 1U);
  EXPECT_EQ(operations->GetProviders()[0].nameSpace, "root/cimv2");
}

TEST(AnyNamespaceTest, AProviderIsAskedOnceWhereBothAStarAndItsNameHold) {
  const TTemporaryFolder folder;
  const auto operations = Host(folder,
                               "BAD_Object * Bad nodone instance\n"
                               "BAD_Object root/cimv2 Bad nodone instance\n");
  EXPECT_EQ(Count(*operations, "root/cimv2"), 1U);
}

TEST(AnyNamespaceTest, ANameHoldsForItsNamespaceAlone) {
  const TTemporaryFolder folder;
  const auto operations = Host(folder, "BAD_Object root/acme Bad nodone instance\n");
  EXPECT_EQ(Count(*operations, "/Root/ACME"), 1U);
  EXPECT_EQ(Count(*operations, "root/cimv2"), 0U);
  EXPECT_THAT(operations->GetNamespaces(), ElementsAre("root/cimv2", "root/acme"));
}

TEST(AnyNamespaceTest, AClassWithoutInstanceFunctionsHasNoInstancesAndDisturbsNobody) {
  const TTemporaryFolder folder;
  const auto operations = Host(folder,
                               "BAD_Object root/cimv2 Bad nodone instance\n"
                               "BAD_Base root/cimv2 Bad nodone method\n"
                               "BAD_Link root/cimv2 Bad nodone method\n");
  EXPECT_EQ(Count(*operations, "root/cimv2", "BAD_Link"), 0U);
  EXPECT_EQ(Count(*operations, "root/cimv2"), 1U);
  EXPECT_THAT(operations->GetProblems(), IsEmpty());
}

TEST(AnyNamespaceTest, AnAssociationWhoseReferencesAreRefusedIsAFailure) {
  const TTemporaryFolder folder;
  const auto operations = Host(folder,
                               "BAD_Object root/cimv2 Bad nodone instance\n"
                               "BAD_Link root/cimv2 Bad nodone association\n");
  try {
    Count(*operations, "root/cimv2", "BAD_Link");
    ADD_FAILURE() << "no failure";
  } catch (const TQELException& failure) {
    EXPECT_THAT(failure.what(), testing::HasSubstr("not for you: references"));
  }
  EXPECT_EQ(Count(*operations, "root/cimv2"), 1U);
}

}  // namespace
}  // namespace NZEPQEL20
