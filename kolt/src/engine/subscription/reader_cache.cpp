// SPDX-License-Identifier: Apache-2.0
// A cache that hands everything on to the engine's default cache.
#include "engine/subscription/reader_cache.hpp"

#include "engine/publication/local_write.hpp"

// The engine exports it, but its header is not installed.
extern "C" dds_rhc *dds_rhc_default_new(dds_reader *reader, const ddsi_sertype *type);

namespace kolt::engine {

namespace {

struct Cache : dds_rhc {
    dds_rhc *inner = nullptr;  // made when the engine tells the reader
};

dds_rhc *inner_of(dds_rhc *cache) {
    return static_cast<Cache *>(cache)->inner;
}
// The engine's two interfaces of a cache begin alike, and one record serves both.
dds_rhc *inner_of(ddsi_rhc *cache) {
    return inner_of(reinterpret_cast<dds_rhc *>(cache));
}

dds_return_t associate(dds_rhc *cache, dds_reader *reader, const ddsi_sertype *type,
                       ddsi_tkmap *instances) {
    dds_rhc *const inner = dds_rhc_default_new(reader, type);
    if (inner == nullptr) {
        return cyclone::kOutOfResources;
    }
    static_cast<Cache *>(cache)->inner = inner;
    return dds_rhc_associate(inner, reader, type, instances);
}

bool store(ddsi_rhc *cache, const ddsi_writer_info *writer, ddsi_serdata *sample,
           ddsi_tkmap_instance *instance) {
    return dds_rhc_store(inner_of(cache), writer, sample, instance) || LocalWrite::pass_by();
}

void unregister_writer(ddsi_rhc *cache, const ddsi_writer_info *writer) {
    dds_rhc_unregister_wr(inner_of(cache), writer);
}

void relinquish_ownership(ddsi_rhc *cache, const std::uint64_t writer) {
    dds_rhc_relinquish_ownership(inner_of(cache), writer);
}

void set_qos(ddsi_rhc *cache, const dds_qos *qos) {
    dds_rhc_set_qos(inner_of(cache), qos);
}

void free_cache(ddsi_rhc *cache) {
    delete_reader_cache(reinterpret_cast<dds_rhc *>(cache));
}

std::int32_t read(dds_rhc *cache, bool lock, void **values, dds_sample_info_t *infos,
                  std::uint32_t max_samples, std::uint32_t mask, dds_instance_handle_t handle,
                  dds_readcond *condition) {
    return dds_rhc_read(inner_of(cache), lock, values, infos, max_samples, mask, handle, condition);
}

std::int32_t take(dds_rhc *cache, bool lock, void **values, dds_sample_info_t *infos,
                  std::uint32_t max_samples, std::uint32_t mask, dds_instance_handle_t handle,
                  dds_readcond *condition) {
    return dds_rhc_take(inner_of(cache), lock, values, infos, max_samples, mask, handle, condition);
}

std::int32_t read_cdr(dds_rhc *cache, bool lock, ddsi_serdata **values, dds_sample_info_t *infos,
                      std::uint32_t max_samples, std::uint32_t sample_states,
                      std::uint32_t view_states, std::uint32_t instance_states,
                      dds_instance_handle_t handle) {
    return dds_rhc_readcdr(inner_of(cache), lock, values, infos, max_samples, sample_states,
                           view_states, instance_states, handle);
}

std::int32_t take_cdr(dds_rhc *cache, bool lock, ddsi_serdata **values, dds_sample_info_t *infos,
                      std::uint32_t max_samples, std::uint32_t sample_states,
                      std::uint32_t view_states, std::uint32_t instance_states,
                      dds_instance_handle_t handle) {
    return dds_rhc_takecdr(inner_of(cache), lock, values, infos, max_samples, sample_states,
                           view_states, instance_states, handle);
}

bool add_condition(dds_rhc *cache, dds_readcond *condition) {
    return dds_rhc_add_readcondition(inner_of(cache), condition);
}

void remove_condition(dds_rhc *cache, dds_readcond *condition) {
    dds_rhc_remove_readcondition(inner_of(cache), condition);
}

std::uint32_t lock_samples(dds_rhc *cache) {
    return dds_rhc_lock_samples(inner_of(cache));
}

constexpr dds_rhc_ops kOps = {
    {store, unregister_writer, relinquish_ownership, set_qos, free_cache},
    read,
    take,
    read_cdr,
    take_cdr,
    add_condition,
    remove_condition,
    lock_samples,
    associate,
};

}  // namespace

dds_rhc *create_reader_cache() {
    auto *const cache = new Cache{};
    cache->common.ops = &kOps;
    return cache;
}

void delete_reader_cache(dds_rhc *cache) {
    if (inner_of(cache) != nullptr) {
        dds_rhc_free(inner_of(cache));
    }
    delete static_cast<Cache *>(cache);
}

}  // namespace kolt::engine
