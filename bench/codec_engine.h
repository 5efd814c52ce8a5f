// SPDX-License-Identifier: Apache-2.0
// The engine's codec of a type that idlc compiled: its stream functions, called as its own writers
// and readers call them, on buffers and a record that are used again. It has a file of its own,
// because the engine's headers below dds/ddsi and those of the C API define some of the same names.
#pragma once

#include <cstddef>
#include <memory>

struct dds_topic_descriptor;

namespace bench {

class EngineCodec {
  public:
    explicit EngineCodec(const dds_topic_descriptor &descriptor);
    ~EngineCodec();
    EngineCodec(const EngineCodec &) = delete;
    EngineCodec &operator=(const EngineCodec &) = delete;

    // The record to write; zeroed at first. The memory that it points to belongs to its owner.
    void *sample() const { return sample_; }
    // The record that deserialize() fills.
    void *read() const { return read_; }

    // Writes XCDR2 without a header into a buffer that is there. Returns the number of bytes, 0 on
    // failure.
    std::size_t serialize(const void *sample);
    const unsigned char *bytes() const;
    // Checks the bytes, then reads them.
    bool deserialize(unsigned char *bytes, std::size_t size);
    // Writes the key of sample() in native byte order. Returns the number of bytes.
    std::size_t key();

  private:
    struct Streams;
    std::unique_ptr<Streams> streams_;
    void *sample_;
    void *read_;
};

}  // namespace bench
