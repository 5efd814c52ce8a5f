// SPDX-License-Identifier: Apache-2.0
// One table of configuration documents, with what the library, distlog check and the schema say of
// each.
#pragma once

#include <string>
#include <vector>

namespace documents {

enum class Expected {
    kFine,     // taken as it stands; nothing to mend; valid
    kCut,      // taken, a number cut to 32 bits; a warning; valid
    kUseless,  // taken, something in it without effect; a warning; not valid
    kRefused,  // refused; an error; not valid
    // The same where XML Schema cannot say it.
    kUselessButValid,
    kRefusedButValid,
    kFineButInvalid
};

struct Row {
    std::string content;  // the whole document
    Expected expected;
    // An option of the logger ("thread/priority") or a value of a writer ("history.depth"), and what
    // is in force, as distlog check writes it in JSON. Empty: the row is about something else.
    std::string subject;
    std::string value;
    // A part of a message of distlog check; empty: whatever it says.
    std::string message = "";
};

std::vector<Row> rows();

// A name for messages: "kFine".
std::string to_string(Expected expected);

}  // namespace documents
