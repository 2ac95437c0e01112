# run.sh WORK SCRIPT: runs a test script in the empty directory WORK, with helpers.
set -euo pipefail
shopt -s inherit_errexit

work=$1 script=$2
here=$(dirname "$script")

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}

# expect WHAT WANTED SEEN
expect() {
  [[ $2 == "$3" ]] || fail "$1"$'\n'"wanted: $2"$'\n'"   saw: $3"
}

# The tree that `cmake --install` makes, all components.
install_tree() {
  "$CMAKE" --install "$BUILD" --prefix "$1" >install.log || fail "$(tail -n 3 install.log)"
}

rm -rf "$work"
mkdir -p "$work"
cd "$work"
source "$script"
