#!/usr/bin/env python3
"""Derives the rule-bound figures of the sample catalog and writes them back into it.

    python3 scripts/catalog-tables.py [resources/vx_config_dl.xml]

The product data (names, lengths, powers, limits, inrush and leakage) is kept in the catalog
itself; this script recomputes, by the rules written in the catalog's header comment:
  - every cable resistance, from its gauge (loop value: both conductors);
  - every fixture resistance, from its length and the gauge of its default leader, and its output
    mode (SafetyRequired 0);
  - every fixture power factor, from its power at that voltage;
  - every count table (VoltageMaxFixtureCount and, for the gen4 fixtures, the 15 A and 20 A
    breaker tables).
Running it twice gives the same file. Exact decimal arithmetic, so a count never loses one to
rounding.
"""
import sys
import xml.etree.ElementTree as ET
from decimal import Decimal as D, ROUND_FLOOR, ROUND_HALF_UP
from pathlib import Path

# Copper, milliohms per foot of one conductor at 20 °C.
CONDUCTOR_MOHM_PER_FT = {"10": D("1.00"), "12": D("1.59"), "14": D("2.53"), "16": D("4.02"), "18": D("6.39")}
CONNECTORS_MOHM = D("10")          # a fixture's two connectors, loop
CONTINUOUS = D("0.8")              # continuous load as a share of a rating
TRIP_MULTIPLE = D("3")             # instantaneous trip of a B-curve breaker: 3 x rating at least
BREAKER_FIXTURES = ("Tintflare Dynaline gen4", "Linea Flare Dynaline gen4")
BREAKER_EXEMPT_ENABLER = "RD-5000"  # the program never reads the breaker tables under it


def loop(gauge):
    return 2 * CONDUCTOR_MOHM_PER_FT[gauge]


def power_factor(watts, volts):
    """A small driver's power factor: by its power, 0.05 lower from 208 V up."""
    if watts < 5:
        pf = D("0.55")
    elif watts < 10:
        pf = D("0.65")
    elif watts < 20:
        pf = D("0.8")
    elif watts < 30:
        pf = D("0.9")
    else:
        pf = D("0.95")
    return pf - D("0.05") if volts >= 208 else pf


def fmt(value):
    text = format(value.normalize(), "f")
    return text


def floor(value):
    return int(value.to_integral_value(rounding=ROUND_FLOOR))


def child(element, tag):
    found = element.find(tag)
    if found is None:
        found = ET.SubElement(element, tag)
    return found


def set_after(voltage, tag, after, text):
    """Sets a voltage's child, creating it just after another child when it is missing."""
    found = voltage.find(tag)
    if found is None:
        found = ET.Element(tag)
        voltage.insert(list(voltage).index(voltage.find(after)) + 1, found)
    found.text = text


def cables(element):
    """Cable resistances from gauges: a fixed cable's StandardGauge, a custom wire's Name."""
    for cable in list(element.iter("Leader")) + list(element.iter("Jumper")):
        if cable.find("CustomWireList") is None:
            cable.find("Resistance").text = fmt(loop(cable.findtext("StandardGauge")))
    for wire in element.iter("CustomWire"):
        wire.find("Resistance").text = fmt(loop(wire.findtext("Name")))


def inrush(record, volts):
    for voltage in record.iter("Voltage"):
        if int(voltage.findtext("Value")) == volts:
            for attr in voltage.iter("FrequencyAttribute"):
                return D(attr.findtext("InrushCurrent"))
    return D(0)


def fixture(fx, supplies):
    name = fx.findtext("Name")
    # Output modes 1 to 4 multiply the drop by a wiring factor meant for one conductor's
    # resistance; with loop resistances the factor must be 1, which is mode 0.
    fx.find("SafetyRequired").text = "0"
    length = D(fx.findtext("ElectricalLength"))
    default_leader = fx.find("LeaderList").findall("Leader")[int(fx.findtext("DefaultLeader"))]
    through = loop(default_leader.findtext("StandardGauge"))
    fx.find("Resistance").text = fmt((length * through + CONNECTORS_MOHM).quantize(D("0.1"), ROUND_HALF_UP))

    max_power = D(fx.findtext("MaxPower"))
    max_length = D(fx.findtext("MaxFixtureLength"))
    leader_length = D(default_leader.findtext("ElectricalLength"))
    starting = int(fx.findtext("StartingVoltage"))
    listed = [supplies[s.text] for s in fx.iter("Supply") if s.text in supplies]
    by_enabler = min((int(e.findtext("MaxNumFixtures")) for e in listed), default=None)
    enablers = [e for e in listed if e.findtext("Name") != BREAKER_EXEMPT_ENABLER]
    rows = []
    for voltage in fx.find("ValidVoltages").findall("Voltage"):
        volts = int(voltage.findtext("Value"))
        watts = D(voltage.findtext("VoltagePower"))
        pf = power_factor(watts, volts)
        voltage.find("VoltagePowerFactor").text = fmt(pf)
        if volts == starting:
            fx.find("PowerFactor").text = fmt(pf)
        amps = watts / (volts * pf)
        rated = D(voltage.findtext("VoltageMaxFixtureCurrent"))
        by_current = floor(CONTINUOUS * rated / amps)
        by_power = floor(max_power / watts)
        by_length = floor((max_length - leader_length) / length)
        count = min(by_current, by_power, by_length)
        if by_enabler is not None:
            count = min(count, by_enabler)
        voltage.find("VoltageMaxFixtureCount").text = str(count)
        row = [volts, by_current, by_power, by_length, by_enabler, count]
        if name in BREAKER_FIXTURES:
            surge = inrush(fx, volts)
            enabler_surge = max(inrush(e, volts) for e in enablers)
            for rating, tag in ((15, "Voltage15AmpMaxFixtureCount"), (20, "Voltage20AmpMaxFixtureCount")):
                continuous = floor(CONTINUOUS * rating / amps)
                by_inrush = floor((TRIP_MULTIPLE * rating - enabler_surge) / surge)
                breaker = min(count, continuous, by_inrush)
                set_after(voltage, tag, "VoltageMaxFixtureCount" if rating == 15 else
                          "Voltage15AmpMaxFixtureCount", str(breaker))
                row += [rating, continuous, by_inrush, breaker]
        rows.append(row)
    return rows


def main():
    path = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent /
                "resources" / "vx_config_dl.xml")
    text = path.read_text(encoding="utf-8")
    start = text.index("<RunplanDatabase>")
    head = text[:start]
    root = ET.fromstring(text[start:], parser=ET.XMLParser(target=ET.TreeBuilder(insert_comments=True)))

    cables(root)
    supplies = {s.findtext("Name"): s for s in root.iter("PowerSupply")}
    for fx in root.iter("Fixture"):
        for row in fixture(fx, supplies):
            print(fx.findtext("Name"), *row, sep="\t")

    body = ET.tostring(root, encoding="unicode")
    path.write_text(head + body + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
