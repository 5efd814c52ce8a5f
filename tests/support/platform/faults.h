// SPDX-License-Identifier: Apache-2.0
// Functions that fail when a test wants them to: the n-th call, or every one.
#pragma once

#include <dlfcn.h>

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace support {

// Decides which calls of the functions that a test program stands in for shall fail. A function is
// known by its name. May be used by any thread.
class Faults {
  public:
    // The n-th call from now on fails, and no other; the next call is the first.
    static void fail_call(std::string_view function, int n = 1) {
        const std::lock_guard lock(mutex());
        Plan &plan = plan_of(function);
        plan.failing_call = plan.calls + n;
    }
    // Every call fails until heal() or clear().
    static void fail_every_call(std::string_view function) {
        const std::lock_guard lock(mutex());
        plan_of(function).always = true;
    }
    // No call fails any more. The counts of calls stay.
    static void heal() {
        const std::lock_guard lock(mutex());
        for (auto &[function, plan] : plans()) {
            plan = {.calls = plan.calls};
        }
    }
    // No call fails any more, and the counts begin at 0.
    static void clear() {
        const std::lock_guard lock(mutex());
        plans().clear();
    }
    // Returns how often the function was called since the last clear().
    static int calls(std::string_view function) {
        const std::lock_guard lock(mutex());
        return plan_of(function).calls;
    }
    // For the stand-in of a function: counts a call. True when this call shall fail.
    static bool strikes(std::string_view function) {
        const std::lock_guard lock(mutex());
        Plan &plan = plan_of(function);
        ++plan.calls;
        return plan.always || plan.calls == plan.failing_call;
    }

  private:
    struct Plan {
        int calls = 0;
        int failing_call = 0;  // counted like calls; 0: none
        bool always = false;
    };
    using Plans = std::map<std::string, Plan, std::less<>>;

    // Made by the first call: libraries call stand-ins before the program's own objects exist.
    static std::mutex &mutex() {
        static std::mutex instance;
        return instance;
    }
    static Plans &plans() {
        static Plans &instance = *new Plans;  // not deleted: libraries allocate at exit, too
        return instance;
    }
    static Plan &plan_of(std::string_view function) {
        const auto found = plans().find(function);
        return found != plans().end() ? found->second : plans()[std::string(function)];
    }
};

}  // namespace support

// Stands in for a function: calls the real one, or yields `failure` when the call shall fail.
// `parameters` is the list of its parameters and `arguments` that of their names, both in
// parentheses; `failure` may use the parameters, and `real`, the real function.
#define FAULT_POINT(Result, function, parameters, arguments, failure)                     \
    extern "C" Result function parameters {                                               \
        using Function = Result(*) parameters;                                            \
        static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, #function)); \
        if (support::Faults::strikes(#function)) {                                        \
            return failure;                                                               \
        }                                                                                 \
        return real arguments;                                                            \
    }
