// SPDX-License-Identifier: Apache-2.0
#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/cmpi/LibraryLoading.h"
#include "platform/cmpi/TElfFile.h"
#include "tests/platform/cmpi/registrations/TVendor.h"

namespace NZEPQEL20 {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

TEST(ElfFileTest, TellsSymbolsAndNeedsOfALibrary) {
  const TElfFile common(std::string(DIAGS_VENDOR_DIR) + "/libvendorCommon.so");
  EXPECT_EQ(common.GetFault(), "");
  EXPECT_THAT(common.GetSymbols(), Contains("VendorCommon"));
  const TElfFile needs(std::string(DIAGS_VENDOR_DIR) + "/libneedscommon.so");
  EXPECT_THAT(needs.GetNeeded(), Contains("libvendorCommon.so.0"));
  // What it needs of others is not its own.
  EXPECT_THAT(needs.GetSymbols(), ::testing::Not(Contains("VendorCommon")));
}

struct TPatch {
  const char* name;
  std::size_t place;
  const char* bytes;
  const char* fault;
};
void PrintTo(const TPatch& row, std::ostream* out) {
  *out << row.name;
}

class OtherLibraryTest : public testing::TestWithParam<TPatch> {};

TEST_P(OtherLibraryTest, IsExplained) {
  std::string bytes = ReadLibrary("libneedscommon.so");
  bytes.replace(GetParam().place, 2, GetParam().bytes, 2);
  const TVendor vendor;
  const TElfFile elf(vendor.Write("libx.so", bytes));
  EXPECT_THAT(elf.GetFault(), HasSubstr(GetParam().fault));
  EXPECT_TRUE(elf.GetSymbols().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Headers, OtherLibraryTest,
    testing::Values(TPatch{"NoMark", 0, "xx", "is no library (no ELF header)"},
                    TPatch{"OtherMachine", 18, "\x16\x00", "is for s390, this machine is "},
                    TPatch{"BigEndian", EI_DATA, "\x02\x01", "is for machine "},
                    TPatch{"UnknownMachine", 18, "\x77\x77", "is for machine 30583"},
                    TPatch{"OtherClass", EI_CLASS, "\x01\x01", "is a 32-bit library"},
                    TPatch{"NoSharedObject", 16, "\x01\x00", "is no shared library"}),
    [](const auto& row) { return row.param.name; });

TEST(ElfFileTest, WhatIsNoFileOfBytesIsExplained) {
  EXPECT_THAT(TElfFile("/no/such").GetFault(), HasSubstr("cannot be read: No such file"));
  EXPECT_THAT(TElfFile("/").GetFault(), HasSubstr("not a regular file"));
  const TVendor vendor;
  EXPECT_THAT(TElfFile(vendor.Write("empty", "")).GetFault(), HasSubstr("no ELF header"));
}

TEST(ElfFileTest, CutsAndFlippedBytesAnywhereAreSurvived) {
  const std::string whole = ReadLibrary("libneedscommon.so");
  const TVendor vendor;
  for (std::size_t size = 0; size < whole.size(); size += 509) {
    TElfFile(vendor.Write("cut", whole.substr(0, size)));
  }
  std::size_t survived = 0;
  for (std::size_t place = 0; place < whole.size(); place += 37) {
    std::string bytes = whole;
    bytes[place] = '\xFF';
    survived += TElfFile(vendor.Write("flipped", bytes)).GetFault().empty() ? 1U : 0U;
  }
  EXPECT_GT(survived, 0U);
}

TEST(ElfFileTest, EntryPointsAreKnownByTheirNames) {
  EXPECT_THAT(FindFactories({"main", "_Z17B_Create_MethodMIv", "A_Create_InstanceMI", "A_Create_"}),
              ::testing::ElementsAre("A_Create_InstanceMI", "_Z17B_Create_MethodMIv"));
}

}  // namespace
}  // namespace NZEPQEL20
