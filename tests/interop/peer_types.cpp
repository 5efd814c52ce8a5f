// SPDX-License-Identifier: Apache-2.0
// A tool that knows no type: finds the writers and readers of topics in a domain, looks their types
// up over the network, and takes samples as those types tell. Prints, with tabs between the fields,
//
//     endpoint   writer|reader <topic> <type's name> none|<complete identifier>
//     type       <identifier> <name> structure|union|enumeration <flags>
//     member     <identifier of the type around it> <id> <name> <flags> <type>
//     enumerator <identifier> <value> <name>
//     case       <identifier> <member's id> <label>
//     minimal    <identifier> <the minimal one>
//     missing    <identifier>                             no answer came
//     sample     <topic> <text>                           of the topic given as the last argument
//
// until its standard input ends. Flags are in hexadecimal.
// It is written in C.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include "peer_common.h"
#pragma GCC diagnostic pop
// After it:
#include <dds/ddsi/ddsi_serdata.h>
#include <dds/ddsi/ddsi_typelib.h>
#include <dds/ddsi/ddsi_xt_impl.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr dds_duration_t kLookupTimeout = DDS_SECS(20);
constexpr int kBatch = 16;

struct Tool {
    dds_entity_t participant = 0;
    std::string prefix;        // of the topics that are looked at
    std::string sample_topic;  // may be empty
    dds_entity_t reader = 0;   // of sample_topic, once there is one
    std::set<std::string> seen_types;
    std::set<std::string> seen_endpoints;
};

// Bytes in hexadecimal.
template <typename Range>
std::string hexadecimal(const Range &bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", byte);
        text += digits;
    }
    return text;
}

std::string hash_name(const DDS_XTypes_TypeIdentifier &id) {
    return hexadecimal(id._u.equivalence_hash);
}
std::string hash_name(const dds_typeid_t *id) {
    return hash_name(id->x);
}

// An identifier in words: a hash, or what the identifier itself tells.
std::string type_name(const DDS_XTypes_TypeIdentifier &id) {
    switch (id._d) {
        case DDS_XTypes_EK_COMPLETE:
        case DDS_XTypes_EK_MINIMAL:
            return hash_name(id);
        case DDS_XTypes_TI_STRING8_SMALL:
            return "string<" + std::to_string(id._u.string_sdefn.bound) + ">";
        case DDS_XTypes_TI_STRING8_LARGE:
            return "string<" + std::to_string(id._u.string_ldefn.bound) + ">";
        case DDS_XTypes_TI_PLAIN_SEQUENCE_SMALL:
            return "sequence<" + type_name(*id._u.seq_sdefn.element_identifier) + "," +
                   std::to_string(id._u.seq_sdefn.bound) + ">";
        case DDS_XTypes_TI_PLAIN_ARRAY_SMALL:
            return type_name(*id._u.array_sdefn.element_identifier) + "[" +
                   std::to_string(id._u.array_sdefn.array_bound_seq._buffer[0]) + "]";
        default:
            return ddsi_typekind_descr(id._d);
    }
}

void show_type(Tool &tool, const DDS_XTypes_TypeIdentifier &id);

// Shows the types that an identifier leads to.
void follow(Tool &tool, const DDS_XTypes_TypeIdentifier &id) {
    switch (id._d) {
        case DDS_XTypes_EK_COMPLETE:
        case DDS_XTypes_EK_MINIMAL:
            show_type(tool, id);
            break;
        case DDS_XTypes_TI_PLAIN_SEQUENCE_SMALL:
            follow(tool, *id._u.seq_sdefn.element_identifier);
            break;
        case DDS_XTypes_TI_PLAIN_SEQUENCE_LARGE:
            follow(tool, *id._u.seq_ldefn.element_identifier);
            break;
        case DDS_XTypes_TI_PLAIN_ARRAY_SMALL:
            follow(tool, *id._u.array_sdefn.element_identifier);
            break;
        case DDS_XTypes_TI_PLAIN_ARRAY_LARGE:
            follow(tool, *id._u.array_ldefn.element_identifier);
            break;
        default:
            break;
    }
}

void show_structure(Tool &tool, const std::string &id, const DDS_XTypes_CompleteStructType &type) {
    std::printf("type\t%s\t%s\tstructure\t%x\n", id.c_str(), type.header.detail.type_name,
                unsigned{type.struct_flags});
    for (std::uint32_t i = 0; i < type.member_seq._length; ++i) {
        const DDS_XTypes_CompleteStructMember &member = type.member_seq._buffer[i];
        std::printf("member\t%s\t%" PRIu32 "\t%s\t%x\t%s\n", id.c_str(), member.common.member_id,
                    member.detail.name, unsigned{member.common.member_flags},
                    type_name(member.common.member_type_id).c_str());
    }
    for (std::uint32_t i = 0; i < type.member_seq._length; ++i) {
        follow(tool, type.member_seq._buffer[i].common.member_type_id);
    }
}

void show_union(Tool &tool, const std::string &id, const DDS_XTypes_CompleteUnionType &type) {
    std::printf("type\t%s\t%s\tunion\t%x\n", id.c_str(), type.header.detail.type_name,
                unsigned{type.union_flags});
    follow(tool, type.discriminator.common.type_id);
    for (std::uint32_t i = 0; i < type.member_seq._length; ++i) {
        const DDS_XTypes_CommonUnionMember &member = type.member_seq._buffer[i].common;
        std::printf("member\t%s\t%" PRIu32 "\t%s\t%x\t%s\n", id.c_str(), member.member_id,
                    type.member_seq._buffer[i].detail.name, unsigned{member.member_flags},
                    type_name(member.type_id).c_str());
        for (std::uint32_t j = 0; j < member.label_seq._length; ++j) {
            std::printf("case\t%s\t%" PRIu32 "\t%" PRId32 "\n", id.c_str(), member.member_id,
                        member.label_seq._buffer[j]);
        }
        follow(tool, member.type_id);
    }
}

void show_enumeration(const std::string &id, const DDS_XTypes_CompleteEnumeratedType &type) {
    std::printf("type\t%s\t%s\tenumeration\t%x\n", id.c_str(), type.header.detail.type_name,
                unsigned{type.enum_flags});
    for (std::uint32_t i = 0; i < type.literal_seq._length; ++i) {
        const DDS_XTypes_CompleteEnumeratedLiteral &literal = type.literal_seq._buffer[i];
        std::printf("enumerator\t%s\t%" PRId32 "\t%s\n", id.c_str(), literal.common.value,
                    literal.detail.name);
    }
}

void show_type(Tool &tool, const DDS_XTypes_TypeIdentifier &id) {
    const std::string name = hash_name(id);
    if (!tool.seen_types.insert(name).second) {
        return;
    }
    dds_typeobj_t *object = nullptr;
    // A dds_typeid_t is the identifier and nothing else.
    if (dds_get_typeobj(tool.participant, reinterpret_cast<const dds_typeid_t *>(&id),
                        kLookupTimeout, &object) != DDS_RETCODE_OK) {
        std::printf("missing\t%s\n", name.c_str());
        return;
    }
    const DDS_XTypes_CompleteTypeObject &complete = object->x._u.complete;
    switch (complete._d) {
        case DDS_XTypes_TK_STRUCTURE:
            show_structure(tool, name, complete._u.struct_type);
            break;
        case DDS_XTypes_TK_UNION:
            show_union(tool, name, complete._u.union_type);
            break;
        case DDS_XTypes_TK_ENUM:
            show_enumeration(name, complete._u.enumerated_type);
            break;
        default:
            break;
    }
    checked(dds_free_typeobj(object), "type object");
}

// The minimal objects come over the network as well.
void show_minimal(const Tool &tool, const dds_typeinfo_t *info) {
    const dds_typeid_t *const id = ddsi_typeinfo_minimal_typeid(info);
    dds_typeobj_t *object = nullptr;
    if (dds_get_typeobj(tool.participant, id, kLookupTimeout, &object) != DDS_RETCODE_OK) {
        std::printf("missing\t%s\n", hash_name(id).c_str());
        return;
    }
    std::printf("minimal\t%s\t%s\n", hash_name(ddsi_typeinfo_complete_typeid(info)).c_str(),
                hash_name(id).c_str());
    checked(dds_free_typeobj(object), "type object");
}

// A reader made of nothing but the type's information.
void start_reading(Tool &tool, const char *topic_name, const dds_typeinfo_t *info) {
    dds_topic_descriptor_t *type = nullptr;
    checked(dds_create_topic_descriptor(DDS_FIND_SCOPE_GLOBAL, tool.participant, info,
                                        kLookupTimeout, &type),
            "topic descriptor");
    const dds_entity_t topic = peer_topic(tool.participant, topic_name, type);
    tool.reader = peer_reader(tool.participant, topic, DDS_DURABILITY_TRANSIENT_LOCAL);
    dds_delete_topic_descriptor(type);
}

void show_endpoint(Tool &tool, dds_builtintopic_endpoint_t *endpoint, const char *kind) {
    const std::string topic = endpoint->topic_name;
    if (!topic.starts_with(tool.prefix) ||
        !tool.seen_endpoints.insert(hexadecimal(endpoint->key.v)).second) {
        return;
    }
    const dds_typeinfo_t *info = nullptr;
    std::string id = "none";
    if (dds_builtintopic_get_endpoint_type_info(endpoint, &info) == DDS_RETCODE_OK &&
        info != nullptr) {
        id = hash_name(ddsi_typeinfo_complete_typeid(info));
        show_type(tool, ddsi_typeinfo_complete_typeid(info)->x);
        show_minimal(tool, info);
        if (tool.reader == 0 && topic == tool.sample_topic) {
            start_reading(tool, endpoint->topic_name, info);
        }
    }
    // Last, so that all about its type has been said.
    std::printf("endpoint\t%s\t%s\t%s\t%s\n", kind, endpoint->topic_name, endpoint->type_name,
                id.c_str());
}

void show_endpoints(Tool &tool, dds_entity_t reader, const char *kind) {
    void *samples[kBatch] = {nullptr};
    dds_sample_info_t infos[kBatch];
    dds_return_t count = 0;
    while ((count = checked(dds_take(reader, samples, infos, kBatch, kBatch), "take")) > 0) {
        for (dds_return_t i = 0; i < count; ++i) {
            if (infos[i].valid_data) {
                show_endpoint(tool, static_cast<dds_builtintopic_endpoint_t *>(samples[i]), kind);
            }
        }
        checked(dds_return_loan(reader, samples, count), "return loan");
    }
}

void show_samples(const Tool &tool) {
    ddsi_serdata *samples[kBatch] = {nullptr};
    dds_sample_info_t infos[kBatch];
    const dds_return_t count =
        checked(dds_takecdr(tool.reader, samples, kBatch, infos, DDS_ANY_STATE), "take");
    for (dds_return_t i = 0; i < count; ++i) {
        char text[4096];
        if (infos[i].valid_data) {
            ddsi_serdata_print(samples[i], text, sizeof(text));
            std::printf("sample\t%s\t%s\n", tool.sample_topic.c_str(), text);
        }
        ddsi_serdata_unref(samples[i]);
    }
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3 && argc != 4) {
        std::fprintf(stderr, "usage: %s domain topic-prefix [topic]\n", argv[0]);
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    Tool tool;
    tool.prefix = argv[2];
    if (argc == 4) {
        tool.sample_topic = argv[3];
    }
    tool.participant = checked(
        dds_create_participant(static_cast<dds_domainid_t>(std::strtoul(argv[1], nullptr, 10)),
                               nullptr, nullptr),
        "domain");
    const dds_entity_t writers = checked(
        dds_create_reader(tool.participant, DDS_BUILTIN_TOPIC_DCPSPUBLICATION, nullptr, nullptr),
        "writers");
    const dds_entity_t readers = checked(
        dds_create_reader(tool.participant, DDS_BUILTIN_TOPIC_DCPSSUBSCRIPTION, nullptr, nullptr),
        "readers");
    const dds_entity_t waitset = peer_waitset(tool.participant);
    peer_watch(waitset, writers);
    peer_watch(waitset, readers);
    while (!peer_is_dismissed()) {
        checked(dds_waitset_wait(waitset, nullptr, 0, DDS_MSECS(20)), "wait");
        show_endpoints(tool, writers, "writer");
        show_endpoints(tool, readers, "reader");
        if (tool.reader != 0) {
            show_samples(tool);
        }
    }
    return checked(dds_delete(tool.participant), "delete");
}
