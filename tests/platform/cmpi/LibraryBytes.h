// SPDX-License-Identifier: Apache-2.0
// The bytes of a library of the test tree, and what of them the loader maps: where that ends is up
// to the linker.
#pragma once

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace NZEPQEL20 {

/// All bytes of `file`.
inline std::string ReadBytes(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The record that lies at `place`.
template <class T>
T GetRecord(const std::string& bytes, std::size_t place) {
  T record = {};
  std::memcpy(&record, bytes.data() + place, sizeof record);
  return record;
}

/// Where the bytes end that the loader maps.
inline std::size_t FindLoadedEnd(const std::string& bytes) {
  const auto header = GetRecord<ElfW(Ehdr)>(bytes, 0);
  std::size_t end = 0;
  for (std::size_t i = 0; i < header.e_phnum; ++i) {
    const auto segment = GetRecord<ElfW(Phdr)>(bytes, header.e_phoff + i * sizeof(ElfW(Phdr)));
    if (segment.p_type == PT_LOAD) end = std::max(end, segment.p_offset + segment.p_filesz);
  }
  return end;
}

/// What is said of a library with only the first `size` bytes, which are more than its headers.
inline std::string DescribeCut(std::size_t size) {
  return "is cut off: it has " + std::to_string(size) +
         " bytes, and a segment of it ends behind them";
}

}  // namespace NZEPQEL20
