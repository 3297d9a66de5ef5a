"""What all groups of cases share."""

PREVIEWS = 12  # that are taken one after the other


class Group:
    """Cases on one subject. Each of its methods is a case, but for those with an underscore."""

    def __init__(self, media, engine, count):
        self._media, self._engine, self._count = media, engine, count

    @classmethod
    def names(cls):
        return [name for name in vars(cls) if not name.startswith("_")]

    def _output(self, suffix):
        return self._media.folder / f"output{suffix}"
