// SPDX-License-Identifier: Apache-2.0
// The function table through which providers ask for what other providers have.
#include <memory>
#include <utility>

#include "platform/cmpi/QueryObjects.h"
#include "platform/cmpi/TBrokerArgs.h"
#include "platform/cmpi/TBrokerEnumeration.h"
#include "platform/cmpi/TBrokerInstance.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TBrokerSelectExp.h"
#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/TCancellationPoint.h"
#include "platform/cmpi/THostLease.h"
#include "platform/cmpi/TWantedProperties.h"
#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

using TFilter = ICIMOperations::TAssociationFilter;

/// One upcall: the host, and the object that it is about.
class TUpcall {
 public:
  TUpcall(const CMPIBroker* mb, const CMPIObjectPath* path, bool isMethod = false) : m_lease(mb) {
    TPathContent content = TBrokerPath::From(path).GetContent();
    content.nameSpace = isMethod ? Host().FindMethodNamespace(content.nameSpace, content.className)
                                 : Host().FindNamespace(content.nameSpace, content.className);
    m_target = content.ToReference();
  }

  IBrokerHost& Host() const { return m_lease.Require(); }
  ICIMOperations& Operations() const { return Host().GetOperations(); }
  const TCIMReference& Target() const { return m_target; }
  const std::string& NameSpace() const { return m_target.GetNamespaceName(); }

 private:
  THostLease m_lease;
  TCIMReference m_target;
};

/// Drops what `properties` (NULL for all) does not name; keys stay, because they are the path's.
void Project(TCIMInstanceData& data, const char** properties) {
  if (properties == nullptr) return;
  TInstanceContent content = TInstanceContent::From(data);
  content.SetFilter(ReadNames(properties), nullptr);
  data.properties = std::move(content.properties);
}

/// Gathers instances for an enumeration, those that match where there is a query.
class TGatherer {
 public:
  TGatherer(const char** properties, const TQuery* query, const IBrokerHost& host)
      : m_properties(properties), m_query(query), m_host(host) {}

  ICIMOperations::TInstanceSink Sink() {
    return [this](TCIMInstanceData&& data) {
      if (!Passes(data)) return true;
      Project(data, m_properties);
      m_elements.push_back(
          TCIMValue::Instance(std::make_shared<TCIMInstanceData>(std::move(data))));
      return true;
    };
  }
  CMPIEnumeration* Finish() {
    return Make<TBrokerEnumeration>(ECIMType::kInstance, std::move(m_elements));
  }

 private:
  bool Passes(const TCIMInstanceData& data) const {
    return m_query == nullptr ||
           m_query->Matches(TQueriedInstance(data.path.GetClassName(), data.properties, &m_host));
  }

  const char** m_properties;
  const TQuery* m_query;
  const IBrokerHost& m_host;
  TCIMValue::TArray m_elements;
};

CMPIEnumeration* EnumerationOf(const std::vector<TCIMReference>& paths) {
  TCIMValue::TArray elements;
  for (const TCIMReference& path : paths) elements.emplace_back(path);
  return Make<TBrokerEnumeration>(ECIMType::kReference, std::move(elements));
}

CMPIContext* PrepareAttachThread(const CMPIBroker* mb, const CMPIContext* current) noexcept {
  return Answer(nullptr, [&]() -> CMPIContext* {
    TBroker* broker = TBroker::Find(mb);
    return broker == nullptr ? nullptr : broker->Prepare(current);
  });
}

TBroker& RequireBroker(const CMPIBroker* mb) {
  TBroker* broker = TBroker::Find(mb);
  if (broker == nullptr) throw TBrokerFault(CMPI_RC_ERR_FAILED, "no broker is at work");
  return *broker;
}

CMPIStatus AttachThread(const CMPIBroker* mb, const CMPIContext* prepared) noexcept {
  return AnswerStatus([&] { RequireBroker(mb).Attach(prepared); });
}

CMPIStatus DetachThread(const CMPIBroker* mb, const CMPIContext* prepared) noexcept {
  return AnswerStatus([&] { RequireBroker(mb).Detach(prepared); });
}

/// Nobody listens to indications, which is no failure of whoever sends one.
CMPIStatus DeliverIndication(const CMPIBroker*, const CMPIContext*, const char*,
                             const CMPIInstance* indication) noexcept {
  return AnswerStatus([&] { TBrokerInstance::From(indication); });
}

CMPIEnumeration* EnumerateInstanceNames(const CMPIBroker* mb, const CMPIContext*,
                                        const CMPIObjectPath* path, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TUpcall call(mb, path);
    return EnumerationOf(
        call.Operations().EnumerateInstanceNames(call.NameSpace(), call.Target().GetClassName()));
  });
}

CMPIInstance* GetInstance(const CMPIBroker* mb, const CMPIContext*, const CMPIObjectPath* path,
                          const char** properties, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIInstance* {
    const TUpcall call(mb, path);
    const TWantedProperties wanted(properties);
    TCIMInstanceData data = call.Operations().GetInstance(call.Target());
    Project(data, properties);
    return Make<TBrokerInstance>(TInstanceContent::From(data));
  });
}

CMPIObjectPath* CreateInstance(const CMPIBroker* mb, const CMPIContext*, const CMPIObjectPath* path,
                               const CMPIInstance* instance, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIObjectPath* {
    const TUpcall call(mb, path);
    TCIMInstanceData data = *TBrokerInstance::From(instance).GetData();
    // An instance made without keys gets those of the path beside it.
    if (data.path.GetKeys().empty()) data.path = call.Target();
    data.path.SetClassName(call.Target().GetClassName());
    return Make<TBrokerPath>(
        TPathContent::From(call.Operations().CreateInstance(call.NameSpace(), data)));
  });
}

CMPIStatus ModifyInstance(const CMPIBroker* mb, const CMPIContext*, const CMPIObjectPath* path,
                          const CMPIInstance* instance, const char** properties) noexcept {
  return AnswerStatus([&] {
    const TUpcall call(mb, path);
    TCIMInstanceData data = *TBrokerInstance::From(instance).GetData();
    data.path = call.Target();
    Project(data, properties);
    const TWantedProperties changed(properties);
    call.Operations().ModifyInstance(data);
  });
}

CMPIStatus DeleteInstance(const CMPIBroker* mb, const CMPIContext*,
                          const CMPIObjectPath* path) noexcept {
  return AnswerStatus([&] {
    const TUpcall call(mb, path);
    call.Operations().DeleteInstance(call.Target());
  });
}

TFilter MakeFilter(const char* associationClass, const char* resultClass, const char* role,
                   const char* resultRole) {
  return {TextOrEmpty(associationClass), TextOrEmpty(resultClass), TextOrEmpty(role),
          TextOrEmpty(resultRole)};
}

CMPIEnumeration* AssociatorNames(const CMPIBroker* mb, const CMPIContext*,
                                 const CMPIObjectPath* path, const char* associationClass,
                                 const char* resultClass, const char* role, const char* resultRole,
                                 CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TUpcall call(mb, path);
    return EnumerationOf(call.Operations().AssociatorNames(
        call.Target(), MakeFilter(associationClass, resultClass, role, resultRole)));
  });
}

CMPIEnumeration* ReferenceNames(const CMPIBroker* mb, const CMPIContext*,
                                const CMPIObjectPath* path, const char* resultClass,
                                const char* role, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TUpcall call(mb, path);
    return EnumerationOf(call.Operations().ReferenceNames(
        call.Target(), MakeFilter(nullptr, resultClass, role, nullptr)));
  });
}

CMPIData InvokeMethod(const CMPIBroker* mb, const CMPIContext*, const CMPIObjectPath* target,
                      const char* method, const CMPIArgs* in, CMPIArgs* out,
                      CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TUpcall call(mb, target, true);
    TKeyMap parameters;
    if (in != nullptr) {
      for (const TCIMPropertyData& argument : TBrokerArgs::From(in).GetValues()) {
        parameters.emplace(argument.name, argument.value);
      }
    }
    TBrokerArgs* results = TBrokerArgs::FromOrNull(out);
    const TCIMValue answer = call.Operations().InvokeMethod(
        call.Target(), RequireName(method, "method name"), parameters);
    if (results != nullptr) {
      for (const auto& [name, value] : parameters) SetNamed(results->GetValues(), name, value);
    }
    return ToCMPI(answer);
  });
}

CMPIStatus SetProperty(const CMPIBroker* mb, const CMPIContext*, const CMPIObjectPath* path,
                       const char* name, const CMPIValue* value, CMPIType type) noexcept {
  return AnswerStatus([&] {
    const TUpcall call(mb, path);
    const std::string property = ToUtf8(RequireName(name, "property name"));
    const TCIMValue given = FromCMPI(value, type);
    if (call.Host().SetProperty(call.Target(), property, given)) return;
    TCIMInstanceData data;
    data.path = call.Target();
    data.properties.push_back({property, given});
    const char* names[] = {property.c_str(), nullptr};
    const TWantedProperties changed(names);
    call.Operations().ModifyInstance(data);
  });
}

CMPIData GetProperty(const CMPIBroker* mb, const CMPIContext*, const CMPIObjectPath* path,
                     const char* name, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TUpcall call(mb, path);
    const auto own = call.Host().GetProperty(call.Target(), RequireName(name, "property name"));
    if (own) return ToCMPI(*own);
    const TCIMInstanceData data = call.Operations().GetInstance(call.Target());
    const TCIMPropertyData* property = data.Find(name);
    if (property == nullptr) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, std::string("no property ") + name);
    }
    return ToCMPI(property->value);
  });
}

/// `names` as providers take them; valid as long as `names`.
std::vector<const char*> Pointers(const std::vector<std::string>& names) {
  std::vector<const char*> pointers;
  pointers.reserve(names.size() + 1);
  for (const std::string& name : names) pointers.push_back(name.c_str());
  pointers.push_back(nullptr);
  return pointers;
}

/// A filter that need not be given.
std::shared_ptr<const TQuery> ReadFilter(const char* query, const char* language) {
  return query == nullptr || *query == '\0' ? nullptr : ReadQuery(query, language);
}

CMPIEnumeration* ExecQuery(const CMPIBroker* mb, const CMPIContext*, const CMPIObjectPath* path,
                           const char* query, const char* language, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const auto read = ReadQuery(query, language);
    TPathContent about = TBrokerPath::From(path).GetContent();
    if (!read->GetClassName().empty()) about.className = read->GetClassName();
    const TPassedPath target(std::move(about));
    const TUpcall call(mb, target.Get());
    std::vector<const char*> selected = Pointers(read->GetProperties());
    TGatherer gatherer(read->SelectsAll() ? nullptr : selected.data(), read.get(), call.Host());
    call.Operations().EnumerateInstances(call.NameSpace(), call.Target().GetClassName(),
                                         gatherer.Sink());
    return gatherer.Finish();
  });
}

/// Gathers what `ask` hands to a sink. `query` may be NULL; where it is not, it may be about
/// properties that are not wanted, so that providers are asked for all.
template <class TAsk>
CMPIEnumeration* Gather(const CMPIBroker* mb, const CMPIObjectPath* path, const char** properties,
                        const char* language, const char* query, CMPIStatus* rc,
                        const TAsk& ask) noexcept {
  return Answer(rc, [&] {
    const auto filter = ReadFilter(query, language);
    const TUpcall call(mb, path);
    const TWantedProperties wanted(filter == nullptr ? properties : nullptr);
    TGatherer gatherer(properties, filter.get(), call.Host());
    ask(call, gatherer.Sink());
    return gatherer.Finish();
  });
}

CMPIEnumeration* EnumerateInstancesFiltered(const CMPIBroker* mb, const CMPIContext*,
                                            const CMPIObjectPath* path, const char** properties,
                                            const char* language, const char* query,
                                            CMPIStatus* rc) noexcept {
  return Gather(mb, path, properties, language, query, rc, [](const auto& call, const auto& sink) {
    call.Operations().EnumerateInstances(call.NameSpace(), call.Target().GetClassName(), sink);
  });
}

CMPIEnumeration* EnumerateInstances(const CMPIBroker* mb, const CMPIContext* context,
                                    const CMPIObjectPath* path, const char** properties,
                                    CMPIStatus* rc) noexcept {
  return EnumerateInstancesFiltered(mb, context, path, properties, nullptr, nullptr, rc);
}

CMPIEnumeration* AssociatorsFiltered(const CMPIBroker* mb, const CMPIContext*,
                                     const CMPIObjectPath* path, const char* associationClass,
                                     const char* resultClass, const char* role,
                                     const char* resultRole, const char** properties,
                                     const char* language, const char* query,
                                     CMPIStatus* rc) noexcept {
  return Gather(mb, path, properties, language, query, rc, [&](const auto& call, const auto& sink) {
    call.Operations().Associators(
        call.Target(), MakeFilter(associationClass, resultClass, role, resultRole), sink);
  });
}

CMPIEnumeration* Associators(const CMPIBroker* mb, const CMPIContext* context,
                             const CMPIObjectPath* path, const char* associationClass,
                             const char* resultClass, const char* role, const char* resultRole,
                             const char** properties, CMPIStatus* rc) noexcept {
  return AssociatorsFiltered(mb, context, path, associationClass, resultClass, role, resultRole,
                             properties, nullptr, nullptr, rc);
}

CMPIEnumeration* ReferencesFiltered(const CMPIBroker* mb, const CMPIContext*,
                                    const CMPIObjectPath* path, const char* resultClass,
                                    const char* role, const char** properties, const char* language,
                                    const char* query, CMPIStatus* rc) noexcept {
  return Gather(mb, path, properties, language, query, rc, [&](const auto& call, const auto& sink) {
    call.Operations().References(call.Target(), MakeFilter(nullptr, resultClass, role, nullptr),
                                 sink);
  });
}

CMPIEnumeration* References(const CMPIBroker* mb, const CMPIContext* context,
                            const CMPIObjectPath* path, const char* resultClass, const char* role,
                            const char** properties, CMPIStatus* rc) noexcept {
  return ReferencesFiltered(mb, context, path, resultClass, role, properties, nullptr, nullptr, rc);
}

constexpr unsigned int kCapabilities =
    CMPI_MB_BasicQualifierSupport | CMPI_MB_CodepageConversion | CMPI_MB_AssociationTraversal |
    CMPI_MB_QueryExecution | CMPI_MB_QueryNormalization | CMPI_MB_PropertyFiltering |
    CMPI_MB_OSEncapsulationSupport | CMPI_MB_Supports_MemEnhancements |
    CMPI_MB_Supports_Extended_Error | CMPI_MB_Logging | CMPI_MB_Tracing;

}  // namespace

const CMPIBrokerFT kBrokerTable = {kCapabilities,
                                   kBrokerVersion,
                                   "diagsrunner",
                                   PrepareAttachThread,
                                   AttachThread,
                                   DetachThread,
                                   DeliverIndication,
                                   kCancellable<EnumerateInstanceNames>,
                                   kCancellable<GetInstance>,
                                   kCancellable<CreateInstance>,
                                   kCancellable<ModifyInstance>,
                                   kCancellable<DeleteInstance>,
                                   kCancellable<ExecQuery>,
                                   kCancellable<EnumerateInstances>,
                                   kCancellable<Associators>,
                                   kCancellable<AssociatorNames>,
                                   kCancellable<References>,
                                   kCancellable<ReferenceNames>,
                                   kCancellable<InvokeMethod>,
                                   kCancellable<SetProperty>,
                                   kCancellable<GetProperty>,
                                   kCancellable<EnumerateInstancesFiltered>,
                                   kCancellable<AssociatorsFiltered>,
                                   kCancellable<ReferencesFiltered>};

}  // namespace NZEPQEL20::cmpi
