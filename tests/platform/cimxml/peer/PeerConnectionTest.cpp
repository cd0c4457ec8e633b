// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "tests/platform/cimxml/peer/PeerMessages.h"
#include "tests/platform/cimxml/peer/TPeerWorld.h"
#include "tests/platform/cimxml/peer/TRawClient.h"
#include "tests/support/TGate.h"
#include "tests/support/TTemporaryFolder.h"
#include "tests/support/cimserver/HttpText.h"

namespace cimserver {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string kAsk = PostIntrinsic("EnumerateClassNames", "");

TEST(PeerConnectionTest, AConnectionServesAsManyRequestsAsAreWanted) {
  const TPeerWorld world;
  TPeerOptions options;
  options.requestsPerConnection = 3;
  const TCimServer server(world.GetOperations(), options);
  TRawClient client(server.GetPort());
  EXPECT_THAT(client.Exchange(kAsk), StartsWith("HTTP/1.1 200 "));
  EXPECT_THAT(client.Exchange(kAsk), testing::Not(HasSubstr("Connection: close")));
  EXPECT_THAT(client.Exchange(kAsk), HasSubstr("Connection: close"));
  EXPECT_TRUE(client.IsClosed());
  EXPECT_EQ(server.CountConnections(), 1U);
  EXPECT_EQ(server.CountRequests("EnumerateClassNames"), 3U);
}

TEST(PeerConnectionTest, AClientMayAskForTheEnd) {
  const TPeerWorld world;
  const TCimServer server(world.GetOperations());
  TRawClient client(server.GetPort());
  EXPECT_THAT(client.Exchange(PostIntrinsic("EnumerateClassNames", "", "Connection: close\r\n")),
              HasSubstr("Connection: close\r\n"));
  EXPECT_TRUE(client.IsClosed());
}

TEST(PeerConnectionTest, RequestsAreCountedByOperation) {
  const TPeerWorld world;
  const TCimServer server(world.GetOperations());
  for (int i = 0; i < 2; ++i) {
    TRawClient client(server.GetPort());
    client.Exchange(kAsk);
    client.Exchange(PostAdd(""));
    client.Exchange(PostIntrinsic("GetClass", ClassParameter("none")));
  }
  TRawClient(server.GetPort()).Exchange("nothing of the kind\r\n\r\n");
  EXPECT_EQ(
      server.GetRequestCounts(),
      (std::map<std::string, std::size_t>{
          {"EnumerateClassNames", 2}, {"Add", 2}, {"GetClass", 2}, {TPeerCounts::kRefused, 1}}));
  EXPECT_EQ(server.CountAllRequests(), 7U);
  EXPECT_EQ(server.CountConnections(), 3U);
}

TEST(PeerConnectionTest, SeveralConnectionsAreServedAtOnce) {
  const TPeerWorld world;
  const TCimServer server(world.GetOperations());
  constexpr int kClients = 8;
  constexpr int kRequests = 20;
  std::vector<int> good(kClients);
  std::vector<std::thread> threads;
  for (int& count : good) {
    threads.emplace_back([&server, &count] {
      TRawClient client(server.GetPort());
      for (int i = 0; i < kRequests; ++i) {
        const std::string reply =
            client.Exchange(PostIntrinsic("EnumerateInstances", ClassParameter("PEER_Thing")));
        if (reply.find("two") != std::string::npos) ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(good, testing::Each(kRequests));
  EXPECT_EQ(server.CountRequests("EnumerateInstances"), kClients * kRequests * 1U);
}

// A request that hangs in the object model holds up nobody else.
TEST(PeerConnectionTest, OneConnectionDoesNotWaitForAnother) {
  const TPeerWorld world;
  scripted::TGate gate;
  world.GetOperations()->SetMethod(
      [&gate](const TCIMReference&, const std::string&, TKeyMap& parameters) {
        gate.Pass();
        parameters.clear();
        return TCIMValue::UInt32(7);
      });
  const TCimServer server(world.GetOperations());
  TRawClient slow(server.GetPort());
  slow.Send(PostAdd(""));
  ASSERT_TRUE(gate.WaitUntilReached());
  EXPECT_THAT(TRawClient(server.GetPort()).Exchange(kAsk), StartsWith("HTTP/1.1 200 "));
  gate.Open();
  EXPECT_THAT(slow.Receive(), HasSubstr("<VALUE>7</VALUE>"));
}

TEST(PeerConnectionTest, TheServersEndIsTheConnectionsEnd) {
  const TPeerWorld world;
  auto server = std::make_unique<TCimServer>(world.GetOperations());
  const std::uint16_t port = server->GetPort();
  TRawClient idle(port);
  idle.Exchange(kAsk);
  TRawClient midway(port);
  midway.Send(kAsk.substr(0, kAsk.size() / 2));
  server.reset();
  EXPECT_TRUE(idle.IsClosed());
  EXPECT_TRUE(midway.IsClosed());
  EXPECT_THROW(TRawClient late(port), std::system_error);
}

TEST(PeerConnectionTest, AUnixSocketIsThereAsLongAsTheServer) {
  const TTemporaryFolder folder;
  const TPeerWorld world;
  TPeerOptions options;
  options.unixPath = folder.GetPath() + "/peer";
  {
    const TCimServer server(world.GetOperations(), options);
    EXPECT_EQ(server.GetUrl(), "unix://" + options.unixPath);
    EXPECT_THAT(TRawClient(options.unixPath).Exchange(kAsk), StartsWith("HTTP/1.1 200 "));
    EXPECT_THROW(TCimServer(world.GetOperations(), options), std::system_error);
  }
  EXPECT_THROW(TRawClient late(options.unixPath), std::system_error);
}

TEST(PeerConnectionTest, APortThatIsTakenIsNamed) {
  const TPeerWorld world;
  const TCimServer server(world.GetOperations());
  TPeerOptions options;
  options.port = server.GetPort();
  try {
    const TCimServer other(world.GetOperations(), options);
    FAIL() << "no exception";
  } catch (const std::system_error& failure) {
    EXPECT_THAT(failure.what(), HasSubstr("port " + std::to_string(options.port)));
  }
}

TEST(PeerConnectionTest, CredentialsAreAskedForInTheMakersWay) {
  const TPeerWorld world;
  for (const auto& [style, challenge] :
       {std::pair(EStyle::kPegasus, "WWW-Authenticate: Basic \"peer\"\r\n"),
        std::pair(EStyle::kSfcb, "WWW-Authenticate: Basic realm=\"cimom\"\r\n")}) {
    TPeerOptions options;
    options.style = style;
    options.user = "me";
    options.password = "se:cret";
    const TCimServer server(world.GetOperations(), options);
    TRawClient client(server.GetPort());
    EXPECT_THAT(client.Exchange(kAsk), StartsWith("HTTP/1.1 401 Unauthorized\r\n"));
    const auto with = [&client](const std::string& credentials) {
      return client.Exchange(
          PostIntrinsic("EnumerateClassNames", "", "Authorization: " + credentials + "\r\n"));
    };
    EXPECT_THAT(with("Basic bWU6bm8="), HasSubstr(challenge));
    EXPECT_THAT(with("Basic bWU6c2U6Y3JldA=="), StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_EQ(server.CountRequests(TPeerCounts::kRefused), 2U);
  }
}

TEST(PeerConnectionTest, ContinuesWhereThatIsExpected) {
  const TPeerWorld world;
  const TCimServer server(world.GetOperations());
  TRawClient client(server.GetPort());
  const std::string request = PostIntrinsic("EnumerateClassNames", "", "Expect: 100-continue\r\n");
  const std::size_t body = request.find("\r\n\r\n") + 4;
  EXPECT_EQ(client.Exchange(request.substr(0, body)), "HTTP/1.1 100 Continue\r\n\r\n");
  EXPECT_THAT(client.Exchange(request.substr(body)), StartsWith("HTTP/1.1 200 OK\r\n"));
}

TEST(HttpTextTest, PercentSignsStandForBytes) {
  EXPECT_EQ(PercentEncode("a-_.~Z9 :/\xC3\xA4"), "a-_.~Z9%20%3A%2F%C3%A4");
  EXPECT_EQ(PercentDecode("%20%3a%C3%A4x"), " :\xC3\xA4x");
  EXPECT_EQ(PercentDecode("100% %4 %zz %"), "100% %4 %zz %");
}

}  // namespace
}  // namespace cimserver
