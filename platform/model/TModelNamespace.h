// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>

#include "platform/contract/TCMPINamespace.h"
#include "platform/model/IRoutedNamespace.h"
#include "platform/model/TModelContext.h"

namespace NZEPQEL20 {

/// One namespace of one connection. To be held by a boost::shared_ptr.
/// Threads: safe from several.
class TModelNamespace final : public TCMPINamespace,
                              public IRoutedNamespace,
                              public boost::enable_shared_from_this<TModelNamespace> {
 public:
  TModelNamespace(std::shared_ptr<TModelContext> context, std::string name);

  boost::shared_ptr<ICIMClass> FindClass(const std::string& className,
                                         const TKeyMap& keys) override;
  /// The path's own namespace counts; a path without one lies in this. A job that was ended from
  /// outside is complete: see CompleteEndedJob().
  boost::shared_ptr<ICIMInstance> GetInstance(const TCIMReference& path, TKeyMap keys) override;
  void EnumerateProviders(const boost::function<bool(boost::shared_ptr<IProvider>)>& callback,
                          const TKeyMap& keys) override;
  boost::shared_ptr<ICIMNamespace> GetUpcallNamespace() override;
  boost::shared_ptr<ICIMNamespace> Select(const TKeyMap& keys) override;

  const std::string& GetName() const { return m_name; }
  const std::shared_ptr<TModelContext>& GetContext() const { return m_context; }

  /// The namespace called `name` of the same connection; this one for its own or an empty name.
  boost::shared_ptr<TModelNamespace> GetSibling(const std::string& name);

  /// `value` with every reference in it bound to the namespace that it lies in.
  TCIMValue Bind(const TCIMValue& value);

 private:
  TCIMReference BindReference(const TCIMReference& path);

  const std::shared_ptr<TModelContext> m_context;
  const std::string m_name;
};

}  // namespace NZEPQEL20
