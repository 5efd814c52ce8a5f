// SPDX-License-Identifier: Apache-2.0
// TypeInformation and TypeMapping, serialised from the table of a type's parts.
#include "type/typeobject/type_object.hpp"

#include <algorithm>
#include <new>

#include "kolt/config_logger.h"
#include "kolt/type_object.h"
#include "type/cdr/cdr_program.hpp"
#include "type/typeobject/type_table.hpp"

namespace kolt::type {
namespace {

// Members of TypeInformation, with a length in front (XTypes 1.3, 7.4.3.4.2: length code 4).
constexpr std::uint32_t kMinimalMember = 0x40001001;
constexpr std::uint32_t kCompleteMember = 0x40001002;

// TypeInformation travels as a parameter of discovery data, whose length has 16 bits.
constexpr std::size_t kMaximumInformationSize = 0x8000;

using HashedTypes = std::vector<const HashedType *>;

void write_hash(const HashedType &type, Equivalence kind, Xcdr2Output *output) {
    output->write8(static_cast<std::uint8_t>(kind));
    output->write_raw(type.object(kind).hash);
}

// The types that the first one depends on. Different types may have equal minimal objects.
HashedTypes dependencies(const TypeTable &table, Equivalence kind) {
    HashedTypes result;
    for (auto type = table.types().begin() + 1; type != table.types().end(); ++type) {
        if (std::none_of(result.begin(), result.end(), [&](const HashedType *earlier) {
                return earlier->object(kind).hash == type->object(kind).hash;
            })) {
            result.push_back(&*type);
        }
    }
    return result;
}

// TypeIdentifierWithDependencies (7.6.3.2.1).
void write_with_dependencies(const TypeTable &table, Equivalence kind, Xcdr2Output *output) {
    const auto write_with_size = [&](const HashedType *type) {
        output->write_delimited([&] {
            write_hash(*type, kind, output);
            output->write32(static_cast<std::uint32_t>(type->object(kind).bytes.size()));
        });
    };
    const HashedTypes needed = dependencies(table, kind);
    output->write_delimited([&] {
        write_with_size(&table.types().front());
        output->write32(static_cast<std::uint32_t>(needed.size()));
        output->write_sequence(needed, write_with_size);
    });
}

Bytes write_information(const TypeTable &table) {
    Xcdr2Output output;
    output.write_delimited([&] {
        output.write32(kMinimalMember);
        output.write_delimited(
            [&] { write_with_dependencies(table, Equivalence::kMinimal, &output); });
        output.write32(kCompleteMember);
        output.write_delimited(
            [&] { write_with_dependencies(table, Equivalence::kComplete, &output); });
    });
    return output.take();
}

// The minimal objects, the complete ones, and which of them belong together.
Bytes write_mapping(const TypeTable &table) {
    Xcdr2Output output;
    for (const Equivalence kind : {Equivalence::kMinimal, Equivalence::kComplete}) {
        output.write_sequence(table.types(), [&](const HashedType &type) {
            write_hash(type, kind, &output);
            output.align(4);
            output.write_raw(type.object(kind).bytes);
        });
    }
    output.write_sequence(table.types(), [&](const HashedType &type) {
        write_hash(type, Equivalence::kComplete, &output);
        write_hash(type, Equivalence::kMinimal, &output);
    });
    return output.take();
}

bool to_sequence(const Bytes &bytes, DDS_OctetSeq *sequence) {
    return DDS_OctetSeq_from_array(sequence, bytes.data(), static_cast<DDS_Long>(bytes.size())) !=
           DDS_BOOLEAN_FALSE;
}

}  // namespace

std::optional<TypeDescription> describe_type(const DDS_TypeCode &type, const char *name,
                                             std::string *problem) {
    const ModuleMove names(type.name == nullptr ? "" : type.name, name);
    *problem = find_objection(type, names);
    if (!problem->empty()) {
        return std::nullopt;
    }
    const TypeTable table(type, names);
    TypeDescription description{write_information(table), write_mapping(table)};
    if (description.information.size() > kMaximumInformationSize) {
        *problem = "consists of too many types";
        return std::nullopt;
    }
    return description;
}

}  // namespace kolt::type

DDS_ReturnCode_t KOLT_TypeObject_describe(const DDS_TypeCode *type, const char *name,
                                          DDS_OctetSeq *information, DDS_OctetSeq *mapping) {
    if (type == nullptr || name == nullptr || information == nullptr || mapping == nullptr ||
        !kolt::type::validate_type_code(*type)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    try {
        std::string problem;
        const auto description = kolt::type::describe_type(*type, name, &problem);
        if (!description) {
            KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR,
                             "KOLT_TypeObject_describe", "%s has no type object: %s", name,
                             problem.c_str());
            return DDS_RETCODE_UNSUPPORTED;
        }
        if (kolt::type::to_sequence(description->information, information) &&
            kolt::type::to_sequence(description->mapping, mapping)) {
            return DDS_RETCODE_OK;
        }
    } catch (...) {  // out of memory
    }
    return DDS_RETCODE_OUT_OF_RESOURCES;
}
