// SPDX-License-Identifier: Apache-2.0
#include "platform/model/TUpcallNamespace.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <optional>
#include <utility>

#include "platform/contract/TQELException.h"
#include "platform/model/TModelClass.h"

namespace NZEPQEL20 {
namespace {

// DSP0200: invalid namespace, invalid class, not found, not supported say only "not here".
bool SaysNotHere(const TQELException& reason) {
  static constexpr unsigned int kNotHere[] = {3, 5, 6, 7};
  return reason.GetStatusCode() == TQELStatusCode(TQELStatusCode::kNotFound) ||
         std::find(std::begin(kNotHere), std::end(kNotHere), reason.GetCIMStatus()) !=
             std::end(kNotHere);
}

// Remembers why nothing was found: the first real failure, else the first refusal.
class TReasons {
 public:
  void Add(const TQELException& reason) {
    if (!m_worst || (SaysNotHere(*m_worst) && !SaysNotHere(reason))) m_worst = reason;
  }
  [[noreturn]] void Throw(const std::string& what) const {
    if (!m_worst) {
      throw TQELException(TQELStatusCode::kNotFound, what + ": no namespace is registered");
    }
    throw TQELException(m_worst->GetStatusCode(), what + ": " + m_worst->what(),
                        m_worst->GetCIMStatus());
  }

 private:
  std::optional<TQELException> m_worst;
};

}  // namespace

TUpcallNamespace::TUpcallNamespace(boost::shared_ptr<TModelNamespace> connection)
    : m_connection(std::move(connection)) {}

boost::shared_ptr<ICIMNamespace> TUpcallNamespace::Select(const TKeyMap& /*keys*/) {
  return shared_from_this();
}

std::vector<std::string> TUpcallNamespace::GetNamespaceNames(const std::string& first) const {
  std::vector<std::string> names;
  if (!first.empty()) names.push_back(first);
  for (std::string& name : m_connection->GetContext()->GetOperations().GetNamespaces()) {
    if (name != first) names.push_back(std::move(name));
  }
  return names;
}

boost::shared_ptr<ICIMClass> TUpcallNamespace::FindClass(const std::string& className,
                                                         const TKeyMap& /*keys*/) {
  TReasons reasons;
  std::vector<std::string> homes;
  std::string spelling = className;
  for (std::string& name : GetNamespaceNames("")) {
    try {
      spelling = m_connection->GetContext()->GetDeclaration(name, className)->name;
      homes.push_back(std::move(name));
    } catch (const TQELException& e) {
      reasons.Add(e);
    }
  }
  if (homes.empty()) reasons.Throw("class " + className);
  return boost::make_shared<TModelClass>(shared_from_this(), m_connection, std::move(homes),
                                         spelling);
}

boost::shared_ptr<ICIMInstance> TUpcallNamespace::GetInstance(const TCIMReference& path,
                                                              TKeyMap /*keys*/) {
  TReasons reasons;
  for (const std::string& name : GetNamespaceNames(path.GetNamespaceName())) {
    try {
      TCIMReference there = path;
      there.SetNamespaceName(name);
      return m_connection->GetInstance(there, {});
    } catch (const TQELException& e) {
      reasons.Add(e);
    }
  }
  reasons.Throw("instance " + path.GetPath());
}

void TUpcallNamespace::EnumerateProviders(
    const boost::function<bool(boost::shared_ptr<IProvider>)>& callback, const TKeyMap& /*keys*/) {
  m_connection->EnumerateProviders(callback, {});
}

}  // namespace NZEPQEL20
