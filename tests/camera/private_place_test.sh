#!/bin/bash
# Runs the demonstration from sources and a build below /tmp, whose names have blanks. Each camera has
# a private /tmp, so the runner has to bring both in. The programs are copies from another build.
# private_place_test.sh BUILD_DIR SOURCE_DIR CMAKE
source "$(dirname "${BASH_SOURCE[0]}")/shell_test.sh"
built=$1 source_dir=$2 cmake=$3

"$camera" --require-namespaces --no-display -- true || exit

place=$(mktemp -d '/tmp/camera test.XXXXXX')
trap 'rm -rf "$place" "$scratch_dir"' EXIT
clone="$place/the sources" build="$place/the build"

set_up() {
  mkdir -p "$clone" "$build/bin"
  tar -C "$source_dir" --exclude=./build --exclude=./.git -c . | tar -C "$clone" -x
  cp -a "$built/lib" "$build/"
  cp "$built"/bin/{orv-host,orvctl,dlogutil,lumen-ui-host,orv-screenshot} "$build/bin/"
  "$cmake" -G Ninja -S "$clone" -B "$build" -DORV_BUILD_TESTS=OFF -DORV_BUILD_BENCH=OFF &&
    "$cmake" --build "$build" --target camera_runner
}

test_story_is_told_and_the_sources_stay_as_they_are() {
  set_up >"$scratch_dir/log" 2>&1 || fail_check "$(<"$scratch_dir/log")"
  touch "$scratch_dir/begin"
  cd "$clone" || fail_check "no $clone"
  ORV_BUILD_DIR=$build camera/camera -- scripts/demo-story "$build/demo.png" >"$scratch_dir/log" 2>&1
  expect_equal "$?: $(tail -n 1 "$scratch_dir/log")" \
    '0: The host ended with status 0. That was the camera.'
  [[ -s $build/demo.png ]] || fail_check "no screenshot"
  expect_equal "$(find "$clone" -newer "$scratch_dir/begin")" ''
}

run_tests
