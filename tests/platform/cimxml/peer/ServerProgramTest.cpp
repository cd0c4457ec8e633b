// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <ostream>

#include "tests/platform/cimxml/peer/TRawClient.h"
#include "tests/support/TSubprocess.h"
#include "tests/support/TTemporaryFolder.h"
#include "tests/support/cimserver/TThrowAwayCa.h"
#include "tests/support/cimserver/TWbemcli.h"

namespace cimserver {
namespace {

using programs::TProgram;
using programs::TSubprocess;
using testing::HasSubstr;
using testing::StartsWith;

TProgram MakeServer(const std::vector<std::string>& arguments) {
  TProgram program;
  program.arguments = {DIAGS_CIM_SERVER};
  program.arguments.insert(program.arguments.end(), arguments.begin(), arguments.end());
  program.hasInput = true;
  return program;
}

/// The URL that the program names once it listens.
std::string WaitForUrl(TSubprocess& server) {
  static const std::string kStart = "listening on ";
  EXPECT_TRUE(server.WaitForOutput("\n")) << server.GetErr();
  const std::string& out = server.GetOut();
  EXPECT_THAT(out, StartsWith(kStart));
  return out.substr(kStart.size(), out.find('\n') - kStart.size());
}

TEST(ServerProgramTest, ServesTheProvidersOfARootUntilItsInputEnds) {
  TSubprocess server(MakeServer({"--root", DIAGSTEST_ROOT, "--stats"}));
  const TWbemcli client(WaitForUrl(server), "root/cimv2");
  EXPECT_EQ(client.EnumerateInstanceNames("TST_DiagnosticTest").objects.size(), 11U);
  EXPECT_EQ(client.GetClass("TST_None").cimStatus, 6U);
  server.CloseInput();
  EXPECT_EQ(server.Wait(), 0);
  EXPECT_THAT(server.GetOut(), testing::EndsWith("\nconnections 2\n"
                                                 "EnumerateInstanceNames 1\n"
                                                 "GetClass 1\n"));
  EXPECT_EQ(server.GetErr(), "");
}

TEST(ServerProgramTest, ServesGeneratedObjectsUntilASignal) {
  for (const int signal : {SIGTERM, SIGINT}) {
    TSubprocess server(MakeServer({"--synthetic", "3", "--style", "sfcb"}));
    const TWbemcli client(WaitForUrl(server), "root/cimv2");
    EXPECT_EQ(client.EnumerateInstances("BENCH_Record").objects.size(), 3U);
    server.Signal(signal);
    EXPECT_EQ(server.Wait(), 0);
  }
}

TEST(ServerProgramTest, AsksForCredentialsByTls) {
  const TThrowAwayCa ca;
  const TTemporaryFolder folder;
  TSubprocess server(MakeServer({"--synthetic", "1", "--cert", ca.GetServer().certificate, "--key",
                                 ca.GetServer().key, "--user", "me", "--password-file",
                                 folder.Write("password", "secret\n")}));
  std::string url = WaitForUrl(server);
  ASSERT_THAT(url, StartsWith("https://"));
  const TWbemcli::TArguments trusting = {"-cacert", ca.GetCaFile()};
  const TWbemcli stranger(url, "root/cimv2", trusting);
  EXPECT_EQ(stranger.EnumerateInstanceNames("BENCH_Record").exitStatus, 16);
  const TWbemcli known(url.insert(8, "me:secret@"), "root/cimv2", trusting);
  EXPECT_EQ(known.EnumerateInstanceNames("BENCH_Record").objects.size(), 1U);
}

TEST(ServerProgramTest, ListensAtAUnixSocketWithoutPull) {
  const TTemporaryFolder folder;
  const std::string path = folder.GetPath() + "/s";
  TSubprocess server(MakeServer({"--synthetic", "1", "--unix", path, "--no-pull"}));
  EXPECT_EQ(WaitForUrl(server), "unix://" + path);
  EXPECT_THAT(TRawClient(path).Exchange(PostIntrinsic("OpenEnumerateInstances", "")),
              HasSubstr("CIM_ERR_NOT_SUPPORTED"));
}

struct TWrongRow {
  std::vector<std::string> arguments;
  const char* error;
};
void PrintTo(const TWrongRow& row, std::ostream* out) {
  *out << testing::PrintToString(row.arguments);
}

TEST(ServerProgramTest, SaysWhatIsWrong) {
  for (const TWrongRow& row :
       {TWrongRow{{}, "one of --root and --synthetic is needed"},
        {{"--root", "/nowhere/at/all"}, "/nowhere/at/all"},
        {{"--synthetic", "1", "--style", "other"}, "--style"},
        {{"--synthetic", "1", "--cert", "/nowhere.pem", "--key", "/nowhere.key"}, "/nowhere.pem"},
        {{"--synthetic", "1", "--user", "me"}, "--password-file"},
        {{"--synthetic", "1", "--user", "me", "--password-file", "/nowhere"},
         "/nowhere: no password in it"}}) {
    const auto finished = programs::RunToEnd(MakeServer(row.arguments));
    EXPECT_NE(finished.status, 0) << testing::PrintToString(row);
    EXPECT_THAT(finished.err, HasSubstr(row.error)) << testing::PrintToString(row);
    EXPECT_EQ(finished.out, "") << testing::PrintToString(row);
  }
}

}  // namespace
}  // namespace cimserver
