// SPDX-License-Identifier: Apache-2.0
// A sample, or a key alone, in serialised form with its encapsulation header, as it lies in the
// engine's caches and goes over the wire.
//
// The engine has "samples in memory", which it fills when an application reads, and hands to
// filters. Here each of them is a SerdataView: a counted reference to the serialised sample.
// Filters and query conditions thus see serialised bytes, and records are built only for samples
// that an application reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "engine/cyclone/cyclone.hpp"
#include "engine/data/key_bytes.hpp"
#include "engine/data/registered_type.hpp"
#include "engine/data/sertype.hpp"

namespace kolt::engine {

class Serdata final : public ddsi_serdata {
  public:
    // The three functions create an object with one reference. They throw std::bad_alloc.
    //
    // An object with memory of its own for `size` bytes, at least the header's. The caller writes
    // bytes().
    static Serdata *allocate(const Sertype &type, ddsi_serdata_kind kind, std::size_t size);
    // A sample that was serialised into a buffer of a writer's pool. It owns the buffer and keeps
    // the pool alive.
    static Serdata *adopt(const Sertype &type, std::shared_ptr<TypeEndpoint> endpoint,
                          const KOLT_CdrStream &buffer);
    // A key alone: the header of plain big-endian XCDR2, and the canonical form of the key. `type`
    // is nullptr for a key of no particular type.
    static Serdata *from_key(const Sertype *type, const DDS_Octet *key, std::size_t size);

    static const Serdata &of(const ddsi_serdata *base) {
        return *static_cast<const Serdata *>(base);
    }

    // Count references in the engine's own counter. ref() returns the object itself.
    Serdata *ref() const;
    void unref() const;

    DDS_Octet *bytes() { return bytes_; }
    const DDS_Octet *bytes() const { return bytes_; }
    // Returns the size with the header. The bytes up to the next multiple of 4 can be read as well.
    std::size_t size() const { return size_; }
    bool has_data() const { return kind == SDK_DATA; }
    const KeyBytes &key() const { return key_; }

    // Set the key from a record, or from the bytes themselves. False when these are malformed.
    bool set_key_from_record(const Sertype &type, const void *record);
    bool set_key_from_bytes(const Sertype &type);
    // Ends the writing of bytes, `size` in all: pads them to a multiple of 4 and notes the number
    // of padding bytes in the header (DDS-XTypes 1.3, 7.6.3.1.2).
    void seal(std::size_t size);
    // Drops the padding that the header of bytes from the wire tells of. False when there are fewer
    // bytes than that, or than a header.
    bool unseal();

    static const ddsi_serdata_ops kOps;

  private:
    Serdata() = default;
    ~Serdata();
    static Serdata *create(const Sertype *type, ddsi_serdata_kind kind, std::size_t inline_size);
    // Throws std::bad_alloc.
    void set_hash();

    static bool eqkey_op(const ddsi_serdata *a, const ddsi_serdata *b);
    static std::uint32_t get_size_op(const ddsi_serdata *d);
    static ddsi_serdata *from_ser_op(const ddsi_sertype *type, ddsi_serdata_kind kind,
                                     const nn_rdata *fragments, std::size_t size);
    static ddsi_serdata *from_ser_iov_op(const ddsi_sertype *type, ddsi_serdata_kind kind,
                                         ddsrt_msg_iovlen_t count, const ddsrt_iovec_t *pieces,
                                         std::size_t size);
    static ddsi_serdata *from_keyhash_op(const ddsi_sertype *type, const ddsi_keyhash *keyhash);
    static ddsi_serdata *from_sample_op(const ddsi_sertype *type, ddsi_serdata_kind kind,
                                        const void *sample);
    static void to_ser_op(const ddsi_serdata *d, std::size_t offset, std::size_t size,
                          void *buffer);
    static ddsi_serdata *to_ser_ref_op(const ddsi_serdata *d, std::size_t offset, std::size_t size,
                                       ddsrt_iovec_t *piece);
    static void to_ser_unref_op(ddsi_serdata *d, const ddsrt_iovec_t *piece);
    static bool to_sample_op(const ddsi_serdata *d, void *sample, void **buffer, void *limit);
    static ddsi_serdata *to_untyped_op(const ddsi_serdata *d) noexcept;
    static bool untyped_to_sample_op(const ddsi_sertype *type, const ddsi_serdata *d, void *sample,
                                     void **buffer, void *limit);
    static void free_op(ddsi_serdata *d);
    static std::size_t print_op(const ddsi_sertype *type, const ddsi_serdata *d, char *buffer,
                                std::size_t size);
    static void get_keyhash_op(const ddsi_serdata *d, ddsi_keyhash *keyhash, bool force_md5);

    DDS_Octet *bytes_ = nullptr;
    std::size_t size_ = 0;
    KeyBytes key_;
    // The pool and the buffer of a sample that lies in a writer's pool:
    std::shared_ptr<TypeEndpoint> endpoint_;
    KOLT_CdrStream buffer_{};
};

// A counted reference to a serialised sample. An object of zero bytes is an empty one.
class SerdataView {
  public:
    SerdataView() = default;
    explicit SerdataView(const ddsi_serdata *serdata) { reset(serdata); }
    ~SerdataView() { reset(nullptr); }
    SerdataView(const SerdataView &) = delete;
    SerdataView &operator=(const SerdataView &) = delete;

    const Serdata *get() const { return serdata_; }
    // Takes a reference of its own on `serdata` and drops the old one.
    void reset(const ddsi_serdata *serdata);

  private:
    const Serdata *serdata_ = nullptr;
};

struct SerdataDeleter {
    void operator()(Serdata *serdata) const { serdata->unref(); }
};
using SerdataRef = std::unique_ptr<Serdata, SerdataDeleter>;

}  // namespace kolt::engine
