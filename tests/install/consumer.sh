# A host in C and clients in C and C++, built against the installed tree through pkg-config and
# through CMake, run.
prefix=$work/prefix
install_tree "$prefix"
read -ra instrumentation <<<"$INSTRUMENTATION"
read -ra glib < <(glib_flags)

# name library source [GLIB...]
build_by_pkg_config() {
  local flags compiler=compile_c
  [[ $3 == *.c ]] || compiler=compile_cpp
  read -ra flags < <(PKG_CONFIG_PATH=$prefix/$LIBDIR/pkgconfig pkg-config --cflags --libs "$2")
  $compiler -Wpedantic "${instrumentation[@]}" "$3" -o "$prefix/bin/pkg-config-$1" \
    "${flags[@]}" "${@:4}" -Wl,-rpath,"$prefix/$LIBDIR"
}
build_by_pkg_config host orv-agent "$here/consumer/host.c" "${glib[@]}"
build_by_pkg_config drive-c orv-client "$SOURCE/examples/drive.c"
build_by_pkg_config drive-cpp orv-client "$SOURCE/examples/drive.cpp" "${glib[@]}"

# A search outside of a sysroot has to be told where.
packages=$prefix/$LIBDIR/cmake
"$CMAKE" -S "$here/consumer" -B cmake -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$CC" \
  -DCMAKE_CXX_COMPILER="$CXX" -DEXAMPLES="$SOURCE/examples" \
  ${SYSROOT:+-DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN" -Dorv-agent_DIR="$packages/orv-agent" -Dorv-client_DIR="$packages/orv-client"} \
  -DCMAKE_C_FLAGS="$INSTRUMENTATION" -DCMAKE_CXX_FLAGS="$INSTRUMENTATION" >configure.log ||
  fail "find_package: $(<configure.log)"
"$CMAKE" --build cmake >build.log || fail "$(<build.log)"
for program in host drive-c drive-cpp; do
  cp cmake/$program "$prefix/bin/cmake-$program"
done
emulate "$prefix"

# in_camera OPTIONS... -- HOST COMMAND...: the host starts the agent and then the command.
in_camera() {
  "$prefix/bin/orv-camera" --require-namespaces "$@" >out || exit
  expect "$*" 'the command ended with 0' "$(tail -n 1 out)"
}
for how in pkg-config cmake; do
  in_camera --no-display -- "$prefix/bin/$how-host" "$prefix/bin/orvctl" target
  for language in c cpp; do
    in_camera -- "$prefix/bin/$how-host" "$prefix/bin/$how-drive-$language"
    for said in '^tap: done$' '(^| )lumen-ui-host' '^[0-9]+ bytes free$'; do
      grep -qE "$said" out || fail "$how-drive-$language says no '$said': $(<out)"
    done
  done
done
