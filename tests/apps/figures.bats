# What becomes a figure: projections, crops, sizes, panels, blends.

bats_require_minimum_version 1.5.0
load setup.bash

# usage: has_size FILE WIDTH HEIGHT
has_size() {
  run lumetra info "$1"
  [[ $output == "$1: "*"$2 x $3 pixels"* ]]
}

@test "a projection is what a plain loop makes of the pages" {
  for method in max mean sum; do
    lumetra merge stack.tif=#ffffff --levels none --project $method -o $method.tif
    lumetra merge $method-of-stack.tif=#ffffff --levels none -o expected.tif --overwrite
    cmp $method.tif expected.tif
    # and so are contrast limits, and the other commands
    lumetra merge stack.tif=DAPI c.tif=FITC+1-2 --project $method -o $method.png
    lumetra merge $method-of-stack.tif=DAPI c.tif=FITC+1-2 -o expected.png --overwrite
    cmp $method.png expected.png
    lumetra pseudo stack.tif --project $method -o lut-$method.png
    lumetra pseudo $method-of-stack.tif -o expected-lut.png --overwrite
    cmp lut-$method.png expected-lut.png
  done
  run ! cmp max.png mean.png
  lumetra batch '{channel}.tif' --channel stack=DAPI --project mean -o out.png --quiet
  lumetra dye mean-of-stack.tif=DAPI -o dye.png
  cmp out.png dye.png
}

@test "a page that a file names is no projection" {
  lumetra merge 'stack.tif[2]=DAPI' other.tif=FITC --project max -o one.png
  lumetra merge 'stack.tif[2]=DAPI' other.tif=FITC --page 2 -o page.png
  run ! cmp one.png page.png
  lumetra merge 'stack.tif[2]=DAPI' --project max -o one.png --overwrite
  lumetra merge 'stack.tif[2]=DAPI' -o page.png --overwrite
  cmp one.png page.png
  fails 2 "--page cannot be combined with --project" lumetra merge stack.tif=DAPI --project max --page 1 -o x.png
  fails 2 "'min' is not max, mean or sum" lumetra merge stack.tif=DAPI --project min -o x.png
  fails 1 "cut-stack.tif" lumetra merge cut-stack.tif=DAPI --project max -o x.png
  fails 1 "uneven.tif: cannot be projected: the planes have different sizes" \
    lumetra merge uneven.tif=DAPI --project max -o x.png
  [ ! -e x.png ]
}

@test "images are cut and made smaller, in this order" {
  lumetra merge a.tif=DAPI b.png=FITC+3-2 -o whole.png
  has_size whole.png 61 46
  for options in "--crop 0,0,61,46|61 46" "--crop 60,45,1,1|1 1" "--crop 1,2,40,30 --resize 20|20 15" \
    "--resize 30x46|30 46" "--resize 50%|31 23" "--resize 1%|1 1"; do
    lumetra merge a.tif=DAPI b.png=FITC+3-2 -o part.png ${options%|*} --overwrite
    has_size part.png ${options#*|}
  done
  lumetra merge a.tif=DAPI b.png=FITC+3-2 -o part.png --crop 5,6,20,10 --overwrite
  lumetra dye whole.png=#ffffff --levels none --crop 5,6,20,10 -o piece.png # as RGB
  lumetra dye part.png=#ffffff --levels none -o same.png
  cmp piece.png same.png
  lumetra pseudo a.tif -o lut.png --crop 1,2,40,30 --resize 20
  has_size lut.png 20 15
  lumetra merge stack.tif=DAPI -o pages.tif --all-pages --resize 50%
  run lumetra info pages.tif
  [[ $output == "pages.tif: 4 pages of 32 x 24 pixels"* ]]
}

@test "what does not fit is refused with the size of the image" {
  fails 1 "image of 64 x 48 pixels" lumetra merge a.tif=DAPI -o x.png --crop 1,0,64,48
  fails 1 "image of 64 x 48 pixels" lumetra pseudo a.tif -o x.png --crop 2147483647,0,2147483647,1
  fails 1 "image of 64 x 48 pixels is not enlarged" lumetra dye a.tif=DAPI -o x.png --resize 65
  fails 1 "image of 10 x 10 pixels is not enlarged" lumetra dye a.tif=DAPI -o x.png --crop 0,0,10,10 --resize 5x11
  fails 2 "X,Y,W,H" lumetra merge a.tif=DAPI -o x.png --crop 1,0,64
  fails 2 "PERCENT%" lumetra merge a.tif=DAPI -o x.png --resize 101%
  [ ! -e x.png ]
}

@test "a scale bar has its length in the pixels that are left" {
  lumetra dye colour.png=#ffffff --levels none --crop 0,0,60,48 --resize 50% -o tiny.png
  lumetra dye colour.png=#ffffff --levels none --crop 0,0,60,48 --resize 30x24 -o bar.png --scale-bar 8 --pixel-size 1
  lumetra dye tiny.png=#ffffff --levels none --resize 100% -o expected.png --scale-bar 8 --pixel-size 2
  cmp bar.png expected.png # the pixel size included
  [[ $(lumetra info bar.png) == *"2 µm per pixel"* ]]
  lumetra dye colour.png=#ffffff --levels none --resize 20x48 -o narrow.png --pixel-size 1
  [[ $(lumetra info narrow.png) != *"per pixel"* ]]
  fails 1 "would be 8 pixels long in an image 16" lumetra dye a.tif=DAPI -o x.png --resize 25% --scale-bar 32 --pixel-size 1
}

@test "panels show each channel where it lies, and then the merged image" {
  channels="a.tif=DAPI b.png=FITC+3-2 c.tif=Cy3"
  lumetra merge $channels -o merged.png
  has_size merged.png 61 46
  lumetra merge --panels $channels -o gray.png
  lumetra merge --panels=colour $channels -o colours.png
  has_size gray.png $((4 * 61 + 3 * 2)) 46
  below=20 # names are above
  part() { lumetra dye "$1=#ffffff" --levels none --crop $2,$below,61,26 -o "$3" --overwrite; }
  for i in 0 1 2; do
    others=$(for n in 1 2 3; do [ $n = $((i + 1)) ] || echo --hide $n; done)
    part colours.png $((i * 63)) panel.png
    lumetra merge $channels $others -o alone.png --overwrite
    part alone.png 0 expected.png
    cmp panel.png expected.png
    part gray.png $((i * 63)) panel.png
    lumetra merge a.tif=#ffffff b.png=#ffffff+3-2 c.tif=#ffffff $others -o alone.png --overwrite
    part alone.png 0 expected.png
    cmp panel.png expected.png
  done
  part gray.png $((3 * 63)) panel.png
  part merged.png 0 expected.png
  cmp panel.png expected.png
  lumetra merge --panels $channels --hide 2 --crop 0,0,50,40 --resize 50% -o two.png
  has_size two.png $((3 * 25 + 2 * 2)) 20
  fails 2 '"color": panels are gray or colour' lumetra merge --panels=color $channels -o x.png
}

@test "panels bear the names of their channels" {
  for options in "" --panels; do
    lumetra merge a.tif=Nuclei#ff8000 b.png=DAPI -o one.png --overwrite $options
    lumetra merge a.tif=Actin#ff8000 b.png=DAPI -o other.png --overwrite $options
    if [ -z "$options" ]; then cmp one.png other.png; else run ! cmp one.png other.png; fi
  done
}

@test "channels are added unless a blend says otherwise" {
  channels="a.tif=#ffffff b.png=DAPI c.tif=FITC"
  lumetra merge $channels -o default.png
  lumetra merge $channels -o add.png --blend add
  cmp default.png add.png
  lumetra merge $channels -o screen.png --blend screen
  lumetra merge $channels -o darkest.png --blend add --blend darkest --blend add
  run ! cmp default.png screen.png
  run ! cmp default.png darkest.png
  lumetra merge a.tif=#ffffff b.png=#ffffff -o dark.png --blend darkest
  lumetra merge b.png=#ffffff a.tif=#ffffff -o same.png --blend darkest
  cmp dark.png same.png
  fails 2 '"multiply": a blend is add, screen or darkest' lumetra merge $channels -o x.png --blend multiply
  fails 2 "--blend is given 2 times for 3 channels" lumetra merge $channels -o x.png --blend add --blend add
}

@test "a run that asks for another crop or projection does fields again" {
  plate -o 'out/{field}.png' --quiet --log log
  for options in "--crop 0,0,90,80" "--crop 0,0,90,80 --resize 45" "--blend screen" "--project sum"; do
    run --separate-stderr plate -o 'out/{field}.png' --log log --resume $options
    [[ $stderr == *"10 fields done"* ]]
    [[ $stderr != *skipped* ]]
    run --separate-stderr plate -o 'out/{field}.png' --log log --resume $options
    [[ $stderr == *"10 skipped"* ]]
  done
}
