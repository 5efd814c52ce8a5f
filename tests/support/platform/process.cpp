// SPDX-License-Identifier: Apache-2.0
// Real processes for tests, and this process's own standard output.
#include "support/platform/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

extern char **environ;

namespace support {
namespace {

std::string environment_variable(const char *name) {
    const char *value = std::getenv(name);
    if (value == nullptr) {
        throw std::runtime_error(std::string(name) + " is not set: run this through ctest");
    }
    return value;
}

void check(bool ok, const char *what) {
    if (!ok) {
        throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
    }
}

// Both ends close when another child is started.
std::pair<int, int> make_pipe() {
    int ends[2];
    check(pipe2(ends, O_CLOEXEC) == 0, "pipe2");
    return {ends[0], ends[1]};
}

std::vector<std::string> merged_environment(const ChildProcess::Environment &additions) {
    std::vector<std::string> result;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        const std::string text(*entry);
        const std::string name = text.substr(0, text.find('='));
        if (std::none_of(additions.begin(), additions.end(),
                         [&](const auto &addition) { return addition.first == name; })) {
            result.push_back(text);
        }
    }
    for (const auto &[name, value] : additions) {
        result.push_back(name + "=" + value);
    }
    return result;
}

std::vector<char *> pointers(std::vector<std::string> &texts) {
    std::vector<char *> result;
    for (std::string &text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

pid_t spawn(std::vector<std::string> command, const ChildProcess::Environment &additions, int in,
            int out, int err) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    std::vector<std::string> environment = merged_environment(additions);
    pid_t pid = -1;
    const int error = posix_spawn(&pid, command.at(0).c_str(), &actions, &attributes,
                                  pointers(command).data(), pointers(environment).data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    errno = error;
    check(error == 0, command.at(0).c_str());
    return pid;
}

int decode(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::vector<std::string> split_lines(const std::string &text) {
    std::vector<std::string> result;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        result.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return result;
}

}  // namespace

std::string binary_path(const std::string &name) {
    return environment_variable("VUR_DL_TEST_BIN_DIR") + "/" + name;
}

std::string helper_path(const std::string &name) {
    return environment_variable("VUR_DL_TEST_BIN_DIR") + "/tests/" + name;
}

bool eventually(const std::function<bool()> &condition, std::chrono::milliseconds within) {
    const auto deadline = std::chrono::steady_clock::now() + within;
    std::chrono::milliseconds pause{1};
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::milliseconds(50));
    }
    return true;
}

ChildProcess::ChildProcess(const std::vector<std::string> &command,
                           const Environment &environment) {
    // A child that has gone is a failed write here, not the end of the test program.
    ::signal(SIGPIPE, SIG_IGN);
    const auto [child_in, to_child] = make_pipe();
    const auto [from_out, child_out] = make_pipe();
    const auto [from_err, child_err] = make_pipe();
    pid_ = spawn(command, environment, child_in, child_out, child_err);
    close(child_in);
    close(child_out);
    close(child_err);
    input_ = to_child;
    out_.fd = from_out;
    err_.fd = from_err;
    pidfd_ = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
    quit_ = eventfd(0, EFD_CLOEXEC);
    check(pidfd_ >= 0 && quit_ >= 0, "pidfd_open");
    collector_ = std::thread([this] { collect(); });
}

ChildProcess::~ChildProcess() {
    if (!wait(std::chrono::milliseconds(0))) {
        signal(SIGKILL);
        wait();
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(quit_, &one, sizeof one);
    collector_.join();
    close_input();
    for (const int fd : {out_.fd, err_.fd, pidfd_, quit_}) {
        close(fd);
    }
}

void ChildProcess::say(const std::string &line) {
    const std::string text = line + "\n";
    check(write(input_, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
          "write to child");
}

void ChildProcess::close_input() {
    if (input_ >= 0) {
        close(input_);
        input_ = -1;
    }
}

// Reads what is there. False at the end of the stream.
bool ChildProcess::read_some(Pipe &pipe) {
    char buffer[65536];
    const ssize_t got = read(pipe.fd, buffer, sizeof buffer);
    const std::lock_guard<std::mutex> lock(mutex_);
    if (got > 0) {
        pipe.partial.append(buffer, static_cast<std::size_t>(got));
        std::size_t end = 0;
        std::size_t begin = 0;
        while ((end = pipe.partial.find('\n', begin)) != std::string::npos) {
            pipe.lines.push_back(pipe.partial.substr(begin, end - begin));
            begin = end + 1;
        }
        pipe.partial.erase(0, begin);
    } else if (got == 0) {
        if (!pipe.partial.empty()) {
            pipe.lines.push_back(pipe.partial);
        }
        pipe.ended = true;
    }
    changed_.notify_all();
    return got > 0;
}

void ChildProcess::collect() {
    pollfd watched[] = {
        {out_.fd, POLLIN, 0}, {err_.fd, POLLIN, 0}, {pidfd_, POLLIN, 0}, {quit_, POLLIN, 0}};
    for (;;) {
        if (poll(watched, 4, -1) < 0) {
            continue;
        }
        if (watched[0].revents != 0 && !read_some(out_)) {
            watched[0].fd = -1;
        }
        if (watched[1].revents != 0 && !read_some(err_)) {
            watched[1].fd = -1;
        }
        // A child's own children may hold its streams open: its end does not wait for theirs.
        if (watched[2].revents != 0) {
            int status = 0;
            if (waitpid(pid_, &status, WNOHANG) == pid_) {
                const std::lock_guard<std::mutex> lock(mutex_);
                exit_code_ = decode(status);
                changed_.notify_all();
                watched[2].fd = -1;
            }
        }
        if (watched[3].revents != 0) {
            return;
        }
    }
}

std::optional<std::string> ChildProcess::read_line(Stream stream,
                                                   std::chrono::milliseconds within) {
    std::unique_lock<std::mutex> lock(mutex_);
    Pipe &pipe = pipe_of(stream);
    changed_.wait_for(lock, within, [&] { return pipe.next < pipe.lines.size() || pipe.ended; });
    if (pipe.next >= pipe.lines.size()) {
        return std::nullopt;
    }
    return pipe.lines[pipe.next++];
}

std::optional<std::string> ChildProcess::read_line_with(const std::string &text, Stream stream,
                                                        std::chrono::milliseconds within) {
    const auto deadline = std::chrono::steady_clock::now() + within;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        std::optional<std::string> line =
            read_line(stream, std::max(left, std::chrono::milliseconds(0)));
        if (!line || line->find(text) != std::string::npos) {
            return line;
        }
    }
}

std::vector<std::string> ChildProcess::lines(Stream stream) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return pipe_of(stream).lines;
}

void ChildProcess::signal(int number) {
    // By file descriptor: a process id may belong to someone else by now.
    syscall(SYS_pidfd_send_signal, pidfd_, number, nullptr, 0);
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds within) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, within, [&] { return exit_code_ && out_.ended && err_.ended; });
    return exit_code_ && out_.ended && err_.ended ? exit_code_ : std::nullopt;
}

StdoutCapture::StdoutCapture() {
    std::fflush(stdout);
    saved_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    file_ = memfd_create("stdout", MFD_CLOEXEC);
    check(saved_ >= 0 && file_ >= 0 && dup2(file_, STDOUT_FILENO) >= 0, "capture");
}

StdoutCapture::~StdoutCapture() {
    const std::string captured = text();
    dup2(saved_, STDOUT_FILENO);
    // Passed on, so that the reasons of a failed test are not lost with it.
    std::fputs(captured.c_str(), stdout);
    std::fflush(stdout);
    close(saved_);
    close(file_);
}

std::string StdoutCapture::text() {
    std::fflush(stdout);
    std::string result;
    char buffer[65536];
    ssize_t got = 0;
    // Reads beside the shared file position, at which the writes go on.
    while ((got = pread(file_, buffer, sizeof buffer, static_cast<off_t>(result.size()))) > 0) {
        result.append(buffer, static_cast<std::size_t>(got));
    }
    return result;
}

std::vector<std::string> StdoutCapture::lines() {
    return split_lines(text());
}

int StdoutCapture::count(const std::string &line) {
    const std::vector<std::string> all = lines();
    return static_cast<int>(std::count(all.begin(), all.end(), line));
}

}  // namespace support
