# To be sourced: driving Velmora's windows by keys and mouse, on a display with a window manager.

# Waits up to 20 s for `"$@"` to succeed.
wait_for() {
    for _ in {1..200}; do
        "$@" >/dev/null 2>&1 && return 0
        sleep 0.1
    done
    echo "waited in vain for: $*" >&2
    return 1
}

# The id of the visible window of program `$program` with the title $1.
window() {
    local id
    for id in $(xdotool search --onlyvisible --pid "$program" 2>/dev/null); do
        if [[ $(xdotool getwindowname "$id" 2>/dev/null) == "$1" ]]; then
            echo "$id"
            return 0
        fi
    done
    return 1
}

# A window with the title $1 has the input.
is_active() {
    [[ $(xdotool getactivewindow getwindowname 2>/dev/null) == "$1" ]]
}

# Waits for a window with the title $1 and gives it the input.
activate() {
    wait_for window "$1"
    xdotool windowactivate "$(window "$1")"
    wait_for is_active "$1"
}

is_gone() { ! window "$1"; }

keys() { xdotool key --clearmodifiers --delay 40 "$@"; }
type_text() { xdotool type --clearmodifiers --delay 8 "$1"; }

# Writes a picture of the whole screen to file $1.
picture() {
    sleep 0.4 # what was drawn last is on the screen a moment later
    import -window root "$1"
}
