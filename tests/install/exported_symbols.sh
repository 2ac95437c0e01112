# The library exports what the list names, and nothing else.
"$NM" -D --defined-only "$BUILD/$LIBDIR/liborv-agent.so" | awk '{ print $3 }' | LC_ALL=C sort >exported
LC_ALL=C sort "$here/exported-symbols.txt" >listed
diff -u listed exported || fail "the exported symbols are not those of the list"
