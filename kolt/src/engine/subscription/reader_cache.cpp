// SPDX-License-Identifier: Apache-2.0
// The functions that the engine calls on a reader's cache. All but the storing of samples go straight
// to the engine's own cache, which is made when the reader is known. A sample that it has no room for
// passes when the write, of this process, has been ended.
#include "engine/subscription/reader_cache.hpp"

#include <dds/ddsc/dds_rhc.h>
#include <dds/ddsi/ddsi_tkmap.h>

#include "engine/publication/local_write.hpp"

// The engine exports it, but has it in a header that is not installed.
extern "C" dds_rhc *dds_rhc_default_new(dds_reader *reader, const ddsi_sertype *type);

namespace kolt::engine {

struct ReaderCache::Front : dds_rhc {
    explicit Front(ReaderCache &cache) : owner(cache) { common.ops = &kOps; }

    ReaderCache &owner;
    dds_rhc *inner = nullptr;

    static Front &of(dds_rhc *rhc) { return *static_cast<Front *>(rhc); }
    // The engine's two views of a cache begin with the same pointer.
    static Front &of(ddsi_rhc *rhc) { return of(reinterpret_cast<dds_rhc *>(rhc)); }

    static bool store(ddsi_rhc *rhc, const ddsi_writer_info *writer, ddsi_serdata *sample,
                      ddsi_tkmap_instance *instance) {
        const Front &front = of(rhc);
        ReaderCache &cache = front.owner;
        const DDS_InstanceHandle_t handle = instance->m_iid;
        bool is_noted = cache.has_index() && cache.index().begin_store(handle);
        const bool stored = dds_rhc_store(front.inner, writer, sample, instance);
        // The application may have begun to use the index meanwhile, without finding the sample.
        is_noted = is_noted || (cache.has_index() && cache.index().begin_store(handle));
        if (is_noted) {
            cache.index().end_store(handle);
        }
        return stored || LocalWrite::pass_by();
    }
    static void unregister_writer(ddsi_rhc *rhc, const ddsi_writer_info *writer) {
        dds_rhc_unregister_wr(of(rhc).inner, writer);
    }
    static void relinquish_ownership(ddsi_rhc *rhc, std::uint64_t writer) {
        dds_rhc_relinquish_ownership(of(rhc).inner, writer);
    }
    static void set_qos(ddsi_rhc *rhc, const dds_qos *qos) { dds_rhc_set_qos(of(rhc).inner, qos); }
    static void free(ddsi_rhc *rhc) {
        dds_rhc_free(of(rhc).inner);
        of(rhc).inner = nullptr;
    }
    static std::int32_t read(dds_rhc *rhc, bool lock, void **values, dds_sample_info_t *infos,
                             std::uint32_t maximum, std::uint32_t mask,
                             dds_instance_handle_t handle, dds_readcond *condition) {
        return dds_rhc_read(of(rhc).inner, lock, values, infos, maximum, mask, handle, condition);
    }
    static std::int32_t take(dds_rhc *rhc, bool lock, void **values, dds_sample_info_t *infos,
                             std::uint32_t maximum, std::uint32_t mask,
                             dds_instance_handle_t handle, dds_readcond *condition) {
        return dds_rhc_take(of(rhc).inner, lock, values, infos, maximum, mask, handle, condition);
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

ReaderCache::ReaderCache() : front_(std::make_unique<Front>(*this)) {}
ReaderCache::~ReaderCache() = default;

dds_rhc *ReaderCache::engine() {
    return front_.get();
}

}  // namespace kolt::engine
