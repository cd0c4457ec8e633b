// SPDX-License-Identifier: Apache-2.0
#include "platform/schema/TSchemaCache.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

#include "platform/schema/SchemaBuild.h"
#include "platform/schema/SchemaCodec.h"
#include "platform/schema/SchemaHash.h"

namespace NZEPQEL20 {

namespace {

constexpr std::string_view kMagic = "DIAGSMOF";
// More than any schema needs; what a file can make us hold is bounded by this.
constexpr std::uint64_t kMaxSize = std::uint64_t{512} * 1024 * 1024;
constexpr std::size_t kLeastText = 4;
constexpr std::size_t kLeastProblem = 17;
constexpr std::size_t kLeastClass = 32;

void EncodeTexts(TByteWriter& out, const std::vector<std::string>& texts) {
  out.PutCount(texts.size());
  for (const std::string& text : texts) {
    out.PutText(text);
  }
}

std::vector<std::string> DecodeTexts(TByteReader& in) {
  std::vector<std::string> texts(in.TakeCount(kLeastText));
  for (std::string& text : texts) {
    text = in.TakeText();
  }
  return texts;
}

void EncodeInputs(TByteWriter& out, const TSchemaInputs& inputs) {
  EncodeTexts(out, inputs.files);
  EncodeTexts(out, inputs.folders);
}

TSchemaInputs DecodeInputs(TByteReader& in) {
  TSchemaInputs inputs;
  inputs.files = DecodeTexts(in);
  inputs.folders = DecodeTexts(in);
  return inputs;
}

}  // namespace

void TSchemaCache::EncodeHeader(std::string& bytes, const TRecord& index,
                                std::int64_t trustedBefore) {
  TByteWriter out;
  out.PutLong(kSchemaBuild);
  out.PutSigned(trustedBefore);
  out.PutLong(index.offset);
  out.PutLong(index.size);
  out.PutLong(index.hash);
  const std::uint64_t hash = HashBytes(out.GetBytes());
  out.PutLong(hash);
  bytes.replace(0, kHeaderSize, std::string(kMagic) + out.GetBytes());
}

std::string TSchemaCache::EncodeIndex(const TContent& content,
                                      const std::vector<TRecord>& records) {
  TByteWriter out;
  EncodeInputs(out, content.inputs);
  out.PutCount(content.sources.size());
  for (const TSchemaSource& source : content.sources) {
    EncodeSource(out, source);
  }
  out.PutCount(content.problems.size());
  for (const TMofError& problem : content.problems) {
    EncodeProblem(out, problem);
  }
  out.PutCount(content.leftOut.size());
  for (const TLeftOutClass& leftOut : content.leftOut) {
    out.PutText(leftOut.name);
    out.PutText(leftOut.file);
    out.PutText(leftOut.holder);
  }
  const TClassTree& tree = content.classes.GetTree();
  out.PutCount(tree.GetCount());
  // The instances are the last record.
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (i < tree.GetCount()) {
      out.PutText(tree.GetName(i));
      out.PutText(tree.GetSuperclass(i));
    }
    out.PutLong(records[i].offset);
    out.PutLong(records[i].size);
    out.PutLong(records[i].hash);
  }
  return out.Take();
}

std::string TSchemaCache::Encode(const TContent& content) {
  std::string bytes;
  std::vector<TRecord> records;
  const auto put = [&](const std::string& record) {
    records.push_back({kHeaderSize + bytes.size(), record.size(), HashBytes(record)});
    bytes += record;
  };
  for (std::size_t place = 0; place < content.classes.GetTree().GetCount(); ++place) {
    put(EncodeClass(*content.classes.GetClass(place)));
  }
  put(EncodeInstances(content.instances));
  return Assemble(bytes, EncodeIndex(content, records), content.trustedBefore);
}

std::string TSchemaCache::Assemble(const std::string& records, const std::string& index,
                                   std::int64_t trustedBefore) {
  std::string bytes(kHeaderSize, '\0');
  bytes += records;
  const TRecord place = {bytes.size(), index.size(), HashBytes(index)};
  bytes += index;
  EncodeHeader(bytes, place, trustedBefore);
  return bytes;
}

TSchemaCache::TSchemaCache(TDescriptor file) : m_file(std::move(file)) {
  TRecord index;
  ReadHeader(index);
  DecodeIndex(ReadRecord(index));
}

void TSchemaCache::ReadHeader(TRecord& index) {
  struct stat info = {};
  if (fstat(m_file.Get(), &info) != 0) {
    throw TDamagedError();
  }
  m_size = static_cast<std::uint64_t>(info.st_size);
  if (m_size < kHeaderSize || m_size > kMaxSize) {
    throw TDamagedError();
  }
  std::string bytes(kHeaderSize, '\0');
  if (pread(m_file.Get(), bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()) ||
      bytes.compare(0, kMagic.size(), kMagic) != 0) {
    throw TDamagedError();
  }
  const std::string_view fields = std::string_view(bytes).substr(kMagic.size());
  TByteReader in(fields);
  if (in.TakeLong() != kSchemaBuild) {
    throw TQELException(TQELStatusCode::kFailed, "the schema cache is of another build");
  }
  m_trustedBefore = in.TakeSigned();
  index = DecodeRecord(in);
  const std::uint64_t hash = HashBytes(fields.substr(0, fields.size() - sizeof(std::uint64_t)));
  if (in.TakeLong() != hash || index.offset + index.size != m_size) {
    throw TDamagedError();
  }
}

TSchemaCache::TRecord TSchemaCache::DecodeRecord(TByteReader& in) const {
  TRecord record;
  record.offset = in.TakeLong();
  record.size = in.TakeLong();
  record.hash = in.TakeLong();
  if (record.offset > m_size || record.size > m_size - record.offset) {
    throw TDamagedError();
  }
  return record;
}

void TSchemaCache::DecodeIndex(std::string_view bytes) {
  TByteReader in(bytes);
  m_inputs = DecodeInputs(in);
  m_sources.resize(in.TakeCount(kLeastSource));
  for (TSchemaSource& source : m_sources) {
    source = DecodeSource(in);
  }
  m_problems.resize(in.TakeCount(kLeastProblem));
  for (TMofError& problem : m_problems) {
    problem = DecodeProblem(in);
  }
  m_leftOut.resize(in.TakeCount(3 * kLeastText));
  for (TLeftOutClass& leftOut : m_leftOut) {
    leftOut.name = in.TakeText();
    leftOut.file = in.TakeText();
    leftOut.holder = in.TakeText();
  }
  m_records.resize(in.TakeCount(kLeastClass));
  for (TRecord& record : m_records) {
    const std::string name = in.TakeText();
    const std::string superclass = in.TakeText();
    if (!m_tree.Add(name, superclass).second) {
      throw TDamagedError();
    }
    record = DecodeRecord(in);
  }
  m_instances = DecodeRecord(in);
  in.Finish();
}

std::string TSchemaCache::ReadRecord(const TRecord& record) const {
  std::string bytes(static_cast<std::size_t>(record.size), '\0');
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = pread(m_file.Get(), bytes.data() + done, bytes.size() - done,
                                static_cast<off_t>(record.offset + done));
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      throw TDamagedError();
    }
    done += static_cast<std::size_t>(count);
  }
  if (HashBytes(bytes) != record.hash) {
    throw TDamagedError();
  }
  return bytes;
}

bool TSchemaCache::IsFresh(bool& isYoung) const {
  isYoung = false;
  for (const TSchemaSource& source : m_sources) {
    const ESourceState state = CheckSource(source, m_trustedBefore);
    if (state == ESourceState::kChanged) {
      return false;
    }
    isYoung = isYoung || state == ESourceState::kSameByContent;
  }
  return true;
}

std::int64_t TSchemaCache::GetYoungest() const {
  std::int64_t youngest = std::numeric_limits<std::int64_t>::min();
  for (const TSchemaSource& source : m_sources) {
    youngest = std::max({youngest, source.stamp.modified, source.stamp.changed});
  }
  return youngest;
}

std::string TSchemaCache::Renew(std::int64_t trustedBefore) const {
  TRecord index;
  std::string bytes(static_cast<std::size_t>(m_size), '\0');
  if (pread(m_file.Get(), bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw TDamagedError();
  }
  TByteReader in(std::string_view(bytes).substr(kMagic.size() + 2 * sizeof(std::uint64_t)));
  index = DecodeRecord(in);
  EncodeHeader(bytes, index, trustedBefore);
  return bytes;
}

std::shared_ptr<const TSchemaClass> TSchemaCache::GetClass(std::size_t place) const {
  auto declaration =
      std::make_shared<const TSchemaClass>(DecodeClass(ReadRecord(m_records[place])));
  if (declaration->name != m_tree.GetName(place)) {
    throw TDamagedError();
  }
  return declaration;
}

std::vector<TCIMInstanceData> TSchemaCache::GetInstances(
    const TClassRepository& /*classes*/) const {
  return DecodeInstances(ReadRecord(m_instances));
}

}  // namespace NZEPQEL20
