// SPDX-License-Identifier: Apache-2.0
// Arbitrary bytes as a configuration document. The first byte chooses what reads them: the element
// `distributed_logger` with its conversions, written back and parsed again ('1'), the same document
// as a text and as a file ('3'), or the QoS profiles (the others). xml.dict beside this file has
// the words that the documents are made of.

#include <kolt/config_logger.h>
#include <kolt/domain.h>
#include <kolt/xml.h>
#include <vur_dl/XMLConfig.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void ignore_error(const char *, const char *, DDS_UnsignedLong) {}

// Ends the process unless it holds, so that the fuzzer keeps the input.
void check(bool holds, const char *what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}

// The bytes as a file, in memory alone.
class TemporaryFile {
  public:
    TemporaryFile(const char *text, std::size_t size) : file_(memfd_create("fuzz_xml", 0)) {
        check(file_ >= 0 && write(file_, text, size) == static_cast<ssize_t>(size),
              "no temporary file");
        std::snprintf(path_, sizeof(path_), "/proc/self/fd/%d", file_);
    }
    ~TemporaryFile() { close(file_); }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    const char *path() const { return path_; }

  private:
    int file_;
    char path_[64];
};

class Document {
  public:
    Document() { DDS_XMLParser_register_extension_class(parser_, class_); }
    ~Document() {
        DDS_XMLParser_delete(parser_);
        VUR_DL_XMLConfig_destroyXMLExtensionClass(class_);
    }
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    bool parse(const char *text, std::size_t size) {
        return checked(
            DDS_XMLParser_parse_string(parser_, text, static_cast<DDS_LongLong>(size), nullptr));
    }
    bool parse_file(const char *path) { return checked(DDS_XMLParser_parse_file(parser_, path)); }

    DDS_XMLObject *root() const { return DDS_XMLParser_get_root(parser_); }
    const VUR_DL_XMLConfig *config() const {
        return VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(root());
    }
    std::string message() const { return DDS_XMLParser_get_error_message(parser_); }
    DDS_UnsignedLong line() const { return DDS_XMLParser_get_error_line(parser_); }

  private:
    bool checked(DDS_ReturnCode_t result) const {
        const bool parsed = result == DDS_RETCODE_OK;
        check(parsed == (root() != nullptr), "a root although the parse failed");
        check(parsed == message().empty(), "failed without a message");
        check(parsed == (line() == 0U), "failed without a line");
        return parsed;
    }

    DDS_XMLExtensionClass *class_ = VUR_DL_XMLConfig_createXMLExtensionClass(ignore_error);
    DDS_XMLParser *parser_ = DDS_XMLParser_new();
};

bool save(const DDS_XMLObject *object, std::string &text) {
    DDS_XMLSaveContext context;
    DDS_XMLSaveContext_initialize(&context);
    const bool saved = DDS_XMLObject_save(object, &context) != DDS_BOOLEAN_FALSE;
    check(!saved || context.depth == 0, "saved, and the depth is another one");
    text = DDS_XMLSaveContext_get_text(&context);
    DDS_XMLSaveContext_finalize(&context);
    return saved;
}

// The options of the element survive, and are written the same again.
void compare_elements(const VUR_DL_XMLConfig *first, const VUR_DL_XMLConfig *second) {
    check((first == nullptr) == (second == nullptr), "the element got lost");
    if (first == nullptr) {
        return;
    }
    check(VUR_DL_Options_equals(first->parsedDLOptions, second->parsedDLOptions) == 1,
          "other options");
    std::string text;
    std::string again;
    check(save(&first->baseObject, text) && save(&second->baseObject, again), "cannot be saved");
    check(text == again, "saved in another way");
}

void parse_save_parse(const char *text, std::size_t size) {
    Document document;
    std::string saved;
    if (!document.parse(text, size) || !save(document.root(), saved)) {
        return;
    }
    Document again;
    if (again.parse(saved.data(), saved.size())) {
        compare_elements(document.config(), again.config());
    } else {
        // Saving indents, so that a document near the limits may not come back.
        check(size > 100000, "what was saved does not parse");
    }
}

// A file is read in pieces, a text in one. The bytes stand behind a comment, so that the end of a
// piece falls into them, where their first byte says.
void parse_both_ways(const char *text, std::size_t size) {
    constexpr std::size_t kPiece = 16384;
    if (size == 0) {
        return;
    }
    const auto place = static_cast<unsigned char>(text[0]);
    std::string document = "<!--" + std::string(kPiece - 7 - place, ' ') + "-->";
    document.append(text + 1, size - 1);

    const TemporaryFile file(document.data(), document.size());
    Document from_text;
    Document from_file;
    const bool parsed = from_text.parse(document.data(), document.size());
    check(parsed == from_file.parse_file(file.path()), "the file is another document");
    check(from_text.message() == from_file.message() && from_text.line() == from_file.line(),
          "another error");
    if (parsed) {
        std::string one;
        std::string other;
        check(save(from_text.root(), one) == save(from_file.root(), other) && one == other,
              "another tree");
    }
}

template <typename Qos>
struct QosFunctions {
    DDS_ReturnCode_t (*initialize)(Qos *);
    DDS_ReturnCode_t (*finalize)(Qos *);
    DDS_Boolean (*equals)(const Qos *, const Qos *);
    DDS_ReturnCode_t (*get)(DDS_DomainParticipantFactory *, Qos *, const char *, const char *);
};

// A profile that was loaded can be read, and says the same twice.
template <typename Qos>
void read_twice(const QosFunctions<Qos> &functions, const char *library, const char *profile) {
    Qos qos[2];
    for (Qos &each : qos) {
        functions.initialize(&each);
        check(functions.get(DDS_DomainParticipantFactory_get_instance(), &each, library, profile) ==
                  DDS_RETCODE_OK,
              "a profile that was loaded cannot be read");
    }
    check(functions.equals(&qos[0], &qos[1]) != DDS_BOOLEAN_FALSE, "another QoS");
    functions.finalize(&qos[0]);
    functions.finalize(&qos[1]);
}

#define READ_TWICE(Qos, name)                                                     \
    read_twice<Qos>({Qos##_initialize, Qos##_finalize, Qos##_equals,              \
                     DDS_DomainParticipantFactory_get_##name##_qos_from_profile}, \
                    library, profile)

// The same for a topic of its own.
#define READ_TOPIC_TWICE(Qos, name)                                                          \
    read_twice<Qos>(                                                                         \
        {Qos##_initialize, Qos##_finalize, Qos##_equals,                                     \
         [](DDS_DomainParticipantFactory *factory, Qos *qos, const char *its_library,        \
            const char *its_profile) {                                                       \
             return DDS_DomainParticipantFactory_get_##name##_qos_from_profile_w_topic_name( \
                 factory, qos, its_library, its_profile, "vur/distlog");                     \
         }},                                                                                 \
        library, profile)

void read_profile(const char *library, const char *profile) {
    READ_TWICE(DDS_DomainParticipantQos, participant);
    READ_TWICE(DDS_PublisherQos, publisher);
    READ_TWICE(DDS_SubscriberQos, subscriber);
    READ_TWICE(DDS_TopicQos, topic);
    READ_TWICE(DDS_DataWriterQos, datawriter);
    READ_TWICE(DDS_DataReaderQos, datareader);
    READ_TOPIC_TWICE(DDS_TopicQos, topic);
    READ_TOPIC_TWICE(DDS_DataWriterQos, datawriter);
    READ_TOPIC_TWICE(DDS_DataReaderQos, datareader);
}

void load_profiles(const char *text, std::size_t size) {
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipantFactory_unload_profiles(factory);
    const TemporaryFile file(text, size);
    const bool loaded =
        KOLT_DomainParticipantFactory_add_profiles(factory, file.path()) == DDS_RETCODE_OK;

    DDS_StringSeq libraries = DDS_SEQUENCE_INITIALIZER;
    DDS_StringSeq profiles = DDS_SEQUENCE_INITIALIZER;
    DDS_DomainParticipantFactory_get_qos_profile_libraries(factory, &libraries);
    check(loaded || DDS_StringSeq_get_length(&libraries) == 0U, "half a document is loaded");
    for (DDS_UnsignedLong i = 0; i < DDS_StringSeq_get_length(&libraries); ++i) {
        const char *library = DDS_StringSeq_get(&libraries, static_cast<DDS_Long>(i));
        check(DDS_DomainParticipantFactory_get_qos_profiles(factory, &profiles, library) ==
                  DDS_RETCODE_OK,
              "a library without a list of profiles");
        for (DDS_UnsignedLong j = 0; j < DDS_StringSeq_get_length(&profiles); ++j) {
            read_profile(library, DDS_StringSeq_get(&profiles, static_cast<DDS_Long>(j)));
        }
    }
    DDS_StringSeq_finalize(&profiles);
    DDS_StringSeq_finalize(&libraries);
}

}  // namespace

// The diagnostics of wrong elements are not read by anybody.
extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    return std::freopen("/dev/null", "w", stdout) == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                     KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    if (size == 0) {
        return 0;
    }
    // Copied, so that a read past the end is seen.
    const std::string text(reinterpret_cast<const char *>(data) + 1, size - 1);
    switch (data[0] & 3U) {
        case 1U:
            parse_save_parse(text.data(), text.size());
            break;
        case 3U:
            parse_both_ways(text.data(), text.size());
            break;
        default:
            load_profiles(text.data(), text.size());
            break;
    }
    return 0;
}
