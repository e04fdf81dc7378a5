#!/bin/sh
# Builds the packages, installs and removes each: the installer under Wine, the Debian package in a
# separate root folder. Builds what it needs; run as root, as dpkg --root requires.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
cd "$root"
packages=$root/build/packages
work=$root/build/packages_test
log=$root/build/packages_test.log
exec 3>&1 >"$log" 2>&1
trap 'status=$?; [ "$status" = 0 ] || tail -n 30 "$log" >&3' EXIT
set -x

scripts/package
version=$(sed -n 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")$/\1/p' build/native/CPackConfig.cmake)
written=$(echo "$version" | awk -F. '{ printf "%d.%02d.%d", $1, $2, $3 }')
(cd "$packages" && sha256sum -c SHA256SUMS)
rm -rf "$work"
mkdir -p "$work/zip"

# The portable archive: the programs run from any folder.
(cd "$work/zip" && cmake -E tar xf "$packages"/*.zip)
scripts/wine "$(find "$work/zip" -name tsflash.exe)" --version | grep -F "$written"

# Released programs contain no symbols.
stripped() { file "$1" | grep -v 'not stripped' | grep -F stripped; }
for program in tsupdate tsflash; do
    stripped "$(find "$work/zip" -name "$program.exe")"
done
# A stream or a locale in the core would link more than half a megabyte of the runtime.
[ "$(find "$work/zip" -name tsupdate.exe -printf %s)" -le 900000 ]

# The installer, twice, as in an upgrade.
settings='HKCU\SOFTWARE\Tessmar Instruments\Packages Test'
uninstall='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Tessmar Vantor Update'
drive=$root/build/wine/drive_c
folder="$drive/Program Files/Tessmar Vantor Update"
scripts/wine reg.exe add "$settings" /v Port /d COM7 /f
for setup in "$packages"/*-setup.exe "$packages"/*-setup.exe; do
    scripts/wine "$setup" /S
    for file in tsupdate.exe tswuhelp.chm; do
        cmp "$(find "$work/zip" -name "$file")" "$folder/$file"
    done
    scripts/wine "$folder/tsflash.exe" --version | grep -F "$written"
    scripts/wine reg.exe query "$uninstall" /v DisplayVersion | grep -F "$version"
    find "$drive" -name 'Tessmar Vantor Update.lnk' | grep 'Start Menu'
done

# The installer does not replace a running program.
scripts/wine "$folder/tsflash.exe" --practice --yes --fault late=15000@1 \
    "Z:$root/build/native/sample.run" >"$work/practice.txt" 2>&1 &
practice=$!
until grep -q Line "$work/practice.txt"; do sleep 0.1; done
status=0
scripts/wine "$setup" /S || status=$?
[ "$status" = 2 ]
wait "$practice"

: >"$folder/notes of the user.txt"
scripts/wine "$folder/uninstall.exe" /S
# The uninstaller continues as a temporary copy of itself, which deletes the original.
for _ in $(seq 100); do
    [ -e "$folder/uninstall.exe" ] || break
    sleep 0.2
done
[ "$(ls "$folder")" = "notes of the user.txt" ]
rm -r "$folder"
[ -z "$(find "$drive" -name 'Tessmar Vantor Update.lnk')" ]
status=0
scripts/wine reg.exe query "$uninstall" || status=$?
[ "$status" = 1 ]
scripts/wine reg.exe query "$settings" /v Port | grep -F COM7
scripts/wine reg.exe delete "$settings" /f

# The Debian package, in a root folder without its dependencies.
deb() { dpkg --root="$work/root" --force-depends --log="$work/dpkg.log" "$@"; }
mkdir -p "$work/root/var/lib/dpkg/info" "$work/root/var/lib/dpkg/updates"
touch "$work/root/var/lib/dpkg/status"
dpkg-deb -f "$packages"/*.deb Depends | grep -F libc6
deb --install "$packages"/*.deb
"$work/root/usr/bin/tsflash" --version | grep -F "$written"
stripped "$work/root/usr/bin/tsflash"
cmp packages/copyright "$work/root/usr/share/doc/tsflash/copyright"
gzip -t "$work/root/usr/share/man/man1/tsflash.1.gz"
# shellcheck disable=SC2016  # expanded by the inner shell
PATH=$work/root/usr/bin:$PATH bash -c '. "$1"; COMP_WORDS=(tsflash --pr) COMP_CWORD=1
    _tsflash tsflash; [ "${COMPREPLY[*]}" = --practice ]' bash \
    "$work/root/usr/share/bash-completion/completions/tsflash"
deb --purge tsflash
[ -z "$(find "$work/root" -name 'tsflash*')" ]
echo passed
