#!/usr/bin/env bash
# CI: the Debian package, tried as a new user would. Builds the package from build/ (which the
# test stage has built), reports lintian's findings (failing only on errors), unpacks the package
# into a temporary root and, with its installation folder read-only and as a user without
# rights on it, runs "qinventur-cli --version", the README's command-line road (anlegen …
# export) on a copy of the demo project from the package, and QInventur offscreen.
set -euo pipefail
cd "$(dirname "$0")/.."

fail() {
  echo "package-check: $*" >&2
  exit 1
}

cmake --build build --target package
version=$(sed -n 's/^project(QInventur VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
deb=build/qinventur_${version}_amd64.deb
[ -f "$deb" ] || fail "$deb is missing"
echo "== $deb"
dpkg-deb --field "$deb" Package Version Architecture Depends Recommends Section Priority

echo "== lintian"
lintian_rc=0
lintian --tag-display-limit 0 "$deb" || lintian_rc=$?
[ "$lintian_rc" -eq 0 ] || fail "lintian reports errors (exit $lintian_rc)"

work=$(mktemp -d)
trap 'chmod -R u+w "$work" 2>/dev/null; rm -rf "$work"' EXIT
chmod 755 "$work"
dpkg-deb -x "$deb" "$work/root"
install_dir=$work/root/usr/lib/qinventur
for f in QInventur qinventur-cli qi_jetmirror QInventurJet.so Quarn.ini QInventurRpt.mdb QInventur.html \
         "Leeres Projekt/QAuftrag.mdb" "Leeres Projekt/QInventur.mdb" Demo/Projekt.ini; do
  [ -e "$install_dir/$f" ] || fail "the package lacks /usr/lib/qinventur/$f"
done
[ "$(readlink "$work/root/usr/bin/qinventur-cli")" = ../lib/qinventur/qinventur-cli ] ||
  fail "/usr/bin/qinventur-cli is no link into the installation folder"
echo "== AppStream metadata and desktop entry"
appstreamcli validate --no-net "$work"/root/usr/share/metainfo/*.metainfo.xml
if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$work"/root/usr/share/applications/*.desktop
fi
chmod -R a-w "$install_dir"
before=$(cd "$install_dir" && find . -printf '%p %s %T@\n' | sort | sha256sum)

# The user: an unprivileged one when this runs as root (whom the missing write rights don't stop).
home=$work/home
runtime=$work/run
mkdir -p "$home" "$runtime"
chmod 700 "$runtime"
as_user=()
if [ "$(id -u)" -eq 0 ]; then
  chown nobody:nogroup "$home" "$runtime"
  as_user=(setpriv --reuid=nobody --regid=nogroup --clear-groups --)
fi
user_run() {
  (cd "$home" && "${as_user[@]}" env -i HOME="$home" XDG_RUNTIME_DIR="$runtime" PATH=/usr/bin:/bin \
    LANG=C.UTF-8 QT_QPA_PLATFORM=offscreen "$@")
}
cli=$work/root/usr/bin/qinventur-cli
# Runs qinventur-cli with the arguments and expects the exit code; prints what it printed.
road() {
  local expected=$1
  shift
  echo "\$ qinventur-cli $*"
  local rc=0
  user_run "$cli" "$@" >"$work/out" 2>"$work/err" || rc=$?
  cat "$work/out" "$work/err"
  [ "$rc" -eq "$expected" ] || fail "qinventur-cli $* ended with $rc, expected $expected"
}

echo "== the programs' versions"
version_line="QInventur ${version//./\\.}( \\(git [0-9a-f]{7,40}(-dirty)?\\))?"
road 0 --version
grep -Eqx "$version_line" "$work/out" || fail "qinventur-cli --version: $(cat "$work/out")"
user_run "$work/root/usr/bin/qinventur" --version | tee "$work/out"
grep -Eqx "$version_line" "$work/out" || fail "QInventur --version: $(cat "$work/out")"

echo "== the README's command-line road on a copy of the demo project"
# (cp keeps the modes, which here lack the write rights the installed files have.)
user_run cp -r "$install_dir/Demo" "$home/Demo"
user_run chmod -R u+w "$home/Demo"
rooms=()
for n in $(seq 1001 1020); do rooms+=("$n"); done
road 0 --projekt Demo anlegen Erdgeschoss --mitarbeiter Meier
road 0 --projekt Demo raeume Erdgeschoss --setzen "${rooms[@]}"
road 13 --projekt Demo hinzufuegen Erdgeschoss Demo/Scan_EG_Teil1.dat Demo/Scan_EG_Teil2.dat
road 0 --projekt Demo hinzufuegen Erdgeschoss Demo/Scan_EG_Teil1.dat Demo/Scan_EG_Teil2.dat --konflikt verwerfen
road 0 --projekt Demo auswerten Erdgeschoss
grep -q "^1 OK	464$" "$work/out" || fail "auswerten: not the demo's 464 objects in place"
road 0 --projekt Demo bericht Erdgeschoss differenz --format pdf --ausgabe "$home/Differenzliste.pdf"
head -c 5 "$home/Differenzliste.pdf" | grep -q '%PDF-' || fail "Differenzliste.pdf is no PDF"
road 0 --projekt Demo export Erdgeschoss --ausgabe "$home/Berichte" --format xlsx
ls "$home"/Berichte/*.xlsx >/dev/null || fail "export wrote no workbook"
# What the programs write beside themselves went to the user's own program folder.
[ -f "$home/.local/share/QInventur/QInventurRpt.mdb" ] || fail "no report database in the user's program folder"

echo "== QInventur offscreen on the demo copy"
# The user's own program folder names the copy, as after choosing it at the first start.
user_run mkdir -p "$home/.local/share/QInventur"
# shellcheck disable=SC2016 # $HOME is the user's, expanded in the user's shell
user_run sh -c 'printf "[Quarn]\r\nProjekt=%s\r\n" "$HOME/Demo" > "$HOME/.local/share/QInventur/Quarn.ini"'
rc=0
user_run timeout 20 "$work/root/usr/bin/qinventur" >"$work/out" 2>"$work/err" || rc=$?
cat "$work/out" "$work/err"
# 124: still running when the time was up, i.e. it came up and waited for the user.
[ "$rc" -eq 124 ] || fail "QInventur ended by itself with $rc"

after=$(cd "$install_dir" && find . -printf '%p %s %T@\n' | sort | sha256sum)
[ "$before" = "$after" ] || fail "the installation folder was changed"
echo "package-check: $deb passed"
