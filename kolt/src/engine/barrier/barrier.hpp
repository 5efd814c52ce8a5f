// SPDX-License-Identifier: Apache-2.0
// The barrier between the C functions and their implementations: it checks arguments, logs one line
// for each failure that a user can cause, and stops exceptions.
#pragma once

#include <functional>
#include <new>
#include <type_traits>
#include <utility>

#include "kolt/config_logger.h"
#include "kolt/infrastructure.h"

namespace kolt::engine {

// Logs the failure of `method` at level ERROR, under category API for a bad parameter and under
// ENTITIES otherwise, and returns `code`.
DDS_ReturnCode_t fail(DDS_ReturnCode_t code, const char *method, const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 3, 4)))
#endif
    ;

// Logs that the argument `name` is NULL or out of range, and returns BAD_PARAMETER.
DDS_ReturnCode_t bad_parameter(const char *method, const char *name);
// Logs that the argument `name` is NULL or an entity of another kind, and returns BAD_PARAMETER.
DDS_ReturnCode_t bad_handle(const char *method, const char *name, const void *handle);

// Logs and returns NOT_ENABLED.
DDS_ReturnCode_t not_enabled(const char *method);

// Logs at level STATUS_LOCAL that an entity was created, deleted or the like (`what`).
void note_entity(const char *method, const char *what, const char *kind, const char *name);

// Returns the result of a function that fails: `code` if it is a return code, else NULL, 0 or an
// empty record.
template <typename Result>
Result failure(DDS_ReturnCode_t code) {
    if constexpr (std::is_same_v<Result, DDS_ReturnCode_t>) {
        return code;
    } else {
        return Result();
    }
}

// Calls `body(arguments...)`, with `method` behind the arguments if `body` takes it.
template <typename Body, typename... Arguments>
auto call_with_method(const char *method, Body &&body, Arguments &&...arguments) {
    if constexpr (std::is_invocable_v<Body &, Arguments..., const char *>) {
        return std::invoke(body, std::forward<Arguments>(arguments)..., method);
    } else {
        return std::invoke(body, std::forward<Arguments>(arguments)...);
    }
}

// Runs `body()` or `body(method)` and returns what it returns. Memory that runs out, or anything
// else that is thrown, becomes the function's own kind of failure.
template <typename Body>
auto guarded(const char *method, Body &&body) noexcept {
    using Result = decltype(call_with_method(method, body));
    DDS_ReturnCode_t code = DDS_RETCODE_ERROR;
    try {
        return call_with_method(method, body);
    } catch (const std::bad_alloc &) {
        code = fail(DDS_RETCODE_OUT_OF_RESOURCES, method, "memory ran out");
    } catch (...) {
        code = fail(DDS_RETCODE_ERROR, method,
                    "an exception was thrown that the function does not expect");
    }
    return failure<Result>(code);
}

// Checks `self`, and runs `body(implementation)` or `body(implementation, method)` behind the
// exception barrier.
template <typename Impl, typename Handle, typename Body>
auto with(Handle *self, const char *method, Body &&body) noexcept {
    using Result = decltype(call_with_method(method, body, std::declval<Impl &>()));
    Impl *const impl = Impl::of(self);
    if (impl == nullptr) {
        bad_handle(method, "self", self);
        return failure<Result>(DDS_RETCODE_BAD_PARAMETER);
    }
    return guarded(method, [&] { return call_with_method(method, body, *impl); });
}

// An argument of a C function that must not be NULL. The log calls it `name`; `get(pointer)` is
// handed on, and must not be NULL either.
template <typename Pointee, typename Get>
struct Required {
    Pointee *pointer;
    const char *name;
    Get get;
};

// Marks an argument whose pointer is handed on.
template <typename Pointee>
auto required(Pointee *pointer, const char *name) {
    const auto get = [](Pointee *p) { return p; };
    return Required<Pointee, decltype(get)>{pointer, name, get};
}
// Marks an argument whose pointee is handed on, by reference.
template <typename Pointee>
auto required_value(Pointee *pointer, const char *name) {
    const auto get = [](Pointee *p) -> Pointee & { return *p; };
    return Required<Pointee, decltype(get)>{pointer, name, get};
}
// Marks a handle whose implementation is handed on.
template <typename Impl, typename Handle>
auto required_as(Handle *handle, const char *name) {
    const auto get = [](Handle *h) { return Impl::of(h); };
    return Required<Handle, decltype(get)>{handle, name, get};
}

namespace barrier_detail {

// Logs that a required argument is NULL, or an entity of another kind. False for any other argument.
template <typename Argument>
bool refuse(const char *, const Argument &) {
    return false;
}
template <typename Pointee, typename Get>
bool refuse(const char *method, const Required<Pointee, Get> &argument) {
    bool is_usable = argument.pointer != nullptr;
    if constexpr (std::is_pointer_v<std::invoke_result_t<Get, Pointee *>>) {
        is_usable = is_usable && argument.get(argument.pointer) != nullptr;
    }
    if (!is_usable) {
        bad_handle(method, argument.name, argument.pointer);
    }
    return !is_usable;
}

template <typename Argument>
const Argument &handed_on(const Argument &argument) {
    return argument;
}
template <typename Pointee, typename Get>
decltype(auto) handed_on(const Required<Pointee, Get> &argument) {
    return argument.get(argument.pointer);
}

}  // namespace barrier_detail

// Checks the required arguments in their order, then `self`, and calls
// `body(implementation, arguments...)` behind the exception barrier, with `method` as the last
// argument if `body` takes it.
template <typename Impl, typename Handle, typename Body, typename... Arguments>
auto forward(Handle *self, const char *method, const Body &body,
             const Arguments &...arguments) noexcept {
    const auto call = [&](Impl &impl) {
        return call_with_method(method, body, impl, barrier_detail::handed_on(arguments)...);
    };
    using Result = decltype(call(std::declval<Impl &>()));
    if ((barrier_detail::refuse(method, arguments) || ...)) {
        return failure<Result>(DDS_RETCODE_BAD_PARAMETER);
    }
    return with<Impl>(self, method, call);
}

// The same for a member function of the implementation.
template <typename Handle, typename Impl, typename Function, typename... Arguments>
auto forward(Handle *self, const char *method, Function Impl::*member,
             const Arguments &...arguments) noexcept {
    return forward<std::remove_pointer_t<decltype(Impl::of(self))>>(self, method, member,
                                                                    arguments...);
}

}  // namespace kolt::engine
