// SPDX-License-Identifier: Apache-2.0
// A sequence of elements that own a string, are counted, and fail when a test wants it.
#pragma once

#include <gtest/gtest.h>
#include <kolt/sequence.h>

#include "support/logger/log_capture.h"

namespace support {

struct Named {
    DDS_Long number;
    DDS_Char *name;
};
KOLT_SEQUENCE_DECLARE(NamedSeq, Named, );

extern int g_live;                   // elements that are initialised and not finalised
extern int g_fail_initialize_after;  // so many more can be initialised; below 0: any number
extern bool g_fail_copy;

// Each test begins without elements and failures.
class SequenceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        g_live = 0;
        g_fail_initialize_after = -1;
        g_fail_copy = false;
    }
    LogCapture log_;
};

}  // namespace support
