# How files are found by their names: placeholders, their order, and the names of instruments.

bats_require_minimum_version 1.5.0
load setup.bash

# usage: empty NAME...    files that are there, which is all that a dry run asks for
empty() {
  local name
  for name in "$@"; do
    mkdir -p "$(dirname "$name")"
    : >"$name"
  done
}

# usage: lines PATTERN ARGUMENT...    the files of each field, in the order of fields
lines() { lumetra batch "$@" --dry-run --quiet --levels none | sed -E "s/.*merge //; s/=FITC.*//; s/^'//"; }

@test "fields stand in the order of their numbers" {
  empty n/s10_a.tif n/s2_a.tif n/s1_a.tif n/s02_a.tif n/s_a.tif n/x9_a.tif n/S3_a.tif
  run lines 'n/{site}_{channel}.tif' --channel a=FITC -o '{site}.png'
  [ "$output" = $'n/S3_a.tif\nn/s_a.tif\nn/s1_a.tif\nn/s02_a.tif\nn/s2_a.tif\nn/s10_a.tif\nn/x9_a.tif' ]
  empty z/B2_z10.tif z/B10_z9.tif z/B2_z9.tif z/B2_z123456789012345678901.tif
  run lines 'z/{well}_z{z}.tif' --channel a=FITC -o '{well}{z}.png'
  [ "$output" = $'z/B2_z9.tif\nz/B2_z10.tif\nz/B2_z123456789012345678901.tif\nz/B10_z9.tif' ]
}

@test "{*} tells no fields apart, {**} stands for any folders, a form limits a placeholder" {
  empty d/A1_w1_x.tif d/B1_w1_yy.tif d/B1_w2.tif
  run lines 'd/{well}_w{channel}{*}.tif' --channel 1=FITC --channel 2=DAPI -o '{well}.png'
  [[ $output == *'d/B1_w1_yy.tif'* ]]
  [[ $output == *'channel "2" is missing: there is no d/A1_w2{*}.tif'* ]]
  fails 2 'no placeholder {*}' lumetra batch 'd/{well}_w1{*}.tif' --channel 1=FITC -o '{*}.png'
  empty d/A1_w1_z.tif
  fails 2 'd/A1_w1_x.tif and d/A1_w1_z.tif are both the same channel of field A1' \
    lumetra batch 'd/{well}_w{channel}{*}.tif' --channel 1=FITC -o '{well}.png'
  fails 2 'd/A1_w1_x.tif and d/A1_w1_z.tif are both' \
    lumetra batch 'd/{well}_w1{*}.tif' --channel any=FITC -o '{well}.png'

  empty e/A1.tif e/x/B1.tif e/x/y/C1.tif e/x/y/c/D1.tif e/x/.h/E1.tif
  ln -s . e/x/up
  run lines 'e/{**}/{well}.tif' --channel a=FITC -o '{well}.png'
  [ "$output" = $'e/A1.tif\ne/x/B1.tif\ne/x/y/C1.tif\ne/x/y/c/D1.tif\ne/x/.h/E1.tif' ]
  run lines '{**}/y/{**}/{well}.tif' --channel a=FITC -o '{well}.png'
  [ "$output" = $'e/x/y/C1.tif\ne/x/y/c/D1.tif' ]
  fails 2 '{**}/{*}' lumetra batch 'e/{**}' --channel a=FITC -o x.png
  fails 2 'between slashes' lumetra batch 'e/x{**}/a' --channel a=FITC -o x.png

  empty f/AB12.tif f/A1x.tif f/12.tif f/A1-A1.tif f/A1-A2.tif f/r1c2.tif
  run lines 'f/{well:A#}.tif' --channel a=FITC -o '{well}.png'
  [ "$output" = f/AB12.tif ]
  run lines 'f/{well:r#c#}.tif' --channel a=FITC -o '{well}.png'
  [ "$output" = f/r1c2.tif ]
  run lines 'f/{well:A#}-{well}.tif' --channel a=FITC -o '{well}.png'
  [ "$output" = f/A1-A1.tif ]
  for bad in '{x:}' '{x:a/b}' '{**:#}' '{:#}'; do
    fails 2 'not' lumetra batch "f/$bad.tif" --channel a=FITC -o x.png
  done
}

@test "the case of the extension does not matter, that of other letters does" {
  empty g/a_d.TIF g/b_d.tif g/c_D.tif g/d_d.tiff h/d.TIF
  run lines 'g/{f}_{channel}.tif' --channel d=FITC -o '{f}.png'
  [ "$output" = $'g/a_d.TIF\ng/b_d.tif' ]
  run lines 'h/d.tif' --channel d=FITC -o 'x.png'
  [ "$output" = h/d.TIF ]
  empty g/b_d.Tif
  fails 2 'g/b_d.Tif and g/b_d.tif' lumetra batch 'g/{f}_{channel}.tif' --channel d=FITC -o '{f}.png'
}

@test "where nothing matches, a file is shown and where it differs" {
  empty p/A01_w1.tif p/A01_s1_d0.tif p/B.txt p/sub/C.tif
  no() { fails 3 "$2" lumetra batch "$1" --channel 1=FITC --channel 2=DAPI -o '{well}.png'; }
  no 'p/{well:A#}_s{site:#}_w{channel}.tif' \
    'p/A01_s1_d0.tif differs from the pattern at "d0.tif": expected "w{channel}.tif"'
  no 'p/{well}_s{site:#}.{channel}.tif' \
    'p/A01_s1_d0.tif differs from the pattern at "_d0.tif": expected ".{channel}.tif"'
  no 'p/{well:A#}_w{channel}.png' 'p/A01_w1.tif differs from the pattern at "tif": expected "png"'
  no 'p/{well:A#}_s1_d{channel}.tif' 'at "0.tif": expected "{channel}.tif", where {channel} is 1 or 2'
  no 'p/{well:A#}_s1_d0.tif{channel}' 'at its end: expected "{channel}"'
  no 'p/{well:A#}_{channel}.t' 'at "s1_d0.tif": expected "{channel}.t", where'
  no 'q/{well}/x{channel}' 'no folder q/'
  no 'p/*_w{channel}.tif' '* alone is no wildcard: write {*}, and quote the pattern for the shell'
  mkdir none
  no 'none/{well}_{channel}' 'there is no file in none/'
  run --separate-stderr lumetra batch 'p/{well}-{channel}.tif' --channel 1=FITC -o '{well}.png' \
    --files-from <(printf 'p/A01_w1.tif\np/x-2.tif\n')
  [ "$status" = 3 ]
  [[ $stderr == *'p/x-2.tif differs from the pattern at "2.tif": expected "{channel}.tif"'* ]]
}

@test "files whose names are not UTF-8 are counted" {
  empty u/ü_d.tif $'u/\xfc_d.tif' $'u/\xff.tif'
  run --separate-stderr lumetra batch 'u/{f}_d.tif' --channel d=FITC -o '{f}.png' --dry-run --quiet \
    --levels none
  [ "$status" = 0 ]
  [[ $stderr == *"2 files left out, since the name is not UTF-8"* ]]
  [[ $output == *ü_d.tif* ]]
  printf 'u/\xfc_d.tif\0u/ü_d.tif\0' >list
  run --separate-stderr lumetra batch 'u/{f}_d.tif' --channel d=FITC -o '{f}.png' --dry-run \
    --quiet --levels none --files-from list
  [[ $stderr == *"1 file left out"* && $output == *ü_d.tif* ]]
}

@test "the time for a list of files grows with its length, not with the square of it" {
  seq -f 'many/%06.0f_d.tif' 200000 >list
  head -n 20000 list >short
  of() { lumetra batch 'many/{f}_{channel}.tif' --channel d=FITC -o '{f}.png' --files-from $1 \
    --shard 1/20000 --quiet --dry-run --levels none; }
  TIMEFORMAT='%U %S' # seconds of the processor, whatever else runs
  times=$({ time of short >/dev/null; } 2>&1)
  limited() { (ulimit -t $(awk '{ print int(25 * ($1 + $2)) + 2 }' <<<"$times") && "$@"); }
  run --separate-stderr limited of list
  [ "$status" = 0 ]
  [ "${#lines[@]}" = 10 ]
}

@test "a part of a list starts in the time of its part, not of the list" {
  for n in 2000 200000; do
    seq -f 'many/%06.0f_d.tif' $n | lumetra list 'many/{f}_{channel}.tif' --channel d=FITC \
      --images '{f}.png' --files-from - --quiet -o $n.jsonl
  done
  of() { lumetra batch --fields $1.jsonl --shard $2/$(($1 / 20)) --quiet --dry-run --levels none; }
  of 200000 777 | cmp - <(seq -f 'many/%06.0f_d.tif' 200000 | lumetra batch 'many/{f}_{channel}.tif' \
    --channel d=FITC -o '{f}.png' --files-from - --shard 777/10000 --quiet --dry-run --levels none)
  for k in $(seq 17); do lumetra batch --fields 2000.jsonl --shard $k/17 --quiet --dry-run --levels none; done |
    cmp - <(lumetra batch --fields 2000.jsonl --quiet --dry-run --levels none)
  TIMEFORMAT='%U %S' # seconds of the processor, whatever else runs
  times() { { time for k in 1 40 100; do of $1 $k; done >/dev/null; } 2>&1; }
  awk '{ t[NR] = $1 + $2 } END { print t[1], t[2]; exit !(t[2] < 3 * t[1]) }' <(times 2000; times 200000)
}

# usage: sees TEXT PATTERN NAME...    what info says of a folder with these files. Levels of that
# pattern are of as many fields as there are, each with a file for each channel, though an empty one
sees() {
  local text=$1 pattern=$2
  shift 2
  rm -rf in
  (mkdir in && cd in && empty "$@")
  run --separate-stderr lumetra info in
  echo "$output$stderr"
  [ "$status" = 0 ]
  [ "$output" = "in: $text; pattern '$pattern'" ]
  local images=${text#*: } channels=1 named=(--channel any=DAPI) name
  if [[ $text =~ channels?\ ([^;]*) ]]; then
    named=() channels=0
    while read -r name; do
      [[ $name == *z-slices || $name == *time\ points ]] && continue
      named+=(--channel "$name=DAPI")
      ((++channels))
    done <<<"${BASH_REMATCH[1]//, /$'\n'}"
  fi
  run --separate-stderr lumetra levels "$pattern" "${named[@]}"
  local fields=$((${images%% *} / channels))
  echo "$stderr"
  [[ $stderr == *"$fields of $fields fields failed"* && $stderr != *"is missing"* ]]
}

guid=051DAA7C-7042-435F-99F0-1E847D9B42CB

@test "the names of instruments are known" {
  sees 'ImageXpress, MetaXpress: 4 images, 2 fields, channels 1, 2' \
    'in/IXMtest_{well:A#}_s{site:#}_w{channel:#}{*:G}.tif' \
    IXMtest_A01_s{1,2}_w{1,2}$guid.tif IXMtest_A01_s{1,2}_w{1,2}_thumb$guid.tif
  sees 'ImageXpress, MetaXpress: 8 images, 1 field, channels 1, 2, 2 z-slices, 2 time points' \
    'in/2020-01-02/77/TimePoint_{t:#}/ZStep_{z:#}/P 1_{well:A#}_s{site:#}_w{channel:#}{*:G}.tif' \
    2020-01-02/77/TimePoint_{1,2}/ZStep_{1,2}/'P 1_B03_s1_w'{1,2}$guid.TIF
  sees 'ImageXpress, MetaXpress: 2 images, 2 fields, channel 1' \
    'in/{folder}/TimePoint_1/P_{well:A#}_w{channel:#}.tif' {8,9}/TimePoint_1/P_B03_w1.tif
  sees 'ImageXpress, MetaXpress: 2 images, 2 fields' \
    'in/P_{well:A#}_s{site:#}{*:G}.tif' P_B03_s{1,2}$guid.tif
  sees 'CellVoyager: 8 images, 1 field, channels 01, 02, 2 z-slices, 2 time points; 1 other image left out' \
    'in/Plate_#65_{well:A#}_T{t:#}F{site:#}L01A{*:#}Z{z:#}C{channel:#}.tif' \
    'Plate_#65_B02_T'000{1,2}F001L01A01Z0{1,2}C01.tif \
    'Plate_#65_B02_T'000{1,2}F001L01A02Z0{1,2}C02.tif DC_CAM1.tif
  sees 'Opera Phenix, Operetta: 8 images, 1 field, channels 1, 2, 2 z-slices, 2 time points' \
    'in/Images/{well:r#c#}f{site:#}p{z:#}-ch{channel:#}sk{t:#}fk1fl1.tiff' \
    Images/r01c02f03p0{1,2}-ch{1,2}sk{1,2}fk1fl1.tiff
  sees 'Opera Phenix, Operetta: 2 images, 1 field, channel 1, 2 z-slices' \
    'in/{well:r#c#}f{site:#}p{z:#}rc1-ch{channel:#}sk1fk1fl1.tiff' \
    r01c02f03p0{1,2}rc1-ch1sk1fk1fl1.tiff
  sees 'Opera Phenix, Operetta: 2 images, 1 field, channels 01, 02' \
    'in/{well:r#c#}f{site:#}p01-ch{channel:#}t01.tiff' r02c02f01p01-ch0{1,2}t01.tiff
  sees 'IN Cell: 2 images, 1 field, channels Blue - FITC, DAPI - DAPI' \
    'in/{well:A - #}(fld {site:#} wv {channel}).tif' 'A - 01(fld 1 wv '{'DAPI - DAPI','Blue - FITC'}').tif'
  sees 'IN Cell: 4 images, 1 field, channel DAPI - DAPI, 2 z-slices, 2 time points' \
    'in/{well:A - #}(fld {site:#} wv {channel} z {z:#} time {t:#} - {*:#} ms).tif' \
    'A - 1(fld 01 wv DAPI - DAPI z '{1,2}{' time 1 - 0',' time 2 - 900'}' ms).tif'
  sees 'Incucyte: 2 images, 1 field, channel VID1_x, 2 time points' \
    'in/{channel}_{well:A#}_{site:#}_{t:#y#m#d_#h#m}.tif' VID1_x_A1_1_2019y05m16d_1{4,6}h00m.tif
  sees 'Incucyte: 2 images, 1 field, channels Green, Phase' \
    'in/{channel}_{well:A#}_{site:#}_00d12h00m.tif' {Phase,Green}_A1_1_00d12h00m.tif
  sees 'Cellomics: 4 images, 2 fields, channels 0, 1' \
    'in/MFGTMP-PC_150817140001_{well:A#}f{site:#}d{channel:#}.tif' \
    MFGTMP-PC_150817140001_B02f0{0,1}d{0,1}.TIF
  sees 'Micro-Manager: 4 images, 2 fields, channels 000, 001' \
    'in/img_channel{channel:#}_position{site:#}_time000000000_z000.tif' \
    img_channel00{0,1}_position00{0,1}_time000000000_z000.tif
  sees 'Micro-Manager: 4 images, 2 fields, channels Cy 3, DAPI' \
    'in/{site}/img_000000000_{channel}_000.tif' Pos{0,1}/img_000000000_{DAPI,'Cy 3'}_000.tif
  sees 'Micro-Manager: 2 images, 1 field, channel DAPI, 2 z-slices' \
    'in/img_000000000_{channel}_{z:#}.tif' img_000000000_DAPI_00{0,1}.tif
  sees 'Micro-Manager: 2 images, 2 fields' \
    'in/cells_1_MMStack_{site}.ome.tif' cells_1_MMStack_Pos{0,1}.ome.tif
  sees 'BBBC005: 2 images, 1 field, channels 1, 2' \
    'in/SIMCEPImages_{well:A#}_C1_F1_s{site:#}_w{channel:#}.tif' SIMCEPImages_A01_C1_F1_s01_w{1,2}.TIF
  sees 'BBBC006: 4 images, 1 field, channels 1, 2, 2 z-slices' \
    'in/BBBC006_v1_images_z_{z:#}/mcf-z-stacks-03212011_{well:A#}_s{site:#}_w{channel:#}{*:G}.tif' \
    BBBC006_v1_images_z_0{0,1}/mcf-z-stacks-03212011_a01_s1_w{1,2}$guid.tif
  sees 'ImageXpress, MetaXpress: 2 images, 1 field, channels 1, 2' \
    'in/1649_Amp5-1_B_20070424_{well:A#}_w{channel:#}_{*:G}.tif' \
    1649_Amp5-1_B_20070424_A01_w{1,2}_$guid.tif # BBBC010
  sees 'BBBC013, BBBC014: 4 images, 2 fields, channels 1, 2' \
    'in/Channel{channel:#}-{*:#}-{well:A-#}.bmp' Channel{1,2}-{01-A-01,02-A-02}.BMP
  sees 'BBBC020: 2 images, 1 field, channels 1, 5; 1 other image left out' \
    'in/{site}/{site}_c{channel:#}.tif' 'jw-1h 1/jw-1h 1_'{c1,c5,'(c1+c5)'}.TIF
}

@test "a folder stands in the place of its pattern" {
  for site in 1 2 10; do
    for channel in 1 2; do
      cp "plate/f0$((site % 9))_dapi.tif" "plate/P_B03_s${site}_w$channel$guid.tif"
    done
    : >"plate/P_B03_s${site}_w1_thumb$guid.tif"
  done
  rm plate/f*
  run --separate-stderr lumetra batch plate/ --channel 1=DAPI --channel 2=FITC -o 'a/{site}.png'
  [ "$status" = 0 ]
  [[ $stderr == *"plate/: ImageXpress, MetaXpress: 6 images, 3 fields, channels 1, 2; pattern 'plate/P_"* ]]
  [[ $stderr == *"3 fields, B03/1 to B03/10"* ]]
  pattern=$(lumetra info plate --json | sed -n 's/.*"pattern": "\(.*\)",*$/\1/p')
  lumetra batch "$pattern" --channel 1=DAPI --channel 2=FITC -o 'b/{site}.png' --quiet
  [ "$(sum a)" = "$(sum b)" ]
  [ "$(ls b | wc -l)" = 3 ]
  find plate -name '*w[12][0-9A-F]*' >list
  listed "$pattern" --channel 1=DAPI --channel 2=FITC -o 'c/{site}.png' --quiet --files-from list
  [ "$(sum a)" = "$(sum c)" ]
  listed plate --channel 1=DAPI --channel 2=FITC -o 'd/{site}.png' --quiet --dry-run |
    diff - <(lumetra batch "$pattern" --channel 1=DAPI --channel 2=FITC -o 'd/{site}.png' --quiet --dry-run)
  lumetra levels plate --channel 1=DAPI --quiet | grep -q '"files": 3'
  fails 2 'needs a pattern' lumetra batch plate --channel 1=DAPI -o '{site}.png' --files-from list
}

@test "a folder of no instrument, or of two, is told with an example and a pattern" {
  empty one/cells.tif two/P_B03_s{1,2}_w1.tif two/r01c02f03p0{1,2}-ch1sk1fk1fl1.tif void/x.txt
  empty few/{a,b,c,d}.tif few/P_B03_s1_w1.tif
  like="a pattern looks like 'plate/{well}_{site}_w{channel}.tif'"
  fails 1 'the names, such as cells.tif, are not those of an instrument that is known (BBBC005,' lumetra info one
  [[ $stderr == *$like* ]]
  fails 1 'the names are those of ImageXpress, MetaXpress, such as P_B03_s1_w1.tif, and of Opera Phenix, Operetta, such as r01c02f03p01-ch1sk1fk1fl1.tif' lumetra info two
  [[ $stderr == *$like* ]]
  fails 1 'only 1 of 5 names' lumetra batch few --channel 1=DAPI -o '{site}.png'
  fails 1 'there is no image in this folder' lumetra info void
}

@test "braces and backslashes in names of folders stand for themselves" {
  empty 'in {1}\1/{x}\1_B03_s1_w1.tif' 'in {1}\1/{x}\1_B04_s1_w1.tif'
  run lines 'in {1}\1' --channel 1=FITC -o '{well}.png'
  [ "${#lines[@]}" = 2 ]
}
