// SPDX-License-Identifier: Apache-2.0
// Lists of owned objects that are named, from outside, by plain pointers.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

namespace kolt::engine {

// Returns pointers to the present elements of `list`, which `mutex` guards.
template <typename T>
std::vector<T *> pointers(std::mutex &mutex, const std::vector<std::unique_ptr<T>> &list) {
    const std::lock_guard lock(mutex);
    std::vector<T *> result;
    result.reserve(list.size());
    for (const auto &element : list) {
        result.push_back(element.get());
    }
    return result;
}

// Takes the element that holds `raw` out of `list`; nullptr when it is not there.
template <typename T>
std::unique_ptr<T> extract(std::vector<std::unique_ptr<T>> &list, const T *raw) {
    for (auto it = list.begin(); it != list.end(); ++it) {
        if (it->get() == raw) {
            std::unique_ptr<T> result = std::move(*it);
            list.erase(it);
            return result;
        }
    }
    return nullptr;
}

// True when `list` holds `raw`.
template <typename T>
bool contains_pointer(const std::vector<std::unique_ptr<T>> &list, const T *raw) {
    for (const auto &element : list) {
        if (element.get() == raw) {
            return true;
        }
    }
    return false;
}

}  // namespace kolt::engine
