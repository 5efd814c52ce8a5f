// SPDX-License-Identifier: Apache-2.0
// The children of a process with a logger, which have none.
//
// A forked child has one thread: the logger's own thread and those of the middleware are not there,
// their locks may be taken for ever, and what it sent would go out in its parent's name. So it
// forgets the logger, and never makes one. A child that is forked while there is no logger may.
#pragma once

namespace vur_dl {

// Says whether a logger exists in any form: from before its creation until after its destruction.
void set_logger_exists(bool exists);

// True in the child of a process in which a logger existed, and in that child's children.
bool is_child_without_logger();

}  // namespace vur_dl
