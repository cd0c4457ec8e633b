// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The whole CMPI C interface, in C99 or C++17; it needs no other header of this tree.
#include "platform/cmpi/abi/cmpibroker.h"
#include "platform/cmpi/abi/cmpiconst.h"
#include "platform/cmpi/abi/cmpidt.h"
#include "platform/cmpi/abi/cmpienum.h"
#include "platform/cmpi/abi/cmpift.h"
#include "platform/cmpi/abi/cmpimi.h"
