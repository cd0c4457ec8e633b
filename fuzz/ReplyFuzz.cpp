// SPDX-License-Identifier: Apache-2.0
// Replies of a CIM server: whatever comes ends in a reply or an exception, the same however it was
// cut into pieces, and an instance that was read can be written and read again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/cimxml/TReplyReader.h"
#include "platform/cimxml/ValueElements.h"
#include "platform/contract/TQELException.h"

namespace {

using NZEPQEL20::TCIMInstanceData;
using NZEPQEL20::TCIMPropertyData;
using NZEPQEL20::TQELException;
using NZEPQEL20::cimxml::TReply;
using NZEPQEL20::cimxml::TReplyReader;

constexpr char kNamespace[] = "root/cimv2";

// False when the bytes are no reply.
bool Read(const std::string& text, std::size_t cut, TReply& reply) {
  try {
    TReplyReader reader(kNamespace);
    reader.Take(text.data(), cut);
    reader.Take(text.data() + cut, text.size() - cut);
    reply = reader.Finish();
    return true;
  } catch (const TQELException&) {
    return false;
  }
}

void Require(bool isTrue) {
  if (!isTrue) std::abort();
}

void WriteAndReadAgain(const TCIMInstanceData& instance) {
  std::string text;
  NZEPQEL20::cimxml::AppendInstance(text, instance);
  const auto again = TReplyReader::ReadEmbedded(text, kNamespace);
  Require(again != nullptr && again->properties.size() == instance.properties.size());
  for (std::size_t i = 0; i < instance.properties.size(); ++i) {
    Require(again->properties[i].name == instance.properties[i].name);
    Require(again->properties[i].value.ToString(10) == instance.properties[i].value.ToString(10));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  TReply whole;
  TReply cut;
  const bool isReply = Read(text, text.size(), whole);
  Require(Read(text, text.empty() ? 0 : data[0] * text.size() / 256, cut) == isReply);
  if (!isReply) return 0;
  Require(whole.instances.size() == cut.instances.size() && whole.oddities == cut.oddities);
  for (const TCIMInstanceData& instance : whole.instances) WriteAndReadAgain(instance);
  return 0;
}
