# The camera in namespaces of its own, made by bubblewrap. Read by `camera`.

scratch=/orv-camera

# What has no counterpart on the machine is made in the camera's own root.
is_private() {
  local top=${1#/}
  top=/${top%%/*}
  case $top in
    /tmp | /sdcard | /dev | "$scratch") ;;
    *) [[ ! -e $top ]] ;;
  esac
}

# bwrap makes a missing mount point where it mounts: on the machine's own file system,
# unless the place is private.
check_binds() {
  local i source place
  for ((i = 0; i < ${#binds[@]}; i += 2)); do
    source=${binds[i]} place=${binds[i + 1]}
    [[ -e $source ]] || fail "--bind: $source does not exist"
    [[ $place = /* && /$place/ != */../* ]] || fail "--bind: $place is not an absolute path"
    is_private "$place" || [[ -e $place ]] ||
      fail "--bind: $place does not exist, and making it would change this machine"
  done
}

# For the same reason / is not brought in as a whole, but each of its entries.
root_entries() {
  local i path
  local -a entries
  mapfile -d '' entries < <(find / -mindepth 1 -maxdepth 1 -printf '%y%p\0%l\0')
  for ((i = 0; i < ${#entries[@]}; i += 2)); do
    path=${entries[i]:1}
    case ${entries[i]} in
      ?/proc | ?/dev | ?/tmp | ?/sdcard | ?"$scratch") ;;
      l*) mounts+=(--symlink "${entries[i + 1]}" "$path") ;;
      *) mounts+=(--bind "$path" "$path") ;;
    esac
  done
}

# A tree below a private place would be missing in the camera. The place itself stays the camera's.
is_hidden() {
  is_private "$1" && [[ $1 = /*/?* && -e $1 ]]
}

collect_mounts() {
  local i tree
  local -a trees=("$prefix")
  # Of a build tree: itself under the name that it was made by, its sources, and what else it needs.
  [[ ! -e $libexec/needed-trees ]] || mapfile -t -O 1 trees <"$libexec/needed-trees"
  mounts=()
  root_entries
  mounts+=(--proc /proc --dev /dev --perms 1777 --tmpfs /tmp --perms 1777 --dir /sdcard)
  mounts+=(--perms 0700 --dir "$scratch" --perms 0700 --dir "$scratch/platform")
  for tree in "${trees[@]}"; do
    is_hidden "$tree" && mounts+=(--bind "$tree" "$tree")
  done
  [[ $store ]] && mounts+=(--bind "$store" "$store")
  for ((i = 0; i < ${#binds[@]}; i += 2)); do
    mounts+=(--ro-bind "${binds[i]}" "${binds[i + 1]}")
  done
}

# bwrap ends the camera's processes only when it dies with its parent, so a detached camera has a
# parent that stays, in a session that no terminal's signals reach.
keep_camera() {
  export ORV_CAMERA_READY=4
  exec setsid bash -c 'bwrap --json-status-fd 5 --args 3 "$@"; exit' - \
    bash "$libexec/inside.sh" "$scratch" "$display" "$app" "${command[@]}"
}

run_camera() {
  check_binds
  collect_mounts
  export ORV_PLATFORM_ROOT=${store:-$scratch/platform}
  # Through a descriptor, or the long list would stand in the camera's process table.
  exec 3< <(printf '%s\0' "${namespaces[@]}" "${mounts[@]}")
  [[ $detach = no ]] || keep_camera
  exec bwrap --args 3 bash "$libexec/inside.sh" "$scratch" "$display" "$app" "${command[@]}"
}
