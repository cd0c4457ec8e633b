// SPDX-License-Identifier: Apache-2.0
#include "tests/providers/TTinyBroker.h"

#include <strings.h>

namespace hardware {
namespace {

constexpr CMPIStatus kOk{CMPI_RC_OK, nullptr};

template <typename TFace>
TTinyObject& From(const TFace* face) {
  return *static_cast<TTinyObject*>(const_cast<void*>(face->hdl));
}

TTinyBroker& BrokerOf(const CMPIBroker* broker) {
  return *static_cast<TTinyBroker*>(const_cast<void*>(broker->hdl));
}

const char* GetCharPtr(const CMPIString* string, CMPIStatus* /*rc*/) {
  return static_cast<const char*>(string->hdl);
}

const CMPIStringFT& StringTable() {
  static const CMPIStringFT table = [] {
    CMPIStringFT made{};
    made.getCharPtr = GetCharPtr;
    return made;
  }();
  return table;
}

std::string Describe(const CMPIValue& value, CMPIType type) {
  switch (type) {
    case CMPI_boolean:
      return value.boolean != 0 ? "true" : "false";
    case CMPI_uint16:
      return std::to_string(value.uint16);
    case CMPI_uint32:
      return std::to_string(value.uint32);
    case CMPI_uint64:
      return std::to_string(value.uint64);
    case CMPI_ref:
      return From(value.ref).ShowPath();
    case CMPI_dateTime:
      return From(value.dateTime).Show("time");
    case CMPI_uint16A: {
      std::string text;
      for (const auto& field : From(value.array).fields) {
        text += (text.empty() ? "" : ",") + field->text;
      }
      return text;
    }
    default:
      return "type " + std::to_string(type);
  }
}

CMPIStatus SetField(TTinyObject& object, const char* name, const CMPIValue* value, CMPIType type) {
  auto field = std::make_shared<TTinyObject::TField>();
  field->name = name;
  field->type = type == CMPI_chars ? CMPIType{CMPI_string} : type;
  if (type == CMPI_chars) {
    field->text = reinterpret_cast<const char*>(value);
    field->string = {field->text.c_str(), &StringTable()};
    field->value.string = &field->string;
  } else {
    field->value = *value;
    field->text = Describe(*value, type);
  }
  for (auto& own : object.fields) {
    if (::strcasecmp(own->name.c_str(), name) == 0) {
      own = field;
      return kOk;
    }
  }
  object.fields.push_back(field);
  return kOk;
}

template <typename TFace>
CMPIStatus SetValue(const TFace* face, const char* name, const CMPIValue* value, CMPIType type) {
  return SetField(From(face), name, value, type);
}

template <typename TFace>
CMPICount Count(const TFace* face, CMPIStatus* /*rc*/) {
  return static_cast<CMPICount>(From(face).fields.size());
}

template <typename TFace>
CMPIData GetAt(const TFace* face, CMPICount index, CMPIString** name, CMPIStatus* rc) {
  TTinyObject::TField& field = *From(face).fields.at(index);
  CMPIData data{};
  data.type = field.type;
  data.value = field.value;
  // Names live in a field of their own, so that they have a string to be handed out by.
  static thread_local CMPIString nameString;
  nameString = {field.name.c_str(), &StringTable()};
  *name = &nameString;
  if (rc != nullptr) *rc = kOk;
  return data;
}

CMPIString* MakeString(TTinyObject& owner, const std::string& text) {
  auto field = std::make_shared<TTinyObject::TField>();
  field->text = text;
  field->string = {field->text.c_str(), &StringTable()};
  owner.fields.push_back(field);
  return &field->string;
}

CMPIString* NewString(const CMPIBroker* broker, const char* text, CMPIStatus* /*rc*/) {
  return MakeString(BrokerOf(broker).Make(), text);
}

CMPIString* GetClassName(const CMPIObjectPath* path, CMPIStatus* /*rc*/) {
  static thread_local CMPIString name;
  name = {From(path).className.c_str(), &StringTable()};
  return &name;
}

CMPIString* GetNameSpace(const CMPIObjectPath* path, CMPIStatus* /*rc*/) {
  static thread_local CMPIString name;
  name = {From(path).nameSpace.c_str(), &StringTable()};
  return &name;
}

CMPIObjectPath* NewPath(const CMPIBroker* broker, const char* nameSpace, const char* className,
                        CMPIStatus* /*rc*/) {
  TTinyObject& made = BrokerOf(broker).MakePath(className);
  made.nameSpace = nameSpace;
  return &made.path;
}

CMPIInstance* NewInstance(const CMPIBroker* broker, const CMPIObjectPath* path,
                          CMPIStatus* /*rc*/) {
  TTinyObject& made = BrokerOf(broker).MakePath(From(path).className);
  made.fields = From(path).fields;
  return &made.instance;
}

CMPIArray* NewArray(const CMPIBroker* broker, CMPICount count, CMPIType /*type*/,
                    CMPIStatus* /*rc*/) {
  TTinyObject& made = BrokerOf(broker).Make();
  made.fields.resize(count);
  return &made.array;
}

CMPIStatus SetElement(const CMPIArray* array, CMPICount index, const CMPIValue* value,
                      CMPIType type) {
  TTinyObject element;
  SetField(element, "", value, type);
  From(array).fields.at(index) = element.fields.front();
  return kOk;
}

CMPIDateTime* NewTime(const CMPIBroker* broker, CMPIUint64 microseconds, CMPIBoolean isInterval,
                      CMPIStatus* /*rc*/) {
  TTinyObject& made = BrokerOf(broker).Make();
  MakeString(made, std::to_string(microseconds) + (isInterval != 0 ? " interval" : " point"));
  made.fields.back()->name = "time";
  return &made.time;
}

// A toy class tree: every class is its own CIM_ form and nothing else.
CMPIBoolean ClassPathIsA(const CMPIBroker* /*broker*/, const CMPIObjectPath* path,
                         const char* className, CMPIStatus* /*rc*/) {
  const std::string own = From(path).className;
  return own == className || "CIM_" + own.substr(own.find('_') + 1) == className ? 1 : 0;
}

CMPIStatus LogMessage(const CMPIBroker* broker, CMPISeverity /*severity*/, const char* /*id*/,
                      const char* text, const CMPIString* /*alternative*/) {
  BrokerOf(broker).GetLog().emplace_back(text);
  return kOk;
}

CMPIStatus ReturnInstance(const CMPIResult* result, const CMPIInstance* instance) {
  From(result).returned.push_back(&From(instance));
  return kOk;
}

CMPIStatus ReturnPath(const CMPIResult* result, const CMPIObjectPath* path) {
  From(result).returned.push_back(&From(path));
  return kOk;
}

CMPIStatus ReturnData(const CMPIResult* result, const CMPIValue* value, const CMPIType type) {
  return SetField(From(result), "return", value, type);
}

CMPIStatus ReturnDone(const CMPIResult* /*result*/) {
  return kOk;
}

struct TTables {
  CMPIInstanceFT instance{};
  CMPIObjectPathFT path{};
  CMPIArgsFT arguments{};
  CMPIResultFT result{};
  CMPIArrayFT array{};
  CMPIBrokerEncFT factory{};

  TTables() {
    instance.setProperty = SetValue<CMPIInstance>;
    path.addKey = SetValue<CMPIObjectPath>;
    path.getKeyCount = Count<CMPIObjectPath>;
    path.getKeyAt = GetAt<CMPIObjectPath>;
    path.getClassName = GetClassName;
    path.getNameSpace = GetNameSpace;
    arguments.addArg = SetValue<CMPIArgs>;
    arguments.getArgCount = Count<CMPIArgs>;
    arguments.getArgAt = GetAt<CMPIArgs>;
    array.setElementAt = SetElement;
    result.returnInstance = ReturnInstance;
    result.returnObjectPath = ReturnPath;
    result.returnData = ReturnData;
    result.returnDone = ReturnDone;
    factory.newString = NewString;
    factory.newObjectPath = NewPath;
    factory.newInstance = NewInstance;
    factory.newArray = NewArray;
    factory.newDateTimeFromBinary = NewTime;
    factory.classPathIsA = ClassPathIsA;
    factory.logMessage = LogMessage;
  }
};

const TTables& Tables() {
  static const TTables tables;
  return tables;
}

}  // namespace

std::string TTinyObject::Show(const std::string& name) const {
  for (const auto& field : fields) {
    if (field->name == name) return field->text;
  }
  return "null";
}

std::string TTinyObject::ShowPath() const {
  std::string text = className;
  for (const auto& field : fields) {
    text += (field == fields.front() ? "." : ",") + field->name + "=" + field->text;
  }
  return text;
}

TTinyObject* TTinyObject::Follow(const std::string& name) const {
  for (const auto& field : fields) {
    if (field->name == name && field->type == CMPI_ref) return &From(field->value.ref);
  }
  return nullptr;
}

TTinyBroker::TTinyBroker() {
  m_broker.hdl = this;
  m_broker.eft = &Tables().factory;
}

TTinyObject& TTinyBroker::Make() {
  m_objects.push_back(std::make_unique<TTinyObject>());
  TTinyObject& made = *m_objects.back();
  made.instance = {&made, &Tables().instance};
  made.path = {&made, &Tables().path};
  made.arguments = {&made, &Tables().arguments};
  made.result = {&made, &Tables().result};
  made.array = {&made, &Tables().array};
  made.time = {&made, nullptr};
  return made;
}

TTinyObject& TTinyBroker::MakePath(const std::string& className,
                                   const std::map<std::string, std::string>& keys) {
  TTinyObject& made = Make();
  made.className = className;
  made.nameSpace = "root/cimv2";
  for (const auto& [name, text] : keys) {
    SetField(made, name.c_str(), reinterpret_cast<const CMPIValue*>(text.c_str()), CMPI_chars);
  }
  return made;
}

std::string TTinyBroker::Text(const CMPIString* string) {
  return string == nullptr ? "" : GetCharPtr(string, nullptr);
}

}  // namespace hardware
