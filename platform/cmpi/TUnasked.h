// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/cmpi/TThreadMark.h"

namespace NZEPQEL20::cmpi {

/// While it lives, this thread asks providers what nobody wanted to know, in the hope of more than
/// a provider has answered. Their failures are no problem of anyone's then: only the log has them.
class TUnasked : public TThreadMark<TUnasked> {
 public:
  explicit TUnasked(bool isUnasked) : TThreadMark(isUnasked) {}
};

}  // namespace NZEPQEL20::cmpi
