#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Draws the wall times of a run of measure.py, beside the floor, as SVG."""

import argparse
import html
import json
import math
import pathlib

from report import ratio

WIDTH, LEFT, RIGHT, TOP = 860, 190, 60, 148
BAR, GAP, HEADING = 12, 14, 30

# Each with what its bar shows.
CONTENDERS = {
    "Ostrafel": "Ostrafel",
    "redis-cli --pipe": "redis-cli --pipe: gets the same commands ready-made and reads no JSON",
    "one at a time": "one at a time: the floor's work with a round trip for each command",
    "redis-py": "redis-py: the same work in Python, with pipelines of 2,000 commands",
}

# Colours that keep apart on light and on dark, also for those who see fewer. The picture has a
# ground of its own, because the page around it may be dark while the reader's system is light.
STYLE = """
    .ground { fill: #ffffff }
    text { font: 12px sans-serif; fill: #1f2328 }
    .title { font-size: 16px; font-weight: bold }
    .tree { font-weight: bold }
    .value { font-size: 10px }
    .grid { stroke: #d1d9e0 }
    .floor { stroke: #1f2328; stroke-width: 1.5 }
    .c0 { fill: #0969da } .c1 { fill: #8c959f } .c2 { fill: #bf8700 } .c3 { fill: #a475f9 }
    @media (prefers-color-scheme: dark) {
      .ground { fill: #0d1117 }
      text { fill: #f0f6fc }
      .grid { stroke: #3d444d }
      .floor { stroke: #f0f6fc }
      .c0 { fill: #4493f8 } .c1 { fill: #7d8590 } .c2 { fill: #d29922 } .c3 { fill: #ab7df8 }
    }"""


class Picture:
    def __init__(self, most):
        self.lines, self.height, self.most = [], TOP, most

    def x(self, value):
        return LEFT + (WIDTH - LEFT - RIGHT) * value / self.most

    def text(self, x, y, text, kind="", anchor="start"):
        self.lines.append(f'<text x="{x:.1f}" y="{y:.1f}" class="{kind}" text-anchor="{anchor}">'
                          f"{html.escape(text)}</text>")

    def line(self, x, first_y, last_y, kind):
        self.lines.append(f'<line x1="{x:.1f}" x2="{x:.1f}" y1="{first_y}" y2="{last_y}" '
                          f'class="{kind}"/>')

    def bar(self, y, value, contender):
        place = list(CONTENDERS).index(contender)
        self.lines.append(f'<rect x="{LEFT}" y="{y}" width="{self.x(value) - LEFT:.1f}" '
                          f'height="{BAR - 2}" class="c{place}"/>')
        # Not across the line of the floor.
        self.text(self.x(max(value, 1)) + 4, y + BAR - 4, f"{value:.2f}", "value")

    def legend(self):
        self.text(16, 26, "Wall time of a run, as a multiple of the floor's", "title")
        self.text(16, 46, "The line at 1 is the floor: a C program that does nothing but call the "
                          "two libraries. Shorter is faster.")
        for place, meaning in enumerate(CONTENDERS.values()):
            y = 60 + 20 * place
            self.lines.append(f'<rect x="16" y="{y}" width="12" height="12" class="c{place}"/>')
            self.text(34, y + 10, meaning)

    def axis(self):
        """Behind the bars, hence drawn first."""
        drawn, self.lines = self.lines, []
        step = max(1, math.ceil(self.most / 10))
        for tick in range(0, math.floor(self.most) + 1, step):
            self.line(self.x(tick), TOP, self.height, "grid")
            self.text(self.x(tick), self.height + 16, str(tick), anchor="middle")
        self.text(self.x(self.most / 2), self.height + 36,
                  "× the floor's wall time, median of the rounds", anchor="middle")
        self.lines += drawn
        self.line(self.x(1), TOP, self.height, "floor")
        self.height += 48


def draw(trees):
    groups = []
    for tree_name, tree in trees.items():
        for name, scenario in tree["scenarios"].items():
            runs = scenario["results"]
            ratios = {contender: ratio(runs[contender], runs["floor"])
                      for contender in CONTENDERS if contender in runs}
            groups.append((tree_name, tree["files"], name, ratios))
    picture = Picture(max(max(ratios.values()) for *_, ratios in groups))
    picture.legend()
    last_tree = None
    for tree_name, files, name, ratios in groups:
        if tree_name != last_tree:
            picture.text(16, picture.height + 18, f"{tree_name}, {files:,} files", "tree")
            picture.height += HEADING
            last_tree = tree_name
        picture.text(LEFT - 10, picture.height + BAR * len(ratios) / 2 + 4, name, anchor="end")
        for contender, value in ratios.items():
            picture.bar(picture.height, value, contender)
            picture.height += BAR
        picture.height += GAP
    picture.axis()
    body = "\n  ".join(picture.lines)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {picture.height}" '
            f'width="{WIDTH}" height="{picture.height}" role="img">\n'
            f"  <title>Wall time of Ostrafel and of other ways to load the same trees, beside the "
            f"floor</title>\n  <style>{STYLE}\n  </style>\n"
            f'  <rect class="ground" width="100%" height="100%" rx="6"/>\n  {body}\n</svg>\n')


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("results", type=pathlib.Path, help="results.json of measure.py")
    parser.add_argument("picture", type=pathlib.Path)
    arguments = parser.parse_args()
    measured = json.loads(arguments.results.read_text(encoding="utf-8"))
    arguments.picture.write_text(draw(measured["trees"]), encoding="utf-8")


if __name__ == "__main__":
    main()
