#!/usr/bin/env python3
"""The checker of the tree must itself be able to fail: small trees, each with one breach or none."""
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
from check_tree import check

HEADER = "#pragma once\n"


class CheckTree(unittest.TestCase):
    def breaches(self, files):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            return list(check(Path(folder)))

    def expect(self, files, *breaches):
        self.assertEqual(self.breaches(files), list(breaches))

    def including(self, file, target):
        return {target: HEADER, file: f'#include "{target}"\n'}

    def test_what_stands_below_may_be_included(self):
        for file, target in [
            ("qel/db/node.cpp", "qel/utils/text.h"),
            ("qel/db/node.cpp", "qel/db/node.h"),
            ("tavo/animation/curve.cpp", "tavo/objects/object.h"),
            ("tavo/version.cpp", "tavo/tavo.h"),
            ("tavo/version.cpp", "tavo/extension/plugin.h"),
            ("plugins/bvh/reader.cpp", "tavo/tavo.h"),
            ("hosts/tavo/main.cpp", "plugins/bvh/reader.h"),
        ]:
            self.expect(self.including(file, target))

    def test_what_stands_above_or_beside_is_refused(self):
        for file, target, reason in [
            ("qel/utils/text.cpp", "qel/db/node.h", "qel/db does not stand below qel/utils"),
            ("qel/lua/state.cpp", "qel/widgets/canvas.h", "qel/widgets does not stand below qel/lua"),
            ("qel/widgets/loop.cpp", "tavo/app/application.h", "tavo/app does not stand below qel/widgets"),
            ("tavo/objects/object.cpp", "tavo/animation/curve.h", "tavo/animation does not stand below tavo/objects"),
            ("tavo/app/application.cpp", "tavo/tavo.h", "tavo does not stand below tavo/app"),
            ("tavo/extension/plugin.cpp", "plugins/bvh/reader.h", "plugins/bvh does not stand below tavo/extension"),
            ("plugins/bvh/reader.cpp", "plugins/gltf/reader.h", "plugins/gltf does not stand below plugins/bvh"),
            ("plugins/bvh/reader.cpp", "hosts/tavo/main.h", "hosts/tavo does not stand below plugins/bvh"),
            ("hosts/tavo/main.cpp", "hosts/studio/window.h", "hosts/studio does not stand below hosts/tavo"),
        ]:
            self.expect(self.including(file, target), f"{file}:1: {target}: {reason}")

    def test_angle_brackets_hide_nothing(self):
        files = {"qel/utils/text.cpp": "\n#  include <qel/db/node.h>\n"}
        self.expect(files, "qel/utils/text.cpp:2: qel/db/node.h: qel/db does not stand below qel/utils")

    def test_every_folder_has_a_floor(self):
        self.expect({"tavo/attic/old.cpp": ""}, "tavo/attic/old.cpp: tavo/attic has no floor")

    def test_the_root_is_the_include_root(self):
        files = {"qel/db/node.h": HEADER, "qel/db/node.cpp": '#include "node.h"\n'}
        self.expect(files, "qel/db/node.cpp:1: node.h: is not a file under the root")

    def test_the_core_needs_no_display(self):
        for target, reason in [
            ("wx/frame.h", "is not one of wxBase's headers"),
            ("wx/glcanvas.h", "is not one of wxBase's headers"),
            ("GL/gl.h", "needs a display"),
            ("gtk/gtk.h", "needs a display"),
        ]:
            file = "tavo/app/application.cpp"
            self.expect({file: f"#include <{target}>\n"}, f"{file}:1: {target}: {reason}")
            self.expect({"hosts/studio/window.cpp": f"#include <{target}>\n"})
        self.expect({"qel/utils/library.cpp": "#include <wx/dynlib.h>\n#include <vector>\n"})

    def test_long_files_are_refused_and_tables_are_not(self):
        self.expect({"qel/db/node.cpp": "\n" * 900, "qel/db/node_tables.cpp": "\n" * 2000})
        self.expect({"qel/db/node.cpp": "\n" * 901}, "qel/db/node.cpp: 901 lines, more than 900")
        self.expect({"tests/db/help.h": HEADER + "\n" * 600}, "tests/db/help.h: 601 lines, more than 600")

    def test_headers_are_read_once(self):
        self.expect({"qel/db/node.h": ""}, "qel/db/node.h: no #pragma once")

    def test_links_lead_somewhere(self):
        page = "[a](docs/a.md#top) [web](https://example.org) ![p](p.svg) [here](#here)"
        self.expect({"README.md": page, "docs/a.md": "", "p.svg": ""})
        self.expect({"README.md": page, "docs/a.md": ""}, "README.md: p.svg leads nowhere")


if __name__ == "__main__":
    unittest.main()
