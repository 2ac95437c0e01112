# Beside the C and C++ runtime and its loader, the libraries need what a camera has, and nothing else.
runtime='(libc|libm|libgcc_s|libstdc\+\+|ld-linux[a-z0-9-]*)\.so\.[0-9]+'
readelf -d "$BUILD/$LIBDIR/liborv-agent.so" | sed -n 's/.*(NEEDED).*\[\(.*\)\]$/\1/p' >needed
expect 'libraries beside the runtime' 'libX11.so.6
libXtst.so.6
libdlog.so.0
libglib-2.0.so.0
libvconf.so.0
libversion-info.so.0' "$(grep -vxE "$runtime" needed | LC_ALL=C sort)"

readelf -d "$BUILD/$LIBDIR/liborv-client.so" | sed -n 's/.*(NEEDED).*\[\(.*\)\]$/\1/p' >client.needed
expect "the client's libraries beside the runtime" 'libglib-2.0.so.0
libvconf.so.0' "$(grep -vxE "$runtime" client.needed | LC_ALL=C sort)"

# The tool reaches the platform through the client library alone.
readelf -d "$BUILD/${SYSROOT:+target-}bin/orvctl" >orvctl.dynamic
sed -n 's/.*(NEEDED).*\[\(.*\)\]$/\1/p' orvctl.dynamic >orvctl.needed
expect "the tool's libraries beside the runtime" 'libglib-2.0.so.0
liborv-client.so.0' "$(grep -vxE "$runtime" orvctl.needed | LC_ALL=C sort)"

# Neither holds a piece of the stand-ins, which the camera's own libraries replace.
pieces_in() {
  "$NM" -C "$1" | grep -E ' (vconf|dlog|platform)::' || true
}
[[ $(pieces_in "$BUILD/$LIBDIR/libvconf.so.0") ]] || fail 'no piece is found in a stand-in itself'
for file in "$BUILD/$LIBDIR/liborv-client.so" "$BUILD/${SYSROOT:+target-}bin/orvctl"; do
  expect "pieces of the stand-ins in $file" '' "$(pieces_in "$file")"
done
