// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/pem.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/cimserver/TThrowAwayCa.h"

namespace cimserver {
namespace {

using TCertificate = std::unique_ptr<X509, decltype(&X509_free)>;

TCertificate Read(const std::string& name) {
  std::FILE* file = std::fopen(name.c_str(), "re");
  if (file == nullptr) return {nullptr, X509_free};
  TCertificate certificate(PEM_read_X509(file, nullptr, nullptr, nullptr), X509_free);
  std::fclose(file);
  return certificate;
}

/// What OpenSSL says of the certificate, by the authority alone.
std::string Verify(const std::string& certificateFile, const std::string& caFile, int purpose) {
  const TCertificate certificate = Read(certificateFile);
  const std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)> store(X509_STORE_new(),
                                                                      X509_STORE_free);
  X509_STORE_load_file(store.get(), caFile.c_str());
  const std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> context(
      X509_STORE_CTX_new(), X509_STORE_CTX_free);
  X509_STORE_CTX_init(context.get(), store.get(), certificate.get(), nullptr);
  X509_STORE_CTX_set_purpose(context.get(), purpose);
  X509_verify_cert(context.get());
  return X509_verify_cert_error_string(X509_STORE_CTX_get_error(context.get()));
}

TEST(ThrowAwayCaTest, ServersAndClientsOfTheAuthorityAreTrusted) {
  const TThrowAwayCa ca;
  EXPECT_EQ(Verify(ca.GetServer().certificate, ca.GetCaFile(), X509_PURPOSE_SSL_SERVER), "ok");
  EXPECT_EQ(Verify(ca.GetOtherServer().certificate, ca.GetCaFile(), X509_PURPOSE_SSL_SERVER), "ok");
  EXPECT_EQ(Verify(ca.GetClient().certificate, ca.GetCaFile(), X509_PURPOSE_SSL_CLIENT), "ok");
}

TEST(ThrowAwayCaTest, AServerThatHasExpiredIsRefusedForThat) {
  const TThrowAwayCa ca;
  EXPECT_EQ(Verify(ca.GetExpiredServer().certificate, ca.GetCaFile(), X509_PURPOSE_SSL_SERVER),
            "certificate has expired");
}

TEST(ThrowAwayCaTest, AnotherAuthorityTrustsNoneOfThem) {
  const TThrowAwayCa ca;
  const TThrowAwayCa stranger;
  EXPECT_THAT(Verify(ca.GetServer().certificate, stranger.GetCaFile(), X509_PURPOSE_SSL_SERVER),
              testing::HasSubstr("unable to get"));
}

TEST(ThrowAwayCaTest, OnlyTheServersOwnNamesAreInItsCertificate) {
  const TThrowAwayCa ca;
  const TCertificate server = Read(ca.GetServer().certificate);
  const TCertificate other = Read(ca.GetOtherServer().certificate);
  ASSERT_TRUE(server && other);
  EXPECT_EQ(X509_check_ip_asc(server.get(), "127.0.0.1", 0), 1);
  EXPECT_EQ(X509_check_host(server.get(), "localhost", 0, 0, nullptr), 1);
  EXPECT_EQ(X509_check_ip_asc(other.get(), "127.0.0.1", 0), 0);
  EXPECT_EQ(X509_check_host(other.get(), "localhost", 0, 0, nullptr), 0);
  EXPECT_EQ(X509_check_host(other.get(), "other.example", 0, 0, nullptr), 1);
}

TEST(ThrowAwayCaTest, KeysAreReadableByTheirOwnerOnlyAndGoWithTheAuthority) {
  std::string folder;
  {
    const TThrowAwayCa ca;
    folder = ca.GetFolder();
    for (const auto* files : {&ca.GetServer(), &ca.GetExpiredServer(), &ca.GetClient()}) {
      struct stat status {};
      ASSERT_EQ(::stat(files->key.c_str(), &status), 0) << files->key;
      EXPECT_EQ(status.st_mode & 0777U, 0600U) << files->key;
    }
  }
  EXPECT_FALSE(std::filesystem::exists(folder));
}

}  // namespace
}  // namespace cimserver
