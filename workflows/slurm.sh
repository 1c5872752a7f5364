#!/usr/bin/env bash
# Makes the pictures of a plate on a cluster with Slurm: levels, an array of fields, the gallery.
# usage: slurm.sh    in the folder of the plate, which every node must see; once more after a stop
#SBATCH --output=logs/%x-%j.txt
#SBATCH --time=01:00:00
#SBATCH --mem=1G
#SBATCH --cpus-per-task=1
set -euo pipefail

# Yours to change, as are the lines for Slurm above.
pattern='plate/{well}_{site}_{channel}.tif'
channels=(--channel nuclei=DAPI --channel filaments=FITC
          --channel 'mitochondria=MitoTracker Red 580')
pictures=out
chunks=4 # a task takes some minutes at best: starting it costs a second or more

# Prints the number of the job. usage: submit STEP OPTION...
submit() {
  sbatch --parsable --kill-on-invalid-dep=yes --job-name="lumetra-$1" "${@:2}" "$0" "$1"
}

case ${1:-submit} in
  submit)
    mkdir -p logs
    levels=$(submit levels)
    fields=$(submit fields --dependency=afterok:"$levels" --array=1-$chunks)
    gallery=$(submit gallery --dependency=afterany:"$fields")
    echo "slurm.sh: jobs $levels (levels), $fields (fields), $gallery (gallery)"
    ;;
  levels)
    # Measured once: only under the same levels can pictures be compared, those of a later run
    # included. Status 1 with levels written means that some fields could not be measured, which are
    # told by name; that keeps nobody from making the others.
    [ -s plate.json ] || lumetra levels "$pattern" "${channels[@]}" \
      --jobs "$SLURM_CPUS_PER_TASK" -o plate.json --quiet || {
      status=$?
      [ $status = 1 ] && [ -s plate.json ] || exit $status
      echo "slurm.sh: these levels are of the fields that could be measured" >&2
    }
    ;;
  fields) # each task with a log of its own, as nodes cannot append to one
    lumetra batch "$pattern" --settings plate.json --shard "$SLURM_ARRAY_TASK_ID/$chunks" \
      --jobs "$SLURM_CPUS_PER_TASK" -o "$pictures/{well}_{site}.png" \
      --log "logs/fields-$SLURM_ARRAY_TASK_ID.json" --resume --quiet
    ;;
  gallery)
    cat logs/fields-*.json >fields.log
    lumetra gallery "$pictures" -o index.html --settings plate.json --log fields.log \
      --jobs "$SLURM_CPUS_PER_TASK" --overwrite --quiet
    ;;
esac
