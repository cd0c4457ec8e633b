// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <strings.h>

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace hardware {

/// Order of CIM names, which differ by more than the case of their letters.
struct TNameLess {
  bool operator()(const std::string& left, const std::string& right) const {
    return ::strcasecmp(left.c_str(), right.c_str()) < 0;
  }
};

struct TCimRole;

/// Names an object: its class, its text keys, and, for an association, the objects it joins. The
/// namespace is that of the request.
struct TCimPath {
  std::string className;
  std::map<std::string, std::string, TNameLess> keys;
  std::vector<TCimRole> roles;
};

/// One end of an association: the reference property and the object it names.
struct TCimRole {
  std::string name;
  TCimPath path;
};

/// A point in time (microseconds since 1970, UTC) or an interval (microseconds).
struct TCimTime {
  std::uint64_t microseconds = 0;
  bool isInterval = false;
};

/// A property or parameter; std::monostate is NULL, and also stands for types that nothing here
/// takes.
using TCimValue = std::variant<std::monostate, bool, std::uint16_t, std::uint32_t, std::uint64_t,
                               std::string, TCimTime, TCimPath, std::vector<std::uint16_t>>;

/// An instance: its path and those properties that are not NULL, keys among them.
struct TCimInstance {
  TCimPath path;
  std::vector<std::pair<std::string, TCimValue>> properties;
};

/// Parameters of a method, by name.
using TCimArguments = std::map<std::string, TCimValue, TNameLess>;

/// A request that cannot be served; the number is a CIM status code.
class TCimError : public std::runtime_error {
 public:
  static constexpr int kFailed = 1;
  static constexpr int kInvalidClass = 5;
  static constexpr int kNotFound = 6;
  static constexpr int kNotSupported = 7;
  static constexpr int kMethodNotFound = 17;

  TCimError(int status, const std::string& message)
      : std::runtime_error(message), m_status(status) {}

  int GetStatus() const { return m_status; }

 private:
  int m_status;
};

}  // namespace hardware
