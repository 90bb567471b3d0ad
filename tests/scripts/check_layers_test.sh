#!/usr/bin/env bash
# check-layers accepts a clean tree and reports, with file and line, one violation of each kind.
# usage: check_layers_test.sh CHECK_LAYERS
set -euo pipefail

check_layers=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

put() { # FILE INCLUDE: makes the file; the include stands on line 2
  mkdir -p "$tree/$(dirname "$1")"
  printf '// A comment with #include <curl/curl.h> in it.\n#include %s\n' "$2" >"$tree/$1"
}

put platform/include/platform/String.h '<string>'
put platform/internet/Transfer.h '<curl/curl.h>'
put platform/internet/Transfer.cpp '"internet/Transfer.h"'
put include/ZrHbGetter.h '<platform/String.h>'
put src/errors/Texts.h '<ZrHbGetter.h>'
put src/parse/Reply.h '<errors/Texts.h>'
put src/parse/Reply.cpp '"parse/Reply.h"'
put src/getter/Getter.h '"parse/Reply.h"'
put tools/zrhttp/Terminal.h '<unistd.h>'
put tools/zrhttp/main.cpp '"Terminal.h"'
if ! "$check_layers" "$tree"; then
  echo "a clean tree was refused"
  exit 1
fi

failures=0
refuses() { # FILE INCLUDE: the tree with this file must be refused, naming it
  put "$1" "$2"
  local output status=0
  output=$("$check_layers" "$tree" 2>&1) || status=$?
  rm "$tree/$1"
  if [[ $status -ne 1 || $output != *"$1:2: "* ]]; then
    echo "not reported: $1 includes $2 (exit status $status): $output"
    failures=$((failures + 1))
  fi
}

refuses platform/include/platform/Curl.h '<curl/curl.h>'
refuses platform/include/platform/Posix.h '<unistd.h>'
refuses platform/include/platform/Private.h '"internet/Transfer.h"'
refuses platform/include/platform/Upward.h '<ZrHbGetter.h>'
refuses platform/internet/Upward.cpp '<ZrHbGetter.h>'
refuses platform/internet/Errors.cpp '"errors/Texts.h"'
refuses include/ZrHbPosix.h '<sys/socket.h>'
refuses include/ZrHbUpward.h '"errors/Texts.h"'
refuses src/parse/Json.cpp '<nlohmann/json.hpp>'
refuses src/parse/OldHeader.cpp '<string.h>'
refuses src/parse/Platform.cpp '"internet/Transfer.h"'
refuses src/errors/Upward.cpp '"parse/Reply.h"'
refuses src/parse/Upward.cpp '  <getter/Getter.h>'
refuses src/parse/Around.cpp '"../getter/Getter.h"'
refuses src/unheard_of/Folder.cpp '<ZrHbGetter.h>'
refuses tools/zrhttp/Inside.cpp '<parse/Reply.h>'
refuses tools/zrhttp/Private.cpp '"internet/Transfer.h"'
refuses examples/Private.cpp '"internet/Transfer.h"'

exit $((failures > 0))
