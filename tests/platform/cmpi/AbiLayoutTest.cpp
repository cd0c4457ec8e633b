// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstddef>

#include "platform/cmpi/abi/cmpi.h"

extern "C" {
int AbiSizeOfDataInC(void);
int AbiSizeOfStatusInC(void);
int AbiSizeOfMethodTableInC(void);
}

namespace {

// Providers are compiled against other people's headers: the binary layout is what both share.
static_assert(sizeof(CMPIValuePtr) == 16 && offsetof(CMPIValuePtr, length) == 8);
static_assert(sizeof(CMPIValue) == 16 && alignof(CMPIValue) == 8);
static_assert(sizeof(CMPIData) == 24 && offsetof(CMPIData, type) == 0);
static_assert(offsetof(CMPIData, state) == 2 && offsetof(CMPIData, value) == 8);
static_assert(sizeof(CMPIStatus) == 16 && offsetof(CMPIStatus, msg) == 8);
static_assert(sizeof(CMPIrc) == sizeof(int) && sizeof(CMPIErrorProbableCause) == sizeof(int));

static_assert(sizeof(CMPIString) == 16 && offsetof(CMPIString, hdl) == 0);
static_assert(offsetof(CMPIString, ft) == 8);
static_assert(sizeof(CMPIBroker) == 40 && offsetof(CMPIBroker, mft) == 32);
static_assert(sizeof(CMPIBrokerFT) == 184 && offsetof(CMPIBrokerFT, prepareAttachThread) == 16);
static_assert(sizeof(CMPIBrokerEncFT) == 192 && sizeof(CMPIBrokerExtFT) == 200);
static_assert(sizeof(CMPIBrokerMemFT) == 128 && sizeof(CMPIContextFT) == 56);
static_assert(sizeof(CMPIResultFT) == 64 && sizeof(CMPIStringFT) == 40);
static_assert(sizeof(CMPIArrayFT) == 56 && sizeof(CMPIEnumerationFT) == 48);
static_assert(sizeof(CMPIInstanceFT) == 88 && sizeof(CMPIObjectPathFT) == 160);
static_assert(sizeof(CMPIArgsFT) == 56 && sizeof(CMPIDateTimeFT) == 48);
static_assert(sizeof(CMPISelectExpFT) == 64 && sizeof(CMPISelectCondFT) == 40);
static_assert(sizeof(CMPISubCondFT) == 48 && sizeof(CMPIPredicateFT) == 40);
static_assert(sizeof(CMPIErrorFT) == 216 && sizeof(CMPIPropertyListFT) == 40);
static_assert(sizeof(CMPIEnumerationFilterFT) == 32);

static_assert(sizeof(CMPIInstanceMIFT) == 88 && offsetof(CMPIInstanceMIFT, miName) == 8);
static_assert(offsetof(CMPIInstanceMIFT, cleanup) == 16);
static_assert(sizeof(CMPIAssociationMIFT) == 72 && sizeof(CMPIMethodMIFT) == 32);
static_assert(sizeof(CMPIPropertyMIFT) == 48 && sizeof(CMPIIndicationMIFT) == 96);

// Functions that a wrong order of members would move.
static_assert(offsetof(CMPIStringFT, getCharPtr) == 24);
static_assert(offsetof(CMPIInstanceFT, setPropertyWithOrigin) == 80);
static_assert(offsetof(CMPIObjectPathFT, toString) == 152);
static_assert(offsetof(CMPIBrokerEncFT, getMessage) == 112);
static_assert(offsetof(CMPIBrokerFT, getProperty) == 152);
static_assert(offsetof(CMPIMethodMIFT, invokeMethod) == 24);

static_assert(CMPI_chars == 0x1700 && CMPI_charsA == (CMPI_chars | CMPI_ARRAY));
static_assert(Leak_Detected == 113 && Unexpected_Information == 130,
              "the causes are numbered without a gap");

TEST(AbiLayoutTest, AC99ProgramSeesTheSameSizesAsACppProgram) {
  EXPECT_EQ(AbiSizeOfDataInC(), static_cast<int>(sizeof(CMPIData)));
  EXPECT_EQ(AbiSizeOfStatusInC(), static_cast<int>(sizeof(CMPIStatus)));
  EXPECT_EQ(AbiSizeOfMethodTableInC(), static_cast<int>(sizeof(CMPIMethodMIFT)));
}

TEST(AbiLayoutTest, AWideReaderSeesANarrowValueWhenTheUnionWasZeroed) {
  CMPIValue value = {};
  value.uint8 = 200;
  EXPECT_EQ(value.uint64, 200U);
}

}  // namespace
