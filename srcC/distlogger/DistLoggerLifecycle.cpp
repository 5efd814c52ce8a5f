// SPDX-License-Identifier: Apache-2.0
// The singleton: its creation step by step, its destruction in reverse, and the stored options.
#include <algorithm>
#include <cstring>

#include "DistLoggerRecord.hpp"
#include "fork.hpp"
#include "kolt_internal/no_cancellation.hpp"
#include "lock_rules.hpp"
#include "logger_lock.hpp"
#include "report.hpp"
#include "state_owner.hpp"
#include "write_deadline.hpp"

int gVUR_DL_DistLogger_initialized = 0;
int gVUR_DL_DistLogger_beingDestroyed = 0;
VUR_DL_DistLogger *VUR_DL_DistLogger_instance = nullptr;
VUR_DL_Options *gVUR_DL_DistLogger_currentOptions = nullptr;

namespace {

using vur_dl::load_acquire;
using vur_dl::report;
using vur_dl::store_relaxed;
using vur_dl::store_release;

constexpr char kGetInstance[] = "VUR_DistLogger_getInstance";  // sic: without DL
constexpr char kCreateInstance[] = "VUR_DL_DistLogger_createInstance";
constexpr char kFinalizeInstance[] = "VUR_DL_DistLogger_finalizeInstance";
constexpr char kSetOptions[] = "VUR_DL_DistLogger_setOptions";
constexpr std::size_t kMaxApplicationKindLength = 256;

bool fail(const char *message) {
    report(message, kCreateInstance);
    return false;
}

bool take_lock(const char *failure, const char *method) {
    if (vur_dl::take_logger_lock()) {
        return true;
    }
    report(failure, method);
    return false;
}

bool give_lock(const char *failure, const char *method) {
    if (vur_dl::give_logger_lock()) {
        return true;
    }
    report(failure, method);
    return false;
}

// ---- Creation, in the order of the steps --------------------------------------------------------

bool take_options(VUR_DL_DistLogger &self) {
    self.options = gVUR_DL_DistLogger_currentOptions;
    if (self.options != nullptr) {
        return true;
    }
    report("Creating Distributed Logger with default options", kCreateInstance, vur_dl::kLevelInfo);
    self.options = VUR_DL_Options_createDefault();
    return self.options != nullptr || fail("Unable to create default options");
}

bool create_clock(VUR_DL_DistLogger &self) {
    self.clock = vur_dl::create_log_clock();
    return self.clock != nullptr || fail("Unable to create clock");
}

// Copies the kind; cuts one that is longer than the State can carry.
void copy_application_kind(const DDS_Char *source, DDS_Char *destination) {
    const std::size_t length = std::min(std::strlen(source), kMaxApplicationKindLength);
    std::memcpy(destination, source, length);
    destination[length] = '\0';
}

bool create_state(VUR_DL_DistLogger &self) {
    self.state = VUR_DL_ADMIN_StateTypeSupport_create_data();
    if (self.state == nullptr) {
        return fail("Unable to initialize VUR_DL_ADMIN_State");
    }
    self.state->state = VUR_DL_STATE_INITIALIZING;
    if (self.options->applicationKind != nullptr) {
        copy_application_kind(self.options->applicationKind, self.state->applicationKind);
    }
    self.state->filterLevel = self.options->filterLevel;
    DDS_Cookie_t_initialize(&self.stateCookie);
    self.loggerStateInstanceHandle = DDS_HANDLE_NIL;
    store_relaxed(self.stateKind, VUR_DL_STATE_INITIALIZING);
    vur_dl::state_owner().open();
    return true;
}

bool create_entities(VUR_DL_DistLogger &self, DDS_DomainParticipantFactory *factory) {
    self._ddsEntities = VUR_DL_DDSEntities_create(&self, factory);
    return self._ddsEntities != nullptr || fail("Unable to create DDSEntities");
}

DDS_DataReader *command_reader(VUR_DL_DistLogger &self) {
    VUR_DL_ADMIN_CommandRequestDataReader *reader =
        VUR_DL_DDSEntities_getCommandRequestReader(self._ddsEntities);
    return reader == nullptr ? nullptr
                             : VUR_DL_ADMIN_CommandRequestDataReader_as_datareader(reader);
}

// Sets the listener for requests. Without remote administration there is no reader; setting a
// listener on an absent reader succeeds.
bool listen_to_commands(VUR_DL_DistLogger &self) {
    vur_dl::about_to_call_middleware();
    DDS_DataReaderListener listener;
    std::memset(&listener, 0, sizeof listener);
    listener.listener_data = &self;
    listener.on_data_available = VUR_DL_DistLogger_CommandRequestListener_on_data_available;
    return DDS_DataReader_set_listener(command_reader(self), &listener,
                                       DDS_DATA_AVAILABLE_STATUS) == DDS_RETCODE_OK ||
           fail("Unable to set listener for CommandRequests");
}

bool start_write_thread(VUR_DL_DistLogger &self) {
    self.logMessageWriteThread = LogMessageWriteThread_create(
        VUR_DL_DDSEntities_getLogMessageWriter(self._ddsEntities),
        static_cast<int>(self.options->queueSize), &self.options->threadSettings);
    if (self.logMessageWriteThread == nullptr) {
        return fail("Unable to create LogMessage Thread");
    }
    self.q = self.logMessageWriteThread->q;
    store_relaxed(self.filterLevel, self.options->filterLevel);
    vur_dl::command_gate.open();
    return true;
}

// Fills in what mirrors the middleware's logger. The ids and the domain stand there already: they
// had to, when the State writer's listener was installed.
void fill_state(VUR_DL_DistLogger &self) {
    VUR_DL_DistLogger_updateVURLoggerPrintFormatState(&self);
    VUR_DL_DistLogger_updateVURLoggerCategoryAndVerbosityState(&self);
}

// The time for each State of the creation to go out, under the lock. It is long: the State of a logger
// that has missed it is published no more.
constexpr DDS_Duration_t kFirstStateWithin{2, 0};

DDS_DataWriter *state_writer(VUR_DL_DistLogger &self) {
    VUR_DL_ADMIN_StateDataWriter *writer = VUR_DL_DDSEntities_getStateWriter(self._ddsEntities);
    return writer == nullptr ? nullptr : VUR_DL_ADMIN_StateDataWriter_as_datawriter(writer);
}

void set_state_kind(VUR_DL_DistLogger &self, VUR_DL_ADMIN_StateKind kind) {
    store_relaxed(self.stateKind, kind);
    vur_dl::state_owner().carry_out(self, vur_dl::kRefreshKind);
}

bool become_operational(VUR_DL_DistLogger &self) {
    if (self.options->remoteAdministrationEnabled == 1) {
        // Returns at once, because the State is not operational yet. Requests that came early wait
        // in the reader.
        VUR_DL_DistLogger_CommandRequestListener_on_data_available(&self, command_reader(self));
    }
    set_state_kind(self, VUR_DL_STATE_OPERATIONAL);
    const vur_dl::WriteDeadline first_state(state_writer(self), kFirstStateWithin);
    return VUR_DL_DistLogger_writeState(&self) == 1 || fail("Unable to write State");
}

bool install_device(VUR_DL_DistLogger &self) {
    if (self.options->logInfrastructureMessages == 0) {
        return true;
    }
    self.ddsLoggerDevice = &VUR_DL_DistLogger_localDevice;
    return KOLT_Config_Logger_set_output_device(KOLT_Config_Logger_get_instance(),
                                                self.ddsLoggerDevice) ||
           fail("Unable to hook up VUR Logger");
}

bool build(VUR_DL_DistLogger &self, DDS_DomainParticipantFactory *factory) {
    if (!take_options(self) || !create_clock(self) || !create_state(self) ||
        !create_entities(self, factory) || !listen_to_commands(self) || !start_write_thread(self)) {
        return false;
    }
    fill_state(self);
    return become_operational(self) && install_device(self);
}

// Creates the logger and makes it reachable. The caller holds the lock, and tells what was silenced
// meanwhile when it has given it.
void create_singleton(DDS_DomainParticipantFactory *factory) {
    const vur_dl::MiddlewareCallsAllowed middleware_calls_allowed;
    vur_dl::set_logger_exists(true);
    KOLT_Log_keep_errors();
    KOLT_Config_LogVerbosity verbosity_mask[KOLT_CONFIG_LOG_CATEGORY_COUNT];
    // These values count if the middleware's logger cannot be reached while masking but can be
    // afterwards.
    std::fill(std::begin(verbosity_mask), std::end(verbosity_mask),
              KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    VUR_DL_DistLogger_maskSystemVerbosity(verbosity_mask, factory);
    store_release(VUR_DL_DistLogger_instance, VUR_DL_DistLogger_createInstance(factory));
    VUR_DL_DistLogger_unmaskSystemVerbosity(verbosity_mask);
    VUR_DL_DistLogger *self = VUR_DL_DistLogger_instance;
    if (self == nullptr) {
        vur_dl::set_logger_exists(false);
        report("Unable to create DistLogger singleton!", kGetInstance);
        return;
    }
    // The State that was published during creation shows the silenced verbosities.
    VUR_DL_DistLogger_updateVURLoggerCategoryAndVerbosityState(self);
    const vur_dl::WriteDeadline first_state(state_writer(*self), kFirstStateWithin);
    if (VUR_DL_DistLogger_writeState(self) == 0) {
        report("Unable to Write State", kGetInstance, vur_dl::kLevelWarning);
    }
    vur_dl::watch_threshold_of(self);
    vur_dl::forwarding_gate.open();
    store_release(gVUR_DL_DistLogger_initialized, 1);
}

bool is_being_destroyed() {
    return load_acquire(gVUR_DL_DistLogger_beingDestroyed) != 0;
}

void report_being_destroyed() {
    // "beingfinalized": sic.
    report("Unable to create DistLogger singleton while it is beingfinalized", kGetInstance);
}

// ---- Finalisation -------------------------------------------------------------------------------

// The time for the last State to go out. Log calls wait for as long, unless another thread owns the
// State and publishes it.
constexpr DDS_Duration_t kLastStateWithin{0, 500'000'000};

DDS_DataWriter *message_writer(VUR_DL_DistLogger &self) {
    VUR_DL_LogMessageDataWriter *writer = VUR_DL_DDSEntities_getLogMessageWriter(self._ddsEntities);
    return writer == nullptr ? nullptr : VUR_DL_LogMessageDataWriter_as_datawriter(writer);
}

DDS_DataWriter *response_writer(VUR_DL_DistLogger &self) {
    VUR_DL_ADMIN_CommandResponseDataWriter *writer =
        VUR_DL_DDSEntities_getCommandResponseWriter(self._ddsEntities);
    return writer == nullptr ? nullptr
                             : VUR_DL_ADMIN_CommandResponseDataWriter_as_datawriter(writer);
}

// Ends the writes of messages and responses that wait for a reader, so that nothing that follows waits
// for them.
void end_writes(VUR_DL_DistLogger &self) {
    for (DDS_DataWriter *writer : {message_writer(self), response_writer(self)}) {
        if (writer != nullptr) {
            KOLT_DataWriter_end_writes(writer);
        }
    }
}

// Waits until no command is carried out any more; one may be publishing the State.
void end_commands(VUR_DL_DistLogger &self) {
    const vur_dl::WriteDeadline last_state(
        self._ddsEntities != nullptr ? state_writer(self) : nullptr, kLastStateWithin);
    vur_dl::command_gate.close();
}

// Waits until nobody publishes the State any more.
void end_state(VUR_DL_DistLogger &self) {
    const vur_dl::WriteDeadline last_state(
        self._ddsEntities != nullptr ? state_writer(self) : nullptr, kLastStateWithin);
    vur_dl::state_owner().close();
}

// Makes the singleton unreachable and returns it. The caller holds the lock.
VUR_DL_DistLogger *detach() {
    VUR_DL_DistLogger *self = VUR_DL_DistLogger_instance;
    if (self->_ddsEntities != nullptr) {
        const vur_dl::WriteDeadline last_state(state_writer(*self), kLastStateWithin);
        VUR_DL_DistLogger_disable();
    }
    vur_dl::watch_threshold_of(nullptr);
    store_release(VUR_DL_DistLogger_instance, nullptr);
    store_release(gVUR_DL_DistLogger_beingDestroyed, 1);
    return self;
}

// Takes the lock with the gate of the middleware's log closed. A creation on another thread may
// open the gate between the two steps; then both are repeated.
bool take_lock_behind_gate(const char *failure) {
    for (;;) {
        vur_dl::forwarding_gate.close();
        if (!take_lock(failure, kFinalizeInstance)) {
            if (VUR_DL_DistLogger_isDistLoggerRunning()) {
                vur_dl::forwarding_gate.open();
            }
            return false;
        }
        if (vur_dl::forwarding_gate.is_closed()) {
            return true;
        }
        if (!give_lock("Unable to unlock when finalizing DistLogger singleton!",
                       kFinalizeInstance)) {
            return false;
        }
    }
}

void destroy_detached(VUR_DL_DistLogger *self) {
    VUR_DL_DistLogger_destroy(self);
    if (gVUR_DL_DistLogger_currentOptions != nullptr) {
        gVUR_DL_DistLogger_currentOptions =
            VUR_DL_Options_delete(gVUR_DL_DistLogger_currentOptions);
    }
}

}  // namespace

VUR_DL_DistLogger *VUR_DL_DistLogger_getInstance(void) {
    return VUR_DL_DistLogger_getInstanceI(DDS_DomainParticipantFactory_get_instance());
}

VUR_DL_DistLogger *VUR_DL_DistLogger_getInstanceI(DDS_DomainParticipantFactory *factory) {
    constexpr char kUnlockFailure[] = "Unable to unlock when creating DistLogger singleton!";
    if (VUR_DL_DistLogger_isDistLoggerRunning()) {
        return load_acquire(VUR_DL_DistLogger_instance);
    }
    if (vur_dl::is_child_without_logger()) {
        report(
            "Unable to create DistLogger singleton in the child of a process with a logger; start "
            "the logger after fork() or daemon()",
            kGetInstance);
        return nullptr;
    }
    if (is_being_destroyed()) {
        report_being_destroyed();
        return nullptr;
    }
    if (!take_lock("Unable to lock when creating DistLogger singleton!", kGetInstance)) {
        return load_acquire(VUR_DL_DistLogger_instance);
    }
    // Finalisation may have begun between the first look and the lock.
    if (is_being_destroyed()) {
        report_being_destroyed();
        give_lock(kUnlockFailure, kGetInstance);
        return nullptr;
    }
    if (gVUR_DL_DistLogger_initialized == 0) {
        create_singleton(factory);
    }
    VUR_DL_DistLogger *self = VUR_DL_DistLogger_instance;
    give_lock(kUnlockFailure, kGetInstance);
    if (self == nullptr) {
        KOLT_Log_tell_kept_errors();
    } else {
        KOLT_Log_forget_kept_errors();
    }
    return self;
}

VUR_DL_DistLogger *VUR_DL_DistLogger_createInstance(DDS_DomainParticipantFactory *factory) {
    if (VUR_DL_DistLogger_instance != nullptr) {
        return VUR_DL_DistLogger_instance;
    }
    auto *self = static_cast<VUR_DL_DistLogger *>(KOLT_Heap_allocate(sizeof(VUR_DL_DistLogger)));
    if (self == nullptr) {
        fail("Unable to allocate memory for DistLogger Instance");
        return nullptr;
    }
    VUR_DL_DistLogger_initialize(self);
    return build(*self, factory) ? self : VUR_DL_DistLogger_destroy(self);
}

void VUR_DL_DistLogger_initialize(VUR_DL_DistLogger *self) {
    if (self == nullptr) {
        report("VUR_DL_DistLogger is NULL", __func__);
        return;
    }
    std::memset(static_cast<void *>(self), 0, sizeof *self);
}

VUR_DL_DistLogger *VUR_DL_DistLogger_destroy(VUR_DL_DistLogger *self) {
    if (self == nullptr) {
        return nullptr;
    }
    if (self->options != nullptr && self->options->logInfrastructureMessages != 0 &&
        self->ddsLoggerDevice != nullptr) {
        static_cast<void>(
            KOLT_Config_Logger_set_output_device(KOLT_Config_Logger_get_instance(), nullptr));
    }
    if (self->_ddsEntities != nullptr) {
        end_writes(*self);
    }
    end_commands(*self);
    if (self->logMessageWriteThread != nullptr) {
        store_relaxed(self->logMessageWriteThread->shouldRun, 0);
        LogMessageWriteThread_delete(self->logMessageWriteThread);
        self->logMessageWriteThread = nullptr;
        self->q = nullptr;
    }
    end_state(*self);
    if (self->_ddsEntities != nullptr) {
        VUR_DL_DDSEntities_destroy(self->_ddsEntities);
        self->_ddsEntities = nullptr;
    }
    self->clock = nullptr;  // belongs to the process, see log_clock()
    if (gVUR_DL_DistLogger_currentOptions == nullptr && self->options != nullptr) {
        self->options = VUR_DL_Options_delete(self->options);
    }
    if (self->state != nullptr) {
        VUR_DL_ADMIN_StateTypeSupport_delete_data(self->state);
        DDS_Cookie_t_finalize(&self->stateCookie);
    }
    KOLT_Heap_free(self);
    return nullptr;
}

int VUR_DL_DistLogger_finalizeInstance(void) {
    constexpr char kLockFailure[] = "Unable to lock when finalizing DistLogger singleton!";
    constexpr char kUnlockFailure[] = "Unable to unlock when finalizing DistLogger singleton!";
    if (vur_dl::is_child_without_logger()) {
        return 0;
    }
    const kolt::NoCancellation no_cancellation;
    if (!take_lock_behind_gate(kLockFailure)) {
        return 1;
    }
    if (gVUR_DL_DistLogger_initialized == 0 || VUR_DL_DistLogger_instance == nullptr) {
        return give_lock(kUnlockFailure, kFinalizeInstance) ? 0 : 1;
    }
    VUR_DL_DistLogger *self = detach();
    if (!give_lock(kUnlockFailure, kFinalizeInstance)) {
        return 1;
    }
    // The logger is destroyed outside the lock: the listener threads that destruction waits for may
    // be logging.
    destroy_detached(self);
    if (!take_lock(kLockFailure, kFinalizeInstance)) {
        return 1;
    }
    store_release(gVUR_DL_DistLogger_beingDestroyed, 0);
    store_release(gVUR_DL_DistLogger_initialized, 0);
    vur_dl::set_logger_exists(false);
    return give_lock(kUnlockFailure, kFinalizeInstance) ? 0 : 1;
}

int VUR_DL_DistLogger_isDistLoggerRunning(void) {
    return load_acquire(gVUR_DL_DistLogger_initialized) != 0 && !is_being_destroyed() ? 1 : 0;
}

void VUR_DL_DistLogger_disable(void) {
    VUR_DL_DistLogger *self = load_acquire(VUR_DL_DistLogger_instance);
    if (self == nullptr) {
        return;
    }
    const vur_dl::MiddlewareCallsAllowed middleware_calls_allowed;
    set_state_kind(*self, VUR_DL_STATE_NONOPERATIONAL);
    vur_dl::refresh_threshold();
    store_relaxed(self->logMessageWriteThread->shouldRun, 0);
    if (VUR_DL_DistLogger_writeState(self) == 0) {
        report("Unable to Write State", __func__, vur_dl::kLevelWarning);
    }
}

int VUR_DL_DistLogger_setOptions(const VUR_DL_Options *options) {
    if (!take_lock("Unable to lock when setting options", kSetOptions)) {
        return 0;
    }
    int stored = 0;
    if (gVUR_DL_DistLogger_initialized != 0) {
        report("Distributed logger instance already created ", kSetOptions, vur_dl::kLevelWarning);
    } else {
        VUR_DL_Options *copy = VUR_DL_Options_dup(options);
        if (options != nullptr && copy == nullptr) {
            report("Unable to duplicate options data", kSetOptions);
        } else {
            if (gVUR_DL_DistLogger_currentOptions != nullptr) {
                VUR_DL_Options_delete(gVUR_DL_DistLogger_currentOptions);
            }
            gVUR_DL_DistLogger_currentOptions = copy;
            stored = 1;
        }
    }
    return give_lock("Unable to unlock when setting options", kSetOptions) ? stored : 0;
}

VUR_DL_Options *VUR_DL_DistLogger_getOptions(void) {
    return load_acquire(gVUR_DL_DistLogger_currentOptions);
}

VUR_DL_MessageQueue *VUR_DL_DistLogger_getMessageQueue(void) {
    const VUR_DL_DistLogger *self = load_acquire(VUR_DL_DistLogger_instance);
    return self == nullptr ? nullptr : self->q;
}

VUR_DL_LogMessageWriteThread *VUR_DL_DistLogger_getLogMessageWriteThread(void) {
    const VUR_DL_DistLogger *self = load_acquire(VUR_DL_DistLogger_instance);
    return self == nullptr ? nullptr : self->logMessageWriteThread;
}
