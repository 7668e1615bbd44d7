#!/usr/bin/env bash
# Makes the pictures of docs/pictures/ from the window's demo, in an X server of its own. Installs what is missing first.
#   scripts/pictures.sh            the pictures of the documents
#   scripts/pictures.sh FOLDER     the same and others to be looked at: large, at 200 %, dark, empty
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh

program=build/demo/apps/driverdesk/driverdesk
home=
server=
manager=
desk=

main() {
    install_packages "${build_packages[@]}" "${picture_packages[@]}"
    cmake --preset demo >/dev/null
    cmake --build --preset demo --target driverdesk
    home=$(mktemp -d)
    trap clean EXIT
    pictures_of_documents docs/pictures
    if [[ -n ${1:-} ]]; then
        pictures_to_look_at "$1"
    fi
}

clean() {
    stop_desk
    stop_server
    rm -rf "$home"
}

pictures_of_documents() {
    local folder=$1
    mkdir -p "$folder"
    start_server 1280x800
    start_desk --demo --seed 1
    sleep 40
    take "$folder/window.png"
    press ctrl+4
    take "$folder/line.png" 764x404+516+372
    press ctrl+5
    take "$folder/slave.png" 764x404+516+372
    press ctrl+3
    take "$folder/traffic.png" 764x404+516+372
    take "$folder/trends.png" 512x404+0+372
    take "$folder/points.png" 1280x368+0+0
    press ctrl+1 Home Down Down Down Down Down Down Down Down ctrl+Return
    xdotool type --delay 40 75
    sleep 1
    take_window '^Write' "$folder/write.png"
    stop_desk
    start_desk --demo --seed 1 --dark
    sleep 30
    take "$folder/dark.png"
    stop_desk
    stop_server
}

pictures_to_look_at() {
    local folder=$1 size scale
    mkdir -p "$folder"
    for size in 1280x800 1920x1080; do
        for scale in 1 2; do
            start_server "$size"
            QT_SCALE_FACTOR=$scale start_desk --demo --seed 1
            sleep 12
            take "$folder/demo-$size-$scale.png"
            press ctrl+4
            take "$folder/line-$size-$scale.png"
            press ctrl+5
            take "$folder/slave-$size-$scale.png"
            stop_desk
            QT_SCALE_FACTOR=$scale start_desk
            sleep 2
            take "$folder/empty-$size-$scale.png"
            stop_desk
            stop_server
        done
    done
}

# The server says which display it has got. The window manager gives the window the whole screen, and dialogs the keys.
start_server() {
    local number display
    exec {display}< <(exec Xvfb -displayfd 1 -screen 0 "$1x24" -noreset -nolisten tcp 2>/dev/null)
    server=$!
    read -r number <&"$display"
    export DISPLAY=:$number
    cat >"$home/openbox.xml" <<'END'
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <applications>
    <application type="normal"><decor>no</decor><maximized>yes</maximized></application>
  </applications>
</openbox_config>
END
    openbox --config-file "$home/openbox.xml" 2>/dev/null &
    manager=$!
}

stop_server() {
    stop "$manager"
    manager=
    stop "$server"
    server=
}

start_desk() {
    HOME=$home XDG_CONFIG_HOME=$home "$program" "$@" >/dev/null 2>&1 &
    desk=$!
}

stop() {
    if [[ -n $1 ]]; then
        kill "$1" 2>/dev/null || true
        wait "$1" 2>/dev/null || true
    fi
}

stop_desk() {
    stop "$desk"
    desk=
}

press() {
    xdotool key --delay 60 "$@"
    sleep 2
}

# take FILE [PART]: what is on the screen, or a part of it
take() {
    import -window root ${2:+-crop "$2"} +repage -strip "$1"
}

take_window() {
    import -window "$(xdotool search --onlyvisible --name "$1" | tail -n 1)" -strip "$2"
}

main "$@"
