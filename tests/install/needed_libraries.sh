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
