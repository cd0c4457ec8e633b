// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "platform/contract/TQELException.h"
#include "platform/schema/TMofDeclarations.h"

namespace NZEPQEL20 {

/// A constant does not suit the type that it is given for.
struct TMofValueError : TQELException {
  TMofValueError(TMofPosition place, const std::string& text)
      : TQELException(TQELStatusCode::kTypeMismatch, text), position(place) {}

  TMofPosition position;
};

/// `literal` as a value of `type`: numbers in range, a datetime of 25 characters, a reference by
/// the text of its path. NULL suits every type.
/// Errors: TMofValueError naming the constant and the type; also for an alias.
TCIMValue ConvertLiteral(const TMofLiteral& literal, ECIMType type);

/// The same for a whole initializer: an array for an array, one constant otherwise; NULL alone
/// suits both.
TCIMValue ConvertInitializer(const TMofInitializer& initializer, ECIMType type, bool isArray);

/// The same for the value of a qualifier, where one constant may stand for an array and an array
/// of one for a constant, and an unsigned value for a sint64 that is too small for it.
TCIMValue ConvertQualifierValue(const TMofInitializer& initializer, ECIMType type, bool isArray);

/// What the compilers of vendors let pass: a number for a text and a text for the number that it
/// spells, 0 and 1 and their names as texts for a boolean, one constant for an array. Nothing when
/// it is none of these.
std::optional<TMofInitializer> MendInitializer(const TMofInitializer& initializer, ECIMType type,
                                               bool isArray);

/// The same for the value of a qualifier, where a boolean may stand for a text, too.
std::optional<TMofInitializer> MendQualifierValue(const TMofInitializer& initializer, ECIMType type,
                                                  bool isArray);

/// The type that suits the initializer best when nothing tells its type; kString for NULL.
ECIMType GuessType(const TMofInitializer& initializer);

}  // namespace NZEPQEL20
