#!/usr/bin/env bash
# Usage: build_packages.sh FOLDER
#
# Builds the Debian packages of what is committed into FOLDER, and has lintian look at them.
set -euo pipefail
mkdir -p "$1"
folder=$(cd "$1" && pwd)
find "$folder" -mindepth 1 -delete
mkdir "$folder/aceconv"
git archive HEAD | tar -x -C "$folder/aceconv"
cd "$folder/aceconv"

version=$(dpkg-parsechangelog -S Version)
grep -qF "project(aceconv VERSION $version " CMakeLists.txt || {
  echo "debian/changelog has version $version, CMakeLists.txt another" >&2
  exit 1
}
if ! dpkg-buildpackage -us -uc -b >"$folder/build.log" 2>&1; then
  tail -n 40 "$folder/build.log" >&2
  exit 1
fi
cd "$folder"
rm -r aceconv
lintian --allow-root --fail-on error,warning ./*.changes
ls "$folder"/*.deb
