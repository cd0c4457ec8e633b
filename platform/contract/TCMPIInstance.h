// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/contract/ICIMInstance.h"

namespace NZEPQEL20 {

/// The CMPI form of an instance: the one on which methods can be invoked.
class DIAGSPLATFORM_EXPORT TCMPIInstance : public ICIMInstance {};

}  // namespace NZEPQEL20
