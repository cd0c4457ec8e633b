// SPDX-License-Identifier: Apache-2.0
#include "platform/cmpi/Messages.h"

#include <cstddef>
#include <cstdio>
#include <vector>

#include "platform/cmpi/TBrokerString.h"

namespace NZEPQEL20::cmpi {

namespace {

constexpr CMPICount kMaxPairs = 10;

/// Variable arguments that several functions read in turn.
struct TArguments {
  std::va_list list;
};

std::string FormatReal(double value) {
  char text[64];
  static_cast<void>(std::snprintf(text, sizeof text, "%g", value));
  return text;
}

// The analyser does not follow a va_list through a structure.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)

/// Reads one value that was promoted on its way through `...`.
/// Errors: TBrokerFault for a type that no message takes.
std::string ReadArgument(CMPIType type, TArguments& arguments) {
  switch (type) {
    case CMPI_sint8:
    case CMPI_sint16:
    case CMPI_sint32:
      return std::to_string(va_arg(arguments.list, int));
    case CMPI_uint8:
    case CMPI_uint16:
    case CMPI_uint32:
      return std::to_string(va_arg(arguments.list, unsigned int));
    case CMPI_sint64:
      return std::to_string(va_arg(arguments.list, long long));
    case CMPI_uint64:
      return std::to_string(va_arg(arguments.list, unsigned long long));
    case CMPI_real32:
    case CMPI_real64:
      return FormatReal(va_arg(arguments.list, double));
    case CMPI_boolean:
      return va_arg(arguments.list, int) != 0 ? "true" : "false";
    case CMPI_chars:
      return TextOrEmpty(va_arg(arguments.list, const char*));
    case CMPI_string: {
      const CMPIString* string = va_arg(arguments.list, const CMPIString*);
      return string == nullptr ? std::string() : TBrokerString::From(string).GetText();
    }
    default:
      throw TBrokerFault(CMPI_RC_ERR_TYPE_MISMATCH);
  }
}

// NOLINTEND(clang-analyzer-valist.Uninitialized)

std::string Replace(const std::string& text, const std::vector<std::string>& values) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPlace = text[i] == '$' && i + 1 < text.size() && text[i + 1] >= '0' &&
                         text[i + 1] <= '9' &&
                         static_cast<std::size_t>(text[i + 1] - '0') < values.size();
    if (isPlace) {
      result += values[static_cast<std::size_t>(text[++i] - '0')];
    } else {
      result += text[i];
    }
  }
  return result;
}

}  // namespace

std::string FormatMessage(const std::string& text, CMPICount pairs, std::va_list arguments,
                          CMPIrc& code) {
  code = pairs > kMaxPairs ? CMPI_RC_ERR_INVALID_PARAMETER : CMPI_RC_OK;
  if (code != CMPI_RC_OK) return text;
  std::vector<std::string> values;
  TArguments given;
  va_copy(given.list, arguments);
  try {
    for (CMPICount i = 0; i < pairs; ++i) {
      // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): copied above.
      const auto type = static_cast<CMPIType>(va_arg(given.list, int));
      values.push_back(ReadArgument(type, given));
    }
  } catch (const TBrokerFault&) {
    code = CMPI_RC_ERR_TYPE_MISMATCH;
  }
  va_end(given.list);
  return code != CMPI_RC_OK ? text : Replace(text, values);
}

}  // namespace NZEPQEL20::cmpi
