#!/bin/bash
# The runner where the kernel refuses namespaces: root works on the real paths and takes all
# away again, others get an error. Runs inside a camera, whose root stands for the machine's.
# no_namespaces_test.sh BUILD_DIR
source "$(dirname "${BASH_SOURCE[0]}")/shell_test.sh"

refusal='the kernel refuses namespaces, using the real /tmp and /sdcard: .*'

# A user namespace that may have no more of them below it, without privileges over its own.
refusing=(unshare --user --map-root-user bash -c '
  echo 0 >/proc/sys/user/max_user_namespaces
  exec setpriv --bounding-set -sys_admin --inh-caps -sys_admin "$@"' -)

# The same, for user 1000 in the one namespace below it.
refusing_user=(unshare --user --map-root-user bash -c '
  echo 1 >/proc/sys/user/max_user_namespaces
  exec unshare --user --map-user=1000 "$@"' -)

machine_is_clean() {
  [[ ! -e /sdcard && -z $(ls -A /dev/shm) ]] && is_gone "Xvfb .*"
}

rmdir /sdcard

test_root_works_on_the_real_paths() {
  "${refusing[@]}" "$camera" --no-app -- bash -c 'orv-screenshot /dev/null && touch /tmp/real-path
    ls -A /sdcard; stat -c %a "$ORV_PLATFORM_ROOT"; exit 7' >"$scratch_dir/out" 2>"$scratch_dir/err"
  expect_equal "$?" 7
  expect_equal "$(<"$scratch_dir/out")" 700
  [[ $(<"$scratch_dir/err") =~ ^camera:\ $refusal$ ]] || fail_check "$(<"$scratch_dir/err")"
  [[ -e /tmp/real-path ]] || fail_check "the command saw another /tmp"
  machine_is_clean || fail_check "left behind: $(ls -d /sdcard /dev/shm/*) $(pgrep -fl Xvfb)"
}

test_card_that_was_there_stays() {
  mkdir /sdcard
  "${refusing[@]}" "$camera" --no-display -- touch /sdcard/picture 2>/dev/null
  expect_equal "$(ls /sdcard)" picture
  rm -r /sdcard
}

test_all_ends_when_the_runner_is_ended_by_a_signal() {
  expect_end_by_signals machine_is_clean "${refusing[@]}"
}

test_namespaces_can_be_required() {
  "${refusing[@]}" "$camera" --require-namespaces --no-display -- true 2>"$scratch_dir/err"
  expect_equal "$? $(wc -l <"$scratch_dir/err")" '77 1'
}

test_ordinary_user_gets_an_error() {
  "${refusing_user[@]}" "$camera" --no-display -- true 2>"$scratch_dir/err"
  expect_equal "$? $(wc -l <"$scratch_dir/err")" '125 1'
}

run_tests
