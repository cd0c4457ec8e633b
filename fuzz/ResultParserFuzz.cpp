// SPDX-License-Identifier: Apache-2.0
// Any bytes end in a catalogue whose entries can be printed and stand under their own names.
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "parsers/ResultParser.h"
#include "platform/contract/TOSSpecific.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string document(reinterpret_cast<const char*>(data), size);
  for (const bool isOEM : {false, true}) {
    NZEPQEL20::TOSSpecific::SetOEMBuild(isOEM);
    ResultParser parser;
    parser.Parse(document.data());
    for (const auto& [name, entry] : std::move(parser).getResultMsgs()) {
      const bool isSilent = entry.messages.empty() && entry.actions.empty();
      if (name != entry.testName || entry.getMessage().empty() != isSilent) __builtin_trap();
    }
  }
  return 0;
}
