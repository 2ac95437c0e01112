# The camera without namespaces: root only, on the machine's own /tmp and /sdcard, one at a
# time by nature. Read by `camera`.

# Everything that runs in the camera carries this in its environment, daemons included.
carries_mark() {
  local environment
  for environment in $(grep -lsF "ORV_CAMERA_SCRATCH=$scratch" /proc/[0-9]*/environ); do
    echo "${environment//[!0-9]/}"
  done
}

# Waits for the end of the runner, however it comes: only the runner holds the other end
# of standard input.
clean_up_afterwards() {
  local pids
  trap '' INT TERM HUP
  read -r
  while pids=$(carries_mark) && [[ $pids ]]; do
    # shellcheck disable=SC2086 # one word each
    kill -KILL $pids 2>/dev/null
  done
  rm -rf -- "$scratch"
  [[ $made_sdcard = no ]] || rm -rf /sdcard
}

# A command in the background ignores SIGINT, which env takes back; the substitution's
# status is lost to an exit here, the runner waits for it by hand.
run_camera() {
  local lifeline cleaner made_sdcard=no status
  ((${#binds[@]} == 0)) || fail "--bind needs namespaces, and the kernel refuses them"
  scratch=$(mktemp -d /dev/shm/orv-camera.XXXXXX) || fail "cannot make a directory in /dev/shm"
  mkdir -m 0700 "$scratch/platform"
  [[ -d /sdcard ]] || { mkdir -m 1777 /sdcard && made_sdcard=yes; }
  exec {lifeline}> >(clean_up_afterwards)
  cleaner=$!
  trap 'exit 130' INT
  trap 'exit 143' TERM
  trap 'exec {lifeline}>&-; wait $cleaner' EXIT
  ORV_CAMERA_SCRATCH=$scratch ORV_PLATFORM_ROOT=${store:-$scratch/platform} \
    env --default-signal=INT,QUIT bash "$libexec/inside.sh" "$scratch" "$display" "$app" \
    "${command[@]}" <&0 {lifeline}>&- &
  wait $!
  status=$?
  exit "$status"
}
