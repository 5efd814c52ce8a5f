// SPDX-License-Identifier: Apache-2.0
// The output device.
//
// Each installation of a device is a slot that counts the threads inside the device's write. A slot
// that was replaced is closed by whoever finds the count at zero: the thread that replaces it, or
// the last thread to leave. The lock below guards counts and pointers and is never held across a
// call, so a device may log, take locks of its own, and replace itself.

#include "log/device.hpp"

#include <atomic>
#include <cstdio>
#include <new>

#include "kolt_internal/no_cancellation.hpp"
#include "log/text_buffer.hpp"
#include "os/owned_lock.hpp"

namespace kolt::log {

namespace {

struct Slot {
    explicit Slot(KOLT_Config_LoggerDevice *installed) : device(installed) {}

    KOLT_Config_LoggerDevice *device;
    int writers = 0;       // threads inside write
    bool retired = false;  // replaced: close it at zero writers
    bool awaited = false;  // the thread that replaced it waits for `closed` and frees the slot
    std::atomic<std::uint32_t> closed{0};
};

// A write in progress on this thread; they nest when devices log.
struct ActiveWrite {
    const KOLT_Config_LoggerDevice *device;
    const ActiveWrite *outer;
};

constinit thread_local const ActiveWrite *innermost_write = nullptr;

bool is_writing_to(const KOLT_Config_LoggerDevice *device) {
    for (const ActiveWrite *write = innermost_write; write != nullptr; write = write->outer) {
        if (write->device == device) {
            return true;
        }
    }
    return false;
}

constinit std::uint32_t lock_state = 0;
constinit std::uint64_t lock_owner = 0;
constinit Slot *current = nullptr;

class Guard {
  public:
    Guard() { os::OwnedLock(lock_state, lock_owner).take(); }
    ~Guard() { os::OwnedLock(lock_state, lock_owner).give(); }
    Guard(const Guard &) = delete;
    Guard &operator=(const Guard &) = delete;
};

// Calls close; no thread is inside write, and none can come in.
void close_slot(Slot *slot) {
    if (slot->device->close != nullptr) {
        slot->device->close(slot->device);
    }
    if (slot->awaited) {
        // The waiter may free the slot at once: the address is all that is used after the store.
        auto *word = reinterpret_cast<std::uint32_t *>(&slot->closed);
        slot->closed.store(1, std::memory_order_release);
        os::futex_wake(word, 1);
    } else {
        delete slot;
    }
}

void await_closed(Slot *slot) {
    auto *word = reinterpret_cast<std::uint32_t *>(&slot->closed);
    while (slot->closed.load(std::memory_order_acquire) == 0) {
        os::futex_wait(word, 0, os::kNever);
    }
    delete slot;
}

// The slot to write to; null for standard output.
Slot *enter() {
    const Guard guard;
    if (current == nullptr || is_writing_to(current->device)) {
        return nullptr;
    }
    ++current->writers;
    return current;
}

void leave(Slot *slot) {
    bool is_last = false;
    {
        const Guard guard;
        --slot->writers;
        is_last = slot->retired && slot->writers == 0;
    }
    if (is_last) {
        close_slot(slot);
    }
}

void write_to_standard_output(const KOLT_Config_LogMessage &message) {
    TextBuffer line;
    line.append(message.text);
    line.append("\n");
    // One call a line, so that lines of several threads do not mix.
    std::fwrite(line.c_str(), 1, line.view().size(), stdout);
    if (message.level <= KOLT_CONFIG_LOG_LEVEL_WARNING) {
        std::fflush(stdout);
    }
}

}  // namespace

void deliver(const KOLT_Config_LogMessage &message) {
    const NoCancellation no_cancellation;
    Slot *slot = enter();
    if (slot == nullptr) {
        write_to_standard_output(message);
        return;
    }
    const ActiveWrite write{slot->device, innermost_write};
    innermost_write = &write;
    slot->device->write(slot->device, &message);
    innermost_write = write.outer;
    leave(slot);
}

bool install_device(KOLT_Config_LoggerDevice *device) {
    if (installed_device() == device) {
        return true;
    }
    Slot *slot = nullptr;
    if (device != nullptr) {
        slot = new (std::nothrow) Slot(device);
        if (slot == nullptr) {
            return false;
        }
    }
    // Inside a write, waiting for others could be waiting for a thread that waits for this one.
    const bool may_wait = innermost_write == nullptr;
    Slot *old = nullptr;
    bool is_idle = false;
    {
        const Guard guard;
        old = current;
        current = slot;
        if (old == nullptr) {
            return true;
        }
        old->retired = true;
        is_idle = old->writers == 0;
        old->awaited = may_wait && !is_idle;
    }
    if (is_idle) {
        close_slot(old);
    } else if (may_wait) {
        await_closed(old);
    }
    return true;
}

KOLT_Config_LoggerDevice *installed_device() {
    const Guard guard;
    return current != nullptr ? current->device : nullptr;
}

}  // namespace kolt::log
