"""Bar pictures of comparisons, as SVG: a panel for each subject, in it one group of bars for each comparison,
one bar a contender, in two columns.

Lengths are times; within a group the longest bar has the full width. Each bar ends with its time and the
ratio of the library's time to it.
"""

from xml.sax.saxutils import escape

WIDTH, MARGIN, GUTTER = 1000, 20, 36
COLUMN = (WIDTH - 2 * MARGIN - GUTTER) // 2
NAMES, VALUES = 120, 122  # the widths of the names before the bars and of the numbers behind them
BAR, STEP, HEAD, SPACE = 13, 17, 36, 12
INK, PALE, RULE = "#1f2933", "#52606d", "#cbd2d9"
# Colours of the library, of the limit and the ideal loops, and of peers.
COLOURS = {"library": "#1f6fb2", "limit": "#9fb3c8", "ideal": "#bcccdc", "ideal_marks": "#d9e2ec"}
PEER = "#e0912f"


def duration(nanoseconds):
    """A time as text, in ns, us, ms or s."""
    for unit, size in (("ns", 1.0), ("µs", 1e3), ("ms", 1e6)):
        if nanoseconds < 1000 * size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds / 1e9:.3g} s"


def text(x, y, content, anchor="start", size=12, colour=INK, weight="normal"):
    return (f'<text x="{x}" y="{y}" text-anchor="{anchor}" font-size="{size}" fill="{colour}" '
            f'font-weight="{weight}">{escape(content)}</text>')


def height_of(group):
    return HEAD + STEP * len(group[2]) + SPACE


def in_columns(groups):
    """The groups of the left and of the right column, of about the same height."""
    whole, left = sum(map(height_of, groups)), 0
    for count, group in enumerate(groups):
        if left + height_of(group) / 2 > whole / 2:
            return groups[:count], groups[count:]
        left += height_of(group)
    return groups, []


def draw_group(x, y, group):
    """The bars of one comparison, below its label and remark."""
    label, remark, contenders = group
    body = [text(x, y + 13, label, weight="bold"), text(x, y + 28, remark, size=11, colour=PALE)]
    y += HEAD
    longest = max(time for _, time, _ in contenders)
    for name, time, ratio in contenders:
        colour = COLOURS["library"] if ratio is None else COLOURS.get(name, PEER)
        length = max(1.0, (COLUMN - NAMES - VALUES) * time / longest)
        body.append(text(x + NAMES - 8, y + 11, name.replace("_", " "), "end"))
        body.append(f'<rect x="{x + NAMES}" y="{y}" width="{length:.1f}" height="{BAR}" rx="2" fill="{colour}"/>')
        shown = duration(time) + ("" if ratio is None else f", ratio {ratio:.{2 if ratio >= 0.1 else 3}f}")
        body.append(text(f"{x + NAMES + length + 6:.1f}", y + 11, shown, size=11, colour=PALE))
        y += STEP
    return body


def picture(panels, subtitle):
    """panels: title and groups; groups: label, remark, and (contender, nanoseconds, ratio or None) with the
    library first."""
    body = [text(WIDTH - MARGIN, 26, subtitle, "end", 11, PALE)]
    y = 14
    for title, groups in panels:
        body.append(text(MARGIN, y + 16, title, size=17, weight="bold"))
        body.append(f'<path d="M{MARGIN} {y + 27}H{WIDTH - MARGIN}" stroke="{RULE}"/>')
        y += 34
        ends = [y]
        for x, column in zip((MARGIN, MARGIN + COLUMN + GUTTER), in_columns(groups)):
            bottom = y
            for group in column:
                body += draw_group(x, bottom, group)
                bottom += height_of(group)
            ends.append(bottom)
        y = max(ends) + 14
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{y}" '
            f'viewBox="0 0 {WIDTH} {y}" font-family="DejaVu Sans, Verdana, sans-serif">\n'
            f'<rect width="{WIDTH}" height="{y}" rx="6" fill="#ffffff"/>\n' + "\n".join(body) + "\n</svg>\n")
