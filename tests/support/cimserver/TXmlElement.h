// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace cimserver {

/// The request is no XML.
struct TNotWellFormed : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The request is XML, but not what the DTD of CIM allows.
struct TNotValid : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// An element with everything in it. The text of all its text nodes is one.
struct TXmlElement {
  static constexpr unsigned int kMaxDepth = 256;

  std::string name;
  std::map<std::string, std::string> attributes;
  std::string text;
  std::vector<TXmlElement> children;

  /// The attribute; null when it was left out.
  const std::string* FindAttribute(const std::string& attribute) const;
  /// Errors: TNotValid naming element and attribute when it was left out.
  const std::string& GetAttribute(const std::string& attribute) const;
  /// The first child called so; null when there is none.
  const TXmlElement* FindChild(const std::string& child) const;
  /// The one child of an element that has exactly one.
  /// Errors: TNotValid naming the element.
  const TXmlElement& GetOnlyChild() const;
  /// The one child, which must be called `child`.
  /// Errors: TNotValid naming both.
  const TXmlElement& GetOnlyChild(const std::string& child) const;
};

/// Reads a whole document.
/// Errors: TNotWellFormed in the words of the parser, with line and column.
TXmlElement ReadXml(const std::string& document);

}  // namespace cimserver
