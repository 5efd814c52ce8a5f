// SPDX-License-Identifier: Apache-2.0
// The instances that a writer has registered, by itself or by writing them.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "engine/data/instance_pin.hpp"
#include "engine/data/key_bytes.hpp"

namespace kolt::engine {

class InstanceRegistry {
  public:
    // Registers the instance of this key.
    void add(std::string_view key) {
        const std::lock_guard lock(mutex_);
        if (by_key_.find(key) == by_key_.end()) {
            by_key_.emplace(std::string(key), InstancePin());
        }
    }
    bool contains(std::string_view key) const {
        const std::lock_guard lock(mutex_);
        return by_key_.find(key) != by_key_.end();
    }
    // Returns the handle of the instance; DDS_HANDLE_NIL when it has no pin.
    DDS_InstanceHandle_t handle_of(std::string_view key) const {
        const std::lock_guard lock(mutex_);
        const auto found = by_key_.find(key);
        return found != by_key_.end() ? found->second.handle() : DDS_HANDLE_NIL;
    }
    // Registers the instance, keeps the pin unless it has one already, and returns its handle.
    DDS_InstanceHandle_t keep(std::string_view key, InstancePin &pin) {
        const std::lock_guard lock(mutex_);
        InstancePin &kept = by_key_.try_emplace(std::string(key)).first->second;
        if (kept.handle() == DDS_HANDLE_NIL) {
            by_handle_.insert_or_assign(pin.handle(), std::string(key));
            kept = std::move(pin);
        }
        return kept.handle();
    }
    // Gets the key of the instance with this handle. False when there is none.
    bool find(DDS_InstanceHandle_t handle, KeyBytes *key) const {
        const std::lock_guard lock(mutex_);
        const auto found = by_handle_.find(handle);
        if (found == by_handle_.end()) {
            return false;
        }
        assign(found->second, key);
        return true;
    }
    // Gets the key of any one instance without a handle. False when every instance has one.
    bool find_without_handle(KeyBytes *key) const {
        const std::lock_guard lock(mutex_);
        for (const auto &[bytes, pin] : by_key_) {
            if (pin.handle() != DDS_HANDLE_NIL) {
                continue;
            }
            assign(bytes, key);
            return true;
        }
        return false;
    }
    void remove(std::string_view key) {
        InstancePin pin;  // goes back to the engine without the lock
        const std::lock_guard lock(mutex_);
        const auto found = by_key_.find(key);
        if (found == by_key_.end()) {
            return;
        }
        by_handle_.erase(found->second.handle());
        pin = std::move(found->second);
        by_key_.erase(found);
    }

  private:
    // Lets a string_view be looked up without making a string of it.
    struct Hash {
        using is_transparent = void;  // NOLINT(readability-identifier-naming): the library's name
        std::size_t operator()(std::string_view key) const {
            return std::hash<std::string_view>()(key);
        }
    };

    static void assign(const std::string &bytes, KeyBytes *key) {
        key->assign(reinterpret_cast<const DDS_Octet *>(bytes.data()), bytes.size());
    }

    mutable std::mutex mutex_;
    std::unordered_map<std::string, InstancePin, Hash, std::equal_to<>> by_key_;
    std::unordered_map<DDS_InstanceHandle_t, std::string> by_handle_;
};

}  // namespace kolt::engine
