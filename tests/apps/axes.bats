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
  lumetra batch 'stacks/{field}.ome.tif' --channel DAPI=DAPI --channel FITC=FITC+3-2 --pixel-size 1 --quiet -o 'out3/{field}.png'
  diff -r out1 out3
  fails 1 'none of them "Cy5"' lumetra batch 'stacks/{field}.ome.tif' --channel Cy5=Cy5 -o 'out4/{field}.png'
}
