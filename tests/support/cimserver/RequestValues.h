// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "tests/support/cimserver/CimTypes.h"
#include "tests/support/cimserver/TXmlElement.h"

namespace cimserver {

// Values as requests have them. Stricter than the makers' servers where those would guess: what a
// client gets wrong is to show. Errors of all: TNotValid naming the element.

/// The type that TYPE or PARAMTYPE names, "reference" included.
ECIMType ReadType(const std::string& name);

/// The namespace of a LOCALNAMESPACEPATH, its parts joined with "/".
std::string ReadNameSpacePath(const TXmlElement& element);

/// Any of INSTANCENAME, LOCALINSTANCEPATH, INSTANCEPATH, CLASSNAME, LOCALCLASSPATH and CLASSPATH;
/// `nameSpace` is that of a path without one. Keys are typed as the request types them.
TCIMReference ReadPath(const TXmlElement& element, const std::string& nameSpace);

/// VALUE, VALUE.ARRAY, VALUE.REFERENCE or VALUE.REFARRAY of `type`; `nameSpace` as above.
TCIMValue ReadValue(const TXmlElement& element, ECIMType type, const std::string& nameSpace);

/// An INSTANCE; its path has the class and `nameSpace`.
TCIMInstanceData ReadInstance(const TXmlElement& element, const std::string& nameSpace);

/// PARAMVALUE: NULL when there is nothing in it. Without a type it is a text, as one of the
/// makers reads it, or a reference when there is one in it.
TCIMValue ReadParameter(const TXmlElement& element, const std::string& nameSpace);

/// TRUE or FALSE in any case, blanks around it allowed.
bool ReadBoolean(const std::string& text);

}  // namespace cimserver
