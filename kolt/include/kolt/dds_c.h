/* SPDX-License-Identifier: Apache-2.0 */
/* Brings in everything that KOLT offers: the OMG DDS C API and the platform's own facilities.
 *
 * Does not support, of DDS 1.4:
 *  - built-in topics: no built-in subscriber, no discovered participants or topics, no
 *    get_matched_subscription_data or get_matched_publication_data, no ignore_* operations;
 *  - groups of changes: no suspend_publications, begin_coherent_changes, begin_access or
 *    get_datareaders;
 *  - multitopics and find_topic;
 *  - get_listener of participants, publishers, subscribers and topics (writers and readers have it);
 *  - waiting for historical data: DDS_DataReader_wait_for_historical_data gives UNSUPPORTED unless the
 *    reader is volatile.
 *
 * Does not support, of the extensions that it has names for:
 *  - samples on behalf of remote writers: DDS_DataReader_add_*_to_remote_writer_queue give
 *    UNSUPPORTED;
 *  - entities created by the name of a profile, participants apart: take the QoS from the profile
 *    (DDS_DomainParticipantFactory_get_*_qos_from_profile) and create with that.
 *
 * Changing QoS of an enabled entity: what the engine cannot change gives UNSUPPORTED (publication.h).
 */
#pragma once

#include "kolt/cdr.h"
#include "kolt/condition.h"
#include "kolt/config_logger.h"
#include "kolt/domain.h"
#include "kolt/dynamic_data.h"
#include "kolt/entity.h"
#include "kolt/filter.h"
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
