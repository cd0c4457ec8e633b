// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

/// Reading a data file into memory, step by step: the loaders differ in what they do between.
namespace runner {

/// `sizeBytes` zero bytes, or null when the memory cannot be had.
std::unique_ptr<char[]> AllocateZeroed(std::size_t sizeBytes) noexcept;

/// Reads up to `sizeBytes` bytes of the file into `buffer`. A file that shrank meanwhile leaves
/// the rest of the buffer as it was. False when the file cannot be opened.
bool ReadFile(const std::string& path, char* buffer, std::size_t sizeBytes);

/// Size of the buffer for a text of `sizeBytes` bytes and its terminator, in 32 bits: 0 for the one
/// size whose terminator does not fit any more.
constexpr std::uint32_t GetTerminatedSize(std::uint32_t sizeBytes) {
  return sizeBytes + 1U;
}

/// How many bytes of text a buffer of `bufferBytes` bytes holds in front of its terminator.
constexpr std::uint32_t GetTextSize(std::uint32_t bufferBytes) {
  return bufferBytes == 0 ? 0 : bufferBytes - 1U;
}

/// Throws the exception that stands for a buffer that cannot be had (status 4), naming `path`.
[[noreturn]] void ThrowNoMemory(const std::string& path);

}  // namespace runner
