// SPDX-License-Identifier: Apache-2.0
// The rows, by what they are about. Tables name the element once and then only the texts in it.
#include "behaviour/config/documents_table.h"

namespace documents {
namespace {

using enum Expected;

struct Text {
    const char *text;
    Expected expected;
    const char *value = "";
    const char *message = "";
};

std::string document(const std::string &content) {
    return "<dds>\n" + content + "\n</dds>\n";
}

// A document with this in the logger's element, from line 4 on.
std::string logger(const std::string &content) {
    return document("<distributed_logger>\n<enabled>true</enabled>\n" + content +
                    "\n</distributed_logger>");
}

std::string profile(const std::string &content) {
    return document("<qos_library name=\"L\">\n<qos_profile name=\"P\" is_default_qos=\"true\">\n" +
                    content + "\n</qos_profile>\n</qos_library>");
}

std::string writer(const std::string &content) {
    return profile("<datawriter_qos>\n" + content + "\n</datawriter_qos>");
}

// Appends a row for each text in the elements that `path` names ("a/b" is <a><b>), outermost first.
void append(std::vector<Row> &rows, std::string (*place)(const std::string &),
            const std::string &path, const std::string &subject, const std::vector<Text> &texts) {
    for (const Text &text : texts) {
        std::string content = text.text;
        std::string rest = path;
        while (!rest.empty()) {
            const std::size_t slash = rest.rfind('/');
            const std::string tag = rest.substr(slash == std::string::npos ? 0 : slash + 1);
            content = "<" + tag + ">" + content + "</" + tag + ">";
            rest.resize(slash == std::string::npos ? 0 : slash);
        }
        rows.push_back({place(content), text.expected, *text.value == '\0' ? "" : subject,
                        text.value, text.message});
    }
}

void append(std::vector<Row> &rows, const std::vector<Row> &more) {
    rows.insert(rows.end(), more.begin(), more.end());
}

// ---- Values of the logger -----------------------------------------------------------------------

void append_queue_sizes(std::vector<Row> &rows) {
    append(rows, logger, "queue_size", "queue_size",
           {{"1", kFine, "1"},
            {"2147483647", kFine, "2147483647"},
            {" 5 ", kFine, "5"},
            {"+5", kFine, "5"},
            {"0x10", kFine, "16"},
            {"0x7fffffff", kFine, "2147483647"},
            {"010", kFine, "8"},
            {"017777777777", kFine, "2147483647"},
            {"", kRefused},
            {"few", kRefused},
            {"0", kRefused},
            {"-0", kRefused},
            {"0x0", kRefused},
            {"00", kRefused},
            {"-1", kRefused},
            {"-2147483648", kRefused},
            {"2147483648", kRefused},
            {"4294967295", kRefused},
            {"4294967296", kRefused},
            {"0x80000000", kRefused},
            {"0xFFFFFFFF", kRefused},
            {"0x100000000", kRefused},
            {"0x180000000", kRefused},
            {"020000000000", kRefused},
            {"037777777777", kRefused},
            {"040000000000", kRefused},
            {"9223372036854775808", kRefused},
            {"0x8000000000000001", kRefused},
            {"01000000000000000000001", kRefused},
            {"-9223372036854775809", kRefused},
            {"4294967297", kCut, "1"},
            {"4294967301", kCut, "5", "\"4294967301\" is read as 5"},
            {"0x100000005", kCut, "5"},
            {"040000000005", kCut, "5"},
            {"050000000005", kCut, "1073741829"},
            {"-2147483649", kCut, "2147483647"},
            {"-4294967291", kCut, "5"},
            {"-0xfffffffb", kCut, "5"},
            {"-037777777773", kCut, "5"},
            // No schema computes with numbers of this size.
            {"6442450944", kRefusedButValid},
            {"9223372036854775807", kRefusedButValid},
            {"-4294967296", kRefusedButValid},
            {"1000 messages", kUseless, "1000", "\"1000 messages\" is read as 1000"},
            {"5.7", kUseless, "5"},
            {"0x10g", kUseless, "16"},
            {"08", kRefused},
            {"018", kUseless, "1"}});
}

void append_filter_levels(std::vector<Row> &rows) {
    append(rows, logger, "filter_level", "filter_level",
           {{"TRACE", kFine, "800"},
            {"SILENT", kFine, "0"},
            {"650", kFine, "650"},
            {" +650 ", kFine, "650"},
            {"0", kFine, "0"},
            {"-0", kFine, "0"},
            {"010", kFine, "10"},
            {"2147483647", kFine, "2147483647"},
            {"", kRefused},
            {"trace", kRefused},
            {" TRACE", kRefused},
            {"-1", kRefused},
            {"2147483648", kRefused},
            {"4294967295", kRefused},
            {"4294967296", kCut, "0"},
            {"4294967301", kCut, "5"},
            {"-4294967291", kCut, "5"},
            {"99999999999999999999", kRefused},
            {"6442450944", kRefusedButValid},
            {"0x10", kUseless, "0"},
            {"0x0", kUseless, "0"},
            {"650 or so", kUseless, "650"}});
}

void append_thread_numbers(std::vector<Row> &rows) {
    append(rows, logger, "thread/priority", "thread/priority",
           {{"10", kFine, "10"},
            {"-5", kFine, "-5"},
            {"+5", kFine, "5"},
            {"010", kFine, "10"},
            {"0", kFine, "0"},
            {"2147483647", kFine, "2147483647"},
            {"-2147483648", kFine, "-2147483648"},
            {"MAX_PRIORITY", kFine, "null"},
            {"max_Priority", kFine, "null"},
            {"dds_thread_priority_below_normal", kFine, "null"},
            {"thread_priority_below", kRefused},
            {" MAX_PRIORITY", kRefused},
            {"", kRefused},
            {"high", kRefused},
            {"2147483648", kCut, "-2147483648"},
            {"4294967295", kCut, "-1"},
            {"4294967301", kCut, "5"},
            {"99999999999999999999", kCut, "-1"},
            {"0x10", kUseless, "0"},
            {"5 or so", kUseless, "5"}});
    append(rows, logger, "thread/stack_size", "thread/stack_size",
           {{"0", kFine, "0"},
            {"-0", kFine, "0"},
            {"0x400", kFine, "1024"},
            {"2147483647", kFine, "2147483647"},
            {"THREAD_STACK_SIZE_DEFAULT", kFine, "null"},
            {"dds_Thread_Stack_Size_Default", kFine, "null"},
            {"", kRefused},
            {"-1", kRefused},
            {"2147483648", kRefused},
            {"0x80000000", kRefused},
            {"4294967295", kRefused},
            {"9223372036854775808", kRefused},
            {"4294967296", kCut, "0"},
            {"0x100000000", kCut, "0"},
            {"4294967301", kCut, "5"},
            {"6442450944", kRefusedButValid},
            {"64 KiB", kUseless, "64"},
            {"08", kUseless, "0"}});
    append(rows, logger, "thread/cpu_list/element", "thread/cpu_list",
           {{"0", kFine, "[0]"},
            {"0x2", kFine, "[2]"},
            {"2147483647", kFine, "[2147483647]"},
            {"", kRefused},
            {"x", kRefused},
            {"-1", kRefused},
            {"2147483648", kRefused},
            {"4294967297", kCut, "[1]"},
            {"1,2", kUseless, "[1]"}});
}

void append_thread_names(std::vector<Row> &rows) {
    append(rows, logger, "thread/mask", "thread/mask",
           {{"", kFine, "[]"},
            {" ", kFine, "[]"},
            {"STDIO", kFine, "[\"STDIO\"]"},
            {" stdio | Floating_Point ", kFine, "[\"FLOATING_POINT\",\"STDIO\"]"},
            {"mask_default|thread_settings_kind_mask_default", kFine, "[]"},
            {"dds_thread_settings_realtime_priority", kFine, "[\"REALTIME_PRIORITY\"]"},
            {"DDS_STDIO", kRefused},
            {"STDIO|", kRefused},
            {"STDIO||PRIORITY_ENFORCE", kRefused},
            {"STDIO PRIORITY_ENFORCE", kRefused}});
    append(rows, logger, "thread/cpu_rotation", "thread/cpu_rotation",
           {{"CPU_RR_ROTATION", kFine, "\"CPU_RR_ROTATION\""},
            {"thread_settings_cpu_rr_rotation", kFine, "\"CPU_RR_ROTATION\""},
            {" CPU_RR_ROTATION", kRefused},
            {"", kRefused},
            {"1", kRefused}});
}

void append_booleans(std::vector<Row> &rows) {
    append(rows, logger, "echo_to_stdout", "echo_to_stdout",
           {{"true", kFine, "true"},
            {"TRUE", kFine, "true"},
            {"False", kFine, "false"},
            {" 1 ", kFine, "true"},
            {"0", kFine, "false"},
            {"", kRefused},
            {"yes", kRefused},
            {"on", kRefused},
            {"2", kRefused},
            {"true false", kRefused}});
    append(rows, writer, "writer_data_lifecycle/autodispose_unregistered_instances",
           "writer_data_lifecycle.autodispose_unregistered_instances",
           {{"true", kFine, "true"},
            {" 0 ", kFine, "false"},
            {"1", kFine, "true"},
            {"false", kFine, "false"},
            {"TRUE", kRefused},
            {"", kRefused},
            {"yes", kRefused},
            {"2", kRefused}});
}

// ---- Values of policies: out of 32 bits is an error, nothing is cut -------------------------------

void append_policy_numbers(std::vector<Row> &rows) {
    append(rows, writer, "history/depth", "history.depth",
           {{"1", kFine, "1"},
            {" +5 ", kFine, "5"},
            {"0x10", kFine, "16"},
            {"010", kFine, "10"},
            {"2147483647", kFine, "2147483647"},
            {"0x7FFFFFFF", kFine, "2147483647"},
            {"0", kRefused},
            {"-1", kRefused},
            {"LENGTH_UNLIMITED", kRefused},
            {"2147483648", kRefused},
            {"0x80000000", kRefused},
            {"4294967295", kRefused},
            {"4294967296", kRefused},
            {"4294967301", kRefused},
            {"0x100000005", kRefused},
            {"", kRefused},
            {"few", kRefused},
            {"5 or so", kRefused}});
    append(rows, writer, "resource_limits/max_instances", "resource_limits.max_instances",
           {{"1", kFine, "1"},
            {"0x10", kFine, "16"},
            {"2147483647", kFine, "2147483647"},
            {"LENGTH_UNLIMITED", kFine, "\"LENGTH_UNLIMITED\""},
            {"-1", kFine, "\"LENGTH_UNLIMITED\""},
            {"-0x1", kFine, "\"LENGTH_UNLIMITED\""},
            {"0", kRefused},
            {"-2", kRefused},
            {"length_unlimited", kRefused},
            {"2147483648", kRefused},
            {"0xFFFFFFFF", kRefused},
            {"4294967295", kRefused},
            {"4294967297", kRefused},
            {"", kRefused}});
    append(rows, writer, "resource_limits/max_samples", "resource_limits.max_samples",
           {{"5000", kFine, "5000"}, {"2147483648", kRefused}, {"4294967296", kRefused}});
    append(
        rows, writer, "durability_service/history_depth", "durability_service.history_depth",
        {{"5", kFine, "5"}, {"0", kRefused}, {"2147483648", kRefused}, {"0x80000000", kRefused}});
    append(rows, writer, "ownership_strength/value", "ownership_strength.value",
           {{"0", kFine, "0"},
            {"2147483647", kFine, "2147483647"},
            {"-2147483648", kFine, "-2147483648"},
            {"-0x80000000", kFine, "-2147483648"},
            {"-0x10", kFine, "-16"},
            {"2147483648", kRefused},
            {"0x80000000", kRefused},
            {"-2147483649", kRefused},
            {"-0x80000001", kRefused},
            {"4294967296", kRefused},
            {"", kRefused},
            {"text", kRefused}});
    append(rows, writer, "user_data/value/element", "user_data.value",
           {{"0", kFine, "[0]"},
            {"-0", kFine, "[0]"},
            {"255", kFine, "[255]"},
            {"0xff", kFine, "[255]"},
            {"0x00ff", kFine, "[255]"},
            {"256", kRefused},
            {"0x100", kRefused},
            {"-1", kRefused},
            {"", kRefused}});
}

void append_durations(std::vector<Row> &rows) {
    append(rows, writer, "lifespan/duration", "lifespan.duration",
           {{"<sec>1</sec>", kFine, "\"1 s\""},
            {"<sec>0x10</sec>", kFine, "\"16 s\""},
            {"<sec> +2 </sec><nanosec>500000000</nanosec>", kFine, "\"2.5 s\""},
            {"<sec>2147483646</sec>", kFine, "\"2147483646 s\""},
            {"<sec>2147483647</sec>", kFine, "\"infinite\""},
            {"<sec>DURATION_INFINITE_SEC</sec><nanosec>DURATION_INFINITE_NSEC</nanosec>", kFine,
             "\"infinite\""},
            {"<sec>DURATION_INFINITY</sec>", kFine, "\"infinite\""},
            {"<nanosec>999999999</nanosec>", kFine, "\"0.999999999 s\""},
            {"<nanosec>0x3B9AC9FF</nanosec>", kFine, "\"0.999999999 s\""},
            {"<sec>-1</sec>", kRefused},
            {"<sec>2147483648</sec>", kRefused},
            {"<sec>4294967296</sec>", kRefused},
            {"<sec>4294967301</sec>", kRefused},
            {"<sec>0x80000000</sec>", kRefused},
            {"<sec>1.5</sec>", kRefused},
            {"<sec/>", kRefused},
            {"<nanosec>1000000000</nanosec>", kRefused},
            {"<nanosec>0x3b9aca00</nanosec>", kRefused},
            {"<nanosec>4294967295</nanosec>", kRefused},
            {"<nanosec>-1</nanosec>", kRefused},
            {"<sec>DURATION_INFINITE_NSEC</sec>", kRefused},
            {"<msec>5</msec>", kRefused},
            {"5", kRefused},
            // No schema holds one element against another.
            {"<nanosec>DURATION_INFINITE_NSEC</nanosec>", kRefusedButValid},
            {"<sec>1</sec><sec>2</sec>", kUseless, "\"2 s\"", "<sec> is given again"}});
}

// ---- Attributes ---------------------------------------------------------------------------------

void append_attributes(std::vector<Row> &rows) {
    const auto dds = [](const std::string &attributes) { return "<dds " + attributes + "/>\n"; };
    const std::string xsi = "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" ";
    const std::string location = "xsi:schemaLocation=\"urn:x x.xsd\"";
    append(rows,
           {{dds(xsi + "xsi:noNamespaceSchemaLocation=\"distlog.xsd\""), kFine, "", ""},
            {dds(xsi + location), kFine, "", ""},
            {dds("xmlns:x=\"urn:x\""), kFine, "", ""},
            {dds("version=\"1.0\""), kFine, "", ""},
            // A schema is for documents of one namespace, and the library does not look at it.
            {dds("xmlns=\"http://www.omg.org/ddsxml\""), kFineButInvalid, "", ""},
            {dds("verson=\"1.0\""), kUseless, "", "",
             "unknown attribute \"verson\" of <dds> has no effect; expected: version"},
            {dds(xsi + "xsi:type=\"x\""), kUseless, "", "", "unknown attribute \"xsi:type\""}});
    const auto logger_with = [](const std::string &attributes) {
        return document("<distributed_logger " + attributes + "/>");
    };
    append(rows,
           {{logger_with(xsi + location), kFine, "", ""},
            {logger_with("name=\"x\""), kUseless, "", "", "unknown attribute \"name\""},
            {logger_with(xsi + "name=\"x\""), kUseless, "", "", "unknown attribute \"name\""},
            {logger_with("xmlns=\"urn:x\""), kUseless, "", ""},
            {logger("<queue_size unit=\"1\">5</queue_size>"), kUseless, "queue_size", "5"},
            {logger("<queue_size xmlns:x=\"urn:x\">5</queue_size>"), kFine, "queue_size", "5"},
            {logger("<thread kind=\"1\"/>"), kUseless, "", ""}});
    const auto library_with = [](const std::string &attributes) {
        return document("<qos_library name=\"L\" " + attributes + "/>");
    };
    append(rows, {{library_with(xsi + location), kFine, "", ""},
                  {library_with("xmlns=\"urn:x\""), kRefused, "", ""},
                  {library_with("version=\"1\""), kRefused, "", ""},
                  {profile("<datawriter_qos name=\"x\" topic_filter=\"y\"/>"), kFine, "", ""},
                  {profile("<datawriter_qos kind=\"x\"/>"), kRefused, "", ""},
                  {writer("<history xmlns:x=\"urn:x\"><depth>5</depth></history>"), kFine,
                   "history.depth", "5"},
                  {writer("<history kind=\"x\"/>"), kRefused, "", ""},
                  {writer("<history><depth unit=\"x\">5</depth></history>"), kRefused, "", ""}});
}

// ---- Elements in unknown places -------------------------------------------------------------------

void append_unknown_elements(std::vector<Row> &rows) {
    const std::string holds =
        " does not belong there, but in <distributed_logger>; it is in force "
        "all the same";
    append(
        rows,
        {{logger("<a>5</a>"), kUseless, "queue_size", "128",
          "unknown element <a> in <distributed_logger> has no effect; expected: enabled"},
         {logger("<a><b/></a>"), kUseless, "queue_size", "128"},
         {logger("<a>\n<queue_size>5</queue_size>\n</a>"), kUseless, "queue_size", "5",
          "element <queue_size> in <a>" + holds},
         {logger("<a>\n<queue_size>5</queue_size>\n</a>"), kUseless, "queue_size", "5",
          "unknown element <a> in <distributed_logger> has no effect of its own, unlike elements "
          "in it; expected: enabled"},
         {logger("<a><b><enabled>false</enabled></b></a>"), kUseless, "enabled", "false",
          "element <enabled> in <b>" + holds},
         {logger("<a><thread><priority>5</priority></thread></a>"), kUseless, "thread/priority",
          "5", "element <thread> in <a>" + holds},
         {logger("<thread><a><priority>5</priority></a></thread>"), kUseless, "thread/priority",
          "5", "element <priority> in <a> does not belong there, but in <thread>; it is in force"},
         {logger("<thread><cpu_list><a><element>5</element></a></cpu_list></thread>"), kUseless,
          "thread/cpu_list", "[5]",
          "element <element> in <a> does not belong there, but in <cpu_list>; it is in force"},
         {logger("<distributed_logger><queue_size>5</queue_size></distributed_logger>"), kUseless,
          "queue_size", "5",
          "unknown element <distributed_logger> in <distributed_logger> has no effect of its own"},
         {logger("<a><queue_size>0</queue_size></a>"), kRefused, "", "",
          "wrong value of <queue_size>"},
         {logger("<a><priority>x</priority></a>"), kUseless, "thread/priority", "null"},
         {logger("<priority>5</priority>"), kUseless, "thread/priority", "null",
          "element <priority> in <distributed_logger> does not belong there, but in <thread>, and "
          "has no effect"},
         {logger("<priority>x</priority>"), kUseless, "thread/priority", "null"},
         {logger("<thread><element>1</element></thread>"), kUseless, "thread/cpu_list", "[]",
          "element <element> in <thread> does not belong there, but in <cpu_list>, and has no "
          "effect"},
         {logger("<thread><queue_size>5</queue_size></thread>"), kUseless, "queue_size", "5",
          "element <queue_size> in <thread>" + holds},
         {logger("<thread><queue_size>5</queue_size>\n<priority>7</priority></thread>"), kUseless,
          "thread/priority", "null",
          "element <priority> in <thread> has no effect because of <queue_size> in line 4, which "
          "does not belong there"},
         {logger("<thread><thread/><priority>7</priority></thread>"), kUseless, "thread/priority",
          "null", "because of <thread> in line 4"},
         {logger("<thread><queue_size>5</queue_size>\n<cpu_list><element>1</element></cpu_list>"
                 "</thread>"),
          kUseless, "thread/cpu_list", "[]",
          "element <cpu_list> in <thread> has no effect because of <queue_size>"},
         {logger("<echo_to_stdout>false<queue_size>5</queue_size></echo_to_stdout>"), kUseless,
          "queue_size", "5", "element <queue_size> in <echo_to_stdout>" + holds},
         {logger("<echo_to_stdout>false<queue_size>5</queue_size></echo_to_stdout>"), kUseless,
          "echo_to_stdout", "true",
          "element <echo_to_stdout> in <distributed_logger> has no effect "
          "because of <queue_size> in line 4"},
         {logger("<echo_to_stdout>x<queue_size>5</queue_size></echo_to_stdout>"), kUseless,
          "echo_to_stdout", "true"},
         {logger("<echo_to_stdout>false<a>5</a></echo_to_stdout>"), kUseless, "echo_to_stdout",
          "false", "element <a> in <echo_to_stdout> has no effect; expected: a value"},
         {logger("<queue_size>5</queue_size><queue_size>6</queue_size>"), kUselessButValid,
          "queue_size", "6", "<queue_size> is given again; the last one holds"},
         {logger("<queue_size>5</queue_size><a><queue_size>6</queue_size></a>"), kUseless,
          "queue_size", "6", "<queue_size> is given again; the last one holds"},
         {logger("<thread><cpu_list><element>1</element></cpu_list></thread>"
                 "<thread><cpu_list><element>2</element></cpu_list></thread>"),
          kFine, "thread/cpu_list", "[1,2]"},
         {logger("text"), kUseless, "", ""},
         {logger("<thread>5</thread>"), kUseless, "", ""}});
}

void append_root_elements(std::vector<Row> &rows) {
    const std::string element =
        "<distributed_logger><queue_size>5</queue_size></distributed_logger>";
    append(
        rows,
        {{document("text"), kUseless, "", ""},
         {document("<types><x y=\"z\">w</x></types>"), kFine, "", ""},
         {document("<domain_library name=\"x\"/>" + element), kFine, "queue_size", "5"},
         {document("<types>" + element + "</types>"), kFine, "queue_size", "5"},
         {document("<a/>"), kUseless, "", "",
          "unknown element <a> in <dds> has no effect; expected: distributed_logger, "
          "qos_library"},
         {document("<a><b>\n" + element + "</b></a>"), kUseless, "queue_size", "5",
          "unknown element <a> in <dds> has no effect of its own, unlike <distributed_logger> in "
          "line 3; expected: distributed_logger, qos_library"},
         {document(element + "<distributed_logger/>"), kUseless, "queue_size", "5"},
         {document("<qos_library name=\"L\">" + element + "</qos_library>"), kRefused, "", ""}});
}

void append_policy_elements(std::vector<Row> &rows) {
    append(
        rows,
        {{writer("<history><depth>5</depth></history><history><kind>KEEP_LAST_HISTORY_QOS</kind>"
                 "</history>"),
          kFine, "history.depth", "5"},
         {writer("<history><depth>5</depth><depth>6</depth></history>"), kUseless, "history.depth",
          "6", "<depth> is given again in <history>; expected: once"},
         {writer("<user_data><value><element>1</element><element>2</element></value></user_data>"),
          kFine, "user_data.value", "[1,2]"},
         {writer("<user_data><value>AQ==</value><value>Ag==</value></user_data>"), kUseless,
          "user_data.value", "[2]"},
         {writer("<history>5</history>"), kRefused, "", ""},
         {writer("text"), kRefused, "", ""},
         {profile("text"), kUseless, "", "", "text in <qos_profile> has no effect: \"text\""},
         {document("<qos_library name=\"L\">text</qos_library>"), kUseless, "", "",
          "text in <qos_library> has no effect: \"text\""},
         {writer("<histroy/>"), kRefused, "", ""},
         {writer("<user_data><value>AQID</value></user_data>"), kFine, "user_data.value",
          "[1,2,3]"},
         {writer("<user_data><value>A</value></user_data>"), kRefusedButValid, "", ""},
         {profile("<datawriter_qos topic_filter=\"" + std::string(1024, 'a') + "\"/>"), kFine, "",
          ""},
         {profile("<datawriter_qos topic_filter=\"" + std::string(1025, 'a') + "\"/>"), kRefused,
          "", ""},
         {document("<qos_library name=\"L\"><qos_profile name=\"P\" base_name=\"Q\"/>"
                   "</qos_library>"),
          kRefusedButValid, "", ""}});
}

}  // namespace

std::vector<Row> rows() {
    std::vector<Row> rows;
    append_queue_sizes(rows);
    append_filter_levels(rows);
    append_thread_numbers(rows);
    append_thread_names(rows);
    append_booleans(rows);
    append_policy_numbers(rows);
    append_durations(rows);
    append_attributes(rows);
    append_unknown_elements(rows);
    append_root_elements(rows);
    append_policy_elements(rows);
    return rows;
}

std::string to_string(Expected expected) {
    constexpr const char *kNames[] = {
        "kFine",          "kCut", "kUseless", "kRefused", "kUselessButValid", "kRefusedButValid",
        "kFineButInvalid"};
    return kNames[static_cast<int>(expected)];
}

}  // namespace documents
