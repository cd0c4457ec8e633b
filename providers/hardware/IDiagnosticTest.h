// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "providers/hardware/TDevice.h"
#include "providers/hardware/TStopSignal.h"
#include "providers/hardware/TVerdict.h"

namespace hardware {

/// How a kind of test presents itself.
struct TService {
  std::string name;                ///< Its key: unique, at most 256 bytes, never changed; no comma.
  std::string description;         ///< What it does, one sentence.
  std::uint16_t durationUnit = 3;  ///< 3 seconds, 4 minutes; as in the CIM association.
  std::uint32_t durationCount = 0;  ///< How many of them it is expected to take.
  bool isBlocking = false;          ///< The method that starts it returns only at its end.
  std::vector<std::uint16_t> characteristics;  ///< As CIM_DiagnosticTest.Characteristics.
  std::vector<std::uint16_t> testTypes;        ///< As CIM_DiagnosticTest.TestTypes.
};

/// Whether a test can run on a device, here and now.
enum class EAvailability {
  kOffered,        ///< It can.
  kNotApplicable,  ///< The device is of another kind or has no such function.
  kWithheld        ///< It could, but a program or a right is missing.
};

/// The answer to that question; the texts are for kWithheld only.
struct TAvailability {
  EAvailability answer = EAvailability::kNotApplicable;
  std::string reason;  ///< What is missing.
  std::string remedy;  ///< What brings it.
};

/// What a running test is given by its job.
struct TRunControl {
  const TStopSignal& stop;
  /// Takes an estimate of how far the test is; may be called with any number at any time.
  std::function<void(unsigned int percent)> setPercent;
};

/// One kind of test.
///
/// Threads: Check() and Run() may be called by several at once, Run() for different devices.
class IDiagnosticTest {
 public:
  IDiagnosticTest() = default;
  virtual ~IDiagnosticTest() = default;
  IDiagnosticTest(const IDiagnosticTest&) = delete;
  IDiagnosticTest& operator=(const IDiagnosticTest&) = delete;

  virtual const TService& GetService() const = 0;

  /// May ask the device, for a few seconds at most, the first time it is called for it.
  virtual TAvailability Check(const TDevice& device) const = 0;

  /// Tests the device and returns what was found; ends early when `control` asks for it, and at
  /// the test's own deadline in any case.
  virtual TVerdict Run(const TDevice& device, const TRunControl& control) const = 0;
};

}  // namespace hardware
