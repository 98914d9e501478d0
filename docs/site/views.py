"""Converts the sources for Doxygen, so that no source is written for Doxygen.

In every language a comment holds for the declarations that follow it without a blank line. In C,
Fortran and Python each declaration ends with a link to its contract, which is in C++.
"""

import re

from names import reference

# C++ ---------------------------------------------------------------------------------------------


def linked_comment(line, names):
    """Makes links of the paths of headers and of public names in code style."""
    line = re.sub(r"(?<![\w/`])zktarn/[\w/]+[.]hpp",
                  lambda found: reference(found[0].split("/")[-1], found[0])
                  if found[0].split("/")[-1] in names else found[0], line)
    return re.sub(r"`([A-Za-z_][\w.]*)`",
                  lambda found: f"<code>{reference(names[found[1]], found[1])}</code>"
                  if found[1] in names else found[0], line)


def depth_change(line):
    code = re.sub(r"//.*|\"(?:\\.|[^\"])*\"|'.'", "", line)
    return sum(code.count(c) for c in "{(") - sum(code.count(c) for c in "})")


def shared_comments(lines):
    """Encloses the declarations that share a comment in a group."""
    out, i = [], 0
    while i < len(lines):
        if not lines[i].lstrip().startswith("///"):
            out.append(lines[i])
            i += 1
            continue
        start = i
        while i < len(lines) and lines[i].lstrip().startswith("///"):
            i += 1
        indent = lines[start][:len(lines[start]) - len(lines[start].lstrip())]
        ends, depth, j = [], 0, i
        while j < len(lines) and (depth > 0 or is_declaration(lines[j])):
            depth += depth_change(lines[j])
            j += 1
            if depth == 0 and (lines[j - 1].rstrip().endswith((";", "}")) or is_macro(lines[j - 1])):
                ends.append(j)
            if depth < 0:
                break
        if len(ends) > 1:
            out += [f"{indent}/// @{{", *lines[start:ends[-1]], f"{indent}/// @}}"]
            i = ends[-1]
        else:
            out += lines[start:i]
    return out


def is_macro(line):
    return line.startswith("#define") and not line.endswith("\\")


def is_declaration(line):
    text = line.strip()
    if not text or text.startswith(("/", "}", "namespace", "public:", "private:", "protected:")):
        return False
    return not text.startswith("#") or text.startswith("#define")


def cpp_view(text, path, names, sole):
    """A header. Its opening comment describes the namespace if this is its only header (sole), and
    the file otherwise."""
    # Removes private members, because Doxygen would list private records.
    text = re.sub(r"^private:\n.*?(?=^};)", "", text, flags=re.M | re.S)
    lines = [re.sub(r"^///  (\d[.])", r"/// \1 ", linked_comment(line, names) if "///" in line else line)
             for line in text.splitlines()]
    first = next((i for i, line in enumerate(lines) if line.startswith("///")), None)
    if first is not None:
        last = first
        while lines[last + 1].startswith("///"):
            last += 1
        opening = lines[first:last + 1]
        if not sole:
            del lines[first:last + 1]
            lines[0:0] = [f"/// @file {path}", "///", *opening, ""]
        else:
            summary = re.split(r"(?<=[.])\s|\n\n", "\n".join(o[4:] for o in opening))[0]
            lines[0:0] = [f"/// @file {path}", "///", f"/// {' '.join(summary.split())}", ""]
    return "\n".join(shared_comments(lines)) + "\n"


# C -----------------------------------------------------------------------------------------------

INLINE = ("static inline", "ZKTARN_C_RESULT static inline")
C_COMMENT = re.compile(r"/\*(.*?)\*/", re.S)


def comment_text(text):
    return "\n".join(re.sub(r"^\s*\* ?", "", line) for line in text.strip().splitlines()).strip()


def c_items(text):
    """The comments, declarations and blank lines of a header, in order: kind and text."""
    text = re.sub(r"^#if defined\(ZKTARN_C_BUILDING\).*\n", "", text, flags=re.M)
    text = re.sub(r"^#else\n.*?^#endif$", "", text, flags=re.M | re.S)
    text = re.sub(r"^#ifdef __cplusplus\n.*?^#endif$", "", text, flags=re.M | re.S)
    text = re.sub(r"^#.*(?:\\\n.*)*$", "\n", text, flags=re.M)
    position = 0
    while position < len(text):
        rest = text[position:]
        if blank := re.match(r"\s+", rest):
            if blank[0].count("\n") > 1:
                yield "blank", ""
            position += blank.end()
        elif comment := C_COMMENT.match(rest):
            yield "comment", comment_text(comment[1])
            position += comment.end()
        else:
            end = declaration_end(rest)
            yield "declaration", rest[:end]
            position += end


def declaration_end(text):
    depth = 0
    for i, char in enumerate(re.sub(r"/\*.*?\*/", lambda c: " " * len(c[0]), text, flags=re.S)):
        depth += {"{": 1, "}": -1}.get(char, 0)
        if depth == 0 and (char == ";" or (char == "}" and text.startswith(INLINE))):
            return i + 1
    return len(text)


def c_name(declaration):
    if re.match(r"(typedef )?(struct|enum)\b", declaration):
        found = re.search(r"\}?\s*(\w+);$", declaration)
    elif declaration.startswith("typedef"):
        found = re.search(r"\(\*(\w+)\)", declaration) or re.search(r"(\w+);$", declaration)
    else:
        found = re.search(r"\b(zktarn_\w+)\(", declaration)
    return found[1] if found else ""


def in_cpp(name, names):
    """The C++ name behind a name of another language, or None."""
    bare = re.sub(r"^(zktarn_)?(standin_)?", "", name)
    for candidate in (bare, f"_{bare}", f"standin::{bare}", re.sub(r"_(one|many|short|long)$", "", bare),
                      f"_{re.sub(r'_(one|many)$', '', bare)}", f"{bare}_"):
        if candidate in names:
            return names[candidate]
    if re.fullmatch(r"[lir]\d_[12]d_array", bare):
        return names["host_array"]
    if (part := re.match(r"(?:array|call|answer|reply)_(\w+?)(?:_of)?$", bare)) is not None:
        for owner in ("array_value", "host_call", "answer"):
            if f"{owner}::{part[1]}" in names:
                return names[f"{owner}::{part[1]}"]
    return None


def contract(name, names):
    """A link to the contract; nothing for a name that C++ does not have."""
    qualified = in_cpp(name, names)
    return f"In C++: {reference(qualified, qualified)}." if qualified else ""


def c_member(line, struct, names):
    """A line of a struct or an enumeration, with its comment or a link."""
    found = re.match(r"(\s+)([^/]*?)\s*(?:/\*(.*?)\*/)?\s*$", line)
    if not found or not found[2]:
        return line
    name = re.search(r"\(\*(\w+)\)|(\w+)(?:\[\d+\])?(?: = [^,;]*)?[,;]?$", found[2])
    own = (found[3] or "").strip()
    bare = (name[1] or name[2]) if name else ""
    owner = (in_cpp(struct, names) or "").split("::")[-1]
    qualified = names.get(f"{owner}::{bare}") or in_cpp(re.sub(r"^zktarn_(op|fault|array|console)_", "",
                                                               bare), names)
    link = f"In C++: {reference(qualified, qualified)}." if qualified else ""
    if not link and bare.endswith("_length"):
        link = f"The length of `{bare.removesuffix('_length')}`."
    text = " ".join(part for part in (own[:1].upper() + own[1:] + "." if own else "", link) if part)
    return f"{found[1]}{found[2]} /**< {text} */" if text else line


def c_view(text, path, names):
    out, comment, section = [], "", ""
    opening = True
    for kind, item in c_items(text):
        if kind == "comment":
            if re.search(r"-{10}", item):
                section, comment = item, ""
            elif opening:
                out += [f"/** @file {path}", "", linked_comment(item, names), "*/"]
                opening = False
            else:
                comment = item
        elif kind == "blank":
            comment = ""
        else:
            name = c_name(item)
            item = re.sub(r"ZKTARN\w*_API |ZKTARN\w*_API\n|ZKTARN_C_RESULT ", "", item)
            link = contract(name, names)
            if "{" in item and not item.startswith(INLINE):
                lines = item.splitlines()
                item = "\n".join([lines[0], *(c_member(line, name, names) for line in lines[1:-1]),
                                  lines[-1]])
            if comment or link:
                out += ["/**", linked_comment(comment, names), "", link, "*/"]
            out += [item, ""]
    return "\n".join(out) + "\n"


# Fortran -----------------------------------------------------------------------------------------

# The enumeration of C++ by the first word of an enumerator.
ENUMERATIONS = {"op": "operation", "fault": "fault_kind", "array": "array_kind", "console": "console"}
PROCEDURE = re.compile(r"((?:^ +!>[^\n]*\n)*)^ +(?:pure )?(function|subroutine) (\w+)\(([^)]*)\)([^\n]*)\n"
                       r"(.*?)^ +end \2\b", re.M | re.S)
DECLARED = re.compile(r"^\s+((?:integer|real|character|type|procedure|logical)\b.*? :: .*)$", re.M)


def fortran_comment(text):
    return "\n".join(re.sub(r"^\s*!> ?", "", line) for line in text.strip().splitlines()).strip()


def documented(text, indent=4):
    """Lines of text as a comment of Fortran."""
    return [" " * indent + "!> " + line for line in text.splitlines()]


def fortran_view(text, names):
    """The public part of a module: types, constants, procedures and the forms of generic names."""
    head, opened, body = re.match(r"((?:!>[^\n]*\n)*)(module \w+\n)(.*)", text, re.S).groups()
    body = re.sub(r"&\s*\n\s*&?", "", body)
    listed = {name for line in re.findall(r"^ +public :: (.*)$", body, re.M)
              for name in re.findall(r"\w+", line)}
    out = [*documented(linked_comment(fortran_comment(head), names), 0), opened.rstrip(),
           "    implicit none"]
    out += fortran_constants(body, names)
    out += fortran_types(body, names)
    generics = {name: (comment, re.findall(r"\w+", re.sub(r"\b(module|procedure)\b", " ", members)))
                for comment, name, members in re.findall(
                    r"((?:^ +!>[^\n]*\n)*)^ +interface (\w+)\n(.*?)^ +end interface", body, re.M | re.S)
                if name in listed}
    form_of = {}
    for generic, (comment, members) in generics.items():
        for member in members:
            form_of.setdefault(member, (generic, fortran_comment(comment)))
    out.append("contains")
    seen = set()
    for comment, kind, name, arguments, rest, inner in PROCEDURE.findall(body):
        if name in seen or (name not in listed and name not in form_of):
            continue
        seen.add(name)
        generic, shared = form_of.get(name, ("", ""))
        if name in listed:
            generic = ""
        own = fortran_comment(comment) or shared
        bound = re.search(r'name="(\w+)"', rest)
        called = generic or name
        doc = "\n\n".join(part for part in (
            linked_comment(own, names), contract(bound[1] if bound else called, names)) if part)
        result = re.search(r"result\(\w+\)", rest)
        out += documented(doc)
        out.append(f"    {kind} {called}({arguments}){' ' + result[0] if result else ''}")
        wanted = set(re.findall(r"\w+", arguments)) | {name}
        if result:
            wanted.add(result[0][7:-1])
        for line in DECLARED.findall(inner):
            names_there = set(re.findall(r"\w+", line.split("::")[1]))
            if names_there & wanted:
                out.append("        " + (re.sub(rf"\b{name}\b", called, line) if generic else line))
        out += [f"    end {kind} {called}", ""]
    out.append("end module")
    return "\n".join(out) + "\n"


def fortran_constants(body, names):
    out = []
    for group in re.findall(r"^ +enum, bind\(c\)\n(.*?)^ +end enum", body, re.M | re.S):
        enumerators = re.findall(r"\w+", re.sub(r"enumerator ::", "", group))
        for value, name in enumerate(enumerators):
            link = contract(ENUMERATIONS[name.split("_")[0]], names)
            out += [*documented(link), f"    integer(c_int), parameter, public :: {name} = {value}"]
    for comment, declared in re.findall(
            r"((?:^ +!>[^\n]*\n)+(?:^ +.*parameter, public :: .*\n)+)()", body, re.M):
        lines = comment.splitlines()
        text = fortran_comment("\n".join(line for line in lines if "!>" in line))
        for line in lines:
            if "parameter, public" in line:
                kind, named = line.strip().split(" :: ")
                for each in re.split(r",\s*(?![^()]*\))", named):
                    out += [*documented(text), f"    {kind} :: {each}"]
    return out


def fortran_types(body, names):
    out = []
    previous = ""
    for comment, name, members in re.findall(
            r"((?:^ +!>[^\n]*\n)*)^ +type, bind\(c\), public :: (\w+)\n(.*?)^ +end type", body, re.M | re.S):
        previous = fortran_comment(comment) or previous
        link = contract(name, names)
        out += [*documented(f"{linked_comment(previous, names)}\n\n{link}"),
                f"    type, bind(c), public :: {name}"]
        owner = (in_cpp(name, names) or "").split("::")[-1]
        for line in members.splitlines():
            declared, member = line.strip().rsplit(" :: ", 1)
            bare = re.match(r"\w+", member)[0]
            qualified = names.get(f"{owner}::{bare}")
            doc = f"In C++: {reference(qualified, qualified)}." if qualified else link
            out += [*documented(doc, 8), f"        {declared} :: {member}"]
        out += ["    end type", ""]
    return out
