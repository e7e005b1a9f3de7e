#!/usr/bin/env bash
# Installs the Debian packages that QInventur needs to build, test and run.
set -euo pipefail
packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools libgl-dev
  libsqlite3-dev sqlite3
  mdbtools mdbtools-dev unixodbc unixodbc-dev odbc-postgresql postgresql postgresql-client
  libgtest-dev libgmock-dev googletest
  libicu-dev libxlsxwriter-dev
  xvfb xauth poppler-utils unzip fonts-dejavu-core fonts-liberation2
  qt6-translations-l10n xdotool x11-apps x11-utils imagemagick
  # barcodes on labels, and reading them back in the tests
  libzint-dev zbar-tools dmtx-utils
  # the Debian package: its manual page and its check
  help2man lintian dpkg-dev fakeroot appstream
  # clang with libFuzzer's runtime, for the fuzzing build (scripts/fuzz.sh)
  clang libclang-rt-14-dev
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
