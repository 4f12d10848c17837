#!/usr/bin/env python3
"""Draws results.tsv of bench/xml as an SVG chart: speed of events and of loading trees, a group of bars an input.
  bench/chart.py RESULTS.tsv OUT.svg"""
import csv
import sys
from xml.sax.saxutils import escape

WIDTH, PANEL, LEFT, TOP, GAP = 1120, 300, 20, 46, 40
COLOURS = ["#b8bec6", "#8f99a6", "#d8c7a0", "#c9a66b", "#a9c5d6", "#7fa3b8", "#cdb4c9", "#a889a4"]
OURS = {"ryn-events": "#c0392b", "ryn-events-reuse": "#e67e22", "ryn-dom": "#c0392b"}
PANELS = [("events", "Events, MB of input per second"), ("tree-load", "Loading a tree, MB of input per second")]


def load(path):
    """{section: {contestant: {input: MB per second}}} and the inputs in the order of the file."""
    speeds, inputs = {}, []
    with open(path, newline="") as file:
        for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            if row["section"] in dict(PANELS):
                speeds.setdefault(row["section"], {}).setdefault(row["contestant"], {})[row["input"]] = float(row["MB_per_s"])
                if row["input"] not in inputs:
                    inputs.append(row["input"])
    return speeds, inputs


def colour_of(name, index):
    return OURS.get(name, COLOURS[index % len(COLOURS)])


def text(x, y, content, size=11, anchor="start", extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" text-anchor="{anchor}" {extra}>{escape(content)}</text>'


def draw_panel(title, contestants, inputs, top):
    """Bars are scaled to the fastest of their group, since inputs differ by a factor of ten."""
    parts = [text(LEFT, top - 14, title, 15, extra='font-weight="bold"')]
    names = list(contestants)
    group = (WIDTH - LEFT - 20) / max(1, len(inputs))
    bar = (group - 16) / max(1, len(names))
    height = PANEL - 60
    for column, name_of_input in enumerate(inputs):
        x0 = LEFT + column * group
        most = max((contestants[n].get(name_of_input, 0) for n in names), default=0) or 1
        for index, name in enumerate(names):
            value = contestants[name].get(name_of_input)
            if value is None:
                continue
            length = height * value / most
            x, y = x0 + index * bar, top + height - length
            parts.append(f'<rect x="{x:.1f}" y="{y:.1f}" width="{bar - 1:.1f}" height="{length:.1f}" '
                         f'fill="{colour_of(name, index)}"><title>{escape(name)}: {value:.0f} MB/s</title></rect>')
            if name in OURS:
                parts.append(text(x + bar / 2, y - 3, f"{value:.0f}", 9, "middle"))
        parts.append(text(x0 + (group - 16) / 2, top + height + 16, f"{name_of_input} ({most:.0f})", 11, "middle"))
    x = LEFT
    for index, name in enumerate(names):
        parts.append(f'<rect x="{x}" y="{top + height + 26}" width="10" height="10" fill="{colour_of(name, index)}"/>')
        parts.append(text(x + 14, top + height + 35, name, 10))
        x += 22 + 5.6 * len(name)
    return parts


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    speeds, inputs = load(sys.argv[1])
    panels = [(title, speeds[section]) for section, title in PANELS if section in speeds]
    height = TOP + len(panels) * (PANEL + GAP)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" font-family="sans-serif">',
             f'<rect width="{WIDTH}" height="{height}" fill="white"/>']
    for index, (title, contestants) in enumerate(panels):
        parts += draw_panel(title + "; bars relative to the fastest of the input (in brackets)", contestants, inputs,
                            TOP + index * (PANEL + GAP))
    with open(sys.argv[2], "w") as out:
        out.write("\n".join(parts) + "\n</svg>\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
