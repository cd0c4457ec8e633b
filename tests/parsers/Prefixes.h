// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

/// Every beginning of `document`, the empty one and the whole included.
inline std::vector<std::string> GetPrefixes(const std::string& document) {
  std::vector<std::string> prefixes;
  for (std::size_t size = 0; size <= document.size(); ++size) {
    prefixes.push_back(document.substr(0, size));
  }
  return prefixes;
}

/// Documents that no parser gets anything out of, by what is wrong with them.
inline std::vector<std::string> GetUselessDocuments() {
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<x>";
  return {"",
          " \n",
          "plain text",
          "{\"json\": true}",
          "\177ELF\1\1\1",
          "<",
          "<!DOCTYPE x [<!ENTITY y SYSTEM 'file:///etc/passwd'>]><x>&y;</x>",
          "<?xml version='1.0' encoding='EBCDIC-XX'?><x/>",
          "<?xml version='1.0' encoding='UTF-16'?><x/>",
          "\xFF\xFE<",
          "\xEF\xBB\xBF",
          "<x>\xC0\x80</x>",
          deep};
}
