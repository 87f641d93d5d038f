#!/usr/bin/env bash
# Installs the build into a temporary prefix and checks what a desktop and a shell see there:
# the programs run, the desktop entry is valid and opens documents and recordings, *.stk maps to
# the parameter document type, the icon is there in both forms, and the man page of tessaphon-cli
# has a section for every command the program offers; with a Python interpreter given, the
# module imports from PREFIX/lib/python3/dist-packages and synthesizes.
#   install_test.sh BUILD_DIR WITH_GUI [PYTHON]
set -euo pipefail
build=$1
gui=$2
python=${3:-}
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" >/dev/null

"$prefix/bin/tessaphon-cli" --help >/dev/null || fail "installed tessaphon-cli does not run"
for page in tessaphon tessaphon-cli; do
    f="$prefix/share/man/man1/$page.1"
    [ -f "$f" ] || fail "no man page $page(1)"
    grep -q '@PROJECT_VERSION@' "$f" && fail "$page(1) has no version filled in"
    if command -v groff >/dev/null; then
        warnings=$(groff -man -Tutf8 -ww -z "$f" 2>&1)
        [ -z "$warnings" ] || fail "$page(1) has formatting warnings: $warnings"
    fi
done
# Every command listed by --help has its entry in the man page (".B name" at a command's head).
commands=$("$prefix/bin/tessaphon-cli" --help | sed -n '/^Subcommands:/,$p' | awk 'NR > 1 && NF { print $1 }')
[ -n "$commands" ] || fail "no commands listed by tessaphon-cli --help"
for c in $commands; do
    grep -q "^\.B $c\b" "$prefix/share/man/man1/tessaphon-cli.1" || fail "tessaphon-cli(1) has no section for '$c'"
done

if [ "$gui" = "ON" ]; then
    [ -x "$prefix/bin/tessaphon" ] || fail "no tessaphon program"
    desktop="$prefix/share/applications/tessaphon.desktop"
    [ -f "$desktop" ] || fail "no desktop entry"
    if command -v desktop-file-validate >/dev/null; then
        desktop-file-validate "$desktop" || fail "desktop entry is not valid"
    fi
    grep -q '^MimeType=.*application/x-tessaphon-parameters' "$desktop" || fail "desktop entry does not open .stk"
    grep -q '^MimeType=.*audio/x-wav' "$desktop" || fail "desktop entry does not open .wav"
    grep -q '^Exec=tessaphon %F' "$desktop" || fail "desktop entry does not pass the files"

    mime="$prefix/share/mime/packages/tessaphon.xml"
    [ -f "$mime" ] || fail "no MIME package"
    if command -v update-mime-database >/dev/null; then
        update-mime-database "$prefix/share/mime" >/dev/null 2>&1
        grep -q 'application/x-tessaphon-parameters:\*\.stk' "$prefix/share/mime/globs2" ||
            fail "*.stk is not mapped to the parameter document type"
    fi

    svg="$prefix/share/icons/hicolor/scalable/apps/tessaphon.svg"
    png="$prefix/share/icons/hicolor/256x256/apps/tessaphon.png"
    [ -f "$svg" ] || fail "no scalable icon"
    [ -f "$png" ] || fail "no 256 px icon"
    # PNG signature, then the IHDR chunk: width and height as 32-bit big-endian numbers.
    header=$(od -An -tx1 -N24 "$png" | tr -d ' \n')
    [ "${header:0:16}" = "89504e470d0a1a0a" ] || fail "the 256 px icon is not a PNG"
    [ "${header:32:16}" = "0000010000000100" ] || fail "the PNG icon is not 256 x 256"
fi
if [ -n "$python" ]; then
    site="$prefix/lib/python3/dist-packages"
    [ -f "$site/tessaphon/__init__.py" ] || fail "no Python package tessaphon under $site"
    PYTHONPATH="$site" "$python" -c "
import sys, tessaphon
samples = tessaphon.synthesize(tessaphon.Document.new(length_ms=100))
sys.exit(0 if tessaphon.__file__.startswith('$site') and len(samples) == 1102 else 1)" ||
        fail "the installed Python module does not import and synthesize"
fi
echo "install: 1 passed, 0 failed"
