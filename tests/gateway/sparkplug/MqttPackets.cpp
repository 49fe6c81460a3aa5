#include "gateway/sparkplug/MqttPackets.h"

#include <optional>

namespace harvlink::test {

namespace {

class Fields {
public:
    explicit Fields(std::string_view bytes) : bytes_(bytes) {}

    int Byte() { return static_cast<unsigned char>(Take(1).at(0)); }
    int Word() {
        int const high = Byte();
        return high << 8 | Byte();
    }
    std::string Text() { return std::string(Take(static_cast<std::size_t>(Word()))); }
    std::string Rest() { return std::string(bytes_); }

private:
    std::string_view Take(std::size_t count) {
        auto const taken = bytes_.substr(0, count);
        bytes_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view bytes_;
};

/// Of the packet at the front: how long its header is, and how long all of it.
std::optional<std::pair<std::size_t, std::size_t>> LengthOf(std::string_view stream) {
    std::size_t length = 0;
    for (std::size_t i = 1; i < stream.size() && i <= 4; ++i) {
        length |= static_cast<std::size_t>(stream[i] & 0x7F) << (7 * (i - 1));
        if ((stream[i] & 0x80) == 0) {
            return std::pair(i + 1, i + 1 + length);
        }
    }
    return std::nullopt;
}

void ReadConnect(MqttPacket& packet, Fields& fields) {
    fields.Text();
    fields.Byte();
    int const flags = fields.Byte();
    fields.Word();
    packet.isClean = (flags & 0x02) != 0;
    packet.hasWill = (flags & 0x04) != 0;
    packet.willQos = flags >> 3 & 3;
    packet.willRetain = (flags & 0x20) != 0;
    packet.client = fields.Text();
    if (packet.hasWill) {
        packet.willTopic = fields.Text();
        packet.will = fields.Text();
    }
}

MqttPacket ReadPacket(int first, std::string_view body) {
    MqttPacket packet;
    packet.type = first >> 4;
    Fields fields(body);
    if (packet.type == MqttPacket::Connect) {
        ReadConnect(packet, fields);
    } else if (packet.type == MqttPacket::Publish) {
        packet.qos = first >> 1 & 3;
        packet.retain = (first & 1) != 0;
        packet.topic = fields.Text();
        packet.id = packet.qos > 0 ? fields.Word() : 0;
        packet.payload = fields.Rest();
    } else if (packet.type == MqttPacket::Subscribe) {
        packet.id = fields.Word();
        packet.topic = fields.Text();
        packet.qos = fields.Byte();
    }
    return packet;
}

} // namespace

std::vector<MqttPacket> TakePackets(std::string& stream) {
    std::vector<MqttPacket> packets;
    for (auto length = LengthOf(stream); length && stream.size() >= length->second; length = LengthOf(stream)) {
        auto const [header, whole] = *length;
        packets.push_back(
            ReadPacket(static_cast<unsigned char>(stream[0]), std::string_view(stream).substr(header, whole - header)));
        stream.erase(0, whole);
    }
    return packets;
}

} // namespace harvlink::test
