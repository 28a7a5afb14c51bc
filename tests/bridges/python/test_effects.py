"""Effects as objects: properties, errors, chains, threads."""

import copy
import gc
import pydoc
import threading
import time
import warnings
import weakref

import numpy
import pytest

import specialeffects
from conftest import noise, planes
from specialeffects import Chain, Effect

MANY_FRAMES = range(12)


def run(effect, count=6, size=(48, 64), **arguments):
    """The bytes of some frames that went through an effect."""
    return b"".join(effect(noise(*size, 3, seed=i), **arguments).tobytes() for i in range(count))


# ---- properties ------------------------------------------------------------------------------------


def test_properties_are_attributes_and_keywords():
    rain = Effect("rain", drop_size=9)
    assert (rain.drop_size, rain.drop_period) == (9, 1)
    rain.drop_period = numpy.int64(4)
    assert rain.drop_period == 4
    assert str(rain) == "rain:drop-period=4,drop-size=9"
    rain.set_defaults()
    assert str(rain) == "rain"


@pytest.mark.parametrize("info", specialeffects.effects(), ids=lambda info: info.id)
def test_every_property_reads_and_sets_in_its_type(info):
    effect = Effect(info.id)
    assert type(effect).__name__ != "Effect" and isinstance(effect, Effect)
    for p in info.properties:
        start = getattr(effect, p.attribute)
        if p.type == "integer":
            assert start == p.start
            values = [p.minimum, p.maximum]
        elif p.type == "boolean":
            assert start is bool(p.start)
            values = [True, False]
        elif p.type == "color":
            assert start == f"#{p.start:06x}"
            values = ["#102030"]
        else:
            ids = {choice.value: choice.id for choice in p.choices}
            values = [ids.get(number, number) for number in range(p.minimum, p.maximum + 1)]
            assert start == ids.get(p.start, p.start) and ids
        for value in values:
            setattr(effect, p.attribute, value)
            assert getattr(effect, p.attribute) == value
            assert type(getattr(effect, p.attribute)) is type(value)
        documentation = getattr(type(effect), p.attribute).__doc__
        assert p.description in documentation and "at first" in documentation


def test_colours_are_texts_numbers_or_tuples():
    info, p = next((e, p) for e in specialeffects.effects() for p in e.properties if p.type == "color")
    effect = Effect(info.id)
    for value in ("#0a0b0c", 0x0A0B0C, (10, 11, 12), "10,11,12"):
        setattr(effect, p.attribute, 0)
        setattr(effect, p.attribute, value)
        assert getattr(effect, p.attribute) == "#0a0b0c"


def test_a_value_out_of_range_is_clamped_with_a_warning_at_the_callers_line():
    rain = Effect("rain")
    with pytest.warns(specialeffects.ClampedWarning, match="from 2 to 16") as caught:
        rain.drop_size = 10**30
    assert caught[0].filename == __file__
    assert rain.drop_size == 16
    with pytest.warns(specialeffects.ClampedWarning) as caught:
        Effect("rain:drop-size=-3")
    assert caught[0].filename == __file__


def test_wrong_names_and_values_are_exceptions_with_the_librarys_text():
    with pytest.raises(specialeffects.UnknownNameError, match="sepia"):
        Effect("sepla")
    with pytest.raises(specialeffects.InvalidValueError):
        Effect("rain:drop-size")
    with pytest.raises(specialeffects.UnknownNameError, match="drop-size"):
        Effect("rain", drop_sise=9)
    rain = Effect("rain")
    with pytest.raises(AttributeError, match="drop-size"):
        rain.drop_sise = 9
    with pytest.raises(AttributeError, match="drop-size"):
        rain.drop_sise
    with pytest.raises(AttributeError, match="_hidden"):
        rain._hidden
    with pytest.raises(specialeffects.InvalidValueError):
        rain.drop_size = "large"
    with pytest.raises(ValueError, match="null character"):
        rain.drop_size = "9\0"
    with pytest.raises(TypeError):
        rain.drop_size = 9.5
    with pytest.raises(TypeError):
        Effect(9)
    with pytest.raises(AttributeError):
        rain.links = ()
    assert rain.drop_size == 3


def test_files_and_folders(tmp_path):
    line_art = Effect("line-art")
    with pytest.raises(specialeffects.FileError) as caught:
        line_art.load_settings(tmp_path / "none")
    assert isinstance(caught.value, OSError) and caught.value.status == -5
    settings = tmp_path / "colour"
    settings.write_text("10 200 90")
    with pytest.raises(specialeffects.UnknownNameError):
        Effect("sepia").load_settings(settings)
    before = run(line_art)
    line_art.load_settings(settings)
    line_art.reset()
    assert run(line_art) != before
    line_art.data_folder = tmp_path
    assert line_art.data_folder == str(tmp_path)
    line_art.data_folder = None
    assert line_art.data_folder is None


# ---- frames and time -------------------------------------------------------------------------------


def test_the_seed_decides():
    assert run(Effect("rain", seed=5), 20) == run(Effect("rain", seed=5), 20)
    assert run(Effect("rain", seed=5), 20) != run(Effect("rain", seed=6), 20)
    rain = Effect("rain", seed=5)
    first = run(rain, 20)
    assert run(rain, 20) != first
    rain.reset()
    assert run(rain, 20) == first
    assert rain.seed == 5 and Effect("rain").seed == 1
    for seed in (-1, 2**32):
        with pytest.raises(specialeffects.InvalidValueError):
            rain.seed = seed


def test_the_time_decides_where_an_effect_uses_it():
    info = next(e for e in specialeffects.effects() if e.uses_time and not e.data_file)

    def frames(*times):
        effect = Effect(info.id)
        return [effect(noise(48, 64, 3, seed=i), time=t).tobytes() for i, t in enumerate(times)]

    assert frames(5, 6, 7) == frames(0.0, 1.0, 2.0)
    assert frames(*(i / 30 for i in range(30))) != frames(*range(30))
    for wrong in (float("nan"), float("inf"), 1e300):
        with pytest.raises((ValueError, OverflowError)):
            frames(wrong)


def test_a_copy_has_the_properties_but_no_history():
    rain = Effect("rain", drop_size=7, seed=9)
    first = run(rain, 20)
    for made in (copy.copy(rain), copy.deepcopy(rain)):
        assert type(made) is type(rain) and made.drop_size == 7 and made.seed == 9
        assert run(made, 20) == first


def test_prepare_takes_only_sizes_that_frames_may_have():
    effect = Effect("sepia")
    effect.prepare(640, 480)
    for width, height in ((0, 1), (1, 16385), (2**40, 1)):
        with pytest.raises(specialeffects.PictureError):
            effect.prepare(width, height)


# ---- chains ----------------------------------------------------------------------------------------


def test_a_chain_is_a_row_of_effects():
    chain = Chain(["sepia", Effect("rain", drop_size=9), "spot-light-1"], seed=4)
    assert str(chain).startswith("sepia+rain:drop-size=9+spot-light-1")
    assert len(chain) == 3 and [link.info.id for link in chain] == ["sepia", "rain", "spot-light-1"]
    assert chain[1].drop_size == chain[-2].drop_size == chain.drop_size == 9
    chain[1].drop_size = 5
    assert chain.get("1.drop-size") == "5"
    chain.drop_size = 6
    assert chain[1].drop_size == 6
    with pytest.raises(IndexError):
        chain[3]
    with pytest.raises(AttributeError, match="drop-sise"):
        chain.drop_sise = 1
    with pytest.raises(AttributeError):
        chain[0].drop_size = 1
    assert "drop_size" in dir(chain)


def test_a_chain_gives_what_its_effects_give_one_after_the_other():
    chain = Chain("sepia+rain:drop-size=9", seed=4)
    sepia, rain = Effect("sepia", seed=4), Effect("rain", drop_size=9, seed=5)
    for i in MANY_FRAMES:
        together, apart = planes(48, 64, seed=i), planes(48, 64, seed=i)
        chain(together)
        rain(sepia(apart))
        assert all(numpy.array_equal(a, b) for a, b in zip(together, apart))


def test_a_text_of_several_effects_is_a_chain_and_so_is_a_chain_of_one():
    assert type(Effect("sepia+rain")) is Chain
    assert type(Chain(["sepia"])) is Chain and len(Chain("sepia")) == 1
    assert type(copy.copy(Chain(["sepia"]))) is Chain
    with pytest.raises(specialeffects.Error):
        Chain([])
    with pytest.raises(specialeffects.Error):
        Chain(["sepia"] * 65)


def test_links_with_the_same_property_keep_theirs_apart():
    chain = Chain(["rain", "rain"])
    chain[1].drop_size = 12
    assert (chain[0].drop_size, chain[1].drop_size) == (3, 12)


# ---- life and threads ------------------------------------------------------------------------------


def test_an_effect_dies_with_its_last_reference_and_a_link_keeps_its_chain():
    effect = Effect("sepia")
    watcher = weakref.ref(effect)
    del effect
    gc.collect()
    assert watcher() is None
    link = Chain(["rain"])[0]
    gc.collect()
    assert link.drop_size == 3


def test_other_threads_run_while_a_frame_runs():
    chain = Chain(["colored-pencil"] * 12)
    frame = noise(720, 1280, 3)
    chain(frame)

    def ticks_in_a_frame():
        interval = []

        def work():
            start = time.monotonic()
            chain(frame)
            interval.extend((start, time.monotonic()))

        worker = threading.Thread(target=work)
        ticks = []
        worker.start()
        while worker.is_alive():
            ticks.append(time.monotonic())
            time.sleep(0.001)
        start, end = interval
        margin = (end - start) / 10
        return any(start + margin < tick < end - margin for tick in ticks)

    # A busy machine may let this thread wait for the whole of a frame.
    assert any(ticks_in_a_frame() for _ in range(20))


def test_threads_share_an_effect_without_harm():
    chain = Chain(["rain", "sketch-2"])
    problems = []

    def frames(size):
        try:
            for i in range(30):
                chain(noise(*size, 3, seed=i))
        except Exception as error:
            problems.append(error)

    def settings():
        try:
            for i in range(300):
                chain[0].drop_size = 2 + i % 15
                str(chain)
        except Exception as error:
            problems.append(error)

    threads = [threading.Thread(target=frames, args=((48, 64),)), threading.Thread(target=frames, args=((47, 65),)),
               threading.Thread(target=settings)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not problems


# ---- help ------------------------------------------------------------------------------------------


def test_help_says_what_an_effect_and_its_properties_are():
    text = pydoc.render_doc(Effect("rain"), renderer=pydoc.plaintext)
    rain = specialeffects.find("rain")
    assert rain.title in text and rain.description in text
    assert "int from 2 to 16; 3 at first" in text
    for p in rain.properties:
        assert p.description in text
    module = pydoc.render_doc(specialeffects, renderer=pydoc.plaintext)
    assert "rain.drop_size = 5" in module


def test_all_public_names_have_a_text():
    for name in specialeffects.__all__:
        assert getattr(specialeffects, name).__doc__, name


def test_importing_warns_of_nothing():
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        Effect("sepia")(noise(4, 4, 3))
