// SPDX-License-Identifier: Apache-2.0
/* The interface header has to do in a C99 program, without any other header. */
#include "platform/cmpi/abi/cmpi.h"

int AbiSizeOfDataInC(void);
int AbiSizeOfStatusInC(void);
int AbiSizeOfMethodTableInC(void);

int AbiSizeOfDataInC(void) {
  return (int)sizeof(CMPIData);
}
int AbiSizeOfStatusInC(void) {
  return (int)sizeof(CMPIStatus);
}
int AbiSizeOfMethodTableInC(void) {
  return (int)sizeof(CMPIMethodMIFT);
}
