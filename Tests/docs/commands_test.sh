#!/usr/bin/env bash
# Runs the commands of the README and of docs/, which are the blocks of ```sh. commands_test.sh SOURCE BUILD runs each in
# a folder of its own with the files that the commands name, but for those after a line
#     <!-- in the checkout -->             which commands_test.sh SOURCE runs there: what builds, and what is built
#     <!-- in the checkout: s/60/1/ -->    with what sed makes of them
#     <!-- by SCRIPT -->                   which this script reads and runs
#     <!-- all tests -->                   this one too
set -euo pipefail
source=$1 build=${2-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The blocks, in files PAGE:LINE, or PAGE:LINE.spared for those that are run otherwise, with that line before the rest.
mkdir "$work/blocks"
for page in $(cd "$source" && echo README.md docs/*.md); do
    awk -v "to=$work/blocks/${page//\//-}" '
        /^ *```/ && inside { inside = 0; close(file); next }
        /^ *```sh$/ { inside = 1; file = sprintf("%s:%03d%s", to, NR, how == "" ? "" : ".spared"); printf "%s", how >file; next }
        /^ *```/ { inside = 1; file = "/dev/null"; next }
        inside { print >file }
        NF { how = /^<!-- / ? $0 "\n" : "" }' "$source/$page"
done
run=0 failed=0
fails() { failed=$((failed + 1)) && echo "$(basename "$1") fails:" && cat "${@}"; }

if [[ -z $build ]]; then
    cd "$source"
    before=$(git status --porcelain)
    # Only to see that they run.
    export BENCHMARK_FILTER=TrColVantle BENCH_SHRINK=18 TMPDIR=$work
    for block in "$work"/blocks/*.spared; do
        how=$(head -1 "$block")
        sed -i 1d "$block"
        if [[ $how =~ ^'<!-- in the checkout'(: (.*))?' -->'$ ]]; then
            sed -i "${BASH_REMATCH[2]}" "$block"
            run=$((run + 1))
            bash -euo pipefail "$block" >"$work/log" 2>&1 </dev/null || fails "$block" "$work/log"
        elif [[ $how =~ ^'<!-- by '(.*)' -->'$ ]]; then
            grep -qF "$(basename "${block%:*}" | sed 's|docs-||')" "${BASH_REMATCH[1]}" || fails "$block"
        elif [[ $how != '<!-- all tests -->' || $(<"$block") != scripts/test* ]]; then
            fails "$block"
        fi
    done
    echo "$run blocks run in the checkout, $failed fail"
    [[ $(git status --porcelain) == "$before" ]] || { git status --porcelain && exit 1; }
    ((run > 4 && failed == 0))
    exit
fi

# What a checkout has, with this build in place of one yet to be made.
mkdir -p "$work/there/build" "$work/there/docs"
cd "$work/there"
ln -s "$build" build/release
cp -r "$source/scripts" "$source/examples" .
mv scripts/install-editors scripts/of-checkout
printf '#!/bin/sh\nexec "%s/scripts/install-editors" --build "%s" "$@"\n' "$source" "$build" >scripts/install-editors
chmod +x scripts/install-editors
# Small pictures show as well that these run.
sed -i 's/320x180/64x36/; s/1280x720/160x90/' scripts/document-transitions scripts/demo
film() { ffmpeg -v error -f lavfi -i "$2=s=160x90:r=25" -f lavfi -i sine -t "$3" -c:v libx264 -preset ultrafast -g 25 -pix_fmt yuv420p "$1"; }
film holiday.mp4 testsrc2 3
film party.mov mandelbrot 3
film party.mp4 mandelbrot 3
film a.mp4 testsrc2 8
film b.mp4 mandelbrot 3
film c.mp4 testsrc2 3
for still in one two photo b; do ffmpeg -v error -f lavfi -i "gradients=s=160x90" -frames:v 1 "$still.jpg"; done
ffmpeg -v error -f lavfi -i sine -t 5 song.mp3

export PATH=$build/bin:$PATH VANTLE=$build/bin/vantle FREI0R_PATH=$build/lib/frei0r-1
for block in "$work"/blocks/*[0-9]; do
    run=$((run + 1))
    cp -r "$work/there" "$work/here"
    (cd "$work/here" && HOME=$work/here bash -euo pipefail "$block" >"$work/log" 2>&1 </dev/null) || fails "$block" "$work/log"
    rm -rf "$work/here"
done
echo "$run blocks run, $failed fail"
((run > 8 && failed == 0))

# The page of all transitions says what the table does.
"$source/scripts/document-transitions" --text "$work/transitions.md"
diff "$source/docs/transitions.md" "$work/transitions.md" || { echo 'run scripts/document-transitions'; exit 1; }
