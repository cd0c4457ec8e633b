// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// One test on offer: its identifier and the three parts that it is made of.
struct TTest {
  std::size_t number = 0;  ///< Its place in the list, from 1.
  std::string id;
  std::string service;
  std::string device;
  std::string element;
};

/// Which tests a command is about. Identifiers and the other three exclude each other; `device`
/// and `match` both have to hold.
struct TSelection {
  std::vector<std::string> ids;  ///< Whole identifiers, or numbers as "#3" or "3".
  bool isAll = false;
  std::string device;  ///< The device's id, exactly; empty does not filter.
  std::string match;   ///< A part of the identifier, ASCII letters without case.
};

/// Reads the runner's list: identifiers, each followed by "|". One that comes twice is listed
/// once; the runner's text for an empty list gives no tests.
std::vector<TTest> ReadCatalogue(const std::string& list);

/// The tests that `device` and `match` of the selection leave, in the order of the list.
std::vector<TTest> FilterTests(const std::vector<TTest>& tests, const TSelection& selection);

/// The tests to run, in the order of the arguments, or of the list when it filters.
/// Errors: TUsageError for an empty, malformed or unknown identifier, naming it.
std::vector<TTest> SelectTests(const std::vector<TTest>& tests, const TSelection& selection);

}  // namespace host
