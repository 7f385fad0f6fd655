#!/usr/bin/env bash
# Makes the Debian packages of a build, has lintian look at them, installs them below a scratch folder, uses them there
# and removes them: package_test.sh BUILD
set -euo pipefail
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
cd "$work"
fail() { echo "package_test: $1" && exit 1; }
installed() { (cd "$root" && find . -path ./var -prune -o -type f -print -o -type l -print | sort); }
package() {
    dpkg --root="$root" --force-not-root --force-depends --force-bad-path --log=/dev/null "$@" >log 2>&1 ||
        { cat log && fail "dpkg $*"; }
}

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/packages" >log 2>&1 || { cat log && fail 'cpack'; }
lintian --no-cfg --fail-on error,warning packages/*.deb >log 2>&1 || { cat log && fail 'lintian'; }
mkdir -p "$root/var/lib/dpkg/"{info,updates,triggers} && touch "$root/var/lib/dpkg/"{status,available}
package --install packages/*.deb
[[ $(installed | wc -l) -gt 110 ]] || fail "only $(installed | wc -l) files are installed"

# The program, at home anywhere.
export PATH=$root/usr/bin:$PATH MANPATH=$root/usr/share/man HOME=$work
vantle --version | grep -qE '^vantle [0-9]+\.[0-9]+\.[0-9]+' || fail 'vantle --version'
vantle --version | grep -qF "$(ffmpeg -version | sed -n 's/^ffmpeg version \([^ ]*\).*/FFmpeg \1:/p')" ||
    fail "FFmpeg's version"
vantle render -q lavfi:testsrc2=s=64x48:d=1 lavfi:mandelbrot=s=64x48 -t Zoom --duration 0.5 -o film.mp4
[[ $(ffprobe -v error -show_entries stream=codec_name -of csv=p=0 film.mp4) == h264* ]] || fail 'vantle render'

# The manual, a page for each command and nothing in it that groff minds.
for command in '' $(vantle --complete '' | cut -f 1); do
    page=vantle${command:+-$command}
    [[ -z $(man --warnings -l "$root/usr/share/man/man1/$page.1.gz" 2>&1 >text) ]] || fail "$page(1) is not well-formed"
    for option in $(vantle $command --help | grep -oE '^  (-., )?--[a-z-]+' | grep -oE -- '--[a-z-]+'); do
        grep -qe "$option" text || fail "$page(1) lacks $option"
    done
done

# Completion in every shell, of a name with blanks and of one begun with +.
expected=$'Linear Wipe Down\nLinear Wipe Right'
bash=$(bash -c '. "$1"; COMP_WORDS=(vantle render a.mp4 +lin) COMP_CWORD=3; _vantle 2>/dev/null
    eval "printf \"%s\n\" ${COMPREPLY[*]}"' - "$root/usr/share/bash-completion/completions/vantle")
[[ $bash == "${expected//Linear/+Linear}" ]] || fail "bash completes $bash"
fish=$(fish -c '. $argv[1]; complete -C "vantle render -t Lin"' "$root/usr/share/fish/vendor_completions.d/vantle.fish")
[[ $(cut -f 1 <<<"$fish") == "$expected" ]] || fail "fish completes $fish"
zsh=$(zsh -fc 'words=(vantle render --fit=c); CURRENT=3; compadd() { print -rl -- $found }; . $1' - \
    "$root/usr/share/zsh/vendor-completions/_vantle")
[[ $zsh == $'--fit=contain\n--fit=cover' ]] || fail "zsh completes $zsh"

# Hosts by the CMake package, by pkg-config, and without a compiler.
cp -r "$root/usr/share/doc/vantle/examples" .
{ cmake -S examples -B host -DCMAKE_PREFIX_PATH="$root/usr" && cmake --build host; } >log 2>&1 || { cat log && fail 'find_package'; }
host/host Pinwheel 0.4 cpp.ppm
pkg=(env PKG_CONFIG_PATH="$root/usr/lib/pkgconfig" pkg-config tp_vantle)
c++ -std=c++20 -rdynamic examples/host.cpp $("${pkg[@]}" --cflags) -DPLUGIN="\"$("${pkg[@]}" --variable=plugin)\"" \
    -DSTANDINS="\"$("${pkg[@]}" --variable=standins)\"" -o by_pkg_config
./by_pkg_config Pinwheel 0.4 pkg.ppm
python3 examples/host.py "$root/usr/lib" Pinwheel 0.4 python.ppm
cmp cpp.ppm pkg.ppm && cmp cpp.ppm python.ppm
[[ $(sort -u <(tail -c +16 cpp.ppm | od -An -v -w3 -tu1) | wc -l) -gt 300 ]] || fail 'the host draws one picture only'

package --purge vantle vantle-editors
[[ -z $(installed) ]] || { installed && fail 'the above is left'; }
[[ -z $(find "$root" -name '*vantle*') ]] || { find "$root" -name '*vantle*' && fail 'the above is left'; }
