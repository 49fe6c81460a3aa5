// A host that shares no line with the gateway: sparkplug-client listens, sparkplug-payload decodes and encodes. It checks what a host
// relies on, asks for a rebirth, and ends with a line of JSON that says what it saw.
//
//     node host.js ADDRESS GROUP NODE DEVICE METRIC     METRIC counts up

'use strict';

const sparkplug = require('sparkplug-client');
const payloads = require('sparkplug-payload').get('spBv1.0');
const { Payload } = require('sparkplug-payload/lib/sparkplugPayloadProto.js').org.eclipse.tahu.protobuf;

const [address, group, node, device, metric] = process.argv.slice(2);
const seen = { births: 0, deviceBirths: 0, data: 0, deaths: 0, types: {}, nulls: [], values: [], faults: [] };
let names = new Map();
let types = new Map();
let next = -1;

const client = sparkplug.newClient({
    serverUrl: `tcp://${address}:1883`, username: '', password: '', groupId: 'Hosts', edgeNode: 'host', clientId: 'host',
    version: 'spBv1.0', publishDeath: false,
});

function checkNumber(type, payload) {
    const number = Number(payload.seq);
    if (type === 'NBIRTH' ? number !== 0 : number !== next) {
        seen.faults.push(`${type} has the number ${number} instead of ${next}`);
    }
    next = (number + 1) % 256;
}

/// Data has no types, and this decoder makes null of a value without one: a host knows them from the birth.
function withTypes(bytes) {
    const payload = Payload.decode(bytes);
    for (const one of payload.metrics) {
        if (types.has(String(one.alias))) {
            one.datatype = types.get(String(one.alias));
        }
    }
    return payloads.decodePayload(Payload.encode(payload).finish());
}

function keepTypes(bytes) {
    for (const one of Payload.decode(bytes).metrics) {
        types.set(String(one.alias), one.datatype);
    }
}

function take(type, payload) {
    if (type === 'NDEATH') {
        seen.deaths += 1;
        return;
    }
    if (seen.births === 0 && type !== 'NBIRTH') {
        return; // of what it did not see the birth of, a host can make nothing
    }
    checkNumber(type, payload);
    seen.births += type === 'NBIRTH' ? 1 : 0;
    if (type === 'NBIRTH') {
        names = new Map();
    }
    for (const one of payload.metrics ?? []) {
        if (type === 'DBIRTH') {
            names.set(String(one.alias), one.name);
            seen.types[one.name] = one.type;
            if (one.value === null && !seen.nulls.includes(one.name)) {
                seen.nulls.push(one.name);
            }
        }
        if (type.startsWith('D') && names.get(String(one.alias)) === metric && one.value !== null) {
            seen.values.push(Number(one.value));
        }
    }
    seen.deviceBirths += type === 'DBIRTH' ? 1 : 0;
    seen.data += type === 'DDATA' ? 1 : 0;
}

client.on('error', (error) => seen.faults.push(String(error)));
function receive(topic, payload, bytes) {
    const levels = topic.split('/');
    if (levels[1] === group && levels[3] === node && !levels[2].endsWith('CMD')) {
        try {
            if (levels[2] === 'DBIRTH') {
                keepTypes(bytes);
            }
            take(levels[2], levels[2] === 'DDATA' ? withTypes(bytes) : payload);
        } catch (error) {
            seen.faults.push(`${topic}: ${error}`);
        }
        if (levels[2] === 'NDEATH') {
            client.stop();
            console.log(JSON.stringify(seen));
            setTimeout(() => process.exit(0), 50);
        }
    }
}

let last; // the bytes of the message that the client decodes next
client.on('message', (topic, payload) => receive(topic, payload, last));
client.client.prependListener('message', (topic, bytes) => { last = bytes; });
client.on('connect', () => {
    client.subscribeTopic(`spBv1.0/${group}/+/${node}/#`, { qos: 1 }, () => {
        const rebirth = payloads.encodePayload(
            { timestamp: Date.now(), metrics: [{ name: 'Node Control/Rebirth', type: 'Boolean', value: true }] });
        client.client.publish(`spBv1.0/${group}/NCMD/${node}`, Buffer.from(rebirth));
        console.log('ready');
    });
});
setTimeout(() => { console.log(JSON.stringify(seen)); process.exit(1); }, 30000);
