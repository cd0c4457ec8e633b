// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/contract/TQELException.h"
#include "tests/platform/setup/store/TStoreTest.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr char kLine[] = "A_Base root/x Probed good instance method\n";

class ProviderStoreTest : public TStoreTest {
 protected:
  ProviderStoreTest() {
    m_vendor.Write("acme.registration", kLine, 0666);
    m_vendor.Write("mof/acme.mof", "#pragma include (\"inc/part.mof\")\n");
    m_vendor.Write("mof/inc/part.mof", "class A_Part : A_Base { };\n");
    m_vendor.Write("acme.conf", "speed=9\n");
    Take(DIAGS_PROBED_DIR "/libgood.so", "lib/libgood.so.1.2");
    fs::create_symlink("libgood.so.1.2", m_vendor.GetPath("lib/libgood.so.1"));
    fs::create_symlink("libgood.so.1", m_vendor.GetPath("lib/libgood.so"));
  }
};

TEST_F(ProviderStoreTest, AFolderIsReadWithEverythingInIt) {
  const TProviderPackage package = m_store.Read(m_vendor.GetPath());
  EXPECT_EQ(package.folder, m_vendor.GetPath());
  EXPECT_EQ(package.name, fs::path(m_vendor.GetPath()).filename());
  EXPECT_THAT(package.libraries, SizeIs(3));
  EXPECT_THAT(package.schema,
              ElementsAre(m_vendor.GetPath("mof/acme.mof"), m_vendor.GetPath("mof/inc/part.mof")));
  EXPECT_THAT(package.registrations, ElementsAre(m_vendor.GetPath("acme.registration")));
  EXPECT_THAT(package.others, ElementsAre(m_vendor.GetPath("acme.conf")));
  ASSERT_THAT(package.services, SizeIs(1));
  const TProviderService& service = package.services[0];
  EXPECT_EQ(service.className + ' ' + service.nameSpace + ' ' + service.providerName,
            "A_Base root/x Probed");
  EXPECT_EQ(service.library, m_vendor.GetPath("lib/libgood.so"));
  EXPECT_THAT(service.types, ElementsAre("instance", "method"));
}

TEST_F(ProviderStoreTest, ARegistrationFileMeansWhatItNames) {
  m_vendor.Write("other.reg",
                 "[A_Other]\nprovider: P\nlocation: other\ntype: instance\n"
                 "namespace: root/x\n");
  m_vendor.Write("beside.mof", "#pragma include (\"mof/inc/part.mof\")\n");
  m_vendor.Write("libother.so", "");
  const TProviderPackage package = m_store.Read(m_vendor.GetPath("acme.registration"));
  EXPECT_EQ(package.name, "acme");
  EXPECT_THAT(package.registrations, ElementsAre(m_vendor.GetPath("acme.registration")));
  EXPECT_THAT(package.schema, ElementsAre(m_vendor.GetPath("beside.mof")));
  EXPECT_THAT(package.others, ElementsAre(m_vendor.GetPath("mof/inc/part.mof")));
  EXPECT_THAT(package.services, SizeIs(1));
  EXPECT_THAT(package.libraries,
              ElementsAre(m_vendor.GetPath("lib/libgood.so"), m_vendor.GetPath("lib/libgood.so.1"),
                          m_vendor.GetPath("lib/libgood.so.1.2")));
  m_store.Add(package, "acme", false);
  EXPECT_EQ(Read("acme/mof/inc/part.mof"), "class A_Part : A_Base { };\n");
  EXPECT_FALSE(fs::exists(m_root.GetPath("providers/acme/acme.conf")));
}

TEST_F(ProviderStoreTest, ALibraryThatIsNotThereIsEmpty) {
  m_vendor.Write("acme.registration", "A_Base root/x P gone property indication association\n");
  const TProviderPackage package = m_store.Read(m_vendor.GetPath());
  EXPECT_EQ(package.services.at(0).library, "");
  EXPECT_THAT(package.services.at(0).types, ElementsAre("association", "property", "indication"));
}

TEST_F(ProviderStoreTest, WhatCannotBeReadIsRefusedByNameAndReason) {
  EXPECT_THAT(Failure([&] { m_store.Read("/no/such"); }),
              HasSubstr("/no/such: cannot be read: No "));
  EXPECT_THAT(Failure([&] { m_store.Read(m_vendor.GetPath("acme.conf")); }),
              HasSubstr("acme.conf: is neither a folder nor a registration"));
  EXPECT_THAT(Failure([&] { m_store.Read(m_vendor.GetPath("mof/acme.mof")); }),
              HasSubstr("acme.mof: holds no registration"));
  EXPECT_THAT(Failure([] { TProviderStore("/no/such"); }), HasSubstr("installation root /no/such"));
}

TEST_F(ProviderStoreTest, AnAddedFolderIsListedAndHoldsItsFilesInTheirPlaces) {
  EXPECT_THAT(m_store.List(), IsEmpty());
  Add("acme");
  EXPECT_EQ(GetInstalled(), " acme");
  EXPECT_EQ(Read("acme/acme.registration"), kLine);
  EXPECT_EQ(Read("acme/mof/inc/part.mof"), "class A_Part : A_Base { };\n");
  EXPECT_EQ(Read("acme/acme.conf"), "speed=9\n");
  const fs::path folder = m_root.GetPath("providers/acme");
  EXPECT_EQ(fs::read_symlink(folder / "lib/libgood.so"), "libgood.so.1.2");
  EXPECT_TRUE(fs::is_regular_file(folder / "lib/libgood.so.1.2"));
  const auto installed = m_store.List();
  ASSERT_THAT(installed, SizeIs(1));
  EXPECT_EQ(installed[0].name, "acme");
  EXPECT_EQ(installed[0].services.at(0).library, (folder / "lib/libgood.so").string());
  for (const TProviderFinding& finding : m_store.Check(installed[0])) {
    EXPECT_EQ(finding.rule, "R4") << Show(finding);
  }
}

TEST_F(ProviderStoreTest, PermissionsAreThoseOfInstalledFilesWhateverTheMask) {
  for (const mode_t mask : {0U, 077U}) {
    const TTemporaryFolder root;
    const TProviderStore store(root.GetPath());
    const mode_t before = ::umask(mask);
    fs::permissions(m_vendor.GetPath("lib"), fs::perms::all);
    store.Add(m_store.Read(m_vendor.GetPath()), "acme", false);
    ::umask(before);
    for (const char* file : {"", "/acme", "/acme/lib", "/acme/lib/libgood.so.1.2", "/acme/mof",
                             "/acme/mof/inc", "/acme/acme.registration"}) {
      struct stat status = {};
      ASSERT_EQ(::stat((root.GetPath("providers") + file).c_str(), &status), 0) << file;
      EXPECT_EQ(status.st_mode & 0022U, 0U) << file;
      EXPECT_EQ(status.st_mode & 0444U, 0444U) << file;
      if (S_ISDIR(status.st_mode)) {
        EXPECT_EQ(status.st_mode & 0777U, 0755U) << file;
      }
      EXPECT_EQ(status.st_uid, ::geteuid()) << file;
    }
  }
}

TEST_F(ProviderStoreTest, AProvidersFolderThatIsThereKeepsItsPermissions) {
  fs::create_directory(m_root.GetPath("providers"));
  fs::permissions(m_root.GetPath("providers"), fs::perms::owner_all);
  Add("acme");
  EXPECT_EQ(fs::status(m_root.GetPath("providers")).permissions(), fs::perms::owner_all);
}

TEST_F(ProviderStoreTest, APrivateFileStaysPrivate) {
  m_vendor.Write("acme.conf", "password=x\n", 0600);
  Add("acme");
  EXPECT_EQ(fs::status(m_root.GetPath("providers/acme/acme.conf")).permissions(),
            static_cast<fs::perms>(0600));
}

TEST_F(ProviderStoreTest, AnExistingFolderIsReplacedWholeAndOnlyWhenAsked) {
  Add("acme");
  fs::remove(m_vendor.GetPath("acme.conf"));
  m_vendor.Write("new.conf", "");
  EXPECT_THAT(Failure([&] { Add("acme"); }), HasSubstr("/providers/acme: is there already"));
  EXPECT_EQ(Read("acme/acme.conf"), "speed=9\n");
  Add("acme", true);
  EXPECT_FALSE(fs::exists(m_root.GetPath("providers/acme/acme.conf")));
  EXPECT_TRUE(fs::exists(m_root.GetPath("providers/acme/new.conf")));
  EXPECT_EQ(GetInstalled(), " acme");
}

TEST_F(ProviderStoreTest, TheBundledProviderIsReplacedOnlyWhenAsked) {
  EXPECT_THAT(Failure([&] { Add("hardware"); }), HasSubstr("is that of the bundled provider"));
  Add("hardware", true);
  EXPECT_EQ(GetInstalled(), " hardware");
}

TEST_F(ProviderStoreTest, TheBundledProviderIsRemovedOnlyWhenForced) {
  Add("hardware", true);
  EXPECT_EQ(Failure([&] { m_store.Remove("hardware"); }),
            "hardware: is the bundled provider; without it the tests of the processor, memory, "
            "disks and network are gone");
  EXPECT_EQ(GetInstalled(), " hardware");
  m_store.Remove("hardware", true);
  EXPECT_EQ(GetInstalled(), "");
}

TEST_F(ProviderStoreTest, ARemovedFolderIsGoneAndOneThatIsNotThereNamesThoseThatAre) {
  Add("acme");
  Add("bolt");
  EXPECT_EQ(Failure([&] { m_store.Remove("nut"); }),
            "no provider \"nut\" is installed; installed are acme, bolt");
  m_store.Remove("acme");
  EXPECT_EQ(GetInstalled(), " bolt");
  m_store.Remove("bolt");
  EXPECT_EQ(Failure([&] { m_store.Remove(".."); }),
            "no provider \"..\" is installed; installed is none");
  EXPECT_EQ(GetInstalled(), "");
}

struct TName {
  const char* name;
  std::string text;
  const char* reason;
};
void PrintTo(const TName& row, std::ostream* out) {
  *out << row.name;
}

class BadNameTest : public ProviderStoreTest, public testing::WithParamInterface<TName> {};

TEST_P(BadNameTest, IsRefusedAndNothingIsMade) {
  try {
    Add(GetParam().text);
    FAIL() << "was accepted";
  } catch (const TQELException& e) {
    EXPECT_THAT(e.what(), HasSubstr(GetParam().reason));
    EXPECT_EQ(e.GetStatusCode(), TQELStatusCode::kInvalidArgument);
  }
  EXPECT_EQ(GetInstalled(), "");
}

INSTANTIATE_TEST_SUITE_P(Names, BadNameTest,
                         testing::Values(TName{"Empty", "", "is empty"},
                                         TName{"Slash", "a/b", "holds \"/\""},
                                         TName{"Up", "..", "starts with a dot"},
                                         TName{"Hidden", ".acme", "starts with a dot"},
                                         TName{"LineEnd", "a\nb", "control character"},
                                         TName{"Long", std::string(101, 'x'), "more than 100"}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace NZEPQEL20::setup
