// SPDX-License-Identifier: Apache-2.0
// Reading and taking: samples of the engine's cache become loaned or caller-owned records.
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "engine/cyclone/convert.hpp"
#include "engine/subscription/data_reader.hpp"
#include "engine/subscription/subscriber.hpp"
#include "engine/topic/topic.hpp"

namespace kolt::engine {

namespace {

// The room for a read before the number of samples is known.
constexpr std::size_t kFirstGuess = 32;
// The engine's limit of one read.
constexpr std::size_t kMaxSamples = std::numeric_limits<std::int32_t>::max();

// Collects the keys that the function below has seen, with a reference on each, and the number of
// samples behind each.
struct SeenKeys {
    struct Key {
        const Serdata *serdata;
        std::size_t samples;
    };
    std::vector<Key> keys;
    bool is_complete = true;

    void note_sample() {
        if (!keys.empty()) {
            ++keys.back().samples;
        }
    }

    SeenKeys() = default;
    ~SeenKeys() {
        for (const Key &key : keys) {
            key.serdata->unref();
        }
    }
    SeenKeys(const SeenKeys &) = delete;
    SeenKeys &operator=(const SeenKeys &) = delete;
};

// The collection of the thread that asks; nullptr otherwise.
thread_local SeenKeys *t_seen = nullptr;

// The filter of a query condition that never matches. When the condition is created, the engine
// calls it with every instance of the cache, as a key without data, and then with the instance's
// samples, on the thread that creates it.
bool collect_keys(const void *view) {
    const Serdata *const serdata = static_cast<const SerdataView *>(view)->get();
    if (t_seen == nullptr || serdata == nullptr) {
        return false;
    }
    if (serdata->has_data()) {
        t_seen->note_sample();
    } else {
        try {
            t_seen->keys.push_back({serdata, 1});  // there may be a sample without data
            serdata->ref();
        } catch (...) {
            t_seen->is_complete = false;
        }
    }
    return false;
}

// The samples that the function below matches, ascending by address; nullptr on every other thread.
thread_local const Serdatas *t_doomed = nullptr;

// The filter of a query condition on samples that a thread wants to remove from the cache.
bool is_doomed(const void *view) {
    return t_doomed != nullptr && std::binary_search(t_doomed->begin(), t_doomed->end(),
                                                     static_cast<const SerdataView *>(view)->get());
}

// Returns the result of a read, and logs it unless it is OK or NO_DATA.
DDS_ReturnCode_t report(DDS_ReturnCode_t result, const char *method) {
    if (result == DDS_RETCODE_OK || result == DDS_RETCODE_NO_DATA) {
        return result;
    }
    return fail(result, method,
                result == DDS_RETCODE_BAD_PARAMETER
                    ? "the handle is not that of an instance"
                    : "the DDS engine could not read the cache of the reader");
}

}  // namespace

Loan::~Loan() {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        endpoint->plugin().return_sample(endpoint->data(), samples[i], pool_handles[i]);
    }
}

void Batch::resize(std::size_t capacity) {
    if (capacity <= views.size()) {
        return;
    }
    std::vector<SerdataView> larger(capacity);
    infos.resize(capacity);
    pointers.resize(capacity);
    views.swap(larger);  // last, since it is what counts
    for (std::size_t i = 0; i < capacity; ++i) {
        pointers[i] = &views[i];
    }
}

// ---- From the engine ----------------------------------------------------------------------------

dds_return_t DataReader::engine_read(const KOLT_ReadSelection &selection, std::uint32_t mask,
                                     std::size_t room, bool locked, Batch *batch) {
    ReadCondition *const condition = ReadCondition::of(selection.condition);
    const dds_entity_t source = condition != nullptr ? condition->watched() : engine();
    const std::uint32_t limit = locked ? cyclone::kReadLocked : static_cast<std::uint32_t>(room);
    void **const views = batch->pointers.data();
    dds_sample_info_t *const infos = batch->infos.data();
    if (selection.scope == KOLT_READ_ALL) {
        const auto read = selection.take != DDS_BOOLEAN_FALSE ? dds_take_mask : dds_read_mask;
        return read(source, views, infos, room, limit, mask);
    }
    const auto read =
        selection.take != DDS_BOOLEAN_FALSE ? dds_take_instance_mask : dds_read_instance_mask;
    return read(source, views, infos, room, limit, selection.handle, mask);
}

DDS_ReturnCode_t DataReader::fetch(const KOLT_ReadSelection &selection, std::size_t limit,
                                   Batch *batch, std::size_t *count) {
    *count = 0;
    if (selection.scope == KOLT_READ_NEXT_INSTANCE) {
        return fetch_next_instance(selection, limit, batch, count);
    }
    ReadCondition *const condition = ReadCondition::of(selection.condition);
    std::uint32_t mask = cyclone::kNoStateMask;
    if (condition == nullptr && !states_to_engine(selection.sample_states, selection.view_states,
                                                  selection.instance_states, &mask)) {
        return DDS_RETCODE_NO_DATA;
    }
    const auto held = condition != nullptr ? condition->hold() : std::unique_lock<std::mutex>();

    // Before the read, so that what comes during it counts as new.
    reset_data_available();
    subscriber_.reset_data_on_readers();
    batch->resize(std::min(limit, kFirstGuess));
    std::size_t room = std::min(limit, batch->capacity());
    std::uint32_t available = 0;
    if (room < limit) {
        // Locks the cache, unless it is empty. Only a read unlocks it: when memory runs out here,
        // that read gets as many samples as there is room for.
        available = dds_reader_lock_samples(engine());
        try {
            batch->resize(std::min<std::size_t>(limit, available));
        } catch (const std::bad_alloc &) {
            *count = 0;
        }
        room = std::min(limit, batch->capacity());
    }
    const dds_return_t result = engine_read(selection, mask, room, available != 0, batch);
    if (result > 0) {
        *count = static_cast<std::size_t>(result);
        return DDS_RETCODE_OK;
    }
    if (result == 0) {
        return DDS_RETCODE_NO_DATA;
    }
    return result == cyclone::kPreconditionNotMet ? DDS_RETCODE_BAD_PARAMETER
                                                  : to_return_code(result);
}

// ---- Instances ----------------------------------------------------------------------------------

// Asks the engine for the instances now and then, since it does not tell of those that it drops. A
// reader whose application names no instances has no index.
InstanceIndex &DataReader::instances() {
    cache_.keep_index();
    InstanceIndex &index = cache_.index();
    const std::lock_guard lock(contents_);  // the engine's limit of query conditions
    if (index.is_stale()) {
        const std::uint64_t before = index.begin_assign();
        try {
            index.assign(cached_instances(), before);
        } catch (...) {
            index.set_stale();
            throw;
        }
    }
    return index;
}

bool DataReader::is_instance_known(DDS_InstanceHandle_t handle) {
    return handle != DDS_HANDLE_NIL && instances().contains(handle);
}

std::vector<InstanceIndex::Known> DataReader::cached_instances() {
    SeenKeys seen;
    t_seen = &seen;
    const dds_entity_t condition =
        dds_create_querycondition(engine(), cyclone::kNoStateMask - 1U, collect_keys);
    t_seen = nullptr;
    if (condition > 0) {
        dds_delete(condition);
    }
    if (condition < 0 || !seen.is_complete) {
        throw std::bad_alloc();
    }
    std::vector<InstanceIndex::Known> instances;
    instances.reserve(seen.keys.size());
    for (const SeenKeys::Key &key : seen.keys) {
        const SerdataView view(key.serdata);
        const dds_instance_handle_t handle = dds_lookup_instance(engine(), &view);
        if (handle != DDS_HANDLE_NIL) {
            instances.push_back({handle, 0, key.samples});
        }
    }
    return instances;
}

// Fetches from the next instance in the order of handles. The engine itself does not order
// instances.
DDS_ReturnCode_t DataReader::fetch_next_instance(const KOLT_ReadSelection &selection,
                                                 std::size_t limit, Batch *batch,
                                                 std::size_t *count) {
    InstanceIndex &index = instances();
    KOLT_ReadSelection one = selection;
    one.scope = KOLT_READ_INSTANCE;
    for (auto next = index.after(selection.handle); next.handle != DDS_HANDLE_NIL;
         next = index.after(next.handle)) {
        one.handle = next.handle;
        const DDS_ReturnCode_t result = fetch(one, std::min(limit, next.samples), batch, count);
        if (result == DDS_RETCODE_BAD_PARAMETER) {
            index.forget(next);
        } else if (result != DDS_RETCODE_NO_DATA) {
            return result;
        }
    }
    return DDS_RETCODE_NO_DATA;
}

// ---- To records ---------------------------------------------------------------------------------

// A caller's record may hold values of its last use, but a sample without data sets only the key.
void DataReader::reset(void *record) {
    const DDS_TypeAllocationParams_t keep_buffers = {DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE,
                                                     DDS_BOOLEAN_FALSE};
    KOLT_Record_initialize_w_params(type_->type_code(), record, &keep_buffers);
}

bool DataReader::deserialize(const Serdata &serdata, bool valid_data, void *record) {
    const KOLT_TypePlugin &plugin = endpoint_->plugin();
    KOLT_CdrStream stream{};
    KOLT_CdrStream_set(&stream, const_cast<DDS_Octet *>(serdata.bytes()), serdata.size());
    DDS_Boolean drop = DDS_BOOLEAN_FALSE;
    DDS_Boolean done = DDS_BOOLEAN_TRUE;
    if (valid_data) {
        done = plugin.deserialize(endpoint_->data(), &record, &drop, &stream, DDS_BOOLEAN_TRUE,
                                  DDS_BOOLEAN_TRUE, nullptr);
    } else if (type_->is_keyed()) {
        reset(record);
        done = plugin.deserialize_key(endpoint_->data(), &record, &drop, &stream, DDS_BOOLEAN_TRUE,
                                      DDS_BOOLEAN_TRUE, nullptr);
    }
    return done != DDS_BOOLEAN_FALSE && drop == DDS_BOOLEAN_FALSE;
}

void DataReader::note_undeserializable(const char *method) {
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION, KOLT_CONFIG_LOG_LEVEL_WARNING, method,
                     "a sample of the topic %s cannot be deserialised and is dropped",
                     topic_.name().c_str());
    statuses_.note<SampleLost>({1, 1});
}

// A query condition selects them: the engine judges the cache when the condition is created, on
// this thread, and samples that come later do not match.
bool DataReader::remove_from_cache(const Serdatas &samples) {
    Serdatas sorted = samples;
    std::sort(sorted.begin(), sorted.end());
    Batch batch;
    batch.resize(samples.size());
    const std::lock_guard lock(contents_);  // the engine's limit of query conditions
    t_doomed = &sorted;
    const dds_entity_t condition =
        dds_create_querycondition(engine(), cyclone::kNoStateMask - 1U, is_doomed);
    t_doomed = nullptr;
    if (condition < 0) {
        return false;
    }
    dds_take(condition, batch.pointers.data(), batch.infos.data(), batch.capacity(),
             static_cast<std::uint32_t>(samples.size()));
    dds_delete(condition);
    return true;
}

template <typename Build>
DDS_ReturnCode_t DataReader::fetch_records(const KOLT_ReadSelection &selection, std::size_t limit,
                                           const char *method, Build &&build) {
    Batch batch;
    bool has_dropped = false;
    while (true) {
        std::size_t count = 0;
        const DDS_ReturnCode_t fetched = fetch(selection, limit, &batch, &count);
        if (fetched != DDS_RETCODE_OK) {
            // An instance may be gone with its last sample.
            return has_dropped ? DDS_RETCODE_NO_DATA : report(fetched, method);
        }
        Serdatas malformed;
        const DDS_ReturnCode_t built = build(batch, count, &malformed);
        for (std::size_t i = 0; i < malformed.size(); ++i) {
            note_undeserializable(method);
        }
        if (!malformed.empty() && selection.take == DDS_BOOLEAN_FALSE &&
            !remove_from_cache(malformed) && built == DDS_RETCODE_NO_DATA) {
            return fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                        "no memory to drop a sample that cannot be deserialised");
        }
        if (built != DDS_RETCODE_NO_DATA) {
            return built;
        }
        has_dropped = true;
    }
}

DDS_ReturnCode_t DataReader::read_loaned(const KOLT_ReadSelection &selection, void ***samples,
                                         DDS_UnsignedLong *count, DDS_SampleInfoSeq *info_seq,
                                         const char *method) {
    const std::size_t limit = selection.max_samples == DDS_LENGTH_UNLIMITED
                                  ? kMaxSamples
                                  : static_cast<std::size_t>(selection.max_samples);
    auto loan = std::make_unique<Loan>(endpoint_);
    const auto build = [&](const Batch &batch, std::size_t fetched, Serdatas *malformed) {
        return lend(batch, fetched, loan.get(), malformed, method);
    };
    const DDS_ReturnCode_t result = fetch_records(selection, limit, method, build);
    return result == DDS_RETCODE_OK ? hand_out(std::move(loan), samples, count, info_seq, method)
                                    : result;
}

DDS_ReturnCode_t DataReader::lend(const Batch &batch, std::size_t count, Loan *loan,
                                  Serdatas *malformed, const char *method) {
    loan->samples.reserve(count);
    loan->pool_handles.reserve(count);
    loan->infos.reserve(count);
    const KOLT_TypePlugin &plugin = endpoint_->plugin();
    for (std::size_t i = 0; i < count; ++i) {
        const dds_sample_info_t &info = batch.infos[i];
        void *pool_handle = nullptr;
        void *const record = plugin.get_sample(endpoint_->data(), &pool_handle);
        if (record == nullptr) {
            return loan->samples.empty() ? fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
                                                "no memory for the record of a sample")
                                         : DDS_RETCODE_OK;
        }
        const Serdata *const serdata = batch.views[i].get();
        if (deserialize(*serdata, info.valid_data, record)) {
            loan->samples.push_back(record);
            loan->pool_handles.push_back(pool_handle);
            loan->infos.push_back(to_sample_info(info));
        } else {
            plugin.return_sample(endpoint_->data(), record, pool_handle);
            malformed->push_back(serdata);
        }
    }
    return loan->samples.empty() ? DDS_RETCODE_NO_DATA : DDS_RETCODE_OK;
}

DDS_ReturnCode_t DataReader::hand_out(std::unique_ptr<Loan> loan, void ***samples,
                                      DDS_UnsignedLong *count, DDS_SampleInfoSeq *info_seq,
                                      const char *method) {
    const auto length = static_cast<DDS_Long>(loan->samples.size());
    if (DDS_SampleInfoSeq_loan_contiguous(info_seq, loan->infos.data(), length, length) ==
        DDS_BOOLEAN_FALSE) {
        return fail(DDS_RETCODE_ERROR, method,
                    "the info sequence cannot take a loan of %d elements",
                    static_cast<int>(length));
    }
    *samples = loan->samples.data();
    *count = static_cast<DDS_UnsignedLong>(length);
    try {
        const std::lock_guard lock(contents_);
        loans_[loan->samples.data()].swap(loan);
    } catch (...) {
        DDS_SampleInfoSeq_unloan(info_seq);
        throw;
    }
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DataReader::read_copied(const KOLT_ReadSelection &selection,
                                         DDS_UnsignedLong maximum, void *buffer,
                                         std::size_t element_size, DDS_UnsignedLong *count,
                                         DDS_SampleInfoSeq *info_seq, const char *method) {
    const std::size_t limit = selection.max_samples == DDS_LENGTH_UNLIMITED
                                  ? maximum
                                  : static_cast<std::size_t>(selection.max_samples);
    return fetch_records(
        selection, limit, method,
        [&](const Batch &batch, std::size_t fetched, Serdatas *malformed) {
            if (DDS_SampleInfoSeq_set_length(info_seq, static_cast<DDS_Long>(fetched)) ==
                DDS_BOOLEAN_FALSE) {
                return fail(DDS_RETCODE_ERROR, method,
                            "the info sequence has no room for %zu elements and cannot grow",
                            fetched);
            }
            std::size_t copied = 0;
            for (std::size_t i = 0; i < fetched; ++i) {
                void *const record = static_cast<char *>(buffer) + copied * element_size;
                const Serdata *const serdata = batch.views[i].get();
                if (!deserialize(*serdata, batch.infos[i].valid_data, record)) {
                    malformed->push_back(serdata);
                    continue;
                }
                *DDS_SampleInfoSeq_get_reference(info_seq, static_cast<DDS_Long>(copied)) =
                    to_sample_info(batch.infos[i]);
                ++copied;
            }
            DDS_SampleInfoSeq_set_length(info_seq, static_cast<DDS_Long>(copied));
            *count = static_cast<DDS_UnsignedLong>(copied);
            return copied != 0 ? DDS_RETCODE_OK : DDS_RETCODE_NO_DATA;
        });
}

DDS_ReturnCode_t DataReader::read_next_sample(bool take, void *sample, DDS_SampleInfo *info,
                                              const char *method) {
    if (!is_enabled()) {
        return not_enabled(method);
    }
    KOLT_ReadSelection selection{};
    selection.take = take ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
    selection.sample_states = DDS_NOT_READ_SAMPLE_STATE;
    selection.view_states = DDS_ANY_VIEW_STATE;
    selection.instance_states = DDS_ANY_INSTANCE_STATE;
    return fetch_records(selection, 1, method,
                         [&](const Batch &batch, std::size_t, Serdatas *malformed) {
                             const Serdata *const serdata = batch.views[0].get();
                             if (!deserialize(*serdata, batch.infos[0].valid_data, sample)) {
                                 malformed->push_back(serdata);
                                 return DDS_RETCODE_NO_DATA;
                             }
                             *info = to_sample_info(batch.infos[0]);
                             return DDS_RETCODE_OK;
                         });
}

// ---- Loans and keys -----------------------------------------------------------------------------

DDS_ReturnCode_t DataReader::return_loan(void **samples, DDS_UnsignedLong count,
                                         DDS_SampleInfoSeq *info_seq, const char *method) {
    std::unique_ptr<Loan> loan;
    {
        const std::lock_guard lock(contents_);
        const auto found = loans_.find(samples);
        if (found == loans_.end() || found->second->samples.size() != count) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the data sequence does not hold a loan of this reader");
        }
        if (DDS_SampleInfoSeq_get_contiguous_buffer(info_seq) != found->second->infos.data()) {
            return fail(DDS_RETCODE_PRECONDITION_NOT_MET, method,
                        "the info sequence belongs to another loan");
        }
        loan = std::move(found->second);
        loans_.erase(found);
    }
    DDS_SampleInfoSeq_unloan(info_seq);
    return DDS_RETCODE_OK;
}

bool DataReader::has_loans() const {
    const std::lock_guard lock(contents_);
    return !loans_.empty();
}

DDS_ReturnCode_t DataReader::get_key_value(void *key_holder, DDS_InstanceHandle_t handle,
                                           const char *method) {
    if (!is_enabled()) {
        return not_enabled(method);
    }
    SerdataView key;
    if (!type_->is_keyed() || !is_instance_known(handle) ||
        dds_instance_get_key(engine(), handle, &key) < 0 || key.get() == nullptr) {
        return fail(DDS_RETCODE_BAD_PARAMETER, method, "the handle is not that of an instance");
    }
    return KOLT_Cdr_deserialize_key(type_->programs(), key.get()->bytes(), key.get()->size(),
                                    key_holder) != DDS_BOOLEAN_FALSE
               ? DDS_RETCODE_OK
               : fail(DDS_RETCODE_ERROR, method,
                      "the key of the instance could not be deserialised");
}

DDS_InstanceHandle_t DataReader::lookup_instance(const void *key_holder) {
    if (!is_enabled() || !type_->is_keyed()) {
        return DDS_HANDLE_NIL;
    }
    KeyBytes key;
    if (!key.fill([&](DDS_Octet *buffer, std::size_t *length) {
            return KOLT_Cdr_key_of_record(type_->programs(), key_holder, buffer, length) != 0;
        })) {
        return DDS_HANDLE_NIL;
    }
    Serdata *const serdata = Serdata::from_key(&topic_.topic().sertype(), key.data(), key.size());
    const SerdataView view(serdata);
    serdata->unref();
    const DDS_InstanceHandle_t handle = dds_lookup_instance(engine(), &view);
    return is_instance_known(handle) ? handle : DDS_HANDLE_NIL;
}

}  // namespace kolt::engine
