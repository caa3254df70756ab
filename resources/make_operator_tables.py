#!/usr/bin/env python3
"""Builds the "PredefinedProfile", "PLMN" and "MCCRegion" resources from the operator and APN database
(mobile-broadband-provider-info's serviceproviders.xml).

PredefinedProfile: one line per internet APN of each GSM provider and each of its MCC+MNC codes, columns
separated by a tab, lines by "\\r\\n", no line break after the last line:
    account, MCC+MNC, "*99#", user name, password, APN, auth (0 none/unknown, 1 PAP, 2 CHAP),
    SPN, (unused), DNS1, DNS2
PLMN: one line per MCC+MNC: the code, a tab, the operator's name.
MCCRegion: one line per MCC: the code, a tab, the country's ISO 3166 code in capitals (the region phone
numbers are read in). Where an MCC is listed under several countries (234: GB, GG, IM, JE), the country
with the most networks on it wins.

The SPN column. When a SIM is inserted, the profiles are chosen by its SPN first: the profiles whose SPN
equals the SIM's SPN; one match is taken as it is, without looking at the IMSI, and two or more matches are
narrowed to the first whose MCC+MNC starts the IMSI (with no fallback when none does). Without an SPN
match, every profile whose MCC+MNC starts the IMSI is offered, minus those that carry an SPN when there is
more than one. So where several providers share one MCC+MNC (a network and the resellers on it):
  - the network's own provider (the one marked primary, else the one listing the most codes, then the one
    with the most internet APNs, then the first listed) gets an empty SPN, so its profiles are what a SIM
    of that network, or any SIM whose SPN is unknown here, is offered;
  - every other provider on that code gets its name as SPN, so a reseller SIM whose SPN reads that name
    gets its own profile, and does not see it mixed with the network's.
A provider alone on its code needs no SPN. A name that is SPN-neutral anywhere (a network's or a lone
provider's) is kept SPN-neutral everywhere: otherwise a SIM of that network showing that name as its SPN
would match a reseller line of the same name in another country, and a single such match is taken
without an IMSI check.
"""

import argparse
import os
import sys
import tempfile
import xml.etree.ElementTree as ET

AUTH_NONE, AUTH_PAP, AUTH_CHAP = 0, 1, 2
DIAL_NUMBER = "*99#"


def clean(text):
    """One table cell: no tabs or line breaks, no surrounding blanks."""
    if text is None:
        return ""
    return " ".join(text.replace("\t", " ").replace("\r", " ").replace("\n", " ").split())


def default_name(element):
    """The element's <name> without a language attribute, else its first <name>."""
    names = element.findall("name")
    for name in names:
        if not name.attrib:
            return clean(name.text)
    return clean(names[0].text) if names else ""


def is_internet(apn):
    usages = [u.get("type") for u in apn.findall("usage")]
    return not usages or "internet" in usages


def read_providers(path):
    providers = []
    root = ET.parse(path).getroot()
    for country in root.findall("country"):
        for provider in country.findall("provider"):
            gsm = provider.find("gsm")
            if gsm is None:
                continue
            codes = []
            for net in gsm.findall("network-id"):
                code = clean(net.get("mcc")) + clean(net.get("mnc"))
                if code.isdigit() and 5 <= len(code) <= 6 and code not in codes:
                    codes.append(code)
            apns = []
            seen = set()
            for apn in gsm.findall("apn"):
                if not is_internet(apn):
                    continue
                auth = apn.find("authentication")
                method = auth.get("method") if auth is not None else None
                entry = {
                    "apn": clean(apn.get("value")),
                    "label": default_name(apn),
                    "user": clean(apn.findtext("username")),
                    "password": clean(apn.findtext("password")),
                    "auth": {"pap": AUTH_PAP, "chap": AUTH_CHAP}.get(method, AUTH_NONE),
                    "dns": [clean(d.text) for d in apn.findall("dns") if clean(d.text)],
                }
                key = (entry["apn"], entry["user"], entry["password"], entry["auth"])
                if entry["apn"] and key not in seen:
                    seen.add(key)
                    apns.append(entry)
            providers.append({
                "name": default_name(provider),
                "primary": provider.get("primary") == "true",
                "codes": codes,
                "apns": apns,
            })
    return providers


def network_owner(candidates):
    """The provider that owns a shared MCC+MNC (see the module text)."""
    best = candidates[0]
    for p in candidates[1:]:
        if (p["primary"], len(p["codes"]), len(p["apns"])) > (best["primary"], len(best["codes"]),
                                                              len(best["apns"])):
            best = p
    return best


def build_tables(providers):
    by_code = {}
    for p in providers:
        for code in p["codes"]:
            by_code.setdefault(code, []).append(p)
    owner = {code: network_owner(ps) for code, ps in by_code.items()}

    neutral_names = {owner[code]["name"].casefold() for code in by_code}
    reseller = {}
    for code, ps in by_code.items():
        for p in ps:
            if p is not owner[code] and p["name"].casefold() not in neutral_names:
                reseller[(id(p), code)] = True

    profiles = []
    for p in providers:
        several = len(p["apns"]) > 1
        for code in p["codes"]:
            spn = p["name"] if reseller.get((id(p), code)) else ""
            for apn in p["apns"]:
                account = p["name"]
                if several:
                    label = apn["label"] if apn["label"] and apn["label"] != p["name"] else apn["apn"]
                    account = "%s (%s)" % (p["name"], label)
                dns = apn["dns"] + ["", ""]
                profiles.append([account, code, DIAL_NUMBER, apn["user"], apn["password"], apn["apn"],
                                 str(apn["auth"]), spn, "", dns[0], dns[1]])

    plmn = []
    for code in by_code:  # first appearance in the database
        name = owner[code]["name"]
        if name:
            plmn.append([code, name])
    return profiles, plmn


def read_mcc_regions(path):
    counts = {}
    for country in ET.parse(path).getroot().findall("country"):
        region = clean(country.get("code")).upper()
        if len(region) != 2 or not region.isalpha():
            continue
        for net in country.iter("network-id"):
            mcc = clean(net.get("mcc"))
            if len(mcc) == 3 and mcc.isdigit():
                per_mcc = counts.setdefault(mcc, {})
                per_mcc[region] = per_mcc.get(region, 0) + 1
    return [[mcc, max(sorted(regions), key=lambda r: regions[r])] for mcc, regions in sorted(counts.items())]


def write_table(path, rows):
    text = "\r\n".join("\t".join(row) for row in rows)
    folder = os.path.dirname(path) or "."
    fd, tmp = tempfile.mkstemp(dir=folder, prefix=".tmp-")
    with os.fdopen(fd, "w", encoding="utf-8", newline="") as out:
        out.write(text)
    os.chmod(tmp, 0o644)
    os.replace(tmp, path)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--database", required=True, help="serviceproviders.xml")
    parser.add_argument("--output", required=True, help="folder for the tables")
    args = parser.parse_args()
    try:
        providers = read_providers(args.database)
        mcc_regions = read_mcc_regions(args.database)
    except (OSError, ET.ParseError) as err:
        print("make_operator_tables: cannot read %s: %s" % (args.database, err), file=sys.stderr)
        return 1
    profiles, plmn = build_tables(providers)
    if not profiles or not plmn:
        print("make_operator_tables: no GSM operators in %s" % args.database, file=sys.stderr)
        return 1
    os.makedirs(args.output, exist_ok=True)
    write_table(os.path.join(args.output, "PredefinedProfile"), profiles)
    write_table(os.path.join(args.output, "PLMN"), plmn)
    write_table(os.path.join(args.output, "MCCRegion"), mcc_regions)
    return 0


if __name__ == "__main__":
    sys.exit(main())
