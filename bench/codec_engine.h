// The engine's codec of a type that idlc compiled: its stream functions, as its own writers and
// readers run them, on buffers and a record that are used again. In a file of its own, because the
// engine's headers below dds/ddsi and the C API's define some of the same names.
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

    // Zeroed when made. What it points to stays its owner's.
    void *sample() const { return sample_; }
    // What deserialize() fills.
    void *read() const { return read_; }

    // XCDR2 without a header into a buffer that is there; the bytes written, 0 on failure.
    std::size_t serialize(const void *sample);
    const unsigned char *bytes() const;
    // Checks the bytes, then reads them.
    bool deserialize(unsigned char *bytes, std::size_t size);
    // The key of sample(), in native byte order; the bytes written.
    std::size_t key();

  private:
    struct Streams;
    std::unique_ptr<Streams> streams_;
    void *sample_;
    void *read_;
};

}  // namespace bench
