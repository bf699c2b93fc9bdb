#!/usr/bin/env python3
"""kxhost list --json and describe, against the test bundle and the real one: the JSON says what the
description files say (defaults as written, every purpose resolved), and failures have their exit codes."""
import argparse
import glob
import json
import os
import subprocess
import sys

failures = []


def check(ok, what):
    if not ok:
        failures.append(what)


def kxhost(args, *command):
    extra = ["--bundle", args.bundle] if args.bundle else []
    return subprocess.run([args.kxhost, *extra, *command], capture_output=True, text=True)


def test_bundle(args):
    listed = kxhost(args, "list", "--json")
    check(listed.returncode == 1, f"list --json with a missing side exits 1, not {listed.returncode}")
    check("MISSING" in listed.stderr, "list --json names the missing side on standard error")
    modules = {m["id"]: m for m in json.loads(listed.stdout)["modules"]}
    ghost, add = modules["T_Ghost"], modules["T_AddOne"]
    check(ghost["created"] == {"gui": False, "dsp": False}, f"T_Ghost is not created: {ghost['created']}")
    check(add["created"] == {"gui": True, "dsp": False} and "dsp" not in add, "T_AddOne: a GUI side only")
    check((add["category"], add["summary"]) == ("Test logic", "Sends its input plus one."), "T_AddOne's texts")
    purposes = [p["purpose"] for p in add["gui"]["pins"]]
    check(purposes == ["the number to add one to", "In + 1"], f"T_AddOne's purposes: {purposes}")
    check(modules["T_SkinText"]["graphic"] and not add["graphic"], "graphic: the skinned test module, not Add One")

    described = kxhost(args, "describe", "T_AddOne")
    check(described.returncode == 0, "describe T_AddOne exits 0")
    lines = described.stdout.splitlines()
    check(any(l.split()[:5] == ["1", "Out", "int", "out", "In"] for l in lines if l.strip()),
          "describe lists pin 1 with its type, direction and purpose:\n" + described.stdout)
    same = json.loads(kxhost(args, "describe", "T_AddOne", "--json").stdout)
    check(same == add, "describe --json gives what list --json gives for the identifier")

    unknown = kxhost(args, "describe", "T_Nothing")
    check(unknown.returncode == 2 and "no description of T_Nothing" in unknown.stderr,
          f"describe of an undescribed identifier: exit {unknown.returncode}, {unknown.stderr!r}")


def real_bundle(args):
    listed = kxhost(argparse.Namespace(kxhost=args.kxhost, bundle=None), "list", "--json")
    check(listed.returncode == 0, "the real bundle creates every described side")
    modules = {m["id"]: m for m in json.loads(listed.stdout)["modules"]}
    for path in glob.glob(os.path.join(args.source, "modules", "*", "*.json")):
        with open(path) as f:
            doc = json.load(f)
        shared = doc.get("purposes", {})
        for described in doc["modules"]:
            listed_module = modules.get(described["id"])
            check(listed_module is not None, f"{described['id']} is listed")
            if listed_module is None:
                continue
            for side in ("gui", "dsp"):
                for pin, got in zip(described.get(side, {}).get("pins", []), listed_module.get(side, {}).get("pins", [])):
                    where = f"{described['id']} {side} pin {pin['index']}"
                    # 0.01 stays 0.01: the float's shortest form, not the double nearest the float.
                    check(pin.get("default") == got.get("default"), f"{where}: default {got.get('default')!r}")
                    purpose = pin.get("purpose") or shared.get(side, {}).get(pin["name"], "")
                    check(purpose == got["purpose"], f"{where}: purpose {got['purpose']!r}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--kxhost", required=True)
    parser.add_argument("--bundle", required=True, help="the test bundle")
    parser.add_argument("--source", required=True, help="the source tree, for the real descriptions")
    args = parser.parse_args()
    test_bundle(args)
    real_bundle(args)
    for f in failures:
        print("FAILED:", f)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
