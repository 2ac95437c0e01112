#!/bin/bash
# The runner with namespaces: what a command sees, and that all of it ends.
# runner_test.sh BUILD_DIR
source "$(dirname "${BASH_SOURCE[0]}")/shell_test.sh"

"$camera" --require-namespaces --no-display -- true || exit

bare() {
  "$camera" --no-display "$@"
}

namespace_is_empty() {
  ! readlink /proc/[0-9]*/ns/pid | grep -qxF "$1"
}

test_command_sees_only_its_own_processes_files_and_network() {
  touch "$scratch_dir/outside"
  # The build and its sources are brought in wherever they lie; that may be in /tmp.
  DISPLAY=:0 bare -- bash -c 'find /tmp /sdcard ! -type d | grep -vFf "$1"; processes=(/proc/[0-9]*)
    echo "${#processes[@]}"; grep -c : /proc/net/dev; stat -c %a "$ORV_PLATFORM_ROOT"
    ls -A "$ORV_PLATFORM_ROOT"; echo "${DISPLAY-none}"' bash "${camera%/bin/*}/lib/orv-camera/needed-trees" >"$scratch_dir/seen"
  expect_equal "$(<"$scratch_dir/seen")" $'2\n1\n700\nnone'
}

test_nothing_of_the_camera_lands_on_the_machine() {
  local before
  before=$(ls -A /)
  bare --bind /etc/passwd /made/by/bind -- \
    bash -c 'touch "/tmp/$1" /sdcard/b "$ORV_PLATFORM_ROOT"/c /d && test -s /made/by/bind' \
    bash "${scratch_dir##*/}-mark"
  expect_equal "$?" 0
  expect_equal "$(ls -A /)" "$before"
  [[ ! -e /tmp/${scratch_dir##*/}-mark ]] || fail_check "the camera's /tmp is the machine's"
}

test_exit_status_is_the_commands() {
  bare -- bash -c 'exit 7'
  expect_equal "$?" 7
  bare -- bash -c 'kill -KILL $$'
  expect_equal "$?" 137
}

test_stdin_and_arguments_reach_the_command_unchanged() {
  expect_equal "$(printf 'a  b' | bare -- bash -c 'cat; printf "<%s>" "$@"' - ' * ' '')" \
    'a  b< * ><>'
}

test_all_ends_when_the_runner_is_ended_by_a_signal() {
  expect_end_by_signals namespace_is_empty
}

# The agent looks for the application by name among all processes, dead ones included. A
# command that never waits for children, as sleep, must not be left with a dead one.
test_dead_application_leaves_no_process_behind() {
  "$camera" --store "$scratch_dir/reaped" -- bash -c '
    app=$(pgrep lumen-ui-host)
    { kill -KILL "$app"; for _ in {1..500}; do [[ -e /proc/$app ]] || break; sleep 0.02; done
      [[ -e /proc/$app ]] || touch "$ORV_PLATFORM_ROOT/gone"; kill $$; } &
    exec sleep 60'
  [[ -e $scratch_dir/reaped/gone ]] || fail_check "a zombie stays"
}

test_detached_camera_outlives_its_starter_and_ends_for_certain() {
  local name=test-$BASHPID
  unique_sleep
  expect_equal "$(setsid "$camera" --no-app --detach --name "$name" -- bash -c \
    "setsid sleep $sleep_seconds & orv-host & wait" | cut -d' ' -f-3)" "camera $name runs;"
  expect_failure 125 "camera: a camera named $name runs already; camera stop $name ends it" \
    "$camera" --detach --name "$name" -- true
  local store
  store=$("$camera" list | sed -n "s/^$name *running .* //p")
  wait_until "${camera%/*}/orvctl" --store "$store" --timeout 1 target >/dev/null
  "$camera" stop "$name"
  expect_equal "$? $(pgrep -fc "sleep $sleep_seconds") $("$camera" list | grep -c "$name")" '0 0 0'
  expect_failure 125 "camera: no camera named $name; camera list names them" "$camera" stop "$name"
  "$camera" --no-display --detach --name "$name" -- bash -c 'exit 7' >/dev/null
  has_ended() { "$camera" list | grep -q "^$name *ended 7 "; }
  wait_until has_ended
  "$camera" stop "$name"
}

test_store_outlives_the_camera_and_is_shared_with_the_outside() {
  local store=$scratch_dir/store
  bare --store "$store" -- bash -c 'echo inside >"$ORV_PLATFORM_ROOT/value"'
  expect_equal "$(stat -c %a "$store") $(<"$store/value")" '700 inside'
}

test_bound_file_is_read_only() {
  echo original >"$scratch_dir/file"
  bare --bind "$scratch_dir/file" /sdcard/file -- bash -c 'echo new >/sdcard/file' 2>/dev/null
  expect_equal "$?: $(<"$scratch_dir/file")" '1: original'
}

test_wrong_use_gets_one_line() {
  expect_failure 125 'camera: no command given: camera [OPTION...] -- COMMAND [ARGUMENT...]' bare
  expect_failure 125 'camera: unknown option --nap (camera --help lists them)' \
    "$camera" --nap -- true
  expect_failure 125 'camera: --bind needs two paths, SRC and DEST' bare --bind /etc/passwd
  expect_failure 125 'camera: --bind: /none does not exist' bare --bind /none /tmp/x -- true
  expect_failure 125 'camera: --bind: /tmp/../etc/x is not an absolute path' \
    bare --bind /etc/passwd /tmp/../etc/x -- true
  expect_failure 125 \
    'camera: --bind: /usr/lib/none does not exist, and making it would change this machine' \
    bare --bind /etc/passwd /usr/lib/none -- true
  expect_failure 125 'camera: --store: cannot make the directory /proc/none' \
    bare --store /proc/none -- true
  expect_failure 125 'camera: --detach needs --name NAME' bare --detach -- true
  expect_failure 125 'camera: "../x" is no name: 1 to 64 of A-Z a-z 0-9 . _ -, the first one no . or -' \
    bare --detach --name ../x -- true
  expect_failure 127 \
    'camera: nap: no such program in the camera (its /tmp is empty; --bind adds files)' \
    bare -- nap
}

run_tests
