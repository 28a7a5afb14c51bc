"""The declarations for ctypes say what sfx/sfx.h says."""

import ctypes
import re
import subprocess

from conftest import ROOT
from specialeffects import _libsfx

HEADER = (ROOT / "sfx" / "sfx.h").read_text(encoding="utf-8")
CODE = re.sub(r"/\*.*?\*/", "", HEADER, flags=re.DOTALL)
STRUCTURES = {
    "sfx_choice": _libsfx.Choice,
    "sfx_property_info": _libsfx.PropertyInfo,
    "sfx_effect_info": _libsfx.EffectInfo,
    "sfx_preset_info": _libsfx.PresetInfo,
    "sfx_picture": _libsfx.Picture,
}


def test_every_function_is_declared_with_its_parameters():
    found = re.findall(r"SFX_API [^;]*?(sfx_\w+)\(([^;]*?)\) SFX_NOEXCEPT;", CODE)
    parameters = {name: 0 if text == "void" else text.count(",") + 1 for name, text in found}
    assert parameters == {name: len(arguments) for name, (_, arguments) in _libsfx.FUNCTIONS.items()}


def test_every_constant_has_its_value():
    constants = dict(re.findall(r"\bSFX_(\w+) = (-?\d+)", CODE))
    constants |= dict(re.findall(r"#define SFX_(FORMAT_COUNT|MAX_SIDE|VALUE_SIZE) (\d+)", CODE))
    assert len(constants) > 30
    assert {name: int(value) for name, value in constants.items()} == {
        name: getattr(_libsfx, name, None) for name in constants
    }


def test_structures_have_the_compilers_layout(tmp_path):
    lines = []
    for name, structure in STRUCTURES.items():
        lines.append(f'printf("%zu\\n", sizeof({name}));')
        lines += [f'printf("%zu\\n", offsetof({name}, {field[0]}));' for field in structure._fields_]
    source = tmp_path / "layout.c"
    source.write_text(f"#include <stdio.h>\n#include <sfx/sfx.h>\nint main(void) {{ {' '.join(lines)} }}\n")
    subprocess.run(["cc", "-I", ROOT, "-o", tmp_path / "layout", source], check=True)
    printed = subprocess.run([tmp_path / "layout"], check=True, capture_output=True, text=True).stdout
    expected = []
    for structure in STRUCTURES.values():
        expected.append(ctypes.sizeof(structure))
        expected += [getattr(structure, field[0]).offset for field in structure._fields_]
    assert [int(number) for number in printed.split()] == expected


def test_no_time_is_the_headers():
    assert re.search(r"#define SFX_NO_TIME INT64_MIN\b", CODE)
    assert _libsfx.NO_TIME == -(2**63)
