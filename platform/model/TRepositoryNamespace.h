// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <mutex>
#include <string>
#include <vector>

#include "platform/contract/ICIMNamespace.h"

namespace NZEPQEL20 {

/// A namespace in memory that keeps copies of instances, with the texts that their properties had.
/// It knows no class hierarchy: a class holds the instances that bear its very name. Key maps are
/// not consulted.
/// Threads: safe from several.
class TRepositoryNamespace final : public ICIMNamespace,
                                   public ICIMInstanceStore,
                                   public boost::enable_shared_from_this<TRepositoryNamespace> {
 public:
  boost::shared_ptr<ICIMInstance> CreateInstance(
      const boost::shared_ptr<ICIMInstance>& source) override;

  boost::shared_ptr<ICIMClass> FindClass(const std::string& className,
                                         const TKeyMap& keys) override;
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path, TKeyMap keys) override;
  /// There are none here.
  void EnumerateProviders(const boost::function<bool(boost::shared_ptr<IProvider>)>& callback,
                          const TKeyMap& keys) override;

  /// The copies made since the last call, in the order of copying.
  std::vector<boost::shared_ptr<ICIMInstance>> TakeRecent();
  /// The instances of the class, in the order of their first copying.
  std::vector<boost::shared_ptr<ICIMInstance>> GetInstances(const std::string& className) const;

 private:
  struct TEntry {
    std::string path;
    std::string className;
    boost::shared_ptr<ICIMInstance> instance;
  };

  mutable std::mutex m_mutex;
  std::vector<TEntry> m_entries;
  std::vector<boost::shared_ptr<ICIMInstance>> m_recent;
};

}  // namespace NZEPQEL20
