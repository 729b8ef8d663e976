#!/bin/sh
# Builds and runs a host with what pkg-config tells of the installed tree.
# usage: pkg_config.sh INSTALLED VERSION SOURCE BUILD-FOLDER COMPILER EMULATOR [ARGUMENT ...]
set -eu

installed=$1 version=$2 source=$3 folder=$4 compiler=$5
shift 5

export PKG_CONFIG_LIBDIR="$installed/lib/pkgconfig"
pkg-config --exact-version "$version" CommonPreferences
if pkg-config --exists 'CommonPreferences >= 99'; then
  echo 'pkg-config takes the library for version 99' >&2
  exit 1
fi

mkdir -p "$folder"
# The flags are several words.
# shellcheck disable=SC2046
"$compiler" -std=c++17 "$source" $(pkg-config --cflags --libs CommonPreferences) -static \
  -o "$folder/consumer.exe"
cp "$installed/bin/CommonPreferences.dll" "$folder"
exec "$@" "$folder/consumer.exe"
