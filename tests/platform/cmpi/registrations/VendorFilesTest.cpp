// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/platform/cmpi/registrations/TVendor.h"

namespace NZEPQEL20 {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(VendorFilesTest, AreListedByNameAFoldersOwnBeforeThoseBelow) {
  const TVendor vendor;
  const std::string deep = vendor.Write("lib/x/liba.so", "");
  const std::string b = vendor.Write("zb.mof", "");
  const std::string a = vendor.Write("mof/a.mof", "");
  vendor.Write(".hidden", "");
  vendor.Write(".git/config", "");
  const TVendorFiles found = ListVendorFiles(vendor.GetPath());
  EXPECT_THAT(found.files, ElementsAre(b, deep, a));
  EXPECT_THAT(found.problems, IsEmpty());
  EXPECT_THAT(ListVendorFiles(vendor.GetPath(), 0).files, ElementsAre(b));
}

TEST(VendorFilesTest, LinksAreFollowedAndALoopIsWalkedOnce) {
  const TVendor vendor;
  const TVendor elsewhere;
  const std::string file = vendor.Write("mof/a.mof", "");
  elsewhere.Write("b.mof", "");
  std::filesystem::create_symlink(vendor.GetPath(), vendor.GetPath("mof/up"));
  std::filesystem::create_symlink("self", vendor.GetPath("self"));
  std::filesystem::create_symlink(elsewhere.GetPath(), vendor.GetPath("other"));
  const TVendorFiles found = ListVendorFiles(vendor.GetPath());
  EXPECT_THAT(found.files,
              ElementsAre(vendor.GetPath("self"), file, vendor.GetPath("other/b.mof")));
}

TEST(VendorFilesTest, DepthIsBoundedAndSaidSo) {
  const TVendor vendor;
  const std::string high = vendor.Write("1/2/3/4/5/6/7/8/high.mof", "");
  vendor.Write("1/2/3/4/5/6/7/8/9/low.mof", "");
  const TVendorFiles found = ListVendorFiles(vendor.GetPath());
  EXPECT_THAT(found.files, ElementsAre(high));
  EXPECT_THAT(found.problems, ElementsAre(HasSubstr("/8/9: lies deeper than 8 folders")));
}

TEST(VendorFilesTest, AFolderThatIsNotThereIsAProblem) {
  EXPECT_THAT(ListVendorFiles("/no/such/folder").problems,
              ElementsAre("/no/such/folder: cannot be read: No such file or directory"));
}

struct TName {
  const char* name;
  bool isLibrary;
  bool isMof;
  bool isRegistration;
};
void PrintTo(const TName& row, std::ostream* out) {
  *out << row.name;
}

class VendorNameTest : public testing::TestWithParam<TName> {};

TEST_P(VendorNameTest, TellsWhatTheFileIs) {
  const std::string file = std::string("/x.so/y.mof/") + GetParam().name;
  EXPECT_EQ(IsLibraryName(file), GetParam().isLibrary);
  EXPECT_EQ(IsMofName(file), GetParam().isMof);
  EXPECT_EQ(IsRegistrationName(file), GetParam().isRegistration);
}

INSTANTIATE_TEST_SUITE_P(
    Names, VendorNameTest,
    testing::Values(TName{"liba.so", true, false, false},
                    TName{"liba.so.1.2.3", true, false, false}, TName{"a.so", true, false, false},
                    TName{"liba.so.conf", false, false, false},
                    TName{"liba.soon", false, false, false}, TName{"x.mof", false, true, false},
                    TName{"X.MOF", false, true, false}, TName{".mof", false, false, false},
                    TName{"a.reg", false, false, true}, TName{"a.Registration", false, false, true},
                    TName{"reg", false, false, false}));

}  // namespace
}  // namespace NZEPQEL20
