#include "gateway/config/ConfigFile.h"

namespace harvlink::gateway {

// NOLINTNEXTLINE(readability-function-size): one text
std::string_view ExampleConfig() {
    return R"(# What harvlink-gateway watches, and to whom it says what it sees. Lines that begin with # show what can be set
# besides, mostly with the value that holds without. Check a file with: harvlink-gateway --config FILE --check

[gateway]
name = "hall3"
listen = "127.0.0.1:9750"         # "[::1]:9750" for IPv6
# Any other address takes one of these: TLS, a token that clients send ("Authorization: Bearer ..."), or the word open.
# tls_certificate = "gateway.crt"
# tls_key = "gateway.key"
# token_file = "token"            # its first line
# open = false                    # true: whoever reaches the address may read, unencrypted
# hosts = ["gateway.plant.example"] # further names by which clients call it
# log_level = "info"              # error, warning, info, debug

# What is read together, and how often. Items: state, job, alarms, position R1 base, position R1 pulse axis 2, torque R1,
# position error R1, B5, B0..B9, I0, D0, R0, S0, P0, BP0, SP0, signal 10010, signal 10010..10017, signal group 10010,
# register 3..7, software, time 1 R1, progress 0.
[poll.state]
period = "500ms"
items = ["state", "job", "alarms"]

[poll.arm]
period = "1s"
items = ["position R1 base", "torque R1"]
# on_change = false               # true: only what has changed
# dead_band = 0.0                 # with on_change: numbers must differ by more
# longest_silence = "1m"          # with on_change: a value at the latest after this time

[poll.rare]
period = "1m"
items = ["software"]

[[controller]]
name = "press1"
host = "192.168.255.1"
poll = ["state", "arm", "rare"]
# timeout = 500                   # milliseconds until a request is repeated
# retries = 3
# lanes = 1                       # requests in flight at once, 1 to 4
# gap = "0ms"                     # rest between two requests
# most_requests_per_second = 100.0
# generation = "YA"               # if it is known, items that it does not have are refused at once
# encoding = "utf-8"              # of the controller's texts

# Sixty controllers: {n} is the number from the range.
[[controller]]
name = "weld{n}"
host = "10.0.3.[1-60]"
poll = ["state", "rare"]

# The arm on the page, for a controller whose lengths are known, in millimetres:
# [controller.geometry]
# group = "R1"
# shoulder_height = 450.0
# shoulder_offset = 150.0
# upper_arm = 600.0
# elbow_offset = 100.0
# forearm = 640.0
# hand = 100.0
# pulses_per_degree = [1820.0, 1820.0, 1706.0, 1365.0, 1365.0, 910.0]

[prometheus]
enabled = true                    # at /metrics
# most_series = 200000            # what comes beyond is dropped and counted

# MQTT with Sparkplug B: a node with a device for each controller.
# [mqtt]
# broker = "10.0.3.200"           # or a list, tried in turn: ["broker-a:1883", "broker-b:1883"]
# group = "plant1"
# node = "hall3"                  # the name of the gateway without it
# client_id = "hall3"
# user = "hall3"
# password_file = "mqtt-password" # its first line
# primary_host = "scada"          # births wait until this host is online
# keep_alive = "10s"
# rebirth_interval = "5s"         # at most one commanded rebirth in this time
# state_folder = "/var/lib/harvlink-gateway"
# [mqtt.tls]                      # encrypted, port 8883
# ca = "ca.crt"
# certificate = "client.crt"
# key = "client.key"
# [mqtt.store]                    # what is read while the broker is away
# folder = "/var/lib/harvlink-gateway"
# max_size = "256M"
# max_age = "24h"
# values_per_second = 2000        # when it is back
# [mqtt.json]                     # plain topics besides
# topic = "harvlink"
# qos = 0
# retain = true

# A recording of everything, which the page and /api/history show and harvlink recording reads.
# [recording]
# file = "/var/lib/harvlink-gateway/plant.harvlink"
# keep = "7d"
# max_size = "2G"
# [recording.incidents]           # a file for each: the minute before it, and what came after
# folder = "/var/lib/harvlink-gateway/incidents"
# before = "60s"
# after = "10s"
# on = ["alarm", "silent", "servo-off"]
)";
}

} // namespace harvlink::gateway
