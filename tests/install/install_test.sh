#!/usr/bin/env bash
# Installs a built tree into a temporary prefix, then builds and runs the consumer example against
# it through find_package (shared and static targets) and through pkg-config, and runs the
# installed brixq on its installed sample; every installed header must compile on its own.
# Exit status 77 means skipped.
# Usage: install_test.sh BUILD_DIR SOURCE_DIR WORK_DIR GENERATOR CXX SANITIZE
set -euo pipefail
build_dir=$1 source_dir=$2 work=$3 generator=$4 cxx=$5 sanitize=$6

if [ "$sanitize" = "ON" ]; then
  # Instrumented libraries need the sanitizer runtime linked first into every host program.
  echo "skipped: the install test runs in builds without sanitizers"
  exit 77
fi

rm -rf "$work"
mkdir -p "$work"
prefix=$work/prefix
consumer_source=$source_dir/examples/consumer
expected="SELECT [Customers].Name AS Client FROM [Customers] WHERE ([Customers].City = 'Cluj') ORDER BY Customers.Name ASC LIMIT 10
Oras sa fie 'Cluj'"

expect_output() {
  local what=$1 actual=$2 wanted=$3
  if [ "$actual" != "$wanted" ]; then
    printf '%s printed:\n%s\nexpected:\n%s\n' "$what" "$actual" "$wanted"
    exit 1
  fi
  echo "ok: $what"
}

cmake --install "$build_dir" --prefix "$prefix" > "$work/install.log"

# Every installed header compiles on its own (and twice in one file) in a host program, and all of
# them together in one file, in list order and reversed (no two headers declare the same thing).
include_dir=$prefix/include/brixobjects4
mapfile -t headers < "$build_dir/installed_headers.txt"
compile() {
  "$cxx" -std=c++20 -fsyntax-only -Wall -Wextra -Werror -I"$include_dir" "$1"
}
for header in "${headers[@]}"; do
  printf '#include "%s"\n#include "%s"\nint main() {}\n' "$header" "$header" > "$work/one_header.cpp"
  if ! compile "$work/one_header.cpp"; then
    echo "the installed header $header does not compile on its own"
    exit 1
  fi
done
echo "ok: each of the ${#headers[@]} installed headers compiles on its own"
for order in forward reverse; do
  if [ "$order" = forward ]; then list=("${headers[@]}"); else mapfile -t list < <(printf '%s\n' "${headers[@]}" | tac); fi
  { printf '#include "%s"\n' "${list[@]}"; echo 'int main() {}'; } > "$work/all_headers.cpp"
  if ! compile "$work/all_headers.cpp"; then
    echo "the installed headers do not compile together ($order order)"
    exit 1
  fi
done
echo "ok: the installed headers compile together in both orders"

cmake -S "$consumer_source" -B "$work/consumer" -G "$generator" -DCMAKE_CXX_COMPILER="$cxx" \
      -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF > "$work/configure.log"
cmake --build "$work/consumer" > "$work/build.log"
expect_output "find_package, shared library" "$("$work/consumer/consumer")" "$expected"
expect_output "find_package, static library" "$("$work/consumer/consumer_static")" "$expected"

pc_file=$(find "$prefix" -name brixobjects4.pc)
export PKG_CONFIG_PATH=${pc_file%/*}
# shellcheck disable=SC2046  # the flags are meant to split
"$cxx" "$consumer_source/main.cpp" $(pkg-config --cflags --libs brixobjects4) -o "$work/consumer_pc"
expect_output "pkg-config" \
  "$(LD_LIBRARY_PATH=$(pkg-config --variable=libdir brixobjects4) "$work/consumer_pc")" "$expected"

rows=$("$prefix/bin/brixq" run --top 1 "$prefix/share/brixobjects4/orders.xml")
expect_output "installed brixq on the installed sample database" "$(tail -n 1 <<< "$rows")" "(1 row)"
