# shellcheck shell=bash
# Shows the progress of a long step in one line, on a terminal only. The line is removed when the
# step ends.

# clock SECONDS
clock() { printf '%d:%02d' $(($1 / 60)) $(($1 % 60)); }

# counter_in LOG: the last counter of Ninja or CTest in the log.
counter_in() {
    tail -c 4000 "$1" 2>/dev/null | tr '\r' '\n' |
        sed -n -e 's/^\[\([0-9]*\/[0-9]*\)\].*/built \1/p' -e 's/^ *\([0-9]*\/[0-9]*\) Test *#.*/tested \1/p' |
        tail -n 1
}

watch_log() {
    local start=$SECONDS
    # done_watching ends this background process by SIGTERM. Ctrl-C also ends it.
    trap 'exit 0' TERM INT
    while kill -0 $$ 2>/dev/null; do
        printf '\r%s  %s  %s\033[K' "$2" "$(clock $((SECONDS - start)))" "$(counter_in "$1")"
        sleep 1
    done
}

watcher=
# watching LABEL LOG: starts the line; done_watching removes it.
watching() {
    [ -t 1 ] || return 0
    watch_log "$2" "$1" 9>&- &
    watcher=$!
}
done_watching() {
    [ -n "$watcher" ] || return 0
    kill "$watcher" 2>/dev/null || true
    wait "$watcher" 2>/dev/null || true
    watcher=
    printf '\r\033[K'
}
trap done_watching EXIT
