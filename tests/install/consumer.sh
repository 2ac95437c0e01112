# A host in C, built against the installed tree through pkg-config and through CMake, runs.
prefix=$work/prefix
install_tree "$prefix"
read -ra instrumentation <<<"$INSTRUMENTATION"

PKG_CONFIG_PATH=$prefix/$LIBDIR/pkgconfig flags_of flags pkg-config --cflags --libs orv-agent
flags_of glib glib_flags
compile_c -std=c11 -Wpedantic "${instrumentation[@]}" "$here/consumer/host.c" \
  -o "$prefix/bin/pkg-config-host" "${flags[@]}" "${glib[@]}" -Wl,-rpath,"$prefix/$LIBDIR"

# A search outside of a sysroot has to be told where.
"$CMAKE" -S "$here/consumer" -B cmake -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$CC" \
  ${SYSROOT:+-DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" -Dorv-agent_DIR="$prefix/$LIBDIR/cmake/orv-agent"} \
  -DCMAKE_C_FLAGS="$INSTRUMENTATION" >configure.log || fail "find_package: $(<configure.log)"
"$CMAKE" --build cmake >build.log || fail "$(<build.log)"
cp cmake/host "$prefix/bin/cmake-host"
emulate "$prefix"

for host in pkg-config-host cmake-host; do
  "$prefix/bin/orv-camera" --require-namespaces --no-display -- \
    "$prefix/bin/$host" "$prefix/bin/orvctl" >"$host.out" || exit
  expect "$host" 'the tool ended with 0' "$(tail -n 1 "$host.out")"
done
