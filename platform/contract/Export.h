// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Marks what libdiagsplatform shows to its users; everything else in it stays hidden.
#define DIAGSPLATFORM_EXPORT __attribute__((visibility("default")))
