"""The list of effects and presets."""

import inspect

import pytest

import specialeffects
from specialeffects import _libsfx


def test_lists_all_effects_with_their_properties():
    effects = specialeffects.effects()
    assert len(effects) == _libsfx.lib.sfx_effect_count() == 63
    for info in effects:
        assert info.id and info.title and info.description
        assert specialeffects.find(info.guid) is info
    rain = specialeffects.find("Rain")
    assert [p.attribute for p in rain.properties] == ["drop_period", "drop_size"]
    size = rain.properties[1]
    assert (size.type, size.minimum, size.maximum, size.start) == ("integer", 2, 16, 3)
    assert rain.moves and rain.uses_chance and rain.variant is None and rain.data_file is None
    assert specialeffects.find("clouds").data_file == "perlin.dat"
    assert specialeffects.find("sketch 2").variant is not None


def test_every_attribute_is_free_for_the_property():
    keywords = set(inspect.signature(specialeffects.Effect.__new__).parameters)
    for info in specialeffects.effects():
        for p in info.properties:
            assert p.attribute.isidentifier()
            assert p.attribute not in keywords
            assert not hasattr(specialeffects.Effect, p.attribute)
            assert not hasattr(specialeffects.Link, p.attribute)


def test_an_unknown_name_gets_the_librarys_text():
    with pytest.raises(specialeffects.UnknownNameError, match="sepia"):
        specialeffects.find("sepla")
    with pytest.raises(LookupError):
        specialeffects.find("sepla")
    with pytest.raises(ValueError, match="null character"):
        specialeffects.find("sepia\0")


def test_presets_are_effects(tmp_path):
    shipped = specialeffects.presets()
    assert shipped and not any(preset.is_user for preset in shipped)
    for preset in shipped:
        assert str(specialeffects.Effect(f"preset:{preset.id}")) == str(specialeffects.Effect(preset.effect))

    file = tmp_path / "own.ini"
    file.write_text("[python-test]\ntitle = Test\ndescription = A test.\neffect = sepia+rain:drop-size=9\n")
    specialeffects.load_presets(file)
    own = next(preset for preset in specialeffects.presets() if preset.id == "python-test")
    assert own.is_user and own.title == "Test"
    assert len(specialeffects.Effect("preset:python-test").links) == 2

    file.write_text("[python-test]\neffect = nothing-known\n")
    with pytest.raises(specialeffects.InvalidValueError, match="own.ini"):
        specialeffects.load_presets(file)
    with pytest.raises(specialeffects.FileError):
        specialeffects.load_presets(tmp_path / "none.ini")


def test_the_version_is_the_librarys():
    assert specialeffects.__version__ == _libsfx.lib.sfx_version_text().decode()
