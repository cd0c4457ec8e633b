// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "platform/cmpi/LibraryLoading.h"
#include "tests/platform/cmpi/registrations/TVendor.h"

namespace NZEPQEL20 {
namespace {

using ::testing::HasSubstr;

/// A vendor's folder with copies of libraries of the test tree.
class LibraryLoadingTest : public testing::Test {
 protected:
  std::string Take(const std::string& library, const std::string& place) {
    const std::filesystem::path target = m_vendor.GetPath(place);
    std::filesystem::create_directories(target.parent_path());
    std::filesystem::copy_file(std::string(DIAGS_VENDOR_DIR) + "/" + library, target);
    return target.string();
  }

  TVendor m_vendor;
};

TEST_F(LibraryLoadingTest, WithoutItsSiblingALibrarySaysWhatIsMissing) {
  const std::string path = Take("libneedsnameless.so", "libneedsnameless.so");
  const TLoadedLibrary loaded = LoadLibrary(path, m_vendor.GetPath());
  ASSERT_EQ(loaded.handle, nullptr);
  EXPECT_EQ(loaded.reason,
            "libvendorNameless.so: cannot open shared object file: No such file or directory");
  EXPECT_EQ(loaded.remedy,
            "install what has libvendorNameless.so, or put it into the vendor's folder");
  EXPECT_EQ(loaded.rule, "R15");
}

TEST_F(LibraryLoadingTest, ASiblingAnywhereInTheFolderIsFoundThroughItsLink) {
  const std::string path = Take("libneedscommon.so", "libneedscommon.so");
  Take("libvendorCommon.so.0", "lib/deep/libvendorCommon.so.0.7");
  std::filesystem::create_symlink("libvendorCommon.so.0.7",
                                  m_vendor.GetPath("lib/deep/libvendorCommon.so.0"));
  const TLoadedLibrary loaded = LoadLibrary(path, m_vendor.GetPath());
  ASSERT_NE(loaded.handle, nullptr) << loaded.reason;
  void* symbol = dlsym(loaded.handle, "VendorAnswer");
  ASSERT_NE(symbol, nullptr);
  int (*answer)() = nullptr;
  std::memcpy(&answer, &symbol, sizeof answer);
  EXPECT_EQ(answer(), 43);
  // What a library brings is for itself alone.
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "VendorCommon"), nullptr);
}

TEST_F(LibraryLoadingTest, OfSeveralSiblingsTheOneForThisMachineIsTaken) {
  const std::string path = Take("libneedsnameless.so", "libneedsnameless.so");
  m_vendor.Write("a/libvendorNameless.so", "for another machine");
  Take("libvendorNameless.so", "b/libvendorNameless.so");
  // It is loaded, though it does not help here.
  EXPECT_THAT(LoadLibrary(path, m_vendor.GetPath()).remedy, HasSubstr("with the soname"));
}

TEST_F(LibraryLoadingTest, ASiblingThatGoesByAnotherNameIsExplained) {
  const std::string path = Take("libneedsnameless.so", "libneedsnameless.so");
  Take("libvendorNameless.so", "lib/libvendorNameless.so");
  const TLoadedLibrary loaded = LoadLibrary(path, m_vendor.GetPath());
  ASSERT_EQ(loaded.handle, nullptr);
  EXPECT_THAT(loaded.reason, HasSubstr("libvendorNameless.so: cannot open shared object file"));
  EXPECT_THAT(loaded.remedy, HasSubstr("with the soname libvendorNameless.so"));
}

TEST_F(LibraryLoadingTest, ASiblingThatAnotherVendorBroughtIsNamedUnlessItIsTheSame) {
  // A name that no other test has, nor another round of this one: what is loaded stays.
  static int round = 1000;
  const std::string soname = "libvendorTwo" + std::to_string(round++) + ".so0";
  const auto write = [&](const std::string& vendor, const std::string& end) {
    for (const char* name : {"libneedscommon.so", "libvendorCommon.so.0"}) {
      std::string bytes = ReadLibrary(name);
      bytes.replace(bytes.find("libvendorCommon.so.0"), soname.size(), soname);
      const std::string file = std::string(name) == "libneedscommon.so" ? "/libx.so" : "/" + soname;
      m_vendor.Write(vendor + file, bytes + end);
    }
    return LoadLibrary(m_vendor.GetPath(vendor + "/libx.so"), m_vendor.GetPath(vendor));
  };
  const TLoadedLibrary first = write("a", "");
  ASSERT_NE(first.handle, nullptr) << first.reason;
  EXPECT_EQ(first.doubt, "");
  EXPECT_EQ(write("b", "").doubt, "");
  const TLoadedLibrary third = write("c", "another build");
  EXPECT_NE(third.handle, nullptr) << third.reason;
  EXPECT_EQ(third.doubt, "gets " + m_vendor.GetPath("a/" + soname) + " of another vendor for " +
                             soname + ", and not its own " + m_vendor.GetPath("c/" + soname) +
                             "; give that another soname; see rule R15");
}

TEST_F(LibraryLoadingTest, ASiblingThatIsNoLibraryIsNamed) {
  const std::string path = Take("libneedsnameless.so", "libneedsnameless.so");
  const std::string sibling = m_vendor.Write("libvendorNameless.so", "text");
  const TLoadedLibrary loaded = LoadLibrary(path, m_vendor.GetPath());
  ASSERT_EQ(loaded.handle, nullptr);
  EXPECT_EQ(loaded.reason, "it needs " + sibling + ", which is no library (no ELF header)");
  EXPECT_EQ(loaded.rule, "R14");
}

TEST_F(LibraryLoadingTest, AFileThatIsNotThereOrNoLibraryHasItsRule) {
  EXPECT_EQ(LoadLibrary("/no/such/libx.so", "/no/such").rule, "R13");
  const TLoadedLibrary text = LoadLibrary(m_vendor.Write("libx.so", "text"), m_vendor.GetPath());
  EXPECT_EQ(text.rule, "R14");
  EXPECT_EQ(text.reason, "the file is no library (no ELF header)");
  EXPECT_EQ(text.remedy, "ship a library for this machine");
}

TEST_F(LibraryLoadingTest, TheMissingLibraryIsReadFromTheLoadersWords) {
  EXPECT_EQ(FindMissing("libx.so.1: cannot open shared object file: No such file"), "libx.so.1");
  EXPECT_EQ(FindMissing("/a/libx.so: undefined symbol: y"), "");
}

TEST_F(LibraryLoadingTest, EntryPointsOfALibraryWithoutAnyAreSaidToBeMissing) {
  EXPECT_EQ(DescribeFactories(std::string(DIAGS_VENDOR_DIR) + "/libneedscommon.so"),
            " (it exports no entry point at all)");
}

}  // namespace
}  // namespace NZEPQEL20
