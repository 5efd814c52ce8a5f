// SPDX-License-Identifier: Apache-2.0
// The output device: which threads may write to it, and when it may be closed.
#pragma once

#include "kolt/config_logger.h"

namespace kolt::log {

// Hands a message to the installed device, or prints it on standard output when there is none or
// when the calling thread is inside that device's write already. No lock is held while a device
// writes or closes.
void deliver(const KOLT_Config_LogMessage &message);

// Replaces the device (null: standard output). False when memory runs out.
bool install_device(KOLT_Config_LoggerDevice *device);

KOLT_Config_LoggerDevice *installed_device();

}  // namespace kolt::log
