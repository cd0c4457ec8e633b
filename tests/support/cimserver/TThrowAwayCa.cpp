// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TThrowAwayCa.h"

#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>

#include <atomic>
#include <cstdio>
#include <stdexcept>

namespace cimserver {
namespace {

constexpr long kDay = 24L * 3600;
constexpr long kX509Version3 = 2;

template <auto Free>
struct TFree {
  template <typename TObject>
  void operator()(TObject* object) const {
    Free(object);
  }
};
using TKey = std::unique_ptr<EVP_PKEY, TFree<EVP_PKEY_free>>;
using TCertificate = std::unique_ptr<X509, TFree<X509_free>>;
using TExtension = std::unique_ptr<X509_EXTENSION, TFree<X509_EXTENSION_free>>;
using TFile = std::unique_ptr<std::FILE, TFree<std::fclose>>;

void Need(bool isGood, const char* what) {
  if (isGood) return;
  const char* reason = ERR_reason_error_string(ERR_get_error());
  throw std::runtime_error(std::string(what) + ": " + (reason != nullptr ? reason : "failed"));
}

// Elliptic curves: made in no time, where RSA would take a good part of a second.
TKey MakeKey() {
  TKey key(EVP_EC_gen("P-256"));
  Need(key != nullptr, "make a key");
  return key;
}

void SetName(X509_NAME* name, const std::string& text) {
  Need(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8,
                                  reinterpret_cast<const unsigned char*>(text.c_str()), -1, -1,
                                  0) == 1,
       "name a certificate");
}

void AddExtension(X509* certificate, X509* issuer, int kind, const std::string& text) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const TExtension extension(X509V3_EXT_conf_nid(nullptr, &context, kind, text.c_str()));
  Need(extension != nullptr && X509_add_ext(certificate, extension.get(), -1) == 1,
       "extend a certificate");
}

TFile OpenFile(const std::string& name) {
  TFile file(std::fopen(name.c_str(), "we"));
  if (!file) throw std::system_error(errno, std::generic_category(), name);
  // Before anything is in it: what is in a key is nobody else's.
  Need(::fchmod(::fileno(file.get()), S_IRUSR | S_IWUSR) == 0, "protect a file");
  return file;
}

void WriteCertificate(const std::string& name, const X509* certificate) {
  const TFile file = OpenFile(name);
  Need(PEM_write_X509(file.get(), certificate) == 1, "write a certificate");
}

void WriteKey(const std::string& name, const EVP_PKEY* key) {
  const TFile file = OpenFile(name);
  Need(PEM_write_PrivateKey(file.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
       "write a key");
}

// A certificate with all but its extensions and its signature. No two have the same number, as
// clients refuse two of one issuer that do.
TCertificate Begin(const std::string& name, EVP_PKEY* key, long from, long until) {
  static std::atomic<long> number{1};
  TCertificate certificate(X509_new());
  Need(certificate != nullptr, "make a certificate");
  Need(X509_set_version(certificate.get(), kX509Version3) == 1, "make a certificate");
  Need(ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), number++) == 1, "number");
  Need(X509_gmtime_adj(X509_getm_notBefore(certificate.get()), from) != nullptr, "set the time");
  Need(X509_gmtime_adj(X509_getm_notAfter(certificate.get()), until) != nullptr, "set the time");
  SetName(X509_get_subject_name(certificate.get()), name);
  Need(X509_set_pubkey(certificate.get(), key) == 1, "set the key");
  return certificate;
}

void Sign(X509* certificate, X509* issuer, EVP_PKEY* key) {
  Need(X509_set_issuer_name(certificate, X509_get_subject_name(issuer)) == 1, "name the issuer");
  Need(X509_sign(certificate, key, EVP_sha256()) > 0, "sign a certificate");
}

}  // namespace

struct TThrowAwayCa::TIssuer {
  TIssuer() : key(MakeKey()), certificate(Begin("throw-away CA", key.get(), -3 * kDay, 3 * kDay)) {
    X509* own = certificate.get();
    AddExtension(own, own, NID_basic_constraints, "critical,CA:TRUE");
    AddExtension(own, own, NID_key_usage, "critical,keyCertSign,cRLSign");
    AddExtension(own, own, NID_subject_key_identifier, "hash");
    Sign(own, own, key.get());
  }
  TKey key;
  TCertificate certificate;
};

struct TThrowAwayCa::TRequest {
  std::string file;
  std::string name;
  std::string alternativeNames;
  std::string usage;
  long from = -2 * kDay;
  long until = 2 * kDay;
};

TThrowAwayCa::TThrowAwayCa() : m_caFile(m_folder.GetPath("ca.pem")) {
  const TIssuer issuer;
  WriteCertificate(m_caFile, issuer.certificate.get());
  const std::string here = "IP:127.0.0.1,DNS:localhost";
  m_server = Issue(issuer, {"server", "127.0.0.1", here, "serverAuth"});
  m_expired = Issue(issuer, {"expired", "127.0.0.1", here, "serverAuth", -2 * kDay, -1 * kDay});
  m_other = Issue(issuer, {"other", "other.example", "DNS:other.example", "serverAuth"});
  m_client = Issue(issuer, {"client", "throw-away client", "DNS:client.example", "clientAuth"});
}

TThrowAwayCa::TFiles TThrowAwayCa::Issue(const TIssuer& issuer, const TRequest& request) const {
  const TKey key = MakeKey();
  const TCertificate certificate = Begin(request.name, key.get(), request.from, request.until);
  X509* signer = issuer.certificate.get();
  AddExtension(certificate.get(), signer, NID_basic_constraints, "critical,CA:FALSE");
  AddExtension(certificate.get(), signer, NID_key_usage, "critical,digitalSignature");
  AddExtension(certificate.get(), signer, NID_ext_key_usage, request.usage);
  AddExtension(certificate.get(), signer, NID_subject_alt_name, request.alternativeNames);
  AddExtension(certificate.get(), signer, NID_authority_key_identifier, "keyid");
  Sign(certificate.get(), signer, issuer.key.get());
  TFiles files{m_folder.GetPath(request.file) + ".pem", m_folder.GetPath(request.file) + ".key"};
  WriteCertificate(files.certificate, certificate.get());
  WriteKey(files.key, key.get());
  return files;
}

}  // namespace cimserver
