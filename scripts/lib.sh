# Shared by the scripts: sourced, not run.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
export ORV_BUILD_DIR=$PWD/build/default

say() { printf '\n== %s\n' "$*"; }
fail() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# Output of a quiet step goes to a file; it is shown only when the step fails.
quietly() {
  local what=$1 log
  shift
  mkdir -p build
  log=build/${what// /-}.log
  "$@" >"$log" 2>&1 || {
    cat "$log" >&2
    fail "$what failed: $*"
  }
}

# packages_for WORD...: the packages of the list with one of these words, or '' for none, behind them.
packages_for() {
  local package word
  while read -r package word; do
    [[ $package && $package != '#'* && " $* " == *" $word "* ]] && echo "$package"
  done <scripts/packages.txt || true
}

# A mirror may be busy for a moment.
retry() {
  local attempt
  for attempt in 1 2 3; do
    "$@" && return
    ((attempt == 3)) || sleep $((attempt * 5))
  done
  return 1
}

# build PRESET [TARGET...]
build() {
  local preset=$1 start=$SECONDS
  shift
  say "Building ($preset)"
  quietly "configure $preset" cmake --preset "$preset"
  cmake --build --preset "$preset" ${*:+--target "$@"} || fail "the build failed; its errors stand above"
  echo "built in $((SECONDS - start)) s"
}
