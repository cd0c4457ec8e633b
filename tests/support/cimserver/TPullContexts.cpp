// SPDX-License-Identifier: Apache-2.0
#include "tests/support/cimserver/TPullContexts.h"

#include "tests/support/cimserver/CimTypes.h"

namespace cimserver {
namespace {

[[noreturn]] void Refuse(const std::string& context) {
  throw TQELException(TQELStatusCode::kInvalidArgument, "\"" + context + "\"", kCIMInvalidContext);
}

}  // namespace

TPullContexts::TBatch TPullContexts::Open(bool isPaths, std::vector<std::string> objects,
                                          std::size_t count) {
  return Continue({isPaths, std::move(objects)}, count);
}

TPullContexts::TBatch TPullContexts::Pull(const std::string& context, bool isPaths,
                                          std::size_t count) {
  TEnumeration enumeration = Take(context);
  if (enumeration.isPaths != isPaths) Refuse(context);
  return Continue(std::move(enumeration), count);
}

void TPullContexts::Close(const std::string& context) {
  Take(context);
}

std::size_t TPullContexts::GetCount() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_open.size();
}

TPullContexts::TEnumeration TPullContexts::Take(const std::string& context) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  const auto found = m_open.find(context);
  if (found == m_open.end()) Refuse(context);
  TEnumeration enumeration = std::move(found->second);
  m_open.erase(found);
  return enumeration;
}

TPullContexts::TBatch TPullContexts::Continue(TEnumeration enumeration, std::size_t count) {
  TBatch batch;
  for (; count > 0 && enumeration.next < enumeration.objects.size(); --count) {
    batch.objects += enumeration.objects[enumeration.next++];
  }
  batch.isEnd = enumeration.next == enumeration.objects.size();
  if (batch.isEnd) return batch;
  const std::lock_guard<std::mutex> lock(m_mutex);
  batch.context = std::to_string(++m_lastName);
  m_open.emplace(batch.context, std::move(enumeration));
  return batch;
}

}  // namespace cimserver
