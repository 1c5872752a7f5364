# Pages of images, and the logs that they are made from.

bats_require_minimum_version 1.5.0
load setup.bash

# Every file that a page names, one in a line, as a browser would find it.
named_by() {
  grep -oE '(href|src)="[^"#][^"]*"' "$1" | sed -E 's/^[a-z]+="//; s/"$//; s/\+/%2B/g; s/%/\\x/g' |
    while read -r name; do
      printf '%b\n' "$(dirname "$1")/$name"
    done
}

images() { # usage: images NAME...    an image file under each of the names
  for name in "$@"; do
    mkdir -p "$(dirname "$name")"
    cp b.png "$name"
  done
}

@test "a gallery links each image, whatever its name, and a small one of it" {
  images out/plain.png "out/a b/it's <b>&amp; \"x\" 100%.png" out/a+b#1?.png out/é:ü.png
  cp a.tif out/deep.tif
  cp stack.tif out/stack.TIFF
  cp colour.jpg out/c.jpg
  touch out/notes.txt
  lumetra gallery out -o index.html --quiet
  named_by index.html >named
  [ "$(wc -l <named)" = 14 ]
  while read -r file; do
    echo "$file"
    [ -s "$file" ]
  done <named
  [ "$(grep -c '^\./index_thumbnails/' named)" = 7 ]
  run ! grep -q '<b>&amp; ' index.html # a name is no markup
  grep -q 'name="viewport" content="width=device-width, initial-scale=1"' index.html # phones
  lumetra info index_thumbnails/deep.tif.jpg | grep -q ' 8 bits'
  # From another folder, of the page and of the one who asks.
  mkdir -p pages
  (cd pages && lumetra gallery ../out -o here.html --quiet)
  named_by pages/here.html | while read -r file; do [ -s "$file" ]; done
  # Its own thumbnails, and those of other pages, are no images.
  lumetra gallery out -o out/index.html --quiet
  lumetra gallery out -o out/index.html --quiet --overwrite
  [ "$(named_by out/index.html | wc -l)" = 14 ]
}

@test "a thumbnail is made anew for an image that is another one, and kept otherwise" {
  images out/one.png out/two.png
  lumetra gallery out -o index.html --quiet
  sum=$(sha256sum <index_thumbnails/one.png.jpg)
  before=$(stat -c %i index_thumbnails/two.png.jpg)
  lumetra dye c.tif=FITC -o out/one.png --overwrite --quiet
  touch -d '2001-01-01' out/one.png # older than the thumbnail, and yet another image
  lumetra gallery out -o index.html --quiet --overwrite
  run ! [ "$sum" = "$(sha256sum <index_thumbnails/one.png.jpg)" ]
  [ "$before" = "$(stat -c %i index_thumbnails/two.png.jpg)" ]
}

@test "wells are set in rows and columns, plate by plate" {
  images out/P01_B03_F01.png out/P01_B03_F02.png out/P01_C11_F01.png out/P02_AA02_F01.png out/x.png
  lumetra gallery out -o index.html --quiet
  grep -q '<h2>P01</h2>' index.html
  grep -q '<h2>P02</h2>' index.html
  grep -q '<h2>Not in a well</h2>' index.html
  tr -d '\n' <index.html >page
  # Nine columns from 3 to 11, two rows; the first well holds two images, the last one one.
  grep -qE '<span>3</span>.*<span>11</span></div><div class="row"><b class="head">B</b><div class="well"><a[^>]*B03_F01\.png".*B03_F02\.png"' page
  grep -qE '<b class="head">C</b>(<div class="well"></div>){8}<div class="well"><a[^>]*C11_F01\.png"' page
  grep -qE '<b class="head">AA</b><div class="well"><a[^>]*AA02' page
  images numbers/r02c03f01.png numbers/r03c11f01.png "letters/B - 3_1.png" "letters/C - 11_1.png"
  for folder in numbers letters; do
    lumetra gallery $folder -o $folder.html --quiet
    tr -d '\n' <$folder.html >page
    grep -qE '<b class="head">B</b><div class="well"><a.*<b class="head">C</b>(<div class="well"></div>){8}<div class="well"><a' page
  done
  lumetra gallery out -o list.html --quiet --list
  run ! grep -q 'class="well"' list.html
  images names/Well1.png names/T100.png names/B03x.png names/2B03.png \
    names/r33c01.png names/r01c490.png names/A49.png names/AG01.png names/AH02.png names/xr01c02.png # nothing of it is a well
  lumetra gallery names -o names.html --quiet
  run ! grep -q 'class="well"' names.html
}

@test "what a batch logged is told: channels, levels, and failed fields with their reason" {
  rm plate/f03_actin.tif
  head -c 9000 plate/f05_dapi.tif >cut
  mv cut plate/f05_dapi.tif
  run plate -o 'out/{field}.png' --log log --quiet
  run --separate-stderr lumetra gallery out -o index.html --log log
  [ "$status" = 0 ]
  [ "$stderr" = "lumetra: index.html: 10 images, 2 of them failed" ]
  grep -q 'dapi: DAPI <span class="muted">contrast limits [0-9]* to [0-9]*<' index.html
  grep -q '>f03</a>: channel &quot;actin&quot; is missing' index.html
  grep -q '>f05</a>: plate/f05_dapi.tif' index.html
  [ "$(grep -c 'class="tile failed"' index.html)" = 2 ]
  # A failed tile leads to its reason, which the page has in full.
  grep -qE 'href="#f[0-9]+" title="f05: failed: plate/f05_dapi.tif: [^"]*cut short" aria-label' index.html
  place=$(grep -oE 'href="#f[0-9]+" title="f03' index.html | grep -oE 'f[0-9]+' | head -1)
  grep -qE "<li id=\"$place\"><a [^>]*>f03</a>: .*there is no plate/f03_actin.tif</li>" index.html
  # The latest entry counts: mended and rendered again; and an image may have gone.
  cp plate/f04_dapi.tif plate/f05_dapi.tif
  run plate -o 'out/{field}.png' --log log --quiet --resume
  rm out/f00.png
  lumetra gallery out -o index.html --log log --quiet --overwrite
  grep -q '>f00</a>: was rendered, but the file is missing' index.html
  run ! grep -q 'f05</a>:' index.html
  mkdir away
  (cd away && fails 0 "no image in ../out" lumetra gallery ../out -o g.html --log ../log --quiet)
  # Through a link, and where levels changed: the latest entry of each image alone counts.
  ln -s out link
  plate -o 'out/{field}.png' --levels 9:60000 --overwrite --log log --quiet || true
  (cd "$BATS_TEST_TMPDIR/work" && lumetra gallery link -o link.html --log log --quiet)
  grep -q 'DAPI <span class="muted">contrast limits 9 to 60000<' link.html
  lumetra merge plate/f00_dapi.tif=DAPI plate/f00_actin.tif=FITC+3-2 -o out/f00.png --overwrite --quiet \
    --levels 9:60000 --log log
  lumetra gallery out -o mixed.html --log log --quiet
  grep -q '</span>DAPI <span class="muted">contrast limits 9 to 60000<' mixed.html
  plate -o 'own/{field}.png' --log own.log --quiet --levels-over field || true
  lumetra gallery own -o own.html --log own.log --quiet
  grep -q 'contrast limits of each image (clip:0.1)' own.html
  lumetra gallery out -o set.html --quiet --settings <(printf \
    '{"channels":[{"dye":"FITC","levels":[7,9]}],"measured":{"method":"auto","files":20}}')
  grep -q 'FITC <span class="muted">contrast limits 7 to 9<' set.html
  grep -q 'Contrast limits measured over 20 files (auto)' set.html
}

@test "lines of a dry run that work at the same time share a log" {
  mv plate/f09_actin.tif kept.tif
  cp small.png plate/f09_actin.tif
  mkdir out
  plate --levels 9:60000 -o 'out/{field}.png' --quiet --log 'the log' --dry-run >lines.sh
  [ "$(wc -l <lines.sh)" = 10 ]
  printf '{"half a line' >'the log'
  xargs -d '\n' -P 10 -I{} sh -c {} <lines.sh 2>errors || true
  [ "$(grep -c '"outcome":"done"' 'the log')" = 9 ]
  grep -q '"field":"f09".*"outcome":"failed".*different sizes' 'the log'
  rm plate/f08_actin.tif out/f08.png # no line can tell this
  run plate --levels 9:60000 -o 'out/{field}.png' --quiet --log 'the log' --dry-run --resume
  [ "${#lines[@]}" = 3 ] # the broken field, what is wrong with the other one, and how many
  lumetra gallery out -o index.html --log 'the log' --quiet
  grep -q '>f08</a>: channel &quot;actin&quot; is missing' index.html
  [ "$(grep -c 'class="tile failed"' index.html)" = 2 ]
  grep -q '>f09</a>: .*different sizes' index.html
  before=$(sum plate)
  fails 1 "is also an input" lumetra merge plate/f01_dapi.tif=DAPI -o x.png --log plate/f01_dapi.tif
  [ "$before" = "$(sum plate)" ]
}

@test "what makes no gallery is refused, and a broken image is told by name" {
  mkdir empty
  images out/a.png
  fails 3 "no image in empty" lumetra gallery empty -o index.html
  fails 1 "nowhere: is not a folder" lumetra gallery nowhere -o index.html
  fails 1 "written as .html" lumetra gallery out -o out/a.png --overwrite
  fails 1 "nolog" lumetra gallery out -o index.html --log nolog
  echo mine >index.html
  fails 1 "--overwrite" lumetra gallery out -o index.html
  [ "$(cat index.html)" = mine ]
  head -c 300 b.png >out/cut.png
  run --separate-stderr lumetra gallery out -o index.html --overwrite --quiet
  [ "$status" = 1 ]
  [[ $stderr == *"out/cut.png"* ]]
  grep -q '>cut</a>: out/cut.png' index.html
  grep -q 'href="out/a.png"' index.html
  fails 1 "b.png: is not a folder that can be written" lumetra gallery out -o b.png/index.html
  echo mine >other_thumbnails
  fails 1 "other_thumbnails: is not a folder that can be written" lumetra gallery out -o other.html
  [ "$(cat other_thumbnails)" = mine ] && [ ! -e other.html ]
}

@test "a batch makes the gallery as it goes, the same as a gallery made of its images" {
  rm plate/f03_actin.tif
  run --separate-stderr plate --levels 9:60000 -o 'out/{field}.png' --log log --gallery all.html
  [ "$status" = 1 ]
  [[ $stderr == *"all.html: 10 images, 1 of them failed"* ]]
  lumetra gallery out -o again.html --log log --quiet
  sed 's/again_thumbnails/all_thumbnails/' again.html | cmp - all.html
  diff -r all_thumbnails again_thumbnails
  # Without a log as well; a run that goes on makes what is missing, and keeps the rest.
  run plate -o 'mine/{field}.tif' --gallery mine.html --quiet
  grep -q '>f03</a>: channel &quot;actin&quot; is missing' mine.html
  grep -q 'dapi: DAPI <span class="muted">contrast limits [0-9]* to [0-9]*<' mine.html
  kept=$(stat -c %i all_thumbnails/f04.png.jpg)
  rm all_thumbnails/f05.png.jpg out/f06.png
  cp plate/f04_actin.tif plate/f03_actin.tif
  plate --levels 9:60000 -o 'out/{field}.png' --log log --gallery all.html --quiet --resume
  lumetra gallery out -o again.html --log log --quiet --overwrite
  sed 's/again_thumbnails/all_thumbnails/' again.html | cmp - all.html
  diff -r all_thumbnails again_thumbnails
  [ "$(stat -c %i all_thumbnails/f04.png.jpg)" = "$kept" ]
  # Parts leave the page to the gallery, which finds their thumbnails there.
  for part in 1/2 2/2; do
    plate -o 'parts/{field}.png' --shard $part --gallery parts.html --quiet
  done
  [ ! -e parts.html ]
  kept=$(stat -c %i parts_thumbnails/*)
  lumetra gallery parts -o parts.html --quiet
  [ "$(stat -c %i parts_thumbnails/*)" = "$kept" ] && [ "$(wc -w <<<"$kept")" = 10 ]
  # Fields of a list have the folder of its images, also a part in which all are in one below it.
  lumetra list 'plate/f{row}{site}_{channel}.tif' --channel dapi=DAPI --channel actin=FITC \
    --images 'listed/{row}/{site}.png' -o fields.jsonl --quiet
  lumetra batch --fields fields.jsonl --levels 9:60000 --shard 1/2 --gallery listed.html --quiet
  lumetra batch --fields fields.jsonl --levels 9:60000 --overwrite --gallery listed.html --quiet
  lumetra gallery listed -o found.html --quiet
  diff -r listed_thumbnails found_thumbnails
}

@test "a gallery that cannot be made stops a batch before any work" {
  echo mine >index.html
  fails 1 "--overwrite" plate -o 'out/{field}.png' --gallery index.html --quiet
  fails 1 "written as .html" plate -o 'out/{field}.png' --gallery page.png --quiet
  echo mine >other_thumbnails
  fails 1 "other_thumbnails: is not a folder" plate -o 'out/{field}.png' --gallery other.html --quiet
  plate -o 'out/{field}.png' --gallery dry.html --dry-run --quiet
  [ ! -e out ] && [ ! -e dry.html ] && [ "$(cat index.html)" = mine ]
}
