#!/usr/bin/env bats
# What is particular to Windows: scripts/check-windows runs this with the programs of that build.
bats_require_minimum_version 1.5.0
load setup

@test "names of files are in any language, on the command line, in listings and in logs" {
  mkdir клетки
  cp a.tif 'клетки/ü 細胞_dapi.tif'
  lumetra merge a.tif=DAPI -o plain.png --quiet
  lumetra merge 'клетки/ü 細胞_dapi.tif=DAPI' -o 'клетки/出力.png' --quiet
  cmp plain.png 'клетки/出力.png'
  lumetra batch 'клетки/{field}_{channel}.tif' --channel dapi=DAPI -o 'клетки/{field}.tif' --log 'журнал' --quiet
  grep -q 'ü 細胞' журнал
  fails 1 'клетки/нет.tif' lumetra info 'клетки/нет.tif'
}

@test "wildcards are files, which no shell has found" {
  cp a.tif w1.tif
  cp a.tif w2.tif
  [ "$(lumetra info 'w?.tif' --json | grep -o 'w[0-9].tif' | sort -u | tr '\n' ' ')" = "w1.tif w2.tif " ]
  fails 1 'v*.tif' lumetra info 'v*.tif'
}

@test "patterns have drives and slashes of either kind" {
  here="Z:$(pwd)"
  for pattern in 'plate\{field}_{channel}.tif' "$here/plate/{field}_{channel}.tif" "${here//\//\\}\\plate\\{field}_{channel}.tif"; do
    lumetra batch "$pattern" --channel dapi=DAPI -o 'out\{field}.png' --overwrite --quiet
    [ "$(ls out | wc -l)" = 10 ]
  done
}

@test "the standard output takes images and lines byte for byte" {
  lumetra merge a.tif=DAPI -o a.png --quiet
  lumetra merge a.tif=DAPI -o - --quiet | cmp - a.png
  [ "$(lumetra --version | od -An -c | tr -d ' ' | grep -c '\\r')" = 0 ]
}

@test "files are replaced, but no input, whatever it is called" {
  lumetra merge a.tif=DAPI -o a.png --quiet
  fails 1 "already exists; --overwrite" lumetra merge a.tif=DAPI -o A.PNG
  lumetra merge a.tif=FITC -o a.png --quiet --overwrite
  ln a.tif hard.tif
  for name in A.TIF hard.tif .\\a.tif; do
    fails 1 "is also an input" lumetra merge a.tif=DAPI -o "$name" --overwrite
  done
}

@test "a log is shared by many programs" {
  for i in 0 1 2 3 4 5 6 7; do
    lumetra merge a.tif=DAPI -o "o$i.png" --log 'the log' --quiet &
  done
  wait
  [ "$(grep -c '"outcome":"done"' 'the log')" = 8 ]
  [ ! -e 'the log.lock' ]
}

@test "lines of a dry run are for cmd" {
  mkdir 'a plate'
  cp plate/f00_*.tif 'a plate'
  lumetra batch 'a plate/{field}_{channel}.tif' --channel dapi=DAPI -o 'out/{field} x.png' --quiet
  lumetra batch 'a plate/{field}_{channel}.tif' --channel dapi=DAPI -o 'again/{field} x.png' --quiet --dry-run >lines.cmd
  mkdir again
  sed -i "s|^lumetra |\"Z:${LUMETRA_PROGRAM//\//\\\\}\" |" lines.cmd
  "$LUMETRA_WINE" cmd /d /c lines.cmd
  cmp 'out/f00 x.png' 'again/f00 x.png'
}

@test "a page has links that a browser of any system follows" {
  lumetra merge a.tif=DAPI -o 'клетки.png' --quiet
  mkdir out
  mv клетки.png out
  lumetra gallery out -o page.html --quiet
  grep -q 'href="out/%D0%BA%D0%BB%D0%B5%D1%82%D0%BA%D0%B8.png"' page.html
}

@test "text on images is drawn" {
  lumetra merge a.tif=DAPI -o plain.png --quiet
  lumetra merge a.tif=DAPI -o legend.png --legend --quiet
  run ! cmp plain.png legend.png
}
