// SPDX-License-Identifier: Apache-2.0
// Real processes for tests: children with their output line by line, and this process's own
// standard output.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace support {

// The longest wait for something that is going to happen. Generous, since a loaded machine and the
// sanitizers slow everything down, and only failures pay for it.
constexpr std::chrono::seconds kPatience{30};

// Returns the path of a program of the build, or of a test helper, from the environment.
std::string binary_path(const std::string &name);
std::string helper_path(const std::string &name);

// Looks again, with growing pauses, until `condition` holds; false when it does not in time.
bool eventually(const std::function<bool()> &condition,
                std::chrono::milliseconds within = kPatience);

// A child process. Ended, at the latest, with this object.
class ChildProcess {
  public:
    enum class Stream { kOut, kErr };
    using Environment = std::vector<std::pair<std::string, std::string>>;

    // `command`: path and arguments. `environment` is added to that of this process.
    explicit ChildProcess(const std::vector<std::string> &command,
                          const Environment &environment = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    pid_t pid() const { return pid_; }
    // Writes a line to the child's standard input.
    void say(const std::string &line);
    void close_input();

    // Returns the next line of a stream that was not returned before, without its newline; empty
    // when none comes in time or the stream has ended.
    std::optional<std::string> read_line(Stream stream = Stream::kOut,
                                         std::chrono::milliseconds within = kPatience);
    // Reads on until a line contains `text`, and returns that line.
    std::optional<std::string> read_line_with(const std::string &text, Stream stream = Stream::kOut,
                                              std::chrono::milliseconds within = kPatience);
    // Returns all lines so far, also those that were returned before.
    std::vector<std::string> lines(Stream stream = Stream::kOut);

    void signal(int number);
    // Returns the exit code, or 128 plus the number of the signal that ended it; empty when it does
    // not end in time. All of its output has arrived when this returns a value.
    std::optional<int> wait(std::chrono::milliseconds within = kPatience);

  private:
    struct Pipe {
        int fd = -1;
        std::string partial;
        std::vector<std::string> lines;
        std::size_t next = 0;
        bool ended = false;
    };

    void collect();
    bool read_some(Pipe &pipe);
    Pipe &pipe_of(Stream stream) { return stream == Stream::kOut ? out_ : err_; }

    pid_t pid_ = -1;
    int input_ = -1;
    int pidfd_ = -1;
    int quit_ = -1;
    std::mutex mutex_;
    std::condition_variable changed_;
    Pipe out_;
    Pipe err_;
    std::optional<int> exit_code_;
    std::thread collector_;
};

// Collects what this process writes to standard output, through stdio or not, while it lives.
class StdoutCapture {
  public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture &) = delete;
    StdoutCapture &operator=(const StdoutCapture &) = delete;

    // Returns the text that was written since the capture began.
    std::string text();
    std::vector<std::string> lines();
    // Returns the number of lines that are equal to `line`.
    int count(const std::string &line);

  private:
    int saved_ = -1;
    int file_ = -1;
};

}  // namespace support
