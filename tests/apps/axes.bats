# Files that know their axes, channels and pixel sizes.

bats_require_minimum_version 1.5.0
load setup.bash

setup_file() {
  /usr/bin/python3 -c 'import tifffile' 2>/dev/null || skip "python3-tifffile is missing"
  export FILES=$BATS_FILE_TMPDIR/files
  mkdir "$FILES"
  (cd "$FILES" && /usr/bin/python3 "$BATS_TEST_DIRNAME/make_axes.py")
  export PATH="$(dirname "$LUMETRA"):$PATH"
}

levels=(--levels 500:50000)

@test "a file with all channels is a whole command, and equals its channels as files" {
  lumetra merge 't1_c1.tif[2]=DAPI' 't1_c2.tif[2]=FITC' -o files.png "${levels[@]}" --quiet
  lumetra merge 'cells.ome.tif[z2,t1]' -o ome.png "${levels[@]}" --quiet
  lumetra merge 'cells-ij.tif[c1,z2,t1]=DAPI' 'cells-ij.tif[c2,z2,t1]=FITC' -o ij.png \
    "${levels[@]}" --quiet
  # What the metadata add, the pixel size, is no pixel.
  for file in ome ij; do
    lumetra dye $file.png=#ffffff -o $file.tif --levels none --quiet --pixel-size 1
  done
  lumetra dye files.png=#ffffff -o files.tif --levels none --quiet --pixel-size 1
  cmp files.tif ome.tif
  cmp files.tif ij.tif
}

@test "z-slices are projected, as planes of one file or pages of many" {
  for t in 1 2; do
    lumetra merge max_t${t}_c1.tif=DAPI max_t${t}_c2.tif=FITC -o max.png "${levels[@]}" --overwrite --quiet
    lumetra merge t${t}_c1.tif=DAPI t${t}_c2.tif=FITC -o pages.png --project max "${levels[@]}" --overwrite --quiet
    cmp max.png pages.png
    lumetra merge "cells.ome.tif[t$t]" -o planes.png --project max --pixel-size 9 "${levels[@]}" --overwrite --quiet
    lumetra merge max_t${t}_c1.tif=DAPI max_t${t}_c2.tif=FITC -o max.png --pixel-size 9 "${levels[@]}" --overwrite --quiet
    cmp max.png planes.png
  done
}

@test "what is left to choose is named, and --all-pages walks it" {
  fails 1 "3 z-slices and 2 time points" lumetra merge cells.ome.tif -o x.png
  fails 1 "2 time points" lumetra merge 'cells.ome.tif[z1]' -o x.png
  fails 1 "3 z-slices" lumetra merge 'cells.ome.tif[z7,t1]' -o x.png
  fails 1 "2 channels" lumetra merge 'cells.ome.tif[c3]' -o x.png
  fails 1 "2 channels" lumetra merge 'cells.ome.tif[z1,t1]=DAPI' -o x.png
  fails 2 "cells-ij.tif[c1,z1,t1]=DYE" lumetra merge 'cells-ij.tif[c1,z1,t1]' -o x.png
  lumetra merge cells.ome.tif -o all.tif --all-pages --quiet
  [[ $(lumetra info all.tif) == *"6 pages"* ]]
  lumetra merge 'cells.ome.tif[z1-2,t2]' -o part.tif --all-pages --quiet
  [[ $(lumetra info part.tif) == *"2 pages"* ]]
  lumetra merge cells.ome.tif -o frames.tif --all-pages --project mean --quiet
  [[ $(lumetra info frames.tif) == *"2 pages"* ]]
}

@test "the pixel size of a file is that of a scale bar and of what is written" {
  lumetra merge 'cells.ome.tif[z1,t1]' -o bar.png --scale-bar 10 --quiet
  lumetra merge 'cells.ome.tif[z1,t1]' -o given.png --scale-bar 10 --pixel-size 0.5 --quiet
  cmp bar.png given.png
  lumetra merge 'cells.ome.tif[z1,t1]' -o sized.tif --quiet
  [[ $(lumetra info sized.tif) == *"0.5 µm"* ]]
  fails 1 "--pixel-size" lumetra merge z2_t1_c1.tif=DAPI -o x.png --scale-bar 10
}

@test "floats are read under limits that are given or measured" {
  lumetra merge float.tif=DAPI -o float.png --levels auto --quiet
  lumetra merge int.tif=DAPI -o int.png --levels auto --quiet
  cmp float.png int.png
  lumetra merge float.tif=DAPI -o given.png --levels 5:40 --quiet
  lumetra merge int.tif=DAPI -o ints.png --levels 5000:40000 --quiet
  run ! cmp -s given.png float.png
  fails 1 "--levels" lumetra merge float.tif=DAPI -o x.png --levels none
  run --separate-stderr lumetra merge nan.tif=DAPI -o nan.png --quiet
  [[ $stderr == *"1 pixel value that"* ]]
}

@test "limits of floats are numbers with decimals, and the same for a whole data set" {
  lumetra merge float.tif=DAPI -o measured.png --levels clip:1 --log log.jsonl 2>said.txt
  [[ $(cat said.txt) =~ "1 DAPI "([0-9.]+:[0-9.]+) ]]
  lumetra merge float.tif=DAPI -o given.png --levels "${BASH_REMATCH[1]}" --quiet
  cmp measured.png given.png
  grep -q "\"range\":\[${BASH_REMATCH[1]/:/,}\]" log.jsonl
  lumetra pseudo float.tif -o pseudo.png --levels -1000:1000 --quiet # 0.1 to 60: about the middle
  [[ $(lumetra info pseudo.png) == *"pixel values 31 to 152"* ]]
  fails 1 "has 16 bits: its contrast limits are whole numbers" lumetra merge int.tif=DAPI -o x.png --levels 0.5:3

  for kind in int float; do
    lumetra batch "plate-${kind}_{field}.tif" --channel a=DAPI -o "$kind/{field}.png" --quiet --levels clip:2
    lumetra levels "plate-${kind}_{field}.tif" --channel a=DAPI -o $kind.json --quiet --levels clip:2
    lumetra batch "plate-${kind}_{field}.tif" --settings $kind.json -o "$kind-set/{field}.png" --quiet
    diff -r $kind $kind-set
  done
  /usr/bin/python3 -c 'import json
low, high = json.load(open("int.json"))["channels"][0]["levels"]
limits = json.load(open("float.json"))["channels"][0]["range"]
step = 65535 / 10 / 65535 * 4  # of 16 bits over the whole range, and the rounding of limits
assert abs(limits[0] - (low / 4 - 100)) < step and abs(limits[1] - (high / 4 - 100)) < step, limits'
  lumetra merge plate-float_dark.tif=DAPI -o dark.png --quiet \
    --levels "$(/usr/bin/python3 -c 'import json; print(*json.load(open("float.json"))["channels"][0]["range"], sep=":")')"
  cmp dark.png float/dark.png
  fails 1 "were measured of values of another type" lumetra merge int.tif -o x.png --settings float.json
  fails 1 "were measured at 16 bits" lumetra merge float.tif -o x.png --settings int.json
}

@test "z-slices with files of their own are projected, in a batch and by name" {
  for t in 1 2; do
    lumetra merge t${t}_c1.tif=DAPI t${t}_c2.tif=FITC+3-2 -o "pages/t$t.png" --project mean --quiet
    lumetra merge "slice_t${t}_c1_z{z}.tif=DAPI" "slice_t${t}_c2_z{z}.tif=FITC+3-2" -o "named/t$t.png" --project mean --quiet
  done
  diff -r pages named
  channels="--channel c1=DAPI --channel c2=FITC+3-2 --levels-over field --quiet --project mean"
  lumetra batch 'slice_{t}_{channel}_z{z:#}.tif' $channels -o 'out/{t}.png' --log log.jsonl
  diff -r pages out
  listed 'slice_{t}_{channel}_z{z:#}.tif' $channels -o 'by-list/{t}.png'
  diff -r pages by-list
  [ "$(grep -o slice_t1_c1_z log.jsonl | wc -l)" = 3 ]
  lumetra batch 'slice_{t}_{channel}_z{z:#}.tif' $channels -o 'lines/{t}.png' --dry-run >lines.sh
  bash lines.sh
  diff -r pages lines
  fails 2 "stands for z-slices in 3 files: give --project" lumetra merge 'slice_t1_c1_z{z}.tif=DAPI' -o x.png
  fails 1 "no file matches none_z{z}.tif" lumetra merge 'none_z{z}.tif=DAPI' -o x.png --project max
  # A slice that comes later is part of the image.
  cp slice_t1_c1_z2.tif slice_t1_c1_z11.tif
  run --separate-stderr lumetra batch 'slice_{t}_{channel}_z{z:#}.tif' ${channels/--quiet/} -o 'out/{t}.png' --log log.jsonl --resume
  [[ $stderr == *"1 skipped"* ]]
}

@test "the LUT that a file has is its palette" {
  lumetra pseudo palette.tif --lut own -o own.tif --quiet
  lumetra dye palette-rgb.tif=#ffffff --levels none -o rgb.tif --quiet
  cmp own.tif rgb.tif
  fails 1 "no LUT of its own" lumetra pseudo int.tif --lut own -o x.png
}

@test "a plate of files that hold their channels gives what one of single files does" {
  mkdir files stacks
  for t in 1 2; do
    cp z2_t${t}_c1.tif files/f${t}_1.tif
    cp z2_t${t}_c2.tif files/f${t}_2.tif
    cp both_t$t.ome.tif stacks/f$t.ome.tif
  done
  channels="--channel 1=DAPI --channel 2=FITC+3-2 --pixel-size 1 --quiet"
  lumetra batch 'files/{field}_{channel}.tif' $channels -o 'out1/{field}.png'
  lumetra batch 'stacks/{field}.ome.tif' $channels -o 'out2/{field}.png'
  diff -r out1 out2
  listed 'stacks/{field}.ome.tif' $channels -o 'listed2/{field}.png'
  diff -r out2 listed2
  lumetra batch 'stacks/{field}.ome.tif' --channel DAPI=DAPI --channel FITC=FITC+3-2 --pixel-size 1 --quiet -o 'out3/{field}.png'
  diff -r out1 out3
  for t in 1 2; do cp both-ij_t$t.tif stacks/f$t.ij.tif; done
  lumetra batch 'stacks/{field}.ij.tif' $channels -o 'out4/{field}.png'
  diff -r out1 out4
  # Their own channels, with nothing said.
  lumetra batch 'stacks/{field}.ome.tif' --pixel-size 1 --quiet -o 'out5/{field}.png'
  lumetra batch 'files/{field}_{channel}.tif' --channel 1=DAPI --channel 2=FITC --pixel-size 1 --quiet -o 'out6/{field}.png'
  diff -r out5 out6
  listed 'stacks/{field}.ome.tif' --pixel-size 1 --quiet -o 'listed5/{field}.png'
  diff -r out5 listed5
  fails 1 'none of them "Cy5"' lumetra batch 'stacks/{field}.ome.tif' --channel Cy5=Cy5 -o 'out7/{field}.png'
}
