#!/usr/bin/env bash
# Installs the build tree into a scratch folder and checks that every file a package needs is in place.
# Usage: check_install.sh CMAKE BUILD_DIR STAGE_DIR PREFIX UDEV_RULES_DIR POLKIT_ACTIONS_DIR
# Everything goes under STAGE_DIR through DESTDIR, the udev rule's absolute folder included, so the real
# /etc and /usr are never touched.
set -uo pipefail

cmake=$1 build=$2 stage=$3 prefix=$4 udev_dir=$5 polkit_dir=$6
failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}

rm -rf "$stage"
mkdir -p "$stage"
if ! DESTDIR="$stage" "$cmake" --install "$build" --prefix "$prefix" >"$stage.log" 2>&1; then
    cat "$stage.log" >&2
    echo "FAIL: cmake --install failed (are the programs built?)" >&2
    exit 1
fi
root="$stage$prefix"

expected=(
    bin/dialtone
    bin/dialtone-modemsim
    bin/dialtone-gui
    bin/dialtoned
    share/dbus-1/services/org.dialtone.Modem1.service
    share/dbus-1/interfaces/org.dialtone.Modem1.xml
    lib/systemd/user/dialtoned.service
    share/doc/dialtone/dbus-api.md
    share/dialtone/Resources/PredefinedProfile
    share/dialtone/Resources/PLMN
    share/dialtone/Resources/VELModemService
    share/dialtone/Resources/VEL_HSPA_Modem
    share/dialtone/Resources/modems.table
    share/dialtone/AccountData/Default.dat
    share/dialtone/translations/dialtone_de.qm
    share/dialtone/modemsim/scenarios/default.json
    share/man/man1/dialtone.1
    share/man/man1/dialtone-gui.1
    share/bash-completion/completions/dialtone
    share/zsh/site-functions/_dialtone
    share/man/man1/dialtone-modemsim.1
    share/applications/dialtone.desktop
    share/metainfo/org.dialtone.Dialtone.metainfo.xml
    share/icons/hicolor/scalable/apps/dialtone.svg
)
for file in "${expected[@]}"; do
    [[ -s "$root/$file" ]] || fail "$file missing or empty"
done
[[ -s "$stage$udev_dir/70-dialtone-modem.rules" ]] || fail "udev rule missing in $udev_dir"
policy="$stage$polkit_dir/org.dialtone.modemservice.policy"
grep -q ">$prefix/share/dialtone/Resources/VELModemService<" "$policy" 2>/dev/null ||
    fail "polkit action missing in $polkit_dir or not naming the installed service tool"
grep -qx "Exec=$prefix/bin/dialtoned" "$root/share/dbus-1/services/org.dialtone.Modem1.service" ||
    fail "the bus activation file does not start the installed dialtoned"
grep -qx "ExecStart=$prefix/bin/dialtoned" "$root/lib/systemd/user/dialtoned.service" ||
    fail "the systemd user unit does not start the installed dialtoned"
for program in bin/dialtone bin/dialtone-modemsim bin/dialtone-gui bin/dialtoned share/dialtone/Resources/VELModemService; do
    [[ -x "$root/$program" ]] || fail "$program is not executable"
done

# Nothing may land outside the stage's prefix but the udev rule and the polkit action.
while IFS= read -r file; do
    case "$file" in
    "$root"/* | "$stage$udev_dir"/* | "$stage$polkit_dir"/*) ;;
    *) fail "installed outside the prefix: ${file#"$stage"}" ;;
    esac
done < <(find "$stage" -type f)

if command -v groff >/dev/null 2>&1; then
    for page in dialtone.1 dialtone-gui.1 dialtone-modemsim.1; do
        warnings=$(LC_ALL=C.UTF-8 groff -man -Tutf8 -ww -z "$root/share/man/man1/$page" 2>&1)
        [[ -z "$warnings" ]] || fail "$page: $warnings"
        lines=$(LC_ALL=C.UTF-8 groff -man -Tutf8 "$root/share/man/man1/$page" 2>/dev/null | wc -l)
        ((lines > 20)) || fail "$page renders to $lines lines"
    done
else
    echo "groff not installed: man pages not rendered"
fi

desktop="$root/share/applications/dialtone.desktop"
if command -v desktop-file-validate >/dev/null 2>&1; then
    desktop-file-validate "$desktop" || fail "desktop-file-validate rejects dialtone.desktop"
else
    echo "desktop-file-validate not installed: desktop entry not validated"
fi
for line in "Name=Dialtone" "Exec=dialtone-gui" "Icon=dialtone" "Categories=Network;Dialup;"; do
    grep -qxF "$line" "$desktop" || fail "dialtone.desktop lacks $line"
done
appstreamcli validate-tree --no-net --strict "$root" >"$stage.appstream" 2>&1 ||
    fail "appstreamcli rejects the metainfo or the desktop entry it launches: $(cat "$stage.appstream")"
if command -v xmllint >/dev/null 2>&1; then
    xmllint --noout "$root/share/icons/hicolor/scalable/apps/dialtone.svg" || fail "dialtone.svg is not XML"
fi

# The installed desktop app starts and knows its version (no display needed).
version=$(QT_QPA_PLATFORM=offscreen "$root/bin/dialtone-gui" --version 2>&1) || fail "dialtone-gui --version failed: $version"
[[ "$version" == *dialtone-gui* ]] || fail "dialtone-gui --version printed: $version"

if ((failures > 0)); then
    echo "$failures check(s) failed; the installed tree is in $stage" >&2
    exit 1
fi
echo "install tree complete in $stage"
