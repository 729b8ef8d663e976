"""As much of Conan 2 as the recipes of this project use, to run them where Conan cannot be had."""


class ConanFile:
    """What Conan gives to a recipe; the folders are set by who runs it."""

    options = {}
    default_options = {}

    def __init__(self, **given):
        self.required = []
        for name, value in given.items():
            setattr(self, name, value)

    def requires(self, reference, visible=True):
        self.required.append(reference.split("/")[0])
