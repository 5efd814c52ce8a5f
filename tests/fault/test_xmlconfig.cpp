// The element `distributed_logger` when memory runs out or the platform fails: each failure has its
// message and leaves nothing behind.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <kolt/os.h>
#include <kolt/xml.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <string>

#include "support/platform/process.h"

namespace {

// What the next calls of the replaced functions do.
struct Faults {
    bool active = false;
    std::size_t allocation_size = 0;  // an allocation of this size fails
    bool extension_class = false;
    bool options = false;
    bool object = false;
    bool application_kind = false;
    bool set_options = false;
    bool instance = false;
    bool running = false;
    bool set_participant = false;
};
Faults faults;

template <typename Function>
Function *real(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

void *KOLT_Heap_allocate(std::size_t size) {
    if (faults.allocation_size == size) {
        return nullptr;
    }
    static auto *const function = real<void *(std::size_t)>("KOLT_Heap_allocate");
    return function(size);
}

DDS_XMLExtensionClass *DDS_XMLExtensionClass_new(
    const char *tag, void *data, const char *const *parents, DDS_UnsignedLong count,
    DDS_XMLExtensionClass_OnStartElementFunction on_start,
    DDS_XMLExtensionClass_OnEndElementFunction on_end, DDS_XMLExtensionClass_NewFunction make,
    DDS_XMLExtensionClass_DeleteFunction release, DDS_XMLExtensionClass_SaveFunction save) {
    if (faults.extension_class) {
        // The caller does not take its listener back when this fails.
        KOLT_Heap_free(data);
        return nullptr;
    }
    static auto *const function =
        real<decltype(DDS_XMLExtensionClass_new)>("DDS_XMLExtensionClass_new");
    return function(tag, data, parents, count, on_start, on_end, make, release, save);
}

DDS_Boolean DDS_XMLObject_initialize(DDS_XMLObject *self, DDS_XMLExtensionClass *extension,
                                     DDS_XMLObject *parent, const char *tag,
                                     const char *const *attributes) {
    if (faults.object) {
        return DDS_BOOLEAN_FALSE;
    }
    static auto *const function =
        real<decltype(DDS_XMLObject_initialize)>("DDS_XMLObject_initialize");
    return function(self, extension, parent, tag, attributes);
}

VUR_DL_Options *VUR_DL_Options_createDefault() {
    if (faults.options) {
        return nullptr;
    }
    static auto *const function =
        real<decltype(VUR_DL_Options_createDefault)>("VUR_DL_Options_createDefault");
    return function();
}

DDS_ReturnCode_t VUR_DL_Options_setApplicationKind(VUR_DL_Options *, const char *) {
    return faults.application_kind ? DDS_RETCODE_ERROR : DDS_RETCODE_OK;
}

DDS_ReturnCode_t VUR_DL_Options_setDomainParticipant(VUR_DL_Options *self,
                                                     DDS_DomainParticipant *participant) {
    if (faults.set_participant) {
        return DDS_RETCODE_ERROR;
    }
    self->domainParticipant = participant;
    return DDS_RETCODE_OK;
}

int VUR_DL_DistLogger_isDistLoggerRunning() {
    return faults.running ? 1 : 0;
}
int VUR_DL_DistLogger_setOptions(const VUR_DL_Options *) {
    return faults.set_options ? 0 : 1;
}

VUR_DL_DistLogger *VUR_DL_DistLogger_getInstance() {
    static int logger;
    return faults.instance ? nullptr : reinterpret_cast<VUR_DL_DistLogger *>(&logger);
}

}  // extern "C"

namespace {

using support::StdoutCapture;

std::string &reported() {
    static std::string text;
    return text;
}

void log_error(const char *message, const char *method, DDS_UnsignedLong line) {
    reported() += std::to_string(line) + " " + method + ": " + message + "\n";
}

class XmlConfigFault : public testing::Test {
  protected:
    void SetUp() override {
        faults = {};
        reported().clear();
    }
    void TearDown() override { faults = {}; }

    // Calls the callback that makes an object, below a root, as a parser does. Everything that the
    // call should have released is found by the leak detector.
    static bool makes_object() {
        const Faults wanted = faults;
        faults = {};
        DDS_XMLExtensionClass *extension = VUR_DL_XMLConfig_createXMLExtensionClass(log_error);
        DDS_XMLObject root;
        EXPECT_TRUE(DDS_XMLObject_initialize(&root, nullptr, nullptr, "dds", nullptr));
        DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
        context._line_number = 7;
        const char *none = nullptr;
        faults = wanted;
        DDS_XMLObject *object = VUR_DL_XMLConfig_new(extension, &root, &none, &context);
        faults = {};
        if (object != nullptr) {
            EXPECT_EQ(DDS_XMLObject_get_first_child(&root), object);
            VUR_DL_XMLConfig_delete(object);
        }
        EXPECT_EQ(DDS_XMLObject_get_first_child(&root), nullptr);
        DDS_XMLObject_finalize(&root);
        VUR_DL_XMLConfig_destroyXMLExtensionClass(extension);
        return object != nullptr;
    }
};

TEST_F(XmlConfigFault, NothingFails) {
    StdoutCapture capture;
    EXPECT_TRUE(makes_object());
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(reported(), "");
}

TEST_F(XmlConfigFault, ListenerCannotBeAllocated) {
    StdoutCapture capture;
    faults.allocation_size = sizeof(VUR_DL_XMLConfig_ExtensionClassListener);
    EXPECT_EQ(VUR_DL_XMLConfig_createXMLExtensionClass(log_error), nullptr);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_XMLConfig_createXMLExtensionClass: could not allocate extension "
              "class listener\n");
}

TEST_F(XmlConfigFault, ExtensionClassCannotBeMade) {
    StdoutCapture capture;
    faults.extension_class = true;
    EXPECT_EQ(VUR_DL_XMLConfig_createXMLExtensionClass(log_error), nullptr);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_XMLConfig_createXMLExtensionClass: creation of XML extension class "
              "failed\n");
}

TEST_F(XmlConfigFault, ObjectCannotBeAllocated) {
    StdoutCapture capture;
    faults.allocation_size = sizeof(VUR_DL_XMLConfig);
    EXPECT_FALSE(makes_object());
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_XMLConfig_create: could not allocate XML options object\n"
              "DL Error: VUR_DL_XMLConfig_new: XML object creation failed\n");
}

TEST_F(XmlConfigFault, OptionsCannotBeMade) {
    faults.options = true;
    EXPECT_FALSE(makes_object());
    EXPECT_EQ(reported(), "7 VUR_DL_XMLConfig_new: default options creation failed\n");
}

TEST_F(XmlConfigFault, BaseObjectCannotBeInitialised) {
    faults.object = true;
    EXPECT_FALSE(makes_object());
    EXPECT_EQ(reported(), "7 VUR_DL_XMLConfig_new: XML object initialization failed\n");
}

TEST_F(XmlConfigFault, StartSaysWhichStepFailed) {
    struct Row {
        bool Faults::*fault;
        const char *message;
    };
    const Row rows[] = {
        {&Faults::application_kind, "could not set the application kind"},
        {&Faults::set_options, "could not set DL options; instance already created"},
        {&Faults::instance, "Distributed Logger could not be started"}};
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    DDS_DomainParticipant participant = {};
    for (const Row &row : rows) {
        faults = {};
        faults.*(row.fault) = true;
        StdoutCapture capture;
        EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(&participant, options, "kind"), 0);
        EXPECT_EQ(capture.text(),
                  std::string("DL Error: VUR_DL_XMLConfig_startWithXMLConfiguration: ") +
                      row.message + "\n");
    }
    faults = {};
    faults.application_kind = true;  // not asked for without a kind
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(&participant, options, nullptr), 1);
    EXPECT_EQ(options->domainParticipant, &participant);
    VUR_DL_Options_delete(options);
}

TEST_F(XmlConfigFault, RunningLoggerIsLeftAlone) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    DDS_DomainParticipant participant = {};
    faults.running = true;
    faults.set_options = true;  // not reached
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(&participant, options, "kind"), 1);
    EXPECT_EQ(
        capture.text(),
        "DL Info: VUR_DL_XMLConfig_startWithXMLConfiguration: DL already running. XML Options "
        "don't apply\n");
    EXPECT_EQ(options->domainParticipant, nullptr);
    VUR_DL_Options_delete(options);
}

TEST_F(XmlConfigFault, ParticipantThatCannotBeSetDoesNotCount) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    DDS_DomainParticipant participant = {};
    faults.set_participant = true;
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(&participant, options, nullptr), 1);
    EXPECT_EQ(capture.text(), "");
    VUR_DL_Options_delete(options);
}

// A logger that is said to run and is not there: the parsed level is saved.
TEST_F(XmlConfigFault, LoggerThatIsGoneWhileSavingDoesNotCount) {
    DDS_XMLExtensionClass *extension = VUR_DL_XMLConfig_createXMLExtensionClass(log_error);
    DDS_XMLObject root;
    ASSERT_TRUE(DDS_XMLObject_initialize(&root, nullptr, nullptr, "dds", nullptr));
    DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
    const char *none = nullptr;
    DDS_XMLObject *object = VUR_DL_XMLConfig_new(extension, &root, &none, &context);
    ASSERT_NE(object, nullptr);
    faults.running = true;
    faults.instance = true;
    DDS_XMLSaveContext save_context;
    DDS_XMLSaveContext_initialize(&save_context);
    EXPECT_TRUE(DDS_XMLObject_save(object, &save_context));
    EXPECT_NE(std::string(DDS_XMLSaveContext_get_text(&save_context))
                  .find("<filter_level>INFO</filter_level>"),
              std::string::npos);
    DDS_XMLSaveContext_finalize(&save_context);
    faults = {};
    DDS_XMLObject_finalize(&root);
    VUR_DL_XMLConfig_destroyXMLExtensionClass(extension);
}

}  // namespace
