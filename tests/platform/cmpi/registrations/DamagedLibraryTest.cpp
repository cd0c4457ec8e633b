// SPDX-License-Identifier: Apache-2.0
// Files that would end or hang the process if the loader had them.
#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <utility>

#include "platform/cmpi/LibraryLoading.h"
#include "platform/cmpi/TElfFile.h"
#include "tests/platform/cmpi/LibraryBytes.h"
#include "tests/platform/cmpi/registrations/TVendor.h"

namespace NZEPQEL20 {
namespace {

using ::testing::Contains;

TEST(DamagedLibraryTest, ALibraryThatIsCutOffAnywhereIsRefusedBeforeItIsLoaded) {
  const std::string whole = ReadLibrary("libvendorCommon.so");
  const std::size_t end = FindLoadedEnd(whole);
  const std::pair<std::size_t, std::string> cuts[] = {
      {0, "is no library (no ELF header)"},     {10, "is no library (no ELF header)"},
      {40, "is cut off within its ELF header"}, {100, "is cut off within its program headers"},
      {end / 2, DescribeCut(end / 2)},          {end - end / 4, DescribeCut(end - end / 4)},
      {end - 1, DescribeCut(end - 1)}};
  const TVendor vendor;
  for (const auto& [size, fault] : cuts) {
    const std::string path = vendor.Write("libcut.so", whole.substr(0, size));
    const TLoadedLibrary loaded = LoadLibrary(path, vendor.GetPath());
    EXPECT_EQ(loaded.handle, nullptr) << size;
    EXPECT_EQ(loaded.rule, "R14") << size;
    EXPECT_EQ(loaded.reason, "the file " + fault) << size;
  }
}

TEST(DamagedLibraryTest, WhatFollowsTheSegmentsMayBeMissing) {
  const std::string whole = ReadLibrary("libvendorCommon.so");
  const TVendor vendor;
  const std::string path = vendor.Write("libstripped.so", whole.substr(0, FindLoadedEnd(whole)));
  const TElfFile elf(path);
  EXPECT_EQ(elf.GetFault(), "");
  EXPECT_TRUE(elf.HasAllSymbols());
  EXPECT_THAT(elf.GetSymbols(), Contains("VendorCommon"));
  EXPECT_NE(LoadLibrary(path, vendor.GetPath()).handle, nullptr);
}

TEST(DamagedLibraryTest, WhatIsNoRegularFileIsRefusedAtOnce) {
  const TVendor vendor;
  const std::string pipe = vendor.GetPath("libpipe.so");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::filesystem::create_directory(vendor.GetPath("libfolder.so"));
  std::filesystem::create_symlink("/dev/zero", vendor.GetPath("libdevice.so"));
  for (const char* name : {"libpipe.so", "libfolder.so", "libdevice.so"}) {
    const TLoadedLibrary loaded = LoadLibrary(vendor.GetPath(name), vendor.GetPath());
    EXPECT_EQ(loaded.handle, nullptr) << name;
    EXPECT_EQ(loaded.reason, "the file is no library (not a regular file)") << name;
    EXPECT_EQ(loaded.rule, "R14") << name;
  }
}

TEST(DamagedLibraryTest, ASiblingThatIsCutOffIsRefusedWithItsName) {
  const TVendor vendor;
  const std::string path = vendor.Write("libx.so", ReadLibrary("libneedsnameless.so"));
  const std::string whole = ReadLibrary("libvendorNameless.so");
  const std::size_t half = FindLoadedEnd(whole) / 2;
  const std::string sibling = vendor.Write("lib/libvendorNameless.so", whole.substr(0, half));
  const TLoadedLibrary loaded = LoadLibrary(path, vendor.GetPath());
  EXPECT_EQ(loaded.handle, nullptr);
  EXPECT_EQ(loaded.rule, "R14");
  EXPECT_EQ(loaded.reason, "it needs " + sibling + ", which " + DescribeCut(half));
}

/// The library with the value of a dynamic entry replaced.
std::string Replace(std::string bytes, ElfW(Sxword) tag, ElfW(Xword) value) {
  const auto header = GetRecord<ElfW(Ehdr)>(bytes, 0);
  for (std::size_t i = 0; i < header.e_phnum; ++i) {
    const auto segment = GetRecord<ElfW(Phdr)>(bytes, header.e_phoff + i * sizeof(ElfW(Phdr)));
    if (segment.p_type != PT_DYNAMIC) continue;
    for (std::size_t at = segment.p_offset; at < segment.p_offset + segment.p_filesz;
         at += sizeof(ElfW(Dyn))) {
      auto entry = GetRecord<ElfW(Dyn)>(bytes, at);
      if (entry.d_tag != tag) continue;
      entry.d_un.d_val = value;
      bytes.replace(at, sizeof entry, reinterpret_cast<const char*>(&entry), sizeof entry);
    }
  }
  return bytes;
}

TEST(DamagedLibraryTest, NamesThatLieOutsideAreAFault) {
  const TVendor vendor;
  const std::string whole = ReadLibrary("libvendorCommon.so");
  for (const ElfW(Sxword) tag : {DT_STRTAB, DT_SYMTAB}) {
    const std::string path = vendor.Write("libx.so", Replace(whole, tag, ElfW(Xword){1} << 40U));
    EXPECT_EQ(TElfFile(path).GetFault(), "is damaged: its names are outside of it");
  }
}

TEST(DamagedLibraryTest, WithoutACountOfSymbolsNothingIsSaidOfThem) {
  const TVendor vendor;
  std::string bytes = ReadLibrary("libvendorCommon.so");
  for (const ElfW(Sxword) tag : {DT_HASH, DT_GNU_HASH}) {
    bytes = Replace(bytes, tag, ElfW(Xword){1} << 40U);
  }
  const std::string path = vendor.Write("libx.so", bytes);
  EXPECT_FALSE(TElfFile(path).HasAllSymbols());
  EXPECT_EQ(DescribeFactories(path), "");
}

}  // namespace
}  // namespace NZEPQEL20
