// SPDX-License-Identifier: Apache-2.0
// Extension classes of the XML facility: the arguments of their callbacks, and their refusals.
#include <gtest/gtest.h>
#include <kolt/xml.h>

#include <string>
#include <vector>

#include "support/config/xml_document.h"

namespace {

using support::parse;
using support::ParserPtr;
using support::save;
using support::tag_of;

// An element that records the calls of its callbacks.
struct Recorder {
    std::vector<std::string> events;
    int live = 0;
    std::string refuse;        // the callback that refuses: "new", "start x", "end x"
    bool with_message = true;  // says why
    bool new_fails = false;
};

struct Recorded {
    DDS_XMLObject base;
    Recorder *recorder;
};

Recorder &recorder_of(DDS_XMLObject *object) {
    return *reinterpret_cast<Recorded *>(object)->recorder;
}

void event(Recorder &recorder, const std::string &name, DDS_XMLContext *context,
           const std::string &text = "") {
    recorder.events.push_back(name + (text.empty() ? "" : " [" + text + "]") + " @" +
                              std::to_string(DDS_XMLContext_get_current_line_number(context)));
    if (recorder.refuse == name) {
        if (recorder.with_message) {
            DDS_XMLContext_report_error(context, "refused by %s", "the test");
            DDS_XMLContext_report_error(context, "not the first reason");
        } else {
            context->error = 1;
        }
    }
}

DDS_XMLObject *new_recorded(DDS_XMLExtensionClass *extension, DDS_XMLObject *parent,
                            const char **attributes, DDS_XMLContext *context) {
    auto &recorder = *static_cast<Recorder *>(DDS_XMLExtensionClass_get_user_data(extension));
    event(recorder, "new", context, attributes[0] == nullptr ? "" : attributes[1]);
    if (recorder.new_fails) {
        return nullptr;
    }
    auto *object = new Recorded{};
    object->recorder = &recorder;
    EXPECT_TRUE(DDS_XMLObject_initialize(&object->base, extension, parent,
                                         DDS_XMLExtensionClass_get_tag_name(extension), nullptr));
    ++recorder.live;
    return &object->base;
}

void delete_recorded(DDS_XMLObject *object) {
    --recorder_of(object).live;
    DDS_XMLObject_finalize(object);
    delete reinterpret_cast<Recorded *>(object);
}

void start_recorded(DDS_XMLObject *object, const char *tag, const char **,
                    DDS_XMLContext *context) {
    event(recorder_of(object), std::string("start ") + tag, context);
}

void end_recorded(DDS_XMLObject *object, const char *tag, const char *text,
                  DDS_XMLContext *context) {
    event(recorder_of(object), std::string("end ") + tag, context, text);
}

void save_recorded(const DDS_XMLObject *, DDS_XMLSaveContext *context) {
    DDS_XMLHelper_save_string("recorded", "saved", nullptr, DDS_BOOLEAN_FALSE, context);
}

class XmlExtension : public testing::Test {
  protected:
    void SetUp() override { use(nullptr, 0U); }
    void TearDown() override {
        parser_.reset();
        EXPECT_EQ(recorder_.live, 0);
        DDS_XMLExtensionClass_delete(class_);
    }
    void use(const char *const *parents, DDS_UnsignedLong count) {
        parser_.reset(DDS_XMLParser_new());
        DDS_XMLExtensionClass_delete(class_);
        class_ =
            DDS_XMLExtensionClass_new("recorded", &recorder_, parents, count, start_recorded,
                                      end_recorded, new_recorded, delete_recorded, save_recorded);
        ASSERT_NE(class_, nullptr);
        ASSERT_EQ(DDS_XMLParser_register_extension_class(parser_.get(), class_), DDS_RETCODE_OK);
    }
    std::string message() const { return DDS_XMLParser_get_error_message(parser_.get()); }

    Recorder recorder_;
    DDS_XMLExtensionClass *class_ = nullptr;
    ParserPtr parser_;
};

TEST_F(XmlExtension, IsToldWhatStandsInItsElement) {
    ASSERT_EQ(parse(parser_,
                    "<dds>\n"
                    "<recorded a=\"v\">\n"
                    "<x>one<y> two </y>three</x>\n"
                    "<recorded/></recorded>\n"
                    "</dds>"),
              DDS_RETCODE_OK);
    const std::vector<std::string> expected = {
        "new [v] @2",          "start x @3",        "start y @3",      "end y [ two ] @3",
        "end x [onethree] @3", "start recorded @4", "end recorded @4", "end recorded [\n\n] @4"};
    EXPECT_EQ(recorder_.events, expected);
    const DDS_XMLObject *object =
        DDS_XMLObject_get_first_child(DDS_XMLParser_get_root(parser_.get()));
    EXPECT_EQ(tag_of(object), "recorded");
    EXPECT_EQ(DDS_XMLObject_get_extension_class(object), class_);
    EXPECT_EQ(DDS_XMLObject_get_first_child(object), nullptr);
    EXPECT_EQ(DDS_XMLObject_get_line_number(object), 2U);
    EXPECT_EQ(recorder_.live, 1);
}

TEST_F(XmlExtension, MayStandAnywhereUnlessItsClassSaysWhere) {
    EXPECT_EQ(parse(parser_, "<dds><a><recorded/></a><recorded/></dds>"), DDS_RETCODE_OK);
    EXPECT_EQ(recorder_.live, 2);
    const char *parents[] = {"b", "c"};
    use(parents, 2U);
    EXPECT_EQ(parse(parser_, "<dds><b><recorded/></b><c><recorded/></c></dds>"), DDS_RETCODE_OK);
    EXPECT_EQ(parse(parser_, "<dds>\n<recorded/></dds>"), DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "<recorded> may not stand in <dds>; expected: in <b>, <c>");
    EXPECT_EQ(DDS_XMLParser_get_error_line(parser_.get()), 2U);
}

TEST_F(XmlExtension, FirstErrorEndsTheParse) {
    recorder_.refuse = "end x";
    EXPECT_EQ(parse(parser_, "<dds><recorded>\n<x/>\n<y/></recorded><recorded/></dds>"),
              DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "<x>: refused by the test");
    EXPECT_EQ(DDS_XMLParser_get_error_line(parser_.get()), 2U);
    EXPECT_EQ(recorder_.events.back(), "end x @2");
    EXPECT_EQ(recorder_.live, 0);

    recorder_.refuse = "start x";
    recorder_.with_message = false;
    EXPECT_EQ(parse(parser_, "<dds><recorded><x/></recorded></dds>"), DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "<x> was refused");
    EXPECT_EQ(recorder_.events.back(), "start x @1");

    recorder_.refuse = "new";
    EXPECT_EQ(parse(parser_, "<dds><recorded/></dds>"), DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "<recorded> was refused");
    EXPECT_EQ(recorder_.live, 0);
}

TEST_F(XmlExtension, ObjectThatIsNotMadeFailsTheParse) {
    recorder_.new_fails = true;
    EXPECT_EQ(parse(parser_, "<dds>\n<recorded/></dds>"), DDS_RETCODE_ERROR);
    EXPECT_EQ(message(), "<recorded> was refused");
    EXPECT_EQ(DDS_XMLParser_get_error_line(parser_.get()), 2U);
}

TEST_F(XmlExtension, ObjectsAreDeletedWhenTheDocumentEndsEarly) {
    EXPECT_EQ(parse(parser_, "<dds><recorded><x>"), DDS_RETCODE_ERROR);
    EXPECT_EQ(recorder_.live, 0);
}

TEST_F(XmlExtension, SavesItself) {
    ASSERT_EQ(parse(parser_, "<dds><a/><recorded/></dds>"), DDS_RETCODE_OK);
    EXPECT_EQ(save(DDS_XMLParser_get_root(parser_.get())),
              "<dds>\n    <a></a>\n    <recorded>saved</recorded>\n</dds>\n");
}

TEST_F(XmlExtension, RegistrationIsChecked) {
    EXPECT_EQ(DDS_XMLParser_register_extension_class(parser_.get(), class_),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_XMLParser_register_extension_class(parser_.get(), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_XMLParser_register_extension_class(nullptr, class_), DDS_RETCODE_BAD_PARAMETER);
    DDS_XMLExtensionClass *root = DDS_XMLExtensionClass_new(
        "dds", nullptr, nullptr, 0U, nullptr, nullptr, new_recorded, delete_recorded, nullptr);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(DDS_XMLParser_register_extension_class(parser_.get(), root),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_XMLExtensionClass_delete(root);
    EXPECT_EQ(DDS_XMLExtensionClass_new(nullptr, nullptr, nullptr, 0U, nullptr, nullptr,
                                        new_recorded, delete_recorded, nullptr),
              nullptr);
    EXPECT_EQ(DDS_XMLExtensionClass_new("x", nullptr, nullptr, 0U, nullptr, nullptr, nullptr,
                                        delete_recorded, nullptr),
              nullptr);
    EXPECT_EQ(DDS_XMLExtensionClass_new("x", nullptr, nullptr, 0U, nullptr, nullptr, new_recorded,
                                        nullptr, nullptr),
              nullptr);
    EXPECT_EQ(DDS_XMLExtensionClass_get_user_data(nullptr), nullptr);
    EXPECT_EQ(DDS_XMLExtensionClass_get_tag_name(nullptr), nullptr);
}

}  // namespace
