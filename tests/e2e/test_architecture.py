"""What ARCHITECTURE.md promises of the code as a whole: its libraries and their includes, and how text gets out."""

import pathlib
import re

ROOT = pathlib.Path(__file__).parents[2]
SRC = ROOT / "src"


def built():
    """The libraries of the build: name -> (folder, names of those it depends on)."""
    libraries = {}
    for build in SRC.glob("**/CMakeLists.txt"):
        for name, words in re.findall(r"^quorva_library\((\w+)(.*?)\)", build.read_text(), re.M | re.S):
            depends = re.search(r"\bDEPENDS\b(.*?)(?:\bPACKAGES\b|$)", words, re.S)
            libraries[name] = (str(build.parent.relative_to(SRC)),
                               set(depends[1].split()) if depends else set())
    return libraries


def described():
    """The same, as ARCHITECTURE.md has it."""
    table = (ROOT / "ARCHITECTURE.md").read_text().partition("| Library | Folder")[2]
    rows = [[cell.strip() for cell in row.strip("|").split("|")]
            for row in table.partition("\n\n")[0].splitlines()[2:]]
    return {name: (folder, set(re.findall(r"\w+", depends))) for name, folder, depends, _ in rows}


def included(libraries):
    """The libraries whose headers each library includes: name -> {library: one of the files}."""
    owners = {folder: name for name, (folder, _) in libraries.items()}
    result = {}
    for name, (folder, _) in libraries.items():
        result[name] = {}
        for file in [*(SRC / folder).glob("*.h"), *(SRC / folder).glob("*.cpp")]:
            for header in re.findall(r'^\s*#include "([^"]+)/[^"/]+"', file.read_text(), re.M):
                assert header in owners, f"{file}: no library has {header}"
                result[name].setdefault(owners[header], file.relative_to(ROOT))
    return result


def reach(depends, name):
    """A library and all that it depends on, directly or not."""
    seen, pending = set(), [name]
    while pending:
        library = pending.pop()
        if library not in seen:
            seen.add(library)
            pending += depends[library]
    return seen


def test_the_table_of_libraries_is_that_of_the_build():
    assert described() == built()


def test_every_include_follows_the_dependencies_and_every_dependency_serves_one():
    libraries = built()
    includes = included(libraries)
    depends = {name: needs for name, (_, needs) in libraries.items()}

    def outside(edges):
        return [f"{file}: {name} does not depend on {other}" for name in libraries
                for other, file in includes[name].items() if other not in reach(edges, name)]

    assert not outside(depends)
    unused = [f"{name} -> {needed}" for name, needs in depends.items() for needed in needs
              if not outside({**depends, name: needs - {needed}})]
    assert not unused, "no include needs these dependencies"


def test_only_printable_text_reaches_a_terminal():
    """The stand-ins of the self-test talk to their parent through a pipe."""
    prints = re.compile(r"\bfmt::print\b|\bf?printf\(|\bf?puts\(|\bfwrite\(|std::c(out|err)\b")
    allowed = {SRC / "base/Printable.h", *(SRC / "platform/linux/drill").glob("*")}
    assert not [file for file in SRC.glob("**/*.[ch]*")
                if file not in allowed and prints.search(file.read_text())]
