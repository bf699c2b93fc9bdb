#!/usr/bin/env python3
"""Makes the module catalogue in docs/modules/ from what kxhost reads: one page per identifier (summary,
category, sides, pins with what each is for, and a picture for every graphic module) and an index page
with a gallery of the widget pictures.

The facts come from `kxhost list --json`, which reads the shipped descriptions (modules/*/*.json) and
asks the bundle which sides it creates and which modules draw. What a page says beyond them is written
by hand below the line KEEP in the page itself, and kept as it is each time the page is made again.

Pictures are rendered by kxhost from the small patch of each graphic module in docs/modules/examples/
(ID.kxp: a snapshot named ID, compared against img/ID.png by the tests).

    scripts/make_catalogue.py              write the pages (kxhost from build/release)
    scripts/make_catalogue.py --pictures   render the pictures again first; look at them before committing
    scripts/make_catalogue.py --check      fail when the committed pages differ from what would be made now
"""

import argparse
import filecmp
import glob
import json
import os
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
DOCS = os.path.join(ROOT, "docs", "modules")
KEEP = "<!-- Written by hand from here on: the catalogue generator keeps it. The part above comes from the description. -->"
MADE = "<!-- Made by scripts/make_catalogue.py from the module's description. -->"


class CatalogueError(Exception):
    pass


def kxhost_modules(kxhost):
    run = subprocess.run([kxhost, "list", "--json"], capture_output=True, text=True)
    if run.returncode != 0:
        raise CatalogueError(f"{kxhost} list --json failed ({run.returncode}):\n{run.stderr}")
    return json.loads(run.stdout)["modules"]


def check_complete(modules):
    """Every identifier needs the texts a page is made of."""
    gaps = []
    for m in modules:
        for key in ("category", "summary"):
            if not m[key]:
                gaps.append(f"{m['id']}: no {key}")
        for side in ("gui", "dsp"):
            for pin in m.get(side, {}).get("pins", []):
                if not pin["purpose"]:
                    gaps.append(f"{m['id']} {side} pin {pin['index']} ({pin['name']}): no purpose")
    if gaps:
        raise CatalogueError("the descriptions lack texts the catalogue needs:\n  " + "\n  ".join(gaps))


def cell(text):
    return text.replace("|", "\\|")


def default_text(pin):
    if "default" not in pin:
        return ""
    value = pin["default"]
    if pin["datatype"] in ("blob", "midi"):
        return "`[" + " ".join(value[i:i + 2] for i in range(0, len(value), 2)) + "]`"
    return "`" + json.dumps(value) + "`"


def pin_table(pins):
    rows = ["| # | Name | Type | Dir | Default | Purpose |", "|---|---|---|---|---|---|"]
    for p in pins:
        index = f"{p['index']}, {p['index'] + 1}, ..." if p.get("autoDuplicate") else str(p["index"])
        purpose = p["purpose"]
        if p.get("echo") is False:
            purpose += " (the host never echoes the module's own writes into it)"
        rows.append(f"| {index} | {cell(p['name'])} | {p['datatype']} | {p['direction']} | {default_text(p)} | "
                    f"{cell(purpose)} |")
    return rows


def anchor(heading):
    """The anchor a Markdown viewer gives a heading."""
    kept = "".join(c for c in heading.lower() if c.isalnum() or c in " -_")
    return kept.replace(" ", "-")


def page_title(path):
    with open(path, encoding="utf-8") as f:
        for line in f:
            if line.startswith("# "):
                return line[2:].strip()
    return os.path.basename(path)


def description_path(m):
    found = glob.glob(os.path.join(ROOT, "modules", "*", m["description"]))
    return os.path.relpath(found[0], DOCS) if found else None


def hand_written(page):
    """What follows KEEP in the committed page, or nothing."""
    if not os.path.exists(page):
        return ""
    with open(page, encoding="utf-8") as f:
        text = f.read()
    at = text.find(KEEP)
    return text[at + len(KEEP):].strip("\n") if at >= 0 else ""


def module_page(m):
    sides = [s for s in ("dsp", "gui") if s in m]
    lines = [f"# {m['id']} — {m['name']}", "", MADE, "", m["summary"], ""]
    facts = [("Category", f"[{m['category']}](README.md#{anchor(m['category'])})"),
             ("Sides", " and ".join(s.upper() for s in sides))]
    source = description_path(m)
    if source:
        facts.append(("Description", f"[{m['description']}]({source})"))
    if m["graphic"]:
        facts.append(("Example", f"[examples/{m['id']}.kxp](examples/{m['id']}.kxp)"))
    if m["guide"]:
        facts.append(("Guide", f"[{page_title(os.path.join(DOCS, m['guide']))}]({m['guide']})"))
    lines += ["| | |", "|---|---|"] + [f"| {k} | {v} |" for k, v in facts] + [""]
    if m["graphic"]:
        lines += [f"![{m['id']}](img/{m['id']}.png)", ""]
    for side in sides:
        pins = m[side]["pins"]
        lines.append("## Pins" if len(sides) == 1 else f"## {side.upper()} pins")
        lines.append("")
        lines += pin_table(pins) if pins else ["None."]
        lines.append("")
    lines.append(KEEP)
    prose = hand_written(os.path.join(DOCS, m["id"] + ".md"))
    if prose:
        lines += ["", prose]
    return "\n".join(lines) + "\n"


def index_page(modules):
    graphic = [m for m in modules if m["graphic"]]
    categories = sorted({m["category"] for m in modules})
    guides = sorted({m["guide"] for m in modules if m["guide"]})
    lines = ["# Module catalogue", "", MADE.replace("the module's description", "the module descriptions"), "",
             f"The pack holds {len(modules)} modules. Each has a page here with its pins (index, type, direction, "
             "default and what each is for), made from the descriptions the host reads. The guides tell how the "
             "modules of a family behave together:", ""]
    lines += [f"- [{page_title(os.path.join(DOCS, g))}]({g})" for g in guides]
    lines += ["", "## Widgets", "",
              "Every graphic module, rendered by kxhost from the small patch in [examples/](examples/) that its page "
              "names (the demo skin in `examples/skin/`).", "",
              "| Picture | Module |", "|---|---|"]
    for m in graphic:
        lines.append(f"| [![{m['id']}](img/{m['id']}.png)]({m['id']}.md) | [{m['id']}]({m['id']}.md): "
                     f"{cell(m['summary'])} |")
    for category in categories:
        lines += ["", f"## {category}", "", "| Identifier | Name | Summary |", "|---|---|---|"]
        for m in modules:
            if m["category"] == category:
                lines.append(f"| [{m['id']}]({m['id']}.md) | {cell(m['name'])} | {cell(m['summary'])} |")
    return "\n".join(lines) + "\n"


def check_examples(modules):
    """A graphic module has an example patch and a picture; nothing else has one."""
    ids = {m["id"] for m in modules}
    graphic = {m["id"] for m in modules if m["graphic"]}
    problems = []
    for i in sorted(graphic):
        if not os.path.exists(os.path.join(DOCS, "examples", i + ".kxp")):
            problems.append(f"{i} draws, but docs/modules/examples/{i}.kxp does not exist")
        if not os.path.exists(os.path.join(DOCS, "img", i + ".png")):
            problems.append(f"{i} draws, but docs/modules/img/{i}.png does not exist (run with --pictures)")
    for path in glob.glob(os.path.join(DOCS, "examples", "*.kxp")):
        i = os.path.splitext(os.path.basename(path))[0]
        if i not in graphic:
            problems.append(f"docs/modules/examples/{i}.kxp: {i} is " + ("not a graphic module" if i in ids else "not described"))
    if problems:
        raise CatalogueError("\n".join(problems))


def render_pictures(kxhost, modules):
    with tempfile.TemporaryDirectory() as out:
        for m in modules:
            if not m["graphic"]:
                continue
            patch = os.path.join(DOCS, "examples", m["id"] + ".kxp")
            if not os.path.exists(patch):
                continue
            print(f"rendering {m['id']}")
            # The run compares against the picture it replaces; a difference is what a refresh is for.
            subprocess.run([kxhost, "run", patch, "--out", out], capture_output=True, text=True)
            made = os.path.join(out, m["id"] + ".png")
            if not os.path.exists(made):
                raise CatalogueError(f"{patch} wrote no snapshot named {m['id']}")
            shutil.copyfile(made, os.path.join(DOCS, "img", m["id"] + ".png"))


def write_catalogue(modules, out):
    os.makedirs(out, exist_ok=True)
    files = {m["id"] + ".md": module_page(m) for m in modules}
    files["README.md"] = index_page(modules)
    for name, text in files.items():
        with open(os.path.join(out, name), "w", encoding="utf-8", newline="\n") as f:
            f.write(text)
    return sorted(files)


def check(modules):
    with tempfile.TemporaryDirectory() as out:
        made = write_catalogue(modules, out)
        stale = [n for n in made if not os.path.exists(os.path.join(DOCS, n))
                 or not filecmp.cmp(os.path.join(out, n), os.path.join(DOCS, n), shallow=False)]
    # Pages of identifiers no longer described.
    ids = {m["id"] for m in modules}
    stale += [os.path.basename(p) + " (no such identifier)" for p in glob.glob(os.path.join(DOCS, "KX_*.md"))
              if os.path.splitext(os.path.basename(p))[0] not in ids]
    if stale:
        raise CatalogueError("docs/modules/ differs from what the descriptions make now; run "
                             "scripts/make_catalogue.py and commit the result:\n  " + "\n  ".join(sorted(stale)))
    print(f"docs/modules/: {len(made)} pages up to date")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--kxhost", default=os.path.join(ROOT, "build", "release", "kxhost"))
    parser.add_argument("--check", action="store_true", help="compare with the committed pages, write nothing")
    parser.add_argument("--pictures", action="store_true", help="render the widget pictures again")
    args = parser.parse_args()
    try:
        modules = kxhost_modules(args.kxhost)
        check_complete(modules)
        if args.pictures:
            render_pictures(args.kxhost, modules)
        check_examples(modules)
        if args.check:
            check(modules)
        else:
            made = write_catalogue(modules, DOCS)
            print(f"wrote {len(made)} pages into docs/modules/")
    except CatalogueError as e:
        print(f"make_catalogue: {e}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
