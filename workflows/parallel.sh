#!/usr/bin/env bash
# Makes the pictures of a plate on all cores of a machine, with GNU parallel.
# usage: parallel.sh    in the folder of the plate; once more after a stop, or a repair
set -euo pipefail

# Yours to change.
pattern='plate/{well}_{site}_{channel}.tif'
channels=(--channel nuclei=DAPI --channel filaments=FITC
          --channel 'mitochondria=MitoTracker Red 580')
pictures=out

# Levels are measured once: only under the same ones can pictures be compared, those of a later run
# included. Status 1 with levels written means that some fields could not be measured, which are told
# by name; that keeps nobody from making the others.
[ -s plate.json ] || lumetra levels "$pattern" "${channels[@]}" -o plate.json --quiet || {
  status=$?
  [ $status = 1 ] && [ -s plate.json ] || exit $status
  echo "parallel.sh: these levels are of the fields that could be measured" >&2
}

# A line for each field; status 1 means that some fields miss a channel.
mkdir -p "$pictures"
status=0
lumetra batch "$pattern" --settings plate.json -o "$pictures/{well}_{site}.png" \
  --log fields.log --overwrite --quiet --dry-run >lines.new || status=$?
[ $status -le 1 ] && [ -s lines.new ] || exit $status

# parallel's log knows lines by their number alone, so it is kept for the very same lines only.
cmp -s lines.new lines.sh || rm -f jobs.tsv
mv lines.new lines.sh
parallel --joblog jobs.tsv --resume-failed <lines.sh || status=1

# The last entry of a line counts.
awk -F '\t' 'NR > 1 { failed[$1] = $7 || $8; line[$1] = $9 }
  END { for (i in failed) if (failed[i]) print "parallel.sh: failed: " line[i] }' jobs.tsv >&2
lumetra gallery "$pictures" -o index.html --settings plate.json --log fields.log \
  --overwrite --quiet
exit $status
