# Small test frame for the runner's scripts: read by them.
# Every function called test_* runs in a subshell of its own; a failed check ends it.

camera=$1/bin/camera
scratch_dir=$(mktemp -d "${TMPDIR:-/tmp}/camera-test.XXXXXX")
trap 'rm -rf "$scratch_dir"' EXIT

fail_check() {
  echo "  line ${BASH_LINENO[1]}: $*" >&2
  exit 1
}

expect_equal() {
  [[ $1 == "$2" ]] || fail_check "expected '$2', got '$1'"
}

# expect_failure STATUS LINE COMMAND...: exactly this one line on standard error.
expect_failure() {
  local status=$1 line=$2 output
  shift 2
  output=$("$@" 2>&1 >/dev/null)
  expect_equal "$?: $output" "$status: $line"
}

# wait_until CONDITION...: at most ten seconds.
wait_until() {
  local end=$((SECONDS + 10))
  until "$@"; do
    ((SECONDS < end)) || fail_check "waited in vain until $*"
    sleep 0.02
  done
}

# A command line that no other process has.
unique_sleep() {
  sleep_seconds=$((100000 + BASHPID)).$RANDOM
}

is_running() {
  pgrep -fx "$1" >/dev/null
}

is_gone() {
  ! is_running "$1"
}

# expect_end_by_signals IS_CLEAN [PREFIX...]: the camera, run by PREFIX, and all that it started.
expect_end_by_signals() {
  local is_clean=$1 signal runner namespace
  for signal in TERM INT KILL; do
    unique_sleep
    # A job in the background would ignore SIGINT, and hand that on.
    "${@:2}" env --default-signal=INT "$camera" --no-app -- \
      bash -c "setsid sleep $sleep_seconds & wait" 2>/dev/null &
    runner=$!
    wait_until is_running "sleep $sleep_seconds"
    namespace=$(readlink "/proc/$(pgrep -fx "sleep $sleep_seconds")/ns/pid")
    kill -s "$signal" "$runner"
    wait "$runner" 2>/dev/null
    expect_equal "$?" "$((128 + $(kill -l "$signal")))"
    wait_until is_gone "sleep $sleep_seconds"
    wait_until "$is_clean" "$namespace"
  done
}

run_tests() {
  local name failed=0
  for name in $(compgen -A function test_); do
    if ("$name"); then
      echo "ok $name"
    else
      echo "FAILED $name"
      failed=1
    fi
  done
  exit "$failed"
}
