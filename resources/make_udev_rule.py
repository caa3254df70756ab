#!/usr/bin/env python3
"""Writes the udev rule for the sticks of the device table (modems.table).

Every stick: ModemManager leaves it alone (ID_MM_DEVICE_IGNORE). A stick whose interface numbers are known
gets the links the connection manager looks for on its dial and AT ports, with uaccess; a stick whose
layout is not known gets uaccess on all its ttys, so that the connection manager can probe them.
"""
import argparse
import re
import sys

HEADER = """\
# Made from the device table (modems.table) when the connection manager is built; edit the table, not this.
#
# Gives the USB modems' serial ports the names the connection manager looks for, and keeps ModemManager
# away from them: the connection manager owns both ports.
#
#   dial (PPP) port   /dev/cu.VELMobileConnector<n>1     (the first stick of the table: ...Connector1)
#   AT command port   /dev/cu.VELDeviceInterface<n>3     (the first stick of the table: ...Interface3)
#
# ModemManager keeps every other modem. To hand it one of these sticks as well, drop the stick's lines here
# (or its row from the table before building); the connection manager then finds that stick busy while
# ModemManager runs. "udevadm info /dev/ttyUSB0" shows a tty's ids and interface number.
#
# Numbered after 60-serial.rules, which sets ID_USB_INTERFACE_NUM, ID_VENDOR_ID and ID_MODEL_ID, and before
# 73-seat-late.rules, which turns the uaccess tag into access for the user at the seat.

ACTION=="remove", GOTO="dialtone_modem_end"
"""

ID = re.compile(r"^[0-9a-f]{4}:[0-9a-f]{4}$")
IFACE = re.compile(r"^([0-9a-f]{2}|-)$")


def read_table(path):
    rows = []
    seen = set()
    with open(path, encoding="utf-8") as table:
        for number, line in enumerate(table, 1):
            line = line.strip()
            if not line or line.startswith("#"):
                continue
            fields = line.split()
            if (len(fields) < 6 or not ID.match(fields[0]) or not IFACE.match(fields[2])
                    or not IFACE.match(fields[3]) or fields[4] not in ("vel", "standard")
                    or fields[0] in seen):
                sys.exit(f"{path}:{number}: bad row: {line}")
            seen.add(fields[0])
            vendor, product = fields[0].split(":")
            suffix = "1" if not rows else f"{len(rows)}1"
            at = None if fields[2] == "-" else fields[2]
            dial = None if fields[3] == "-" else fields[3]
            rows.append((vendor, product, at, dial, suffix, " ".join(fields[5:])))
    return rows


def rule(rows):
    out = [HEADER]
    for vendor, product, _, _, _, name in rows:
        out.append(f'# {name}\nSUBSYSTEM=="usb", ENV{{DEVTYPE}}=="usb_device", ATTR{{idVendor}}=="{vendor}", '
                   f'ATTR{{idProduct}}=="{product}", \\\n    ENV{{ID_MM_DEVICE_IGNORE}}="1"\n')
    out.append('SUBSYSTEM!="tty", GOTO="dialtone_modem_end"\n')
    for vendor, product, at, dial, suffix, name in rows:
        match = f'ENV{{ID_VENDOR_ID}}=="{vendor}", ENV{{ID_MODEL_ID}}=="{product}"'
        out.append(f"# {name}")
        out.append(f'{match}, ENV{{ID_MM_DEVICE_IGNORE}}="1"')
        if at is None:
            out.append(f'{match}, TAG+="uaccess"\n')
            continue
        out.append(f'{match}, ENV{{ID_USB_INTERFACE_NUM}}=="{dial}", '
                   f'SYMLINK+="cu.VELMobileConnector{suffix}", TAG+="uaccess"')
        out.append(f'{match}, ENV{{ID_USB_INTERFACE_NUM}}=="{at}", '
                   f'SYMLINK+="cu.VELDeviceInterface{suffix[:-1]}3", TAG+="uaccess"\n')
    out.append('LABEL="dialtone_modem_end"')
    return "\n".join(out) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--table", required=True)
    parser.add_argument("--output", required=True)
    arguments = parser.parse_args()
    text = rule(read_table(arguments.table))
    with open(arguments.output, "w", encoding="utf-8") as output:
        output.write(text)


if __name__ == "__main__":
    main()
