#!/usr/bin/env bash
# Renders the images of a plate on a cluster with Slurm: a list of the fields and their limits, an
# array of fields, the gallery.
# usage: slurm.sh    in the folder of the plate, on storage of all nodes; again after a stop
#SBATCH --output=logs/%x-%j.txt
#SBATCH --time=01:00:00
#SBATCH --mem=1G
#SBATCH --cpus-per-task=1
set -euo pipefail

# Edit this, and the lines for Slurm above.
pattern='plate/{well}_{site}_{channel}.tif'
channels=(--channel nuclei=DAPI --channel filaments=FITC
          --channel 'mitochondria=MitoTracker Red 580')
images=out
chunks=4 # a task should take minutes: starting it costs a second or more

# Prints the job number. usage: submit STEP OPTION...
submit() {
  sbatch --parsable --kill-on-invalid-dep=yes --job-name="lumetra-$1" "${@:2}" "$0" "$1"
}

case ${1:-submit} in
  submit)
    mkdir -p logs
    levels=$(submit levels)
    fields=$(submit fields --dependency=afterok:"$levels" --array=1-$chunks)
    gallery=$(submit gallery --dependency=afterany:"$fields")
    echo "slurm.sh: jobs $levels (list and levels), $fields (fields), $gallery (gallery)"
    ;;
  levels)
    # Files are found once: no task looks for them, or at those of another.
    lumetra list "$pattern" "${channels[@]}" --images "$images/{well}_{site}.png" \
      -o fields.jsonl --overwrite --quiet

    # Contrast limits are measured once: images can be compared only if they have the same limits,
    # also those of a later run. Status 1 with a file written means that some fields could not be
    # measured; they are reported by name, and the others are rendered.
    [ -s plate.json ] || lumetra levels --fields fields.jsonl \
      --jobs "$SLURM_CPUS_PER_TASK" -o plate.json --quiet || {
      status=$?
      [ $status = 1 ] && [ -s plate.json ] || exit $status
      echo "slurm.sh: some fields were not measured; using the contrast limits of the others" >&2
    }
    ;;
  fields) # each task has its own log, since nodes cannot share one
    lumetra batch --fields fields.jsonl --shard "$SLURM_ARRAY_TASK_ID/$chunks" \
      --settings plate.json --jobs "$SLURM_CPUS_PER_TASK" \
      --log "logs/fields-$SLURM_ARRAY_TASK_ID.json" --resume --quiet
    ;;
  gallery)
    cat logs/fields-*.json >fields.log
    lumetra gallery "$images" -o index.html --settings plate.json --log fields.log \
      --jobs "$SLURM_CPUS_PER_TASK" --overwrite --quiet
    ;;
esac
