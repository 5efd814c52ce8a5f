// SPDX-License-Identifier: Apache-2.0
// The engine's configuration, tried by starting the engine with it.
#include "check/check_engine.hpp"

#include <fmt/format.h>
#include <kolt/domain.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "kolt_internal/owned_qos.hpp"

namespace distlog::check {
namespace {

constexpr char kVariable[] = "CYCLONEDDS_URI";
// Lets the engine drop, of a thousand packets that it would send, a thousand, and take no port that the
// application may have.
constexpr char kQuiet[] =
    "<CycloneDDS><Domain Id='any'><Discovery><ParticipantIndex>none</ParticipantIndex></Discovery>"
    "<Internal><Test><XmitLossiness>1000</XmitLossiness></Test></Internal></Domain></CycloneDDS>";

// The engine's configuration with that in addition, while it lives.
class QuietConfiguration {
  public:
    QuietConfiguration() {
        const char *value = std::getenv(kVariable);
        is_set_ = value != nullptr;
        before_ = is_set_ ? value : "";
        setenv(kVariable, (before_.empty() ? kQuiet : before_ + "," + kQuiet).c_str(), 1);
    }
    ~QuietConfiguration() {
        if (is_set_) {
            setenv(kVariable, before_.c_str(), 1);
        } else {
            unsetenv(kVariable);
        }
    }
    QuietConfiguration(const QuietConfiguration &) = delete;
    QuietConfiguration &operator=(const QuietConfiguration &) = delete;

  private:
    bool is_set_ = false;
    std::string before_;
};

// Returns a participant with the standard's QoS, enabled whatever the factory's QoS says, or NULL.
DDS_DomainParticipant *join(int domain_id) {
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    kolt::qos::ParticipantQos qos;
    DDS_DomainParticipant *participant = DDS_DomainParticipantFactory_create_participant(
        factory, domain_id, qos.get(), nullptr, DDS_STATUS_MASK_NONE);
    if (participant != nullptr &&
        DDS_Entity_enable(DDS_DomainParticipant_as_entity(participant)) != DDS_RETCODE_OK) {
        DDS_DomainParticipantFactory_delete_participant(factory, participant);
        participant = nullptr;
    }
    return participant;
}

}  // namespace

void check_engine(int domain_id, const std::string &document, MiddlewareLog &log,
                  Problems &problems) {
    const QuietConfiguration configuration;
    log.take();
    DDS_DomainParticipant *participant = join(domain_id);
    if (participant != nullptr) {
        DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                        participant);
        log.take();
        return;
    }
    std::vector<std::string> reasons = log.take();
    if (reasons.size() > 1) {
        reasons.pop_back();  // the last one says only that the others kept the engine from starting
    }
    for (const std::string &reason : reasons) {
        problems.add(Severity::kError, document, 0,
                     fmt::format("the logger does not start with the engine's configuration "
                                 "({}): {}",
                                 kVariable, reason));
    }
}

}  // namespace distlog::check
