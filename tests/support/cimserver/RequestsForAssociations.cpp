// SPDX-License-Identifier: Apache-2.0
// The chapter of TRequestHandler about associations and pull operations.
#include "tests/support/cimserver/TRequestHandler.h"

namespace cimserver {
namespace {

constexpr std::uint64_t kMaxObjectCount = 10'000;
constexpr std::uint64_t kMaxTimeoutSeconds = 3600;

ICIMOperations::TAssociationFilter GetFilter(const TOperands& operands) {
  return {operands.GetText("AssocClass"), operands.GetText("ResultClass"), operands.GetText("Role"),
          operands.GetText("ResultRole")};
}

[[noreturn]] void Refuse(unsigned int status, const std::string& text) {
  throw TQELException(TQELStatusCode::kInvalidArgument, text, status);
}

std::size_t CheckCount(std::uint64_t count) {
  if (count > kMaxObjectCount) Refuse(kCIMInvalidParameter, "MaxObjectCount");
  return static_cast<std::size_t>(count);
}

std::string WriteOutParameters(const TPullContexts::TBatch& batch) {
  const std::string end = batch.isEnd ? "TRUE" : "FALSE";
  return "<PARAMVALUE NAME=\"EndOfSequence\">\n<VALUE>" + end +
         "</VALUE>\n</PARAMVALUE>\n"
         "<PARAMVALUE NAME=\"EnumerationContext\">\n<VALUE>" +
         batch.context + "</VALUE>\n</PARAMVALUE>\n";
}

}  // namespace

ICIMOperations::TInstanceSink TRequestHandler::WriteObjects(TResult& result,
                                                            const std::string& nameSpace,
                                                            const TContentOptions& options) const {
  return [&result, &nameSpace, options](TCIMInstanceData&& instance) {
    result.objects.Raw("<VALUE.OBJECTWITHPATH>\n");
    result.objects.InstancePath(instance.path, nameSpace);
    result.objects.Instance(instance, options);
    result.objects.Raw("</VALUE.OBJECTWITHPATH>\n");
    return true;
  };
}

std::vector<std::string> TRequestHandler::WritePaths(const std::vector<TCIMReference>& paths,
                                                     const std::string& nameSpace) const {
  std::vector<std::string> written;
  TXmlWriter writer = MakeWriter();
  for (const TCIMReference& path : paths) {
    writer.InstancePath(path, nameSpace);
    written.push_back(writer.Take());
  }
  return written;
}

void TRequestHandler::Associators(const TOperands& operands, TResult& result) {
  const TCIMReference path = RequireObject(operands, "ObjectName");
  m_operations->Associators(
      path, GetFilter(operands),
      WriteObjects(result, operands.GetNameSpace(), operands.GetContentOptions()));
}

void TRequestHandler::References(const TOperands& operands, TResult& result) {
  const TCIMReference path = RequireObject(operands, "ObjectName");
  m_operations->References(
      path, GetFilter(operands),
      WriteObjects(result, operands.GetNameSpace(), operands.GetContentOptions()));
}

void TRequestHandler::AssociatorNames(const TOperands& operands, TResult& result) {
  const TCIMReference path = RequireObject(operands, "ObjectName");
  for (const std::string& name : WritePaths(
           m_operations->AssociatorNames(path, GetFilter(operands)), operands.GetNameSpace())) {
    result.objects.Raw("<OBJECTPATH>\n" + name + "</OBJECTPATH>\n");
  }
}

void TRequestHandler::ReferenceNames(const TOperands& operands, TResult& result) {
  const TCIMReference path = RequireObject(operands, "ObjectName");
  for (const std::string& name : WritePaths(m_operations->ReferenceNames(path, GetFilter(operands)),
                                            operands.GetNameSpace())) {
    result.objects.Raw("<OBJECTPATH>\n" + name + "</OBJECTPATH>\n");
  }
}

// What every open operation has, refused as the server does that this is modelled on.
void TRequestHandler::CheckOpen(const TOperands& operands) const {
  if (!operands.GetText("FilterQuery").empty()) Refuse(kCIMFiltersUnsupported, "FilterQuery");
  if (operands.GetFlag("ContinueOnError", false)) {
    Refuse(kCIMContinuingUnsupported, "ContinueOnError");
  }
  if (operands.FindNumber("OperationTimeout").value_or(0) > kMaxTimeoutSeconds) {
    Refuse(kCIMInvalidTimeout, "OperationTimeout");
  }
  CheckCount(operands.FindNumber("MaxObjectCount").value_or(0));
}

ICIMOperations::TInstanceSink TRequestHandler::Collect(std::vector<std::string>& objects,
                                                       const std::string& nameSpace,
                                                       const TContentOptions& options) const {
  auto writer = std::make_shared<TXmlWriter>(MakeWriter());
  return [writer, &objects, &nameSpace, options](TCIMInstanceData&& instance) {
    writer->Raw("<VALUE.INSTANCEWITHPATH>\n");
    writer->InstancePath(instance.path, nameSpace);
    writer->Instance(instance, options);
    writer->Raw("</VALUE.INSTANCEWITHPATH>\n");
    objects.push_back(writer->Take());
    return true;
  };
}

void TRequestHandler::Open(const TOperands& operands, bool isPaths,
                           std::vector<std::string> objects, TResult& result) {
  const std::size_t count = CheckCount(operands.FindNumber("MaxObjectCount").value_or(0));
  const auto batch = m_pulls.Open(isPaths, std::move(objects), count);
  result.objects.Raw(batch.objects);
  result.outParameters = WriteOutParameters(batch);
}

void TRequestHandler::OpenEnumerateInstances(const TOperands& operands, TResult& result) {
  CheckOpen(operands);
  const std::string className = operands.RequireClassName("ClassName");
  RequireClass(operands.GetNameSpace(), className, kCIMInvalidClass);
  std::vector<std::string> objects;
  m_operations->EnumerateInstances(
      operands.GetNameSpace(), className,
      Collect(objects, operands.GetNameSpace(), GetInstanceOptions(operands)));
  Open(operands, false, std::move(objects), result);
}

void TRequestHandler::OpenEnumerateInstancePaths(const TOperands& operands, TResult& result) {
  CheckOpen(operands);
  const std::string className = operands.RequireClassName("ClassName");
  RequireClass(operands.GetNameSpace(), className, kCIMInvalidClass);
  Open(operands, true,
       WritePaths(m_operations->EnumerateInstanceNames(operands.GetNameSpace(), className),
                  operands.GetNameSpace()),
       result);
}

void TRequestHandler::OpenAssociatorInstances(const TOperands& operands, TResult& result) {
  CheckOpen(operands);
  const TCIMReference path = RequireObject(operands, "InstanceName");
  std::vector<std::string> objects;
  m_operations->Associators(
      path, GetFilter(operands),
      Collect(objects, operands.GetNameSpace(), operands.GetContentOptions()));
  Open(operands, false, std::move(objects), result);
}

void TRequestHandler::OpenReferenceInstances(const TOperands& operands, TResult& result) {
  CheckOpen(operands);
  const TCIMReference path = RequireObject(operands, "InstanceName");
  std::vector<std::string> objects;
  m_operations->References(path, GetFilter(operands),
                           Collect(objects, operands.GetNameSpace(), operands.GetContentOptions()));
  Open(operands, false, std::move(objects), result);
}

void TRequestHandler::OpenAssociatorInstancePaths(const TOperands& operands, TResult& result) {
  CheckOpen(operands);
  const TCIMReference path = RequireObject(operands, "InstanceName");
  Open(
      operands, true,
      WritePaths(m_operations->AssociatorNames(path, GetFilter(operands)), operands.GetNameSpace()),
      result);
}

void TRequestHandler::OpenReferenceInstancePaths(const TOperands& operands, TResult& result) {
  CheckOpen(operands);
  const TCIMReference path = RequireObject(operands, "InstanceName");
  Open(operands, true,
       WritePaths(m_operations->ReferenceNames(path, GetFilter(operands)), operands.GetNameSpace()),
       result);
}

void TRequestHandler::Pull(const TOperands& operands, bool isPaths, TResult& result) {
  operands.Require("MaxObjectCount");
  const std::size_t count = CheckCount(operands.FindNumber("MaxObjectCount").value_or(0));
  const auto batch = m_pulls.Pull(operands.GetText("EnumerationContext"), isPaths, count);
  result.objects.Raw(batch.objects);
  result.outParameters = WriteOutParameters(batch);
}

void TRequestHandler::PullInstancesWithPath(const TOperands& operands, TResult& result) {
  Pull(operands, false, result);
}

void TRequestHandler::PullInstancePaths(const TOperands& operands, TResult& result) {
  Pull(operands, true, result);
}

void TRequestHandler::CloseEnumeration(const TOperands& operands, TResult& /*result*/) {
  m_pulls.Close(operands.GetText("EnumerationContext"));
}

}  // namespace cimserver
