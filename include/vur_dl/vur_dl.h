/* SPDX-License-Identifier: Apache-2.0 */
/* Everything that the distributed logger offers. */
#pragma once

#include "kolt/dds_c.h"
#include "vur_dl/DDSEntities.h"
#include "vur_dl/DistLogger.h"
#include "vur_dl/DistLoggerUtility.h"
#include "vur_dl/EnumTranslators.h"
#include "vur_dl/LogMessageWriteThread.h"
#include "vur_dl/MessageQueue.h"
#include "vur_dl/Options.h"
#include "vur_dl/XMLConfig.h"
#include "vur_dl/distlog.h"
#include "vur_dl/distlogPlugin.h"
#include "vur_dl/distlogSupport.h"
