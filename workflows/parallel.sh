#!/usr/bin/env bash
# Renders the images of a plate on all cores of one machine, with GNU parallel.
# usage: parallel.sh    in the folder of the plate; again after a stop or a repair
set -euo pipefail

# Edit this.
pattern='plate/{well}_{site}_{channel}.tif'
channels=(--channel nuclei=DAPI --channel filaments=FITC
          --channel 'mitochondria=MitoTracker Red 580')
images=out

# Files are found once, for all that follows.
lumetra list "$pattern" "${channels[@]}" --images "$images/{well}_{site}.png" -o fields.jsonl \
  --overwrite --quiet

# Contrast limits are measured once: images can be compared only if they have the same limits, also
# those of a later run. Status 1 with a file written means that some fields could not be measured;
# they are reported by name, and the others are rendered.
[ -s plate.json ] || lumetra levels --fields fields.jsonl -o plate.json --quiet || {
  status=$?
  [ $status = 1 ] && [ -s plate.json ] || exit $status
  echo "parallel.sh: some fields were not measured; using the contrast limits of the others" >&2
}

# One line for each field; status 1 means that some fields lack a channel.
mkdir -p "$images"
status=0
lumetra batch --fields fields.jsonl --settings plate.json --log fields.log --overwrite --quiet \
  --dry-run >lines.new || status=$?
[ $status -le 1 ] && [ -s lines.new ] || exit $status

# The log of parallel identifies lines by number only, so it is kept only if the lines are the same.
cmp -s lines.new lines.sh || rm -f jobs.tsv
mv lines.new lines.sh
parallel --joblog jobs.tsv --resume-failed <lines.sh || status=1

# The latest entry of a line counts.
awk -F '\t' 'NR > 1 { failed[$1] = $7 || $8; line[$1] = $9 }
  END { for (i in failed) if (failed[i]) print "parallel.sh: failed: " line[i] }' jobs.tsv >&2
lumetra gallery "$images" -o index.html --settings plate.json --log fields.log \
  --overwrite --quiet
exit $status
