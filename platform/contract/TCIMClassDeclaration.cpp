// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMClassDeclaration.h"

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {
namespace {

template <typename TElement>
const TElement* FindByName(const std::vector<TElement>& elements, const std::string& name) {
  for (const TElement& element : elements) {
    if (IsSameName(element.name, name)) return &element;
  }
  return nullptr;
}

}  // namespace

const TCIMPropertyDeclaration* TCIMClassDeclaration::FindProperty(const std::string& wanted) const {
  return FindByName(properties, wanted);
}

const TCIMMethodDeclaration* TCIMClassDeclaration::FindMethod(const std::string& wanted) const {
  return FindByName(methods, wanted);
}

}  // namespace NZEPQEL20
