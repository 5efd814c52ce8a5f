// SPDX-License-Identifier: Apache-2.0
// The thread of a participant on which its listeners are called.
//
// The engine's threads only note events; this thread tells the listeners of them, one event after the
// other, in the order in which they came, with no lock held. An event that comes again before it was
// told is told once.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace kolt::engine {

class ListenerThread {
  public:
    // An entity of which listeners are told while it is open.
    class Source {
      public:
        explicit Source(void *entity) : entity_(entity) {}
        Source(const Source &) = delete;
        Source &operator=(const Source &) = delete;

      private:
        friend class ListenerThread;

        void *const entity_;
        bool open_ = false;
    };

    // Something that listeners can be told of an entity. It has a place in the queue of its own, so
    // that noting it needs no memory.
    class Event {
      public:
        using Tell = void (*)(void *entity);
        Event(Source &source, Tell tell) : source_(source), tell_(tell) {}
        Event(const Event &) = delete;
        Event &operator=(const Event &) = delete;

      private:
        friend class ListenerThread;

        Source &source_;
        const Tell tell_;
        Event *next_ = nullptr;
        bool queued_ = false;
    };

    ListenerThread() : state_(std::make_shared<State>()) {}
    // Waits for a callback in progress, unless called from it.
    ~ListenerThread() { stop(); }
    ListenerThread(const ListenerThread &) = delete;
    ListenerThread &operator=(const ListenerThread &) = delete;

    // Starts the thread unless it runs. False when the system has none left.
    bool start();
    // Ends the thread. What has not been told is told to nobody.
    void stop();
    // Appends an event to the queue, unless it is there or its source is not open. Without a thread
    // there is no listener, and nothing to do.
    void post(Event &event);
    // From now on listeners are told of the entity.
    void open(Source &source);
    // Forgets the events of an entity, and waits for a callback about it to end, unless called from
    // there. None comes after it.
    void close(Source &source);

    // Guards the listeners, so that the one that is called and the one that is replaced are the same.
    std::mutex &mutex() const { return state_->mutex; }
    // With the mutex held, from within the telling of an event: the listener in `slot` is going to be
    // called.
    void mark_called(const void *slot) { state_->called = slot; }
    // With the mutex held: waits until the listener in `slot` is not being called, unless this is the
    // thread that calls it.
    void wait_until_not_called(std::unique_lock<std::mutex> &lock, const void *slot) const;

  private:
    // What the thread works on. A participant that is deleted in a callback goes before its thread.
    struct State {
        std::mutex mutex;
        std::condition_variable work;
        std::condition_variable idle;
        Event *first = nullptr;
        Event *last = nullptr;
        const Source *told = nullptr;  // the source whose event is being told
        const void *called = nullptr;  // the slot whose listener is being called
        bool started = false;
        bool stopping = false;
        std::thread::id thread;

        bool is_own_thread() const { return thread == std::this_thread::get_id(); }
        Event *pop();
    };

    static void run(const std::shared_ptr<State> &state);

    const std::shared_ptr<State> state_;
    std::thread thread_;  // guarded by the mutex, until it is stopped
};

}  // namespace kolt::engine
