#!/usr/bin/env bash
# Installs the build into a temporary DESTDIR and checks the installed program and its desktop
# integration: the installed runplan finds its catalog in share/runplan and exports the same CSV as
# the build folder's; without a catalog it names the path beside the executable; the desktop entry,
# AppStream metadata, MIME package and manual page pass their validators (each when installed).
#   install_check.sh BUILD_DIR
set -euo pipefail
build="$1"
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

DESTDIR="$tmp/root" cmake --install "$build" --prefix /usr >/dev/null
root="$tmp/root/usr"
id=invalid.vorlux.Runplan
for f in bin/runplan share/runplan/vx_config_dl.xml share/applications/$id.desktop \
         share/metainfo/$id.metainfo.xml share/mime/packages/runplan.xml \
         share/icons/hicolor/scalable/apps/$id.svg share/icons/hicolor/48x48/apps/$id.png \
         share/icons/hicolor/256x256/apps/$id.png share/doc/runplan/copyright; do
    [ -f "$root/$f" ] || fail "$f not installed"
done
man=$(ls "$root"/share/man/man1/runplan.1* 2>/dev/null | head -n 1)
[ -n "$man" ] || fail "manual page not installed"
[ ! -e "$root/bin/vx_config_dl.xml" ] || fail "the catalog must not be installed beside the program"

# The installed program reads share/runplan/vx_config_dl.xml: same export as the build folder's.
"$build/bin/runplan" -nw --maximize-all "$tmp/build.csv"
"$root/bin/runplan" -nw --maximize-all "$tmp/installed.csv" 2>"$tmp/installed.err" ||
    fail "installed runplan failed: $(cat "$tmp/installed.err")"
[ -s "$tmp/build.csv" ] || fail "the build folder's export is empty"
cmp "$tmp/build.csv" "$tmp/installed.csv" || fail "installed export differs from the build folder's"

# Without any catalog the message names the first place looked: beside the executable.
mv "$root/share/runplan/vx_config_dl.xml" "$tmp/"
if "$root/bin/runplan" -nw --maximize-all "$tmp/none.csv" 2>"$tmp/none.err"; then
    fail "a run without a catalog must not succeed"
fi
grep -qF "$root/bin/vx_config_dl.xml" "$tmp/none.err" ||
    fail "missing-catalog message does not name $root/bin/vx_config_dl.xml: $(cat "$tmp/none.err")"

if command -v desktop-file-validate >/dev/null; then
    out=$(desktop-file-validate "$root/share/applications/$id.desktop" 2>&1) || fail "desktop entry: $out"
    [ -z "$out" ] || fail "desktop entry: $out"
else echo "desktop-file-validate not installed: desktop entry not validated"; fi
if command -v appstreamcli >/dev/null; then
    appstreamcli validate --no-net "$root/share/metainfo/$id.metainfo.xml" || fail "metainfo does not validate"
else echo "appstreamcli not installed: metainfo not validated"; fi
if command -v xmllint >/dev/null; then
    xmllint --noout "$root/share/mime/packages/runplan.xml" || fail "MIME package is not well-formed"
else echo "xmllint not installed: MIME package not checked"; fi
if command -v update-mime-database >/dev/null; then
    # The compiled database must map both the extension and the root element to our type.
    mkdir -p "$tmp/mime/packages"
    cp "$root/share/mime/packages/runplan.xml" "$tmp/mime/packages/"
    update-mime-database "$tmp/mime" 2>"$tmp/mime.err" || fail "update-mime-database: $(cat "$tmp/mime.err")"
    grep -q "application/x-runplan-project:\*\.rpproj" "$tmp/mime/globs2" || fail "no *.rpproj glob"
    grep -q " Runplan application/x-runplan-project" "$tmp/mime/XMLnamespaces" || fail "no Runplan root"
fi
if command -v man >/dev/null; then
    warnings=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$man" 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "manual page warnings: $warnings"
fi
echo "install check passed"
