"""Converts the public names of the Python package for Doxygen.

Signatures are those of the stubs and modules; the texts are the docstrings, of which those of the
extension module are in its C++ sources. Nothing is built or imported.
"""

import ast
import re

from names import reference

PACKAGE = "bindings/python/zktarn"
# Doxygen keeps Python modules and C++ namespaces in one table, so the package has another name until the
# pages are written.
MODULE = "zktarn_python"
RAW = r'(?:R"\((.*?)\)"|((?:"(?:[^"\\]|\\.)*"\s*)+))'


def read(path):
    return path.read_text(encoding="utf-8")


def joined(raw, plain):
    """A string of C++: raw, or adjacent ordinary literals."""
    return raw or "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', plain)).replace("\\n", "\n")


def extension_texts(root):
    """The docstrings in the sources of the extension module, by name."""
    texts = {}
    for path in sorted((root / "bindings/python/src").rglob("*.cpp")):
        code = read(path)
        for name, raw, plain in re.findall(r"\b(\w+)_manual =\s*" + RAW, code, re.S):
            texts.setdefault("".join(word.capitalize() for word in name.split("_")), joined(raw, plain))
        for name, text in re.findall(r'R"\((\w+)\([^\n]*\n--\n\n(.*?)\)"', code, re.S):
            texts[name] = text
        for name, raw, plain in re.findall(r'\{"(\w+)",\s*(?:[\w<>&:]+(?:, &?[\w:]+>)?,\s*)*' + RAW, code, re.S):
            texts.setdefault(name, joined(raw, plain))
    return texts


def public_names(source):
    """The names of __all__ and the module that each is imported from."""
    tree = ast.parse(source)
    origins, names = {}, []
    for node in tree.body:
        if isinstance(node, ast.ImportFrom):
            for alias in node.names:
                origins[alias.asname or alias.name] = (node.module or "").split(".")[-1]
        elif isinstance(node, (ast.Assign, ast.AnnAssign)):
            target = node.targets[0] if isinstance(node, ast.Assign) else node.target
            if isinstance(target, ast.Name) and target.id == "__all__":
                names = [each.value for each in node.value.elts]
    return [(name, origins.get(name, "")) for name in names if not name.startswith("__")], ast.get_docstring(tree)


def definitions(source):
    """The last definition of each name of a module: overloads precede the function."""
    found = {}
    for node in ast.parse(source).body:
        if isinstance(node, (ast.ClassDef, ast.FunctionDef)):
            found[node.name] = node
        elif isinstance(node, ast.AnnAssign) and isinstance(node.target, ast.Name):
            found[node.target.id] = node
        elif isinstance(node, ast.Assign) and isinstance(node.targets[0], ast.Name):
            found[node.targets[0].id] = node
    return found


def comment(text, names, indent):
    """A docstring as comment: the first paragraph, the rest as it stands, links to the contract."""
    if not text.strip():
        return []
    first, _, rest = text.strip().partition("\n\n")
    lines = [" ".join(first.split())]
    if rest.strip():
        lines += ["", "@code{.unparsed}", *rest.rstrip().splitlines(), "@endcode"]
    links = []
    for listed in re.findall(r"C\+\+: ([\w:,;\s]+)", text):
        for name in re.findall(r"(?:\w+::)*(\w+)", listed):
            if name in names and names[name].count("::") > 1:
                links.append(reference(names[name], names[name]))
    if links:
        lines += ["", "In C++: " + ", ".join(dict.fromkeys(links)) + "."]
    return [f"{indent}##  " + lines[0].rstrip(), *(f"{indent}#   {line}".rstrip() for line in lines[1:])]


def signature(node):
    """The parameters, with the type aliases of the stub expanded."""
    text = ast.unparse(node.args)
    for alias, meaning in (("_Index", "int"), ("_Real", "float"), ("_Out", "Optional[NDArray]")):
        text = re.sub(rf"\b{alias}\b", meaning, text)
    return text


def parameters_of(node):
    """The parameters of a universal function, taken from the protocol in its stub."""
    for each in node.body:
        if isinstance(each, ast.FunctionDef) and each.name == "__call__":
            last = each
    return re.sub(r"^self, ", "", signature(last.args and last))


def described(name, text, names, indent, missing):
    """The comment of a public name. Records names without a docstring as missing."""
    if not text.strip():
        missing.append(name)
    return comment(text, names, indent)


def class_lines(node, texts, names, missing):
    """The members of a class, except those for the interpreter."""
    out, seen = [], set()
    for each in node.body:
        if isinstance(each, ast.FunctionDef) and not each.name.startswith("_") and each.name not in seen:
            seen.add(each.name)
            text = ast.get_docstring(each) or texts.get(each.name, "")
            decorators = [ast.unparse(d) for d in each.decorator_list]
            out += described(f"{node.name}.{each.name}", text, names, "    ", missing)
            if "property" in decorators:
                out += [f"    {each.name} = property()", ""]
            else:
                out += [f"    def {each.name}({signature(each)}):", "        pass", ""]
        elif isinstance(each, ast.AnnAssign) and not each.target.id.startswith("_"):
            out += [f"    ##  {ast.unparse(each.annotation)}", f"    {each.target.id} = None", ""]
    return out


def described_module(path, module):
    """A module whose docstring describes all of its names."""
    text = comment(ast.get_docstring(ast.parse(read(path))), {}, "")
    return "\n".join([f"##  @package {module}", *(line.replace("##", "#", 1) for line in text)]) + "\n"


def module_view(root, package, module, names):
    """One package: its docstring, then its public names. Returns the view and the names without a
    docstring, which Doxygen would not report."""
    missing = []
    listed, text = public_names(read(package / "__init__.py"))
    texts = extension_texts(root)
    sources = {}
    out = [f"##  @package {module}", *(line.replace("##", "#", 1) for line in comment(text, names, "")), ""]
    for name, origin in listed:
        if origin not in sources:
            files = [package / f"{origin}.py", package / f"{origin}.pyi", root / PACKAGE / f"{origin}.pyi"]
            path = next((file for file in files if file.is_file()), None)
            sources[origin] = definitions(read(path)) if path else {}
        node = sources[origin].get(name)
        if isinstance(node, ast.ClassDef):
            text = ast.get_docstring(node) or texts.get(name, "")
            out += described(name, text, names, "", missing)
            out += [f"class {name}:", *class_lines(node, texts, names, missing), "    pass", ""]
        elif isinstance(node, ast.FunctionDef):
            text = ast.get_docstring(node) or texts.get(name, "")
            out += described(name, text, names, "", missing)
            out += [f"def {name}({signature(node)}):", "    pass", ""]
        elif isinstance(node, ast.AnnAssign):
            protocol = sources[origin].get(ast.unparse(node.annotation))
            out += described(name, texts.get(name, ""), names, "", missing)
            out += [f"def {name}({parameters_of(protocol)}):" if protocol is not None else f"def {name}():",
                    "    pass", ""]
        elif isinstance(node, ast.Assign):
            out += [f"##  {ast.unparse(node.value)}", f"{name} = None", ""]
        else:
            missing.append(name)
    return "\n".join(out) + "\n", missing


def links_by_procedure(text, module):
    """The link to the first name of Python whose contract is a procedure of C++, by its name."""
    found = {}
    owner, described = "", []
    for line in text.splitlines():
        described += re.findall(r"@ref zktarn::\w+::_?(\w+)", line)
        if started := re.match(r"(class|def) (\w+)", line):
            owner = started[2] if started[1] == "class" else ""
            name = started[2]
        elif started := re.match(r"    (?:def )?(\w+)(?:\(| = )", line):
            name = f"{owner}.{started[1]}"
        else:
            continue
        for each in described:
            found.setdefault(each, f'@ref {module}::{name.replace(".", "::")} "{name}"')
        described = []
    return found
