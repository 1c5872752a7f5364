# Whole data sets: levels and batch.

bats_require_minimum_version 1.5.0
load setup.bash

@test "a batch renders an image of each field, whatever the number of jobs" {
  run --separate-stderr plate -o 'out/{field}.png' --jobs 1
  [ "$status" = 0 ]
  [[ ${stderr_lines[0]} == "lumetra: 10 fields, f00 to f09" ]]
  [[ $stderr == *"--levels-over dataset"* ]]
  [ "$(find out -type f | wc -l)" = 10 ]
  run --separate-stderr plate -o 'four/{field}.png' --jobs 4 --quiet
  [ -z "$stderr" ]
  [ "$(sum out)" = "$(sum four)" ]
}

@test "the lines of a dry run make the same bytes" {
  for options in "" "--levels-over field --gamma 0.7" "--levels none" "--hide 2 --legend" \
    "--crop 10,20,90,80 --resize 50% --scale-bar 10 --pixel-size 1" "--blend screen" "--project sum" \
    "--levels auto --levels 9:60000 --gamma 1 --gamma 2" "--levels none --levels 9:60000"; do
    rm -rf batch lines
    mkdir lines
    plate -o 'batch/it'\''s {field}.tif' --quiet $options
    plate -o 'lines/it'\''s {field}.tif' --quiet --dry-run $options >lines.sh
    [ "$(wc -l <lines.sh)" = 10 ]
    sh lines.sh
    [ "$(sum batch)" = "$(sum lines)" ]
  done
}

@test "a custom dye needs no file in the lines of a dry run" {
  printf '[General]\nNumber=1\n\n[DyeType1]\nName=Our own+1+1\nColor=#c474ff\n' >own.ini
  lumetra batch 'plate/{field}_{channel}.tif' --channel 'dapi=Our own+1+1' --custom own.ini \
    -o 'batch/{field}.png' --quiet --legend
  lumetra batch 'plate/{field}_{channel}.tif' --channel 'dapi=Our own+1+1' --custom own.ini \
    -o 'lines/{field}.png' --quiet --legend --dry-run >lines.sh
  mkdir lines
  sh lines.sh
  [ "$(sum batch)" = "$(sum lines)" ]
}

@test "levels of the data set, kept as settings, give the images of the first pass" {
  plate -o 'out/{field}.png' --quiet
  lumetra levels 'plate/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC+3-2 \
    -o plate.json --quiet --jobs 3
  grep -q '"files": 20' plate.json
  grep -q '"method": "clip:0.1"' plate.json
  lumetra batch 'plate/{field}_{channel}.tif' --settings plate.json -o 'set/{field}.png' --quiet
  [ "$(sum out)" = "$(sum set)" ]
  plate -o 'own/{field}.png' --quiet --levels-over field
  run ! [ "$(sum out)" = "$(sum own)" ]
  fails 2 'no channel "rfp"' lumetra batch 'plate/{field}_{channel}.tif' --settings plate.json \
    --channel rfp=Cy3 -o 'x/{field}.png'
}

@test "shards make all fields, each once, under the levels of all" {
  plate -o 'out/{field}.png' --quiet
  for k in 1 2 3; do
    plate -o 'shards/{field}.png' --quiet --shard $k/3
  done
  [ "$(sum out)" = "$(sum shards)" ]
  for bad in 0/3 4/3 x 1/0 -1/3; do
    fails 2 "--shard" plate -o 'x/{field}.png' "--shard=$bad"
  done
}

@test "patterns match folders, repeated placeholders, braces and lists of files" {
  mkdir -p 'deep/a/1{x}' 'deep/b/1{x}' deep/b/c
  cp a.tif 'deep/a/1{x}/a_g.tif'
  cp a.tif 'deep/b/1{x}/b_g.tif'
  cp a.tif 'deep/b/1{x}/a_g.tif' # the placeholder is repeated, but its text differs
  run --separate-stderr lumetra batch 'deep/{well}/{site}{{x}}/{well}_{channel}.tif' \
    --channel g=FITC -o 'out/{well}-{site}.png'
  [ "$status" = 0 ]
  [[ $stderr == *"2 fields, a/1 to b/1"* ]]
  [ "$(ls out)" = $'a-1.png\nb-1.png' ]
  printf 'plate/f03_dapi.tif\nplate/f01_dapi.tif\nother\n' |
    lumetra batch 'plate/{field}_{channel}.tif' --channel dapi=DAPI --files-from - \
      -o 'listed/{field}.png' --quiet
  [ "$(ls listed)" = $'f01.png\nf03.png' ]
  printf 'plate/f03_dapi.tif\0' >list
  lumetra batch 'plate/{field}_dapi.tif' --channel any=DAPI --files-from list -o '{field}.png' --quiet
  [ -s f03.png ]
}

@test "what makes no sense is refused before work starts" {
  before=$(sum .)
  fails 3 "no file matches nowhere" lumetra batch 'nowhere/{field}.tif' --channel a=DAPI -o '{field}.png'
  fails 2 "fields f00 and f01 have the same output x.png" plate -o x.png --quiet
  fails 2 "no placeholder {site}; there is {field}" plate -o '{site}.png' --quiet
  fails 2 "no placeholder {channel}" plate -o '{channel}.png' --quiet
  fails 2 "placeholder {field_{channel}, which is not a valid name" lumetra batch 'plate/{field_{channel}.tif' --channel a=DAPI -o '{field}.png'
  fails 2 "has an unmatched brace" lumetra batch 'plate/{field' --channel a=DAPI -o '{field}.png'
  fails 1 'none of them "a"' lumetra batch 'plate/{field}.tif' --channel a=DAPI --channel b=FITC -o '{field}.png'
  fails 2 "channel \"a\" is given twice" lumetra batch 'plate/{field}.tif' --channel a=DAPI --channel a=FITC -o '{field}.png'
  fails 2 "no channels" lumetra batch 'plate/{field}_{channel}.tif' -o '{field}.png'
  fails 2 "f00_actin.tif does not say the dye or colour of channel 1" lumetra batch 'plate/{field}.tif' -o '{field}.png'
  fails 2 "is an input and also the output" lumetra batch 'plate/{field}_{channel}.tif' --channel dapi=DAPI -o 'plate/{field}_dapi.tif' --overwrite --quiet
  for option in --log --progress; do
    fails 1 "plate/f03_dapi.tif: is also an input" plate -o '{field}.png' --quiet $option plate/f03_dapi.tif
  done
  fails 1 "plate/f03_dapi.tif: is also an input" lumetra levels 'plate/{field}_{channel}.tif' --channel dapi=DAPI -o plate/f03_dapi.tif
  fails 2 "--log" plate -o '{field}.png' --resume
  mkfifo pipe
  for output in plate pipe; do
    fails 1 "$output: is not a regular file" lumetra levels \
      'plate/{field}_{channel}.tif' --channel dapi=DAPI -o $output
  done
  [ -p pipe ]
  fails 1 ".png, .tif" plate -o '{field}.bmp' --quiet
  [ "$(sum .)" = "$before" ]
}

@test "no file is read and written, or written twice, by whatever name" {
  plate -o 'out/{field}.png' --quiet
  lumetra levels 'plate/{field}_{channel}.tif' --channel dapi=DAPI -o set.json --quiet
  printf 'plate/f03_dapi.tif\n' >list
  ln -s out linked
  ln set.json hard.json
  before=$(sum .)
  one() { lumetra batch 'plate/{field}_{channel}.tif' --settings set.json -o 'new/{field}.png' "$@"; }
  fails 1 "is also an input" one --log hard.json
  fails 1 "is also an input" one --files-from list --progress ./list
  fails 1 "written twice" one --log x --progress ./new/../x
  fails 1 "written twice" plate -o 'out/{field}.png' --overwrite --log linked/f01.png
  fails 1 "is also an input" lumetra levels 'plate/{field}_{channel}.tif' --channel dapi=DAPI \
    --files-from list -o list
  fails 1 "written twice" lumetra merge a.tif=DAPI -o new.png --log new.png
  fails 1 "written twice" lumetra gallery out -o g.html --progress g.html
  fails 1 "is also an input" lumetra gallery out -o g.html --progress linked/f02.png
  [ "$(sum .)" = "$before" ]
  mkdir real
  ln -s real link
  mkdir -p many/real many/link
  cp plate/f00_dapi.tif many/real
  cp plate/f00_dapi.tif many/link
  fails 2 "same output" lumetra batch 'many/{d}/{f}_dapi.tif' --channel dapi=DAPI -o '{d}/new/{f}.png' --quiet
}

@test "a broken field and one without a channel fail by name, the others are done" {
  rm plate/f03_actin.tif
  head -c 9000 plate/f05_dapi.tif >cut
  mv cut plate/f05_dapi.tif
  cp small.png plate/f07_dapi.tif
  run --separate-stderr plate -o 'out/{field}.png' --log log --quiet
  [ "$status" = 1 ]
  [ "$(ls out | wc -l)" = 7 ]
  [[ $stderr == *'field f03: channel "actin" is missing: there is no plate/f03_actin.tif'* ]]
  [[ $stderr == *"field f05: plate/f05_dapi.tif"*"cut short"* ]]
  [[ $stderr == *"field f07: "*"different sizes"* ]]
  [[ $stderr == *"3 of 10 fields failed"* ]]
  [ "${#stderr_lines[@]}" = 4 ]
  [ "$(grep -c '"outcome":"done"' log)" = 7 ]
  [ "$(grep -c '"outcome":"failed"' log)" = 3 ]
  run --separate-stderr lumetra levels 'plate/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC -o set.json
  [ "$status" = 1 ]
  grep -q '"files": 14' set.json
}

@test "files of one channel in two depths have no levels in common" {
  cp b.png plate/f04_dapi.tif
  cp b.png plate/f04_actin.tif
  fails 1 "different bit depth" plate -o 'x/{field}.png' --quiet
}

@test "fields that are there are not replaced unasked, nor called failed" {
  plate -o 'out/{field}.png' --quiet --log log
  before=$(sum out)
  fails 1 "10 of 10 outputs already exist, the first of them out/f00.png" \
    plate -o 'out/{field}.png' --quiet --gamma 2 --log log
  [[ $stderr == *--resume*--overwrite* ]]
  fails 1 "3 of 3 outputs already exist, the first of them out/f03.png" plate -o 'out/{field}.png' --log log --shard 2/3
  rm out/f0[1-9].png
  fails 1 "1 of 10 outputs already exist" plate -o 'out/{field}.png' --log log
  fails 1 "already exists" lumetra merge plate/f00_dapi.tif=DAPI -o out/f00.png --log log
  run ! grep -q '"outcome":"failed"' log
  plate -o 'out/{field}.png' --quiet --log log --resume
  [ "$(grep -c '"outcome":"done"' log)" = 19 ]
  [ "$(sum out)" = "$before" ]
  plate -o 'out/{field}.png' --quiet --gamma 2 --overwrite
  run ! [ "$(sum out)" = "$before" ]
}

@test "the latest line of a log counts: what failed since is done again" {
  plate -o 'out/{field}.png' --quiet --log log
  sed -n 's/"outcome":"done"/"outcome":"failed"/p' log | head -n 3 >>log
  plate -o 'out/{field}.png' --quiet --log log --resume
  [ "$(wc -l <log)" = 16 ]
  lumetra gallery out -o index.html --log log --quiet
  run ! grep -q 'class="tile failed"' index.html
}

@test "contrast limits that were measured are said once, and are in the log" {
  measured=$(lumetra levels 'plate/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC+3-2 \
    -o set.json 2>&1 | grep levels:)
  limits=$(tr -d ' \n' <set.json | grep -oE '"levels":\[[0-9,]*\]' | tr -dc '0-9,\n' | tr , :)
  [ "$measured" = "$(printf 'lumetra: levels: 1 DAPI %s, 2 FITC %s' $limits)" ]
  said() { run --separate-stderr "$@" && [ "$(grep -c 'levels: ' <<<"$stderr")" = "$expected" ]; }
  expected=1 said plate -o 'out/{field}.png' --log log
  [[ $stderr == *"$measured"* ]]
  expected=0 said plate -o 'own/{field}.png' --log own.log --levels-over field
  expected=0 said plate -o 'fixed/{field}.png' --levels 1:9
  expected=0 said plate -o 'quiet/{field}.png' --quiet
  # What is in the log renders the same, field by field.
  for line in 1 2; do
    name=$(sed -n "${line}p" own.log | grep -oE '"field":"[^"]*"' | cut -d'"' -f4)
    options=$(sed -n "${line}p" own.log | grep -oE '"levels":\[[0-9]*,[0-9]*\]' | tr -dc '0-9,\n' |
      sed 's/,/:/; s/^/--levels /')
    [ "$(wc -l <<<"$options")" = 2 ]
    expected=0 said lumetra merge plate/"$name"_dapi.tif=DAPI plate/"$name"_actin.tif=FITC+3-2 -o $line.png $options
    cmp $line.png own/$name.png
  done
  expected=1 said lumetra merge a.tif=DAPI -o x.png --log merge.log
  limits=$(grep -oE '"levels":\[[0-9,]*\]' merge.log | tr -dc '0-9,' | tr , :)
  [[ $stderr == *"levels: 1 DAPI $limits" ]]
  grep -q '"method":"clip:0.1"' merge.log
  expected=1 said lumetra pseudo a.tif -o y.png
  [[ $stderr == *"levels: $limits" ]]
  # Limits of a field follow from its inputs: they are no reason to do it again.
  plate -o 'own/{field}.png' --log own.log --levels-over field --resume --quiet
  [ "$(wc -l <own.log)" = 10 ]
}

@test "settings of one bit depth are refused for another, by name" {
  for f in plate/f0*_dapi.tif; do cp b.png "${f%_dapi.tif}_eight.tif"; done
  lumetra levels 'plate/{field}_{channel}.tif' --channel eight=DAPI -o 8.json --quiet
  grep -q '"bits": 8' 8.json
  fails 1 "a.tif has 16 bits, and the contrast limits of channel 1 in 8.json were measured at 8 bits" \
    lumetra merge a.tif --settings 8.json -o x.png
  fails 1 "stack.tif has 16 bits" lumetra merge stack.tif --settings 8.json --all-pages -o x.tif
  sed 's/"eight"/"dapi"/' 8.json >dapi.json
  run --separate-stderr lumetra batch 'plate/{field}_{channel}.tif' --settings dapi.json -o 'x/{field}.png'
  [ "$status" = 1 ]
  [[ $stderr == *"field f00: plate/f00_dapi.tif has 16 bits"*"10 of 10 fields failed"* ]]
  [ ! -e x.png ] && [ ! -e x.tif ] && [ ! -e x/f00.png ]
  lumetra merge b.png --settings 8.json -o same.png
  lumetra merge a.tif --settings 8.json --levels 1:9 -o given.png
  grep -v '"bits"' 8.json >old.json # as earlier versions wrote it
  lumetra merge a.tif --settings old.json -o old.png
  fails 1 '"bits" of channel 1 is not 8 or 16' lumetra merge a.tif --settings <(sed 's/"bits": 8/"bits": 12/' 8.json) -o y.png
}

@test "a field is skipped only if all is as it was" {
  done_again() { plate -o 'out/{field}.png' --log log --resume --quiet "$@" && grep -c . log; }
  [ "$(done_again)" = 10 ]
  [ "$(done_again)" = 10 ]
  rm out/f02.png
  [ "$(done_again)" = 11 ]
  echo more >>out/f03.png
  [ "$(done_again)" = 12 ]
  touch plate/f04_dapi.tif
  [ "$(done_again)" = 13 ]
  [ "$(done_again --legend)" = 23 ]
  [ "$(done_again --legend --levels auto)" = 33 ]
  sed -i 's/"version":"[^"]*"/"version":"0.9"/' log
  [ "$(done_again --legend --levels auto)" = 43 ]
  [ "$(done_again --legend --levels auto)" = 43 ]
}

@test "progress goes to a file in lines for programs" {
  plate -o 'out/{field}.png' --quiet --progress progress
  grep -q '^work=measuring$' progress
  [ "$(tail -n 7 progress | grep -vE 'per_second|seconds_left')" = $'work=rendering\ntotal=10\ndone=10\nfailed=0\nprogress=end' ]
}

@test "a list of fields gives what their pattern gives, part by part" {
  rm plate/f03_actin.tif
  head -c 9000 plate/f05_dapi.tif >cut
  mv cut plate/f05_dapi.tif
  plain() { lumetra batch "$@"; }
  by() { "$@" 'plate/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC+3-2 -o 'out/{field}.png' --quiet; }
  of() {
    local k road=$1
    rm -rf out
    shift
    for k in 1 2 3; do by "$road" --shard $k/3 --log log "$@" 2>&1 || echo "status $?"; done
    by "$road" --levels-over field --dry-run --overwrite || echo "status $?"
    sum out
    sed 's/"milliseconds":[0-9]*//' log
    rm log
  }
  lumetra levels 'plate/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC+3-2 -o set.json --quiet || true
  for options in "--levels 9:60000 --jobs 1" "--levels-over field --jobs 1 --legend" "--settings set.json --jobs 1"; do
    of plain $options >plain.txt
    of listed $options >listed.txt
    diff plain.txt listed.txt
    grep -q '"outcome":"done"' plain.txt
  done
  [ "$(grep -c . fields.jsonl)" = 11 ]
  # Channels in another order than the list has them.
  swapped() { "$@" --channel actin=FITC --channel dapi=DAPI --levels 1:9 --levels none --dry-run --quiet || true; }
  diff <(swapped lumetra batch --fields fields.jsonl) \
    <(swapped lumetra batch 'plate/{field}_{channel}.tif' -o 'out/{field}.png')
  # Limits that all fields share are measured over the list.
  plate -o 'all/{field}.png' --quiet || [ $? = 1 ]
  listed 'plate/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC+3-2 -o 'listed/{field}.png' --quiet || [ $? = 1 ]
  [ "$(sum all)" = "$(sum listed)" ]
  lumetra levels --fields fields.jsonl --quiet -o listed.json || [ $? = 1 ]
  cmp set.json listed.json
}

@test "a part of a list looks once at each of its files, and at no others" {
  lumetra list 'plate/{field}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC \
    --images 'out/{field}.png' -o fields.jsonl --quiet
  cp -r plate whole
  rm plate/f0[0-37-9]_*
  part() { lumetra batch --fields fields.jsonl --shard 2/2 --levels 1:60000 --log log "$@"; }
  lumetra batch --fields fields.jsonl --shard 5/10 --levels 1:60000 --quiet
  [ "$(ls out)" = f04.png ]
  rm -r plate out && mv whole plate
  strace -o /dev/null true 2>/dev/null || skip "strace is missing, or may not trace"
  export ASAN_OPTIONS="${ASAN_OPTIONS:-}:detect_leaks=0" # leaks cannot be looked for in a traced program
  calls() { grep -cE "^[0-9]+ +$1\(.*\"plate/$2" trace || true; }
  strace -f -e trace=file -o trace lumetra batch --fields fields.jsonl --shard 2/2 --levels 1:60000 --log log --quiet
  [ "$(calls '[a-z]*stat[a-z0-9]*' 'f0[5-9]')" = 10 ]
  [ "$(calls 'open[a-z]*' 'f0[5-9]')" = 10 ]
  [ "$(calls '.*' 'f0[0-4]')" = 0 ]
  strace -f -e trace=file -o trace lumetra batch --fields fields.jsonl --shard 2/2 --levels 1:60000 --log log --quiet --resume
  [ "$(calls '.*' '')" = 10 ] # stat alone
}

@test "a list of fields is refused where it, or what is beside it, makes no sense" {
  channels='--channel dapi=DAPI --channel actin=FITC'
  fails 2 "fields f00 and f01 have the same output x.png" lumetra list 'plate/{field}_{channel}.tif' $channels --images x.png -o x.jsonl
  fails 2 "is an input and also the output" lumetra list 'plate/{field}_{channel}.tif' --channel dapi=DAPI --images 'plate/{field}_dapi.tif' -o x.jsonl
  fails 1 "is also an input" lumetra list 'plate/{field}_{channel}.tif' $channels --images '{field}.png' -o plate/f03_dapi.tif --overwrite
  fails 1 ".png, .tif" lumetra list 'plate/{field}_{channel}.tif' $channels --images '{field}.bmp' -o x.jsonl
  fails 3 "no file matches" lumetra list 'nowhere/{field}.tif' $channels --images '{field}.png' -o x.jsonl
  [ ! -e x.jsonl ]
  lumetra list 'plate/{field}_{channel}.tif' $channels --images 'out/{field}.png' -o fields.jsonl --quiet
  fails 1 "fields.jsonl: already exists; --overwrite" lumetra list 'plate/{field}_{channel}.tif' $channels --images 'out/{field}.png' -o fields.jsonl
  fails 2 "leave out -o" lumetra batch --fields fields.jsonl -o '{field}.png'
  fails 2 "in the place of PATTERN" lumetra batch 'plate/{field}_{channel}.tif' --fields fields.jsonl
  fails 2 "no PATTERN" lumetra batch -o '{field}.png'
  fails 2 "measure them once with 'lumetra levels'" lumetra batch --fields fields.jsonl --shard 1/2 --quiet
  fails 2 "has the channels dapi, actin" lumetra batch --fields fields.jsonl --channel dapi=DAPI --levels 1:9
  fails 2 "was made without --project" lumetra batch --fields fields.jsonl --project max --levels 1:9
  fails 1 "written twice" lumetra batch --fields fields.jsonl --levels 1:9 --log out/f03.png --quiet
  fails 1 "plate/f03_dapi.tif: is no log" lumetra batch --fields fields.jsonl --levels 1:9 --log plate/f03_dapi.tif --quiet
  bad() { fails 1 "bad.jsonl: $1" lumetra batch --fields bad.jsonl --levels 1:9 --quiet; }
  bad "No such file" # nothing yet
  cp plate/f00_dapi.tif bad.jsonl && bad "is no list of fields"
  : >bad.jsonl && bad "is no list of fields"
  sed 's/#[0-9a-f]*/?/' fields.jsonl >bad.jsonl && bad ''
  sed 4d fields.jsonl >bad.jsonl && bad "does not have a line for each of the fields 1 to 10"
  head -c -9 fields.jsonl >bad.jsonl && bad "does not have a line for each"
  sed '4s/"number"/"numbered"/' fields.jsonl >bad.jsonl && bad "has a"
  sed '4s/,"output".*/}/' fields.jsonl >bad.jsonl && bad "has no line for field 3 that can be understood"
  (head -n 1 fields.jsonl; tac fields.jsonl | head -n 10) >bad.jsonl && bad ''
  [ ! -e out ]
  mkfifo pipe && fails 1 "is not a regular file" lumetra batch --fields <(cat fields.jsonl) --levels 1:9
}
