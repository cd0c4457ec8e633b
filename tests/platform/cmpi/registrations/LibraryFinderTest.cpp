// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/cmpi/TLibraryFinder.h"
#include "platform/cmpi/VendorFiles.h"
#include "tests/platform/cmpi/registrations/TVendor.h"

namespace NZEPQEL20 {
namespace {

using ::testing::HasSubstr;

struct TLocation {
  const char* name;
  std::vector<std::string> files;
  const char* location;
  const char* found;  ///< Below the folder; the registration is in `reg/`.
  bool isThere;
};
void PrintTo(const TLocation& row, std::ostream* out) {
  *out << row.name;
}

class LibraryLocationTest : public testing::TestWithParam<TLocation> {};

TEST_P(LibraryLocationTest, MeansAFileOfTheVendorsFolder) {
  std::vector<std::string> files;
  for (const std::string& file : GetParam().files) files.push_back("/v/" + file);
  const TFoundLibrary found = TLibraryFinder("/v", files).Find(GetParam().location, "/v/reg");
  EXPECT_EQ(found.path, std::string("/v/") + GetParam().found);
  EXPECT_EQ(found.isThere, GetParam().isThere);
  EXPECT_EQ(found.doubt, "");
}

INSTANTIATE_TEST_SUITE_P(
    Locations, LibraryLocationTest,
    testing::Values(
        TLocation{"Beside", {"liba.so", "reg/liba.so"}, "a", "reg/liba.so", true},
        TLocation{"Elsewhere", {"lib/liba.so", "lib/libb.so"}, "a", "lib/liba.so", true},
        TLocation{"Missing", {"lib/libb.so"}, "a", "reg/liba.so", false},
        TLocation{"FileName", {"lib/liba.so"}, "liba.so", "lib/liba.so", true},
        TLocation{"NameWithLib", {"lib/liba.so"}, "liba", "lib/liba.so", true},
        TLocation{"Path", {"lib/liba.so"}, "/usr/lib/cmpi/liba.so", "lib/liba.so", true},
        TLocation{"PathUpwards", {"liba.so"}, "../../a", "liba.so", true},
        TLocation{"VersionOnly", {"lib/liba.so.1.2"}, "a", "lib/liba.so.1.2", true},
        TLocation{"ExactBeforeVersion", {"liba.so.1", "z/liba.so"}, "a", "z/liba.so", true},
        TLocation{"WithoutLib", {"lib/a.so"}, "a", "lib/a.so", true},
        TLocation{"NoOtherName", {"liba.so.txt", "libaa.so"}, "a", "reg/liba.so", false}),
    [](const auto& row) { return row.param.name; });

TEST(LibraryFinderTest, OfSeveralTheFirstForThisMachineIsTakenAndSaidSo) {
  const TVendor vendor;
  const std::string own = std::string(DIAGS_VENDOR_DIR) + "/libneedscommon.so";
  for (const char* folder : {"b", "c"}) {
    std::filesystem::create_directory(vendor.GetPath(folder));
    std::filesystem::copy_file(own, vendor.GetPath(std::string(folder) + "/libx.so"));
  }
  std::ofstream(vendor.GetPath("c/libx.so"), std::ios::app) << "of its own";
  const std::vector<std::string> files = {vendor.Write("a/libx.so", "not for here"),
                                          vendor.GetPath("b/libx.so"), vendor.GetPath("c/libx.so")};
  const TFoundLibrary found = TLibraryFinder(vendor.GetPath(), files).Find("x", vendor.GetPath());
  EXPECT_EQ(found.path, files[1]);
  EXPECT_EQ(found.doubt, files[1] + " is taken, not " + files[2]);
}

TEST(LibraryFinderTest, OneLibraryUnderSeveralNamesIsNoChoice) {
  const TVendor vendor;
  const std::string real = vendor.Write("a/libx.so.1.2.3", std::string(100'000, 'x'));
  std::filesystem::create_symlink("libx.so.1.2.3", vendor.GetPath("a/libx.so.1"));
  std::filesystem::create_hard_link(real, vendor.GetPath("a/libx.so.2"));
  vendor.Write("b/libx.so.1", std::string(100'000, 'x'));
  TVendorFiles found = ListVendorFiles(vendor.GetPath());
  ASSERT_EQ(found.files.size(), 4U);
  EXPECT_EQ(TLibraryFinder(vendor.GetPath(), found.files).Find("x", vendor.GetPath()).doubt, "");
  // Longer than what is read at once, and other at the end only.
  const std::string other = vendor.Write("c/libx.so.1", std::string(99'999, 'x') + 'y');
  found = ListVendorFiles(vendor.GetPath());
  EXPECT_EQ(TLibraryFinder(vendor.GetPath(), found.files).Find("x", vendor.GetPath()).doubt,
            vendor.GetPath("a/libx.so.1") + " is taken, not " + other);
}

TEST(LibraryFinderTest, APathOrAChoiceIsAWarningOfTheRegistration) {
  const TVendor vendor;
  vendor.Write("acme.registration", "A root/x P /opt/acme/libx.so instance\n");
  vendor.Write("a/libx.so", "one");
  vendor.Write("b/libx.so", "two");
  const auto read = vendor.Read();
  EXPECT_TRUE(read.GetEntries().at(0).hasLibrary);
  EXPECT_EQ(read.GetEntries().at(0).library, vendor.GetPath("a/libx.so"));
  EXPECT_THAT(ShowFindings(read), HasSubstr("library \"/opt/acme/libx.so\" is a path; "));
  EXPECT_THAT(ShowFindings(read), HasSubstr("is there several times: "));
  EXPECT_THAT(read.GetProblems(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace NZEPQEL20
