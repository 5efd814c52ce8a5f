// SPDX-License-Identifier: Apache-2.0
// Copying by type: a policy goes where the endpoint's QoS has one of the same type.
#include "engine/qos/from_topic_qos.hpp"

#include <type_traits>

#include "qos/qos_description.hpp"
#include "qos/qos_values.hpp"

namespace kolt::engine {

template <typename EndpointQos>
bool copy_from_topic_qos(EndpointQos *qos, const DDS_TopicQos &topic_qos) {
    bool complete = true;
    kolt::qos::for_each_member<DDS_TopicQos>([&](const auto &from) {
        kolt::qos::for_each_member<EndpointQos>([&](const auto &to) {
            using From = std::remove_cvref_t<decltype(topic_qos.*(from.place))>;
            using To = std::remove_cvref_t<decltype(qos->*(to.place))>;
            // The protocol policy of a topic does not apply to its endpoints.
            if constexpr (std::is_same_v<From, To> &&
                          !std::is_same_v<From, DDS_ProtocolQosPolicy>) {
                complete = kolt::qos::copy(qos->*(to.place), topic_qos.*(from.place)) && complete;
            }
        });
    });
    return complete;
}
template bool copy_from_topic_qos(DDS_DataWriterQos *, const DDS_TopicQos &);
template bool copy_from_topic_qos(DDS_DataReaderQos *, const DDS_TopicQos &);

}  // namespace kolt::engine
