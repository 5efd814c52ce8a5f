// SPDX-License-Identifier: Apache-2.0
// A writer and a reader with a listener of the engine's own, for a type that idlc compiled. The
// engine's headers and those of the C API define some of the same names, so this has a file of its own.
#pragma once

#include <functional>

namespace bench {

class EnginePair {
  public:
    // `on_data` is called on the thread that the engine calls its listeners on.
    EnginePair(int domain, std::function<void()> on_data);
    ~EnginePair();
    EnginePair(const EnginePair &) = delete;
    EnginePair &operator=(const EnginePair &) = delete;

    // Writes one log message.
    void write();

  private:
    static void take(int reader, void *self);

    std::function<void()> on_data_;
    int participant_;
    int writer_;
};

}  // namespace bench
