// SPDX-License-Identifier: Apache-2.0
// The engine's operations on serialised samples.
#include "engine/data/serdata.hpp"

#include <dds/ddsrt/mh3.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace kolt::engine {

namespace {

constexpr std::size_t kHeaderSize = KOLT_ENCAPSULATION_HEADER_SIZE;
constexpr unsigned kPaddingMask = 3;
// Plain big-endian XCDR2, the encoding of canonical keys.
constexpr DDS_Octet kCanonicalKeyHeader[kHeaderSize] = {0, KOLT_ENCAPSULATION_CDR2_BE, 0, 0};

constexpr std::size_t round_up(std::size_t size) {
    return (size + 3) & ~std::size_t{3};
}

// Runs `make` and turns what it throws into the engine's failure.
template <typename Make>
ddsi_serdata *make_or_null(Make &&make) noexcept {
    try {
        return make();
    } catch (...) {
        return nullptr;
    }
}

// Memory that a thread sets aside for the next key of no particular type that it makes. The engine
// makes one when it meets an instance that it does not know, and cannot bear that this fails.
struct UntypedBlock {
    void *block;
    std::size_t size;
};

// Not destroyed with the thread, whose last destructors may still write.
thread_local constinit UntypedBlock t_untyped{nullptr, 0};

struct UntypedBlockOwner {
    ~UntypedBlockOwner() {
        ::operator delete(std::exchange(t_untyped.block, nullptr));
        t_untyped.size = 0;
    }
};

// Makes sure that there are at least `size` bytes. Throws std::bad_alloc.
void reserve_untyped(std::size_t size) {
    static thread_local UntypedBlockOwner owner;
    if (size > t_untyped.size) {
        void *const larger = ::operator new(size);
        ::operator delete(std::exchange(t_untyped.block, larger));
        t_untyped.size = size;
    }
}

// Returns a block for the caller to delete. Throws std::bad_alloc.
void *take_untyped(std::size_t size) {
    reserve_untyped(size);
    t_untyped.size = 0;
    return std::exchange(t_untyped.block, nullptr);
}

}  // namespace

const ddsi_serdata_ops Serdata::kOps = {
    .eqkey = eqkey_op,
    .get_size = get_size_op,
    .from_ser = from_ser_op,
    .from_ser_iov = from_ser_iov_op,
    .from_keyhash = from_keyhash_op,
    .from_sample = from_sample_op,
    .to_ser = to_ser_op,
    .to_ser_ref = to_ser_ref_op,
    .to_ser_unref = to_ser_unref_op,
    .to_sample = to_sample_op,
    .to_untyped = to_untyped_op,
    .untyped_to_sample = untyped_to_sample_op,
    .free = free_op,
    .print = print_op,
    .get_keyhash = get_keyhash_op,
#ifdef DDS_HAS_SHM
    .get_sample_size = nullptr,
    .from_iox_buffer = nullptr,
#endif
};

// ---- Making and freeing -------------------------------------------------------------------------

// Creates an object with room for `inline_size` bytes of its own behind it, in the same block.
Serdata *Serdata::create(const Sertype *type, ddsi_serdata_kind kind, std::size_t inline_size) {
    const std::size_t size = sizeof(Serdata) + round_up(inline_size);
    void *const block = type == nullptr ? take_untyped(size) : ::operator new(size);
    auto *const serdata = new (block) Serdata;
    // A key of no particular type has no sertype, from which the engine's own initialisation reads
    // the operations: the base is initialised here.
    std::memset(static_cast<void *>(static_cast<ddsi_serdata *>(serdata)), 0, sizeof(ddsi_serdata));
    serdata->ops = &kOps;
    serdata->kind = kind;
    serdata->type = type;
    serdata->timestamp.v = INT64_MIN;
    serdata->twrite.v = INT64_MIN;
    ddsrt_atomic_st32(&serdata->refc, 1);
    if (inline_size != 0) {
        serdata->bytes_ = reinterpret_cast<DDS_Octet *>(serdata + 1);
        serdata->size_ = inline_size;
        std::memset(serdata->bytes_ + inline_size, 0, round_up(inline_size) - inline_size);
    }
    return serdata;
}

Serdata *Serdata::allocate(const Sertype &type, ddsi_serdata_kind kind, std::size_t size) {
    return create(&type, kind, size);
}

Serdata *Serdata::adopt(const Sertype &type, std::shared_ptr<TypeEndpoint> endpoint,
                        const KOLT_CdrStream &buffer) {
    Serdata *const serdata = create(&type, SDK_DATA, 0);
    serdata->endpoint_ = std::move(endpoint);
    serdata->buffer_ = buffer;
    serdata->bytes_ = buffer.buffer;
    return serdata;
}

Serdata *Serdata::from_key(const Sertype *type, const DDS_Octet *key, std::size_t size) {
    Serdata *const serdata = create(type, SDK_KEY, kHeaderSize + size);
    std::unique_ptr<Serdata, void (*)(Serdata *)> guard(serdata, [](Serdata *s) { free_op(s); });
    std::memcpy(serdata->bytes_, kCanonicalKeyHeader, kHeaderSize);
    if (size != 0) {
        std::memcpy(serdata->bytes_ + kHeaderSize, key, size);
    }
    serdata->key_.refer(serdata->bytes_ + kHeaderSize, size);
    serdata->set_hash();
    serdata->seal(kHeaderSize + size);
    return guard.release();
}

Serdata::~Serdata() {
    if (endpoint_ != nullptr) {
        endpoint_->plugin().return_buffer(endpoint_->data(), &buffer_);
    }
}

// Returns the engine's reference count as an atomic.
static std::atomic_ref<std::uint32_t> counter(const Serdata *serdata) {
    return std::atomic_ref<std::uint32_t>(const_cast<Serdata *>(serdata)->refc.v);
}

Serdata *Serdata::ref() const {
    counter(this).fetch_add(1, std::memory_order_relaxed);
    return const_cast<Serdata *>(this);
}

void Serdata::unref() const {
    if (counter(this).fetch_sub(1, std::memory_order_release) == 1) {
        free_op(const_cast<Serdata *>(this));
    }
}

void Serdata::free_op(ddsi_serdata *d) {
    auto *const serdata = static_cast<Serdata *>(d);
    // Pairs with the release in unref(): every other thread has finished with the sample.
    counter(serdata).load(std::memory_order_acquire);
    serdata->~Serdata();
    ::operator delete(static_cast<void *>(serdata));
}

// ---- Content ------------------------------------------------------------------------------------

void Serdata::seal(std::size_t size) {
    size_ = size;
    const std::size_t padding = round_up(size) - size;
    std::memset(bytes_ + size, 0, padding);
    bytes_[3] = static_cast<DDS_Octet>((bytes_[3] & ~kPaddingMask) | padding);
}

bool Serdata::unseal() {
    if (size_ < kHeaderSize) {
        return false;
    }
    const std::size_t padding = bytes_[3] & kPaddingMask;
    if (size_ - kHeaderSize < padding) {
        return false;
    }
    size_ -= padding;
    return true;
}

// The type is not part of the hash: the engine looks keys up across all types. When it has no
// instance of this key it asks for the untyped form, on the thread that has set the key.
void Serdata::set_hash() {
    if (type != nullptr) {
        reserve_untyped(sizeof(Serdata) + round_up(kHeaderSize + key_.size()));
    }
    hash = ddsrt_mh3(key_.data(), key_.size(), 0);
}

bool Serdata::set_key_from_record(const Sertype &sertype, const void *record) {
    if (sertype.is_keyed() && !key_.fill([&](DDS_Octet *buffer, std::size_t *length) {
            return KOLT_Cdr_key_of_record(sertype.programs(), record, buffer, length) != 0;
        })) {
        return false;
    }
    set_hash();
    return true;
}

bool Serdata::set_key_from_bytes(const Sertype &sertype) {
    const DDS_Boolean is_key_only = kind == SDK_KEY ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
    if (sertype.is_keyed() && !key_.fill([&](DDS_Octet *buffer, std::size_t *length) {
            return KOLT_Cdr_key_of_serialized(sertype.programs(), bytes_, size_, is_key_only,
                                              buffer, length) != 0;
        })) {
        return false;
    }
    set_hash();
    return true;
}

// ---- From the wire ------------------------------------------------------------------------------

namespace {

// Creates a serdata of `size` bytes, which `copy(bytes)` writes. nullptr when they are malformed.
template <typename Copy>
ddsi_serdata *from_wire(const ddsi_sertype *type, ddsi_serdata_kind kind, std::size_t size,
                        Copy &&copy) {
    if (size < kHeaderSize || size > UINT32_MAX - sizeof(Serdata) - kHeaderSize) {
        return nullptr;
    }
    return make_or_null([&]() -> ddsi_serdata * {
        Serdata *const serdata = Serdata::allocate(Sertype::of(type), kind, size);
        copy(serdata->bytes());
        bool valid = false;
        try {
            valid = serdata->unseal() && serdata->set_key_from_bytes(Sertype::of(type));
        } catch (...) {
            valid = false;
        }
        if (valid) {
            return serdata;
        }
        serdata->unref();
        return nullptr;
    });
}

}  // namespace

ddsi_serdata *Serdata::from_ser_op(const ddsi_sertype *type, ddsi_serdata_kind kind,
                                   const nn_rdata *fragments, std::size_t size) {
    return from_wire(type, kind, size, [&](DDS_Octet *bytes) {
        std::size_t filled = 0;
        // Fragments come in order and may overlap.
        for (const nn_rdata *f = fragments; f != nullptr; f = f->nextfrag) {
            if (f->maxp1 <= filled || f->maxp1 > size) {
                continue;
            }
            const unsigned char *const payload =
                NN_RMSG_PAYLOADOFF(f->rmsg, NN_RDATA_PAYLOAD_OFF(f));
            std::memcpy(bytes + filled, payload + (filled - f->min), f->maxp1 - filled);
            filled = f->maxp1;
        }
        std::memset(bytes + filled, 0, size - filled);
    });
}

ddsi_serdata *Serdata::from_ser_iov_op(const ddsi_sertype *type, ddsi_serdata_kind kind,
                                       ddsrt_msg_iovlen_t count, const ddsrt_iovec_t *pieces,
                                       std::size_t size) {
    return from_wire(type, kind, size, [&](DDS_Octet *bytes) {
        std::size_t filled = 0;
        for (ddsrt_msg_iovlen_t i = 0; i < count && filled < size; ++i) {
            const std::size_t length = std::min<std::size_t>(pieces[i].iov_len, size - filled);
            std::memcpy(bytes + filled, pieces[i].iov_base, length);
            filled += length;
        }
        std::memset(bytes + filled, 0, size - filled);
    });
}

// A key hash is the key itself, padded, only when no key of the type exceeds it
// (RTPS 2.3, 9.6.3.8).
ddsi_serdata *Serdata::from_keyhash_op(const ddsi_sertype *type, const ddsi_keyhash *keyhash) {
    const Sertype &sertype = Sertype::of(type);
    if (!sertype.is_keyed()) {
        return make_or_null([&] { return from_key(&sertype, nullptr, 0); });
    }
    if (KOLT_Cdr_key_max_size(sertype.programs()) > sizeof(keyhash->value)) {
        return nullptr;
    }
    return from_wire(type, SDK_KEY, kHeaderSize + sizeof(keyhash->value), [&](DDS_Octet *bytes) {
        std::memcpy(bytes, kCanonicalKeyHeader, kHeaderSize);
        std::memcpy(bytes + kHeaderSize, keyhash->value, sizeof(keyhash->value));
    });
}

// ---- To and from views, and keys ----------------------------------------------------------------

ddsi_serdata *Serdata::from_sample_op(const ddsi_sertype *type, ddsi_serdata_kind kind,
                                      const void *sample) {
    const Serdata *const source = static_cast<const SerdataView *>(sample)->get();
    if (source == nullptr) {
        return nullptr;
    }
    if (source->kind == kind && source->type == type) {
        return source->ref();
    }
    if (kind != SDK_KEY) {
        return nullptr;
    }
    return make_or_null(
        [&] { return from_key(&Sertype::of(type), source->key_.data(), source->key_.size()); });
}

bool Serdata::to_sample_op(const ddsi_serdata *d, void *sample, void **, void *) {
    static_cast<SerdataView *>(sample)->reset(d);
    return true;
}

bool Serdata::untyped_to_sample_op(const ddsi_sertype *, const ddsi_serdata *d, void *sample,
                                   void **, void *) {
    static_cast<SerdataView *>(sample)->reset(d);
    return true;
}

// Needs no memory but what is set aside, unless the thread makes several of one sample; where even
// that runs out the process ends, as the engine's own allocations end it.
ddsi_serdata *Serdata::to_untyped_op(const ddsi_serdata *d) noexcept {
    const Serdata &serdata = of(d);
    return from_key(nullptr, serdata.key_.data(), serdata.key_.size());
}

bool Serdata::eqkey_op(const ddsi_serdata *a, const ddsi_serdata *b) {
    return of(a).key_.view() == of(b).key_.view();
}

void Serdata::get_keyhash_op(const ddsi_serdata *d, ddsi_keyhash *keyhash, bool force_md5) {
    const Serdata &serdata = of(d);
    if (serdata.type == nullptr || !Sertype::of(serdata.type).is_keyed()) {
        std::memset(keyhash->value, 0, sizeof(keyhash->value));
        return;
    }
    KOLT_Cdr_keyhash(Sertype::of(serdata.type).programs(), serdata.key_.data(), serdata.key_.size(),
                     force_md5 ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE, keyhash->value);
}

// ---- To the wire --------------------------------------------------------------------------------

std::uint32_t Serdata::get_size_op(const ddsi_serdata *d) {
    return static_cast<std::uint32_t>(of(d).size_);
}

void Serdata::to_ser_op(const ddsi_serdata *d, std::size_t offset, std::size_t size, void *buffer) {
    std::memcpy(buffer, of(d).bytes_ + offset, size);
}

ddsi_serdata *Serdata::to_ser_ref_op(const ddsi_serdata *d, std::size_t offset, std::size_t size,
                                     ddsrt_iovec_t *piece) {
    piece->iov_base = of(d).bytes_ + offset;
    piece->iov_len = static_cast<ddsrt_iov_len_t>(size);
    return of(d).ref();
}

void Serdata::to_ser_unref_op(ddsi_serdata *d, const ddsrt_iovec_t *) {
    of(d).unref();
}

std::size_t Serdata::print_op(const ddsi_sertype *type, const ddsi_serdata *d, char *buffer,
                              std::size_t size) {
    const int length =
        std::snprintf(buffer, size, "%s %s of %zu bytes", type != nullptr ? type->type_name : "?",
                      d->kind == SDK_DATA ? "sample" : "key", of(d).size_);
    return length < 0 ? 0 : static_cast<std::size_t>(length);
}

void SerdataView::reset(const ddsi_serdata *serdata) {
    const Serdata *const old = serdata_;
    serdata_ = serdata != nullptr ? Serdata::of(serdata).ref() : nullptr;
    if (old != nullptr) {
        old->unref();
    }
}

}  // namespace kolt::engine
