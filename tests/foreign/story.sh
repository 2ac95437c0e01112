# story.sh PLATFORM: runs in a camera, with the platform's libraries and programs of that directory
# in place of the stand-ins.
set -euo pipefail

platform=$1
ELSEWHERE=$(mktemp -d)
export ELSEWHERE LD_LIBRARY_PATH=$platform PATH=$platform:$PATH

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}

# says PATTERN WORD...: the command succeeds and prints a line that matches.
says() {
  local pattern=$1 out
  shift
  out=$("$@" 2>&1) || fail "$* ended with $?: $out"
  grep -qE -- "$pattern" <<<"$out" || fail "$*: no line matches '$pattern' in: $out"
}

# uses_platform PID: the process loads this platform's store, and no other's.
uses_platform() {
  local deadline=$((SECONDS + 20))
  until grep -q libvconf "/proc/$1/maps"; do
    ((SECONDS < deadline)) || fail "process $1 loads no store"
  done
  [[ $(grep -o '/[^ ]*/libvconf\.so.*' "/proc/$1/maps" | sort -u) = "$platform/libvconf.so.0" ]] ||
    fail "process $1 uses: $(grep vconf "/proc/$1/maps")"
}

exec 3< <(exec foreign-store-server)
read -r -t 20 -u 3 || fail 'the server did not start'
! early=$(orvctl target 2>&1) && [[ $early = *'no agent has been started'* ]] ||
  fail "orvctl target before there is a host: $early"

# start_host DIRECTORY...: with the libraries of these directories before all others.
start_host() {
  local deadline=$((SECONDS + 60)) directories
  directories=$(IFS=: && echo "$*")
  LD_LIBRARY_PATH=$directories orv-host >"$ELSEWHERE/host" 2>&1 &
  host=$!
  until orvctl --timeout 1 target &>/dev/null; do
    ((SECONDS < deadline)) || fail "no answer; the host: $(<"$ELSEWHERE/host")"
  done
}

stop_host() {
  kill "$host"
  wait "$host" || fail "the host ended with $?: $(<"$ELSEWHERE/host")"
}

start_host "$platform"
uses_platform "$host"

says 'CSC,Q7,ANOTHER,MP,9\.9,240,RELEASE,0$' orvctl send target_info
for _ in {1..20}; do
  says '^firmware    9\.9$' orvctl target
done
says '^total  [0-9]' orvctl heap
says '^ +[0-9]+  AeMain +256\.0 KiB +0x[0-9a-f]+' orvctl stack
says '' orvctl key tap KEY_MENU
says '' orvctl touch tap 100 100

orvctl monitor watch --json --for 3s >"$ELSEWHERE/watch" 2>&1 &
watcher=$!
says '' orvctl key tap KEY_OK
uses_platform "$watcher"
wait "$watcher" || fail "the watch ended with $?: $(<"$ELSEWHERE/watch")"
for item in heap stack; do
  says "^\{\"item\":\"$item\"" cat "$ELSEWHERE/watch"
done

says '^ORV 4: orv_handler\.cpp: orv_init_handler\([0-9]+\) > ' orvctl log --dump
stop_host
says 'orv_destroy_handler' orvctl log --dump

# An Xlib that lacks what came later, and whose display is no place in memory.
start_host "$platform/old-xlib" "$platform"
says '^press KEY_OK: done$' orvctl key press KEY_OK
stop_host
[[ $(grep '^X' "$ELSEWHERE/host") = $'X open\nX key 1 104 1 0\nX close 1' ]] ||
  fail "the old Xlib was called otherwise: $(<"$ELSEWHERE/host")"
