"""What the package's tests share: scenes on the real host, and no message or warning that a test does not expect."""
import random
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tests" / "python"))

import libqcc   # noqa: E402
from small_figure import small_body   # noqa: E402
from staticstrength import Scene, default_figure   # noqa: E402

PALM = "right_hand.right_palmcenter"
OTHER_PALM = "left_hand.left_palmcenter"


def random_rows(analysis, count):
    """Postures as rows of all angles, degrees, well within their limits; always the same."""
    chance = random.Random(7)
    spans = [limits or (-30, 30) for joint in analysis.human.joints.values() for limits in joint.limits]
    return [[chance.uniform(0.3 * low, 0.3 * high) for low, high in spans] for _ in range(count)]


def pytest_configure(config):
    config.addinivalue_line("filterwarnings", "error")


@pytest.fixture(autouse=True)
def no_message_is_left():
    libqcc.qcMessages_take()
    yield
    assert libqcc.qcMessages_take() == []


@pytest.fixture
def scene():
    """An empty scene."""
    with Scene() as scene:
        yield scene


@pytest.fixture
def worker(scene):
    """The default human, standing, without loads."""
    return scene.add_human(default_figure(), "worker")


@pytest.fixture
def man(scene):
    """The small body with round numbers; see small_figure.py."""
    return scene.add_posed(small_body("man").document)


@pytest.fixture
def lift():
    """The human of the example that lifts a box."""
    with Scene.open(ROOT / "examples" / "lift_box.json") as scene:
        yield scene.human
