# Cameras that outlive what started them: --detach, list and stop. Read by `camera`.
#
# Each has a directory under its name. What runs in the camera holds a lock on the file `lock` there,
# so whoever can take the lock knows that all of the camera has ended.

detached_home=/dev/shm/orv-cameras-$EUID

open_home() {
  [[ -d $detached_home ]] || mkdir -m 0700 -- "$detached_home" 2>/dev/null ||
    fail "cannot make the directory $detached_home"
  [[ ! -L $detached_home && -O $detached_home && $(stat -c %a -- "$detached_home") = 700 ]] ||
    fail "$detached_home is not a directory that belongs to this user alone; remove it"
}

check_name() {
  [[ $1 =~ ^[A-Za-z0-9_][A-Za-z0-9._-]{0,63}$ ]] ||
    fail "\"$1\" is no name: 1 to 64 of A-Z a-z 0-9 . _ -, the first one no . or -"
}

find_camera() {
  check_name "$1"
  open_home
  home=$detached_home/$1
  [[ -e $home/lock ]] || fail "no camera named $1; camera list names them"
}

is_running() {
  ! flock --exclusive --nonblock "$1/lock" true
}

from_status() {
  sed -n "s/.*\"$1\": *\([0-9]*\).*/\1/p" "$home/status" 2>/dev/null
}

# An ended camera keeps its directory, for its log, until its name is used again or stopped.
take_name() {
  check_name "$name"
  open_home
  home=$detached_home/$name
  mkdir -p -m 0700 -- "$home"
  exec {lock_fd}>>"$home/lock"
  flock --exclusive --nonblock "$lock_fd" ||
    fail "a camera named $name runs already; camera stop $name ends it"
  rm -rf -- "$home/store" "$home/status"
  if [[ ! $store ]]; then
    store=$home/store
    mkdir -m 0700 -- "$store"
  fi
  printf '%s\n' "$store" >"$home/store-path"
}

# The camera writes "ready" to descriptor 4 right before COMMAND begins.
run_detached() {
  local line='' answer
  take_name
  exec {answer}< <(exec 4>&1 </dev/null >"$home/log" 2>&1 5>"$home/status" && run_camera)
  read -r -u "$answer" line
  if [[ $line != ready ]]; then
    cat "$home/log" >&2
    rm -rf -- "$home"
    fail "the camera $name did not start"
  fi
  echo "camera $name runs; its store is $store, its output $home/log"
}

describe_camera() {
  local state=running
  is_running "$home" || state="ended $(from_status exit-code)"
  printf '%-20s %-9s %-17s %s\n' "${home##*/}" "$state" \
    "$(date -d "@$(stat -c %Y "$home/store-path")" '+%F %H:%M')" "$(<"$home/store-path")"
}

list_cameras() {
  open_home
  printf '%-20s %-9s %-17s %s\n' NAME STATE STARTED STORE
  for home in "$detached_home"/*/; do
    home=${home%/}
    [[ ! -e $home/store-path ]] || describe_camera
  done
}

# Killing the first process of a process namespace ends all others in it.
stop_camera() {
  find_camera "$1"
  if is_running "$home"; then
    kill -KILL "$(from_status child-pid)" 2>/dev/null
    flock --exclusive --timeout 10 "$home/lock" true ||
      fail "the camera $1 has not ended 10 s after SIGKILL"
  fi
  rm -rf -- "$home"
}

manage_cameras() {
  local wanted status=0
  if [[ $1 = list ]]; then
    (($# == 1)) || fail "list takes no arguments"
    list_cameras
    return
  fi
  (($# > 1)) || fail "stop needs the NAME of a camera; camera list names them"
  for wanted in "${@:2}"; do
    (stop_camera "$wanted") || status=$?
  done
  return "$status"
}
