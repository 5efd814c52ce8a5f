// SPDX-License-Identifier: Apache-2.0
// The library, distlog check and the schema agree on every document of one table: what is taken,
// what is in force, and what is to be mended. Needs xmllint (Debian package libxml2-utils) and fails
// without it.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <kolt/qos.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "behaviour/config/documents_table.h"
#include "support/config/distlog_check.h"
#include "support/config/xml_config.h"

namespace {

using documents::Expected;
using documents::Row;
using support::Json;
using support::Lines;

bool is_taken(Expected expected) {
    return expected != Expected::kRefused && expected != Expected::kRefusedButValid;
}

bool is_fine(Expected expected) {
    return expected == Expected::kFine || expected == Expected::kFineButInvalid;
}

// The rule of the schema, and where XML Schema cannot keep it.
bool is_valid(Expected expected) {
    return expected == Expected::kFine || expected == Expected::kCut ||
           expected == Expected::kUselessButValid || expected == Expected::kRefusedButValid;
}

// ---- Values that the library sets ---------------------------------------------------------------

Json cpus_of(const DDS_LongSeq &list) {
    Json numbers = Json::array();
    for (DDS_UnsignedLong i = 0; i < DDS_LongSeq_get_length(&list); ++i) {
        numbers.push_back(DDS_LongSeq_get(&list, static_cast<DDS_Long>(i)));
    }
    return numbers;
}

Json mask_of(DDS_ThreadSettingsKindMask mask) {
    Json names = Json::array();
    for (const auto &[bit, name] : std::map<DDS_ThreadSettingsKindMask, const char *>{
             {DDS_THREAD_SETTINGS_FLOATING_POINT, "FLOATING_POINT"},
             {DDS_THREAD_SETTINGS_STDIO, "STDIO"},
             {DDS_THREAD_SETTINGS_REALTIME_PRIORITY, "REALTIME_PRIORITY"},
             {DDS_THREAD_SETTINGS_PRIORITY_ENFORCE, "PRIORITY_ENFORCE"}}) {
        if ((mask & bit) != 0U) {
            names.push_back(name);
        }
    }
    return names;
}

Json unless(DDS_Long value, DDS_Long standard, const Json &instead) {
    return value == standard ? instead : Json(value);
}

std::map<std::string, Json> values_of(const VUR_DL_Options &options) {
    const DDS_ThreadSettings_t &thread = options.threadSettings;
    return {
        {"enabled", options.enabled != 0},
        {"filter_level", options.filterLevel},
        {"queue_size", options.queueSize},
        {"echo_to_stdout", options.echoToStdout != 0},
        {"thread/mask", mask_of(thread.mask)},
        {"thread/priority", unless(thread.priority, DDS_THREAD_PRIORITY_DEFAULT, nullptr)},
        {"thread/stack_size", unless(thread.stack_size, DDS_THREAD_STACK_SIZE_DEFAULT, nullptr)},
        {"thread/cpu_list", cpus_of(thread.cpu_list)},
        {"thread/cpu_rotation", thread.cpu_rotation == DDS_THREAD_SETTINGS_CPU_RR_ROTATION
                                    ? "CPU_RR_ROTATION"
                                    : "CPU_NO_ROTATION"}};
}

Json text_of(const DDS_Duration_t &duration) {
    if (DDS_Duration_is_infinite(&duration)) {
        return "infinite";
    }
    char text[32];
    std::snprintf(text, sizeof text, "%d.%09u", duration.sec, duration.nanosec);
    std::string number = text;
    number.erase(number.find_last_not_of('0') + 1);
    number.erase(number.find_last_not_of('.') + 1);
    return number + " s";
}

Json octets_of(const DDS_OctetSeq &list) {
    Json numbers = Json::array();
    for (DDS_UnsignedLong i = 0; i < DDS_OctetSeq_get_length(&list); ++i) {
        numbers.push_back(DDS_OctetSeq_get(&list, static_cast<DDS_Long>(i)));
    }
    return numbers;
}

std::map<std::string, Json> values_of(const DDS_DataWriterQos &qos) {
    const auto limit = [](DDS_Long value) {
        return unless(value, DDS_LENGTH_UNLIMITED, "LENGTH_UNLIMITED");
    };
    return {{"history.depth", qos.history.depth},
            {"resource_limits.max_instances", limit(qos.resource_limits.max_instances)},
            {"resource_limits.max_samples", limit(qos.resource_limits.max_samples)},
            {"durability_service.history_depth", qos.durability_service.history_depth},
            {"ownership_strength.value", qos.ownership_strength.value},
            {"user_data.value", octets_of(qos.user_data.value)},
            {"lifespan.duration", text_of(qos.lifespan.duration)},
            {"writer_data_lifecycle.autodispose_unregistered_instances",
             qos.writer_data_lifecycle.autodispose_unregistered_instances != DDS_BOOLEAN_FALSE}};
}

// What the library makes of a document: nothing, or values by subject.
struct Taken {
    bool taken = false;
    std::map<std::string, Json> values = {};
};

Taken library_says(const std::string &path) {
    KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                     KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipantFactory_unload_profiles(factory);
    support::XmlConfigDocument document;
    Taken result;
    result.taken =
        document.parse_file(path) == DDS_RETCODE_OK &&
        KOLT_DomainParticipantFactory_add_profiles(factory, path.c_str()) == DDS_RETCODE_OK;
    if (result.taken && document.object() != nullptr) {
        result.values = values_of(*document.options());
    }
    DDS_DataWriterQos qos;
    DDS_DataWriterQos_initialize(&qos);
    if (result.taken && DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(
                            factory, &qos, "L", "P") == DDS_RETCODE_OK) {
        result.values.merge(values_of(qos));
    }
    DDS_DataWriterQos_finalize(&qos);
    return result;
}

class Documents : public support::DistlogCheckTest {
  protected:
    void SetUp() override {
        DistlogCheckTest::SetUp();
        for (const Row &row : rows_) {
            paths_.push_back("document_" + std::to_string(paths_.size()) + ".xml");
            write(paths_.back(), row.content);
        }
    }

    // Calls `test(row, path)` for each row.
    template <typename Test>
    void for_each_row(Test test) const {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            SCOPED_TRACE(to_string(rows_[i].expected) + ": " + rows_[i].content);
            test(rows_[i], i);
        }
    }

    // Returns the documents that the schema takes.
    std::set<std::string> valid_documents() const {
        std::string command = std::string("xmllint --noout --nonet --schema '") +
                              std::getenv("VUR_DL_TEST_SOURCE_DIR") + "/xml/distlog.xsd'";
        for (const std::string &path : paths_) {
            command += " " + path;
        }
        // The exit code says whether all are valid, which is not the question.
        static_cast<void>(std::system((command + " >xmllint.txt 2>&1").c_str()));
        std::set<std::string> valid;
        std::ifstream file("xmllint.txt");
        for (std::string line; std::getline(file, line);) {
            if (line.ends_with(" validates")) {
                valid.insert(line.substr(0, line.find(' ')));
            }
        }
        return valid;
    }

    const std::vector<Row> rows_ = documents::rows();
    std::vector<std::string> paths_;
};

TEST_F(Documents, TheLibraryTakesWhatTheTableSays) {
    for_each_row([&](const Row &row, std::size_t i) {
        Taken taken = library_says(paths_[i]);
        EXPECT_EQ(taken.taken, is_taken(row.expected));
        if (!row.subject.empty()) {
            EXPECT_EQ(taken.values[row.subject], Json::parse(row.value)) << row.subject;
        }
    });
}

// The value of a subject in a report of distlog check: what the document says, not what the logger
// makes of it.
Json reported(const Json &report, const std::string &subject) {
    const std::size_t dot = subject.find('.');
    if (dot == std::string::npos) {
        return report["options"][subject]["value"];
    }
    for (const Json &entity : report["entities"]) {
        if (entity["entity"] == "datawriter") {
            return entity["policies"][subject.substr(0, dot)]["profile"][subject.substr(dot + 1)];
        }
    }
    return "no datawriter";
}

bool has_message(const Json &report, const std::string &text) {
    for (const Json &problem : report["problems"]) {
        if (support::contains(problem["message"], text)) {
            return true;
        }
    }
    return false;
}

bool has_severity(const Json &report, const std::string &severity) {
    for (const Json &problem : report["problems"]) {
        if (problem["severity"] == severity) {
            return true;
        }
    }
    return false;
}

TEST_F(Documents, CheckSaysWhatTheLibraryDoes) {
    Lines arguments{"--json"};
    arguments.insert(arguments.end(), paths_.begin(), paths_.end());
    const support::Outcome outcome = support::check(arguments);
    ASSERT_EQ(outcome.out.size(), rows_.size());
    for_each_row([&](const Row &row, std::size_t i) {
        const Json report = Json::parse(outcome.out[i]);
        SCOPED_TRACE(report["problems"].dump(1));
        EXPECT_EQ(report["valid"], is_taken(row.expected));
        EXPECT_EQ(has_severity(report, "error"), !is_taken(row.expected));
        if (is_taken(row.expected)) {
            EXPECT_EQ(has_severity(report, "warning"), !is_fine(row.expected));
        }
        if (row.expected == Expected::kCut) {
            EXPECT_TRUE(has_message(report, " is read as "));
        }
        if (!row.subject.empty()) {
            EXPECT_EQ(reported(report, row.subject), Json::parse(row.value)) << row.subject;
        }
        EXPECT_TRUE(row.message.empty() || has_message(report, row.message)) << row.message;
    });
}

TEST_F(Documents, TheSchemaKeepsItsRule) {
    ASSERT_EQ(std::system("xmllint --version >/dev/null 2>&1"), 0)
        << "xmllint is not installed (Debian package libxml2-utils)";
    const std::set<std::string> valid = valid_documents();
    for_each_row([&](const Row &row, std::size_t i) {
        EXPECT_EQ(valid.contains(paths_[i]), is_valid(row.expected));
    });
}

}  // namespace
