// SPDX-License-Identifier: Apache-2.0
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/contract/TQELException.h"
#include "platform/schema/SchemaCodec.h"
#include "platform/schema/TClassRepository.h"
#include "platform/schema/TSchemaCache.h"

namespace {

using namespace NZEPQEL20;

void ReadRecords(const std::string& bytes) {
  try {
    DecodeClass(bytes);
  } catch (const TQELException&) {
  }
  try {
    DecodeInstances(bytes);
  } catch (const TQELException&) {
  }
}

void ReadFile(const std::string& bytes) {
  TDescriptor file(memfd_create("cache", MFD_CLOEXEC));
  if (write(file.Get(), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) return;
  try {
    auto cache = std::make_shared<const TSchemaCache>(std::move(file));
    // Whether it is fresh is not asked: the bytes would have this machine's files looked at.
    cache->Renew(0);
    const auto classes = TClassRepository::FromStore(cache, nullptr);
    for (const std::string& name : classes->GetSubclasses("", true)) classes->Find(name);
    classes->GetInstances();
  } catch (const TQELException&) {
  }
}

}  // namespace

/// Any bytes in the place of a cache, of its index, or of one of its records are taken or refused.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(data, data + size);
  ReadRecords(bytes);
  ReadFile(bytes);
  ReadFile(TSchemaCache::Assemble(bytes, bytes, 0));
  return 0;
}
