// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/HttpText.h"

#include <openssl/evp.h>

#include <cctype>
#include <cstdlib>
#include <vector>

namespace cimserver {
namespace {

bool IsHex(char character) {
  return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

}  // namespace

std::string PercentEncode(const std::string& text) {
  static const std::string kDigits = "0123456789ABCDEF";
  static const std::string kPlain = "-_.~";
  std::string encoded;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isAscii = byte < 0x80;
    if (isAscii && (std::isalnum(byte) != 0 || kPlain.find(character) != std::string::npos)) {
      encoded += character;
    } else {
      encoded.append("%").append(1, kDigits[byte >> 4U]).append(1, kDigits[byte & 0x0FU]);
    }
  }
  return encoded;
}

std::string PercentDecode(const std::string& text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && IsHex(text[i + 1]) && IsHex(text[i + 2])) {
      decoded += static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16));
      i += 2;
    } else {
      decoded += text[i];
    }
  }
  return decoded;
}

std::string MakeBasicCredentials(const std::string& user, const std::string& password) {
  const std::string plain = user + ':' + password;
  std::vector<unsigned char> encoded(plain.size() * 4 / 3 + 8);
  const int size =
      EVP_EncodeBlock(encoded.data(), reinterpret_cast<const unsigned char*>(plain.data()),
                      static_cast<int>(plain.size()));
  return "Basic " + std::string(encoded.begin(), encoded.begin() + size);
}

}  // namespace cimserver
