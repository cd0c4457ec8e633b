// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerArgs.h"

#include "platform/cmpi/TBrokerString.h"
#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPIStatus AddArg(const CMPIArgs* self, const char* name, const CMPIValue* value,
                  const CMPIType type) noexcept {
  return AnswerStatus([&] {
    TNamedValues& values = TBrokerArgs::From(self).GetValues();
    SetNamed(values, ToUtf8(RequireName(name, "argument name")), FromCMPI(value, type));
  });
}

CMPIData GetArg(const CMPIArgs* self, const char* name, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TNamedValues& values = TBrokerArgs::From(self).GetValues();
    const auto* argument = FindNamed(values, RequireName(name, "argument name"));
    if (argument == nullptr) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, std::string("no argument ") + name);
    }
    return ToCMPI(argument->value);
  });
}

CMPIData GetArgAt(const CMPIArgs* self, CMPICount index, CMPIString** name,
                  CMPIStatus* rc) noexcept {
  return Answer(rc, [&] {
    const TNamedValues& values = TBrokerArgs::From(self).GetValues();
    if (index >= values.size()) {
      throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, "index beyond the last argument");
    }
    if (name != nullptr) *name = MakeString(values[index].name);
    return ToCMPI(values[index].value);
  });
}

CMPICount GetArgCount(const CMPIArgs* self, CMPIStatus* rc) noexcept {
  return Answer(rc,
                [&] { return static_cast<CMPICount>(TBrokerArgs::From(self).GetValues().size()); });
}

}  // namespace

std::string DescribeNamed(const TNamedValues& values) {
  std::string text;
  for (const TCIMPropertyData& entry : values) {
    if (!text.empty()) text += ", ";
    text += entry.name + '=' + (entry.value.IsNull() ? "NULL" : entry.value.ToString(10));
  }
  return text;
}

std::string TBrokerArgs::Describe() const {
  return '(' + DescribeNamed(m_values) + ')';
}

const CMPIArgsFT TBrokerArgs::kTable = {kBrokerVersion, Release,  Clone,      AddArg,
                                        GetArg,         GetArgAt, GetArgCount};

}  // namespace NZEPQEL20::cmpi
