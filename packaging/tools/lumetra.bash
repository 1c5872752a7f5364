# Completion of the command lumetra for bash: commands, options as the help has them, dyes, LUTs.

_lumetra() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} program=${COMP_WORDS[0]}
  local IFS=$'\n'
  COMPREPLY=()
  if [ "$COMP_CWORD" = 1 ]; then
    COMPREPLY=($(compgen -W "$("$program" --help | awk '/^Commands:/ { on = 1; next } /^$/ { on = 0 } on && /^  [a-z]/ { print $1 }')
--help
--version" -- "$word"))
    return
  fi
  # An "=" is a word of its own to bash; what stands behind it is a dye.
  if [ "$word" = = ] || [ "$before" = = ]; then
    [ "$word" != = ] || word=
    mapfile -t COMPREPLY < <("$program" dyes "$word" 2>/dev/null | awk 'NR > 1' | cut -c32- |
      grep -iF -- "$word" | while read -r dye; do
        [[ ${dye,,} != "${word,,}"* ]] || printf '%q\n' "$dye"
      done)
    return
  fi
  case $before in
    --levels) COMPREPLY=($(compgen -W $'auto\nclip:\nnone' -- "$word")) ;;
    --levels-over) COMPREPLY=($(compgen -W $'dataset\nfield' -- "$word")) ;;
    --lut)
      COMPREPLY=($(compgen -W "$("$program" pseudo --help | sed -n '/Names:/,/^  -/ { s/.*Names://; /^  -/d; p }' | tr -d ' ' | tr , '\n')" -- "$word")
        $(compgen -f -X '!*.lut' -- "$word"))
      ;;
    *)
      if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W "$("$program" "${COMP_WORDS[1]}" --help | grep -oE -- '^ +(-[a-z], )?--[a-z-]+' | grep -oE -- '--[a-z-]+')" -- "$word"))
      else
        compopt -o filenames
        COMPREPLY=($(compgen -f -- "$word"))
      fi
      ;;
  esac
}

complete -F _lumetra lumetra
