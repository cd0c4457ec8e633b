// SPDX-License-Identifier: Apache-2.0
// Installing where something goes wrong on the way: there is the whole folder, or none.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "platform/cmpi/VendorFiles.h"
#include "platform/contract/TRootObject.h"
#include "platform/setup/ChildRun.h"
#include "tests/platform/setup/store/TStoreTest.h"
#include "tests/support/ClosedFolder.h"
#include "tests/support/TSystemHook.h"

namespace NZEPQEL20::setup {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;

class InstallFaultsTest : public TStoreTest {
 protected:
  InstallFaultsTest() {
    m_vendor.Write("acme.registration", "A_Base root/x Probed good instance\n");
    m_vendor.Write("z.conf", std::string(100'000, 'z'));
  }
  /// What adding the folder throws; nothing of it is to be left.
  std::string AddInVain(const TProviderPackage& package) const {
    const std::string before = GetInstalled();
    const std::string failure = Failure([&] { m_store.Add(package, "acme", false); });
    EXPECT_EQ(GetInstalled(), before);
    return failure;
  }
  std::string AddInVain() const { return AddInVain(m_store.Read(m_vendor.GetPath())); }
};

TEST_F(InstallFaultsTest, AFileThatVanishesIsNamed) {
  const TProviderPackage package = m_store.Read(m_vendor.GetPath());
  fs::remove(m_vendor.GetPath("z.conf"));
  EXPECT_THAT(AddInVain(package), HasSubstr("/z.conf: cannot be copied: No such file"));
}

TEST_F(InstallFaultsTest, ALinkOutOfTheFolderIsRefused) {
  fs::create_symlink("/etc/passwd", m_vendor.GetPath("a.conf"));
  EXPECT_THAT(AddInVain(), AllOf(HasSubstr("/a.conf: is a link to /etc/passwd, outside the folder"),
                                 HasSubstr("; see rule R20")));
}

TEST_F(InstallFaultsTest, AFolderLinkOutOfTheFolderIsRefused) {
  const TTemporaryFolder elsewhere;
  elsewhere.Write("b.mof", "");
  fs::create_symlink(elsewhere.GetPath(), m_vendor.GetPath("mof"));
  EXPECT_THAT(AddInVain(), HasSubstr("/mof/b.mof: is a link to " + elsewhere.GetPath("b.mof")));
}

TEST_F(InstallFaultsTest, ALinkToNowhereOrToItselfIsRefused) {
  fs::create_symlink("nowhere", m_vendor.GetPath("a.conf"));
  EXPECT_THAT(AddInVain(), HasSubstr("/a.conf: cannot be copied: No such file"));
  fs::remove(m_vendor.GetPath("a.conf"));
  fs::create_symlink("a.conf", m_vendor.GetPath("a.conf"));
  EXPECT_THAT(AddInVain(), HasSubstr("/a.conf: cannot be copied: Too many levels"));
}

TEST_F(InstallFaultsTest, AFolderThatHoldsItselfIsCopiedOnce) {
  fs::create_symlink(".", m_vendor.GetPath("self"));
  Add("acme");
  EXPECT_EQ(Read("acme/acme.registration").substr(0, 6), "A_Base");
  EXPECT_FALSE(fs::exists(m_root.GetPath("providers/acme/self")));
}

TEST_F(InstallFaultsTest, APipeIsRefusedWithoutWaitingForAWriter) {
  ASSERT_EQ(::mkfifo(m_vendor.GetPath("pipe").c_str(), 0600), 0);
  EXPECT_THAT(AddInVain(), HasSubstr("/pipe: is not a regular file"));
}

TEST_F(InstallFaultsTest, AFolderTooDeepToBeCopiedWholeIsRefused) {
  m_vendor.Write("1/2/3/4/5/6/7/8/last.conf", "");
  Add("flat");
  m_vendor.Write("1/2/3/4/5/6/7/8/9/beyond.conf", "");
  const TProviderPackage package = m_store.Read(m_vendor.GetPath());
  const std::string text = m_vendor.GetPath("1/2/3/4/5/6/7/8/9") + ": lies deeper than 8 folders";
  EXPECT_THAT(AddInVain(package), AllOf(HasSubstr(text), HasSubstr("; see rule R20")));
  EXPECT_THAT(ShowAll(m_store.Check(package)), HasSubstr("error R20: " + text));
  // One registration does not need what lies beside it.
  const TProviderPackage one = m_store.Read(m_vendor.GetPath("acme.registration"));
  EXPECT_THAT(ShowAll(m_store.Check(one)), HasSubstr("warning R1: " + text));
  m_store.Add(one, "acme", false);
  EXPECT_EQ(GetInstalled(), " acme flat");
}

TEST_F(InstallFaultsTest, AFolderWithMoreNamesThanAreLookedAtHasAProblem) {
  // One file with many names is made faster than many files.
  const std::string file = m_vendor.Write("many/x", "");
  for (int i = 0; i < 20'001; ++i) {
    ASSERT_EQ(::link(file.c_str(), (file + std::to_string(i)).c_str()), 0);
  }
  const std::vector<std::string> problems = ListVendorFiles(m_vendor.GetPath()).problems;
  ASSERT_FALSE(problems.empty());
  EXPECT_EQ(problems[0],
            m_vendor.GetPath("many") + ": holds more than 20000 names; the others are left out");
}

TEST_F(InstallFaultsTest, AnIncludeOutsideTheFolderIsRefused) {
  const TTemporaryFolder elsewhere;
  const std::string file = elsewhere.Write("common.mof", "");
  m_vendor.Write("a.mof", "#pragma include (\"" + file + "\")\n");
  EXPECT_THAT(AddInVain(), HasSubstr(file + ": is included, and lies outside the folder "));
}

TEST_F(InstallFaultsTest, AnOversizedFileThatIsNoLibraryIsRefused) {
  const std::string file = m_vendor.Write("huge.img", "");
  fs::resize_file(file, (std::uintmax_t{64} << 20U) + 1);
  EXPECT_THAT(AddInVain(), HasSubstr("/huge.img: is larger than 64 MiB"));
}

TEST_F(InstallFaultsTest, AFileInThePlaceOfTheProvidersFolderIsNamed) {
  m_root.Write("providers", "");
  EXPECT_THAT(Failure([&] { Add("acme"); }), HasSubstr("/providers: cannot be opened: Not a dir"));
}

TEST_F(InstallFaultsTest, TwoAtTheSameTimeAreKeptApart) {
  fs::create_directory(m_root.GetPath("providers"));
  const int other = ::open(m_root.GetPath("providers").c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  EXPECT_THAT(AddInVain(), HasSubstr("another installation is at work there; try again"));
  ::close(other);
  Add("acme");
}

TEST_F(InstallFaultsTest, AFolderThatCannotBeOpenedToAllIsNotInstalled) {
  const TSystemHook hook(TSystemHook::kChmod, TSystemHook::FailAfter(0, EPERM));
  EXPECT_THAT(AddInVain(),
              testing::MatchesRegex(".*/providers/\\.acme\\.tmp-......: cannot have its "
                                    "permissions: Operation not permitted; .*"));
}

/// The lines that are logged while this lives.
class TLogged : public ILogger {
 public:
  TLogged() { TRootObject::SetCoreLogger(this); }
  ~TLogged() override { TRootObject::SetCoreLogger(nullptr); }
  void Log(EQELLogSeverity severity, const std::string& text) override {
    lines.push_back((severity == kWarning ? "warning " : "") + text);
  }
  std::vector<std::string> lines;
};

TEST_F(InstallFaultsTest, ADiskThatDoesNotTakeTheNamesIsAWarningForWhatIsInstalled) {
  // Two files and their folder; the folder of all vendors is the next.
  constexpr std::size_t kBefore = 3;
  const std::string warning = "warning " + m_root.GetPath("providers") +
                              ": the disk may lose what was changed in it: Input/output error";
  TLogged log;
  {
    const TSystemHook hook(TSystemHook::kFsync, TSystemHook::FailAfter(kBefore, EIO));
    Add("acme");
  }
  EXPECT_EQ(GetInstalled(), " acme");
  {
    const TSystemHook hook(TSystemHook::kFsync, TSystemHook::FailAfter(0, EIO));
    m_store.Remove("acme");
  }
  EXPECT_EQ(GetInstalled(), "");
  EXPECT_THAT(log.lines, testing::ElementsAre(warning, warning));
  const TSystemHook hook(TSystemHook::kFsync, TSystemHook::FailAfter(kBefore, EINVAL));
  Add("acme");
  EXPECT_EQ(log.lines.size(), 2U);
}

/// Does it in a child, where limits and rights can be changed; answers with what was thrown.
std::string InChild(const std::function<std::string()>& work) {
  const TChildOutcome outcome =
      RunInChild([&](const TTell& tell) { tell(work()); }, std::chrono::seconds(20));
  return outcome.records.empty() ? outcome.ending : outcome.records[0];
}

TEST_F(InstallFaultsTest, ADiskThatIsFullLeavesWhatWasThere) {
  Add("acme");
  m_vendor.Write("new.conf", "");
  const std::string failure = InChild([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {50'000, 50'000};
    ::setrlimit(RLIMIT_FSIZE, &small);
    return Failure([&] { Add("acme", true); });
  });
  EXPECT_THAT(failure, AllOf(HasSubstr("/z.conf: cannot be written: File too large"),
                             HasSubstr("nothing was changed")));
  EXPECT_EQ(GetInstalled(), " acme");
  EXPECT_EQ(Read("acme/z.conf").size(), 100'000U);
  EXPECT_FALSE(fs::exists(m_root.GetPath("providers/acme/new.conf")));
}

TEST_F(InstallFaultsTest, ARootThatMayNotBeWrittenIsSaidSo) {
  Add("bolt");
  fs::permissions(m_root.GetPath(), static_cast<fs::perms>(0755));
  fs::permissions(m_vendor.GetPath(), static_cast<fs::perms>(0755));
  for (const char* file : {"acme.registration", "z.conf"}) {
    fs::permissions(m_vendor.GetPath(file), static_cast<fs::perms>(0644));
  }
  const std::string closed = FindClosedFolder(m_root.GetPath());
  if (::geteuid() == 0 && !closed.empty()) GTEST_SKIP() << closed << ": nobody else may enter it";
  const auto asNobody = [](const std::function<std::string()>& work) {
    return InChild([&] {
      constexpr uid_t kNobody = 65534;
      if (::geteuid() == 0 && ::seteuid(kNobody) != 0) return std::string("no change of user");
      return work();
    });
  };
  // Without root the folders are the caller's own, and need their mode changed as well.
  fs::permissions(m_root.GetPath("providers"), static_cast<fs::perms>(0555));
  EXPECT_THAT(asNobody([&] { return Failure([&] { Add("acme"); }); }),
              AllOf(HasSubstr("/providers: no folder can be made in it: Permission denied"),
                    HasSubstr("run the command as the owner")));
  EXPECT_THAT(asNobody([&] { return Failure([&] { m_store.Remove("bolt"); }); }),
              HasSubstr("Permission denied"));
  fs::permissions(m_root.GetPath("providers"), static_cast<fs::perms>(0755));
  EXPECT_EQ(GetInstalled(), " bolt");
}

}  // namespace
}  // namespace NZEPQEL20::setup
