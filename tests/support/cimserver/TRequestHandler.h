// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/cimserver/CimTypes.h"
#include "tests/support/cimserver/TCimCall.h"
#include "tests/support/cimserver/TOperands.h"
#include "tests/support/cimserver/TPullContexts.h"
#include "tests/support/cimserver/TXmlWriter.h"

namespace cimserver {

/// The answer to a call, in the pieces that a chunked reply needs apart.
struct TCimReply {
  std::string head;     ///< From the XML declaration into the response element.
  std::string content;  ///< Result or ERROR.
  std::string tail;
  unsigned int cimStatus = 0;  ///< 0: it went well.
  std::string description;
};

/// Carries calls out by an ICIMOperations.
/// Threads: safe from several.
class TRequestHandler {
 public:
  struct TSettings {
    EStyle style = EStyle::kPegasus;
    std::string host = "peer";
    bool hasPull = true;  ///< Counts for kPegasus only.
    std::function<void(const std::string& method)> beforeMethod;
  };

  TRequestHandler(std::shared_ptr<ICIMOperations> operations, TSettings settings);

  /// Errors: THttpFault for a message with values that its types do not allow. What goes wrong
  /// behind that is in the reply.
  TCimReply Handle(const TCimCall& call);

 private:
  /// Where an operation writes its results.
  struct TResult {
    TXmlWriter objects;         ///< Goes into IRETURNVALUE.
    std::string outParameters;  ///< Follows it.
  };
  using TOperation = void (TRequestHandler::*)(const TOperands&, TResult&);
  struct TEntry {
    const char* name;
    TOperation operation;
    bool isPull;
    std::vector<const char*> parameters;
  };
  static const std::vector<TEntry>& GetEntries();
  const TEntry& FindEntry(const std::string& name) const;

  TCimReply Frame(const TCimCall& call, const std::string& content) const;
  TCimReply FrameError(const TCimCall& call, unsigned int status, const std::string& text) const;
  std::string Carry(const TCimCall& call);
  std::string CarryIntrinsic(const TCimCall& call);
  std::string CarryMethod(const TCimCall& call);
  std::string Wrap(TResult& result) const;
  TXmlWriter MakeWriter() const;
  std::shared_ptr<const TCIMClassDeclaration> FindClass(const std::string& nameSpace,
                                                        const std::string& className) const;
  std::shared_ptr<const TCIMClassDeclaration> RequireClass(const std::string& nameSpace,
                                                           const std::string& className,
                                                           unsigned int otherwise) const;
  std::string RequireNameSpace(const std::string& nameSpace) const;
  TCIMReference RequireObject(const TOperands& operands, const char* name) const;

  void GetClass(const TOperands& operands, TResult& result);
  void EnumerateClasses(const TOperands& operands, TResult& result);
  void EnumerateClassNames(const TOperands& operands, TResult& result);
  void GetInstance(const TOperands& operands, TResult& result);
  void EnumerateInstances(const TOperands& operands, TResult& result);
  void EnumerateInstanceNames(const TOperands& operands, TResult& result);
  void CreateInstance(const TOperands& operands, TResult& result);
  void ModifyInstance(const TOperands& operands, TResult& result);
  void DeleteInstance(const TOperands& operands, TResult& result);

  void Associators(const TOperands& operands, TResult& result);
  void AssociatorNames(const TOperands& operands, TResult& result);
  void References(const TOperands& operands, TResult& result);
  void ReferenceNames(const TOperands& operands, TResult& result);

  void OpenEnumerateInstances(const TOperands& operands, TResult& result);
  void OpenEnumerateInstancePaths(const TOperands& operands, TResult& result);
  void OpenAssociatorInstances(const TOperands& operands, TResult& result);
  void OpenAssociatorInstancePaths(const TOperands& operands, TResult& result);
  void OpenReferenceInstances(const TOperands& operands, TResult& result);
  void OpenReferenceInstancePaths(const TOperands& operands, TResult& result);
  void PullInstancesWithPath(const TOperands& operands, TResult& result);
  void PullInstancePaths(const TOperands& operands, TResult& result);
  void CloseEnumeration(const TOperands& operands, TResult& result);

  ICIMOperations::TInstanceSink WriteObjects(TResult& result, const std::string& nameSpace,
                                             const TContentOptions& options) const;
  ICIMOperations::TInstanceSink Collect(std::vector<std::string>& objects,
                                        const std::string& nameSpace,
                                        const TContentOptions& options) const;
  std::vector<std::string> WritePaths(const std::vector<TCIMReference>& paths,
                                      const std::string& nameSpace) const;
  TContentOptions GetInstanceOptions(const TOperands& operands) const;
  void CheckOpen(const TOperands& operands) const;
  void Open(const TOperands& operands, bool isPaths, std::vector<std::string> objects,
            TResult& result);
  void Pull(const TOperands& operands, bool isPaths, TResult& result);

  std::shared_ptr<ICIMOperations> m_operations;
  TSettings m_settings;
  TPullContexts m_pulls;
};

}  // namespace cimserver
