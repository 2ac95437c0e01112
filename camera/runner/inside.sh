# Run inside the camera: inside.sh SCRATCH DISPLAY APP COMMAND [ARGUMENT...]
# starts the X server and the application (each yes or no) and becomes COMMAND.
set -u

fail() {
  echo "camera: $*" >&2
  exit 125
}

# Both servers say on descriptor 3 that they are ready and close it: the substitution ends
# then, or when they die. Its subshell ends at once, so they become children of the
# camera's first process, which reaps them: COMMAND has no child that it did not start,
# and a dead application leaves no entry in /proc.
start_display() {
  local number
  number=$(Xvfb -displayfd 3 -screen 0 800x480x24 -noreset -nolisten tcp -nolisten unix \
    3>&1 >"$scratch/xvfb.log" 2>&1 &)
  [[ $number ]] || fail "Xvfb did not start: $(tail -n 1 "$scratch/xvfb.log")"
  export DISPLAY=:$number
}

start_app() {
  local ready
  ready=$(lumen-ui-host --ready-fd 3 3>&1 >/dev/null &)
  [[ $ready ]] || fail "the application lumen-ui-host did not start"
}

scratch=$1 display=$2 app=$3
shift 3
unset DISPLAY XAUTHORITY
[[ $display = no ]] || start_display
[[ $app = no ]] || start_app
if ! type -P -- "$1" >/dev/null; then
  echo "camera: $1: no such program in the camera (its /tmp is empty; --bind adds files)" >&2
  exit 127
fi
if [[ ${ORV_CAMERA_READY-} ]]; then
  echo ready >&"$ORV_CAMERA_READY"
  exec {ORV_CAMERA_READY}>&-
  unset ORV_CAMERA_READY
fi
exec -- "$@"
