// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TRepositoryNamespace.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <utility>

#include "platform/contract/ICIMClass.h"
#include "platform/contract/TCIMInstanceData.h"
#include "platform/contract/TQELException.h"
#include "platform/model/TStoredInstance.h"

namespace NZEPQEL20 {
namespace {

// A class of which the store holds instances.
class TStoredClass final : public ICIMClass {
 public:
  TStoredClass(boost::shared_ptr<TRepositoryNamespace> home, std::string name)
      : m_home(std::move(home)), m_name(std::move(name)) {}

  std::string GetName(const TKeyMap& /*keys*/) override { return m_name; }
  boost::shared_ptr<ICIMNamespace> GetNamespace(const TKeyMap& /*keys*/) override { return m_home; }
  void EnumerateInstances(const boost::function<bool(boost::shared_ptr<ICIMInstance>)>& callback,
                          int /*deep*/, const TKeyMap& /*keys*/) override {
    for (const auto& instance : m_home->GetInstances(m_name)) {
      if (!callback(instance)) return;
    }
  }

 private:
  const boost::shared_ptr<TRepositoryNamespace> m_home;
  const std::string m_name;
};

}  // namespace

boost::shared_ptr<ICIMInstance> TRepositoryNamespace::CreateInstance(
    const boost::shared_ptr<ICIMInstance>& source) {
  if (!source) {
    throw TQELException(TQELStatusCode::kInvalidArgument, "CreateInstance: no instance to store");
  }
  const TCIMReference path = source->GetObjectPath({});
  boost::shared_ptr<ICIMInstance> copy = boost::make_shared<TStoredInstance>(*source);
  TEntry entry{path.GetPath(), path.GetClassName(), copy};

  const std::lock_guard<std::mutex> lock(m_mutex);
  m_recent.push_back(copy);
  const auto known =
      std::find_if(m_entries.begin(), m_entries.end(),
                   [&entry](const TEntry& other) { return other.path == entry.path; });
  if (known != m_entries.end()) {
    *known = std::move(entry);
  } else {
    m_entries.push_back(std::move(entry));
  }
  return copy;
}

std::vector<boost::shared_ptr<ICIMInstance>> TRepositoryNamespace::GetInstances(
    const std::string& className) const {
  std::vector<boost::shared_ptr<ICIMInstance>> found;
  const std::lock_guard<std::mutex> lock(m_mutex);
  for (const TEntry& entry : m_entries) {
    if (IsSameName(entry.className, className)) found.push_back(entry.instance);
  }
  return found;
}

boost::shared_ptr<ICIMClass> TRepositoryNamespace::FindClass(const std::string& className,
                                                             const TKeyMap& /*keys*/) {
  const auto found = GetInstances(className);
  if (found.empty()) {
    throw TQELException(TQELStatusCode::kNotFound,
                        "class " + className + ": the store holds no instance of it");
  }
  return boost::make_shared<TStoredClass>(shared_from_this(),
                                          found.front()->GetObjectPath({}).GetClassName());
}

boost::shared_ptr<ICIMInstance> TRepositoryNamespace::GetInstance(const TCIMReference& path,
                                                                  TKeyMap /*keys*/) {
  const std::string wanted = path.GetPath();
  const std::lock_guard<std::mutex> lock(m_mutex);
  for (const TEntry& entry : m_entries) {
    if (entry.path == wanted) return entry.instance;
  }
  throw TQELException(TQELStatusCode::kNotFound,
                      "instance " + wanted + ": the store does not hold it");
}

void TRepositoryNamespace::EnumerateProviders(
    const boost::function<bool(boost::shared_ptr<IProvider>)>& /*callback*/,
    const TKeyMap& /*keys*/) {}

std::vector<boost::shared_ptr<ICIMInstance>> TRepositoryNamespace::TakeRecent() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return std::exchange(m_recent, {});
}

}  // namespace NZEPQEL20
