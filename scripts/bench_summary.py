#!/usr/bin/env python3
"""Turns the JSON results of the benchmark programs into the summary table of docs/performance.md.

Usage: bench_summary.py RESULTS_DIR MACHINE_FILE DOC

RESULTS_DIR holds one <program>.json per program (Google Benchmark's JSON output, every repetition).
MACHINE_FILE holds the lines describing the machine and its load, written by scripts/bench.sh. The
summary replaces what lies between the two marker lines in DOC, and is also written beside the results
as summary.md.
"""
import json
import re
import statistics
import sys
from pathlib import Path

BEGIN = "<!-- bench-summary:begin (written by scripts/bench.sh) -->"
END = "<!-- bench-summary:end -->"

# (what, program, pack benchmark, baseline benchmark or None, clock, divisor)
# clock: "cpu" for work done on the processor, "real" for work that waits on the disk or is timed by hand.
# divisor: figures are divided by it (a tick of N clients shown per client).
ROWS = [
    ("Host-facing paths", None),
    ("GUI pin round trip, 1 module", "pin_roundtrip_bench", "CheckValveChain/1", "BareModuleChain/1", "cpu", 1),
    ("GUI pin round trip, chain of 100 modules", "pin_roundtrip_bench", "CheckValveChain/100",
     "BareModuleChain/100", "cpu", 1),
    ("GUI pin round trip, 1 module, against bare modules that catch exceptions", "pin_roundtrip_bench",
     "CheckValveChain/1", "GuardedBareModuleChain/1", "cpu", 1),
    ("GUI pin round trip, chain of 100, against bare modules that catch exceptions", "pin_roundtrip_bench",
     "CheckValveChain/100", "GuardedBareModuleChain/100", "cpu", 1),
    ("DSP `process`, 64-sample block with 8 events", "dsp_process_bench", "BridgeBlockWith8Events",
     "BareBridgeBlockWith8Events", "cpu", 1),
    ("DSP `process`, idle 64-sample block", "dsp_process_bench", "BridgeIdleBlock", "BareBridgeIdleBlock", "cpu",
     1),
    ("Create and release every registration", "registry_bench", "CreateReleaseEveryRegistration",
     "BareCreateReleaseSameRegistrations", "cpu", 1),
    ("Load the bundle to its first instance", "bundle_load_bench", "LoadPackToFirstInstance",
     "LoadEmptyModuleToFirstInstance", "real", 1),
    ("Text files and the file browser", None),
    ("Load 64 MB of text (`KX_StringLoader`)", "text_file_bench", "StringLoaderTrigger", "RawReadAndDecode",
     "cpu", 1),
    ("Save 64 MB of text with the safe replace (`KX_StringSaver`)", "text_file_bench", "StringSaverTrigger",
     "PlainWriteSyncRename", "real", 1),
    ("64 MB text through kxhost's session, loader alone", "host_text_bench", "ThroughSession/saver:0",
     "LoaderAlone", "cpu", 1),
    ("64 MB text through kxhost's session, wired to a saver", "host_text_bench", "ThroughSession/saver:1",
     "LoaderToSaverDirect", "cpu", 1),
    ("List a folder of 10,000 entries (`KX_FileBrowser`)", "file_browser_bench", "BrowserRescan/0",
     "PlainDirectoryIteration/0", "cpu", 1),
    ("List the same folder, `.wav` only, extensions hidden", "file_browser_bench", "BrowserRescan/1",
     "PlainDirectoryIteration/1", "cpu", 1),
    ("GUI services", None),
    ("Timer tick, 1 client (per client)", "timer_service_bench", "ServiceTick/1", "BareRunLoopTick/1", "cpu", 1),
    ("Timer tick, 100 clients in one group (per client)", "timer_service_bench", "ServiceTick/100",
     "BareRunLoopTick/100", "cpu", 100),
    ("Timer tick, 1,000 clients in one group (per client)", "timer_service_bench", "ServiceTick/1000",
     "BareRunLoopTick/1000", "cpu", 1000),
    ("Font cache: the demo skin's text styles made", "font_cache_bench", "SkinStylesThroughCache",
     "SkinStylesDirect", "cpu", 1),
    ("Font cache: the style file read", "font_cache_bench", "StyleFileParse", "StyleFileSplit", "cpu", 1),
    ("Font cache: a cached look-up", "font_cache_bench", "CachedLookup", "MapLookup", "cpu", 1),
    ("Skin image, first widget to show it, against the decoder alone", "image_widgets_bench",
     "FirstInstanceLoad", "DecodeOnly", "cpu", 1),
    ("Skin image, first widget to show it, against kxhost's image loading", "image_widgets_bench",
     "FirstInstanceLoad", "HostLoadOnly", "cpu", 1),
    ("Skin image, second widget showing it, against the same widget showing none", "image_widgets_bench",
     "SecondInstanceLoad", "WidgetWithoutImage", "cpu", 1),
    ("Rendering", None),
    ("Panel of 10 widgets in kxhost, one frame, against Cairo", "panel_render_bench", "KxhostPanelFrame/10",
     "CairoPanelFrame/10", "cpu", 1),
    ("Panel of 100 widgets in kxhost, one frame, against Cairo", "panel_render_bench", "KxhostPanelFrame/100",
     "CairoPanelFrame/100", "cpu", 1),
    ("Frame of `KX_Image` (dial)", "image_widgets_bench", "WidgetFrame/kind:0", "BaselineFrame/kind:0", "cpu", 1),
    ("Frame of `KX_JogShuttleImg`", "image_widgets_bench", "WidgetFrame/kind:1", "BaselineFrame/kind:1", "cpu", 1),
    ("Frame of `KX_PolarPickerImg`", "image_widgets_bench", "WidgetFrame/kind:2", "BaselineFrame/kind:2", "cpu", 1),
    ("Panel of 100 image widgets", "image_widgets_bench", "WidgetPanel", "BaselinePanel", "cpu", 1),
    ("Frame of `KX_BetterListBox`, 7 rows", "drawn_widgets_bench", "WidgetFrame<ListBox>",
     "WidgetBaseline<ListBox>", "cpu", 1),
    ("Frame of `KX_BetterTextEntry`", "drawn_widgets_bench", "WidgetFrame<TextEntry>", "WidgetBaseline<TextEntry>",
     "cpu", 1),
    ("Frame of `KX_ScrollBar`", "drawn_widgets_bench", "WidgetFrame<ScrollBar>", "WidgetBaseline<ScrollBar>",
     "cpu", 1),
    ("Frame of `KX_Line`", "drawn_widgets_bench", "WidgetFrame<Line>", "WidgetBaseline<Line>", "cpu", 1),
    ("Panel of 100 drawn widgets", "drawn_widgets_bench", "PanelOf100/1", "PanelOf100/0", "cpu", 1),
    ("List box of 10,000 rows, 30 in view", "drawn_widgets_bench", "ListOf10000Rows/1", "ListOf10000Rows/0", "cpu",
     1),
]


def base_name(run_name):
    """The benchmark's name without the options Google Benchmark appends (iterations, minimum time)."""
    return re.sub(r"/(iterations|min_time|repeats):[^/]*|/manual_time|/real_time", "", run_name)


def load(results):
    """{program: {name: {"cpu": [ns...], "real": [ns...], "error": str, "counters": {...}}}}"""
    to_ns = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    programs = {}
    for path in sorted(Path(results).glob("*.json")):
        runs = {}
        for b in json.loads(path.read_text())["benchmarks"]:
            if b.get("run_type") == "aggregate":
                continue
            entry = runs.setdefault(base_name(b["run_name"]), {"cpu": [], "real": [], "counters": {}})
            if b.get("error_occurred"):
                entry["error"] = b.get("error_message", "failed")
                continue
            unit = to_ns[b.get("time_unit", "ns")]
            entry["cpu"].append(b["cpu_time"] * unit)
            entry["real"].append(b["real_time"] * unit)
            for key, value in b.items():
                if isinstance(value, (int, float)) and key not in (
                        "family_index", "per_family_instance_index", "repetitions", "repetition_index", "threads",
                        "iterations", "real_time", "cpu_time") and not key.endswith("_per_second"):
                    entry["counters"].setdefault(key, []).append(value)
        programs[path.stem] = runs
    return programs


def duration(ns):
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if ns >= scale:
            return f"{ns / scale:.3g} {unit}"
    return f"{ns:.3g} ns"


def median(entry, clock):
    values = entry[clock]
    return statistics.median(values) if values else None


def table(programs):
    lines = ["| Benchmark | Pack | Baseline | Ratio |", "|---|---|---|---|"]
    for row in ROWS:
        if row[1] is None:
            lines.append(f"| **{row[0]}** | | | |")
            continue
        what, program, pack, baseline, clock, divisor = row
        runs = programs.get(program, {})
        p = runs.get(pack)
        b = runs.get(baseline) if baseline else None
        if p is None or (baseline and b is None):
            lines.append(f"| {what} | not run | | |")
            continue
        if "error" in p or (b and "error" in b):
            lines.append(f"| {what} | failed: {p.get('error') or b.get('error')} | | |")
            continue
        pm = median(p, clock) / divisor
        label = f"{duration(pm)}" + (" (wall)" if clock == "real" else "")
        if b is None:
            lines.append(f"| {what} | {label} | - | - |")
            continue
        bm = median(b, clock) / divisor
        ratio = f"{pm / bm:.2f}" if pm / bm >= 0.1 else f"{pm / bm:.2g}"
        baseline_label = duration(bm) + (" (wall)" if clock == "real" else "")
        lines.append(f"| {what} | {label} | {baseline_label} | {ratio} |")
    return lines


def allocations(programs):
    runs = programs.get("dsp_process_bench", {})
    rows = [(name.split("/", 1)[1], entry) for name, entry in sorted(runs.items())
            if name.startswith("BlockOfNewValues/")]
    if not rows:
        return []
    lines = ["| DSP half | Inputs | Allocations per block | Allocations in the first block | Block |",
             "|---|---|---|---|---|"]
    for identifier, entry in rows:
        if "error" in entry:
            lines.append(f"| `{identifier}` | failed: {entry['error']} | | | |")
            continue
        c = entry["counters"]
        per_block = max(c.get("allocs/block", [0]))
        lines.append(f"| `{identifier}` | {int(c.get('inputs', [0])[0])} | {per_block:.3g} | "
                     f"{int(max(c.get('allocs first block', [0])))} | {duration(median(entry, 'cpu'))} |")
    return lines


PEAKS = [
    ("The loader alone, driven directly", "LoaderAlone"),
    ("The loader alone in kxhost's session", "ThroughSession/saver:0"),
    ("The loader wired straight into a saver", "LoaderToSaverDirect"),
    ("The loader wired to a saver in kxhost's session", "ThroughSession/saver:1"),
]


def peaks(programs):
    """Peak resident memory of each 64 MB text benchmark, run in a process of its own."""
    runs = programs.get("host_text_bench", {})
    lines = ["| 64 MB of text | Peak memory | Peak / text as wide characters |", "|---|---|---|"]
    for what, name in PEAKS:
        entry = runs.get(name)
        if not entry or "error" in entry or "peak_MB" not in entry["counters"]:
            continue
        c = entry["counters"]
        lines.append(f"| {what} | {statistics.median(c['peak_MB']):.0f} MB | "
                     f"{statistics.median(c['peak_per_text']):.1f} |")
    return lines if len(lines) > 2 else []


def main():
    results, machine, doc = sys.argv[1:4]
    programs = load(results)
    text = [BEGIN, ""]
    text += Path(machine).read_text().rstrip().splitlines()
    text += [""] + table(programs) + [""]
    peak = peaks(programs)
    if peak:
        text += peak + [""]
    alloc = allocations(programs)
    if alloc:
        text += ["Heap allocations inside `process`, every DSP half, each input pin given a new value every",
                 "block (texts and blobs 40 bytes); the largest count over the repetitions:", ""]
        text += alloc + [""]
    text.append(END)
    summary = "\n".join(text) + "\n"
    (Path(results) / "summary.md").write_text(summary)
    path = Path(doc)
    current = path.read_text()
    if BEGIN not in current or END not in current:
        sys.exit(f"{doc} has no summary markers; the summary is in {results}/summary.md")
    before, rest = current.split(BEGIN, 1)
    after = rest.split(END, 1)[1]
    path.write_text(before + summary.rstrip("\n") + after)


if __name__ == "__main__":
    main()
