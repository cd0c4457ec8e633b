// SPDX-License-Identifier: Apache-2.0
// A library that needs another one of its vendor.
#define DIAGS_EXPORT extern "C" __attribute__((visibility("default")))

extern "C" int VendorCommon();
DIAGS_EXPORT int VendorAnswer();
DIAGS_EXPORT int VendorAnswer() {
  return VendorCommon() + 1;
}
