"""The module under test, imported with the embedded renderer's diagnostics silenced."""

import os

# Many tests hand the renderer nonsense on purpose. The library may read this when it is loaded.
os.environ["VANTOR_DIAGNOSTICS"] = "silent"

import vantorPM  # noqa: E402,F401
