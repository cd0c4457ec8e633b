// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>

/// Reading a data file into memory, step by step: the loaders differ in what they do between.
namespace runner {

/// `sizeBytes` zero bytes, or null when the memory cannot be had.
std::unique_ptr<char[]> AllocateZeroed(std::size_t sizeBytes) noexcept;

/// Reads up to `sizeBytes` bytes of the file into `buffer`. A file that shrank meanwhile leaves
/// the rest of the buffer as it was. False when the file cannot be opened.
bool ReadFile(const std::string& path, char* buffer, std::size_t sizeBytes);

/// Throws the exception that stands for a buffer that cannot be had (status 4), naming `path`.
[[noreturn]] void ThrowNoMemory(const std::string& path);

}  // namespace runner
