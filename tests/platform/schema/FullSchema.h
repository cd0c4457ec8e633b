// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

/// A made-up schema in the shape and size of the whole CIM schema.
namespace fullschema {

/// Classes of a published schema.
constexpr std::size_t kClassCount = 1700;

/// The text of one class file: licence, qualifiers, properties with long descriptions and value
/// lists, methods. Class 0 is the root; every other one derives from one before it.
std::string MakeClassFile(std::size_t index);

/// "CIM_Gen42".
std::string GetClassName(std::size_t index);

/// "Core/CIM_Gen42.mof", below the folder of the schema.
std::string GetFileName(std::size_t index);

/// Writes a master file, the qualifiers and a file for each class below `folder`; answers with
/// the path of the master file. Errors: std::runtime_error.
std::string Write(const std::string& folder, std::size_t classCount);

}  // namespace fullschema
