"""The tree's own files, as the rules see them."""

import pathlib
import re
from dataclasses import dataclass, field

CODE_FOLDERS = ["Async", "Desktop", "Util", "Core", "UI", "App", "Platform", "Tests", "Bench"]
SCRIPT_FOLDERS = ["cmake", "scripts", "packaging", ".ci"]
DOCUMENT_FOLDERS = ["docs"]
TOP_FILES = ["run", "test", "package", "CMakeLists.txt", "README.md", "README.ja.md"]
TEXT_SUFFIXES = {".h", ".cpp", ".py", ".sh", ".cmake", ".txt", ".md", ".json", ".supp", ""}


@dataclass
class Source:
    path: str  # from the top of the tree, with "/"
    lines: list = field(default_factory=list)

    @property
    def suffix(self):
        return pathlib.PurePosixPath(self.path).suffix

    @property
    def is_code(self):
        return self.suffix in (".h", ".cpp")

    @property
    def is_product(self):
        return self.is_code and not self.path.startswith(("Tests/", "Bench/"))

    def below(self, *folders):
        return self.path.startswith(tuple(folder + "/" for folder in folders))

    def includes(self):
        """(line number, name as written without its brackets or quotes)"""
        for number, line in enumerate(self.lines, 1):
            match = re.match(r'\s*#\s*include\s*[<"]([^>"]+)[>"]', line)
            if match:
                yield number, match.group(1)


def without_comment(line):
    """Good enough for the rules: no string of ours holds two slashes that matter to them."""
    return line.split("//", 1)[0]


def read_tree(root):
    root = pathlib.Path(root)
    paths = [root / name for name in TOP_FILES]
    for folder in CODE_FOLDERS + SCRIPT_FOLDERS + DOCUMENT_FOLDERS:
        paths += sorted((root / folder).rglob("*"))
    result = []
    for path in paths:
        if path.is_file() and path.suffix in TEXT_SUFFIXES and "__pycache__" not in path.parts:
            text = path.read_text(encoding="utf-8")
            result.append(Source(path.relative_to(root).as_posix(), text.splitlines()))
    return result
