// SPDX-License-Identifier: Apache-2.0
// Joinable threads with a name, a priority and a stack size.

#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>
#include <system_error>

#include "kolt/config_logger.h"
#include "kolt/os.h"
#include "kolt/thread_settings.h"

namespace {

enum class Scheduling { kInherited, kRealtime, kNice };

}  // namespace

struct KOLT_Thread {
    pthread_t handle{};
    KOLT_ThreadFunction function = nullptr;
    void *argument = nullptr;
    // Shared by creator and thread until `started` is posted.
    char name[KOLT_THREAD_NAME_MAX_LENGTH + 1] = "";
    Scheduling scheduling = Scheduling::kInherited;
    int urgency = 0;
    bool enforce = false;
    int nice_error = 0;
    sem_t started{};
};

namespace {

constexpr const char *kMethod = "KOLT_Thread_new";

void warn(const char *what, DDS_Long value, int error) {
    try {
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_PLATFORM, KOLT_CONFIG_LOG_LEVEL_WARNING, kMethod,
                         "thread %s %d refused (%s), using the default", what, value,
                         std::generic_category().message(error).c_str());
    } catch (const std::bad_alloc &) {
        // The warning is left out when memory for its text runs out.
    }
}

void log_failure(const char *what, int error) {
    try {
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_PLATFORM, KOLT_CONFIG_LOG_LEVEL_ERROR, kMethod,
                         "%s: %s", what, std::generic_category().message(error).c_str());
    } catch (const std::bad_alloc &) {
    }
}

// The wishes that are put to the system. One that it refuses is taken out, and the rest tried
// again.
struct Request {
    Scheduling scheduling;
    int urgency;  // a SCHED_FIFO priority or a negated nice value
    bool enforce;
    DDS_Long stack_size;  // or DDS_THREAD_STACK_SIZE_DEFAULT
};

Request make_request(DDS_Long priority, DDS_UnsignedLong options, DDS_Long stack_size) {
    Request request{Scheduling::kInherited, priority, false, stack_size};
    request.enforce = (options & DDS_THREAD_SETTINGS_PRIORITY_ENFORCE) != 0;
    const bool is_default = priority == DDS_THREAD_PRIORITY_DEFAULT;
    if ((options & DDS_THREAD_SETTINGS_REALTIME_PRIORITY) != 0) {
        request.scheduling = Scheduling::kRealtime;
        request.urgency = is_default ? sched_get_priority_min(SCHED_FIFO) : priority;
    } else if (!is_default) {
        request.scheduling = Scheduling::kNice;
    }
    return request;
}

// False: the priority was refused and is enforced.
bool drop_priority(Request &request, int error) {
    if (request.enforce) {
        log_failure("thread priority refused", error);
        return false;
    }
    warn("priority", request.urgency, error);
    request.scheduling = Scheduling::kInherited;
    return true;
}

void drop_stack_size(Request &request, int error) {
    warn("stack size", request.stack_size, error);
    request.stack_size = DDS_THREAD_STACK_SIZE_DEFAULT;
}

class Attributes {
  public:
    Attributes() { pthread_attr_init(&attributes_); }
    ~Attributes() { pthread_attr_destroy(&attributes_); }
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;

    int set_stack_size(DDS_Long bytes) {
        if (bytes < 0) {
            return EINVAL;
        }
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t size = (static_cast<std::size_t>(bytes) + page - 1) / page * page;
        return pthread_attr_setstacksize(&attributes_, size);
    }

    int set_realtime_priority(int priority) {
        sched_param parameters{};
        parameters.sched_priority = priority;
        pthread_attr_setschedpolicy(&attributes_, SCHED_FIFO);
        pthread_attr_setinheritsched(&attributes_, PTHREAD_EXPLICIT_SCHED);
        return pthread_attr_setschedparam(&attributes_, &parameters);
    }

    const pthread_attr_t *get() const { return &attributes_; }

  private:
    pthread_attr_t attributes_{};
};

// Blocks all signals but the synchronous ones, and SIGPROF, while it lives: a thread that is
// created meanwhile inherits that.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int signal :
             {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS, SIGPROF}) {
            sigdelset(&blocked, signal);
        }
        pthread_sigmask(SIG_BLOCK, &blocked, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

  private:
    sigset_t before_{};
};

// Name and nice value can only be given to a thread that runs: it gives them to itself.
void *run(void *argument) {
    auto *self = static_cast<KOLT_Thread *>(argument);
    if (self->name[0] != '\0') {
        pthread_setname_np(pthread_self(), self->name);
    }
    if (self->scheduling == Scheduling::kNice) {
        // On Linux the nice value belongs to the thread.
        const auto thread = static_cast<id_t>(gettid());
        self->nice_error = setpriority(PRIO_PROCESS, thread, -self->urgency) == 0 ? 0 : errno;
    }
    const bool refused = self->nice_error != 0 && self->enforce;
    const KOLT_ThreadFunction function = self->function;
    void *function_argument = self->argument;
    sem_post(&self->started);
    return refused ? nullptr : function(function_argument);
}

// setpriority clamps what is out of range; the contract refuses it.
bool is_nice_priority(int priority) {
    return priority >= -19 && priority <= 20;
}

// Puts the request into attributes and thread. What is refused is taken out of the request, and
// EAGAIN says "try again"; other numbers are final.
int prepare(KOLT_Thread *thread, Request &request, Attributes &attributes) {
    int error = 0;
    if (request.stack_size != DDS_THREAD_STACK_SIZE_DEFAULT) {
        error = attributes.set_stack_size(request.stack_size);
        if (error != 0) {
            drop_stack_size(request, error);
            return EAGAIN;
        }
    }
    if (request.scheduling == Scheduling::kRealtime) {
        error = attributes.set_realtime_priority(request.urgency);
    } else if (request.scheduling == Scheduling::kNice && !is_nice_priority(request.urgency)) {
        error = EINVAL;
    }
    if (error != 0) {
        return drop_priority(request, error) ? EAGAIN : error;
    }
    thread->enforce = request.enforce;
    thread->scheduling = request.scheduling;
    thread->urgency = request.urgency;
    return 0;
}

// One attempt, with results as above.
int try_start(KOLT_Thread *thread, Request &request) {
    Attributes attributes;
    int error = prepare(thread, request, attributes);
    if (error != 0) {
        return error;
    }
    {
        const SignalsBlocked blocked;
        error = pthread_create(&thread->handle, attributes.get(), run, thread);
    }
    if (error == EPERM && request.scheduling == Scheduling::kRealtime) {
        return drop_priority(request, error) ? EAGAIN : error;
    }
    if (error != 0 && request.stack_size != DDS_THREAD_STACK_SIZE_DEFAULT) {
        drop_stack_size(request, error);
        return EAGAIN;
    }
    // The system's own EAGAIN means that it has no room for another thread: final.
    return error == EAGAIN ? ENOMEM : error;
}

// Waits until the thread has its name and priority. False when it gave up.
bool await_start(KOLT_Thread *thread, Request &request) {
    while (sem_wait(&thread->started) != 0 && errno == EINTR) {
    }
    if (thread->nice_error != 0 && !drop_priority(request, thread->nice_error)) {
        pthread_join(thread->handle, nullptr);
        return false;
    }
    return true;
}

bool start(KOLT_Thread *thread, Request request) {
    int error = EAGAIN;
    // Each failing attempt takes something out of the request: three are the most.
    while (error == EAGAIN) {
        error = try_start(thread, request);
    }
    if (error != 0) {
        log_failure("cannot create the thread", error);
        return false;
    }
    return await_start(thread, request);
}

void free_thread(KOLT_Thread *thread) {
    sem_destroy(&thread->started);
    thread->~KOLT_Thread();
    KOLT_Heap_free(thread);
}

}  // namespace

KOLT_Thread *KOLT_Thread_new(const char *name, DDS_Long priority, DDS_UnsignedLong options,
                             DDS_Long stack_size, KOLT_ThreadFunction function, void *argument) {
    if (function == nullptr) {
        log_failure("no thread function", EINVAL);
        return nullptr;
    }
    void *memory = KOLT_Heap_allocate(sizeof(KOLT_Thread));
    if (memory == nullptr) {
        return nullptr;
    }
    auto *thread = new (memory) KOLT_Thread();
    sem_init(&thread->started, 0, 0);
    thread->function = function;
    thread->argument = argument;
    if (name != nullptr) {
        std::strncpy(thread->name, name, KOLT_THREAD_NAME_MAX_LENGTH);
    }
    if (!start(thread, make_request(priority, options, stack_size))) {
        free_thread(thread);
        return nullptr;
    }
    return thread;
}

int KOLT_Thread_delete(KOLT_Thread *self) {
    if (self == nullptr) {
        return 0;
    }
    if (pthread_equal(self->handle, pthread_self()) != 0) {
        return EDEADLK;
    }
    const int error = pthread_join(self->handle, nullptr);
    if (error == 0) {
        free_thread(self);
    }
    return error;
}
