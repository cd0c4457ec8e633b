// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/cmpi/TLibraryFinder.h"
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
  const std::vector<std::string> files = {vendor.Write("a/libx.so", "not for here"),
                                          vendor.GetPath("b/libx.so"), vendor.GetPath("c/libx.so")};
  const TFoundLibrary found = TLibraryFinder(vendor.GetPath(), files).Find("x", vendor.GetPath());
  EXPECT_EQ(found.path, files[1]);
  EXPECT_EQ(found.doubt, files[1] + " is taken, not " + files[2]);
}

TEST(LibraryFinderTest, APathOrAChoiceIsAWarningOfTheRegistration) {
  const TVendor vendor;
  vendor.Write("acme.registration", "A root/x P /opt/acme/libx.so instance\n");
  vendor.Write("a/libx.so", "");
  vendor.Write("b/libx.so", "");
  const auto read = vendor.Read();
  EXPECT_TRUE(read.GetEntries().at(0).hasLibrary);
  EXPECT_EQ(read.GetEntries().at(0).library, vendor.GetPath("a/libx.so"));
  EXPECT_THAT(ShowFindings(read), HasSubstr("library \"/opt/acme/libx.so\" is a path; "));
  EXPECT_THAT(ShowFindings(read), HasSubstr("is there several times: "));
  EXPECT_THAT(read.GetProblems(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace NZEPQEL20
