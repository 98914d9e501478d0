"""Converts the pages of the project for Doxygen.

A page stays an ordinary Markdown file, with links that work in a checkout. Here each heading gets the
anchor that its text suggests, a link between files becomes a link between pages, and names in code
style become links: of files, and of public names.
"""

import os
import pathlib
import re
import sys

from names import exported, reference

# The sections of the site, each with its files; a folder stands for its pages and then its programs.
SECTIONS = (
    ("Tutorials", "tutorials", (
        "docs/tutorials/separator.md", "docs/tutorials/decimals.md", "docs/tutorials/memory.md",
        "docs/tutorials/python.md", "docs/tutorials/host.md", "docs/tutorials")),
    ("Manuals", "manuals", ("docs/numerics.md", "docs/c.md", "docs/fortran.md", "docs/python.md",
                            "standin/README.md", "docs/platforms.md")),
    ("Hosts", "hosts", ("docs/host-contract.md",)),
    ("Solvers and examples", "solvers", (
        "solvers/zero_half/README.md", "solvers/fortran_covering/README.md",
        "examples/minimal", "examples/vectors", "examples/separator", "examples/c",
        "examples/fortran", "examples/python")),
    ("Benchmarks", "benchmarks", (
        "docs/benchmarks.md", "docs/solver_benchmarks.md", "benchmarks/README.md")),
    ("The project", "project", (
        "CHANGELOG.md", "CONTRIBUTING.md", "SECURITY.md", "docs/testing.md", "packaging/README.md",
        "bindings/python/README.md", "src/debugger/README.md", "tests/binary/abi/README.md",
        "tools/analysis/README.md", "tools/coverage/README.md", "tools/identity/README.md",
        "tools/mutation/README.md")),
)
LANGUAGES = {".cpp": "cpp", ".c": "c", ".hpp": "cpp", ".h": "c", ".py": "py", ".f90": "f90"}
LINK = re.compile(r"(!?)\[([^\]]*)\]\(([^)\s]+)\)")
IMAGES = (".svg", ".png")


class Site:
    """Which files are pages, and under which identifier."""

    def __init__(self, root, names):
        self.root = root
        self.names = names
        self.ids = {pathlib.Path("README.md"): "index"}
        self.folders = {}
        self.images = set()
        self.sections = []
        shown = set()
        for title, identifier, wanted in SECTIONS:
            files = list(dict.fromkeys(
                path for each in wanted for path in self.expand(pathlib.Path(each))))
            self.sections.append((title, identifier, files))
            shown.update(files)
        rest = [path.relative_to(root) for path in sorted((root / "docs").glob("*.md"))
                if path.relative_to(root) not in shown]
        self.sections[1][2].extend(rest)
        for _, _, files in self.sections:
            for path in files:
                self.ids[path] = "page_" + re.sub(r"\W+", "_", str(path.with_suffix("")))

    def expand(self, path):
        full = self.root / path
        if full.is_file():
            return [path]
        if not full.is_dir():
            return []
        pages = [page.relative_to(self.root) for page in sorted(full.glob("*.md"))]
        if path.parts[0] == "examples":
            self.folders[path] = True
            return [path]
        return pages

    def page_of(self, path):
        """The identifier of the page for a file or folder of the project, or None."""
        for candidate in (path, path / "README.md"):
            if candidate in self.ids:
                return self.ids[candidate]
        if path.suffix in LANGUAGES and path.parent in self.ids:
            return self.ids[path.parent]
        return None


def slug(heading):
    """The anchor that a heading has on the usual hosts of Markdown."""
    text = re.sub(r"[`*_]|\[([^\]]*)\]\([^)]*\)", r"\1", heading).lower()
    return re.sub(r" ", "-", re.sub(r"[^\w\- ]", "", text)).strip("-")


def anchor(page, heading):
    return f"{page}--{slug(heading)}"


def fail(sentence):
    sys.exit(f"docs: {sentence}")


def title_of(site, path):
    """The title of a page."""
    if path in site.folders:
        return f"Example: {path.name}"
    found = re.search(r"^# (.*?)\s*$", (site.root / path).read_text(encoding="utf-8"), re.M)
    return re.sub(r"`", "", found[1]) if found else fail(f"{path} has no title")


def link_target(site, path, target):
    """The target on the site of a link on a page; None for a file that only a checkout has."""
    if re.match(r"[a-z]+:", target):
        return target
    file, _, fragment = target.partition("#")
    wanted = pathlib.Path(os.path.normpath(path.parent / file)) if file else path
    if not (site.root / wanted).exists():
        fail(f"{path} links to {target}, which does not exist")
    page = site.page_of(wanted)
    if page is not None:
        return f"@ref {page}--{fragment}" if fragment else f"@ref {page}"
    if wanted.name in site.names:
        return f"@ref {wanted.name}"
    if wanted.suffix in IMAGES:
        site.images.add(wanted)
        return wanted.name
    return None


def linked_text(site, path, text):
    """One line outside of code: links, and code style that names something."""
    def link(found):
        target = link_target(site, path, found[3])
        return found[2] if target is None else f"{found[1]}[{found[2]}]({target})"

    def code(found):
        name = found[1]
        if name in site.names:
            return f"<code>{reference(site.names[name], name)}</code>"
        if name.startswith("zktarn/") and pathlib.Path(name).name in site.names:
            return f'<code>@ref {pathlib.Path(name).name} "{name}"</code>'
        page = site.page_of(pathlib.Path(name)) if "/" in name or name.endswith(".md") else None
        if page is not None and page != site.ids.get(path):
            return f'<code>@ref {page} "{name}"</code>'
        return found[0]

    parts = re.split(r"(!?\[[^\]]*\]\([^)\s]+\))", text)
    for i, part in enumerate(parts):
        if i % 2:
            parts[i] = LINK.sub(link, part)
        else:
            pieces = re.split(r"(`[^`]+`)", part)
            for k, piece in enumerate(pieces):
                if k % 2 == 0:
                    pieces[k] = re.sub(r"([@\\])(?=\w)", r"\\\1", piece)
                else:
                    pieces[k] = re.sub(r"`([^`]+)`", code, piece)
                    # In code style Doxygen would show the backslash of a bar in a table.
                    if r"\|" in pieces[k]:
                        pieces[k] = f"<code>{pieces[k].strip('`')}</code>".replace("--", r"\--")
            parts[i] = "".join(pieces)
    return "".join(parts)


def page_text(site, path):
    """The page of a Markdown file."""
    identifier = site.ids[path]
    out, fence = [], None
    titled = False
    seen = {}
    previous_blank = True
    for line in (site.root / path).read_text(encoding="utf-8").splitlines():
        opening = re.match(r"(\s*)(`{3,})(\w*)", line)
        if opening and (fence is None or opening[2] == fence):
            fence = opening[2] if fence is None else None
            out.append(line)
        elif fence is not None:
            out.append(line)
        elif heading := re.match(r"(#+) (.*?)\s*$", line):
            label = anchor(identifier, heading[2])
            seen[label] = seen.get(label, -1) + 1
            if not titled:
                label, titled = identifier, True
            elif seen[label]:
                label = f"{label}-{seen[label]}"
            name = "" if label == "index" else f" {{#{label}}}"
            out.append(f"{heading[1]} {re.sub(r'`', '', heading[2])}{name}")
        elif line.startswith("    ") and (previous_blank or out and out[-1].startswith("    ")):
            out.append(line)
        elif re.match(r"<!-- ", line):
            out.append("")
        else:
            out.append(linked_text(site, path, line))
        previous_blank = not line.strip()
    if fence is not None:
        fail(f"{path} has a code block without an end")
    return "\n".join(out) + "\n"


def folder_text(site, path):
    """The page of an example: its programs."""
    out = [f"# Example: {path.name} {{#{site.ids[path]}}}", ""]
    for file in sorted((site.root / path).iterdir()):
        if file.suffix in LANGUAGES:
            out += [f"`{path / file.name}`", "", f"```{{.{LANGUAGES[file.suffix]}}}",
                    file.read_text(encoding="utf-8").rstrip(), "```", ""]
    return "\n".join(out) + "\n"


def section_text(site, title, identifier, files):
    out = [f"# {title} {{#{identifier}}}", ""]
    for path in files:
        out.append(f"- @subpage {site.ids[path]}")
    return "\n".join(out) + "\n"


def reference_text(site, others):
    """The table of all procedures in every language. `others` maps a language to its links by name."""
    purposes = dict(re.findall(r"^\| `(\w+)` \| `zktarn/[^|]*\| (.*?) \|$",
                               (site.root / "README.md").read_text(encoding="utf-8"), re.M))
    out = ["# Reference {#reference}", "",
           "The C++ headers hold the contract of every procedure. The other languages give the signature,",
           "what differs, and a link to it. A dash stands for a procedure that a language does not need: in",
           "Python, NumPy allocates, copies and initialises. Conventions that all procedures share: "
           "<code>@ref types.hpp \"zktarn/types.hpp\"</code>.", "",
           "Further headers: " + ", ".join(
               f"<code>@ref {name}</code>" for name in
               ("owners.hpp", "stored_value.hpp", "function_ref.hpp", "version.hpp", "check.hpp")) + ".", "",
           "Hosts: " + ", ".join(f"<code>@ref {name}</code>" for name in
                                 ("libzkoptimutil.hpp", "libut.hpp", "libqv.hpp", "libqvx.hpp"))
           + "; checks of a host: <code>@ref check_host.hpp</code>. The stand-in: "
           "<code>@ref control.hpp</code>, <code>@ref records.hpp</code>.", ""]
    languages = list(others)
    previous = None
    for module, name in exported(site.root):
        if module != previous:
            out += ["", f"## {module} {{#reference--{module}}}", "",
                    f"{reference('zktarn::' + module, module)}: {purposes.get(module, '')}", "",
                    "| C++ | " + " | ".join(languages) + " |", "|---|" + "---|" * len(languages)]
            previous = module
        cells = [others[language].get(name.lstrip("_"), "-") for language in languages]
        out.append(f'| @ref zktarn::{module}::{name} "{name}" | ' + " | ".join(cells) + " |")
    return "\n".join(out) + "\n"
