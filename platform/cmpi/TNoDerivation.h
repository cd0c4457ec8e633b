// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/cmpi/TThreadMark.h"

namespace NZEPQEL20::cmpi {

/// While it lives, this thread finds no instances of an association class by way of the objects
/// that it joins. References are found by way of the instances, too: neither may lead to the other
/// and back.
class TNoDerivation : public TThreadMark<TNoDerivation> {
 public:
  TNoDerivation() : TThreadMark(true) {}
};

}  // namespace NZEPQEL20::cmpi
