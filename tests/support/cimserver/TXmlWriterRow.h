// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/cimserver/TXmlWriter.h"

namespace cimserver {

/// One property on its way out: what is declared of it, and its value.
struct TXmlWriter::TRow {
  std::string name;
  const NZEPQEL20::TCIMPropertyDeclaration* declaration;  ///< Null: not declared.
  const TCIMValue* value;                                 ///< Null: none was given.

  ECIMType GetType() const {
    if (declaration != nullptr) return declaration->type;
    const ECIMType type = value->GetType();
    return type == ECIMType::kNone ? ECIMType::kString : type;
  }
  bool IsArray() const { return declaration != nullptr ? declaration->isArray : value->IsArray(); }
  bool IsReference() const { return GetType() == ECIMType::kReference && !IsArray(); }
  const char* GetElement() const {
    if (IsReference()) return "PROPERTY.REFERENCE";
    return IsArray() ? "PROPERTY.ARRAY" : "PROPERTY";
  }
};

/// The word that TYPE and PARAMTYPE have for the type.
inline const char* GetWireType(ECIMType type) {
  if (type == ECIMType::kInstance || type == ECIMType::kNone) return "string";
  return NZEPQEL20::GetTypeName(type);
}

}  // namespace cimserver
