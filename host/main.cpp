// SPDX-License-Identifier: Apache-2.0
#include "host/Host.h"

int main(int argc, char** argv) {
  return host::RunHost(argc, argv);
}
