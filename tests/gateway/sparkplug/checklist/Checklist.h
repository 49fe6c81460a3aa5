#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gateway/sparkplug/checklist/Life.h"

/// Each assertion that Sparkplug B 3.0 makes of a node that only reads, over MQTT 3.1.1, held against what the node really sent. The
/// names are those of the assertions, with underscores for hyphens and without "tck-id-" in front.

namespace harvlink::test {

struct Assertion {
    char const* id;
    std::function<void()> check;
};

void PrintTo(Assertion const& assertion, std::ostream* stream);
std::string NameOf(testing::TestParamInfo<Assertion> const& info);

/// One file for each group of assertions, with the checks that hold them.
class SparkplugChecklist : public testing::TestWithParam<Assertion> {};

using Metric = org::eclipse::tahu::protobuf::Metric;

inline std::vector<std::string> const Births{"NBIRTH", "DBIRTH"};
inline std::vector<std::string> const Data{"NDATA", "DDATA"};
inline std::vector<std::string> const Numbered{"NBIRTH", "DBIRTH", "NDATA", "DDATA", "DDEATH"};

/// The messages of these types, of which there is at least one.
std::vector<Message> MessagesOf(std::vector<std::string> const& types);
void ForEach(std::vector<std::string> const& types, std::function<void(Message const&)> const& check);
void ForEachMetric(std::vector<std::string> const& types, std::function<void(Metric const&)> const& check);

/// Null when the message has no metric of this name.
Metric const* Find(Message const& message, std::string const& name);

/// The bdSeq of an NDEATH, which has nothing else in it.
std::uint64_t SessionOf(std::string const& death);

using PacketTest = std::function<bool(MqttPacket const&)>;

/// In each connection, a packet that is `first` comes before the first one that is `second`.
void Precedes(PacketTest const& first, PacketTest const& second);

PacketTest IsType(int type);
PacketTest IsMessage(std::string type);
bool IsNodePublish(MqttPacket const& packet);

} // namespace harvlink::test
