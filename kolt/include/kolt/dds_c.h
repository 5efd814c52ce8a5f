/* Everything that KOLT offers: the OMG DDS C API and the platform's own facilities. */
#ifndef KOLT_DDS_C_H
#define KOLT_DDS_C_H

#include "kolt/cdr.h"
#include "kolt/condition.h"
#include "kolt/config_logger.h"
#include "kolt/domain.h"
#include "kolt/dynamic_data.h"
#include "kolt/entity.h"
#include "kolt/infrastructure.h"
#include "kolt/os.h"
#include "kolt/print_format.h"
#include "kolt/publication.h"
#include "kolt/qos.h"
#include "kolt/sequence.h"
#include "kolt/status.h"
#include "kolt/subscription.h"
#include "kolt/thread_settings.h"
#include "kolt/topic.h"
#include "kolt/type_object.h"
#include "kolt/type_plugin.h"
#include "kolt/typecode.h"
#include "kolt/xml.h"

#endif /* KOLT_DDS_C_H */
