# What happens to a machine: kills, signals, full disks, missing rights, huge images.

bats_require_minimum_version 1.5.0
load setup.bash

# A data set that takes a while.
many_fields() {
  for i in $(seq 1 20); do
    for file in plate/f*; do ln -s "../$file" "many/$i${file#plate/}"; done
  done
}
many() {
  $exec lumetra batch 'many/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC+3-2 \
    -o "$1/{field}.png" --quiet --log "$1.log" "${@:2}"
}
# usage: many_stopped_by SIGNAL FOLDER COUNT    once so many images are there
many_stopped_by() {
  exec=exec many "$2" --jobs 2 2>messages & # the program itself, no shell around it
  local pid=$!
  while [ "$(find "$2" -name 'f*.png' -o -name '[0-9]*.png' 2>/dev/null | wc -l)" -lt "$3" ]; do
    kill -0 $pid
    sleep 0.01
  done
  kill -"$1" $pid
  status=0
  wait $pid || status=$?
}

@test "a batch that was killed is finished by the next run, with the same bytes" {
  mkdir many
  many_fields
  many whole
  for count in 1 40 120; do
    many_stopped_by KILL killed $count
    [ "$status" = 137 ]
    [ "$(find killed -name '[0-9]*.png' | wc -l)" -lt 200 ]
    printf '{"half a line' >>killed.log
    many killed --resume
    rm -f killed/.lumetra-*.part # of a file that was about to get its name
    [ "$(sum killed)" = "$(sum whole)" ]
    rm -r killed killed.log
  done
}

@test "a signal ends a batch with nothing half done" {
  mkdir many
  many_fields
  many whole
  for signal in INT:130 TERM:143; do
    # A shell lets what it starts in the background ignore SIGINT; a job of its own does not.
    set -m
    many_stopped_by ${signal%:*} stopped 10
    set +m
    echo "$signal: $status"
    [ "$status" = ${signal#*:} ]
    tried=$(wc -l <stopped.log)
    grep -qx "lumetra: stopped after $tried of 200 fields; run again with --resume to go on" messages
    [ -z "$(find stopped -name '.*')" ]
    for image in stopped/*; do cmp "$image" "whole/${image#*/}"; done
    [ "$(find stopped -type f | wc -l)" = "$(grep -c '"outcome":"done"' stopped.log)" ]
    rm -r stopped stopped.log
  done
}

@test "a full disk is told by name and leaves no half a file" {
  (ulimit -f 8; fails 1 "x.png: cannot be written: File too large" lumetra merge plate/f00_dapi.tif=DAPI -o x.png)
  (ulimit -f 8; fails 1 "x.tif: cannot be written: File too large" lumetra merge plate/f00_dapi.tif=DAPI -o x.tif)
  (ulimit -f 8; fails 1 "x.tif: cannot be written: File too large" lumetra merge stack.tif=DAPI --all-pages -o x.tif)
  [ -z "$(find . -name '*x.*')" ]
}

@test "a file system that fills up stops a batch with one line" {
  unshare -rm true 2>/dev/null || skip "may not mount a file system here"
  plate -o 'out/{field}.png' --quiet
  size=$(($(du -sb out | cut -f1) * 6 / 10))
  mkdir full
  unshare -rm bash -c "
    mount -t tmpfs -o size=$size tmpfs full
    PATH=$PATH lumetra batch 'plate/{field}_{channel}.tif' --channel dapi=DAPI \
      --channel actin=FITC+3-2 -o 'full/{field}.png' --log log --quiet 2>messages
    echo \$? >status
    ls -A full >names
    cp full/* ."
  [ "$(cat status)" = 1 ]
  cat messages
  [ "$(wc -l <messages)" = 1 ]
  made=$(wc -l <names)
  grep -q "full/f0[0-9].png: cannot be written: No space left on device; stopped after $made of 10 fields; run again with --resume to go on" messages
  run ! grep -q '^\.' names
  [ "$(wc -l <names)" -ge 2 ]
  for image in f*.png; do cmp "$image" "out/$image"; done
  [ "$(wc -l <names)" = "$(grep -c '"outcome":"done"' log)" ]
}

@test "a folder that takes no files is told by name" {
  fails 1 "/proc/x.png: cannot be written" lumetra merge a.tif=DAPI -o /proc/x.png
  fails 1 "a.tif/x.png: cannot be written" lumetra merge a.tif=DAPI -o a.tif/x.png
  fails 1 ".png, .tif" lumetra merge a.tif=DAPI -o plate --overwrite
  mkdir folder.png
  fails 1 "folder.png: is not a regular file" lumetra merge a.tif=DAPI -o folder.png --overwrite
  ln -s /dev/full device.png
  fails 1 "device.png: is not a regular file" lumetra merge a.tif=DAPI -o device.png --overwrite
}

@test "a reader that goes away is an error, and a closed one no crash" {
  run --separate-stderr bash -c 'lumetra merge plate/f00_dapi.tif=DAPI -o - >/dev/full'
  [ "$status" = 1 ]
  [[ $stderr == "lumetra: the standard output: cannot be written: No space left on device" ]]
  run --separate-stderr bash -c 'set -o pipefail; lumetra merge plate/f00_dapi.tif=DAPI -o - | true'
  [ "$status" -le 1 ]
}

@test "an image is not written onto a terminal" {
  for command in "merge a.tif=DAPI" "dye colour.png=DAPI" "pseudo a.tif" \
    "batch plate/f00_{channel}.tif --channel dapi=DAPI"; do
    run script -qec "lumetra $command -o - 2>messages" /dev/null
    [ "$status" = 2 ]
    [ -z "$output" ]
    grep -q "onto the terminal" messages
  done
}

@test "images too large for the memory are refused by name" {
  ! ldd "$LUMETRA" | grep -qE 'lib[at]san' || skip "sanitizers need the memory"
  printf 'P5\n30000 30000\n255\n' >memory.pgm
  truncate -s 900000019 memory.pgm # with a hole: its zeros take no room
  (ulimit -v 2000000; fails 1 "x.png: cannot be rendered: there is not enough memory" lumetra merge memory.pgm=DAPI -o x.png)
  [ ! -e x.png ]
}
