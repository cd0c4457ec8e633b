// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "platform/contract/ICIMClass.h"
#include "platform/model/TModelNamespace.h"

namespace NZEPQEL20 {

/// A class of one connection, as found through a namespace.
/// Threads: safe from several.
class TModelClass final : public ICIMClass {
 public:
  TModelClass(const boost::shared_ptr<TModelNamespace>& home, std::string name);

  /// One that was found through `home` and whose instances may lie in any of `nameSpaces` of the
  /// connection of `connection`.
  TModelClass(boost::shared_ptr<IRoutedNamespace> home,
              boost::shared_ptr<TModelNamespace> connection, std::vector<std::string> nameSpaces,
              std::string name);

  std::string GetName(const TKeyMap& keys) override;
  boost::shared_ptr<ICIMNamespace> GetNamespace(const TKeyMap& keys) override;
  void EnumerateInstances(const boost::function<bool(boost::shared_ptr<ICIMInstance>)>& callback,
                          int deep, const TKeyMap& keys) override;

 private:
  bool EnumerateIn(const std::string& nameSpace,
                   const boost::function<bool(boost::shared_ptr<ICIMInstance>)>& callback,
                   bool isDeep);

  const boost::shared_ptr<IRoutedNamespace> m_home;
  const boost::shared_ptr<TModelNamespace> m_connection;
  const std::vector<std::string> m_nameSpaces;
  const std::string m_name;
};

}  // namespace NZEPQEL20
