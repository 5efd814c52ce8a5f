// SPDX-License-Identifier: Apache-2.0
// Documents made to hurt: too large in every way, too deep, of entities, in encodings that are not
// what they say, cut short, and files that are none. Each is refused with its line and with little
// memory, measured in a process of its own.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <kolt/xml.h>
#include <vur_dl/XMLConfig.h>

#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "support/config/xml_config.h"
#include "support/config/xml_document.h"
#include "support/platform/process.h"
#include "support/platform/work_folder.h"

namespace {

using support::parse;
using support::ParserPtr;

// The most memory that a parse may need: that of a tree of as many elements as are allowed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long kMaxGrowthInKilobytes = 131072;
#else
constexpr long kMaxGrowthInKilobytes = 40960;
#endif

// ---- A parse in a process of its own ------------------------------------------------------------

struct Outcome {
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    DDS_UnsignedLong line = 0;
    bool has_root = false;
    long growth = 0;  // of the memory in use, at its peak, in kilobytes
    char message[256] = "";
};

// The most memory that this process has had in use, in kilobytes.
long peak() {
    std::ifstream status("/proc/self/status");
    std::string name;
    long kilobytes = 0;
    while (status >> name) {
        if (name == "VmHWM:" && status >> kilobytes) {
            return kilobytes;
        }
    }
    return -1;
}

// Parses in a child, which must end in good order.
Outcome in_child(const std::function<DDS_ReturnCode_t(DDS_XMLParser *)> &parse_document) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    malloc_trim(0);  // so that the child finds no memory in reserve
    const pid_t child = fork();
    EXPECT_GE(child, 0);
    if (child == 0) {
        const ParserPtr parser(DDS_XMLParser_new());
        Outcome outcome;
        const long before = peak();
        outcome.code = parse_document(parser.get());
        outcome.growth = peak() - before;
        outcome.line = DDS_XMLParser_get_error_line(parser.get());
        outcome.has_root = DDS_XMLParser_get_root(parser.get()) != nullptr;
        std::snprintf(outcome.message, sizeof(outcome.message), "%s",
                      DDS_XMLParser_get_error_message(parser.get()));
        const bool sent = write(ends[1], &outcome, sizeof(outcome)) == sizeof(outcome);
        _exit(sent ? 0 : 1);
    }
    close(ends[1]);
    Outcome outcome;
    const bool received = read(ends[0], &outcome, sizeof(outcome)) == sizeof(outcome);
    close(ends[0]);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(received && WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    return outcome;
}

// ---- Files --------------------------------------------------------------------------------------

class XmlHostile : public testing::Test {
  protected:
    void write(const std::string &content) const {
        std::ofstream(path_, std::ios::binary) << content;
    }
    // `head`, as many times `unit` as are `size` bytes, `tail`.
    void write_large(const std::string &head, const std::string &unit, const std::string &tail,
                     std::size_t size) const {
        std::string block;
        while (block.size() < 65536) {
            block += unit;
        }
        std::ofstream file(path_, std::ios::binary);
        file << head;
        for (std::size_t written = 0; written < size; written += block.size()) {
            file << block;
        }
        file << tail;
        ASSERT_TRUE(file.flush().good());
    }

    const support::WorkFolder folder_;
    const std::string path_ = folder_.path("document.xml");
};

// A file as a text in memory, of which only what is read is loaded.
class Mapped {
  public:
    explicit Mapped(const std::string &path) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        EXPECT_GE(file, 0);
        struct stat status = {};
        EXPECT_EQ(fstat(file, &status), 0);
        size_ = static_cast<std::size_t>(status.st_size);
        text_ = mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file, 0);
        EXPECT_NE(text_, MAP_FAILED);
        close(file);
    }
    ~Mapped() { munmap(text_, size_); }
    Mapped(const Mapped &) = delete;
    Mapped &operator=(const Mapped &) = delete;

    const char *text() const { return static_cast<const char *>(text_); }
    std::size_t size() const { return size_; }

  private:
    void *text_ = nullptr;
    std::size_t size_ = 0;
};

void expect_refusal(const Outcome &outcome, const std::string &message, DDS_UnsignedLong line) {
    EXPECT_EQ(outcome.code, DDS_RETCODE_ERROR);
    EXPECT_FALSE(outcome.has_root);
    EXPECT_NE(std::string(outcome.message).find(message), std::string::npos) << outcome.message;
    EXPECT_EQ(outcome.line, line);
    EXPECT_LT(outcome.growth, kMaxGrowthInKilobytes);
}

// ---- Large --------------------------------------------------------------------------------------

struct LargeDocument {
    const char *name;
    std::string head;
    std::string unit;
    std::string tail;
    std::string message;
    DDS_UnsignedLong line;
};

class XmlLarge : public XmlHostile, public testing::WithParamInterface<LargeDocument> {};

// 100 MB are refused after what is allowed has been read, from a file and from a text alike.
TEST_P(XmlLarge, IsRefusedWithItsLineAndLittleMemory) {
    constexpr std::size_t kSize = 100000000;
    const LargeDocument &document = GetParam();
    write_large(document.head, document.unit, document.tail, kSize);
    const Mapped mapped(path_);
    ASSERT_GE(mapped.size(), kSize);
    {
        SCOPED_TRACE("file");
        const Outcome outcome = in_child(
            [&](DDS_XMLParser *parser) { return DDS_XMLParser_parse_file(parser, path_.c_str()); });
        expect_refusal(outcome, document.message, document.line);
    }
    {
        SCOPED_TRACE("text");
        const Outcome outcome = in_child([&](DDS_XMLParser *parser) {
            return DDS_XMLParser_parse_string(parser, mapped.text(),
                                              static_cast<DDS_LongLong>(mapped.size()), nullptr);
        });
        expect_refusal(outcome, document.message, document.line);
    }
}

constexpr const char *kTooLarge = "the document is larger than 4194304 bytes";

INSTANTIATE_TEST_SUITE_P(
    , XmlLarge,
    testing::Values(LargeDocument{"Elements", "<dds>\n", "<a>x</a>\n", "</dds>",
                                  "the document has more than 100000 elements", 100001},
                    LargeDocument{"ElementsOfALogger", "<dds>\n<distributed_logger>\n",
                                  "<enabled>1</enabled>", "</distributed_logger></dds>",
                                  "the document has more than 100000 elements", 3},
                    LargeDocument{"Text", "<dds>\n\n<a>", "x", "</a></dds>",
                                  "the text of <a> is longer than 1048576 bytes", 3},
                    LargeDocument{"CharacterData", "<dds>\n<a><![CDATA[", "]", "]]></a></dds>",
                                  "the text of <a> is longer than 1048576 bytes", 2},
                    LargeDocument{"TextInPieces", "<dds>\n<a>", "xxxxxxxx<!---->", "</a></dds>",
                                  "the text of <a> is longer than 1048576 bytes", 2},
                    LargeDocument{"References", "<dds>\n<a>", "&#x20AC;", "</a></dds>",
                                  "the text of <a> is longer than 1048576 bytes", 2},
                    LargeDocument{"Attribute", "<dds>\n\n<a b=\"", "x", "\"/></dds>", kTooLarge, 3},
                    LargeDocument{"Attributes", "<dds>\n<a", " b=\"\"", "/></dds>", kTooLarge, 2},
                    LargeDocument{"TagName", "<dds>\n<", "a", "/></dds>", kTooLarge, 2},
                    LargeDocument{"Comment", "<dds>\n<!--", "c", "--></dds>", kTooLarge, 2},
                    LargeDocument{"Instruction", "<dds>\n<?a ", "i", "?></dds>", kTooLarge, 2},
                    LargeDocument{"Declaration", "<!DOCTYPE dds SYSTEM \"", "u", "\"><dds/>",
                                  kTooLarge, 1}),
    [](const auto &document) { return std::string(document.param.name); });

// The profiles' own ways in: as a file, and as fragments of the factory's QoS.
TEST_F(XmlHostile, LargeProfilesAreRefused) {
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    write_large("<dds>\n<qos_library name=\"L\">\n", "<qos_profile name=\"", "</qos_library></dds>",
                100000000);
    const Outcome file = in_child([&](DDS_XMLParser *) {
        return KOLT_DomainParticipantFactory_add_profiles(factory, path_.c_str());
    });
    EXPECT_EQ(file.code, DDS_RETCODE_ERROR);
    EXPECT_LT(file.growth, kMaxGrowthInKilobytes);

    std::vector<std::string> fragments(100, std::string(1000000, ' '));
    fragments[0] = "<dds>";
    std::vector<char *> pointers;
    pointers.reserve(fragments.size());
    for (std::string &fragment : fragments) {
        pointers.push_back(fragment.data());
    }
    DDS_DomainParticipantFactoryQos qos;
    ASSERT_EQ(DDS_DomainParticipantFactoryQos_initialize(&qos), DDS_RETCODE_OK);
    ASSERT_TRUE(DDS_StringSeq_from_array(&qos.profile.string_profile, pointers.data(),
                                         static_cast<DDS_Long>(pointers.size())));
    ASSERT_EQ(DDS_DomainParticipantFactory_set_qos(factory, &qos), DDS_RETCODE_OK);
    DDS_DomainParticipantFactoryQos_finalize(&qos);
    const Outcome text = in_child(
        [&](DDS_XMLParser *) { return DDS_DomainParticipantFactory_load_profiles(factory); });
    EXPECT_EQ(text.code, DDS_RETCODE_ERROR);
    EXPECT_LT(text.growth, kMaxGrowthInKilobytes);
}

TEST_F(XmlHostile, AMillionLevelsAreRefused) {
    constexpr std::size_t kLevels = 1000000;
    for (const char *head : {"<dds>\n", "<dds>\n<distributed_logger>"}) {
        write_large(head, "<a>", "", 3 * kLevels);
        const Outcome outcome = in_child(
            [&](DDS_XMLParser *parser) { return DDS_XMLParser_parse_file(parser, path_.c_str()); });
        expect_refusal(outcome, "elements are nested more than 64 deep", 2);
    }
}

// ---- Entities -----------------------------------------------------------------------------------

TEST_F(XmlHostile, EntitiesAreNeverExpandedNorFetched) {
    constexpr const char *kRefused =
        "document type declarations with content (entities, attribute defaults) are not allowed";
    std::string laughs = "<?xml version=\"1.0\"?>\n<!DOCTYPE dds [\n<!ENTITY l0 \"lol\">\n";
    for (int level = 1; level <= 9; ++level) {
        laughs += "<!ENTITY l" + std::to_string(level) + " \"";
        for (int i = 0; i < 10; ++i) {
            laughs += "&l" + std::to_string(level - 1) + ";";
        }
        laughs += "\">\n";
    }
    laughs += "]>\n<dds>&l9;</dds>";
    std::string quadratic =
        "<!DOCTYPE dds [<!ENTITY a \"" + std::string(100000, 'a') + "\">]><dds>";
    for (int i = 0; i < 100000; ++i) {
        quadratic += "&a;";
    }
    quadratic += "</dds>";
    // A file of the caller that a document would have read on its behalf.
    write("not to be read");
    const std::string local = "file://" + path_;
    struct Row {
        std::string text;
        std::string message;
        DDS_UnsignedLong line;
    };
    const Row rows[] = {
        {laughs, kRefused, 2},
        {quadratic, kRefused, 1},
        {"<!DOCTYPE dds [\n<!ENTITY x SYSTEM \"" + local + "\">]>\n<dds>&x;</dds>", kRefused, 1},
        {"<!DOCTYPE dds [<!ENTITY % x SYSTEM \"" + local + "\"> %x;]>\n<dds/>", kRefused, 1},
        {"<!DOCTYPE dds [<!ENTITY x PUBLIC \"-//X\" \"http://localhost/x\">]>\n<dds>&x;</dds>",
         kRefused, 1},
        {"<!DOCTYPE dds SYSTEM \"" + local + "\">\n<dds>\n&x;</dds>", "undeclared entity \"&x;\"",
         3},
        {"<dds>\n<a b=\"&x;\"/></dds>", "undefined entity", 2},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.text.substr(0, 100));
        const Outcome outcome = in_child([&](DDS_XMLParser *parser) {
            return DDS_XMLParser_parse_string(parser, row.text.data(),
                                              static_cast<DDS_LongLong>(row.text.size()), nullptr);
        });
        expect_refusal(outcome, row.message, row.line);
    }
}

// ---- Encodings ----------------------------------------------------------------------------------

std::string utf16(const std::string &ascii, bool big_endian, bool mark) {
    std::string result = mark ? (big_endian ? "\xFE\xFF" : "\xFF\xFE") : "";
    for (const char character : ascii) {
        result += big_endian ? std::string{'\0', character} : std::string{character, '\0'};
    }
    return result;
}

std::string declared(const std::string &encoding) {
    return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>";
}

TEST_F(XmlHostile, EncodingsThatAreNotWhatTheySayAreRefused) {
    const std::string document = "\n<dds/>";
    std::vector<std::string> texts;
    for (const char *name : {"EBCDIC-37", "UTF-7", "UTF-32", "windows-1252", "Shift_JIS", "x"}) {
        texts.push_back(declared(name) + document);
    }
    texts.push_back(declared(std::string(100000, 'e')) + document);
    texts.push_back(declared("") + document);
    texts.push_back(declared("UTF-16") + document);
    texts.push_back(declared("UTF-16LE") + document);
    for (const bool big_endian : {false, true}) {
        for (const char *name : {"US-ASCII", "ISO-8859-1", "EBCDIC-37"}) {
            texts.push_back(utf16(declared(name) + document, big_endian, true));
        }
        texts.push_back(utf16(declared("UTF-8") + document, big_endian, true));
        texts.push_back(utf16(declared("UTF-8") + document, big_endian, false));
        texts.push_back(utf16("<dds/>", big_endian, true) + "x");
        texts.push_back(utf16("<dds/>", big_endian, true).substr(0, 9));
    }
    texts.push_back(std::string("\xFF\xFE\0\0<\0\0\0", 8));
    texts.push_back(std::string("\0\0\xFE\xFF\0\0\0<", 8));
    texts.push_back("\xEF\xBB" + document);
    texts.push_back(declared("US-ASCII") + "<dds>\xC3\xA4</dds>");
    for (const std::string &text : texts) {
        SCOPED_TRACE(text.substr(0, 80));
        const ParserPtr parser(DDS_XMLParser_new());
        EXPECT_EQ(parse(parser, text), DDS_RETCODE_ERROR);
        EXPECT_STRNE(DDS_XMLParser_get_error_message(parser.get()), "");
        EXPECT_EQ(DDS_XMLParser_get_error_line(parser.get()), 1U);
        EXPECT_EQ(DDS_XMLParser_get_root(parser.get()), nullptr);
    }
}

TEST_F(XmlHostile, BytesThatAreNoTextAreRefusedWhereverTheyStand) {
    const std::string bytes[] = {
        std::string(1, '\0'), "\x01",         "\x1B",     "\x80",         "\xBF",
        "\xC0\x80",           "\xC1\xBF",     "\xC3",     "\xC3(",        "\xE0\x80\x80",
        "\xED\xA0\x80",       "\xED\xBF\xBF", "\xE2\x82", "\xF0\x80\x80", "\xF4\x90\x80\x80",
        "\xF5\x80\x80\x80",   "\xFE",         "\xFF",     "\xEF\xBF\xBF"};
    const std::pair<const char *, const char *> places[] = {
        {"<dds>\n", "</dds>"},
        {"<dds>\n<a b=\"", "\"/></dds>"},
        {"<dds>\n<a", "/></dds>"},
        {"<dds>\n<!--", "--></dds>"},
        {"<dds>\n<?a ", "?></dds>"},
        {"<dds>\n<a><![CDATA[", "]]></a></dds>"},
        {"<dds>\n<distributed_logger><filter_level>INFO",
         "</filter_level></distributed_logger>"
         "</dds>"}};
    for (const auto &[before, after] : places) {
        for (const std::string &wrong : bytes) {
            SCOPED_TRACE(before + wrong);
            const ParserPtr parser(DDS_XMLParser_new());
            EXPECT_EQ(parse(parser, before + wrong + after), DDS_RETCODE_ERROR);
            EXPECT_STRNE(DDS_XMLParser_get_error_message(parser.get()), "");
            EXPECT_EQ(DDS_XMLParser_get_error_line(parser.get()), 2U);
        }
    }
}

// ---- Cut short ----------------------------------------------------------------------------------

constexpr const char *kDocument = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- a logger and its QoS -->
<dds xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
  <distributed_logger>
    <filter_level>DEBUG</filter_level><enabled>true</enabled>
    <queue_size>0x200</queue_size>
    <echo_to_stdout>false</echo_to_stdout>
    <log_infrastructure_messages>false</log_infrastructure_messages>
    <thread>
      <mask>STDIO | FLOATING_POINT</mask><priority>THREAD_PRIORITY_LOW</priority>
      <stack_size>0x40000</stack_size>
      <cpu_list><element>0</element><element>1</element></cpu_list>
      <cpu_rotation>CPU_RR_ROTATION</cpu_rotation>
    </thread>
  </distributed_logger>
  <?instruction?>
  <qos_library name="L&amp;M">
    <qos_profile name="P" is_default_qos="false">
      <datawriter_qos topic_filter="vur/*">
        <history><kind>KEEP_ALL_HISTORY_QOS</kind></history>
        <user_data><value><![CDATA[AQID]]></value></user_data>
      </datawriter_qos>
    </qos_profile>
  </qos_library>
</dds>)";

TEST_F(XmlHostile, EveryPrefixIsRefusedWithALineOfIts) {
    const std::string text = kDocument;
    for (std::size_t length = 0; length < text.size(); ++length) {
        SCOPED_TRACE(length);
        const std::string prefix = text.substr(0, length);
        const auto lines =
            static_cast<DDS_UnsignedLong>(1 + std::count(prefix.begin(), prefix.end(), '\n'));
        support::XmlConfigDocument document;
        ASSERT_EQ(document.parse(prefix), DDS_RETCODE_ERROR);
        ASSERT_NE(document.message(), "");
        ASSERT_GE(document.line(), 1U);
        ASSERT_LE(document.line(), lines);
        ASSERT_EQ(document.root(), nullptr);
        ASSERT_EQ(support::errors(), support::Lines{}) << "nothing is wrong with the element";
    }
    support::XmlConfigDocument document;
    EXPECT_EQ(document.parse(text), DDS_RETCODE_OK) << document.message();
    EXPECT_EQ(document.options()->queueSize, 512U);
}

TEST_F(XmlHostile, EveryPrefixOfAFileStartsNothingAndLoadsNothing) {
    const std::string text = kDocument;
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    support::StdoutCapture capture;
    for (std::size_t length = 0; length < text.size(); ++length) {
        SCOPED_TRACE(length);
        write(text.substr(0, length));
        ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(path_.c_str(), nullptr, 200, nullptr), 0);
        ASSERT_EQ(KOLT_DomainParticipantFactory_add_profiles(factory, path_.c_str()),
                  DDS_RETCODE_ERROR);
    }
    DDS_StringSeq names = DDS_SEQUENCE_INITIALIZER;
    EXPECT_EQ(DDS_DomainParticipantFactory_get_qos_profile_libraries(factory, &names),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_StringSeq_get_length(&names), 0U);
    DDS_StringSeq_finalize(&names);
    std::size_t told = 0;
    for (const std::string &line : capture.lines()) {
        told += line.starts_with("DL Error: VUR_DL_XMLConfig_startFromFile: " + path_ + ", line ");
    }
    EXPECT_EQ(told, text.size());
}

// Any byte of the document replaced by a zero byte.
TEST_F(XmlHostile, AZeroByteIsRefusedWhereverItStands) {
    const std::string text = kDocument;
    for (std::size_t place = 0; place < text.size(); ++place) {
        std::string wrong = text;
        wrong[place] = '\0';
        const ParserPtr parser(DDS_XMLParser_new());
        ASSERT_EQ(parse(parser, wrong), DDS_RETCODE_ERROR) << place;
        ASSERT_GE(DDS_XMLParser_get_error_line(parser.get()), 1U);
    }
}

// ---- Files that are none ------------------------------------------------------------------------

TEST_F(XmlHostile, FilesThatHoldNoDocumentAreToldApart) {
    const ParserPtr parser(DDS_XMLParser_new());
    const auto message = [&](const std::string &path) {
        EXPECT_EQ(DDS_XMLParser_parse_file(parser.get(), path.c_str()), DDS_RETCODE_ERROR);
        EXPECT_EQ(DDS_XMLParser_get_root(parser.get()), nullptr);
        return std::to_string(DDS_XMLParser_get_error_line(parser.get())) + " " +
               DDS_XMLParser_get_error_message(parser.get());
    };
    write("");
    EXPECT_EQ(message(path_), "1 no element found");
    EXPECT_EQ(message("/dev/null"), "1 no element found");
    EXPECT_EQ(message("/dev/zero"), "1 not well-formed (invalid token)");
    EXPECT_EQ(message(folder_.path()), "0 cannot read the file: Is a directory");
    EXPECT_EQ(message(path_ + "/x"), "0 cannot open the file: Not a directory");
    EXPECT_EQ(message(folder_.path("absent")), "0 cannot open the file: No such file or directory");
    const std::string loop = folder_.path("loop");
    ASSERT_EQ(symlink("loop", loop.c_str()), 0);
    EXPECT_EQ(message(loop), "0 cannot open the file: Too many levels of symbolic links");
    std::remove(loop.c_str());
    EXPECT_EQ(message("/" + std::string(300, 'x')), "0 cannot open the file: File name too long");
}

TEST_F(XmlHostile, AFileThatMayNotBeReadIsSaid) {
    write("<dds/>");
    ASSERT_EQ(chmod(folder_.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path_.c_str(), 0), 0);
    const Outcome outcome = in_child([&](DDS_XMLParser *parser) {
        // The superuser may read everything; this process gives that up.
        if (geteuid() == 0 && seteuid(65534) != 0) {
            return DDS_RETCODE_UNSUPPORTED;
        }
        return DDS_XMLParser_parse_file(parser, path_.c_str());
    });
    EXPECT_EQ(outcome.code, DDS_RETCODE_ERROR);
    EXPECT_STREQ(outcome.message, "cannot open the file: Permission denied");
    EXPECT_EQ(outcome.line, 0U);
}

}  // namespace
