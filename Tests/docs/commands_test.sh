#!/usr/bin/env bash
# Runs the commands of the README and of docs/: commands_test.sh SOURCE BUILD. They are the blocks of ```sh, each run in
# a folder of its own with the files that the commands name; a line <!-- not run: why --> before a block spares it.
set -euo pipefail
source=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# What a checkout has, with this build in place of one yet to be made.
mkdir -p "$work/there/build" "$work/there/docs" "$work/blocks"
cd "$work/there"
ln -s "$build" build/release
cp -r "$source/scripts" "$source/examples" .
mv scripts/install-editors scripts/of-checkout
printf '#!/bin/sh\nexec "%s/scripts/install-editors" --build "%s" "$@"\n' "$source" "$build" >scripts/install-editors
chmod +x scripts/install-editors
film() { ffmpeg -v error -f lavfi -i "$2=s=160x90:r=25" -f lavfi -i sine -t "$3" -c:v libx264 -preset ultrafast -g 25 -pix_fmt yuv420p "$1"; }
film holiday.mp4 testsrc2 3
film party.mov mandelbrot 3
film party.mp4 mandelbrot 3
film a.mp4 testsrc2 8
film b.mp4 mandelbrot 3
film c.mp4 testsrc2 3
for still in one two photo b; do ffmpeg -v error -f lavfi -i "gradients=s=160x90" -frames:v 1 "$still.jpg"; done
ffmpeg -v error -f lavfi -i sine -t 5 song.mp3

for page in $(cd "$source" && echo README.md docs/*.md); do
    awk -v "to=$work/blocks/${page//\//-}" '
        /^ *```/ && inside { inside = 0; close(file); next }
        /^ *```sh$/ { inside = 1; file = sprintf("%s:%03d%s", to, NR, spared ? ".spared" : ""); printf "" >file; next }
        /^ *```/ { inside = 1; file = "/dev/null"; next }
        inside { print >file }
        NF { spared = /<!-- not run: / }' "$source/$page"
done
run=0 failed=0
export PATH=$build/bin:$PATH VANTLE=$build/bin/vantle FREI0R_PATH=$build/lib/frei0r-1
for block in "$work"/blocks/*; do
    if [[ $block == *.spared ]]; then
        # What it names is there at least.
        for preset in $(grep -oE -- '--preset [a-z-]+' "$block" | cut -d ' ' -f 2); do
            grep -q "\"name\": \"$preset\"" "$source/CMakePresets.json" || { echo "$block: $preset" && failed=$((failed + 1)); }
        done
        for path in $(grep -oE '(scripts|Bench|Tests)/[^ ]+' "$block"); do
            [[ -e $source/$path ]] || { echo "$block: $path" && failed=$((failed + 1)); }
        done
        continue
    fi
    run=$((run + 1))
    cp -r "$work/there" "$work/here"
    if ! (cd "$work/here" && HOME=$work/here bash -euo pipefail "$block" >"$work/log" 2>&1 </dev/null); then
        failed=$((failed + 1))
        echo "$(basename "$block") fails:" && cat "$block" "$work/log"
    fi
    rm -rf "$work/here"
done
echo "$run blocks run, $failed fail; spared: $(cd "$work/blocks" && echo *.spared)"
((run > 8 && failed == 0))

# The page of all transitions says what the table does.
"$source/scripts/document-transitions" --text "$work/transitions.md"
diff "$source/docs/transitions.md" "$work/transitions.md" || { echo 'run scripts/document-transitions'; exit 1; }
