// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/TBrokerError.h"

#include "platform/cmpi/TBrokerArray.h"
#include "platform/cmpi/TBrokerString.h"

namespace NZEPQEL20::cmpi {

namespace {

using TContent = TBrokerError::TContent;

template <auto kMember>
auto GetNumber(const CMPIError* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&] { return TBrokerError::From(self).GetContent().*kMember; });
}

template <auto kMember>
CMPIString* GetText(const CMPIError* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIString* {
    const TBrokerError::TText& text = TBrokerError::From(self).GetContent().*kMember;
    return text.isSet ? MakeString(text.text) : nullptr;
  });
}

template <auto kMember>
CMPIArray* GetTexts(const CMPIError* self, CMPIStatus* rc) noexcept {
  return Answer(rc, [&]() -> CMPIArray* {
    const TCIMValue& texts = TBrokerError::From(self).GetContent().*kMember;
    if (texts.IsNull()) return nullptr;
    return Make<TBrokerArray>(texts.GetType(), static_cast<std::vector<TCIMValue>>(texts));
  });
}

template <auto kMember, class TNumber>
CMPIStatus SetNumber(const CMPIError* self, const TNumber number) noexcept {
  return AnswerStatus([&] { TBrokerError::From(self).GetContent().*kMember = number; });
}

template <auto kMember>
CMPIStatus SetText(const CMPIError* self, const char* text) noexcept {
  return AnswerStatus(
      [&] { TBrokerError::From(self).GetContent().*kMember = TBrokerError::ToText(text); });
}

template <auto kMember>
CMPIStatus SetTexts(const CMPIError* self, const CMPIArray* texts) noexcept {
  return AnswerStatus([&] {
    const TBrokerArray* array = TBrokerArray::FromOrNull(texts);
    TBrokerError::From(self).GetContent().*kMember =
        array == nullptr ? TCIMValue() : array->GetValue();
  });
}

}  // namespace

const CMPIErrorFT TBrokerError::kTable = {kBrokerVersion,
                                          Release,
                                          Clone,
                                          GetNumber<&TContent::type>,
                                          GetText<&TContent::otherType>,
                                          GetText<&TContent::owningEntity>,
                                          GetText<&TContent::messageId>,
                                          GetText<&TContent::message>,
                                          GetNumber<&TContent::severity>,
                                          GetNumber<&TContent::cause>,
                                          GetText<&TContent::causeDescription>,
                                          GetTexts<&TContent::recommendedActions>,
                                          GetText<&TContent::source>,
                                          GetNumber<&TContent::sourceFormat>,
                                          GetText<&TContent::otherSourceFormat>,
                                          GetNumber<&TContent::code>,
                                          GetText<&TContent::codeDescription>,
                                          GetTexts<&TContent::messageArguments>,
                                          SetNumber<&TContent::type, CMPIErrorType>,
                                          SetText<&TContent::otherType>,
                                          SetText<&TContent::causeDescription>,
                                          SetTexts<&TContent::recommendedActions>,
                                          SetText<&TContent::source>,
                                          SetNumber<&TContent::sourceFormat, CMPIErrorSrcFormat>,
                                          SetText<&TContent::otherSourceFormat>,
                                          SetText<&TContent::codeDescription>,
                                          SetTexts<&TContent::messageArguments>};

}  // namespace NZEPQEL20::cmpi
