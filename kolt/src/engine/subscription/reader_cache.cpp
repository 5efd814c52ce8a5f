// SPDX-License-Identifier: Apache-2.0
// The functions that the engine calls on a reader's cache. All but those that bring samples go
// straight to the engine's own cache, which is made when the reader is known. A sample that it has no
// room for passes when the write, of this process, has been ended.
#include "engine/subscription/reader_cache.hpp"

#include <dds/ddsc/dds_rhc.h>
#include <dds/ddsi/ddsi_tkmap.h>

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <utility>

#include "engine/publication/local_write.hpp"
#include "engine/topic/content_filter.hpp"

// The engine exports it, but has it in a header that is not installed.
extern "C" dds_rhc *dds_rhc_default_new(dds_reader *reader, const ddsi_sertype *type);

namespace kolt::engine {

struct ReaderCache::Front : dds_rhc {
    explicit Front(ReaderCache &cache)
        : owner(cache), time_based_filter(put, this), auto_purge(purge, this) {
        common.ops = &kOps;
    }

    ReaderCache &owner;
    dds_rhc *inner = nullptr;
    const ContentFilter *content_filter = nullptr;
    ddsi_domaingv *domain = nullptr;
    TimeBasedFilter time_based_filter;
    AutoPurge auto_purge;
    std::optional<Timer> timer;  // as long as the engine's reader lives

    static Front &of(dds_rhc *rhc) { return *static_cast<Front *>(rhc); }
    // The engine's two views of a cache begin with the same pointer.
    static Front &of(ddsi_rhc *rhc) { return of(reinterpret_cast<dds_rhc *>(rhc)); }

    static bool store(ddsi_rhc *rhc, const ddsi_writer_info *writer, ddsi_serdata *sample,
                      ddsi_tkmap_instance *instance) {
        return of(rhc).arrive(*writer, sample, instance) || LocalWrite::pass_by();
    }
    static void unregister_writer(ddsi_rhc *rhc, const ddsi_writer_info *writer) {
        of(rhc).writer_gone(*writer);
    }
    static void relinquish_ownership(ddsi_rhc *rhc, std::uint64_t writer) {
        Front &front = of(rhc);
        front.time_based_filter.relinquish(writer);
        front.auto_purge.relinquish(writer);
        dds_rhc_relinquish_ownership(front.inner, writer);
    }
    static void set_qos(ddsi_rhc *rhc, const dds_qos *qos) { dds_rhc_set_qos(of(rhc).inner, qos); }
    static void free(ddsi_rhc *rhc) {
        Front &front = of(rhc);
        front.timer.reset();
        front.time_based_filter.clear();
        dds_rhc_free(front.inner);
        front.inner = nullptr;
    }
    static std::int32_t read(dds_rhc *rhc, bool lock, void **values, dds_sample_info_t *infos,
                             std::uint32_t maximum, std::uint32_t mask,
                             dds_instance_handle_t handle, dds_readcond *condition) {
        return dds_rhc_read(of(rhc).inner, lock, values, infos, maximum, mask, handle, condition);
    }
    static std::int32_t take(dds_rhc *rhc, bool lock, void **values, dds_sample_info_t *infos,
                             std::uint32_t maximum, std::uint32_t mask,
                             dds_instance_handle_t handle, dds_readcond *condition) {
        Front &front = of(rhc);
        const std::int32_t count =
            dds_rhc_take(front.inner, lock, values, infos, maximum, mask, handle, condition);
        if (count > 0 && front.time_based_filter.retry()) {
            front.call_when_due();
        }
        return count;
    }
    static std::int32_t readcdr(dds_rhc *rhc, bool lock, ddsi_serdata **values,
                                dds_sample_info_t *infos, std::uint32_t maximum,
                                std::uint32_t sample, std::uint32_t view, std::uint32_t instance,
                                dds_instance_handle_t handle) {
        return dds_rhc_readcdr(of(rhc).inner, lock, values, infos, maximum, sample, view, instance,
                               handle);
    }
    static std::int32_t takecdr(dds_rhc *rhc, bool lock, ddsi_serdata **values,
                                dds_sample_info_t *infos, std::uint32_t maximum,
                                std::uint32_t sample, std::uint32_t view, std::uint32_t instance,
                                dds_instance_handle_t handle) {
        return dds_rhc_takecdr(of(rhc).inner, lock, values, infos, maximum, sample, view, instance,
                               handle);
    }
    static bool add_readcondition(dds_rhc *rhc, dds_readcond *condition) {
        return dds_rhc_add_readcondition(of(rhc).inner, condition);
    }
    static void remove_readcondition(dds_rhc *rhc, dds_readcond *condition) {
        dds_rhc_remove_readcondition(of(rhc).inner, condition);
    }
    static std::uint32_t lock_samples(dds_rhc *rhc) { return dds_rhc_lock_samples(of(rhc).inner); }
    static dds_return_t associate(dds_rhc *rhc, dds_reader *reader, const ddsi_sertype *type,
                                  ddsi_tkmap *instances) {
        of(rhc).inner = dds_rhc_default_new(reader, type);
        return dds_rhc_associate(of(rhc).inner, reader, type, instances);
    }

    static const dds_rhc_ops kOps;

    // What comes is filtered, stored, and noted for the time when it is to be purged.
    bool arrive(const ddsi_writer_info &writer, ddsi_serdata *sample,
                ddsi_tkmap_instance *instance);
    void writer_gone(const ddsi_writer_info &writer);
    bool filter(const ddsi_writer_info &writer, ddsi_serdata *sample,
                ddsi_tkmap_instance *instance);
    static bool put(void *front, const ddsi_writer_info &writer, ddsi_serdata *sample,
                    ddsi_tkmap_instance *instance);
    static bool purge(void *front, DDS_InstanceHandle_t instance, AutoPurge::Ending ending);
    static MonotonicTime do_what_is_due(void *front);
    void note_for_purge(const ddsi_writer_info &writer, const ddsi_serdata &sample,
                        DDS_InstanceHandle_t instance);
    void call_when_due();
};

const dds_rhc_ops ReaderCache::Front::kOps = {
    .rhc_ops = {.store = store,
                .unregister_wr = unregister_writer,
                .relinquish_ownership = relinquish_ownership,
                .set_qos = set_qos,
                .free = free},
    .read = read,
    .take = take,
    .readcdr = readcdr,
    .takecdr = takecdr,
    .add_readcondition = add_readcondition,
    .remove_readcondition = remove_readcondition,
    .lock_samples = lock_samples,
    .associate = associate,
};

// ---- Samples ------------------------------------------------------------------------------------

bool ReaderCache::Front::arrive(const ddsi_writer_info &writer, ddsi_serdata *sample,
                                ddsi_tkmap_instance *instance) {
    if (!time_based_filter.is_active()) {
        return put(this, writer, sample, instance);
    }
    const bool stored = filter(writer, sample, instance);
    call_when_due();
    return stored;
}

// Where memory runs out, a sample passes unfiltered.
bool ReaderCache::Front::filter(const ddsi_writer_info &writer, ddsi_serdata *sample,
                                ddsi_tkmap_instance *instance) {
    if (sample->kind != SDK_DATA || sample->statusinfo != 0) {
        return time_based_filter.end(writer, *sample, handle_of(instance)) &&
               put(this, writer, sample, instance);
    }
    if (content_filter != nullptr &&
        !content_filter->accepts(*static_cast<const Serdata *>(sample))) {
        return true;
    }
    try {
        ArrivedSample arrived{writer, {}, InstancePin(domain, instance)};
        arrived.serdata.reset(static_cast<Serdata *>(ddsi_serdata_ref(sample)));
        return time_based_filter.store(std::move(arrived));
    } catch (const std::bad_alloc &) {
        return put(this, writer, sample, instance);
    }
}

bool ReaderCache::Front::put(void *self, const ddsi_writer_info &writer, ddsi_serdata *sample,
                             ddsi_tkmap_instance *instance) {
    Front &front = *static_cast<Front *>(self);
    ReaderCache &cache = front.owner;
    const DDS_InstanceHandle_t handle = handle_of(instance);
    bool is_noted = cache.has_index() && cache.index().begin_store(handle);
    const bool stored = dds_rhc_store(front.inner, &writer, sample, instance);
    // The application may have begun to use the index meanwhile, without finding the sample.
    is_noted = is_noted || (cache.has_index() && cache.index().begin_store(handle));
    if (is_noted) {
        cache.index().end_store(handle);
    }
    if (front.auto_purge.is_active()) {
        front.note_for_purge(writer, *sample, handle);
    }
    return stored;
}

void ReaderCache::Front::writer_gone(const ddsi_writer_info &writer) {
    if (time_based_filter.is_active()) {
        time_based_filter.flush_writer(writer.iid);
    }
    dds_rhc_unregister_wr(inner, &writer);
    if (auto_purge.is_active()) {
        auto_purge.note_writer_gone(writer);
    }
    call_when_due();
}

// ---- Instances that have ended ------------------------------------------------------------------

// An instance that there is no memory to note is not purged.
void ReaderCache::Front::note_for_purge(const ddsi_writer_info &writer, const ddsi_serdata &sample,
                                        DDS_InstanceHandle_t instance) {
    try {
        auto_purge.note_sample(instance, writer, sample);
    } catch (const std::bad_alloc &) {
        return;
    }
    if (sample.statusinfo != 0) {
        call_when_due();
    }
}

bool ReaderCache::Front::purge(void *self, DDS_InstanceHandle_t instance,
                               AutoPurge::Ending ending) {
    constexpr std::size_t kRoom = 32;
    std::array<ddsi_serdata *, kRoom> samples{};
    std::array<dds_sample_info_t, kRoom> infos{};
    const std::uint32_t state =
        ending == AutoPurge::kDisposed ? cyclone::kNotAliveDisposed : cyclone::kNotAliveNoWriters;
    std::int32_t count = 0;
    bool was_purged = false;
    do {
        count = dds_rhc_takecdr(static_cast<Front *>(self)->inner, true, samples.data(),
                                infos.data(), kRoom, cyclone::kReadState | cyclone::kNotReadState,
                                cyclone::kNewView | cyclone::kNotNewView, state, instance);
        for (std::int32_t i = 0; i < count; ++i) {
            ddsi_serdata_unref(samples[static_cast<std::size_t>(i)]);
        }
        was_purged = was_purged || count > 0;
    } while (count > 0);
    return was_purged;
}

// ---- Time ---------------------------------------------------------------------------------------

MonotonicTime ReaderCache::Front::do_what_is_due(void *self) {
    Front &front = *static_cast<Front *>(self);
    front.time_based_filter.store_due();
    front.auto_purge.purge_due();
    return std::min(front.time_based_filter.next_due(), front.auto_purge.next_due());
}

void ReaderCache::Front::call_when_due() {
    timer->call_at(std::min(time_based_filter.next_due(), auto_purge.next_due()));
}

// ---- Outside ------------------------------------------------------------------------------------

ReaderCache::ReaderCache() : front_(std::make_unique<Front>(*this)) {}
ReaderCache::~ReaderCache() = default;

dds_rhc *ReaderCache::engine(const ContentFilter *filter, ddsi_domaingv *domain) {
    front_->content_filter = filter;
    front_->domain = domain;
    front_->timer.emplace(domain, Front::do_what_is_due, front_.get());
    return front_.get();
}

void ReaderCache::set_policies(const Policies &policies) {
    front_->time_based_filter.set(policies.time_based_filter);
    front_->auto_purge.set(policies.auto_purge);
}

bool ReaderCache::purges() const {
    return front_->auto_purge.is_active();
}

void ReaderCache::adopt(const std::vector<InstanceIndex::Known> &held) {
    for (const InstanceIndex::Known &known : held) {
        front_->auto_purge.adopt(known.handle);
    }
}

void ReaderCache::begin_to_apply() {
    front_->call_when_due();
}

}  // namespace kolt::engine
