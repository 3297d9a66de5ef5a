# To be sourced by a scenario, with the program and the folder for pictures as arguments: starts the
# program on media of the scenario's own.
here=$(dirname "${BASH_SOURCE[0]}")
source "$here/../../scripts/windows.sh"

shots=$2
mkdir -p "$shots"
work=$(mktemp -d "${TMPDIR:-/tmp}/velmora-e2e-XXXXXX")
scenario=$(basename "$0")
export XDG_CACHE_HOME=$work/cache XDG_CONFIG_HOME=$work/config

make_video() { # NAME SECONDS SIZE: a key picture each second
    ffmpeg -v error -f lavfi -i "testsrc2=duration=$2:size=$3:rate=25" \
        -f lavfi -i "sine=duration=$2" -c:v libx264 -preset ultrafast -g 25 -bf 0 \
        -pix_fmt yuv420p -c:a aac "$work/$1" </dev/null
}

end_session() {
    local status=$?
    [[ $status -eq 0 ]] || picture "$shots/$scenario-failed.png" || true
    kill "$program" 2>/dev/null || true
    rm -rf "$work"
}

start_program() {
    "$velmora" &
    program=$!
    trap end_session EXIT
    activate Velmora
    main=$(window Velmora)
}

shot() { picture "$shots/$scenario-$1.png"; }

fail() {
    echo "$scenario: $*" >&2
    exit 1
}

# An alert has the input: one with a title, or one that has only the program's name.
alert_is_open() {
    local id
    id=$(xdotool getactivewindow) || return 1
    [[ $id != "$main" && $(xdotool getwindowname "$id") =~ ^(Error|Velmora)$ ]]
}
alert_is_gone() { ! alert_is_open; }

# Waits for an alert, takes a picture named $1 and presses OK.
answer_alert() {
    wait_for alert_is_open || fail "no alert for $1"
    shot "$1"
    keys Return
    wait_for alert_is_gone
}

file_panel_is_open() {
    local id
    id=$(xdotool getactivewindow) || return 1
    [[ $id != "$main" ]]
}
main_is_active() { [[ $(xdotool getactivewindow) == "$main" ]]; }

# Chooses files in the open panel: their paths, as one types them there.
choose() {
    keys ctrl+o
    wait_for file_panel_is_open
    sleep 0.3
    type_text "$1"
    keys Return
}

# Types text $3 over what is at $1 $2 in the main window.
type_at() {
    xdotool mousemove --window "$main" "$1" "$2" click 1
    keys ctrl+a
    type_text "$3"
}

duration_is() { # FILE LEAST MOST, seconds
    local duration
    duration=$(ffprobe -v error -show_entries format=duration -of csv=p=0 -i "$1")
    awk -v d="$duration" -v l="$2" -v m="$3" 'BEGIN { exit !(d >= l && d <= m) }' ||
        fail "$1 has $duration seconds, not $2 to $3"
    ffmpeg -v error -xerror -i "$1" -f null - </dev/null || fail "$1 does not decode"
}

quit_program() {
    xdotool windowactivate "$main"
    keys ctrl+q
    wait "$program" || fail "the program ended with status $?"
}
