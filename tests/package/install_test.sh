#!/usr/bin/env bash
# Makes the Debian packages, installs them into an empty tree, builds a consumer against that tree
# by CMake and by pkg-config, runs it and the tool, removes the packages: nothing may be left. The
# headers compile beside those of another project, as installed and where they are. Then a prefix of
# its own, and the consumer with the sources inside.
#
# usage: install_test.sh BUILD-FOLDER
set -euo pipefail
build=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root

fail() {
  echo "install_test: $*" >&2
  exit 1
}

manage() { # DPKG ARGUMENT...
  dpkg --root="$root" --log="$work/dpkg.log" --force-depends --force-not-root \
    --force-script-chrootless "$@" >"$work/out" 2>&1 || fail "dpkg $1: $(cat "$work/out")"
}

own_files() {
  find "$root" ! -type d ! -path "$root/var/lib/dpkg/*"
}

(cd "$build" && cpack -B "$work/packages" >"$work/out" 2>&1) || fail "cpack: $(cat "$work/out")"
mkdir -p "$root"/var/lib/dpkg/{updates,info}
touch "$root"/var/lib/dpkg/{status,available}
manage --install "$work"/packages/*.deb
for file in /{libzrhttpbase3-3,libzrhttpbase3-dev,zrhttp}/{copyright,changelog.gz,README.md} \
  /libzrhttpbase3-dev/{docs/index.md,examples/{fetch.cpp,CMakeLists.txt}} ../man/man1/zrhttp.1.gz; do
  [[ -s $root/usr/share/doc/$file ]] || fail "$file is not installed"
done
[[ $(grep -cE '^ (Permission is|Redistribution and)' "$root/usr/share/doc/zrhttp/copyright") == 2 ]] ||
  fail "the copyright file lacks the terms of what is compiled in"
for library in $(sed -n '/^Depends: /{s///;s/([^)]*)//g;s/,//g;p}' "$root/var/lib/dpkg/status"); do
  grep -q "\b$library\b" "$root/usr/share/doc/zrhttp/copyright" || fail "no terms of $library"
done

library=$(dirname "$(find "$root" -name libZrHttpBase3.so)")
export LD_LIBRARY_PATH=$library ZRHTTP_HOME=$work/home
cmake -S "$here/consumer" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$root/usr" >"$work/out" 2>&1 &&
  cmake --build "$work/cmake" >>"$work/out" 2>&1 || fail "by CMake: $(cat "$work/out")"
flags=$(PKG_CONFIG_PATH=$library/pkgconfig pkg-config --cflags --libs zrhttpbase3)
# shellcheck disable=SC2086
c++ -std=c++20 "$here/consumer/main.cpp" $flags -o "$work/consumer" || fail "by pkg-config"
for consumer in "$work/cmake/consumer" "$work/consumer"; do
  output=$("$consumer") || fail "$consumer fails"
  [[ $output == $'X-Client: 3\r\n\r' ]] || fail "$consumer prints $(od -c <<<"$output")"
done

for headers in "$root/usr/include/zrhttpbase3" "$here/../../include"; do
  mkdir -p "$work/other/platform"
  for header in "$headers"/platform/*.h; do
    echo '#error "this is the header of another project"' >"$work/other/platform/${header##*/}"
  done
  (cd "$headers" && printf '#include <%s>\n' *.h) |
    c++ -std=c++20 -fsyntax-only -DTRUE=1 -DFALSE=0 -I "$work/other" -I "$headers" -x c++ - \
      2>"$work/out" || fail "$headers beside other headers: $(cat "$work/out")"
done

"$root/usr/bin/zrhttp" version >/dev/null || fail "the tool does not run"
man -l --warnings "$root/usr/share/man/man1/zrhttp.1.gz" 2>&1 >/dev/null | grep . &&
  fail "the man page is malformed"
bash -n "$root/usr/share/bash-completion/completions/zrhttp"

manage --purge zrhttp libzrhttpbase3-dev libzrhttpbase3-3
[[ -z $(own_files) ]] || fail "left behind: $(own_files)"

unset LD_LIBRARY_PATH
cmake --install "$build" --prefix "$work/a prefix" >"$work/out" || fail "install: $(cat "$work/out")"
"$work/a prefix/bin/zrhttp" version >/dev/null || fail "the tool does not find its library"

for compiler in g++ clang++; do
  command -v "$compiler" >/dev/null || continue
  cmake -S "$here/consumer" -B "$work/$compiler" -DCMAKE_CXX_COMPILER="$compiler" -DBUILD_TESTING=ON \
    -DZRHTTP_SOURCE="$here/../.." >"$work/out" 2>&1 || fail "as a part: $(cat "$work/out")"
  commands=$work/$compiler/compile_commands.json
  grep -q '"file": .*/tools/' "$commands" || fail "$commands lacks the tool"
  ! grep -m 3 -E -e '"file": .*/(tests|bench|examples)/' -e -Werror "$commands" ||
    fail "as a part of a project it has the above"
done
