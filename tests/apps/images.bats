# One image: dyes, info, dye, pseudo, merge.

bats_require_minimum_version 1.5.0
load setup.bash

@test "version and help are there: 80 columns, an example for each command, no noise" {
  run --separate-stderr lumetra --version
  [ "$status" = 0 ]
  [ "$output" = "lumetra $LUMETRA_VERSION" ]
  [ -z "$stderr" ]
  [ "$(lumetra help)" = "$(lumetra --help)" ]
  commands=$(lumetra help | awk '/^Commands:/ { on = 1; next } /^$/ { on = 0 } on && /^  [a-z]/ { print $1 }')
  [ "$(wc -w <<<"$commands")" = 10 ]
  for command in $commands; do
    run --separate-stderr lumetra $command --help
    [ "$status" = 0 ]
    [[ $output == *"Usage: lumetra $command "*"Example:"$'\n'"  lumetra $command "* ]]
    run ! grep -E '.{80}|Excludes|Needs|REQUIRED|TEXT:|[a-z]:from|--table|--range' <<<"$output"
    [ "$(lumetra help $command)" = "$(lumetra $command -h)" ]
  done
}

@test "a mistyped command or option gets the nearest one" {
  fails 2 "unknown command 'mrege'; did you mean 'merge'?" lumetra mrege a.tif=DAPI -o x.png
  fails 2 "unknown command 'mrege'; did you mean 'merge'?" lumetra help mrege
  fails 2 "unknown command 'deconvolve' (see 'lumetra --help')" lumetra deconvolve
  fails 2 "unknown option '--outptu'; did you mean '--output'?" lumetra merge a.tif=DAPI --outptu=x.png
  fails 2 "unknown option '--verison'; did you mean '--version'?" lumetra --verison
  fails 2 "unknown option '--xyz' (see 'lumetra info --help')" lumetra info a.tif --xyz
  fails 2 "unexpected argument 'b.png'" lumetra dye a.tif=DAPI b.png -o x.png
}

@test "bad usage has status 2" {
  fails 2 "no command is given (see 'lumetra --help')" lumetra
  fails 2 "--output is required" lumetra merge a.tif=DAPI
  fails 2 "--output needs a value" lumetra merge a.tif=DAPI -o
  fails 2 "--output is given more than once" lumetra merge a.tif=DAPI -o x.png -o y.png
  fails 2 "--page: '0' is not a whole number from 1" lumetra merge a.tif=DAPI -o x.png --page 0
  fails 2 "--gamma: 'nan' is not a number from 0.01 to 100" lumetra merge a.tif=DAPI -o x.png --gamma nan
  fails 2 "--page cannot be combined with --all-pages" lumetra merge a.tif=DAPI -o x.png --page 1 --all-pages
  fails 2 "a.tif=DYE" lumetra merge a.tif -o x.png
  fails 2 "clip" lumetra merge a.tif=DAPI -o x.png --levels clip:70
  fails 2 "gamma" lumetra merge a.tif=DAPI -o x.png --levels none --gamma 2
  fails 2 "2 times for 3 channels" lumetra merge a.tif=DAPI b.png=FITC c.tif=Cy3 -o x.png --levels auto --levels auto
  fails 2 "--hide 2: the image has 1 channel" lumetra merge a.tif=DAPI -o x.png --hide 2
  fails 2 "--levels is given 2 times for 1 channel" lumetra pseudo a.tif -o x.png --range 1:2 --levels auto
  [ ! -e x.png ]
}

@test "TIFF files are compressed as asked, other files are refused it" {
  for command in 'merge a.tif=DAPI c.tif=FITC --levels none' 'dye a.tif=DAPI' 'pseudo a.tif'; do
    lumetra $command -o default.tif --overwrite --quiet
    for method in none lzw deflate zstd; do
      lumetra $command -o $method.tif --compression $method --overwrite --quiet
      lumetra info $method.tif --json | grep -v '"file"' >$method.json
      cmp $method.json none.json
    done
    cmp default.tif lzw.tif
    run ! cmp -s lzw.tif deflate.tif
    run ! cmp -s zstd.tif deflate.tif
  done
  lumetra merge stack.tif=DAPI --all-pages -o pages.tif --compression none
  [ "$(stat -c %s pages.tif)" -gt $((3 * 64 * 48)) ]

  for output in x.png x.jpg -; do
    fails 2 "--compression is for TIFF files" lumetra merge a.tif=DAPI -o $output --compression lzw
  done
  fails 2 "'LZW' is not none, lzw, deflate or zstd" lumetra merge a.tif=DAPI -o x.tif --compression LZW
  fails 2 "--compression is for TIFF files" plate -o 'out/{field}.png' --compression none
  [ ! -e out ]
  plate -o 'out/{field}.tif' --compression none --log log --quiet
  plate -o 'out/{field}.tif' --compression none --dry-run --quiet >lines
  [ "$(grep -c -- '--compression none' lines)" = "$(wc -l <lines)" ]
  [ -z "$(plate -o 'out/{field}.tif' --compression none --log log --resume --dry-run)" ]
  [ -n "$(plate -o 'out/{field}.tif' --compression zstd --log log --resume --dry-run)" ]
}

@test "dyes are found by name and wavelength" {
  run lumetra dyes ALEXA --emission 520
  [[ ${lines[1]} == *"Alexa 488" ]]
  run lumetra dyes --excitation 749
  [[ ${lines[1]} == *"Alexa Fluor 750" ]]
  [[ $(lumetra dyes egfp) == *"507  #00ff26  FPbase        EGFP"* ]]
  [[ $(lumetra dyes 'Alexa Fluor 488') == *"catalogue     Alexa 488" ]]
  [ "$(lumetra dyes | grep -c '  catalogue  ')" = 329 ]
  [ "$(lumetra dyes --json | grep -c '"source": "catalogue"')" = 329 ]
  [ "$(lumetra dyes | wc -l)" = "$(($(lumetra dyes --json | grep -c '"name"') + 1))" ]
  fails 3 '"DAPI"' lumetra dyes DAPY
}

@test "custom dyes are dyes" {
  printf '[General]\nNumber=1\n\n[DyeType1]\nName=Heliotrope\nColor=#c474ff\n' >own.ini
  run lumetra dyes helio --custom own.ini
  [[ ${lines[1]} == *"#c474ff  custom        Heliotrope" ]]
  lumetra dye a.tif=Heliotrope --custom own.ini -o named.png
  lumetra dye a.tif=#c474ff -o coloured.png
  cmp named.png coloured.png
  fails 1 "own2.ini" lumetra dye a.tif=DAPI --custom own2.ini -o x.png
  fails 1 "no custom dyes" lumetra dye a.tif=DAPI --custom a.tif -o x.png
  fails 1 'nearest names are "DAPI", or give a colour, #rrggbb or NAME#rrggbb' lumetra dye a.tif=DAPY -o x.png
}

@test "info tells pages, size, bit depth, range and percentiles" {
  run lumetra info b.png stack.tif
  [[ ${lines[0]} == "b.png: 1 page of 64 x 48 pixels, 8 bits, gray, pixel values "* ]]
  [[ ${lines[1]} == "stack.tif: 4 pages of 64 x 48 pixels, 16 bits, gray, pixel values "*"50 % up to"* ]]
  [[ $(lumetra info two-samples.tif) == *"2 channels x 1 z x 1 t"* ]]
  [[ $(lumetra info white-is-zero.tif) == *gray* ]]
  [[ $(lumetra info --json two-samples.tif) == *'"slices": 1'* ]]
  run --separate-stderr lumetra info --json b.png missing.png colour.png
  [ "$status" = 1 ]
  [[ $stderr == *missing.png* ]]
  [ "$(grep -c '"percentiles"' <<<"$output")" = 2 ]
}

@test "an image on the standard output is the one in the file" {
  lumetra merge a.tif=DAPI b.png=FITC+3-2 -o x.png
  lumetra merge a.tif=DAPI b.png=FITC+3-2 -o - | cmp - x.png
}

@test "16 bits stay 16 bits without levels, and become 8 with them" {
  lumetra merge a.tif=DAPI c.tif=FITC -o deep.tif --levels none --quiet
  lumetra merge a.tif=DAPI c.tif=FITC -o flat.tif --quiet
  [[ $(lumetra info deep.tif) == *"16 bits, RGB"* ]]
  [[ $(lumetra info flat.tif) == *"8 bits, RGB"* ]]
  fails 1 "8-bit images only" lumetra merge a.tif=DAPI -o deep.jpg --levels none
}

@test "levels given are the levels measured, in every way to give them" {
  lumetra merge a.tif=DAPI -o measured.png --levels auto
  range=$(lumetra info a.tif --json | tr -d ' \n' | sed 's/.*"range":\[\([0-9]*\),\([0-9]*\)\].*/\1:\2/')
  lumetra merge a.tif=DAPI -o given.png --levels "$range"
  lumetra levels '{channel}.tif' --channel a=DAPI --levels auto -o set.json
  lumetra merge a.tif --settings set.json -o set.png
  cmp measured.png given.png
  cmp measured.png set.png
  lumetra merge a.tif=DAPI -o gamma.png --levels "$range" --gamma 0.5
  run ! cmp -s measured.png gamma.png
}

@test "a constant background stays black, and a constant foreground white" {
  few_on() { # usage: few_on BACKGROUND VALUE    100 x 100 pixels, five of them of another value
    printf 'P5\n100 100\n255\n'
    for i in $(seq 9995); do printf "\\x$1"; done
    for i in $(seq 5); do printf "\\x$2"; done
  }
  few_on 07 c8 >few.pgm
  few_on ff 03 >holes.pgm
  run --separate-stderr lumetra merge few.pgm=#ffffff -o few.png
  [[ $stderr == *"levels: 1 #ffffff 7:200"* ]]
  [[ $(lumetra info few.png --json | tr -d ' \n') == *'"percentiles":{"0.1":0,'*'"99":0'* ]]
  run --separate-stderr lumetra merge holes.pgm=#ffffff -o holes.png
  [[ $stderr == *"levels: 1 #ffffff 3:255"* ]]
}

@test "a stack gives a stack, under one set of levels" {
  lumetra merge stack.tif=DAPI other.tif=FITC+1+1 --all-pages -o all.tif
  [[ $(lumetra info all.tif) == *"4 pages of 63 x 47"* ]]
  lumetra merge 'stack.tif[3]=DAPI' 'other.tif[3]=FITC+1+1' -o third.tif --levels 1:60000
  lumetra merge stack.tif=DAPI other.tif=FITC+1+1 --page 3 -o page.tif --levels 1:60000
  cmp third.tif page.tif
  fails 1 "4 pages; choose one" lumetra merge stack.tif=DAPI -o x.png
  fails 1 "no page 5" lumetra merge 'stack.tif[5]=DAPI' -o x.png
  fails 1 "different numbers of images" lumetra merge stack.tif=DAPI three.tif=FITC --all-pages -o x.tif
  fails 1 "a stack of 4 pages" lumetra merge stack.tif=DAPI --all-pages -o x.png
  fails 2 "names a page, which --all-pages does not allow" lumetra merge 'stack.tif[1]=DAPI' --all-pages -o x.tif
  [ ! -e x.png ]
  [ ! -e x.tif ]
}

@test "hidden channels keep the size of the image" {
  lumetra merge a.tif=DAPI b.png=FITC+9-9 --hide 2 -o hidden.png --quiet
  [[ $(lumetra info hidden.png) == *"55 x 39"* ]]
}

@test "RGB is taken by dye and pseudo, and refused by name where gray is needed" {
  lumetra dye colour.png=DAPI -o plain.png --levels none
  lumetra dye colour.png=DAPI -o dominant.png --levels none --dominant
  lumetra pseudo colour.png -o pseudo.png --lut magma
  run ! cmp -s plain.png dominant.png
  fails 1 "colour.png: has colours" lumetra merge a.tif=DAPI colour.png=FITC -o x.png
  fails 1 "colour.png: is an RGB image" lumetra pseudo colour.png --range 1:9 -o x.png
}

@test "LUTs have names, ranges and files, and can be reversed" {
  lumetra pseudo a.tif -o named.png --lut gray
  lumetra pseudo a.tif -o ranged.png --table gray --range 30000:31000
  lumetra pseudo a.tif -o reversed.png --lut gray --reversed
  for i in $(seq 0 255); do echo "$i $i $i"; done >gray.lut
  lumetra pseudo a.tif -o file.png --lut gray.lut
  cmp named.png file.png
  lumetra pseudo a.tif -o levels.png --lut gray --levels 30000:31000
  cmp ranged.png levels.png
  lumetra pseudo a.tif -o clipped.png --lut gray --levels clip:0.1
  cmp named.png clipped.png
  lumetra pseudo a.tif -o whole.png --lut gray --levels auto
  run ! cmp -s named.png whole.png
  run ! cmp -s named.png ranged.png
  run ! cmp -s named.png reversed.png
  fails 1 "viridis" lumetra pseudo a.tif -o x.png --lut virdis
  fails 1 "b.png: is not a LUT file" lumetra pseudo a.tif -o x.png --lut b.png
}

@test "legend and scale bar change the image, and a bar must fit" {
  lumetra merge a.tif=DAPI b.png=FITC -o plain.png
  lumetra merge a.tif=DAPI b.png=FITC -o legend.png --legend
  lumetra merge a.tif=DAPI b.png=FITC -o bar.png --scale-bar 10 --pixel-size 0.5
  run ! cmp -s plain.png legend.png
  run ! cmp -s plain.png bar.png
  fails 1 "scale bar" lumetra merge a.tif=DAPI -o x.png --scale-bar 100 --pixel-size 0.5
  fails 1 "--pixel-size" lumetra merge a.tif=DAPI -o x.png --scale-bar 100
}

@test "bad files are refused by name, in one line, and nothing is written" {
  while IFS='|' read -r file text; do
    fails 1 "$file" lumetra merge "$file=DAPI" -o x.png
    [[ $stderr == *"$text"* ]]
    fails 1 "$file" lumetra pseudo "$file" -o x.png
  done <<'LIST'
missing.tif|no such file
plate|not a file
cut.tif|cut short
cut-stack.tif|cut short
cut.png|cut short
cut.jpg|cut short
two-samples.tif|has 2 channels
behind-one.tif|says that it has 9 pages
LIST
  echo "no picture" >text.png
  fails 1 "text.png" lumetra merge text.png=DAPI -o x.png
  fails 1 "a.tif has 64 x 48 pixels, small.png has 32 x 48" lumetra merge a.tif=DAPI small.png=FITC -o x.png
  fails 1 "do not overlap" lumetra merge a.tif=DAPI b.png=FITC+64+0 -o x.png
  [ ! -e x.png ]
  [ -z "$(find . -name '.*.part*')" ]
}

@test "of two programs that write one output at once, one says that it exists already" {
  for i in $(seq 20); do
    lumetra merge a.tif=DAPI -o raced.png --quiet 2>first & pid=$!
    status=0 other=0
    lumetra merge c.tif=FITC -o raced.png --quiet 2>second || other=$?
    wait $pid || status=$?
    [ $((status + other)) = 1 ]
    grep -q "already exists" first second
    rm raced.png
  done
  [ -z "$(find . -name '.*.part*')" ]
}

@test "text is drawn whatever platform the environment names" {
  lumetra merge a.tif=DAPI -o here.png --legend --quiet
  QT_QPA_PLATFORM=wayland lumetra merge a.tif=DAPI -o there.png --legend --quiet
  cmp here.png there.png
}

@test "outputs are not replaced unasked, nor inputs at all" {
  cp a.tif before.tif
  fails 1 "--overwrite" lumetra merge a.tif=DAPI -o b.png
  fails 1 "is also an input" lumetra merge a.tif=DAPI -o a.tif --overwrite
  ln a.tif hard.tif
  fails 1 "is also an input" lumetra merge a.tif=DAPI -o hard.tif --overwrite
  cmp a.tif before.tif
  fails 1 ".png, .tif" lumetra merge a.tif=DAPI -o x.bmp
  lumetra merge a.tif=DAPI -o b.png --overwrite --quiet
  [[ $(lumetra info b.png) == *RGB* ]]
}

@test "settings are refused by the name of what is wrong" {
  echo '{"channels":[{"dye":"DAPI","levls":[1,2]}]}' >bad.json
  fails 1 'bad.json: channel 1 has an unknown key "levls"' lumetra merge a.tif --settings bad.json -o x.png
  echo '{"channels":[{"dye":"DAPI"},{"dye":"FITC"}]}' >two.json
  fails 2 "the settings have 2 channels, and the files have 1" lumetra merge a.tif --settings two.json -o x.png
}

@test "names may hold spaces, quotes, new lines and any letters, in any locale" {
  name=$'ä \'q\' "d"\n é.tif'
  cp a.tif "$name"
  for locale in C C.UTF-8; do
    LC_ALL=$locale lumetra merge "$name=DAPI" -o "out $name" --overwrite --quiet
    [ -s "out $name" ]
  done
  fails 1 '\n' lumetra merge "not $name=DAPI" -o x.png
}

# usage: large FILE SEED    a gray TIFF file of 8 bits and more than 32 million pixels
large() {
  python3 - "$1" "$2" <<'EOF'
import random
import struct
import sys

WIDTH, HEIGHT, ROWS = 6000, 5601, 300
noise = random.Random(int(sys.argv[2])).randbytes(1 << 20)
strips = [(top, min(ROWS, HEIGHT - top)) for top in range(0, HEIGHT, ROWS)]
data = 8 + 8 * len(strips)
tags = [(256, WIDTH), (257, HEIGHT), (258, 8), (259, 1), (262, 1), (273, 8), (277, 1), (278, ROWS),
        (279, 8 + 4 * len(strips))]
with open(sys.argv[1], "wb") as file:
    file.write(struct.pack("<2sHI", b"II", 42, data + WIDTH * HEIGHT))
    file.write(struct.pack(f"<{len(strips)}I", *(data + WIDTH * top for top, _ in strips)))
    file.write(struct.pack(f"<{len(strips)}I", *(WIDTH * rows for _, rows in strips)))
    file.write((noise * (WIDTH * HEIGHT // len(noise) + 1))[:WIDTH * HEIGHT])
    file.write(struct.pack("<H", len(tags)))
    for tag, value in tags:
        count = len(strips) if tag in (273, 279) else 1
        file.write(struct.pack("<HHII", tag, 4, count, value))
    file.write(struct.pack("<I", 0))
EOF
}

@test "a large image is the same in strips, by any number of threads, as if rendered as a whole" {
  large a.tif 1
  large b.tif 2
  channels=(a.tif=DAPI b.tif=FITC+3-2)
  whole=(--crop 0,0,5997,5599) # for which all of the image has to be there
  for format in png tif; do
    lumetra merge "${channels[@]}" -o one.$format --jobs 1 --quiet
    lumetra merge "${channels[@]}" -o many.$format --jobs 5 --quiet
    lumetra merge "${channels[@]}" -o whole.$format --jobs 2 "${whole[@]}" --quiet
    cmp one.$format many.$format
    cmp one.$format whole.$format
  done
  # Of a file that ends too early one line tells, and nothing is left.
  head -c 20000000 b.tif >short.tif
  fails 1 "short.tif" lumetra merge a.tif=DAPI short.tif=FITC -o short.png --jobs 3
  [ ! -e short.png ] && [ -z "$(find . -name '.lumetra*')" ]
}
