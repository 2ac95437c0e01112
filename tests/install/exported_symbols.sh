# Each library exports what its list names, and nothing else.
for library in agent client; do
  "$NM" -D --defined-only "$BUILD/$LIBDIR/liborv-$library.so" | awk '{ print $3 }' |
    LC_ALL=C sort >exported
  LC_ALL=C sort "$here/exported-symbols-$library.txt" >listed
  diff -u listed exported || fail "the exported symbols of liborv-$library are not those of the list"
done
