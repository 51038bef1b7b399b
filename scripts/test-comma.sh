#!/bin/bash
# Passes the tests of the preset "release" once more, every process in a locale with a decimal comma.
#
#   scripts/test-comma.sh [CTEST ARGUMENT...]
#
# The locale, de_DE.UTF-8, is compiled into the build folder: it need not be one of the machine's.
set -euo pipefail
cd "$(dirname "$0")/.."

locales="$PWD/build/release/locales"
preload="$PWD/build/release/tests/libcomma_locale.so"
[ -f "$preload" ] || { echo "error: there is no $preload. Build first: make test" >&2; exit 2; }
if [ ! -d "$locales/de_DE.UTF-8" ]; then
    mkdir -p "$locales"
    localedef -i de_DE -f UTF-8 "$locales/de_DE.UTF-8" ||
        { echo "error: the locale could not be made; it needs localedef and the package locales" >&2; exit 2; }
fi
export SSTR_COMMA_LOCPATH="$locales" SSTR_COMMA_PRELOAD="$preload"
# an environment that names no locale makes Python choose one at its start, in place of the preloaded
export LC_ALL=C.UTF-8
exec ctest --preset release-comma "$@"
