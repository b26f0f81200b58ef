#!/usr/bin/env bash
# The manual page and the bash completion hold every command and option that
# `tavrelune --help` and each command's --help print, and no others; the
# completion offers the values and files each option takes.
# Usage: documentation_test.sh TAVRELUNE DATA_FOLDER
set -uo pipefail
export LC_ALL=C
binary=$(realpath "$1") data=$(realpath "$2")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0
check() {  # check WHAT EXPECTED ACTUAL
    if [[ $2 != "$3" ]]; then
        printf 'FAIL: %s\n  expected: %s\n  found:    %s\n' "$1" "${2//$'\n'/ }" "${3//$'\n'/ }" >&2
        failures=$((failures + 1))
    fi
}

commands=$("$binary" --help | sed -n '/^Commands:/,/^$/p' | awk 'NR > 1 && NF { print $1 }' | sort)
[[ -n $commands ]] || { echo "FAIL: --help lists no commands" >&2; exit 1; }

# The options of a help text: the first column of its lines that begin with "-".
help_options() {
    "$binary" "$@" --help | sed -n 's/^ *\(-.*\)/\1/p' | sed 's/  .*//' |
        grep -oE '(^|[ ,])--?[A-Za-z?][A-Za-z-]*' | tr -d ' ,' | sort -u
}

# "COMMAND OPTION" for every option tagged in the page's OPTIONS (COMMAND
# empty) and COMMANDS sections, and "COMMAND" for every command heading.
man_entries=$(awk '
    /^\.SH/ { section = $2; command = ""; next }
    /^\.SS/ && section == "COMMANDS" { command = $3; print command; next }
    /^\.TP/ { tagged = 1; next }
    tagged {
        tagged = 0
        if (section != "OPTIONS" && section != "COMMANDS") next
        line = $0
        gsub(/\\f[BIRP]/, "", line); gsub(/\\-/, "-", line)
        n = split(line, words, /[ ,"]+/)
        for (i = 1; i <= n; i++) if (words[i] ~ /^--?[A-Za-z?]/) print command " " words[i]
    }' "$data/tavrelune.1")
man_options() { grep "^$1 " <<<"$man_entries" | cut -d' ' -f2 | sort -u; }

check "man page commands" "$commands" "$(grep -v ' ' <<<"$man_entries" | sort)"
check "man page options" "$(help_options)" "$(man_options '')"
for command in $commands; do
    check "man page options of $command" "$(help_options "$command")" "$(man_options "$command")"
done
for variable in $("$binary" --help | sed -n '/^Environment:/,/^$/p' | awk 'NR > 1 && NF { print $1 }'); do
    sed -n '/^\.SH ENVIRONMENT/,/^\.SH/p' "$data/tavrelune.1" | grep -qx "\.B $variable" ||
        check "man page ENVIRONMENT" "$variable" ""
done

# What the completion offers for the words after "tavrelune", the last one
# being completed, in the current folder.
complete_words() {
    (
        set +eu
        source "$data/tavrelune.bash-completion"
        COMP_WORDS=(tavrelune "$@")
        COMP_CWORD=$#
        _tavrelune 2>/dev/null
        printf '%s\n' "${COMPREPLY[@]}" | sort
    )
}

mkdir "$folder/empty" "$folder/files"
cd "$folder/empty"
check "completion of commands" "$commands" "$(complete_words '')"
check "completion of conv" "convert" "$(complete_words conv)"
check "completion of options" "$(help_options | grep -- '^--')" "$(complete_words --)"
for command in $commands; do
    check "completion of $command options" "$(help_options "$command" | grep -- '^--')" \
        "$(complete_words "$command" --)"
done
check "completion of --codec" $'h264\nhevc' "$(complete_words convert --codec '')"
check "completion of --codec=" $'h264\nhevc' "$(complete_words convert --codec = h)"
check "completion of --quality" $'balanced\nhigh\nsmall' "$(complete_words convert --quality '')"

cd "$folder/files"
mkdir Looks
touch A001.MOV b.mkv Warm.cube logo.svg still.png photo.JPG notes.txt job.json
check "completion of --lut" $'Looks\nWarm.cube' "$(complete_words grade --lut '')"
check "completion of grade's INPUT" $'Looks\nphoto.JPG\nstill.png' "$(complete_words grade '')"
check "completion of convert's FILEs" $'A001.MOV\nLooks\nWarm.cube\nb.mkv\nlogo.svg\nstill.png' \
    "$(complete_words convert --codec h264 '')"
check "completion of --job" $'Looks\njob.json' "$(complete_words convert --job '')"
check "completion of --output" "Looks" "$(complete_words convert -o '')"
check "completion of probe's FILEs" "$(ls -1 | sort)" "$(complete_words probe '')"

((failures == 0))
