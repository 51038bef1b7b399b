"""Data: the files that are installed with the package."""
from pathlib import Path


def default_figure() -> Path:
    """The default human's figure, for :meth:`Scene.add_human`.

    :raises FileNotFoundError: when the package stands neither in its source tree nor where it was installed
    """
    package = Path(__file__).resolve().parent
    for folder in package.parents:
        for place in ("figures", "share/sstr/figures"):
            figure = folder / place / "human.urdf"
            if figure.is_file():
                return figure
    raise FileNotFoundError("the default human, figures/human.urdf, is not where the package was installed.")
