#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Writes a tree of Redfish resources that looks like a rack of servers, the same one every time."""

import argparse
import json
import pathlib
import random

ROOT = "/redfish/v1"


def link(uri):
    return {"@odata.id": uri}


def resource(uri, kind, name, members):
    return {"@odata.context": f"{ROOT}/$metadata#{kind}.{kind}", "@odata.id": uri,
            "@odata.type": f"#{kind}.v1_0_0.{kind}", "Id": uri.rsplit("/", 1)[1],
            "Name": name, "Description": f"{kind} {name} of a simulated rack", **members,
            "&&AllowMethod": "GET,HEAD,PATCH",
            "@Redfish.Copyright": "Simulated for measurements; no device like this is sold."}


def collection(uri, kind, names):
    return {"@odata.id": uri, "@odata.type": f"#{kind}Collection.{kind}Collection",
            "Name": f"{kind} collection", "Members@odata.count": len(names),
            "Members": [link(f"{uri}/{name}") for name in names]}


class Rack:
    """Uri -> document. Everything that varies is drawn from one generator of numbers, in the order
    in which the resources are made."""

    def __init__(self, nodes, seed):
        self.random = random.Random(seed)
        self.documents = {}
        names = [f"Node{number:04}" for number in range(1, nodes + 1)]
        self.add(resource(ROOT, "ServiceRoot", "Root service", {
            "RedfishVersion": "1.15.0", "UUID": self.uuid(),
            "ProtocolFeaturesSupported": {"ExpandQuery": {"ExpandAll": True, "MaxLevels": 6},
                                          "FilterQuery": False, "SelectQuery": True},
            "Systems": link(f"{ROOT}/Systems"), "Chassis": link(f"{ROOT}/Chassis")}))
        for kind, folder in (("ComputerSystem", "Systems"), ("Chassis", "Chassis")):
            self.add(collection(f"{ROOT}/{folder}", kind, names))
        for service in ("TaskService", "EventService", "UpdateService"):
            self.add(resource(f"{ROOT}/{service}", service, service, {"ServiceEnabled": True,
                                                                      "Status": self.status()}))
        for name in names:
            self.add_system(name)
            self.add_chassis(name)

    def add(self, document):
        self.documents[document["@odata.id"]] = document

    def add_all(self, uri, kind, count, name, make):
        names = [name % number for number in range(1, count + 1)]
        self.add(collection(uri, kind, names))
        for number, member in enumerate(names, 1):
            self.add(resource(f"{uri}/{member}", kind, f"{kind} {number}", make(number)))

    def uuid(self):
        digits = f"{self.random.getrandbits(128):032x}"
        return "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]))

    def serial(self):
        return f"SN{self.random.getrandbits(40):010X}"

    def status(self):
        return {"State": "Enabled", "Health": self.random.choice(("OK", "OK", "OK", "Warning"))}

    def add_system(self, name):
        uri = f"{ROOT}/Systems/{name}"
        parts = ("Processors", "Memory", "Storage", "EthernetInterfaces", "LogServices")
        self.add(resource(uri, "ComputerSystem", f"System {name}", {
            "SystemType": "Physical", "Manufacturer": "Arolla", "Model": "R2-48",
            "SerialNumber": self.serial(), "UUID": self.uuid(), "PowerState": "On",
            "HostName": f"{name.lower()}.lab.example", "BiosVersion": "2.4.1",
            "Boot": {"BootSourceOverrideEnabled": "Once", "BootSourceOverrideTarget": "Pxe",
                     "BootSourceOverrideTarget@Redfish.AllowableValues": ["None", "Pxe", "Hdd"]},
            "MemorySummary": {"TotalSystemMemoryGiB": 512, "Status": self.status()},
            **{part: link(f"{uri}/{part}") for part in parts},
            "Links": {"Chassis": [link(f"{ROOT}/Chassis/{name}")]},
            "Actions": {"#ComputerSystem.Reset": {
                "target": f"{uri}/Actions/ComputerSystem.Reset",
                "ResetType@Redfish.AllowableValues": ["On", "ForceOff", "GracefulShutdown"]}},
            "Status": self.status()}))
        self.add_all(f"{uri}/Processors", "Processor", 2, "CPU%d", lambda number: {
            "Socket": f"CPU {number}", "ProcessorType": "CPU", "InstructionSet": "x86-64",
            "TotalCores": 48, "TotalThreads": 96, "MaxSpeedMHz": 3700,
            "ProcessorId": {"Step": "0x02", "EffectiveFamily": "0x06", "VendorId": "Arolla"},
            "SerialNumber": self.serial(), "Status": self.status()})
        self.add_all(f"{uri}/Memory", "Memory", 16, "DIMM%d", lambda number: {
            "CapacityMiB": 32768, "DataWidthBits": 64, "MemoryDeviceType": "DDR5",
            "OperatingSpeedMhz": 4800, "PartNumber": "M321R4GA3BB6", "SerialNumber": self.serial(),
            "MemoryLocation": {"Socket": (number - 1) // 8 + 1, "Channel": (number - 1) % 8,
                               "Slot": number},
            "Status": self.status()})
        self.add_all(f"{uri}/Storage", "Drive", 8, "Bay%d", lambda number: {
            "CapacityBytes": 3840755982336, "Protocol": "NVMe", "MediaType": "SSD",
            "Manufacturer": "Arolla", "Model": "D3-3840", "SerialNumber": self.serial(),
            "PredictedMediaLifeLeftPercent": round(self.random.uniform(60, 100), 1),
            "FailurePredicted": False, "Identifiers": [
                {"DurableName": self.uuid(), "DurableNameFormat": "UUID"}],
            "Status": self.status()})
        self.add_all(f"{uri}/EthernetInterfaces", "EthernetInterface", 4, "NIC%d", lambda number: {
            "MACAddress": ":".join(f"{self.random.getrandbits(8):02X}" for _ in range(6)),
            "SpeedMbps": 25000, "FullDuplex": True, "MTUSize": 9000, "LinkStatus": "LinkUp",
            "IPv4Addresses": [{"Address": f"10.0.{number}.{self.random.randrange(1, 255)}",
                               "SubnetMask": "255.255.0.0", "AddressOrigin": "DHCP"}],
            "NameServers": ["10.0.0.53", "10.0.1.53"], "Status": self.status()})
        self.add_all(f"{uri}/LogServices", "LogEntry", 12, "Entry%d", lambda number: {
            "EntryType": "SEL", "Severity": self.random.choice(("OK", "Warning", "Critical")),
            "Created": f"2026-03-{number:02}T08:{self.random.randrange(60):02}:00+00:00",
            "Message": f"The reading of sensor \"Inlet {number}\" is above its threshold.",
            "MessageId": "Board.1.0.ReadingAbove", "MessageArgs": [f"Inlet {number}", "41.5"],
            "SensorNumber": self.random.randrange(256)})

    def add_chassis(self, name):
        uri = f"{ROOT}/Chassis/{name}"
        self.add(resource(uri, "Chassis", f"Chassis {name}", {
            "ChassisType": "RackMount", "Manufacturer": "Arolla", "Model": "R2",
            "SerialNumber": self.serial(), "PowerState": "On", "IndicatorLED": "Off",
            "Location": {"Placement": {"Row": "B", "Rack": "7",
                                       "RackOffset": self.random.randrange(42)}},
            "Sensors": link(f"{uri}/Sensors"), "Assembly": link(f"{uri}/Assembly"),
            "Links": {"ComputerSystems": [link(f"{ROOT}/Systems/{name}")]},
            "Status": self.status()}))
        self.add_all(f"{uri}/Sensors", "Sensor", 30, "Reading%d", lambda number: {
            "ReadingType": "Temperature", "ReadingUnits": "Cel", "PhysicalContext": "Intake",
            "Reading": round(self.random.uniform(18, 90), 2), "ReadingRangeMin": -20,
            "ReadingRangeMax": 120, "Accuracy": 0.25,
            "Thresholds": {"UpperCaution": {"Reading": 80.5, "Activation": "Increasing"},
                           "UpperCritical": {"Reading": 95, "Activation": "Increasing"}},
            "RelatedItem": [link(uri)], "Status": self.status()})
        self.add_all(f"{uri}/Assembly", "Assembly", 8, "Part%d", lambda number: {
            "PartNumber": f"P{self.random.randrange(10000, 99999)}", "Vendor": "Arolla",
            "ProductionDate": "2026-01-12T00:00:00Z", "SerialNumber": self.serial(),
            "Description": None, "Replaceable": number % 2 == 0, "Status": self.status()})


def change(document):
    """What a firmware update changes: values, and the shape of a member."""
    document["Name"] += " (revised)"
    document["Status"] = {"State": "Enabled", "Health": "OK", "HealthRollup": "OK"}
    document["Oem"] = {"Arolla": {"Revision": 2}}
    for member in ("Reading", "SerialNumber"):
        if member in document:
            document[member] = [document[member]]


def main():
    parser = argparse.ArgumentParser(
        description="Writes folders with an index.json each, below FOLDER, which becomes "
        f"{ROOT}. One node has 89 folders; six belong to no node.")
    parser.add_argument("folder", type=pathlib.Path, metavar="FOLDER")
    parser.add_argument("--nodes", type=int, default=6, help="servers in the rack (6)")
    parser.add_argument("--seed", type=int, default=1, help="another rack of the same shape (1)")
    parser.add_argument("--changed", type=float, default=0, metavar="PERCENT",
                        help="how many of the files to write in a changed form (0)")
    arguments = parser.parse_args()
    documents = Rack(arguments.nodes, arguments.seed).documents
    count = round(len(documents) * arguments.changed / 100)
    for uri in random.Random(arguments.seed).sample(sorted(documents), count):
        change(documents[uri])
    for uri, document in documents.items():
        folder = arguments.folder / uri[len(ROOT):].strip("/")
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "index.json").write_text(json.dumps(document, indent=2), encoding="utf-8")
    print(f"{len(documents)} folders")


if __name__ == "__main__":
    main()
