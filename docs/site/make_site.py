#!/usr/bin/env python3
"""Writes the site.

    make_site.py ROOT WORK SITE

Reads the project in ROOT, keeps what Doxygen reads in WORK, and writes the pages into SITE. Fails on
any warning of Doxygen, which is then printed with the file of the project.
"""

import pathlib
import re
import shutil
import subprocess
import sys

sys.dont_write_bytecode = True

import names as public  # noqa: E402
import pages  # noqa: E402
import python_view  # noqa: E402
import views  # noqa: E402

HERE = pathlib.Path(__file__).resolve().parent
HEADERS = (("src", "src/zktarn"), ("standin/include", "standin/include"),
           ("conformance/include", "conformance/include"))
THEME = pathlib.Path("/usr/share/doxygen-awesome-css")
ZERO_HALF = f"{python_view.MODULE}_zero_half"
HOST = f"{python_view.MODULE}_host"
STYLES = ("doxygen-awesome.css", "doxygen-awesome-sidebar-only.css",
          "doxygen-awesome-sidebar-only-darkmode-toggle.css")
SCRIPTS = ("doxygen-awesome-darkmode-toggle.js", "doxygen-awesome-fragment-copy-button.js",
           "doxygen-awesome-paragraph-link.js", "doxygen-awesome-interactive-toc.js")


def fail(sentence):
    sys.exit(f"docs: {sentence}")


def doxygen(settings, work, name):
    """Runs Doxygen with the site's settings, changed by `settings`."""
    file = work / name
    lines = [(HERE / "Doxyfile").read_text(encoding="utf-8")]
    lines += [f'{key} = {value}' for key, value in settings.items()]
    file.write_text("\n".join(lines) + "\n", encoding="utf-8")
    try:
        return subprocess.run(["doxygen", file.name], cwd=work, capture_output=True, text=True, check=False)
    except OSError as error:
        return fail(f"Doxygen cannot be run: {error.strerror}")


def read(path):
    try:
        return path.read_text(encoding="utf-8")
    except (OSError, UnicodeDecodeError) as error:
        return fail(f"{path} cannot be read: {error}")


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")


def cpp_headers(root):
    """Each public header, with its path as programs include it."""
    for include_root, folder in HEADERS:
        for path in sorted((root / folder).rglob("*.hpp")):
            if "detail" not in path.relative_to(root).parts:
                yield path, path.relative_to(root / include_root)


def write_cpp(root, folder, names):
    spaces = {}
    for path, _ in cpp_headers(root):
        found = re.search(r"^namespace ([\w:]+) \{", read(path), re.M)
        spaces[path] = found[1] if found else ""
    for path, included in cpp_headers(root):
        space = spaces[path]
        sole = space.count("::") == 1 and list(spaces.values()).count(space) == 1
        write(folder / included, views.cpp_view(read(path), included, names, sole))
    described = {"zktarn": "The library. Conventions that hold for every procedure: types.hpp."}
    for space in sorted(set(spaces.values())):
        if space and list(spaces.values()).count(space) > 1:
            listed = ", ".join(f"@ref {path.name}" for path, where in spaces.items() if where == space)
            described.setdefault(space, f"What these headers declare: {listed}.")
    write(folder / "namespaces.hpp", "".join(
        f"/// @namespace {space}\n/// {text}\n\n" for space, text in described.items()))


def write_other_languages(root, folder, names):
    for header in ("zktarn_util.h", "zktarn_standin.h"):
        text = views.c_view(read(root / "bindings/c/include" / header), header, names)
        write(folder / "c" / header, text)
    for module in sorted((root / "bindings/fortran").glob("*.f90")):
        write(folder / "fortran" / module.name, views.fortran_view(read(module), names))


def write_python(root, folder, names):
    """Writes both packages. Returns the links to names with a contract in C++, and the undocumented names."""
    package = root / python_view.PACKAGE
    links, undescribed = {}, []
    for source, module in ((package, python_view.MODULE), (package / "zero_half", ZERO_HALF)):
        if (source / "__init__.py").is_file():
            text, missing = python_view.module_view(root, source, module, names)
            undescribed += [f"{source.relative_to(root)}: warning: {name} has no docstring" for name in missing]
            write(folder / "python" / f"{module}.py", text)
            links.update(python_view.links_by_procedure(text, module))
    if (package / "host.py").is_file():
        write(folder / "python" / f"{HOST}.py", python_view.described_module(package / "host.py", HOST))
    return links, undescribed


def name_python(target):
    """Restores the names of the Python packages in the pages; file names stay as Doxygen wrote them."""
    for path in [*target.rglob("*.html"), *target.rglob("*.js")]:
        text = read(path)
        if python_view.MODULE in text:
            text = re.sub(rf'([">]){python_view.MODULE}(["<])', r"\1zktarn (Python)\2", text)
            for module, name in ((ZERO_HALF, "zktarn.zero_half"), (HOST, "zktarn.host"),
                                 (python_view.MODULE, "zktarn")):
                text = text.replace(module, name)
            write(path, text)


def language_links(root, folder, python):
    """For each language, the link to a procedure by its C++ name."""
    c_text = read(folder / "c/zktarn_util.h")
    c = {name: f'@ref zktarn_{name} "zktarn_{name}"'
         for name in re.findall(r"\bzktarn_(\w+)\([^*]", c_text)}
    fortran = {}
    for module in sorted((folder / "fortran").glob("*.f90")):
        text = read(module)
        for name in re.findall(r"^    end (?:function|subroutine) (\w+)", text, re.M):
            fortran.setdefault(name, f'@ref {module.stem}::{name} "{name}"')
    return {"C": c, "Fortran": fortran, "Python": python}


def layout(site, work):
    """The navigation: the sections of the site, then the reference."""
    default = work / "default_layout.xml"
    subprocess.run(["doxygen", "-l", default.name], cwd=work, check=True, capture_output=True)
    text = read(default)
    tabs = ['    <tab type="mainpage" visible="yes" title="Start"/>']
    for title, identifier, files in site.sections:
        if files:
            tabs.append(f'    <tab type="usergroup" visible="yes" url="@ref {identifier}" title="{title}">')
            tabs += [f'      <tab type="user" visible="yes" url="@ref {site.ids[path]}" '
                     f'title="{pages.title_of(site, path)}"/>' for path in files]
            tabs.append("    </tab>")
    tabs += ['    <tab type="user" visible="yes" url="@ref reference" title="Reference"/>',
             '    <tab type="namespacelist" visible="yes" title="Modules of C++, Fortran and Python"/>',
             '    <tab type="classlist" visible="yes" title="Records and classes"/>',
             '    <tab type="filelist" visible="yes" title="Headers"/>',
             '    <tab type="globals" visible="yes" title="Names of C, macros"/>']
    text = re.sub(r"<navindex>.*</navindex>", "<navindex>\n" + "\n".join(tabs) + "\n  </navindex>",
                  text, flags=re.S)
    write(work / "layout.xml", text)


def header(work):
    """The head of every page: Doxygen's own, and the scripts of the theme."""
    subprocess.run(["doxygen", "-w", "html", "header.html", "footer.html", "style.css"], cwd=work,
                   check=True, capture_output=True)
    text = read(work / "header.html")
    scripts = "".join(f'<script type="text/javascript" src="$relpath^{name}"></script>\n' for name in SCRIPTS)
    scripts += ('<script type="text/javascript">\nDoxygenAwesomeDarkModeToggle.init();\n'
                "DoxygenAwesomeFragmentCopyButton.init();\nDoxygenAwesomeParagraphLink.init();\n"
                "DoxygenAwesomeInteractiveToc.init();\n</script>\n")
    if "</head>" not in text:
        fail("Doxygen's header has no end of its head")
    write(work / "header.html", text.replace("</head>", scripts + "</head>"))


def version(root):
    text = read(root / "src/zktarn/version.hpp")
    return ".".join(re.search(rf"ZKTARN_VERSION_{part} (\d+)", text)[1] for part in ("MAJOR", "MINOR", "PATCH"))


def main():
    if len(sys.argv) != 4:
        fail("usage: make_site.py ROOT WORK SITE")
    root, work, target = (pathlib.Path(each).resolve() for each in sys.argv[1:])
    if not THEME.is_dir():
        fail(f"the theme is not in {THEME}; Debian's package is doxygen-awesome-css")
    for folder in (work, target):
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
    # The public names of C++, by a first run over the headers alone.
    write_cpp(root, work / "first", {})
    doxygen({"INPUT": "first", "GENERATE_HTML": "NO", "GENERATE_TAGFILE": "names.tag", "HAVE_DOT": "NO",
             "WARN_IF_UNDOCUMENTED": "NO", "WARN_AS_ERROR": "NO"}, work, "first.doxyfile")
    names = public.read_tags(work / "names.tag")
    linked = public.linked(names)
    folder = work / "input"
    write_cpp(root, folder / "cpp", linked)
    write_other_languages(root, folder, names)
    python, undescribed = write_python(root, folder, names)
    site = pages.Site(root, linked)
    write(folder / "README.md", pages.page_text(site, pathlib.Path("README.md")))
    for title, identifier, files in site.sections:
        if not files:
            continue
        write(folder / "sections" / f"{identifier}.md", pages.section_text(site, title, identifier, files))
        for path in files:
            text = pages.folder_text(site, path) if path in site.folders else pages.page_text(site, path)
            write(folder / "pages" / f"{site.ids[path]}.md", text)
    write(folder / "sections/reference.md", pages.reference_text(site, language_links(root, folder, python)))
    layout(site, work)
    header(work)
    styles = " ".join(str(THEME / name) for name in STYLES) + f" {HERE / 'site.css'}"
    ran = doxygen({"INPUT": "input", "PROJECT_NUMBER": version(root), "OUTPUT_DIRECTORY": target.parent,
                   "HTML_OUTPUT": target.name, "LAYOUT_FILE": "layout.xml", "HTML_HEADER": "header.html",
                   "HTML_EXTRA_STYLESHEET": styles, "STRIP_FROM_PATH": f"{folder} {folder / 'cpp'}",
                   "STRIP_FROM_INC_PATH": f"{folder / 'cpp'} {folder / 'c'}",
                   "IMAGE_PATH": " ".join(sorted({str((root / each).parent) for each in site.images})),
                   "HTML_EXTRA_FILES": " ".join(str(THEME / name) for name in SCRIPTS)},
                  work, "site.doxyfile")
    name_python(target)
    for image in sorted(site.images):
        shutil.copy(root / image, target)
    warnings = undescribed + [line.replace(f"{folder}/", "") for line in (ran.stdout + ran.stderr).splitlines() if line.strip()]
    for line in warnings:
        print(line)
    count = sum(": warning: " in line or ": error: " in line or "warning:" in line[:9] for line in warnings)
    print(f"{count} warnings")
    if ran.returncode != 0 or warnings:
        sys.exit(1)


if __name__ == "__main__":
    main()
