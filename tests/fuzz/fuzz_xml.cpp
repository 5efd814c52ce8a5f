// Arbitrary bytes as a configuration document. The first byte chooses what reads them: the element
// `distributed_logger` with its conversions, written back and parsed again, or the QoS profiles.

#include <kolt/config_logger.h>
#include <kolt/domain.h>
#include <kolt/xml.h>
#include <vur_dl/XMLConfig.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void ignoreError(const char *, const char *, DDS_UnsignedLong) {}

// What is wrong ends the process, so that the fuzzer keeps the input.
void check(bool holds, const char *what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}

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
        const DDS_ReturnCode_t result =
            DDS_XMLParser_parse_string(parser_, text, static_cast<DDS_LongLong>(size), nullptr);
        check((result == DDS_RETCODE_OK) == (root() != nullptr),
              "a root although the parse failed");
        check((result == DDS_RETCODE_OK) == (DDS_XMLParser_get_error_message(parser_)[0] == '\0'),
              "failed without a message");
        return result == DDS_RETCODE_OK;
    }
    DDS_XMLObject *root() const { return DDS_XMLParser_get_root(parser_); }
    bool save(std::string &text) const {
        DDS_XMLSaveContext context;
        DDS_XMLSaveContext_initialize(&context);
        const bool saved = DDS_XMLObject_save(root(), &context) != DDS_BOOLEAN_FALSE;
        text = DDS_XMLSaveContext_get_text(&context);
        DDS_XMLSaveContext_finalize(&context);
        return saved;
    }

  private:
    DDS_XMLExtensionClass *class_ = VUR_DL_XMLConfig_createXMLExtensionClass(ignoreError);
    DDS_XMLParser *parser_ = DDS_XMLParser_new();
};

void parseSaveParse(const char *text, std::size_t size) {
    Document document;
    if (!document.parse(text, size)) {
        return;
    }
    std::string saved;
    if (!document.save(saved)) {
        return;
    }
    Document again;
    // Saving indents, so that a document near the limits may not come back.
    if (again.parse(saved.data(), saved.size())) {
        const VUR_DL_XMLConfig *first = VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(document.root());
        const VUR_DL_XMLConfig *second = VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(again.root());
        check((first == nullptr) == (second == nullptr), "the element got lost");
        if (first != nullptr) {
            check(VUR_DL_Options_equals(first->parsedDLOptions, second->parsedDLOptions) == 1,
                  "other options");
        }
    } else {
        check(size > 100000, "what was saved does not parse");
    }
}

void loadProfiles(const char *text, std::size_t size) {
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipantFactory_unload_profiles(factory);
    char path[] = "/tmp/fuzz_xml_XXXXXX";
    const int file = mkstemp(path);
    check(file >= 0, "no temporary file");
    FILE *stream = fdopen(file, "wb");
    std::fwrite(text, 1, size, stream);
    std::fclose(stream);
    const bool loaded = KOLT_DomainParticipantFactory_add_profiles(factory, path) == DDS_RETCODE_OK;
    std::remove(path);

    DDS_StringSeq libraries = DDS_SEQUENCE_INITIALIZER;
    DDS_StringSeq profiles = DDS_SEQUENCE_INITIALIZER;
    DDS_DomainParticipantFactory_get_qos_profile_libraries(factory, &libraries);
    check(loaded || DDS_StringSeq_get_length(&libraries) == 0U, "half a document is loaded");
    DDS_DataWriterQos qos;
    DDS_DataWriterQos_initialize(&qos);
    for (DDS_UnsignedLong i = 0; i < DDS_StringSeq_get_length(&libraries); ++i) {
        const char *library = DDS_StringSeq_get(&libraries, static_cast<DDS_Long>(i));
        DDS_DomainParticipantFactory_get_qos_profiles(factory, &profiles, library);
        for (DDS_UnsignedLong j = 0; j < DDS_StringSeq_get_length(&profiles); ++j) {
            const char *profile = DDS_StringSeq_get(&profiles, static_cast<DDS_Long>(j));
            check(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile_w_topic_name(
                      factory, &qos, library, profile, "vur/distlog") == DDS_RETCODE_OK,
                  "a profile that was loaded cannot be read");
        }
    }
    DDS_DataWriterQos_finalize(&qos);
    DDS_StringSeq_finalize(&profiles);
    DDS_StringSeq_finalize(&libraries);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                     KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    if (size == 0) {
        return 0;
    }
    // Copied, so that a read past the end is seen.
    const std::string text(reinterpret_cast<const char *>(data) + 1, size - 1);
    if ((data[0] & 1U) != 0U) {
        parseSaveParse(text.data(), text.size());
    } else {
        loadProfiles(text.data(), text.size());
    }
    return 0;
}
