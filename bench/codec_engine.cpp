// SPDX-License-Identifier: Apache-2.0
// The engine's codec as the benchmark calls it.
#include "codec_engine.h"

#include <dds/dds.h>
#include <dds/ddsi/ddsi_cdrstream.h>
#include <dds/ddsi/q_protocol.h>

#include <cstdint>
#include <vector>

namespace bench {

namespace {

constexpr std::uint32_t kBufferSize = 8192;

}  // namespace

// Makes a type object of the engine with the parts that the stream functions use; they come from
// the descriptor.
struct EngineCodec::Streams {
    explicit Streams(const dds_topic_descriptor &descriptor) {
        ddsi_sertype_default_desc &desc = type.type;
        desc.size = descriptor.m_size;
        desc.align = descriptor.m_align;
        desc.flagset = descriptor.m_flagset;
        for (std::uint32_t i = 0; i < descriptor.m_nkeys; ++i) {
            keys.push_back({descriptor.m_keys[i].m_offset, descriptor.m_keys[i].m_idx});
        }
        desc.keys = {descriptor.m_nkeys, keys.data()};
        desc.ops.nops =
            dds_stream_countops(descriptor.m_ops, descriptor.m_nkeys, descriptor.m_keys);
        desc.ops.ops = const_cast<std::uint32_t *>(descriptor.m_ops);  // only read
        type.write_encoding_version = CDR_ENC_VERSION_2;
        type.opt_size_xcdr2 = dds_stream_check_optimize(&desc, CDR_ENC_VERSION_2);
        dds_ostream_init(&out, kBufferSize, CDR_ENC_VERSION_2);
        dds_ostream_init(&key, kBufferSize, CDR_ENC_VERSION_2);
    }
    ~Streams() {
        dds_ostream_fini(&key);
        dds_ostream_fini(&out);
    }
    Streams(const Streams &) = delete;
    Streams &operator=(const Streams &) = delete;

    std::vector<ddsi_sertype_default_desc_key_t> keys;
    ddsi_sertype_default type = {};
    dds_ostream_t out = {};
    dds_ostream_t key = {};
};

EngineCodec::EngineCodec(const dds_topic_descriptor &descriptor)
    : streams_(std::make_unique<Streams>(descriptor)),
      sample_(dds_alloc(descriptor.m_size)),
      read_(dds_alloc(descriptor.m_size)) {}

EngineCodec::~EngineCodec() {
    dds_free(sample_);
    dds_stream_free_sample(read_, streams_->type.type.ops.ops);
    dds_free(read_);
}

const unsigned char *EngineCodec::bytes() const {
    return streams_->out.m_buffer;
}

std::size_t EngineCodec::serialize(const void *sample) {
    dds_ostream_t &out = streams_->out;
    out.m_index = 0;
    return dds_stream_write_sample(&out, sample, &streams_->type) ? out.m_index : 0;
}

bool EngineCodec::deserialize(unsigned char *bytes, std::size_t size) {
    std::uint32_t actual_size = 0;
    if (!dds_stream_normalize(bytes, static_cast<std::uint32_t>(size), false, CDR_ENC_VERSION_2,
                              &streams_->type, false, &actual_size)) {
        return false;
    }
    dds_istream_t stream;
    dds_istream_init(&stream, actual_size, bytes, CDR_ENC_VERSION_2);
    dds_stream_read_sample(&stream, read_, &streams_->type);
    return true;
}

std::size_t EngineCodec::key() {
    dds_ostream_t &key = streams_->key;
    key.m_index = 0;
    dds_stream_write_key(&key, static_cast<const char *>(sample_), &streams_->type);
    return key.m_index;
}

}  // namespace bench
