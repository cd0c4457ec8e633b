// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/cimxml/peer/TPeerWorld.h"

#include <mutex>
#include <stdexcept>

#include "platform/schema/TClassRepository.h"

namespace cimserver {
namespace {

constexpr char kNameSpace[] = "root/cimv2";

constexpr char kClasses[] = R"mof(
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);
Qualifier Description : string = null, Scope(any), Flavor(Translatable);
Qualifier In : boolean = true, Scope(parameter), Flavor(DisableOverride);
Qualifier Out : boolean = false, Scope(parameter), Flavor(DisableOverride);
Qualifier ValueMap : string[], Scope(property, method, parameter);
Qualifier Values : string[], Scope(property, method, parameter), Flavor(Translatable);
Qualifier EmbeddedInstance : string = null, Scope(property, method, parameter);

class PEER_Base
{
  [Key] string Id;
  string Caption = "none";
};

[Description("A <thing> & more")]
class PEER_Thing : PEER_Base
{
  [ValueMap{"1", "2"}, Values{"Off", "On"}] uint16 State;
  sint64 Offset;
  real64 Ratio;
  boolean IsNew;
  char16 Letter;
  datetime When;
  uint16 Numbers[];
  string Words[];
  PEER_Base REF Other;
  [EmbeddedInstance("PEER_Base")] string Inner;

  uint32 Add([In] uint16 Left, [In] uint16 Right[], [In] PEER_Base REF To,
             [In, EmbeddedInstance("PEER_Base")] string With,
             [In(false), Out] uint64 Sum, [In(false), Out] PEER_Base REF Where,
             [In(false), Out, EmbeddedInstance("PEER_Base")] string What);
};
)mof";

TCIMInstanceData MakeBase(const std::string& id, const std::string& caption) {
  TCIMInstanceData base{{kNameSpace, "PEER_Base", {{"Id", TCIMValue(id)}}}, {}};
  base.Set("Id", TCIMValue(id));
  base.Set("Caption", TCIMValue(caption));
  return base;
}

TCIMInstanceData MakeFullThing() {
  TCIMInstanceData thing{TPeerWorld::GetPath("one"), {}};
  thing.Set("Id", TCIMValue("one"));
  thing.Set("Caption", TCIMValue("a < b & \"c\" 'd'\n\xC3\xA4"));
  thing.Set("State", TCIMValue::UInt16(2));
  thing.Set("Offset", TCIMValue::Signed(ECIMType::kSInt64, -5));
  thing.Set("Ratio", TCIMValue::Real64(0.5));
  thing.Set("IsNew", TCIMValue::Boolean(true));
  thing.Set("Letter", TCIMValue::Char16(0x20AC));
  thing.Set("When", TCIMValue::DateTime("20240229123456.000000+060"));
  thing.Set("Numbers",
            TCIMValue::Array(ECIMType::kUInt16, {TCIMValue::UInt16(3), TCIMValue::UInt16(4)}));
  thing.Set("Words", TCIMValue::Array(ECIMType::kString, {TCIMValue("x,y"), TCIMValue("\\ z")}));
  thing.Set("Other", TCIMValue(TPeerWorld::GetPath("two")));
  thing.Set("Inner", TCIMValue::Instance(
                         std::make_shared<const TCIMInstanceData>(MakeBase("in", "<deep>"))));
  return thing;
}

std::uint64_t AddUp(const TKeyMap& parameters) {
  std::uint64_t sum = 0;
  const auto left = parameters.find("Left");
  if (left != parameters.end()) sum = std::stoull(left->second.ToString(10));
  const auto right = parameters.find("Right");
  if (right == parameters.end()) return sum;
  for (const auto& number : static_cast<std::vector<TCIMValue>>(right->second)) {
    sum += number.ToUnsigned();
  }
  return sum;
}

}  // namespace

struct TPeerWorld::TLastCall {
  std::mutex mutex;
  TKeyMap parameters;
};

TPeerWorld::TPeerWorld()
    : m_operations(std::make_shared<NZEPQEL20::TFakeOperations>()),
      m_lastCall(std::make_shared<TLastCall>()) {
  NZEPQEL20::TClassRepository classes;
  for (const auto& error : classes.LoadText(kClasses, "peer.mof")) {
    throw std::runtime_error(error.ToString());
  }
  for (const char* name : {"PEER_Base", "PEER_Thing"}) {
    m_operations->AddClass(kNameSpace, *classes.Find(name));
  }
  m_operations->AddInstance(kNameSpace, MakeFullThing());
  TCIMInstanceData bare{GetPath("two"), {}};
  bare.Set("Id", TCIMValue("two"));
  m_operations->AddInstance(kNameSpace, bare);
  m_operations->SetMethod([last = m_lastCall](const TCIMReference& path, const std::string& method,
                                              TKeyMap& parameters) -> TCIMValue {
    if (method != "Add") {
      throw TQELException(TQELStatusCode::kCIMError, "no method " + method, 17);
    }
    const std::lock_guard<std::mutex> lock(last->mutex);
    last->parameters = parameters;
    const std::uint64_t sum = AddUp(parameters);
    parameters = {{"Sum", TCIMValue::Unsigned(ECIMType::kUInt64, sum)},
                  {"Where", TCIMValue(path)},
                  {"What", TCIMValue::Instance(std::make_shared<const TCIMInstanceData>(
                               MakeBase("sum", std::to_string(sum))))}};
    return TCIMValue::UInt32(0);
  });
}

TKeyMap TPeerWorld::GetCallParameters() const {
  const std::lock_guard<std::mutex> lock(m_lastCall->mutex);
  return m_lastCall->parameters;
}

TCIMReference TPeerWorld::GetPath(const std::string& id) {
  return {kNameSpace, "PEER_Thing", {{"Id", TCIMValue(id)}}};
}

}  // namespace cimserver
