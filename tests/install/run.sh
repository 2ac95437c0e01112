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
  emulate "$1"
}

# Has the tree's programs, if they are not this machine's, start through scripts as in the build tree.
emulate() {
  local program name
  [[ $SYSROOT ]] || return 0
  mkdir -p "$1/target-bin" "$1/emulator"
  for program in "$1"/bin/*; do
    [[ $(head -c 4 "$program" | tr -d '\177') = ELF ]] || continue
    name=${program##*/}
    mv "$program" "$1/target-bin/"
    ln -sf "$EMULATOR" "$1/emulator/$name"
    printf '#!/bin/sh\nexec %s -L %s %s "$@"\n' "$1/emulator/$name" "$SYSROOT" \
      "$1/target-bin/$name" >"$program"
    chmod +x "$program"
  done
  cp "$BUILD"/lib/orv-camera/{ps,cat,needed-trees} "$1/lib/orv-camera/"
}

compile_c() {
  "$CC" ${SYSROOT:+--sysroot="$SYSROOT"} -std=c11 -Wall -Wextra -Werror "$@"
}

compile_cpp() {
  "$CXX" ${SYSROOT:+--sysroot="$SYSROOT"} -std=c++17 -Wall -Wextra -Werror "$@"
}

glib_flags() {
  if [[ $SYSROOT ]]; then
    PKG_CONFIG_SYSROOT_DIR=$SYSROOT PKG_CONFIG_LIBDIR=$SYSROOT/usr/lib/arm-linux-gnueabihf/pkgconfig \
      pkg-config --cflags --libs glib-2.0
  else
    pkg-config --cflags --libs glib-2.0
  fi
}

rm -rf "$work"
mkdir -p "$work"
cd "$work"
source "$script"
