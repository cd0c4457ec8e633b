// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "platform/contract/Export.h"

namespace NZEPQEL20 {

class TCIMReference;
struct TCIMInstanceData;

/// The CIM data types (DSP0004), and kNone for a NULL whose type is not known.
enum class ECIMType {
  kNone,
  kBoolean,
  kChar16,
  kUInt8,
  kUInt16,
  kUInt32,
  kUInt64,
  kSInt8,
  kSInt16,
  kSInt32,
  kSInt64,
  kReal32,
  kReal64,
  kString,
  kDateTime,
  kReference,
  kInstance
};

/// The type's name as MOF writes it: "uint16", "datetime"; "reference", "instance", "null".
DIAGSPLATFORM_EXPORT const char* GetTypeName(ECIMType type);

/// A CIM value of any type: a scalar, an array, or NULL (typed or not).
///
/// Immutable by convention: only assignment changes it; copies share what is large.
/// Conversions from NULL yield 0, an empty text, a null reference or an empty vector. A conversion
/// to a type that cannot hold the value throws TQELException (kTypeMismatch) naming both types: a
/// number out of range, a text that is no number as a number, a scalar as a vector.
/// Threads: const use from several threads is safe.
class DIAGSPLATFORM_EXPORT TCIMValue {
 public:
  using TArray = std::vector<TCIMValue>;

  /// NULL without a type.
  TCIMValue() = default;
  /// A string; a null pointer gives a NULL string.
  TCIMValue(const char* text);                // NOLINT(google-explicit-constructor)
  TCIMValue(const std::string& text);         // NOLINT(google-explicit-constructor)
  TCIMValue(std::string&& text);              // NOLINT(google-explicit-constructor)
  TCIMValue(const TCIMReference& reference);  // NOLINT(google-explicit-constructor)

  static TCIMValue Null(ECIMType type, bool isArray = false);
  static TCIMValue Boolean(bool value);
  /// `unit` is one UCS-2 unit.
  static TCIMValue Char16(std::uint16_t unit);
  /// `type` is one of kUInt8..kUInt64; a value too large for it throws TQELException.
  static TCIMValue Unsigned(ECIMType type, std::uint64_t value);
  /// `type` is one of kSInt8..kSInt64; a value too large for it throws TQELException.
  static TCIMValue Signed(ECIMType type, std::int64_t value);
  static TCIMValue UInt16(std::uint16_t value) { return Unsigned(ECIMType::kUInt16, value); }
  static TCIMValue UInt32(std::uint32_t value) { return Unsigned(ECIMType::kUInt32, value); }
  static TCIMValue Real32(float value);
  static TCIMValue Real64(double value);
  /// `text` is taken as it is; 25 characters in the CIM form are the caller's duty.
  static TCIMValue DateTime(const std::string& text);
  /// An embedded instance; a null pointer gives a NULL instance.
  static TCIMValue Instance(std::shared_ptr<const TCIMInstanceData> instance);
  /// An array of `type`. Each element is a scalar of that type, or NULL; another type throws
  /// TQELException (kTypeMismatch).
  static TCIMValue Array(ECIMType type, TArray elements);

  bool IsNull() const;
  bool IsArray() const { return m_isArray; }
  /// For an array the type of its elements.
  ECIMType GetType() const { return m_type; }

  /// The value as text: integers in `radix` (2 to 36), booleans TRUE and FALSE, datetimes in
  /// their 25 characters, references as paths, arrays as elements joined with ",", NULL empty.
  std::string ToString(unsigned char radix) const;

  explicit operator unsigned short() const;
  explicit operator unsigned int() const;
  explicit operator std::string() const;
  explicit operator TCIMReference() const;
  explicit operator std::vector<TCIMValue>() const;

  bool ToBoolean() const;
  std::uint64_t ToUnsigned() const;
  std::int64_t ToSigned() const;
  double ToReal() const;
  /// Null for NULL.
  std::shared_ptr<const TCIMInstanceData> ToInstance() const;

  /// By type and value; references by path, embedded instances by class and properties.
  friend DIAGSPLATFORM_EXPORT bool operator==(const TCIMValue& left, const TCIMValue& right);
  friend bool operator!=(const TCIMValue& left, const TCIMValue& right) { return !(left == right); }

 private:
  using TData =
      std::variant<std::monostate, bool, std::uint64_t, std::int64_t, double, std::string,
                   std::shared_ptr<const TCIMReference>, std::shared_ptr<const TCIMInstanceData>,
                   std::shared_ptr<const TArray>>;

  TCIMValue(ECIMType type, bool isArray, TData data);
  std::string DescribeType() const;
  [[noreturn]] void Refuse(const char* wanted) const;

  ECIMType m_type = ECIMType::kNone;
  bool m_isArray = false;
  TData m_data;
};

/// Names with values, in byte order of the names: keys of a path, parameters of a method, or the
/// choice of a provider context ("nspID", "nsp").
using TKeyMap = std::map<std::string, TCIMValue>;

}  // namespace NZEPQEL20
