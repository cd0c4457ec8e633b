// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerArray.h"

#include "platform/cmpi/Values.h"

namespace NZEPQEL20::cmpi {

namespace {

CMPICount GetSize(const CMPIArray* self, CMPIStatus* rc) noexcept {
  return Answer(
      rc, [&] { return static_cast<CMPICount>(TBrokerArray::From(self).GetElements().size()); });
}

CMPIType GetSimpleType(const CMPIArray* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return ToCMPIType(TBrokerArray::From(self).GetType()); });
}

TCIMValue& ElementAt(const CMPIArray* self, CMPICount index) {
  TCIMValue::TArray& elements = TBrokerArray::From(self).GetElements();
  if (index >= elements.size()) {
    throw TBrokerFault(CMPI_RC_ERR_NO_SUCH_PROPERTY, "index beyond the end of the array");
  }
  return elements[index];
}

CMPIData GetElementAt(const CMPIArray* self, CMPICount index, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return ToCMPI(ElementAt(self, index)); });
}

CMPIStatus SetElementAt(const CMPIArray* self, CMPICount index, const CMPIValue* value,
                        CMPIType type) noexcept {
  return AnswerStatus([&] {
    TCIMValue& element = ElementAt(self, index);
    const ECIMType wanted = TBrokerArray::From(self).GetType();
    if (type == CMPI_null || value == nullptr) {
      element = TCIMValue::Null(wanted);
      return;
    }
    TCIMValue given = FromCMPI(value, type);
    if (given.IsArray() || given.GetType() != wanted) {
      throw TBrokerFault(CMPI_RC_ERR_TYPE_MISMATCH, std::string("the array holds ") +
                                                        GetTypeName(wanted) + ", not " +
                                                        GetTypeName(given.GetType()));
    }
    element = std::move(given);
  });
}

}  // namespace

std::string TBrokerArray::Describe() const {
  return GetValue().ToString(10);
}

const CMPIArrayFT TBrokerArray::kTable = {kBrokerVersion, Release,      Clone,       GetSize,
                                          GetSimpleType,  GetElementAt, SetElementAt};

}  // namespace NZEPQEL20::cmpi
