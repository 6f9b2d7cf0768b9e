"""scripts/check-layers must see each kind of violation, and nothing else."""
import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts", "check-layers")


class CheckLayers(unittest.TestCase):
    def check(self, **files):
        """Runs the check on a tree of files, given as folder__Name="include line"."""
        with tempfile.TemporaryDirectory() as src:
            for name, text in files.items():
                path = os.path.join(src, name.replace("__", "/") + ".h")
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "w", encoding="utf-8") as file:
                    file.write("#pragma once\n" + text + "\n")
            run = subprocess.run([sys.executable, SCRIPT, src], capture_output=True, text=True, check=False)
            return run.returncode, run.stdout

    def test_downward_includes_pass(self):
        status, output = self.check(
            platform__core__A="#include <vector>",
            platform__hardware__pipewire__B='#include "platform/core/A.h"\n#include <pipewire/pipewire.h>',
            engine__C='#include "platform/hardware/pipewire/B.h"\n#include <QObject>',
            ui__D='#include "engine/C.h"\n#include <QQuickItem>',
        )
        self.assertEqual((status, output), (0, "7 includes follow the layers\n"))

    def test_violations_are_named(self):
        lower = {"platform__core__A": "", "effects__E": "", "watchdog__W": "", "engine__N": "", "ui__model__M": ""}
        for at, include in [
            ("platform__dsp__X", '"effects/E.h"'),  # against the arrow
            ("devices__X", '"effects/E.h"'),  # sideways
            ("watchdog__X", '"engine/N.h"'),  # a program beyond its platform
            ("engine__X", '"watchdog/W.h"'),  # a program is no library
            ("engine__X", '"../effects/E.h"'),  # not from the source root
            ("engine__X", '"effects/Missing.h"'),
            ("engine__X", "<pipewire/stream.h>"),
            ("platform__hardware__X", "<spa/pod/pod.h>"),
            ("engine__X", "<nlohmann/json.hpp>"),
            ("platform__graph__X", "<QObject>"),
            ("platform__core__X", "<QtCore/QString>"),
            ("settings__state__X", "<QQmlEngine>"),
            ("elsewhere__X", "<vector>"),
            ("ui__logic__X", '"ui/model/M.h"'),  # against the arrow within a layer
            ("ui__dotmatrix__X", '"ui/model/M.h"'),
            ("effects__cores__X", '"effects/E.h"'),
        ]:
            with self.subTest(at=at, include=include):
                status, output = self.check(**lower, **{at: "#include " + include})
                self.assertEqual(status, 1)
                self.assertIn(at.replace("__", "/") + ".h:2: ", output)

    def test_an_empty_tree_is_no_success(self):
        self.assertEqual(self.check()[0], 1)


if __name__ == "__main__":
    unittest.main()
