// SPDX-License-Identifier: Apache-2.0
// The element `distributed_logger` when memory runs out or the platform fails: each failure has its
// message and leaves nothing behind.
#include <gtest/gtest.h>
#include <kolt/os.h>
#include <kolt/xml.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <string>

#include "support/platform/faults.h"
#include "support/platform/process.h"

FAULT_POINT(void *, KOLT_Heap_allocate, (std::size_t size), (size), nullptr)
// The caller does not take its listener back when this fails.
FAULT_POINT(DDS_XMLExtensionClass *, DDS_XMLExtensionClass_new,
            (const char *tag, void *data, const char *const *parents, DDS_UnsignedLong count,
             DDS_XMLExtensionClass_OnStartElementFunction on_start,
             DDS_XMLExtensionClass_OnEndElementFunction on_end,
             DDS_XMLExtensionClass_NewFunction make, DDS_XMLExtensionClass_DeleteFunction release,
             DDS_XMLExtensionClass_SaveFunction save),
            (tag, data, parents, count, on_start, on_end, make, release, save),
            (KOLT_Heap_free(data), nullptr))
FAULT_POINT(DDS_Boolean, DDS_XMLObject_initialize,
            (DDS_XMLObject * self, DDS_XMLExtensionClass *extension, DDS_XMLObject *parent,
             const char *tag, const char *const *attributes),
            (self, extension, parent, tag, attributes), DDS_BOOLEAN_FALSE)
FAULT_POINT(VUR_DL_Options *, VUR_DL_Options_createDefault, (), (), nullptr)
FAULT_POINT(DDS_ReturnCode_t, VUR_DL_Options_setApplicationKind,
            (VUR_DL_Options * self, const char *kind), (self, kind), DDS_RETCODE_ERROR)
FAULT_POINT(DDS_ReturnCode_t, VUR_DL_Options_setDomainParticipant,
            (VUR_DL_Options * self, DDS_DomainParticipant *participant), (self, participant),
            DDS_RETCODE_ERROR)

// Stand in for a logger that is never started. It counts as running while the first one "fails".
extern "C" {

int VUR_DL_DistLogger_isDistLoggerRunning() {
    return support::Faults::strikes("VUR_DL_DistLogger_isDistLoggerRunning") ? 1 : 0;
}
int VUR_DL_DistLogger_setOptions(const VUR_DL_Options *) {
    return support::Faults::strikes("VUR_DL_DistLogger_setOptions") ? 0 : 1;
}
VUR_DL_DistLogger *VUR_DL_DistLogger_getInstance() {
    static int logger;
    return support::Faults::strikes("VUR_DL_DistLogger_getInstance")
               ? nullptr
               : reinterpret_cast<VUR_DL_DistLogger *>(&logger);
}

}  // extern "C"

namespace {

using support::Faults;
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
        Faults::clear();
        reported().clear();
    }
    void TearDown() override { Faults::clear(); }

    // Calls the callback that makes an object, below a root, as a parser does; the first call of
    // `failing` fails. The leak detector finds whatever the callback should have released.
    static bool makes_object(const char *failing = nullptr) {
        DDS_XMLExtensionClass *extension = VUR_DL_XMLConfig_createXMLExtensionClass(log_error);
        DDS_XMLObject root;
        EXPECT_TRUE(DDS_XMLObject_initialize(&root, nullptr, nullptr, "dds", nullptr));
        DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
        context._line_number = 7;
        const char *none = nullptr;
        if (failing != nullptr) {
            Faults::fail_call(failing);
        }
        DDS_XMLObject *object = VUR_DL_XMLConfig_new(extension, &root, &none, &context);
        Faults::clear();
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
    Faults::fail_call("KOLT_Heap_allocate");
    EXPECT_EQ(VUR_DL_XMLConfig_createXMLExtensionClass(log_error), nullptr);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_XMLConfig_createXMLExtensionClass: could not allocate extension "
              "class listener\n");
}

TEST_F(XmlConfigFault, ExtensionClassCannotBeMade) {
    StdoutCapture capture;
    Faults::fail_call("DDS_XMLExtensionClass_new");
    EXPECT_EQ(VUR_DL_XMLConfig_createXMLExtensionClass(log_error), nullptr);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_XMLConfig_createXMLExtensionClass: creation of XML extension class "
              "failed\n");
}

TEST_F(XmlConfigFault, ObjectCannotBeAllocated) {
    StdoutCapture capture;
    EXPECT_FALSE(makes_object("KOLT_Heap_allocate"));
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_XMLConfig_create: could not allocate XML options object\n"
              "DL Error: VUR_DL_XMLConfig_new: XML object creation failed\n");
}

TEST_F(XmlConfigFault, OptionsCannotBeMade) {
    EXPECT_FALSE(makes_object("VUR_DL_Options_createDefault"));
    EXPECT_EQ(reported(), "7 VUR_DL_XMLConfig_new: default options creation failed\n");
}

TEST_F(XmlConfigFault, BaseObjectCannotBeInitialised) {
    EXPECT_FALSE(makes_object("DDS_XMLObject_initialize"));
    EXPECT_EQ(reported(), "7 VUR_DL_XMLConfig_new: XML object initialization failed\n");
}

TEST_F(XmlConfigFault, StartSaysWhichStepFailed) {
    struct Row {
        const char *failing;
        const char *message;
    };
    const Row rows[] = {
        {"VUR_DL_Options_setApplicationKind", "could not set the application kind"},
        {"VUR_DL_DistLogger_setOptions", "could not set DL options; instance already created"},
        {"VUR_DL_DistLogger_getInstance", "Distributed Logger could not be started"}};
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    DDS_DomainParticipant participant = {};
    for (const Row &row : rows) {
        Faults::clear();
        Faults::fail_call(row.failing);
        StdoutCapture capture;
        EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(&participant, options, "kind"), 0);
        EXPECT_EQ(capture.text(),
                  std::string("DL Error: VUR_DL_XMLConfig_startWithXMLConfiguration: ") +
                      row.message + "\n");
    }
    Faults::clear();
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(&participant, options, nullptr), 1);
    EXPECT_EQ(Faults::calls("VUR_DL_Options_setApplicationKind"), 0) << "there is no kind to set";
    EXPECT_EQ(options->domainParticipant, &participant);
    VUR_DL_Options_delete(options);
}

TEST_F(XmlConfigFault, RunningLoggerIsLeftAlone) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    DDS_DomainParticipant participant = {};
    Faults::fail_every_call("VUR_DL_DistLogger_isDistLoggerRunning");
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startWithXMLConfiguration(&participant, options, "kind"), 1);
    EXPECT_EQ(
        capture.text(),
        "DL Info: VUR_DL_XMLConfig_startWithXMLConfiguration: DL already running. XML Options "
        "don't apply\n");
    EXPECT_EQ(Faults::calls("VUR_DL_DistLogger_setOptions"), 0);
    EXPECT_EQ(options->domainParticipant, nullptr);
    VUR_DL_Options_delete(options);
}

TEST_F(XmlConfigFault, ParticipantThatCannotBeSetDoesNotCount) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    DDS_DomainParticipant participant = {};
    Faults::fail_call("VUR_DL_Options_setDomainParticipant");
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
    Faults::fail_every_call("VUR_DL_DistLogger_isDistLoggerRunning");
    Faults::fail_every_call("VUR_DL_DistLogger_getInstance");
    DDS_XMLSaveContext save_context;
    DDS_XMLSaveContext_initialize(&save_context);
    EXPECT_TRUE(DDS_XMLObject_save(object, &save_context));
    EXPECT_NE(std::string(DDS_XMLSaveContext_get_text(&save_context))
                  .find("<filter_level>INFO</filter_level>"),
              std::string::npos);
    DDS_XMLSaveContext_finalize(&save_context);
    Faults::clear();
    DDS_XMLObject_finalize(&root);
    VUR_DL_XMLConfig_destroyXMLExtensionClass(extension);
}

}  // namespace
