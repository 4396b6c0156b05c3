"""tools/check_layers: what it lets pass and what it catches, on trees of one file."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "check_layers"


def run(path, line):
    """Exit code and output for a tree whose one file holds the line as its second."""
    with tempfile.TemporaryDirectory() as src:
        file = Path(src) / path
        file.parent.mkdir(parents=True)
        file.write_text("// first\n" + line + "\n", encoding="utf-8")
        done = subprocess.run([sys.executable, TOOL, src], capture_output=True, text=True, check=False)
        return done.returncode, done.stdout.replace(src + "/", "")


class CheckLayers(unittest.TestCase):
    def test_allowed(self):
        for path, line in [
            ("xml/A.cpp", '#include "base/Text.h"'),
            ("xml/A.cpp", '#include "xml/B.h"'),
            ("agent/A.cpp", '#include "engine/document/Document.h"'),  # through actions
            ("engine/render/A.cpp", "#include <qpdf/QPDF.hh>"),
            ("base/A.cpp", "#include <vector>"),
            ("base/A.cpp", '#include "A.moc"'),
            ("desktop/A.h", "#include <QWidget>"),
            ("apps/agent/main.cpp", '#include "desktop/Tray.h"'),
            ("editor/edit/A.cpp", '#include "editor/edit/B.h"'),
            ("editor/assist/A.cpp", '#include "editor/text/B.h"'),  # several floors down
            ("editor/A.cpp", '#include "editor/assist/B.h"'),
            ("xml/parts/A.cpp", '#include "xml/B.h"'),  # no walls there
        ]:
            with self.subTest(path=path, line=line):
                self.assertEqual(run(path, line), (0, ""))

    def test_caught(self):
        for path, line, said in [
            ("base/A.cpp", '#include "xml/B.h"', 'base must not include "xml/B.h"'),
            ("xml/A.h", '  #  include "engine/B.h"', "engine is not below it"),
            ("editor/A.h", '#include "platform/B.h"', "platform is not below it"),
            ("bates/A.h", '#include "scripting/B.h"', "scripting is not below it"),
            ("editor/text/A.cpp", '#include "editor/place/B.h"', "editor/place is not below it"),
            ("editor/style/A.cpp", '#include "editor/B.h"', "beside the folders of editor is not below it"),
            ("editor/extra/A.cpp", '#include "editor/text/B.h"', "editor/extra is not a folder of the table"),
            ("engine/A.cpp", '#include "B.h"', "not written from src/"),
            ("engine/A.cpp", '#include "../base/Text.h"', "not written from src/"),
            ("actions/A.cpp", "#include <qpdf/QPDF.hh>", "for engine only"),
            ("actions/A.cpp", "#include <jsapi.h>", "for scripting only"),
            ("agent/A.cpp", "#include <QSqlQuery>", "for ledger only"),
            ("editor/A.cpp", "#include <QWidget>", "for apps and desktop only"),
        ]:
            with self.subTest(path=path, line=line):
                code, output = run(path, line)
                self.assertEqual(code, 1)
                self.assertTrue(output.startswith(path + ":2: "), output)
                self.assertIn(said, output)

    def test_unknown_folder(self):
        self.assertEqual(run("extra/A.cpp", "")[0], 1)


unittest.main()
