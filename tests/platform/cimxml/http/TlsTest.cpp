// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/ssl.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/platform/cimxml/http/TFault.h"
#include "tests/support/cimserver/TThrowAwayCa.h"

namespace diagstest {
namespace {

using cimserver::TThrowAwayCa;
using NZEPQEL20::TQELStatusCode;
using NZEPQEL20::TServerOptions;
using NZEPQEL20::cimxml::THttpRequest;
using NZEPQEL20::cimxml::THttpSession;

class TlsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { s_ca = new TThrowAwayCa; }
  static void TearDownTestSuite() {
    delete s_ca;
    s_ca = nullptr;
  }

  static TTlsSettings With(const TThrowAwayCa::TFiles& files) {
    TTlsSettings tls;
    tls.certificate = files.certificate;
    tls.key = files.key;
    return tls;
  }

  static TTlsSettings WithClients() {
    TTlsSettings tls = With(s_ca->GetServer());
    tls.clientCa = s_ca->GetCaFile();
    return tls;
  }

  static TServerOptions Trusting(const TScriptedServer& server) {
    TServerOptions options = MakeOptions("https", server.GetPort());
    options.caFile = s_ca->GetCaFile();
    return options;
  }

  static TServerOptions Showing(TServerOptions options, const TThrowAwayCa::TFiles& files) {
    options.clientCertificate = files.certificate;
    options.clientKey = files.key;
    return options;
  }

  // Fails, sees nothing of the request, and fails in the same way again.
  static void ExpectRefusal(const TServerOptions& options, const TScriptedServer& server,
                            unsigned int code, const std::string& text,
                            const std::string& end = "") {
    THttpSession session(options);
    for (int i = 0; i < 2; ++i) {
      const TOutcome outcome = Try(session);
      ExpectOutcome(outcome, {"", TPlay(), TOutcome::kOther, code, text}, options.url);
      EXPECT_THAT(outcome.text, ::testing::EndsWith(end));
    }
    EXPECT_TRUE(server.GetRequests().empty());
  }

  static TThrowAwayCa* s_ca;
};

TThrowAwayCa* TlsTest::s_ca = nullptr;

TEST_F(TlsTest, ServesATrustedServerOnOneConnection) {
  const TScriptedServer server(With(s_ca->GetServer()));
  THttpSession session(Trusting(server));
  for (int i = 0; i < 3; ++i) {
    const TOutcome outcome = Try(session);
    ASSERT_EQ(outcome.text, TScriptedServer::GetGoodBody());
  }
  EXPECT_EQ(server.CountConnections(), 1);
}

TEST_F(TlsTest, RefusesACertificateOfAnAuthorityThatTheSystemDoesNotKnow) {
  const TScriptedServer server(With(s_ca->GetServer()));
  ExpectRefusal(MakeOptions("https", server.GetPort()), server, TQELStatusCode::kAccessDenied,
                "the server's certificate is not trusted (SSL certificate problem: unable to get "
                "local issuer certificate); give the file of its certificate authority, or ask "
                "for insecure mode");
}

TEST_F(TlsTest, RefusesACertificateOfAnotherAuthorityThanTheOneGiven) {
  const TThrowAwayCa other;
  const TScriptedServer server(With(s_ca->GetServer()));
  TServerOptions options = MakeOptions("https", server.GetPort());
  options.caFile = other.GetCaFile();
  ExpectRefusal(options, server, TQELStatusCode::kAccessDenied,
                "the server's certificate is not trusted (SSL certificate problem: ~",
                "); it was not issued by an authority in " + other.GetCaFile() +
                    ", or ask for insecure mode");
}

TEST_F(TlsTest, RefusesACertificateThatHasExpired) {
  const TScriptedServer server(With(s_ca->GetExpiredServer()));
  ExpectRefusal(Trusting(server), server, TQELStatusCode::kAccessDenied,
                "the server's certificate has expired (SSL certificate problem: certificate has "
                "expired); have it renewed, or ask for insecure mode");
}

TEST_F(TlsTest, RefusesACertificateOfAnotherName) {
  const TScriptedServer server(With(s_ca->GetOtherServer()));
  ExpectRefusal(Trusting(server), server, TQELStatusCode::kAccessDenied,
                "the server's certificate is for another name (SSL: no alternative certificate "
                "subject name matches target host name '127.0.0.1'); use the name that it was "
                "made for, or ask for insecure mode");
}

TEST_F(TlsTest, TakesAnyCertificateInInsecureMode) {
  for (const auto* files :
       {&s_ca->GetServer(), &s_ca->GetExpiredServer(), &s_ca->GetOtherServer()}) {
    const TScriptedServer server(With(*files));
    TServerOptions options = MakeOptions("https", server.GetPort());
    options.isInsecure = true;
    THttpSession session(options);
    const TOutcome outcome = Try(session);
    EXPECT_EQ(outcome.text, TScriptedServer::GetGoodBody());
  }
}

TEST_F(TlsTest, ShowsItsCertificateToAServerThatAsks) {
  const TScriptedServer server(WithClients());
  THttpSession session(Showing(Trusting(server), s_ca->GetClient()));
  for (int i = 0; i < 3; ++i) {
    const TOutcome outcome = Try(session);
    EXPECT_EQ(outcome.text, TScriptedServer::GetGoodBody());
  }
}

TEST_F(TlsTest, SaysThatAClientCertificateIsMissing) {
  for (const int version : {0, TLS1_2_VERSION}) {
    TTlsSettings tls = WithClients();
    tls.maxVersion = version;
    const TScriptedServer server(tls);
    ExpectRefusal(Trusting(server), server, TQELStatusCode::kAccessDenied,
                  "the server may want a client certificate, and none is given (~");
  }
}

TEST_F(TlsTest, SaysThatTheClientCertificateIsRefused) {
  const TThrowAwayCa other;
  for (const int version : {0, TLS1_2_VERSION}) {
    TTlsSettings tls = WithClients();
    tls.maxVersion = version;
    const TScriptedServer server(tls);
    ExpectRefusal(Showing(Trusting(server), other.GetClient()), server,
                  TQELStatusCode::kAccessDenied, "the server refuses our client certificate (~",
                  "; give one from an authority that it trusts");
  }
}

TEST_F(TlsTest, RefusesServersThatSpeakOnlyOldVersions) {
  for (const int version : {TLS1_VERSION, TLS1_1_VERSION}) {
    TTlsSettings tls = With(s_ca->GetServer());
    tls.maxVersion = version;
    const TScriptedServer server(tls);
    ExpectRefusal(Trusting(server), server, TQELStatusCode::kConnection,
                  "the server speaks no TLS of version 1.2 or newer (~",
                  "; older versions are not safe and not offered");
  }
}

TEST_F(TlsTest, SaysThatAPlainServerDoesNotSpeakTls) {
  TScriptedServer server;
  for (int i = 0; i < 2; ++i) {
    server.Queue(TPlay::AtOnce().Send("HTTP/1.1 400 Bad Request\r\n\r\n").Close());
  }
  ExpectRefusal(Trusting(server), server, TQELStatusCode::kConnection,
                "the server does not speak TLS on this port (~",
                "; use http, or the port of its https side");
}

TEST_F(TlsTest, ToldOfAServerThatClosesInTheHandshake) {
  TScriptedServer server;
  for (int i = 0; i < 2; ++i) server.Queue(TPlay::AtOnce().Close());
  ExpectRefusal(Trusting(server), server, TQELStatusCode::kConnection,
                "the TLS handshake did not succeed (~");
}

TEST_F(TlsTest, APlainRequestToATlsPortIsToldToTryHttps) {
  const TScriptedServer server(With(s_ca->GetServer()));
  const TServerOptions options = MakeOptions("http", server.GetPort());
  THttpSession session(options);
  ExpectOutcome(Try(session),
                {"", TPlay(), TOutcome::kLost, TQELStatusCode::kConnection,
                 "the connection was lost before the whole answer had come (nothing of it had "
                 "come); when it never answers, does it want https?"},
                options.url);
}

// Servers of another make say in TLS that they do not understand.
TEST_F(TlsTest, APlainRequestThatIsAnsweredWithAnAlertIsToldToTryHttps) {
  TScriptedServer server;
  const TServerOptions options = MakeOptions("http", server.GetPort());
  THttpSession session(options);
  server.Queue(TPlay().Send(std::string("\x15\x03\x01\x00\x02\x02\x16", 7)).Close());
  ExpectOutcome(Try(session),
                {"", TPlay(), TOutcome::kOther, TQELStatusCode::kFailed,
                 "the answer is not proper HTTP (Received HTTP/0.9 when not allowed); is this the "
                 "port of a CIM server, and does it want https?"},
                options.url);
}

TEST_F(TlsTest, ALostConnectionIsToldAndTheNextRequestWorks) {
  TScriptedServer server(With(s_ca->GetServer()));
  const TServerOptions options = Trusting(server);
  THttpSession session(options);
  const std::string half = "HTTP/1.1 200 OK\r\nContent-Length: 50\r\n\r\n<CIM>";
  for (const TPlay& play :
       {TPlay().Close(), TPlay().Reset(), TPlay().Send(half).Close(), TPlay().Send(half).Reset()}) {
    server.Queue(play);
    ExpectOutcome(Try(session),
                  {"", TPlay(), TOutcome::kLost, TQELStatusCode::kConnection,
                   "the connection was lost before the whole answer had come (~"},
                  options.url);
    const TOutcome outcome = Try(session);
    EXPECT_EQ(outcome.text, TScriptedServer::GetGoodBody());
  }
  // Without a length, only TLS itself can tell an end from a cut.
  server.Queue(TPlay().Send("HTTP/1.1 200 OK\r\n\r\n<CIM>").Reset());
  EXPECT_EQ(Try(session).kind, TOutcome::kLost);
}

TEST_F(TlsTest, ALargeRequestIntoABrokenConnectionRaisesNoSignal) {
  TScriptedServer server(With(s_ca->GetServer()));
  THttpSession session(Trusting(server));
  THttpRequest request = MakeRequest();
  request.body.assign(std::size_t{17} << 20U, 'x');
  const TOutcome outcome = Try(session, request);
  EXPECT_NE(outcome.kind, TOutcome::kGood);
  EXPECT_EQ(Try(session).text, TScriptedServer::GetGoodBody());
}

TEST_F(TlsTest, NamesACaFileWithoutCertificates) {
  const TTemporaryFolder folder;
  const TScriptedServer server(With(s_ca->GetServer()));
  TServerOptions options = Trusting(server);
  options.caFile = folder.Write("ca.pem", "no certificate\n");
  ExpectRefusal(options, server, TQELStatusCode::kInvalidArgument,
                "no certificate can be read from the CA file " + options.caFile + " (~");
}

TEST_F(TlsTest, NamesWhatIsWrongWithAClientCertificate) {
  const TTemporaryFolder folder;
  const TScriptedServer server(WithClients());
  TServerOptions options = Trusting(server);
  options.clientCertificate = folder.Write("client.pem", "no certificate\n");
  const std::string advice = "); it must be PEM, with a key that fits and is not encrypted";
  ExpectRefusal(options, server, TQELStatusCode::kInvalidArgument,
                "the client certificate cannot be used (~", advice);
  options.clientCertificate = s_ca->GetClient().certificate;
  options.clientKey = s_ca->GetServer().key;
  ExpectRefusal(options, server, TQELStatusCode::kInvalidArgument,
                "the client certificate cannot be used (~", advice);
}

// Standard input, with the pass phrase "x" to be read from it.
class TTypedPassPhrase {
 public:
  TTypedPassPhrase() : m_before(::dup(STDIN_FILENO)) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    EXPECT_EQ(::write(ends[1], "x\nx\n", 4), 4);
    ::dup2(ends[0], STDIN_FILENO);
    ::close(ends[0]);
    ::close(ends[1]);
  }
  ~TTypedPassPhrase() {
    ::dup2(m_before, STDIN_FILENO);
    ::close(m_before);
  }
  TTypedPassPhrase(const TTypedPassPhrase&) = delete;
  TTypedPassPhrase& operator=(const TTypedPassPhrase&) = delete;

 private:
  int m_before;
};

// OpenSSL would ask for the pass phrase on the terminal, and wait.
TEST_F(TlsTest, DoesNotAskForThePassPhraseOfAKey) {
  const TTemporaryFolder folder;
  const TScriptedServer server(WithClients());
  TServerOptions options = Showing(Trusting(server), s_ca->GetClient());
  options.clientKey = folder.GetPath() + "/encrypted.key";
  const std::string command = "openssl pkey -in " + s_ca->GetClient().key + " -aes256 -passout " +
                              "pass:x -out " + options.clientKey;
  ASSERT_EQ(std::system(command.c_str()), 0);
  const TTypedPassPhrase typed;
  ExpectRefusal(options, server, TQELStatusCode::kInvalidArgument,
                "the client certificate cannot be used (~",
                "); it must be PEM, with a key that fits and is not encrypted");
}

}  // namespace
}  // namespace diagstest
