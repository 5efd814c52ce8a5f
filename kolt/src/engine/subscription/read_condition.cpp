// SPDX-License-Identifier: Apache-2.0
// Read and query conditions in the engine, and the functions that lead back to the latter.
#include "engine/subscription/read_condition.hpp"

#include <array>
#include <utility>

#include "engine/cyclone/convert.hpp"
#include "engine/subscription/data_reader.hpp"

namespace kolt::engine {

namespace {

// ---- Functions that know their condition --------------------------------------------------------

constexpr std::size_t kSlots = 256;

// The filter of each function. Set before the engine knows the function, reset after it has
// forgotten it.
std::array<std::atomic<const ContentFilter *>, kSlots> g_filters;

template <std::size_t kSlot>
bool filter_function(const void *view) {
    const ContentFilter *const filter = g_filters[kSlot].load(std::memory_order_acquire);
    const Serdata *const serdata = static_cast<const SerdataView *>(view)->get();
    return filter != nullptr && serdata != nullptr && filter->accepts(*serdata);
}

template <std::size_t... kIndexes>
constexpr std::array<dds_querycondition_filter_fn, kSlots> make_functions(
    std::index_sequence<kIndexes...>) {
    return {&filter_function<kIndexes>...};
}
constexpr auto kFunctions = make_functions(std::make_index_sequence<kSlots>());

// Takes a free slot for the filter; returns kSlots when all are taken.
std::size_t claim_slot(const ContentFilter *filter) {
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
        const ContentFilter *free = nullptr;
        if (g_filters[slot].compare_exchange_strong(free, filter)) {
            return slot;
        }
    }
    return kSlots;
}

}  // namespace

// ---- Read condition -----------------------------------------------------------------------------

ReadCondition::ReadCondition(DataReader &reader, std::uint32_t engine_mask,
                             const ReadStates &states, Deferred deferred)
    : Condition(deferred.kind, &handle_._read_condition._condition),
      reader_(reader),
      engine_mask_(engine_mask),
      states_(states) {}

ReadCondition::ReadCondition(DataReader &reader, std::uint32_t engine_mask,
                             const ReadStates &states)
    : ReadCondition(reader, engine_mask, states, Deferred{ConditionKind::kRead}) {
    const dds_entity_t engine = dds_create_readcondition(reader.engine(), engine_mask);
    if (engine < 0) {
        throw std::bad_alloc();
    }
    set_engine(engine);
}

ReadCondition::~ReadCondition() {
    leave_waitsets();
    delete_engine();
}

void ReadCondition::delete_engine() {
    stop_watching();
    const dds_entity_t engine = engine_.exchange(0);
    if (engine > 0) {
        dds_delete(engine);
    }
}

// ---- Query condition ----------------------------------------------------------------------------

std::unique_ptr<QueryCondition> QueryCondition::create(DataReader &reader,
                                                       std::uint32_t engine_mask,
                                                       const ReadStates &states,
                                                       std::unique_ptr<ContentFilter> filter,
                                                       const char *method) {
    const std::size_t slot = claim_slot(filter.get());
    if (slot == kSlots) {
        fail(DDS_RETCODE_OUT_OF_RESOURCES, method,
             "the process has %zu query conditions and may have no more", kSlots);
        return nullptr;
    }
    std::unique_ptr<QueryCondition> condition;
    try {
        condition.reset(new QueryCondition(reader, engine_mask, states, std::move(filter), slot));
    } catch (...) {
        g_filters[slot].store(nullptr);
        throw;
    }
    return condition->make_engine(method) == DDS_RETCODE_OK ? std::move(condition) : nullptr;
}

QueryCondition::~QueryCondition() {
    leave_waitsets();
    delete_engine();
    g_filters[slot_].store(nullptr, std::memory_order_release);
}

DDS_ReturnCode_t QueryCondition::make_engine(const char *method) {
    const dds_entity_t engine =
        dds_create_querycondition(reader().engine(), engine_mask(), kFunctions[slot_]);
    if (engine < 0) {
        return fail(to_return_code(engine), method,
                    "the DDS engine could not create the query condition");
    }
    set_engine(engine);
    return DDS_RETCODE_OK;
}

// The engine judges each sample once, when it arrives or the condition is created: the condition is
// created anew.
DDS_ReturnCode_t QueryCondition::set_parameters(const DDS_StringSeq &parameters,
                                                const char *method) {
    const std::lock_guard lock(use_);
    const DDS_ReturnCode_t set = filter_->set_parameters(parameters, method);
    if (set != DDS_RETCODE_OK) {
        return set;
    }
    delete_engine();
    const DDS_ReturnCode_t made = make_engine(method);
    if (made == DDS_RETCODE_OK) {
        start_watching();
    }
    return made;
}

}  // namespace kolt::engine
