// SPDX-License-Identifier: Apache-2.0
// A folder of a test's own, removed with all that is in it.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace support {

class WorkFolder {
  public:
    WorkFolder() {
        char name[] = "/tmp/vur_dl_test_XXXXXX";
        EXPECT_NE(mkdtemp(name), nullptr);
        path_ = name;
    }
    // Leaves and removes the folder.
    ~WorkFolder() {
        if (is_entered_) {
            EXPECT_EQ(chdir("/"), 0);
        }
        std::error_code error;
        std::filesystem::remove_all(path_, error);
        EXPECT_FALSE(error) << path_ << ": " << error.message();
    }
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;

    // Makes it the working directory of the process, until it is removed.
    void enter() {
        ASSERT_EQ(chdir(path_.c_str()), 0);
        is_entered_ = true;
    }
    const std::string &path() const { return path_; }
    // Returns the path of a file in the folder, which need not exist.
    std::string path(const std::string &name) const { return path_ + "/" + name; }
    // Writes a file and returns its path.
    std::string write(const std::string &name, const std::string &content) const {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }

  private:
    std::string path_;
    bool is_entered_ = false;
};

}  // namespace support
