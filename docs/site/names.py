"""The public names of the C++ headers, which the other languages and the pages link to."""

import re
import xml.etree.ElementTree as xml

# Names of the stand-in that usually mean something else on a page, and so become no links.
AMBIGUOUS = {"answer", "begin", "block", "calls", "console", "end", "entry", "fault", "host", "inspect",
             "name", "operation", "owner", "record", "random", "reply", "report", "requests", "reset",
             "settings", "standin", "store", "stored", "summary", "util", "value", "zktarn"}


def read_tags(path):
    """Maps each name in Doxygen's tag file to its qualified name; a member is STRUCT::MEMBER."""
    names = {}
    for compound in xml.parse(path).getroot().iter("compound"):
        kind, name = compound.get("kind"), compound.findtext("name")
        if kind in ("struct", "class"):
            bare = name.split("<")[0].strip()
            names[bare.split("::")[-1]] = bare
            for member in compound.iter("member"):
                names[f"{bare.split('::')[-1]}::{member.findtext('name')}"] = \
                    f"{bare}::{member.findtext('name')}"
        elif kind == "namespace":
            names.setdefault(name.split("::")[-1], name)
            for member in compound.iter("member"):
                names.setdefault(member.findtext("name"), f"{name}::{member.findtext('name')}")
        elif kind == "file":
            names[name] = name
    return names


def linked(names):
    """The names that become links wherever a page shows them in code style."""
    return {name: qualified for name, qualified in names.items()
            if name not in AMBIGUOUS and "::" not in name}


def exported(root):
    """Module and name of each procedure that the library exports, by module."""
    text = (root / "tests/binary/abi/exports.golden").read_text(encoding="utf-8")
    found = set()
    for mangled in re.findall(r"^_ZN6zktarn(\w+)$", text, re.M):
        parts = []
        while mangled[0].isdigit():
            length, rest = re.match(r"(\d+)(.*)", mangled).groups()
            parts.append(rest[:int(length)])
            mangled = rest[int(length):]
        found.add(tuple(parts))
    return sorted(found, key=lambda pair: (pair[0], pair[1].lstrip("_")))


def reference(qualified, shown):
    """A link to a name, for Doxygen."""
    return f'@ref {qualified} "{shown}"'
