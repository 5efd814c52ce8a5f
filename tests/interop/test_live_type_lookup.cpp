// SPDX-License-Identifier: Apache-2.0
// Our types as seen by a tool that knows none of them: a program of the engine alone, in a process
// of its own, which looks up the types that are announced.

#include <gtest/gtest.h>
#include <kolt/type_object.h>
#include <vur_dl/DDSEntities.h>
#include <vur_dl/distlog.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "live_logger.h"
#include "support/platform/pubsub.h"
#include "type_kinds.h"

namespace {

using interop::Fields;
using support::ChildProcess;

// Flags of members, in the standard's bits.
constexpr unsigned kDiscard = 0x01;
constexpr unsigned kOptional = 0x08;
constexpr unsigned kMustUnderstand = 0x10;
constexpr unsigned kKey = 0x20;
constexpr unsigned kDefault = 0x40;

// "A::B" as "x::b", and so on: where the logger's types live on the network.
std::string announced_name(const std::string &name) {
    for (const auto &[from, to] :
         {std::pair<std::string, std::string>{"VUR::DL::ADMIN::", "com::vur::dl::admin::"},
          {"VUR::DL::", "com::vur::dl::"}}) {
        if (name.starts_with(from)) {
            return to + name.substr(from.size());
        }
    }
    return name;
}

// The lines that the tool has printed, by their kind.
class Findings {
  public:
    explicit Findings(const std::vector<std::string> &lines) {
        for (const std::string &line : lines) {
            const Fields fields = interop::split(line);
            if (fields[0] == "type") {
                types_[fields.at(1)] = fields;
            }
            if (fields[0] == "missing") {
                ++missing_;
            }
            if (fields[0] == "minimal") {
                ++minimal_;
            }
            if (fields[0] == "member" || fields[0] == "enumerator" || fields[0] == "case") {
                parts_[fields.at(1)].push_back(fields);
            }
        }
    }

    std::size_t count() const { return types_.size(); }
    int missing() const { return missing_; }
    int minimal() const { return minimal_; }

    // The type with the identifier, and all that it consists of, is the type code's.
    void expect_type(const std::string &id, const DDS_TypeCode &code) {
        if (!expected_.insert(id).second) {
            return;
        }
        ASSERT_EQ(types_.count(id), 1U) << code.name;
        const Fields &type = types_[id];
        EXPECT_EQ(type.at(2), announced_name(code.name));
        EXPECT_EQ(type.at(3), code.kind == DDS_TK_STRUCT  ? "structure"
                              : code.kind == DDS_TK_UNION ? "union"
                                                          : "enumeration");
        EXPECT_EQ(number(type.at(4)), 1U << code.extensibility) << code.name;
        next_[id] = 0;
        for (DDS_UnsignedLong i = 0; i < code.member_count; ++i) {
            code.kind == DDS_TK_ENUM ? expect_enumerator(id, code.members[i])
                                     : expect_member(id, code, code.members[i]);
        }
        EXPECT_EQ(next_[id], parts_[id].size()) << code.name;
    }

  private:
    static unsigned long number(const std::string &hexadecimal) {
        return std::stoul(hexadecimal, nullptr, 16);
    }

    // The next line about a type.
    Fields next(const std::string &id) {
        const std::vector<Fields> &parts = parts_[id];
        return next_[id] < parts.size() ? parts[next_[id]++] : Fields(6);
    }

    void expect_enumerator(const std::string &id, const DDS_TypeCodeMember &enumerator) {
        EXPECT_EQ(next(id),
                  (Fields{"enumerator", id, std::to_string(enumerator.ordinal), enumerator.name}));
    }

    void expect_member(const std::string &id, const DDS_TypeCode &code,
                       const DDS_TypeCodeMember &member) {
        unsigned flags = kDiscard;
        if (member.is_optional) {
            flags |= kOptional;
        }
        if (member.is_key) {
            flags |= kKey;
        }
        if (member.is_key || member.is_must_understand) {
            flags |= kMustUnderstand;
        }
        if (member.is_default_label) {
            flags |= kDefault;
        }
        char text[16];
        std::snprintf(text, sizeof(text), "%x", flags);
        const Fields fields = next(id);
        ASSERT_EQ(fields.size(), 6U);
        EXPECT_EQ(Fields(fields.begin(), fields.end() - 1),
                  (Fields{"member", id, std::to_string(member.id), member.name, text}));
        expect_type_of(*member.type, fields.back());
        if (code.kind != DDS_TK_UNION) {
            return;
        }
        for (DDS_UnsignedLong i = 0; i < member.label_count; ++i) {
            EXPECT_EQ(next(id), (Fields{"case", id, std::to_string(member.id),
                                        std::to_string(member.labels[i])}));
        }
    }

    // Compares a member's type with the tool's text of it.
    void expect_type_of(const DDS_TypeCode &code, const std::string &text) {
        const std::string bound = std::to_string(code.bound);
        switch (code.kind) {
            case DDS_TK_STRUCT:
            case DDS_TK_UNION:
            case DDS_TK_ENUM:
                expect_type(text, code);
                break;
            case DDS_TK_STRING:
                EXPECT_EQ(text, "string<" + bound + ">");
                break;
            case DDS_TK_SEQUENCE: {
                const std::string end = "," + bound + ">";
                if (code.bound > 255) {
                    break;  // the tool spells small ones only
                }
                ASSERT_TRUE(text.starts_with("sequence<") && text.ends_with(end)) << text;
                expect_type_of(*code.content_type, text.substr(9, text.size() - 9 - end.size()));
                break;
            }
            case DDS_TK_ARRAY: {
                const std::string end = "[" + std::to_string(code.dimensions[0]) + "]";
                if (std::any_of(code.dimensions, code.dimensions + code.dimension_count,
                                [](DDS_UnsignedLong dimension) { return dimension > 255; })) {
                    break;
                }
                ASSERT_TRUE(text.ends_with(end)) << text;
                expect_type_of(*code.content_type, text.substr(0, text.size() - end.size()));
                break;
            }
            default:
                EXPECT_EQ(text, primitive_name(code.kind));
                break;
        }
    }

    static std::string primitive_name(DDS_TCKind kind) {
        static const std::map<DDS_TCKind, std::string> names = {
            {DDS_TK_BOOLEAN, "BOOLEAN"}, {DDS_TK_CHAR, "CHAR"},      {DDS_TK_OCTET, "BYTE"},
            {DDS_TK_SHORT, "INT16"},     {DDS_TK_USHORT, "UINT16"},  {DDS_TK_LONG, "INT32"},
            {DDS_TK_ULONG, "UINT32"},    {DDS_TK_LONGLONG, "INT64"}, {DDS_TK_ULONGLONG, "UINT64"},
            {DDS_TK_FLOAT, "FLOAT32"},   {DDS_TK_DOUBLE, "FLOAT64"}};
        return names.at(kind);
    }

    std::map<std::string, Fields> types_;
    std::map<std::string, std::vector<Fields>> parts_;
    std::map<std::string, std::size_t> next_;
    std::set<std::string> expected_;
    int missing_ = 0;
    int minimal_ = 0;
};

std::unique_ptr<ChildProcess> start_tool(int domain, const std::string &prefix,
                                         const std::string &sample_topic = "") {
    std::vector<std::string> command = {support::helper_path("peer_types"), std::to_string(domain),
                                        prefix};
    if (!sample_topic.empty()) {
        command.push_back(sample_topic);
    }
    return std::make_unique<ChildProcess>(command);
}

// "writer topic" to the rest of the endpoint's line, once there are `count`.
std::map<std::string, Fields> read_endpoints(ChildProcess &tool, std::size_t count) {
    std::map<std::string, Fields> endpoints;
    while (endpoints.size() < count) {
        const Fields line = interop::read_until(tool, "endpoint");
        if (line.size() != 5) {
            break;
        }
        endpoints[line[1] + " " + line[2]] = Fields(line.begin() + 3, line.end());
    }
    return endpoints;
}

// The members, as the engine prints those of mutable types.
void expect_members(const std::string &sample, const std::vector<std::string> &members) {
    for (const std::string &member : members) {
        EXPECT_NE(sample.find(member), std::string::npos) << member << " in " << sample;
    }
}

// ---- The logger's types -------------------------------------------------------------------------

TEST(LiveTypeLookup, TheLoggersTypesAreFound) {
    constexpr int kDomain = 164;
    interop::LiveLogger logger(kDomain, 600);
    ASSERT_NE(logger.get(), nullptr);
    const auto tool = start_tool(kDomain, VUR_DL_LOG_TOPIC_NAME);
    const std::map<std::string, Fields> endpoints = read_endpoints(*tool, 4);
    interop::dismiss(*tool);
    ASSERT_EQ(endpoints.size(), 4U);

    Findings findings(tool->lines());
    EXPECT_EQ(findings.missing(), 0);
    EXPECT_EQ(findings.minimal(), 3);
    const std::string administration = "vur/distlog/administration/";
    const struct {
        std::string endpoint;
        std::string type_name;
        const DDS_TypeCode *code;
    } expected[] = {
        {"writer vur/distlog", "com::vur::dl::LogMessage", VUR_DL_LogMessage_get_typecode()},
        {"writer " + administration + "state", "com::vur::dl::admin::State",
         VUR_DL_ADMIN_State_get_typecode()},
        {"writer " + administration + "command_response", "com::vur::dl::admin::CommandResponse",
         VUR_DL_ADMIN_CommandResponse_get_typecode()}};
    for (const auto &[endpoint, type_name, code] : expected) {
        ASSERT_EQ(endpoints.count(endpoint), 1U) << endpoint;
        EXPECT_EQ(endpoints.at(endpoint)[0], type_name);
        findings.expect_type(endpoints.at(endpoint)[1], *code);
    }
    // LogMessage, HostAndAppId; State, StateKind, CategoryAndVerbosity, and three enumerations;
    // CommandResponse, CommandResult.
    EXPECT_EQ(findings.count(), 10U);
    // A type with a mutable union goes by its name.
    EXPECT_EQ(endpoints.at("reader " + administration + "command_request"),
              (Fields{"com::vur::dl::admin::CommandRequest", "none"}));
}

// The tool makes a reader of what it has looked up.
TEST(LiveTypeLookup, MessagesAreDecodedByTheirLookedUpType) {
    constexpr int kDomain = 165;
    interop::LiveLogger logger(kDomain, 600);
    ASSERT_NE(logger.get(), nullptr);
    VUR_DL_DistLogger_logMessageWithLevelCategory(logger.get(), 300, "no oil", "pump");
    const auto tool = start_tool(kDomain, VUR_DL_LOG_TOPIC_NAME, VUR_DL_LOG_TOPIC_NAME);
    const Fields sample = interop::read_until(*tool, "sample");
    interop::dismiss(*tool);
    ASSERT_EQ(sample.size(), 3U);
    expect_members(sample[2], {"m:1,{300}", "m:2,{\"pump\"}", "m:3,{\"no oil\"}"});
}

TEST(LiveTypeLookup, StatesAreDecodedByTheirLookedUpType) {
    constexpr int kDomain = 166;
    const char *const topic = "vur/distlog/administration/state";
    interop::LiveLogger logger(kDomain, 700);
    ASSERT_NE(logger.get(), nullptr);
    const auto tool = start_tool(kDomain, topic, topic);
    const Fields sample = interop::read_until(*tool, [](const Fields &line) {
        return line[0] == "sample" && line.at(2).find(interop::kind()) != std::string::npos;
    });
    interop::dismiss(*tool);
    ASSERT_EQ(sample.size(), 3U);
    expect_members(sample[2],
                   {"m:1,{166}", "m:2,{1}", "m:3,{\"" + interop::kind() + "\"}", "m:4,{700}"});
}

// ---- Every kind of type -------------------------------------------------------------------------

// The types of a participant's topics.
class LookedUp : public ::testing::Test {
  protected:
    static constexpr int kDomain = 167;

    // A writer of a type without records, which never writes.
    void announce(const DDS_TypeCode *code, const std::string &topic_name) {
        KOLT_TypePlugin plugin = support::point_plugin();
        plugin.type_code = code;
        plugin.endpoint_type_name = code->name;
        DDS_Topic *const topic = node_.topic_of(plugin, topic_name);
        ASSERT_NE(topic, nullptr);
        ASSERT_NE(node_.writer({}, topic), nullptr);
    }

    support::Node node_{kDomain};
    interop::TypeKinds kinds_;
};

TEST_F(LookedUp, EveryKindOfTypeIsFound) {
    const std::string prefix = support::own("kinds") + "/";
    const std::map<std::string, const DDS_TypeCode *> codes = {
        {prefix + "everything", kinds_.everything()},
        {prefix + "plain", kinds_.plain()},
        {prefix + "growing", kinds_.growing()},
        {prefix + "top", kinds_.top()},
        {prefix + "deep", kinds_.deep()},
        {prefix + "arrays", kinds_.arrays()}};
    for (const auto &[topic, code] : codes) {
        announce(code, topic);
    }
    const auto tool = start_tool(kDomain, prefix);
    const std::map<std::string, Fields> endpoints = read_endpoints(*tool, codes.size());
    interop::dismiss(*tool);
    Findings findings(tool->lines());
    EXPECT_EQ(findings.missing(), 0);
    for (const auto &[topic, code] : codes) {
        ASSERT_EQ(endpoints.count("writer " + topic), 1U) << topic;
        EXPECT_EQ(endpoints.at("writer " + topic)[0], code->name);
        findings.expect_type(endpoints.at("writer " + topic)[1], *code);
    }
}

// The engine itself knows the mutable union; it is our choice not to announce it (see
// type_object.h). Its compiler and its dynamic types do not know it.
TEST_F(LookedUp, AMutableUnionGoesByItsName) {
    const std::string prefix = support::own("union") + "/";
    KOLT_TypePlugin plugin = support::point_plugin();
    plugin.type_code = support::mutable_request_type();
    plugin.endpoint_type_name = "Test::MutableRequest";
    ASSERT_NE(node_.writer({}, node_.topic_of(plugin, prefix + "request")), nullptr);
    const auto tool = start_tool(kDomain, prefix);
    const std::map<std::string, Fields> endpoints = read_endpoints(*tool, 1);
    interop::dismiss(*tool);
    ASSERT_EQ(endpoints.count("writer " + prefix + "request"), 1U);
    EXPECT_EQ(endpoints.begin()->second, (Fields{"Test::MutableRequest", "none"}));
}

// A participant announces its types anew whenever it is made; nothing is left behind.
TEST_F(LookedUp, TypesComeAndGo) {
    for (int i = 0; i < 20; ++i) {
        support::Node node(kDomain);
        KOLT_TypePlugin plugin = support::point_plugin();
        plugin.type_code = kinds_.everything();
        plugin.endpoint_type_name = "kinds::Everything";
        DDS_Topic *const topic = node.topic_of(plugin, support::own("comes"));
        ASSERT_NE(node.writer({}, topic), nullptr);
        ASSERT_NE(node.reader({}, DDS_Topic_as_topicdescription(topic)), nullptr);
    }
}

}  // namespace
