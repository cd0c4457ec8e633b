// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/shared_ptr.hpp>
#include <vector>

#include "platform/contract/ICIMInstance.h"

namespace NZEPQEL20 {

/// Enumeration callback that appends every instance to a vector, which must outlive it.
class TAddToVectorCallback {
 public:
  explicit TAddToVectorCallback(std::vector<boost::shared_ptr<ICIMInstance>>& instances)
      : m_instances(&instances) {}

  bool operator()(const boost::shared_ptr<ICIMInstance>& instance) const {
    m_instances->push_back(instance);
    return true;
  }

 private:
  std::vector<boost::shared_ptr<ICIMInstance>>* m_instances;
};

}  // namespace NZEPQEL20
