# Of the runtime the agent needs libc alone: a camera's C++ library may be older than what the agent
# was built with. Older libcs are three libraries, and on ARM the stack protector's guard is in the
# loader.
libc='(lib(c|dl|pthread)|ld-linux-armhf)\.so\.[0-9]+'
needed() {
  readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]$/\1/p' | LC_ALL=C sort
}
expect 'libraries of the agent beside libc' 'libX11.so.6
libXtst.so.6
libdlog.so.0
libglib-2.0.so.0
libvconf.so.0
libversion-info.so.0' "$(needed "$BUILD/$LIBDIR/liborv-agent.so" | grep -vxE "$libc")"

runtime='(libc|libm|libgcc_s|libstdc\+\+|ld-linux[a-z0-9-]*)\.so\.[0-9]+'
expect "the client's libraries beside the runtime" 'libglib-2.0.so.0
libvconf.so.0' "$(needed "$BUILD/$LIBDIR/liborv-client.so" | grep -vxE "$runtime")"

# The tool reaches the platform through the client library alone.
expect "the tool's libraries beside the runtime" 'libglib-2.0.so.0
liborv-client.so.0' "$(needed "$BUILD/${SYSROOT:+target-}bin/orvctl" | grep -vxE "$runtime")"

# Neither holds a piece of the stand-ins, which the camera's own libraries replace.
pieces_in() {
  "$NM" -C "$1" | grep -E ' (vconf|dlog|platform)::' || true
}
[[ $(pieces_in "$BUILD/$LIBDIR/libvconf.so.0") ]] || fail 'no piece is found in a stand-in itself'
for file in "$BUILD/$LIBDIR/liborv-client.so" "$BUILD/${SYSROOT:+target-}bin/orvctl"; do
  expect "pieces of the stand-ins in $file" '' "$(pieces_in "$file")"
done
