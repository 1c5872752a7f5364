# What the tests of the command have in common: a folder of their own with files to read.

setup_file() {
  export FILES=$BATS_FILE_TMPDIR/files
  mkdir "$FILES"
  "$LUMETRA_FILES" "$FILES"
  export PATH="$(dirname "$LUMETRA"):$PATH"
}

setup() {
  cp -r "$FILES" "$BATS_TEST_TMPDIR/work"
  cd "$BATS_TEST_TMPDIR/work"
}

# usage: fails STATUS TEXT COMMAND...    the status, and one line on stderr that holds the text
fails() {
  local expected=$1 text=$2
  shift 2
  run --separate-stderr "$@"
  echo "status $status, says: $stderr"
  [ "$status" = "$expected" ] && [ "${#stderr_lines[@]}" = 1 ] && [[ $stderr == *"$text"* ]]
}

plate() { lumetra batch 'plate/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC+3-2 "$@"; }

# Everything below a folder, hidden files included, as one checksum.
sum() { (cd "$1" && find . -type f -print0 | sort -z | xargs -0 sha256sum | sha256sum); }

# usage: listed ARGUMENT...    what 'lumetra batch' does with them, by a list of the fields
listed() {
  local list=(--quiet --overwrite) batch=()
  while [ $# -gt 0 ]; do
    case $1 in
      -o) list+=(--images "$2") ;;
      --channel | --files-from) list+=("$1" "$2") ;;
      --settings | --custom | --project) list+=("$1" "$2") batch+=("$1" "$2") ;;
      --quiet | --overwrite | --resume | --dry-run | --legend) batch+=("$1") && shift && continue ;;
      --*) batch+=("$1" "$2") ;;
      *) list+=("$1") && shift && continue ;;
    esac
    shift 2
  done
  lumetra list "${list[@]}" -o fields.jsonl && lumetra batch --fields fields.jsonl "${batch[@]}"
}
