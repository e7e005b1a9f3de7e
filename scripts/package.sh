#!/usr/bin/env bash
# Builds QInventur (installing what is missing, as build.sh does) and its Debian package:
# build/qinventur_<version>_amd64.deb, to be installed with
#   sudo apt install ./build/qinventur_<version>_amd64.deb
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
cmake --build build --target package
ls -1 build/qinventur_*_amd64.deb
