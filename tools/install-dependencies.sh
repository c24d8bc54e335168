#!/usr/bin/env bash
# Installs the Debian 12 packages that building (`build`), testing (`test`), building and testing for
# Windows (`windows`), making packages (`paquets`), or trying volumes of every kind in full (`volumes`)
# needs, and only those that are missing: when everything is there it costs one query and no network.
# Everything it prints goes to stderr, so that a caller's stdout stays its own.
set -euo pipefail

build_packages=(g++ cmake ninja-build pkg-config python3 libcli11-dev nlohmann-json3-dev libxxhash-dev libwxgtk3.2-dev libgtk-3-dev)
test_packages=(ccache libgtest-dev libgmock-dev clang-14 libclang-rt-14-dev libclang-14-dev llvm-14-dev
               clang-format-14 clang-tidy-14 python3 xvfb icewm at-spi2-core dbus-daemon python3-gi
               gir1.2-atspi-2.0 xdotool x11-utils imagemagick libfaketime rsync strace xfsprogs bindfs
               appstream desktop-file-utils man-db)
windows_packages=(cmake ninja-build libcli11-dev nlohmann-json3-dev libxxhash-dev googletest make xz-utils
                  g++-mingw-w64-x86-64-posix clang-14 lld-14 wine wine64 locales xvfb xdotool python3)
volume_packages=(python3 strace rsync e2fsprogs xfsprogs btrfs-progs dosfstools fusefat exfatprogs exfat-fuse
                 ntfs-3g fuse3 bindfs openssh-server openssh-client sshfs samba smbnetfs rclone)
package_packages=(python3 librsvg2-bin dpkg-dev nsis lintian appstream desktop-file-utils man-db)

case "${1-}" in
    build) packages=("${build_packages[@]}") commands=(g++ cmake ninja) ;;
    test)
        packages=("${build_packages[@]}" "${test_packages[@]}")
        commands=(g++ cmake ninja ccache clang-format-14 clang-tidy-14 python3)
        ;;
    windows)
        packages=("${windows_packages[@]}")
        commands=(cmake ninja make x86_64-w64-mingw32-g++-posix wine Xvfb xdotool python3)
        ;;
    paquets)
        packages=("${build_packages[@]}" "${package_packages[@]}")
        commands=(g++ cmake ninja python3 rsvg-convert makensis lintian)
        ;;
    volumes)
        packages=("${volume_packages[@]}")
        commands=(python3 strace rsync mkfs.ext4 mkfs.xfs mkfs.btrfs mkfs.fat mkfs.exfat mount.exfat-fuse
                  mkfs.ntfs ntfs-3g fusefat fusermount3 bindfs sshd ssh-keygen sshfs smbd smbnetfs rclone)
        PATH=$PATH:/usr/sbin:/sbin
        ;;
    *)
        echo "Usage : ${0##*/} build|test|windows|paquets|volumes" >&2
        exit 2
        ;;
esac

missing=()
if command -v dpkg-query >/dev/null; then
    for package in "${packages[@]}"; do
        # A package can be known and yet removed: only the status "installed" counts.
        status=$(dpkg-query -W -f '${db:Status-Status} ' "$package" 2>/dev/null || true)
        [[ " $status" == *" installed "* ]] || missing+=("$package")
    done
else
    # No Debian: nothing can be installed here, but what is needed may well be there.
    for command in "${commands[@]}"; do
        command -v "$command" >/dev/null || missing+=("$command")
    done
fi
((${#missing[@]})) || exit 0

refuse() {
    {
        echo "Il manque de quoi construire ou essayer Coffrelune, et ce script ne peut pas l'installer : $1."
        echo "Installez ces paquets, puis relancez la commande :"
        echo "    ${missing[*]}"
    } >&2
    exit 1
}

command -v dpkg-query >/dev/null && command -v apt-get >/dev/null ||
    refuse "ce système n'est pas une Debian"
as_root=()
if ((EUID != 0)); then
    command -v sudo >/dev/null || refuse "il faut être administrateur, et sudo est absent"
    as_root=(sudo)
    # Without a terminal nobody can type a password: sudo has to do without.
    [[ -t 0 || -t 2 ]] || as_root=(sudo -n)
fi

echo "Installation de : ${missing[*]}" >&2
apt_get() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -q -o DPkg::Lock::Timeout=300 "$@" </dev/null >&2
}
apt_get update || refuse "la mise à jour de la liste des paquets a échoué"
apt_get install -y --no-install-recommends "${missing[@]}" || refuse "l'installation a échoué"
