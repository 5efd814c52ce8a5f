// SPDX-License-Identifier: Apache-2.0
// An application that logs, led line by line through its standard input:
//
//   option NAME VALUE   domain, filter, queue, echo, forward, remote, kind: for the next creation
//   create              creates the logger
//   log LEVEL CATEGORY TEXT     "-" stands for an empty category
//   series COUNT LEVEL          logs "1" to "COUNT"
//   finalize            finalises the logger
//   die                 ends the process as a crash does
//
// Each line is answered with "ok" or "failed" once it has been carried out. The end of the input
// ends the application, its logger finalised.
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <sstream>
#include <string>

#include "support/logger/logger.h"

namespace {

bool set_option(support::LoggerOptions &options, const std::string &name,
                const std::string &value) {
    if (name == "kind") {
        options.kind = value;
        return true;
    }
    const int number = std::stoi(value);
    if (name == "domain") {
        options.domain = number;
    } else if (name == "filter") {
        options.filter_level = number;
    } else if (name == "queue") {
        options.queue_size = number;
    } else if (name == "echo") {
        options.echo = number != 0;
    } else if (name == "forward") {
        options.forward = number != 0;
    } else if (name == "remote") {
        options.remote = number != 0;
    } else {
        return false;
    }
    return true;
}

class Application {
  public:
    bool obey(const std::string &line) {
        std::istringstream words(line);
        std::string verb;
        words >> verb;
        if (verb == "option") {
            std::string name;
            std::string value;
            words >> name >> value;
            return set_option(options_, name, value);
        }
        if (verb == "create") {
            logger_ = support::store_options(options_) ? VUR_DL_DistLogger_getInstance() : nullptr;
            return logger_ != nullptr;
        }
        if (verb == "log") {
            return log(words);
        }
        if (verb == "series") {
            return log_series(words);
        }
        if (verb == "finalize") {
            return VUR_DL_DistLogger_finalizeInstance() == 0;
        }
        if (verb == "die") {
            kill(getpid(), SIGKILL);
        }
        return false;
    }

  private:
    bool log(std::istringstream &words) {
        int level = 0;
        std::string category;
        words >> level >> category;
        std::string text;
        std::getline(words >> std::ws, text);
        VUR_DL_DistLogger_logMessageWithLevelCategory(logger_, level, text.c_str(),
                                                      category == "-" ? "" : category.c_str());
        return true;
    }
    bool log_series(std::istringstream &words) {
        int count = 0;
        int level = 0;
        words >> count >> level;
        for (int i = 1; i <= count; ++i) {
            VUR_DL_DistLogger_log(logger_, level, std::to_string(i).c_str());
        }
        return true;
    }

    support::LoggerOptions options_;
    VUR_DL_DistLogger *logger_ = nullptr;
};

}  // namespace

int main() {
    Application application;
    std::string line;
    while (std::getline(std::cin, line)) {
        std::cout << (application.obey(line) ? "ok" : "failed") << std::endl;
    }
    return VUR_DL_DistLogger_finalizeInstance();
}
