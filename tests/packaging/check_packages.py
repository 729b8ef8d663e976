#!/usr/bin/env python3
"""Builds the library by the recipes of `packaging`, from what these ship and nothing else, and packs
a zip of both configurations.

usage: check_packages.py FOLDER

FOLDER is for all that is made. vcpkg and Conan are stood in for by what is in `stand_ins`. The
sources are those that Git would check out on Windows, and the headers that a recipe depends on lie
where its package manager has them: those of /usr/include are hidden.
"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import types

ROOT = pathlib.Path(__file__).parents[2]
PORT = "packaging/vcpkg/ports/commonpreferences"
STAND_INS = pathlib.Path(__file__).parent / "stand_ins"
TOOLCHAIN = ROOT / "cmake/mingw-w64-x86_64.cmake"
HEADERS = {"rapidjson": "rapidjson", "cli11": "CLI"}
GREETING = "Greeting: Grüße"


def run(*command, **options):
    return subprocess.run(list(map(str, command)), check=True, **options)


def require(condition, what):
    if not condition:
        sys.exit(f"check_packages: {what}")


def check_out(work):
    """The tracked files, and those that are not ignored, as with Git for Windows."""
    folder = work / "clone"
    environment = {**os.environ, "GIT_INDEX_FILE": str(work / "index")}
    git = ["git", "-C", ROOT, "-c", "core.autocrlf=true", "-c", "core.safecrlf=false"]
    run(*git, "add", "--all", env=environment)
    run(*git, "checkout-index", "--all", f"--prefix={folder}/", env=environment)
    for path in folder.rglob("*"):
        require(not path.is_file() or b"\r\n" not in path.read_bytes(), f"{path} has CRLF")


def install_headers(prefix, dependency):
    name = HEADERS[dependency]
    shutil.copytree(f"/usr/include/{name}", prefix / "include" / name)


def run_under_wine(work, program, *arguments):
    finished = run(ROOT / "cmake/run-under-wine", work, program, *arguments,
                   stdout=subprocess.PIPE, encoding="utf-8")
    return finished.stdout


def build_consumer(source, prefix, folder, build_type):
    run("cmake", "-G", "Ninja", "-S", source, "-B", folder, "--toolchain", TOOLCHAIN,
        f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_BUILD_TYPE={build_type}")
    run("cmake", "--build", folder)


def check_consumer(work, prefix, folder, build_type):
    build_consumer(work / "clone/examples/consumer", prefix, folder, build_type)
    require_greeting(work, folder / "consumer.exe")


def require_greeting(work, program):
    require(GREETING in run_under_wine(work, program), f"{program} does not greet")


def names_below(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}


def require_licenses(found, tools):
    """What a package tells of the licences of others is what it contains."""
    require("RapidJSON" in found and "GCC" in found, "licences are missing")
    require(("CLI11" in found) == tools, "the licence of CLI11 belongs to the program")


def dependencies_of_port(work, features):
    manifest = json.loads((work / "clone" / PORT / "vcpkg.json").read_text(encoding="utf-8"))
    of_features = (manifest["features"][name]["dependencies"] for name in features)
    return [name for names in (manifest["dependencies"], *of_features)
            for name in names if isinstance(name, str)]


def run_port(work, folder, features, build_type):
    installed = folder / "installed"
    for dependency in dependencies_of_port(work, features):
        install_headers(installed, dependency)
    run("cmake", f"-DPORT_FOLDER={work / 'clone' / PORT}",
        f"-DBUILD={folder}", f"-DINSTALLED={installed}", f"-DTOOLCHAIN={TOOLCHAIN}",
        f"-DFEATURES={';'.join(features)}", f"-DBUILD_TYPE={build_type}",
        "-P", STAND_INS / "vcpkg.cmake")
    return folder / "package"


def require_layout_of_vcpkg(package, tools):
    """What vcpkg looks at when a port is built."""
    names = names_below(package)
    program = "tools/commonpreferences/vemora-prefs.exe"
    require((program in names) == tools, f"vemora-prefs belongs to the tools: {sorted(names)}")
    for name in names:
        wrong = name.startswith(("debug/include", "debug/share", "lib/cmake", "debug/lib/cmake"))
        require(not wrong and not name.startswith(("bin/", "debug/bin/")) or name.endswith(".dll"),
                f"vcpkg has no place for {name}")
    copyright_text = (package / "share/commonpreferences/copyright").read_text(encoding="utf-8")
    require_licenses(copyright_text, tools)


def check_vcpkg(work):
    folder = work / "vcpkg"
    package = run_port(work, folder / "core", [], "")
    require_layout_of_vcpkg(package, tools=False)
    for build_type in ("Release", "Debug"):
        check_consumer(work, package, folder / "core" / f"consumer-{build_type}", build_type)

    package = run_port(work, folder / "tools", ["tools"], "release")
    require_layout_of_vcpkg(package, tools=True)
    run_under_wine(work, package / "tools/commonpreferences/vemora-prefs.exe", "--help")


def conan_recipe(work, folder, build_type, tools):
    sys.path.insert(0, str(STAND_INS))
    recipe_folder = work / "clone/packaging/conan"
    module = types.ModuleType("conanfile")
    exec((recipe_folder / "conanfile.py").read_text(encoding="utf-8"), module.__dict__)
    settings = types.SimpleNamespace(os="Windows", arch="x86_64", compiler="gcc",
                                     build_type=build_type)
    return module.CommonPreferencesConan(
        recipe_folder=str(recipe_folder),
        export_sources_folder=str(folder / "exported"), source_folder=str(folder / "exported"),
        build_folder=str(folder / "build"), package_folder=str(folder / "package"),
        settings=settings, options=types.SimpleNamespace(tools=tools),
        cpp_info=types.SimpleNamespace(set_property=lambda name, value: None),
        given_variables={"CMAKE_TOOLCHAIN_FILE": TOOLCHAIN,
                         "CMAKE_IGNORE_PATH": "/usr/include;/usr/local/include"})


def run_recipe(work, folder, build_type, tools):
    recipe = conan_recipe(work, folder, build_type, tools)
    recipe.export_sources()
    recipe.validate()
    recipe.requirements()
    for name in recipe.required:
        install_headers(folder / "installed" / name, name)
    recipe.dependencies = {
        name: types.SimpleNamespace(cpp_info=types.SimpleNamespace(
            includedirs=[str(folder / "installed" / name / "include")]))
        for name in recipe.required}
    recipe.layout()
    recipe.generate()
    recipe.build()
    recipe.package()
    recipe.package_info()
    return recipe


def write_conan_config(recipe, folder):
    """What Conan generates of `package_info`."""
    folder.mkdir(parents=True)
    package = pathlib.Path(recipe.package_folder)
    includes = ";".join(str(package / name) for name in recipe.cpp_info.includedirs)
    (folder / "CommonPreferencesConfig.cmake").write_text(f"""
set(target CommonPreferences::CommonPreferences)
add_library(${{target}} INTERFACE IMPORTED)
target_include_directories(${{target}} INTERFACE "{includes}")
foreach(name IN ITEMS {" ".join(recipe.cpp_info.libs)})
  find_library(found_${{name}} ${{name}} PATHS {package / "lib"} NO_DEFAULT_PATH
    NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  target_link_libraries(${{target}} INTERFACE ${{found_${{name}}}})
endforeach()
""")


def check_test_package(work, recipe, folder):
    write_conan_config(recipe, folder / "config")
    consumer = folder / "test_package"
    build_consumer(work / "clone/packaging/conan/test_package", folder / "config", consumer,
                   recipe.settings.build_type)
    for library in pathlib.Path(recipe.package_folder, "bin").glob("*.dll"):
        shutil.copy(library, consumer)
    require_greeting(work, consumer / "test_package.exe")


def check_conan(work):
    folder = work / "conan"
    for name, build_type, tools in (("core", "Release", False), ("tools", "Debug", True)):
        recipe = run_recipe(work, folder / name, build_type, tools)
        package = pathlib.Path(recipe.package_folder)
        require((package / "bin/vemora-prefs.exe").exists() == tools, "vemora-prefs is an option")
        require_licenses(" ".join(names_below(package / "licenses")), tools)
        check_test_package(work, recipe, folder / name)


def check_zip_of_both(work):
    """Libraries for programs that are being debugged lie beside the optimized ones."""
    folder = work / "zip"
    run("cmake", "-G", "Ninja Multi-Config", "-S", work / "clone", "-B", folder / "build",
        "--toolchain", TOOLCHAIN, "-DCMAKE_CONFIGURATION_TYPES=Release;Debug",
        *(f"-DCOMMONPREFERENCES_{part}=OFF" for part in ("APPS", "EXAMPLES", "TESTS")))
    for configuration in ("Release", "Debug"):
        run("cmake", "--build", folder / "build", "--config", configuration, "--target", "product")
    run("cpack", "--config", folder / "build/CPackConfig.cmake", "-C", "Release;Debug",
        cwd=folder / "build")
    archive, = (folder / "build/package").glob("*-release-debug.zip")
    shutil.unpack_archive(archive, folder)
    for configuration, library in (("Release", "CommonPreferences.dll"),
                                   ("Debug", "CommonPreferencesd.dll")):
        consumer = folder / f"consumer-{configuration}"
        check_consumer(work, folder / archive.stem, consumer, configuration)
        require({path.name for path in consumer.glob("*.dll")} == {library},
                f"a host for {configuration} takes {library}")


def main():
    work = pathlib.Path(sys.argv[1]).resolve()
    for made in ("clone", "vcpkg", "conan", "zip"):  # what Wine has there stays
        shutil.rmtree(work / made, ignore_errors=True)
    work.mkdir(parents=True, exist_ok=True)
    check_out(work)
    check_vcpkg(work)
    check_conan(work)
    check_zip_of_both(work)


if __name__ == "__main__":
    main()
