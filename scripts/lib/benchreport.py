#!/usr/bin/python3
"""Turns the benchmarks' report lines into one table, the benchmark page and its plot.

Used by scripts/bench:
  benchreport.py table REPORT                       prints the table as text
  benchreport.py page REPORT MACHINE FINDINGS OUT PLOT [NOTE...]
                                                    writes the page OUT and the plot PLOT

REPORT holds one JSON object a line as bench/BenchReport.h writes them: figures (bench,
figure, value, unit, baseline_name, baseline, goal, limit) and sample series (bench,
series, unit, samples). MACHINE is "key: value" lines; FINDINGS the hand-written part of
the page, appended after the table; NOTE lines (skipped benchmarks, failures) go above it.
"""

import json
import os
import subprocess
import sys
import tempfile


def load(path):
    figures, series = [], []
    with open(path, encoding="utf-8") as report:
        for number, line in enumerate(report, 1):
            line = line.strip()
            if not line:
                continue
            try:
                entry = json.loads(line)
            except json.JSONDecodeError as error:
                print(f"benchreport: {path}:{number}: not a report line ({error})", file=sys.stderr)
                continue
            (series if "samples" in entry else figures).append(entry)
    return figures, series


def number(value):
    if value is None:
        return "-"
    magnitude = abs(value)
    if magnitude >= 100 or value == int(value):
        return f"{value:.0f}"
    if magnitude >= 10:
        return f"{value:.1f}"
    return f"{value:.2f}"


def judge(figure):
    """(ratio text, goal text, verdict) of one figure."""
    value, baseline = figure.get("value"), figure.get("baseline")
    goal, limit, unit = figure.get("goal"), figure.get("limit"), figure.get("unit", "")
    ratio = value / baseline if value is not None and baseline else None
    ratio_text = f"{ratio:.2f}" if ratio is not None else "-"
    if goal is None or limit is None or value is None:
        return ratio_text, "-", "-" if goal is None else "short"
    if goal == "ratio_at_most":
        return ratio_text, f"<= {number(limit)} x baseline", "met" if ratio is not None and ratio <= limit else "short"
    if goal == "at_most":
        return ratio_text, f"<= {number(limit)} {unit}".strip(), "met" if value <= limit else "short"
    if goal == "at_least":
        return ratio_text, f">= {number(limit)} {unit}".strip(), "met" if value >= limit else "short"
    return ratio_text, "-", "-"


def rows(figures):
    table = []
    for figure in figures:
        ratio, goal, verdict = judge(figure)
        unit = figure.get("unit", "")
        baseline = "-"
        if figure.get("baseline_name"):
            baseline = f"{number(figure.get('baseline'))} {unit} ({figure['baseline_name']})".replace("  ", " ")
        table.append([figure["bench"], figure["figure"], f"{number(figure.get('value'))} {unit}".strip(), baseline,
                      ratio, goal, verdict])
    return table


HEADER = ["bench", "figure", "value", "baseline (same run)", "ratio", "goal", "result"]


def text_table(figures):
    table = [HEADER] + rows(figures)
    widths = [min(60, max(len(row[i]) for row in table)) for i in range(len(HEADER))]
    lines = []
    for index, row in enumerate(table):
        lines.append("  ".join(cell.ljust(widths[i]) for i, cell in enumerate(row)).rstrip())
        if index == 0:
            lines.append("  ".join("-" * width for width in widths))
    return "\n".join(lines)


def markdown_table(figures):
    lines = ["| " + " | ".join(HEADER) + " |", "|" + "---|" * len(HEADER)]
    for row in rows(figures):
        row[-1] = "**short**" if row[-1] == "short" else row[-1]
        lines.append("| " + " | ".join(cell.replace("|", "/") for cell in row) + " |")
    return "\n".join(lines)


def plot(series, path):
    """One panel per benchmark with distributions: each series as its share of samples
    below a value (a cumulative distribution), on a logarithmic axis."""
    panels = {}
    for entry in series:
        panels.setdefault(entry["bench"], []).append(entry)
    if not panels:
        return False
    os.makedirs(os.path.dirname(path) or ".", exist_ok=True)
    with tempfile.TemporaryDirectory() as directory:
        commands = [
            f"set terminal pngcairo size 1200,{380 * len(panels)} font 'DejaVu Sans,10'",
            f"set output '{path}'",
            f"set multiplot layout {len(panels)},1",
            "set logscale x", "set grid", "set key right bottom", "set ylabel 'share of samples below'",
            "set yrange [0:1]",
        ]
        for bench, entries in panels.items():
            plots = []
            for index, entry in enumerate(entries):
                values = sorted(entry["samples"])
                data = os.path.join(directory, f"{bench}-{index}.dat")
                with open(data, "w", encoding="utf-8") as out:
                    for rank, value in enumerate(values, 1):
                        out.write(f"{max(value, 1e-3)} {rank / len(values)}\n")
                title = entry["series"].replace("_", " ").replace("'", "")
                plots.append(f"'{data}' using 1:2 with lines linewidth 2 title '{title}'")
            commands.append(f"set title '{bench}'")
            commands.append(f"set xlabel '{entries[0]['unit']}'")
            commands.append("plot " + ", ".join(plots))
        commands.append("unset multiplot")
        script = os.path.join(directory, "plot.gp")
        with open(script, "w", encoding="utf-8") as out:
            out.write("\n".join(commands) + "\n")
        result = subprocess.run(["gnuplot", script], capture_output=True, text=True)
        if result.returncode != 0:
            print(f"benchreport: gnuplot failed: {result.stderr.strip()}", file=sys.stderr)
            return False
    return True


def page(report, machine, findings, out, plot_path, notes):
    figures, series = load(report)
    with open(machine, encoding="utf-8") as source:
        machine_lines = [line.rstrip() for line in source if line.strip()]
    with open(findings, encoding="utf-8") as source:
        findings_text = source.read().strip()
    plotted = plot(series, plot_path)
    relative = os.path.relpath(plot_path, os.path.dirname(out) or ".")
    parts = [
        "# Benchmarks",
        "",
        "Written by `scripts/bench`, which builds in Release, runs every benchmark in `bench/` with "
        "`--report` and gathers their figures here; each figure stands beside its raw baseline "
        "measured in the same run. The text after the table is kept in `bench/findings.md`.",
        "",
        "## Machine",
        "",
    ]
    parts += [f"- {line}" for line in machine_lines]
    parts += ["", "## Figures", "", markdown_table(figures), ""]
    if notes:
        parts += [f"- {note}" for note in notes] + [""]
    if plotted:
        parts += ["Latency distributions beside their baselines (share of samples below a value):", "",
                  f"![Latency distributions]({relative})", ""]
    parts += [findings_text, ""]
    with open(out, "w", encoding="utf-8") as target:
        target.write("\n".join(parts))


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "table":
        figures, _ = load(arguments[1])
        print(text_table(figures))
        return 0
    if len(arguments) >= 6 and arguments[0] == "page":
        page(*arguments[1:6], arguments[6:])
        return 0
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
