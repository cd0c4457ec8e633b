// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Marks what libdiagsrunner shows to its host; everything else in it stays hidden.
#define DIAGSRUNNER_EXPORT __attribute__((visibility("default")))
