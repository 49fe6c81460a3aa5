// The consumer of script/soak gateway: a primary host that shares no line with the gateway. It writes down each value that it receives and
// checks what a session must keep to. sparkplug-payload decodes, mqtt receives.
//
//     node consumer.js BROKER GROUP FOLDER      values go to FOLDER/NODE.values: device, metric, time, value, and
//                                               birth or data, separated by tabs
//
// Prints lines of JSON: {"ready"}, {"devices": {NODE: N}} each second, {"live": NODE, "mark": M} for the first live data after the line
// "mark M" of the standard input, and {"faults", ...} at its end.

'use strict';

const fs = require('fs');
const path = require('path');
const { createRequire } = require('module');
const readline = require('readline');

const packages = createRequire(path.join(__dirname, '../../tests/gateway/sparkplug/host/package.json'));
const mqtt = packages('mqtt');
const payloads = packages('sparkplug-payload').get('spBv1.0');
const { Payload } = packages('sparkplug-payload/lib/sparkplugPayloadProto.js').org.eclipse.tahu.protobuf;

const [broker, group, folder] = process.argv.slice(2);
const MostFaults = 50;
const faults = [];
const nodes = new Map();
let faultCount = 0;
let mark = '';

function say(line) {
    fs.writeSync(1, `${JSON.stringify(line)}\n`);
}

function expect(holds, fault) {
    if (!holds && faultCount++ < MostFaults) {
        faults.push(fault);
    }
}

class Node {
    constructor(name) {
        this.name = name;
        this.file = fs.createWriteStream(path.join(folder, `${name}.values`));
        this.isBorn = false;
        this.isUnseen = false; // by this connection, until its next birth
        this.session = -1;
        this.number = -1;
        this.births = 0;
        this.historical = 0;
        this.live = 0;
        this.mark = '';
        this.types = new Map(); // of all sessions: a metric keeps its type
        this.begin();
    }

    begin() {
        this.devices = new Set();
        this.metrics = new Map(); // by alias: device, name, type
        this.began = Date.now();
        this.sessionHistory = 0;
    }

    take(type, device, payload) {
        const at = `${this.name} ${device} ${type}`;
        if (type === 'NDEATH') {
            expect(payload.seq === null || payload.seq === undefined, `${at}: has a number`);
            this.isBorn = this.isBorn && Number(payload.metrics[0].value) !== this.session;
            return;
        }
        const number = Number(payload.seq);
        this.isUnseen = this.isUnseen && type !== 'NBIRTH';
        if (this.isUnseen) {
            return;
        }
        expect(number === (type === 'NBIRTH' ? 0 : this.number), `${at}: number ${number}, not ${this.number}`);
        this.number = (number + 1) % 256;
        expect(Math.abs(Number(payload.timestamp)) > 0, `${at}: no time`);
        if (type === 'NBIRTH') {
            this.takeNodeBirth(at, payload);
            return;
        }
        expect(this.isBorn, `${at}: the node is not born`);
        if (type === 'DBIRTH') {
            this.takeDeviceBirth(at, device, payload);
        } else if (type === 'DDEATH') {
            expect(this.devices.delete(device), `${at}: is not born`);
        } else if (type === 'DDATA') {
            this.takeData(at, device, payload);
        }
    }

    takeNodeBirth(at, payload) {
        const value = (name) => payload.metrics.find((metric) => metric.name === name)?.value;
        const session = Number(value('bdSeq'));
        const steps = this.session < 0 ? 1 : (session - this.session + 256) % 256;
        expect(steps < 128, `${at}: session ${session} after ${this.session}`);
        expect(steps > 0 || this.isBorn, `${at}: session ${session} goes on after its death`);
        expect(value('Node Control/Rebirth') === false, `${at}: no rebirth to ask for`);
        this.session = session;
        this.isBorn = true;
        this.births += 1;
        this.begin();
    }

    takeDeviceBirth(at, device, payload) {
        this.devices.add(device);
        for (const metric of payload.metrics) {
            const name = `${device}\t${metric.name}`;
            const known = this.metrics.get(String(metric.alias));
            expect(metric.name && metric.alias && metric.type && metric.timestamp, `${at}: ${metric.name} is not whole`);
            expect(!metric.isHistorical, `${at}: ${metric.name} is historical`);
            expect(known === undefined || known.name === name, `${at}: the alias of ${metric.name} is taken`);
            expect((this.types.get(name) ?? metric.type) === metric.type, `${at}: ${metric.name} has another type`);
            this.types.set(name, metric.type);
            this.metrics.set(String(metric.alias), { name, type: metric.type });
            this.keep(name, metric, 'birth');
        }
    }

    takeData(at, device, payload) {
        expect(this.devices.has(device), `${at}: is not born`);
        const isHistorical = payload.metrics[0].isHistorical === true;
        let last = 0;
        for (const metric of payload.metrics) {
            const known = this.metrics.get(String(metric.alias));
            const time = Number(metric.timestamp);
            expect(known !== undefined && known.name.startsWith(`${device}\t`), `${at}: unknown alias ${metric.alias}`);
            expect((metric.isHistorical === true) === isHistorical, `${at}: live and historical in one payload`);
            expect(time >= last || isHistorical, `${at}: times run back`);
            last = time;
            if (known !== undefined) {
                this.keep(known.name, metric, 'data');
                this.checkOrder(at, known, isHistorical ? time : 0);
            }
        }
        if (isHistorical) {
            this.historical += payload.metrics.length;
            this.sessionHistory += payload.metrics.length;
            this.checkPace(at);
        } else {
            this.live += payload.metrics.length;
            this.tellLive();
        }
    }

    // What is sent late comes as it was read, unless the clock was set back in between.
    checkOrder(at, metric, time) {
        const last = metric.late ?? 0;
        metric.late = time || last;
        expect(!time || time >= last || time < last - 1_800_000, `${at}: ${metric.name} of ${time} comes after that of ${last}`);
    }

    // Half a second's worth may come at once, and what was held up on its way comes faster than it was sent.
    checkPace(at) {
        const seconds = (Date.now() - this.began) / 1000 + 3;
        expect(this.sessionHistory <= ValuesPerSecond * seconds, `${at}: ${this.sessionHistory} in ${seconds} s`);
    }

    tellLive() {
        if (this.mark !== mark) {
            this.mark = mark;
            say({ live: this.name, mark });
        }
    }

    keep(name, metric, from) {
        if (metric.value !== null && metric.value !== undefined) {
            this.file.write(`${name}\t${metric.timestamp}\t${metric.value}\t${from}\n`);
        }
    }
}

const ValuesPerSecond = 5000; // as the gateways are configured

/// The decoder makes null of a value without a type, and data has none: a host knows them from the birth.
function decode(type, node, bytes) {
    if (type !== 'DDATA') {
        return payloads.decodePayload(bytes);
    }
    const payload = Payload.decode(bytes);
    for (const metric of payload.metrics) {
        metric.datatype = Types[node.metrics.get(String(metric.alias))?.type] ?? 0;
    }
    return payloads.decodePayload(Payload.encode(payload).finish());
}

const Types = { Int64: 4, Double: 10, Boolean: 11, String: 12 };

function receive(topic, bytes, packet) {
    const [, , type, name, device = ''] = topic.split('/');
    if (!nodes.has(name)) {
        nodes.set(name, new Node(name));
    }
    try {
        expect(!packet.retain, `${topic}: is retained`);
        expect(packet.qos === (type === 'NDEATH' ? 1 : 0), `${topic}: QoS ${packet.qos}`);
        nodes.get(name).take(type, device, decode(type, nodes.get(name), bytes));
    } catch (error) {
        expect(false, `${topic}: ${error}`);
    }
}

const topicOfState = `spBv1.0/STATE/scada`;
let connections = 0;
let began = Date.now(); // what was online since then is offline when the connection is lost: without that the nodes would go on

function state(online) {
    return { topic: topicOfState, payload: JSON.stringify({ online, timestamp: began }), qos: 1, retain: true };
}

const client = mqtt.connect(`mqtt://${broker}:1883`, {
    clientId: 'scada', clean: true, keepalive: 60, reconnectPeriod: 200, connectTimeout: 5000, will: state(false),
});
client.on('error', () => {}); // it connects again
client.on('message', (topic, bytes, packet) => receive(topic, bytes, packet));
client.on('close', () => {
    began = Date.now();
    client.options.will = state(false);
    for (const node of nodes.values()) {
        node.isUnseen = true;
    }
});
// The state goes out when the births can be received.
client.on('connect', () => {
    connections += 1;
    client.subscribe(
        ['NBIRTH', 'NDATA', 'NDEATH', 'DBIRTH', 'DDATA', 'DDEATH'].map((type) => `spBv1.0/${group}/${type}/#`), { qos: 1 },
        () => client.publish(topicOfState, state(true).payload, { qos: 1, retain: true }));
});

const lines = readline.createInterface({ input: process.stdin });
lines.on('line', (line) => { mark = line.replace('mark ', ''); });
lines.on('close', () => client.end(true, {}, async () => {
    for (const node of nodes.values()) {
        await new Promise((resolve) => { node.file.end(resolve); });
    }
    const types = {};
    for (const node of nodes.values()) {
        for (const [name, type] of node.types) {
            types[name.split('\t')[1]] = type;
        }
    }
    const counts = [...nodes.values()].map((node) => [node.name, {
        births: node.births, live: node.live, historical: node.historical, isBorn: node.isBorn }]);
    say({ faults, faultCount, connections, types, nodes: Object.fromEntries(counts) });
    process.exit(0);
}));
setInterval(() => {
    say({ devices: Object.fromEntries([...nodes.values()].map((node) => [node.name, node.isBorn ? node.devices.size : 0])) });
}, 1000);
say({ ready: true });
