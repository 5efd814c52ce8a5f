// How the entity functions report: one log line for each failure that a user can cause, and no
// exception past a C function.
#pragma once

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

// Logs a NULL or otherwise useless argument.
DDS_ReturnCode_t bad_parameter(const char *method, const char *name);

// Logs and returns NOT_ENABLED.
DDS_ReturnCode_t not_enabled(const char *method);

// Logs what happened to an entity at level STATUS_LOCAL.
void note_entity(const char *method, const char *what, const char *kind, const char *name);

// Runs `body` and returns what it returns. Memory that runs out, or anything else that is thrown,
// becomes the function's own kind of failure: a return code, NULL, 0.
template <typename Body>
auto guarded(const char *method, Body &&body) noexcept -> decltype(body()) {
    using Result = decltype(body());
    DDS_ReturnCode_t code = DDS_RETCODE_ERROR;
    try {
        return body();
    } catch (const std::bad_alloc &) {
        code = fail(DDS_RETCODE_OUT_OF_RESOURCES, method, "memory ran out");
    } catch (...) {
        code = fail(DDS_RETCODE_ERROR, method, "unexpected failure");
    }
    if constexpr (std::is_same_v<Result, DDS_ReturnCode_t>) {
        return code;
    } else if constexpr (!std::is_void_v<Result>) {
        return Result{};
    }
}

// Checks `self`, runs `body(implementation)` behind the exception barrier.
template <typename Impl, typename Handle, typename Body>
auto with(Handle *self, const char *method, Body &&body) noexcept
    -> decltype(body(std::declval<Impl &>())) {
    using Result = decltype(body(std::declval<Impl &>()));
    Impl *const impl = Impl::of(self);
    if (impl == nullptr) {
        bad_parameter(method, "self");
        if constexpr (std::is_same_v<Result, DDS_ReturnCode_t>) {
            return DDS_RETCODE_BAD_PARAMETER;
        } else {
            return Result{};
        }
    }
    return guarded(method, [&] { return body(*impl); });
}

}  // namespace kolt::engine
