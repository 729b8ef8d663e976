import os

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, rmdir
from conan.tools.microsoft import is_msvc

required_conan_version = ">=2.0"


class CommonPreferencesConan(ConanFile):
    name = "commonpreferences"
    version = "1.0.0"
    description = "User preferences of Windows desktop applications"
    license = "MIT"
    topics = ("preferences", "settings", "registry", "json")
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"tools": [True, False]}  # vemora-prefs
    default_options = {"tools": False}

    @property
    def _clone(self):
        """The clone that this recipe lies in."""
        return os.path.join(self.recipe_folder, os.pardir, os.pardir)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "CHANGELOG.md", "LICENSE", "README.md", "apps/*",
                        "cmake/*", "debug/*", "licenses/*", "packaging/zip/*", "platform/*",
                        "prefs/*", "utils/*"):
            copy(self, pattern, self._clone, self.export_sources_folder)

    def validate(self):
        if self.settings.os != "Windows" or self.settings.arch != "x86_64":
            raise ConanInvalidConfiguration("CommonPreferences is for 64-bit Windows")
        check_min_cppstd(self, 17)

    def requirements(self):
        self.requires("rapidjson/cci.20230929", visible=False)
        if self.options.tools:
            self.requires("cli11/2.4.2", visible=False)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for part in ("EXAMPLES", "TESTS"):
            toolchain.cache_variables[f"COMMONPREFERENCES_{part}"] = False
        toolchain.cache_variables["COMMONPREFERENCES_APPS"] = bool(self.options.tools)
        toolchain.cache_variables["RapidJSON_INCLUDE_DIR"] = self._include_folder("rapidjson")
        if self.options.tools:
            toolchain.cache_variables["CLI11_INCLUDE_DIR"] = self._include_folder("cli11")
        toolchain.generate()

    def _include_folder(self, dependency):
        return self.dependencies[dependency].cpp_info.includedirs[0].replace("\\", "/")

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        licenses = os.path.join(self.package_folder, "licenses")
        installed = os.path.join(self.package_folder, "share", "doc", "CommonPreferences")
        copy(self, "LICENSE", installed, licenses)
        copy(self, "*", os.path.join(installed, "licenses"), licenses)
        # Conan makes its own of what these hold.
        for folder in ("cmake", "pkgconfig"):
            rmdir(self, os.path.join(self.package_folder, "lib", folder))
        rmdir(self, os.path.join(self.package_folder, "share"))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "CommonPreferences")
        self.cpp_info.set_property("cmake_target_name", "CommonPreferences::CommonPreferences")
        self.cpp_info.set_property("pkg_config_name", "CommonPreferences")
        self.cpp_info.includedirs = ["include/vemora"]
        postfix = "d" if self.settings.build_type == "Debug" else ""
        suffix = "" if is_msvc(self) else ".dll"  # of the import library, before .a
        self.cpp_info.libs = [f"CommonPreferences{postfix}{suffix}",
                              f"CommonPreferencesValues{postfix}"]
