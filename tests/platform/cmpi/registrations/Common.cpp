// SPDX-License-Identifier: Apache-2.0
// What several libraries of a vendor have in common.
#define DIAGS_EXPORT extern "C" __attribute__((visibility("default")))

DIAGS_EXPORT int VendorCommon();
DIAGS_EXPORT int VendorCommon() {
  return 42;
}
