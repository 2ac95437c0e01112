# On a camera the agent runs with the camera's libraries. Here others than the stand-ins come first:
# the host's agent uses them and answers through them. So it does with an Xlib from years ago.
flags_of glib glib_flags
for library in vconf dlog version-info; do
  compile_c -std=gnu2x -shared -fPIC "$here/platform.c" -o lib$library.so.0 "${glib[@]}"
done
for library in X11 Xtst; do
  compile_c -std=c11 -shared -fPIC "$here/old_xlib.c" -o lib$library.so.6
done

LD_LIBRARY_PATH=$work timeout 60 "$BUILD/bin/orv-host" >out 2>err || fail "the host: $(<err)"
answer=$(grep -A 1 '^memory/orv/result_data=C' out) || fail "no answer in: $(<out)"
expect 'the answer' 'memory/orv/result_data=CSC,Q7,ANOTHER,MP,9.9,240,RELEASE,0
memory/orv/result=0' "$answer"
expect 'the key' $'X open\nX key 1 104 1 0\nX close 1' "$(grep '^X' out)"
expect 'the stop' 'ignore memory/orv/cmd 1' "$(grep '^ignore' out)"
expect 'the first log line' \
  $'log 3 4 ORV orv_handler.cpp: orv_init_handler(LINE) > \e[33morv_init_handler+ \e[m' \
  "$(grep -m 1 '^log' out | sed 's/([0-9]*)/(LINE)/')"
