// SPDX-License-Identifier: Apache-2.0
// The function table with which providers make objects, and its services over them.
#include <ctime>

#include "platform/cmpi/CodePages.h"
#include "platform/cmpi/Messages.h"
#include "platform/cmpi/TBrokerArgs.h"
#include "platform/cmpi/TBrokerArray.h"
#include "platform/cmpi/TBrokerDateTime.h"
#include "platform/cmpi/TBrokerEnumeration.h"
#include "platform/cmpi/TBrokerError.h"
#include "platform/cmpi/TBrokerInstance.h"
#include "platform/cmpi/TBrokerPath.h"
#include "platform/cmpi/TBrokerPropertyList.h"
#include "platform/cmpi/TBrokerResult.h"
#include "platform/cmpi/TBrokerSelectCond.h"
#include "platform/cmpi/TBrokerSelectExp.h"
#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/TCancellationPoint.h"
#include "platform/cmpi/THostLease.h"
#include "platform/cmpi/Values.h"
#include "platform/model/CoreLog.h"
#include "platform/model/DateTimeText.h"

namespace NZEPQEL20::cmpi {

namespace {

/// Elements of an array: a count that a provider never initialised must not take all memory. This
/// many take tens of megabytes.
constexpr CMPICount kMaxArray = 1024U * 1024U;

CMPIInstance* NewInstance(const CMPIBroker*, const CMPIObjectPath* path, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIInstance* {
    TInstanceContent content;
    content.path = TBrokerPath::From(path).GetContent();
    content.properties = content.path.keys;
    return Make<TBrokerInstance>(std::move(content));
  });
}

CMPIObjectPath* NewObjectPath(const CMPIBroker*, const char* nameSpace, const char* className,
                              CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIObjectPath* {
    TPathContent content;
    content.nameSpace = ToUtf8(TextOrEmpty(nameSpace));
    content.className = ToUtf8(TextOrEmpty(className));
    return Make<TBrokerPath>(std::move(content));
  });
}

CMPIArgs* NewArgs(const CMPIBroker*, CMPIStatus* rc) noexcept {
  return Answer(rc, []() -> CMPIArgs* { return Make<TBrokerArgs>(); });
}

CMPIString* NewString(const CMPIBroker*, const char* text, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    if (text == nullptr) throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "no text given");
    return MakeString(text);
  });
}

CMPIArray* NewArray(const CMPIBroker*, CMPICount count, CMPIType type, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIArray* {
    const ECIMType element = FromCMPIType(type);
    if (element == ECIMType::kNone) {
      throw TBrokerFault(CMPI_RC_ERR_INVALID_DATA_TYPE, "an array needs an element type");
    }
    if (count > kMaxArray) {
      throw TBrokerFault(CMPI_RC_ERR_SERVER_LIMITS_EXCEEDED,
                         "an array has at most " + std::to_string(kMaxArray) + " elements");
    }
    return Make<TBrokerArray>(element, TCIMValue::TArray(count, TCIMValue::Null(element)));
  });
}

CMPIDateTime* NewDateTimeFromBinary(const CMPIBroker*, CMPIUint64 microseconds,
                                    CMPIBoolean isInterval, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIDateTime* {
    return Make<TBrokerDateTime>(TBrokerDateTime::Format(microseconds, isInterval != 0));
  });
}

CMPIDateTime* NewDateTime(const CMPIBroker* mb, CMPIStatus* rc) noexcept {
  std::timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  const auto seconds = static_cast<CMPIUint64>(now.tv_sec);
  const auto microseconds = static_cast<CMPIUint64>(now.tv_nsec / 1000);
  return NewDateTimeFromBinary(mb, seconds * 1000000 + microseconds, 0, rc);
}

CMPIDateTime* NewDateTimeFromChars(const CMPIBroker*, const char* text, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIDateTime* {
    const std::string given = TextOrEmpty(text);
    if (!IsDateTimeText(given)) {
      throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "not a CIM datetime: " + given);
    }
    return Make<TBrokerDateTime>(given);
  });
}

/// The names of `properties` for a provider; NULL for all.
CMPIArray* MakeProjection(const std::vector<std::string>& properties) {
  if (properties.empty()) return nullptr;
  TCIMValue::TArray names(properties.begin(), properties.end());
  return Make<TBrokerArray>(ECIMType::kString, std::move(names));
}

CMPISelectExp* NewSelectExp(const CMPIBroker*, const char* query, const char* language,
                            CMPIArray** projection, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPISelectExp* {
    if (projection != nullptr) *projection = nullptr;
    auto read = ReadQuery(query, language);
    if (projection != nullptr) *projection = MakeProjection(read->GetProperties());
    return Make<TBrokerSelectExp>(std::move(read));
  });
}

CMPIBoolean ClassPathIsA(const CMPIBroker* mb, const CMPIObjectPath* path, const char* superclass,
                         CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const THostLease host(mb);
    const std::string& className = TBrokerPath::From(path).GetContent().className;
    const bool isA = host.Require().IsA(className, RequireName(superclass, "class name"));
    return static_cast<CMPIBoolean>(isA ? 1 : 0);
  });
}

/// The name of an encapsulated type, and how its objects are told and read.
struct TTypeEntry {
  const char* name;
  const void* table;
  const TBrokerObject& (*cast)(const void*);
};

template <class TObject, class TCMPI>
const TBrokerObject& CastTo(const void* object) {
  return TObject::From(static_cast<const TCMPI*>(object));
}

const TTypeEntry kTypes[] = {
    {"CMPIInstance", &TBrokerInstance::kTable, CastTo<TBrokerInstance, CMPIInstance>},
    {"CMPIObjectPath", &TBrokerPath::kTable, CastTo<TBrokerPath, CMPIObjectPath>},
    {"CMPIString", &TBrokerString::kTable, CastTo<TBrokerString, CMPIString>},
    {"CMPIArray", &TBrokerArray::kTable, CastTo<TBrokerArray, CMPIArray>},
    {"CMPIArgs", &TBrokerArgs::kTable, CastTo<TBrokerArgs, CMPIArgs>},
    {"CMPIDateTime", &TBrokerDateTime::kTable, CastTo<TBrokerDateTime, CMPIDateTime>},
    {"CMPIEnumeration", &TBrokerEnumeration::kTable, CastTo<TBrokerEnumeration, CMPIEnumeration>},
    {"CMPIContext", &TBrokerContext::kTable, CastTo<TBrokerContext, CMPIContext>},
    {"CMPIResult", &TBrokerResult::kTable, CastTo<TBrokerResult, CMPIResult>},
    {"CMPIError", &TBrokerError::kTable, CastTo<TBrokerError, CMPIError>},
    {"CMPIPropertyList", &TBrokerPropertyList::kTable,
     CastTo<TBrokerPropertyList, CMPIPropertyList>},
    {"CMPISelectExp", &TBrokerSelectExp::kTable, CastTo<TBrokerSelectExp, CMPISelectExp>},
    {"CMPISelectCond", &TBrokerSelectCond::kTable, CastTo<TBrokerSelectCond, CMPISelectCond>},
    {"CMPISubCond", &TBrokerSubCond::kTable, CastTo<TBrokerSubCond, CMPISubCond>},
    {"CMPIPredicate", &TBrokerPredicate::kTable, CastTo<TBrokerPredicate, CMPIPredicate>},
    {"CMPIEnumerationFilter", &TBrokerEnumerationFilter::kTable,
     CastTo<TBrokerEnumerationFilter, CMPIEnumerationFilter>},
};

/// All encapsulated types start with the same two pointers.
const TTypeEntry& FindType(const void* object) {
  const auto* any = static_cast<const CMPIString*>(object);
  for (const TTypeEntry& type : kTypes) {
    if (any != nullptr && static_cast<const void*>(any->ft) == type.table) return type;
  }
  throw TBrokerFault(CMPI_RC_ERR_INVALID_HANDLE, "not an object of this broker");
}

CMPIString* ToString(const CMPIBroker*, const void* object, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(FindType(object).cast(object).Describe()); });
}

CMPIBoolean IsOfType(const CMPIBroker*, const void* object, const char* name,
                     CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const bool isOfType = TextOrEmpty(name) == FindType(object).name;
    return static_cast<CMPIBoolean>(isOfType ? 1 : 0);
  });
}

CMPIString* GetType(const CMPIBroker*, const void* object, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(FindType(object).name); });
}

CMPIString* MakeMessage(const char* text, CMPIStatus* rc, CMPICount pairs,
                        std::va_list arguments) noexcept {
  CMPIrc code = CMPI_RC_OK;
  CMPIString* message = Answer(
      rc, [&] { return MakeString(FormatMessage(TextOrEmpty(text), pairs, arguments, code)); });
  if (rc != nullptr && code != CMPI_RC_OK) rc->rc = code;
  return message;
}

// The interface itself has variable arguments here.
// NOLINTNEXTLINE(cert-dcl50-cpp)
CMPIString* GetMessage(const CMPIBroker*, const char*, const char* text, CMPIStatus* rc,
                       CMPICount pairs, ...) noexcept {
  std::va_list arguments;
  va_start(arguments, pairs);
  CMPIString* message = MakeMessage(text, rc, pairs, arguments);
  va_end(arguments);
  return message;
}

// NOLINTNEXTLINE(cert-dcl50-cpp)
CMPIString* GetMessage2(const CMPIBroker*, const char*, const CMPIMsgFileHandle, const char* text,
                        CMPIStatus* rc, CMPICount pairs, ...) noexcept {
  std::va_list arguments;
  va_start(arguments, pairs);
  CMPIString* message = MakeMessage(text, rc, pairs, arguments);
  va_end(arguments);
  return message;
}

/// The line that a provider wants logged; `alternative` counts when there is no `text`.
std::string LogLine(const char* id, const char* text, const CMPIString* alternative) {
  if (text == nullptr && alternative == nullptr) {
    throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "nothing to log");
  }
  std::string line = "provider";
  if (id != nullptr && *id != '\0') line += std::string(" ") + id;
  line += ": ";
  line += text != nullptr ? std::string(text) : TBrokerString::From(alternative).GetText();
  return ToUtf8(std::move(line));
}

ILogger::EQELLogSeverity SeverityOf(CMPISeverity severity) {
  switch (severity) {
    case CMPI_SEV_ERROR:
      return ILogger::kError;
    case CMPI_SEV_WARNING:
      return ILogger::kWarning;
    case CMPI_SEV_INFO:
      return ILogger::kInfo;
    default:
      return ILogger::kTrace;
  }
}

CMPIStatus LogMessage(const CMPIBroker*, CMPISeverity severity, const char* id, const char* text,
                      const CMPIString* alternative) noexcept {
  return AnswerStatus([&] {
    const std::string line = LogLine(id, text, alternative);
    LogToCore(SeverityOf(severity), line);
  });
}

CMPIStatus Trace(const CMPIBroker*, CMPILevel, const char* component, const char* text,
                 const CMPIString* alternative) noexcept {
  return AnswerStatus([&] {
    const std::string line = LogLine(component, text, alternative);
    LogToCore(ILogger::kTrace, line);
  });
}

CMPIError* NewError(const CMPIBroker*, const char* owner, const char* messageId,
                    const char* message, const CMPIErrorSeverity severity,
                    const CMPIErrorProbableCause cause, const CMPIrc code,
                    CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIError* {
    TBrokerError::TContent content;
    content.owningEntity = TBrokerError::ToText(owner);
    content.messageId = TBrokerError::ToText(messageId);
    content.message = TBrokerError::ToText(message);
    content.severity = severity;
    content.cause = cause;
    content.code = code;
    return Make<TBrokerError>(std::move(content));
  });
}

CMPIStatus OpenMessageFile(const CMPIBroker*, const char*, CMPIMsgFileHandle* handle) noexcept {
  return AnswerStatus([&] {
    if (handle == nullptr) throw TBrokerFault(CMPI_RC_ERR_INVALID_PARAMETER, "no handle given");
    *handle = nullptr;
    throw TBrokerFault(CMPI_RC_ERR_NOT_FOUND, "no message catalogues");
  });
}

CMPIStatus CloseMessageFile(const CMPIBroker*, const CMPIMsgFileHandle handle) noexcept {
  // No handle but NULL was ever given out.
  return {handle == nullptr ? CMPI_RC_OK : CMPI_RC_ERR_INVALID_HANDLE, nullptr};
}

CMPIPropertyList* NewPropertyList(const CMPIBroker*, const char** names, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIPropertyList* {
    return Make<TBrokerPropertyList>(names == nullptr, ReadNames(names));
  });
}

CMPIString* NewStringCP(const CMPIBroker*, const char* text, const CMPICodepageID page,
                        CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return MakeString(FromCodePage(text, page)); });
}

CMPIEnumerationFilter* NewEnumerationFilter(const CMPIBroker*, const char* language,
                                            const char* query, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIEnumerationFilter* {
    return Make<TBrokerEnumerationFilter>(ReadQuery(query, language));
  });
}

}  // namespace

const CMPIBrokerEncFT kBrokerEncTable = {kBrokerVersion,
                                         NewInstance,
                                         NewObjectPath,
                                         NewArgs,
                                         NewString,
                                         NewArray,
                                         NewDateTime,
                                         NewDateTimeFromBinary,
                                         NewDateTimeFromChars,
                                         NewSelectExp,
                                         ClassPathIsA,
                                         ToString,
                                         IsOfType,
                                         GetType,
                                         GetMessage,
                                         kCancellable<LogMessage>,
                                         kCancellable<Trace>,
                                         NewError,
                                         OpenMessageFile,
                                         CloseMessageFile,
                                         GetMessage2,
                                         NewPropertyList,
                                         NewStringCP,
                                         NewEnumerationFilter};

}  // namespace NZEPQEL20::cmpi
