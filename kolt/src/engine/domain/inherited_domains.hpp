// SPDX-License-Identifier: Apache-2.0
// Domains of which a forked child has the engine's memory and none of its threads.
#pragma once

#include "kolt/domain.h"

namespace kolt::engine {

// Count the participants of this process in a domain.
void note_participant(DDS_DomainId_t domain);
void forget_participant(DDS_DomainId_t domain);
// True in a child that was forked while there were participants in the domain. The engine cannot make
// another one there: it would wait for threads that only the parent has.
bool is_inherited(DDS_DomainId_t domain);

}  // namespace kolt::engine
