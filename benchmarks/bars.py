"""Bar pictures of comparisons, as SVG: one group of bars for each comparison, one bar a contender.

Lengths are times; within a group the longest bar has the full width. Each bar ends with its time and the
ratio of the library's time to it.
"""

from xml.sax.saxutils import escape

WIDTH, LEFT, RIGHT, BAR, GAP, HEAD = 760, 130, 190, 15, 4, 24
INK, PALE = "#1f2933", "#52606d"
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


def bars(title, subtitle, groups):
    """groups: label, remark, and (contender, nanoseconds, ratio or None) with the library first."""
    body = [text(16, 28, title, size=17, weight="bold"), text(16, 47, subtitle, size=11, colour=PALE)]
    y = 66
    for label, remark, contenders in groups:
        body.append(text(16, y + 12, label, weight="bold"))
        body.append(text(WIDTH - 16, y + 12, remark, "end", 11, PALE))
        y += HEAD
        longest = max(time for _, time, _ in contenders)
        for name, time, ratio in contenders:
            colour = COLOURS["library"] if ratio is None else COLOURS.get(name, PEER)
            length = max(1.0, (WIDTH - LEFT - RIGHT) * time / longest)
            body.append(text(LEFT - 8, y + 12, name.replace("_", " "), "end"))
            body.append(f'<rect x="{LEFT}" y="{y}" width="{length:.1f}" height="{BAR}" rx="2" '
                        f'fill="{colour}"/>')
            shown = duration(time) + ("" if ratio is None else f", ratio {ratio:.2f}")
            body.append(text(f"{LEFT + length + 6:.1f}", y + 12, shown, size=11, colour=PALE))
            y += BAR + GAP
        y += 10
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{y}" '
            f'viewBox="0 0 {WIDTH} {y}" font-family="DejaVu Sans, Verdana, sans-serif">\n'
            f'<rect width="{WIDTH}" height="{y}" rx="6" fill="#ffffff"/>\n' + "\n".join(body) + "\n</svg>\n")
