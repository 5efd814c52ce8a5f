// SPDX-License-Identifier: Apache-2.0
// The examples of docs/operating.md and docs/configuration.md work: their documents are right and
// start loggers, their commands run and print the lines that the manuals show.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/domain.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/platform/process.h"
#include "support/platform/work_folder.h"

namespace {

using support::ChildProcess;
using Lines = std::vector<std::string>;
using Stream = ChildProcess::Stream;

constexpr int kStartDomain = 196;
constexpr int kEngineDomain = 197;
constexpr int kCommandDomain = 198;

struct Block {
    std::string place;  // "operating.md:12"
    std::string info;   // "xml", "sh", "console", ...
    std::string text;
};

std::string content_of(const std::string &path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Lines lines_of(const std::string &text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string joined(const Lines &lines) {
    std::string text;
    for (const std::string &line : lines) {
        text += line + "\n";
    }
    return text;
}

std::string replaced(std::string text, const std::string &what, const std::string &by) {
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

// The fenced blocks of a Markdown text, those in lists without their indentation.
std::vector<Block> blocks_of(const std::string &name, const std::string &text) {
    std::vector<Block> blocks;
    bool inside = false;
    std::size_t indentation = 0;
    std::size_t number = 0;
    for (const std::string &line : lines_of(text)) {
        ++number;
        const std::size_t fence = line.find_first_not_of(' ');
        if (fence != std::string::npos && line.compare(fence, 3, "```") == 0) {
            inside = !inside;
            indentation = fence;
            if (inside) {
                blocks.push_back({name + ":" + std::to_string(number), line.substr(fence + 3), ""});
            }
        } else if (inside) {
            blocks.back().text += line.substr(std::min(line.size(), indentation)) + "\n";
        }
    }
    EXPECT_FALSE(inside) << name << " ends in a block";
    return blocks;
}

// Every test has a working directory with the example under the name that the manuals use.
class ManualExamples : public testing::Test {
  protected:
    void SetUp() override {
        const char *source = std::getenv("VUR_DL_TEST_SOURCE_DIR");
        ASSERT_NE(source, nullptr) << "run by ctest";
        source_ = source;
        folder_.enter();
        unsetenv("KOLT_QOS_PROFILES");
        std::filesystem::copy(source_ + "/examples/distlog.xml", "distlog.xml");
        std::filesystem::create_directory_symlink(source_ + "/xml", "xml");
        for (const char *name : {"operating.md", "configuration.md"}) {
            const std::vector<Block> blocks =
                blocks_of(name, content_of(source_ + "/docs/" + name));
            blocks_.insert(blocks_.end(), blocks.begin(), blocks.end());
        }
        KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                         KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    }
    void TearDown() override { VUR_DL_DistLogger_finalizeInstance(); }

    std::vector<Block> blocks_of_kind(const std::string &info) const {
        std::vector<Block> blocks;
        for (const Block &block : blocks_) {
            if (block.info == info) {
                blocks.push_back(block);
            }
        }
        return blocks;
    }

    // A line of a shell in the working directory, with the command in its path.
    static int run(const std::string &line, Lines &out, Lines &err,
                   const ChildProcess::Environment &environment = {}) {
        const std::string tools =
            std::filesystem::path(support::binary_path("distlog")).parent_path();
        ChildProcess shell({"/bin/sh", "-c", "PATH='" + tools + "':\"$PATH\"; " + line},
                           environment);
        shell.close_input();
        const int code = shell.wait(std::chrono::seconds(60)).value_or(-1);
        out = shell.lines();
        err = shell.lines(Stream::kErr);
        return code;
    }
    static void expect_runs(const std::string &line, const std::string &place) {
        Lines out;
        Lines err;
        EXPECT_EQ(run(line, out, err), 0) << place << ": " << line << "\n"
                                          << joined(out) << joined(err);
    }

    static bool is_engine_configuration(const Block &block) {
        return block.text.find("<CycloneDDS>") != std::string::npos;
    }

    std::string source_;
    support::WorkFolder folder_;
    std::vector<Block> blocks_;
};

TEST_F(ManualExamples, DocumentsAreRight) {
    int count = 0;
    for (const Block &block : blocks_of_kind("xml")) {
        if (is_engine_configuration(block)) {
            continue;
        }
        SCOPED_TRACE(block.place);
        ++count;
        const bool whole = block.text.find("<dds>") != std::string::npos;
        std::ofstream("block.xml") << (whole ? block.text : "<dds>\n" + block.text + "</dds>\n");
        expect_runs("xmllint --noout --nonet --schema xml/distlog.xsd block.xml 2>&1", block.place);
        expect_runs("distlog check block.xml", block.place);
        // One element stands for a whole document only where it is the logger's.
        const bool starts = block.text.find("<distributed_logger>") != std::string::npos &&
                            block.text.find("...") == std::string::npos;
        if (starts) {
            EXPECT_EQ(VUR_DL_XMLConfig_startFromFile("block.xml", nullptr, kStartDomain, "manual"),
                      1);
            EXPECT_NE(VUR_DL_DistLogger_isDistLoggerRunning(), 0);
            VUR_DL_DistLogger_finalizeInstance();
            DDS_DomainParticipantFactory_finalize_instance();
        }
    }
    EXPECT_GE(count, 5);
}

TEST_F(ManualExamples, EngineConfigurationsAreAccepted) {
    int count = 0;
    for (const Block &block : blocks_of_kind("xml")) {
        if (!is_engine_configuration(block)) {
            continue;
        }
        SCOPED_TRACE(block.place);
        ++count;
        Lines out;
        Lines err;
        // One that names no interface stands behind the configuration that names the loopback one.
        const std::string text = replaced(block.text, "\n", " ");
        const std::string uri =
            text.find("NetworkInterface") != std::string::npos
                ? text
                : "file://" + source_ + "/config/cyclonedds-loopback.xml," + text;
        EXPECT_EQ(run("distlog ls --timeout 200ms --domain " + std::to_string(kEngineDomain), out,
                      err, {{"CYCLONEDDS_URI", uri}}),
                  0);
        EXPECT_EQ(err, Lines{"distlog: no logger in domain " + std::to_string(kEngineDomain)});
    }
    EXPECT_GE(count, 2);
}

// Each line of a shell block, against a logger that is really there.
TEST_F(ManualExamples, CommandsRun) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    VUR_DL_Options_setDomainId(options, kCommandDomain);
    VUR_DL_Options_setApplicationKind(options, "thruster control");
    VUR_DL_Options_setEchoToStdout(options, 0);
    ASSERT_EQ(VUR_DL_DistLogger_setOptions(options), 1);
    VUR_DL_Options_delete(options);
    ASSERT_NE(VUR_DL_DistLogger_getInstance(), nullptr);

    std::set<std::string> subcommands;
    for (const Block &block : blocks_of_kind("sh")) {
        for (const std::string &line : lines_of(block.text)) {
            const std::size_t at = line.find("distlog ");
            if (at != std::string::npos) {
                subcommands.insert(line.substr(at + 8, line.find(' ', at + 8) - at - 8));
            }
            expect_runs(replaced(replaced(line, "--domain 3", "--domain 198"), "10s", "1s"),
                        block.place);
        }
    }
    for (const char *expected : {"check", "ls", "set", "tail"}) {
        EXPECT_TRUE(subcommands.contains(expected)) << expected;
    }
}

// A line "..." of what is expected stands for any number of lines.
void expect_output(const Lines &expected, const Lines &actual) {
    std::size_t next = 0;
    bool anywhere = false;
    for (const std::string &line : expected) {
        if (line == "...") {
            anywhere = true;
            continue;
        }
        const auto begin = actual.begin() + static_cast<std::ptrdiff_t>(next);
        const auto found = anywhere ? std::find(begin, actual.end(), line) : begin;
        ASSERT_NE(found, actual.end()) << "no line '" << line << "' in\n" << joined(actual);
        EXPECT_EQ(*found, line);
        next = static_cast<std::size_t>(found - actual.begin()) + 1;
        anywhere = false;
    }
    EXPECT_TRUE(anywhere || next == actual.size()) << joined(actual);
}

// A console block shows a command on the document before it, and its output, standard error first.
TEST_F(ManualExamples, OutputIsAsShown) {
    int count = 0;
    for (std::size_t i = 0; i < blocks_.size(); ++i) {
        const Block &block = blocks_[i];
        if (block.info != "console") {
            continue;
        }
        SCOPED_TRACE(block.place);
        ++count;
        ASSERT_GT(i, 0U);
        std::ofstream("distlog.xml") << blocks_[i - 1].text;
        Lines expected = lines_of(block.text);
        ASSERT_FALSE(expected.empty());
        ASSERT_EQ(expected.front().rfind("$ ", 0), 0U);
        Lines out;
        Lines err;
        run(expected.front().substr(2), out, err);
        expected.erase(expected.begin());
        err.insert(err.end(), out.begin(), out.end());
        expect_output(expected, err);
    }
    EXPECT_GE(count, 2);
}

// Nothing that a document may hold is left out of the manual.
TEST_F(ManualExamples, TheManualNamesEverything) {
    const std::string manual = content_of(source_ + "/docs/configuration.md");
    const std::string schema = content_of(source_ + "/xml/distlog.xsd");
    int count = 0;
    const auto expect_named = [&](const std::string &mark) {
        for (std::size_t at = schema.find(mark); at != std::string::npos;
             at = schema.find(mark, at + 1)) {
            const std::size_t begin = at + mark.size();
            const std::string name = schema.substr(begin, schema.find('"', begin) - begin);
            // The manual names these with their prefixes by a rule.
            if (name.rfind("DDS_", 0) != 0 && name.rfind("THREAD_", 0) != 0) {
                ++count;
                EXPECT_NE(manual.find(name), std::string::npos) << name;
            }
        }
    };
    expect_named("<xs:element name=\"");
    expect_named("<xs:attribute name=\"");
    expect_named("<xs:enumeration value=\"");
    EXPECT_GT(count, 100);
}

}  // namespace
