#!/usr/bin/env bash
# Fails with the name of every symbol that the shared library shows and no public header declares.
#
# usage: exports_test.sh LIBRARY HEADER-FOLDER...
set -euo pipefail
library=$1
shift

declared=$(find "$@" -name '*.h' -exec cat {} + | grep -oE '[A-Za-z_][A-Za-z0-9_]*' | sort -u)

# The outermost name, without namespace, of each symbol, and of whose table or guard it is.
shown=$(nm -D --defined-only "$library" | awk '$2 != "A" { print $3 }' | sed 's/@@.*//' | c++filt |
  sed -E 's/^(typeinfo name|typeinfo|vtable|VTT|guard variable|(non-)?virtual thunk)( for| to) //
    s/^[^(]* (CCmdTarget::)/\1/; s/^platform:://; s/[^A-Za-z0-9_].*//' | sort -u)

strangers=$(comm -23 <(printf '%s\n' "$shown") <(printf '%s\n' "$declared"))
hidden=$(nm -DC --defined-only "$library" | grep -E '_Impl|nlohmann|DevTools|Curl' |
  grep -vE 'CZrHbFacade<|::DestroyImpl\(' || true)
if [[ -n $strangers || -n $hidden ]]; then
  printf 'shown, but not declared in a public header:\n%s\n%s\n' "$strangers" "$hidden" >&2
  exit 1
fi
count=$(printf '%s\n' "$shown" | wc -l)
((count > 50)) || { echo "only $count names are shown" >&2; exit 1; }
