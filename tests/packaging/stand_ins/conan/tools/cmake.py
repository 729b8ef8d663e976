import subprocess


def cmake_layout(_recipe):
    """The folders are set already."""


class CMakeToolchain:
    """Hands its variables to CMake."""

    def __init__(self, recipe):
        self.recipe = recipe
        self.cache_variables = {}

    def generate(self):
        self.recipe.cache_variables = self.cache_variables


class CMake:
    def __init__(self, recipe):
        self.recipe = recipe

    def configure(self):
        recipe = self.recipe
        variables = {**recipe.cache_variables, **recipe.given_variables,
                     "CMAKE_BUILD_TYPE": recipe.settings.build_type}
        run("cmake", "-G", "Ninja", "-S", recipe.source_folder, "-B", recipe.build_folder,
            *(f"-D{name}={spell(value)}" for name, value in variables.items()))

    def build(self):
        run("cmake", "--build", self.recipe.build_folder)

    def install(self):
        run("cmake", "--install", self.recipe.build_folder,
            "--prefix", self.recipe.package_folder)


def spell(value):
    return {True: "ON", False: "OFF"}.get(value, value)


def run(*command):
    subprocess.run(list(map(str, command)), check=True)
