// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TCIMClassDeclaration.h"

#include <algorithm>

#include "platform/contract/TCIMInstanceData.h"

namespace NZEPQEL20 {

namespace {

template <typename TElement>
const TElement* FindNamed(const std::vector<TElement>& elements, const std::string& name) {
  const auto found =
      std::find_if(elements.begin(), elements.end(),
                   [&name](const TElement& element) { return IsSameName(element.name, name); });
  return found == elements.end() ? nullptr : &*found;
}

}  // namespace

const TCIMPropertyDeclaration* TCIMClassDeclaration::FindProperty(
    const std::string& propertyName) const {
  return FindNamed(properties, propertyName);
}

const TCIMMethodDeclaration* TCIMClassDeclaration::FindMethod(const std::string& methodName) const {
  return FindNamed(methods, methodName);
}

}  // namespace NZEPQEL20
