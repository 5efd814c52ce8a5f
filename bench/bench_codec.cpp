// SPDX-License-Identifier: Apache-2.0
// The codec beside the engine's own: records of the four topic types to bytes and back in XCDR2.
// Ours runs through the slots of the type plugins, as a DDS write or read does; the peer is what
// idlc makes of the same types, run by the engine's stream functions, as its own writers and
// readers do.
//
//   serialize    the record into a buffer that is there and large enough. Ours checks bounds, and
//                writes the 4-byte encapsulation header, which the engine's writers add elsewhere.
//   size         how many bytes that will be. The engine has no function for it: it serialises into
//                a buffer that grows when needed. Here it never needs to.
//   write        size, then serialize, as a DDS write of ours does: against one serialisation of
//                the engine's.
//   deserialize  the bytes into a record that is used again. Neither side allocates or frees:
//                strings go into buffers of their bounds' length, which our records point to and
//                idlc's contain. Both check the bytes; the engine takes a pass of its own for it.
//   key          the key members of the record, as a DDS write wants them to find the instance. The
//                engine's key is in native byte order, ours the big-endian form that is hashed.
//   ..._xcdr1    ours in XCDR1, which writers offer unless told otherwise, against the engine in
//                XCDR2: what idlc makes of mutable types has no XCDR1. The values are the same.
//
// Before anything is timed, both have to have made the same bytes, and read the same out of them.
#include <benchmark/benchmark.h>
// Before idlc's header, which brings in the engine's: these define some of the C API's names as
// macros.
#include <vur_dl/distlogPlugin.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

#include "codec_engine.h"
#include "distlog_idlc.h"
#include "paired.h"

namespace {

constexpr std::size_t kHeaderSize = KOLT_ENCAPSULATION_HEADER_SIZE;
constexpr std::size_t kBufferSize = 8192;
constexpr int kRounds = 400;
constexpr int kCallsPerRound = 500;

using Buffer = std::array<DDS_Octet, kBufferSize>;

// ---- Ours -------------------------------------------------------------------------------------

class OurCodec {
  public:
    // Takes over the plugin.
    OurCodec(KOLT_TypePlugin *plugin, void (*delete_plugin)(KOLT_TypePlugin *),
             DDS_DataRepresentationId_t representation)
        : plugin_(plugin),
          delete_plugin_(delete_plugin),
          encapsulation_(representation == DDS_XCDR2_DATA_REPRESENTATION
                             ? KOLT_ENCAPSULATION_PL_CDR2_LE
                             : KOLT_ENCAPSULATION_PL_CDR_LE) {
        const KOLT_TypePluginParticipantInfo participant_info = {};
        participant_ = plugin_->on_participant_attached(
            nullptr, &participant_info, DDS_BOOLEAN_TRUE, nullptr, plugin_->type_code);
        const KOLT_TypePluginEndpointInfo endpoint_info = {KOLT_TYPE_PLUGIN_WRITER, representation,
                                                           0};
        endpoint_ =
            plugin_->on_endpoint_attached(participant_, &endpoint_info, DDS_BOOLEAN_TRUE, nullptr);
        programs_ = KOLT_TypePlugin_EndpointData_programs(endpoint_);
        sample_ = plugin_->create_sample(endpoint_);
        read_ = plugin_->create_sample(endpoint_);
    }
    ~OurCodec() {
        plugin_->destroy_sample(endpoint_, sample_);
        plugin_->destroy_sample(endpoint_, read_);
        plugin_->on_endpoint_detached(endpoint_);
        plugin_->on_participant_detached(participant_);
        delete_plugin_(plugin_);
    }
    OurCodec(const OurCodec &) = delete;
    OurCodec &operator=(const OurCodec &) = delete;

    void *sample() { return sample_; }
    void *read() { return read_; }
    bool is_keyed() const { return plugin_->get_key_kind() != KOLT_TYPE_PLUGIN_NO_KEY; }
    const DDS_Octet *bytes() const { return buffer_.data(); }

    // The bytes written, header included.
    std::size_t serialize(const void *sample) {
        KOLT_CdrStream stream;
        KOLT_CdrStream_set(&stream, buffer_.data(), buffer_.size());
        return plugin_->serialize(endpoint_, sample, &stream, DDS_BOOLEAN_TRUE, encapsulation_,
                                  DDS_BOOLEAN_TRUE, nullptr)
                   ? stream.position
                   : 0;
    }
    std::size_t size() const {
        return plugin_->get_serialized_sample_size(endpoint_, DDS_BOOLEAN_TRUE, encapsulation_, 0,
                                                   sample_);
    }
    bool deserialize(DDS_Octet *bytes, std::size_t size) {
        KOLT_CdrStream stream;
        KOLT_CdrStream_set(&stream, bytes, size);
        DDS_Boolean drop = DDS_BOOLEAN_FALSE;
        return plugin_->deserialize(endpoint_, &read_, &drop, &stream, DDS_BOOLEAN_TRUE,
                                    DDS_BOOLEAN_TRUE, nullptr);
    }
    std::size_t key() {
        std::size_t length = key_.size();
        return KOLT_Cdr_key_of_record(programs_, sample_, key_.data(), &length) ? length : 0;
    }

  private:
    KOLT_TypePlugin *plugin_;
    void (*delete_plugin_)(KOLT_TypePlugin *);
    DDS_UnsignedShort encapsulation_;
    KOLT_TypePluginParticipantData *participant_ = nullptr;
    KOLT_TypePluginEndpointData *endpoint_ = nullptr;
    const KOLT_TypePrograms *programs_ = nullptr;
    void *sample_ = nullptr;
    void *read_ = nullptr;
    Buffer buffer_ = {};
    std::array<DDS_Octet, 256> key_ = {};
};

// ---- The types --------------------------------------------------------------------------------

// Texts here are literals, far shorter than the bounds of the buffers.
void put(char *buffer, const char *text) {
    std::memcpy(buffer, text, std::strlen(text) + 1);
}

// Each with its plugin, idlc's descriptor, and one typical value on both sides.

struct LogMessage {
    static constexpr auto kNewPlugin = VUR_DL_LogMessagePlugin_new;
    static constexpr auto kDeletePlugin = VUR_DL_LogMessagePlugin_delete;
    static constexpr const dds_topic_descriptor_t &kDescriptor = com_vur_dl_LogMessage_desc;

    static void fill(VUR_DL_LogMessage &ours, com_vur_dl_LogMessage &peer) {
        ours.hostAndAppId = {0x0110a3f2, 0x5c21e890};
        ours.level = 600;
        put(ours.category, "com.example.sensors");
        put(ours.message, "sensor 4711 reports 23.5 degrees, normal");
        ours.messageId = 1234567;
        peer.hostAndAppId = {ours.hostAndAppId.rtps_host_id, ours.hostAndAppId.rtps_app_id};
        peer.level = ours.level;
        put(peer.category, ours.category);
        put(peer.message, ours.message);
        peer.messageId = ours.messageId;
    }
};

struct State {
    static constexpr auto kNewPlugin = VUR_DL_ADMIN_StatePlugin_new;
    static constexpr auto kDeletePlugin = VUR_DL_ADMIN_StatePlugin_delete;
    static constexpr const dds_topic_descriptor_t &kDescriptor = com_vur_dl_admin_State_desc;

    static void fill(VUR_DL_ADMIN_State &ours, com_vur_dl_admin_State &peer) {
        ours.hostAndAppId = {0x0110a3f2, 0x5c21e890};
        ours.administrationDomainId = 3;
        ours.state = VUR_DL_STATE_OPERATIONAL;
        put(ours.applicationKind, "turbine control");
        ours.filterLevel = 600;
        for (int i = 0; i < VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT; ++i) {
            ours.vurLoggerVerbosities[i] = {static_cast<VUR_DL_ADMIN_VURLoggerCategory>(i),
                                            VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR};
            peer.vurLoggerVerbosities[i] = {
                static_cast<com_vur_dl_admin_VURLoggerCategory>(i),
                com_vur_dl_admin_VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR};
        }
        ours.vurLoggerPrintFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT;
        peer.hostAndAppId = {ours.hostAndAppId.rtps_host_id, ours.hostAndAppId.rtps_app_id};
        peer.administrationDomainId = ours.administrationDomainId;
        peer.state = com_vur_dl_admin_VUR_DL_STATE_OPERATIONAL;
        put(peer.applicationKind, ours.applicationKind);
        peer.filterLevel = ours.filterLevel;
        peer.vurLoggerPrintFormat = com_vur_dl_admin_VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT;
    }
};

// Our command is a union, idlc's a structure with optional members.
struct CommandRequest {
    static constexpr auto kNewPlugin = VUR_DL_ADMIN_CommandRequestPlugin_new;
    static constexpr auto kDeletePlugin = VUR_DL_ADMIN_CommandRequestPlugin_delete;
    static constexpr const dds_topic_descriptor_t &kDescriptor =
        com_vur_dl_admin_CommandRequest_desc;

    static void fill(VUR_DL_ADMIN_CommandRequest &ours, com_vur_dl_admin_CommandRequest &peer) {
        static std::int32_t filter_level = 800;
        ours.targetHostAndAppId = {0x0110a3f2, 0x5c21e890};
        ours.originatorHostAndAppId = {0x0110b7d0, 0x11c3a05e};
        ours.invocation = 17;
        ours.command._d = VUR_DL_SET_LOG_LEVEL;
        ours.command._u.filterLevel = filter_level;
        peer.targetHostAndAppId = {ours.targetHostAndAppId.rtps_host_id,
                                   ours.targetHostAndAppId.rtps_app_id};
        peer.originatorHostAndAppId = {ours.originatorHostAndAppId.rtps_host_id,
                                       ours.originatorHostAndAppId.rtps_app_id};
        peer.invocation = ours.invocation;
        peer.command.d = com_vur_dl_admin_VUR_DL_SET_LOG_LEVEL;
        peer.command.filterLevel = &filter_level;
    }
};

struct CommandResponse {
    static constexpr auto kNewPlugin = VUR_DL_ADMIN_CommandResponsePlugin_new;
    static constexpr auto kDeletePlugin = VUR_DL_ADMIN_CommandResponsePlugin_delete;
    static constexpr const dds_topic_descriptor_t &kDescriptor =
        com_vur_dl_admin_CommandResponse_desc;

    static void fill(VUR_DL_ADMIN_CommandResponse &ours, com_vur_dl_admin_CommandResponse &peer) {
        ours.hostAndAppId = {0x0110a3f2, 0x5c21e890};
        ours.originatorHostAndAppId = {0x0110b7d0, 0x11c3a05e};
        ours.invocation = 17;
        ours.commandResult = VUR_DL_COMMAND_RESULT_OK;
        put(ours.message, "The filter level is 800 now");
        peer.hostAndAppId = {ours.hostAndAppId.rtps_host_id, ours.hostAndAppId.rtps_app_id};
        peer.originatorHostAndAppId = {ours.originatorHostAndAppId.rtps_host_id,
                                       ours.originatorHostAndAppId.rtps_app_id};
        peer.invocation = ours.invocation;
        peer.commandResult = com_vur_dl_admin_VUR_DL_COMMAND_RESULT_OK;
        put(peer.message, ours.message);
    }
};

// ---- The rows ---------------------------------------------------------------------------------

template <typename Ours, typename Peer>
struct Values {
    using OurRecord = Ours;
    using PeerRecord = Peer;
    explicit Values(void (*)(Ours &, Peer &)) {}
};

// Both codecs with the same value, and its bytes.
template <typename Type>
struct Fixture {
    using Records = decltype(Values(Type::fill));

    OurCodec ours{Type::kNewPlugin(), Type::kDeletePlugin, DDS_XCDR2_DATA_REPRESENTATION};
    OurCodec xcdr1{Type::kNewPlugin(), Type::kDeletePlugin, DDS_XCDR_DATA_REPRESENTATION};
    bench::EngineCodec engine{Type::kDescriptor};
    Buffer bytes = {};  // in XCDR2, header included
    std::size_t size = 0;
    Buffer xcdr1_bytes = {};
    std::size_t xcdr1_size = 0;

    // Returns why the two cannot be compared; NULL when they can.
    const char *prepare() {
        auto *const peer = static_cast<typename Records::PeerRecord *>(engine.sample());
        for (OurCodec *codec : {&ours, &xcdr1}) {
            Type::fill(*static_cast<typename Records::OurRecord *>(codec->sample()), *peer);
        }
        size = ours.serialize(ours.sample());
        std::memcpy(bytes.data(), ours.bytes(), size);
        xcdr1_size = xcdr1.serialize(xcdr1.sample());
        std::memcpy(xcdr1_bytes.data(), xcdr1.bytes(), xcdr1_size);
        if (size <= kHeaderSize || !engine_makes_the_same(engine.sample())) {
            return "the bytes differ";
        }
        if (ours.size() != size) {
            return "the size differs";
        }
        if (!ours.deserialize(bytes.data(), size) || !we_make_the_same(ours.read()) ||
            !xcdr1.deserialize(xcdr1_bytes.data(), xcdr1_size) || !we_make_the_same(xcdr1.read()) ||
            !engine.deserialize(bytes.data() + kHeaderSize, size - kHeaderSize) ||
            !engine_makes_the_same(engine.read())) {
            return "what is read differs";
        }
        if (ours.is_keyed() && (ours.key() == 0 || ours.key() != engine.key())) {
            return "the keys differ";
        }
        return nullptr;
    }

  private:
    bool we_make_the_same(const void *sample) {
        return ours.serialize(sample) == size && std::memcmp(ours.bytes(), bytes.data(), size) == 0;
    }
    bool engine_makes_the_same(const void *sample) {
        return engine.serialize(sample) == size - kHeaderSize &&
               std::memcmp(engine.bytes(), bytes.data() + kHeaderSize, size - kHeaderSize) == 0;
    }
};

template <typename Type, typename Ours, typename Peer>
void compare(benchmark::State &state, Ours ours, Peer peer) {
    Fixture<Type> fixture;
    if (const char *why = fixture.prepare()) {
        state.SkipWithError(why);
        return;
    }
    using bench::ThreadClock;
    bench::take_turns(
        state,
        [&] {
            return bench::time_per_call<ThreadClock>(
                kCallsPerRound, [&] { benchmark::DoNotOptimize(ours(fixture)); });
        },
        [&] {
            return bench::time_per_call<ThreadClock>(
                kCallsPerRound, [&] { benchmark::DoNotOptimize(peer(fixture)); });
        });
}

template <typename Type>
void serialize(benchmark::State &state) {
    using F = Fixture<Type>;
    compare<Type>(
        state, [](F &fixture) { return fixture.ours.serialize(fixture.ours.sample()); },
        [](F &fixture) { return fixture.engine.serialize(fixture.engine.sample()); });
}

template <typename Type>
void size(benchmark::State &state) {
    using F = Fixture<Type>;
    compare<Type>(
        state, [](F &fixture) { return fixture.ours.size(); },
        [](F &fixture) { return fixture.engine.serialize(fixture.engine.sample()); });
}

template <typename Type>
void write(benchmark::State &state) {
    using F = Fixture<Type>;
    compare<Type>(
        state,
        [](F &fixture) {
            return fixture.ours.size() + fixture.ours.serialize(fixture.ours.sample());
        },
        [](F &fixture) { return fixture.engine.serialize(fixture.engine.sample()); });
}

template <typename Type>
void deserialize(benchmark::State &state) {
    using F = Fixture<Type>;
    compare<Type>(
        state,
        [](F &fixture) { return fixture.ours.deserialize(fixture.bytes.data(), fixture.size); },
        [](F &fixture) {
            return fixture.engine.deserialize(fixture.bytes.data() + kHeaderSize,
                                              fixture.size - kHeaderSize);
        });
}

template <typename Type>
void serialize_xcdr1(benchmark::State &state) {
    using F = Fixture<Type>;
    compare<Type>(
        state, [](F &fixture) { return fixture.xcdr1.serialize(fixture.xcdr1.sample()); },
        [](F &fixture) { return fixture.engine.serialize(fixture.engine.sample()); });
}

template <typename Type>
void deserialize_xcdr1(benchmark::State &state) {
    using F = Fixture<Type>;
    compare<Type>(
        state,
        [](F &fixture) {
            return fixture.xcdr1.deserialize(fixture.xcdr1_bytes.data(), fixture.xcdr1_size);
        },
        [](F &fixture) {
            return fixture.engine.deserialize(fixture.bytes.data() + kHeaderSize,
                                              fixture.size - kHeaderSize);
        });
}

template <typename Type>
void key(benchmark::State &state) {
    using F = Fixture<Type>;
    compare<Type>(
        state, [](F &fixture) { return fixture.ours.key(); },
        [](F &fixture) { return fixture.engine.key(); });
}

template <typename Type>
void register_type(const std::string &name, bool is_keyed) {
    const auto add = [&](const char *operation, void (*function)(benchmark::State &)) {
        benchmark::RegisterBenchmark((name + "/" + operation).c_str(), function)
            ->Iterations(kRounds)
            ->UseManualTime();
    };
    add("serialize", serialize<Type>);
    add("size", size<Type>);
    add("write", write<Type>);
    add("deserialize", deserialize<Type>);
    if (is_keyed) {
        add("key", key<Type>);
    }
    add("serialize_xcdr1", serialize_xcdr1<Type>);
    add("deserialize_xcdr1", deserialize_xcdr1<Type>);
}

}  // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    register_type<LogMessage>("LogMessage", true);
    register_type<State>("State", true);
    register_type<CommandRequest>("CommandRequest", false);
    register_type<CommandResponse>("CommandResponse", true);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
