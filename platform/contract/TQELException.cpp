// SPDX-License-Identifier: Apache-2.0
#include "platform/contract/TQELException.h"

#include <utility>

namespace NZEPQEL20 {

TQELException::TQELException(TQELStatusCode status, std::string what, unsigned int cimStatus)
    : m_status(status), m_cimStatus(cimStatus), m_what(std::move(what)) {}

// Out of line, so that the type information lives in one library and is caught in all.
TQELException::~TQELException() = default;

}  // namespace NZEPQEL20
