#!/usr/bin/env bash
# Builds wxWidgets for Windows out of Debian's source package, static and with only the parts that
# the program uses, into a cache that every clone shares. Prints the directory of the result; all
# the rest goes to stderr.
#   tools/build-wxwidgets-windows.sh             build it, unless it is there already
#   tools/build-wxwidgets-windows.sh --endroit   only tell where it is, or will be
set -euo pipefail

version=3.2.2
host=x86_64-w64-mingw32
compiler=$host-g++-posix
cache=${COFFRELUNE_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/coffrelune}

options=(
    "--host=$host" "CC=$host-gcc-posix" "CXX=$compiler"
    # Sections of their own let the linker leave out what the program never calls.
    'CFLAGS=-O2 -ffunction-sections -fdata-sections'
    'CXXFLAGS=-O2 -ffunction-sections -fdata-sections'
    --with-msw --enable-unicode --disable-shared --disable-debug --disable-debug_info --enable-pch
    # What the windows are made of.
    --enable-accessibility --enable-dataviewctrl --enable-listctrl --enable-notebook
    --enable-hyperlink --enable-tbarnative --enable-dnd --enable-filedlg --enable-dirdlg
    --enable-timer --with-nanosvg
    # What they do without.
    --without-libpng --without-libjpeg --without-libtiff --without-zlib --without-expat
    --without-liblzma --without-opengl --without-regex
    --disable-aui --disable-html --disable-htmlhelp --disable-mediactrl --disable-propgrid
    --disable-ribbon --disable-richtext --disable-sockets --disable-protocols --disable-stc
    --disable-webview --disable-webrequest --disable-xrc
    --disable-help --disable-debugreport --disable-joystick --disable-printarch
    --disable-postscript --disable-mdi --disable-docview --disable-wizarddlg --disable-gif
    --disable-pcx --disable-pnm --disable-tga --disable-iff --disable-svg
    --disable-config --disable-arcstream --disable-tarstream --disable-zipstream
    --disable-fs_archive --disable-fs_zip --disable-fs_inet --disable-dialupman --disable-ipc
    --disable-filehistory --disable-fsvolume --disable-fswatcher --disable-secretstore
    --disable-sound --disable-spellcheck --disable-graphics_ctx --disable-graphics-d2d
    --disable-actindicator --disable-addremovectrl --disable-animatectrl --disable-bannerwindow
    --disable-bmpcombobox --disable-calendar --disable-checklst --disable-choicebook
    --disable-collpane --disable-colourpicker --disable-commandlinkbutton --disable-datepick
    --disable-richmsgdlg --disable-editablebox --disable-filepicker --disable-dirpicker --disable-fontpicker
    --disable-grid --disable-infobar --disable-listbook --disable-notifmsg --disable-odcombobox
    --disable-prefseditor --disable-rearrangectrl --disable-richtooltip --disable-sash
    --disable-searchctrl --disable-timepick --disable-tipwindow --disable-toolbook
    --disable-treebook --disable-treelist --disable-aboutdlg --disable-choicedlg --disable-coldlg
    --disable-creddlg --disable-finddlg --disable-fontdlg --disable-numberdlg --disable-splash
    --disable-tipdlg --disable-progressdlg --disable-miniframe --disable-busyinfo --disable-hotkey
    --disable-metafile --disable-uiactionsim --disable-mdidoc --disable-logwin --disable-url
    --disable-xpm --disable-arttango
)

# Configuring leaves out without a word what it cannot have: these are looked for in its result.
needed=(ACCESSIBILITY DATAVIEWCTRL LISTCTRL NOTEBOOK HYPERLINKCTRL TOOLBAR_NATIVE DRAG_AND_DROP
    FILEDLG DIRDLG TIMER NANOSVG TOOLTIPS CLIPBOARD DATAOBJ OLE OWNER_DRAWN)

say() { echo "$@" >&2; }
fail() {
    say "wxWidgets pour Windows n'a pas été construit : $*"
    exit 1
}

# The name tells what is inside: another version, option or compiler is another directory.
fingerprint() {
    { printf '%s\n' "${options[@]}" && "$compiler" -dumpfullversion; } | sha256sum | cut -c 1-12
}

command -v "$compiler" >/dev/null ||
    fail "il faut $compiler (tools/install-dependencies.sh windows l'installe)"
place=$cache/wxwidgets-$version-$(fingerprint)

case "${1-}" in
    '') ;;
    --endroit)
        echo "$place"
        exit 0
        ;;
    *)
        say "Usage : ${0##*/} [--endroit]"
        exit 2
        ;;
esac

mkdir -p "$cache"
# Two clones that need it at once build it once.
exec 9>"$cache/.wxwidgets.lock"
if ! flock -n 9; then
    say "Une autre construction de wxWidgets est en cours, attente..."
    flock 9
fi
if [[ -x $place/bin/wx-config ]]; then
    echo "$place"
    exit 0
fi

# Built beside its final place, which it takes in one step when it is complete.
work=$(mktemp -d "$cache/.wxwidgets.XXXXXX")
trap 'rm -rf "$work"' EXIT
log=$work/log

# What fails shows the end of what it said.
step() {
    local title=$1 begin=$SECONDS
    shift
    say "wxWidgets $version pour Windows : $title..."
    if ! "$@" >"$log" 2>&1 </dev/null; then
        tail -n 40 "$log" >&2
        fail "« $title » a échoué"
    fi
    say "    fait en $((SECONDS - begin)) s"
}

# The package sources of this machine, with its mirrors and keys, asked for source packages. They
# are written apart: the machine's own configuration stays as it is, and no rights are needed.
write_source_lists() {
    local codename suites file
    codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
    suites="($codename|stable|oldstable)(-updates|-security)?"
    mkdir -p "$work"/{sources,lists/partial,archives/partial}
    for file in /etc/apt/sources.list.d/*.sources; do
        [[ -e $file ]] || continue
        awk -v RS= -v ORS='\n\n' -v "wanted=(^|\n)Suites:[^\n]*[[:space:]]$suites([[:space:]]|$)" \
            '("\n" $0 "\n") ~ wanted' "$file" |
            sed 's/^Types:.*/Types: deb-src/' >"$work/sources/${file##*/}"
    done
    cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
        sed -nE "s,^[[:space:]]*deb([[:space:]].*[[:space:]]$suites/?[[:space:]].*),deb-src\1,p" \
            >"$work/sources/machine.list" || true
    grep -qs deb-src "$work"/sources/* ||
        fail "aucune source de paquets $codename n'a été trouvée dans /etc/apt"
}

apt() {
    local command=$1
    shift
    "$command" -q -o "Dir::State::lists=$work/lists" -o "Dir::Cache=$work" \
        -o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$work/sources" \
        -o "APT::Sandbox::User=$(id -un)" -o Debug::NoLocking=1 "$@"
}

# Debian's revisions of the wanted version are all the same to us; another version is not.
download() {
    local revision
    apt apt-get update
    revision=$(apt apt-cache showsrc wxwidgets3.2 |
        sed -nE "s/^Version: ($version[+-].*)/\1/p" | sort -V | tail -n 1)
    if [[ -z $revision ]]; then
        echo "Les sources de paquets n'ont pas wxwidgets3.2 en version $version."
        return 1
    fi
    (cd "$work" && apt apt-get source --download-only "wxwidgets3.2=$revision")
}

unpack() {
    mkdir -p "$work/source" "$work/build"
    tar -xf "$work"/wxwidgets3.2_*.orig.tar.* -C "$work/source" --strip-components=1
}
configure() {
    (cd "$work/build" && ../source/configure "--prefix=$place" "${options[@]}") || return
    local part
    for part in "${needed[@]}"; do
        grep -qsrE "^#define wxUSE_$part +1" "$work"/build/lib/wx/include --include=setup.h && continue
        echo "La configuration a laissé de côté wxUSE_$part."
        return 1
    done
}
compile() { make -C "$work/build" -j "$(nproc)"; }
install() { make -C "$work/build" install "DESTDIR=$work/installed"; }

write_source_lists
step "téléchargement des sources (30 Mo)" download
step "extraction" unpack
step "configuration" configure
step "compilation (de 3 à 15 minutes, une seule fois)" compile
step "rangement dans $place" install

rm -rf "$place"
mv "$work/installed$place" "$place"
echo "$place"
