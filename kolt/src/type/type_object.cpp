#include "type/type_object.hpp"

#include <algorithm>
#include <new>

#include "kolt/config_logger.h"
#include "kolt/type_object.h"
#include "type/cdr_program.hpp"
#include "type/type_table.hpp"

namespace kolt::type {
namespace {

// Members of TypeInformation, with a length in front (XTypes 1.3, 7.4.3.4.2: length code 4).
constexpr uint32_t kMinimalMember = 0x40001001;
constexpr uint32_t kCompleteMember = 0x40001002;

// TypeInformation travels as a parameter of discovery data, whose length has 16 bits.
constexpr size_t kMaximumInformationSize = 0x8000;

using HashedTypes = std::vector<const HashedType *>;

void WriteHash(const HashedType &type, Equivalence kind, Xcdr2Output *output) {
    output->Write8(static_cast<uint8_t>(kind));
    output->WriteRaw(type.Object(kind).hash);
}

// The types that the first one depends on. Different types may have equal minimal objects.
HashedTypes Dependencies(const TypeTable &table, Equivalence kind) {
    HashedTypes result;
    for (auto type = table.types().begin() + 1; type != table.types().end(); ++type) {
        if (std::none_of(result.begin(), result.end(), [&](const HashedType *earlier) {
                return earlier->Object(kind).hash == type->Object(kind).hash;
            })) {
            result.push_back(&*type);
        }
    }
    return result;
}

// TypeIdentifierWithDependencies (7.6.3.2.1).
void WriteWithDependencies(const TypeTable &table, Equivalence kind, Xcdr2Output *output) {
    const auto write_with_size = [&](const HashedType *type) {
        output->WriteDelimited([&] {
            WriteHash(*type, kind, output);
            output->Write32(static_cast<uint32_t>(type->Object(kind).bytes.size()));
        });
    };
    const HashedTypes dependencies = Dependencies(table, kind);
    output->WriteDelimited([&] {
        write_with_size(&table.types().front());
        output->Write32(static_cast<uint32_t>(dependencies.size()));
        output->WriteSequence(dependencies, write_with_size);
    });
}

Bytes WriteInformation(const TypeTable &table) {
    Xcdr2Output output;
    output.WriteDelimited([&] {
        output.Write32(kMinimalMember);
        output.WriteDelimited(
            [&] { WriteWithDependencies(table, Equivalence::kMinimal, &output); });
        output.Write32(kCompleteMember);
        output.WriteDelimited(
            [&] { WriteWithDependencies(table, Equivalence::kComplete, &output); });
    });
    return output.Take();
}

// The minimal objects, the complete ones, and which of them belong together.
Bytes WriteMapping(const TypeTable &table) {
    Xcdr2Output output;
    for (const Equivalence kind : {Equivalence::kMinimal, Equivalence::kComplete}) {
        output.WriteSequence(table.types(), [&](const HashedType &type) {
            WriteHash(type, kind, &output);
            output.Align(4);
            output.WriteRaw(type.Object(kind).bytes);
        });
    }
    output.WriteSequence(table.types(), [&](const HashedType &type) {
        WriteHash(type, Equivalence::kComplete, &output);
        WriteHash(type, Equivalence::kMinimal, &output);
    });
    return output.Take();
}

bool ToSequence(const Bytes &bytes, DDS_OctetSeq *sequence) {
    return DDS_OctetSeq_from_array(sequence, bytes.data(), static_cast<DDS_Long>(bytes.size())) !=
           DDS_BOOLEAN_FALSE;
}

}  // namespace

std::optional<TypeDescription> DescribeType(const DDS_TypeCode &type, const char *name,
                                            std::string *problem) {
    const ModuleMove names(type.name == nullptr ? "" : type.name, name);
    *problem = FindObjection(type, names);
    if (!problem->empty()) return std::nullopt;
    const TypeTable table(type, names);
    TypeDescription description{WriteInformation(table), WriteMapping(table)};
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
        !kolt::type::ValidateTypeCode(*type)) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    try {
        std::string problem;
        const auto description = kolt::type::DescribeType(*type, name, &problem);
        if (!description) {
            KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR,
                             "KOLT_TypeObject_describe", "%s has no type object: %s", name,
                             problem.c_str());
            return DDS_RETCODE_UNSUPPORTED;
        }
        if (kolt::type::ToSequence(description->information, information) &&
            kolt::type::ToSequence(description->mapping, mapping)) {
            return DDS_RETCODE_OK;
        }
    } catch (...) {  // out of memory
    }
    return DDS_RETCODE_OUT_OF_RESOURCES;
}
