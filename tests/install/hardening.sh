# Everything that is installed is hardened as far as its architecture goes, without a run path.
"$CMAKE" --install "$BUILD" --prefix "$work/prefix" >install.log || fail "$(tail -n 3 install.log)"
"$SOURCE/scripts/hardening" "$work/prefix" >table || fail "$(<table)"
for file in bin/orv-host bin/orvctl bin/dlogutil bin/lumen-ui-host "$LIBDIR/liborv-agent.so" \
  "$LIBDIR/libvconf.so" lib/orv-camera/ps; do
  grep -q "^$file" table || fail "the table lacks $file: $(<table)"
done
! grep -q ' ? ' table || fail "files without debug information: $(<table)"

# No file shows whether its calls were all looked at; the compiler's command line does.
! grep '"command"' "$BUILD/compile_commands.json" | grep -v -m 1 -e -D_FORTIFY_SOURCE=3 ||
  fail 'a source is compiled without checks of buffer sizes'
