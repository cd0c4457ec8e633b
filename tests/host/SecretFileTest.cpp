// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <functional>
#include <ostream>
#include <string>

#include "host/SecretFile.h"
#include "host/TDescriptor.h"
#include "host/TUsageError.h"
#include "tests/support/TTemporaryFolder.h"

namespace host {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr char kText[] = "user=me\npassword=sesame\n";

// The reason why `path` is refused; empty when it is not.
std::string Refusal(const std::string& path) {
  try {
    ReadSecretFile(path);
    return {};
  } catch (const TUsageError& e) {
    return e.what();
  }
}

class ClosedModeTest : public ::testing::TestWithParam<mode_t> {};

TEST_P(ClosedModeTest, IsTaken) {
  const TTemporaryFolder folder;
  EXPECT_EQ(ReadSecretFile(folder.Write("f", kText, GetParam())).Get(), kText);
}
INSTANTIATE_TEST_SUITE_P(All, ClosedModeTest, ::testing::Values(0600, 0400, 0700));

class OpenModeTest : public ::testing::TestWithParam<const char*> {};

TEST_P(OpenModeTest, IsRefusedWithTheCommandThatMendsIt) {
  const TTemporaryFolder folder;
  const std::string path =
      folder.Write("f", kText, static_cast<mode_t>(std::stoul(GetParam(), nullptr, 8)));
  const std::string refusal = Refusal(path);
  EXPECT_THAT(refusal, StartsWith(path + ": is open to others (mode " + GetParam() + ")"));
  EXPECT_THAT(refusal, HasSubstr("`chmod 600 '" + path + "'` mends it"));
  EXPECT_THAT(refusal, Not(HasSubstr("sesame")));
}
INSTANTIATE_TEST_SUITE_P(All, OpenModeTest,
                         ::testing::Values("0640", "0604", "0644", "0620", "0602", "0610", "0601",
                                           "0666", "0777", "4644"));

TEST(SecretFileTest, ThatIsALinkCountsAsTheFileItLeadsTo) {
  const TTemporaryFolder folder;
  folder.Write("good", kText, 0600);
  folder.Write("open", kText, 0644);
  ASSERT_EQ(::symlink("good", folder.GetPath("to-good").c_str()), 0);
  ASSERT_EQ(::symlink("open", folder.GetPath("to-open").c_str()), 0);
  EXPECT_EQ(ReadSecretFile(folder.GetPath("to-good")).Get(), kText);
  EXPECT_THAT(Refusal(folder.GetPath("to-open")), HasSubstr("is open to others (mode 0644)"));
}

TEST(SecretFileTest, OfSomebodyElseIsRefused) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files away";
  const TTemporaryFolder folder;
  const std::string path = folder.Write("f", kText);
  ASSERT_EQ(::chown(path.c_str(), 4711, 0), 0);
  EXPECT_THAT(Refusal(path), HasSubstr("belongs to user 4711; it must be owned by user 0"));
}

TEST(SecretFileTest, ThatMayNotBeReadIsRefused) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  const TTemporaryFolder folder;
  ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0755), 0);
  const std::string path = folder.Write("f", kText);
  ASSERT_EQ(::seteuid(4711), 0);
  const std::string refusal = Refusal(path);
  ASSERT_EQ(::seteuid(0), 0);
  EXPECT_THAT(refusal, HasSubstr("Permission denied"));
}

struct TNoFile {
  const char* name;
  std::function<std::string(const TTemporaryFolder&)> make;
  const char* message;
};
void PrintTo(const TNoFile& row, std::ostream* out) {
  *out << row.name;
}

std::string MakePipe(const TTemporaryFolder& folder) {
  const std::string path = folder.GetPath("pipe");
  if (::mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("mkfifo");
  return path;
}

std::string MakeSocket(const TTemporaryFolder& folder) {
  const std::string path = folder.GetPath("socket");
  const TDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as bind() wants it.
  if (::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("bind");
  }
  return path;
}

std::string MakeLoop(const TTemporaryFolder& folder) {
  if (::symlink("loop", folder.GetPath("loop").c_str()) != 0) throw std::runtime_error("symlink");
  return folder.GetPath("loop");
}

class NoFileTest : public ::testing::TestWithParam<TNoFile> {};

TEST_P(NoFileTest, IsRefusedAtOnceAndNamed) {
  const TTemporaryFolder folder;
  const std::string path = GetParam().make(folder);
  const std::string refusal = Refusal(path);
  EXPECT_THAT(refusal, StartsWith(path + ": "));
  EXPECT_THAT(refusal, HasSubstr(GetParam().message));
}
INSTANTIATE_TEST_SUITE_P(
    All, NoFileTest,
    ::testing::Values(TNoFile{"Missing", [](const auto& folder) { return folder.GetPath("none"); },
                              "No such file"},
                      TNoFile{"Folder", [](const auto& folder) { return folder.GetPath(); },
                              "is not a regular file"},
                      TNoFile{"Pipe", MakePipe, "is not a regular file"},
                      TNoFile{"Socket", MakeSocket, "No such device"},
                      TNoFile{"Device",
                              [](const auto& /*folder*/) { return std::string("/dev/zero"); },
                              "is not a regular file"},
                      TNoFile{"Loop", MakeLoop, "symbolic links"},
                      TNoFile{"BelowAFile",
                              [](const auto& folder) { return folder.Write("f", kText) + "/g"; },
                              "Not a directory"}),
    [](const auto& row) { return row.param.name; });

TEST(SecretFileTest, HasALargestSize) {
  const TTemporaryFolder folder;
  const std::string most(kLargestSecretFile, 'x');
  EXPECT_EQ(ReadSecretFile(folder.Write("f", most)).Get(), most);
  EXPECT_THAT(Refusal(folder.Write("f", most + "x")), HasSubstr("is larger than 64 KiB"));
}

TEST(SecretFileTest, MayBeEmptyAndHoldAnyByte) {
  const TTemporaryFolder folder;
  EXPECT_EQ(ReadSecretFile(folder.Write("f", "")).Get(), "");
  const std::string bytes("\0\xff\n\0", 4);
  EXPECT_EQ(ReadSecretFile(folder.Write("f", bytes)).Get(), bytes);
}

TEST(SecretFileTest, NamesFilesInAWayThatATerminalAndAShellCanBear) {
  const TTemporaryFolder folder;
  const std::string refusal = Refusal(folder.Write("a 'b'\x1b[2J", kText, 0644));
  EXPECT_THAT(refusal, HasSubstr("a '\\''b'\\''\\x1b[2J'` mends it"));
  EXPECT_THAT(refusal, Not(HasSubstr("\x1b")));
}

}  // namespace
}  // namespace host
