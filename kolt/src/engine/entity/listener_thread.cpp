// SPDX-License-Identifier: Apache-2.0
// The queue of events, and the thread that tells them.
#include "engine/entity/listener_thread.hpp"

#include <pthread.h>

#include <csignal>
#include <system_error>

namespace kolt::engine {

namespace {

// Blocks all signals while a thread is made, which inherits that: signals are the application's, on
// its own threads.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

  private:
    sigset_t before_;
};

}  // namespace

ListenerThread::Event *ListenerThread::State::pop() {
    Event *const event = first;
    first = event->next_;
    if (first == nullptr) {
        last = nullptr;
    }
    event->next_ = nullptr;
    event->queued_ = false;
    return event;
}

bool ListenerThread::start() {
    const std::lock_guard lock(state_->mutex);
    if (state_->started) {
        return true;
    }
    const SignalsBlocked blocked;
    try {
        thread_ = std::thread([state = state_] { run(state); });
    } catch (const std::system_error &) {
        return false;
    }
    state_->thread = thread_.get_id();
    state_->started = true;
    return true;
}

void ListenerThread::stop() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->stopping = true;
        state_->work.notify_one();
    }
    if (!thread_.joinable()) {
        return;
    }
    if (state_->is_own_thread()) {
        thread_.detach();  // ends after the callback
    } else {
        thread_.join();
    }
}

void ListenerThread::post(Event &event) {
    const std::lock_guard lock(state_->mutex);
    if (!state_->started || event.queued_ || !event.source_.open_) {
        return;
    }
    event.queued_ = true;
    if (state_->last != nullptr) {
        state_->last->next_ = &event;
    } else {
        state_->first = &event;
    }
    state_->last = &event;
    state_->work.notify_one();
}

void ListenerThread::open(Source &source) {
    const std::lock_guard lock(state_->mutex);
    source.open_ = true;
}

void ListenerThread::close(Source &source) {
    std::unique_lock lock(state_->mutex);
    source.open_ = false;
    state_->last = nullptr;
    for (Event **link = &state_->first; *link != nullptr;) {
        Event *const event = *link;
        if (&event->source_ == &source) {
            *link = event->next_;
            event->next_ = nullptr;
            event->queued_ = false;
        } else {
            state_->last = event;
            link = &event->next_;
        }
    }
    state_->idle.wait(lock, [&] { return state_->told != &source || state_->is_own_thread(); });
}

void ListenerThread::wait_until_not_called(std::unique_lock<std::mutex> &lock,
                                           const void *slot) const {
    state_->idle.wait(lock, [&] { return state_->called != slot || state_->is_own_thread(); });
}

// Touches nothing of the entity once it has been told: the callback may have deleted it.
void ListenerThread::run(const std::shared_ptr<State> &state) {
    pthread_setname_np(pthread_self(), "kolt.listener");
    std::unique_lock lock(state->mutex);
    while (true) {
        state->work.wait(lock, [&] { return state->stopping || state->first != nullptr; });
        if (state->stopping) {
            return;
        }
        const Event *const event = state->pop();
        const Event::Tell tell = event->tell_;
        void *const entity = event->source_.entity_;
        state->told = &event->source_;
        lock.unlock();
        tell(entity);
        lock.lock();
        state->told = nullptr;
        state->called = nullptr;
        state->idle.notify_all();
    }
}

}  // namespace kolt::engine
