# The Debian packages, unpacked into a tree of their own: what they need, what they hold, and that
# their programs run from there.
if [[ $SYSROOT ]]; then
  echo 'skipped: install_packages: what packages of this architecture need is told by an installed system of it, not by a sysroot'
  exit 77
fi
"${CMAKE%cmake}cpack" --config "$BUILD/CPackConfig.cmake" -B packages >cpack.log 2>&1 ||
  fail "$(tail -n 5 cpack.log)"
names=$(for package in packages/*.deb; do dpkg-deb -f "$package" Package; done)
expect 'packages' $'liborv-agent\nliborv-agent-dev\nliborv-client\nliborv-client-dev\norv-camera-sim\norv-tools' "$(sort <<<"$names")"

version=$(dpkg-deb -f packages/liborv-agent_*.deb Version)
needs() {
  dpkg-deb -f packages/"$1"_"$version"_*.deb Depends | sed 's/ ([^)]*)//g'
}
contains() {
  [[ ", $2, " == *", $3, "* ]] || fail "$1 does not depend on $3: $2"
}
for package in liborv-agent liborv-client orv-tools orv-camera-sim; do
  contains $package "$(needs $package)" libglib2.0-0
done
contains orv-camera-sim "$(needs orv-camera-sim)" bubblewrap
contains orv-camera-sim "$(needs orv-camera-sim)" xvfb
for user in liborv-agent-dev/liborv-agent liborv-client-dev/liborv-client orv-tools/liborv-client; do
  contains "${user%/*}" "$(dpkg-deb -f packages/"${user%/*}"_*.deb Depends)" "${user#*/} (= $version)"
done
# A camera has the platform's libraries without this package.
for package in liborv-agent liborv-client; do
  [[ $(needs $package) != *orv-camera-sim* ]] || fail "$package insists on the simulated camera"
done

# No file comes twice, each package holds what it is for.
for package in packages/*.deb; do
  name=$(dpkg-deb -f "$package" Package)
  dpkg-deb --fsys-tarfile "$package" | tar -t | grep -v '/$' | sed 's|^\./||' >"$name.files"
  dpkg-deb -x "$package" tree
done
expect 'files in two packages' '' "$(sort ./*.files | uniq -d)"
holds() {
  local file
  for file in "${@:2}"; do
    grep -qx "$file" "$1.files" || fail "$1 lacks $file"
  done
}
holds liborv-agent usr/bin/orv-host usr/lib/systemd/system/orv-host.service \
  usr/share/man/man8/orv-host.8.gz "usr/$LIBDIR/liborv-agent.so.0"
holds liborv-agent-dev "usr/$LIBDIR/liborv-agent.so" "usr/$LIBDIR/pkgconfig/orv-agent.pc" \
  usr/include/orv/agent.h
holds liborv-client "usr/$LIBDIR/liborv-client.so.0"
holds liborv-client-dev "usr/$LIBDIR/liborv-client.so" "usr/$LIBDIR/pkgconfig/orv-client.pc" \
  usr/include/orv/client.h usr/include/orv/client.hpp \
  "usr/$LIBDIR/cmake/orv-client/orv-client-config.cmake"
holds orv-tools usr/bin/orvctl usr/share/man/man1/orvctl.1.gz \
  usr/share/bash-completion/completions/orvctl usr/share/zsh/vendor-completions/_orvctl
holds orv-camera-sim usr/bin/orv-camera usr/bin/dlogutil usr/bin/lumen-ui-host \
  "usr/$LIBDIR/libvconf.so.0" "usr/$LIBDIR/libdlog.so.0" "usr/$LIBDIR/libversion-info.so.0"

for page in tree/usr/share/man/man?/*; do
  warnings=$(MANWIDTH=80 man --warnings -l -E UTF-8 "$page" 2>&1 >/dev/null)
  expect "warnings of $page" '' "$warnings"
done
man -l -E ascii -P cat tree/usr/share/man/man1/orvctl.1.gz >orvctl.txt
for subcommand in $(tree/usr/bin/orvctl --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]\S*\).*/\1/p') \
  'monitor watch'; do
  section=$(awk -v "head=   orvctl $subcommand " '
    /^(   )?[a-zA-Z]/ { inside = 0 } index($0, head) == 1 { inside = 1 } inside' orvctl.txt)
  options=$(tree/usr/bin/orvctl $subcommand --help | sed -nE 's/^  (-.,)?(--[a-z]+).*/\2/p')
  for option in ${options:-without}; do
    grep -qE "^       (-., )?$option( |$)" <<<"$section" ||
      fail "the manual page lacks $subcommand $option"
  done
done
grep -q '^              Default: 250\.$' orvctl.txt || fail 'the manual page lacks a default'

# The verifier looks for programs in the machine's own directories, where orv-host is not.
if type -P systemd-analyze >/dev/null; then
  complaints=$(systemd-analyze verify --man=no tree/usr/lib/systemd/system/orv-host.service 2>&1 |
    grep -v 'Command orv-host is not executable' || true)
  expect 'complaints about the unit' '' "$complaints"
fi

# A copy of the build tree's run path would find the build tree's libraries.
for program in tree/usr/bin/orv-host tree/usr/bin/orvctl "tree/usr/$LIBDIR/"liborv-{agent,client}.so.0; do
  ! readelf -d "$program" | grep -qF "$BUILD" || fail "$program looks into the build tree"
done
# The demonstration's story, from the unpacked files alone.
cp "$SOURCE/scripts/demo-story" tree/usr/story
tree/usr/bin/orv-camera --require-namespaces -- "$work/tree/usr/story" "$work/tree/usr/screen.png" \
  >story.txt 2>&1 || exit
for said in 'platform    Q7' 'tap KEY_MENU: done' 'release 640,210: done' 'free memory: least' \
  'The host ended with status 0'; do
  grep -qF "$said" story.txt || fail "the story lacks: $said; it is in $work/story.txt"
done
# A picture of the empty display is small, that of the application is not.
(($(stat -c %s tree/usr/screen.png) > 100000)) || fail "the screenshot shows little"
