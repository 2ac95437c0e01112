# A host in C, built against the installed tree through pkg-config and through CMake, runs.
prefix=$work/prefix
install_tree "$prefix"
export PKG_CONFIG_PATH=$prefix/$LIBDIR/pkgconfig
read -ra instrumentation <<<"$INSTRUMENTATION"

read -ra flags < <(pkg-config --cflags --libs orv-agent glib-2.0)
"$CC" -std=c11 -Wall -Wextra -Wpedantic -Werror "${instrumentation[@]}" "$here/consumer/host.c" \
  -o "$prefix/bin/pkg-config-host" "${flags[@]}" -Wl,-rpath,"$prefix/$LIBDIR"

"$CMAKE" -S "$here/consumer" -B cmake -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$CC" \
  -DCMAKE_C_FLAGS="$INSTRUMENTATION" >configure.log || fail "find_package: $(<configure.log)"
"$CMAKE" --build cmake >build.log || fail "$(<build.log)"
cp cmake/host "$prefix/bin/cmake-host"

for host in pkg-config-host cmake-host; do
  "$prefix/bin/orv-camera" --require-namespaces --no-display -- \
    "$prefix/bin/$host" "$prefix/bin/orvctl" >"$host.out" || exit
  expect "$host" 'the tool ended with 0' "$(tail -n 1 "$host.out")"
done
