#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Shows the distributed log at work, with real processes that talk over DDS on the loopback interface:
#
#   scripts/demo.sh [build folder]
#
# A tail and an application run beside each other; a tail that comes late gets the history; the filter
# level is turned up to trace and back while the application runs. Ends by itself, in well under a
# minute, with exit code 0 only if everything arrived that should, and nothing else.
set -u

root=$(cd "$(dirname "$0")/.." && pwd)
bin=${1:-$root/build/release}/bin
domain=${DISTLOG_DEMO_DOMAIN:-58}
export CYCLONEDDS_URI="file://$root/config/cyclonedds-loopback.xml"

work=$(mktemp -d)
app=
tail=
cleanup() {
    for pid in $app $tail; do
        kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null
    done
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 1' INT TERM

say() { printf '\n=== %s\n' "$*"; }
fail() {
    printf '\ndemo: FAILED: %s\n' "$*" >&2
    sed 's/^/  tail: /' "$work/tail.err" >&2
    exit 1
}
# wait_for SECONDS WHAT COMMAND...: looks again, ten times a second, until the command succeeds.
wait_for() {
    tries=$(($1 * 10))
    what=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        tries=$((tries - 1))
        [ "$tries" -gt 0 ] || fail "$what"
        sleep 0.1
    done
}
has_level() { grep -q "\"level\":$1," "$work/tail.json"; }
count_level() { grep -c "\"level\":$1," "$work/tail.json"; }
# message_id of the last line of a file
last_id() { sed -n '$s/.*"message_id":\([0-9]*\).*/\1/p' "$1"; }
first_id() { sed -n '1s/.*"message_id":\([0-9]*\).*/\1/p' "$1"; }

for program in distlog distlog-demo; do
    [ -x "$bin/$program" ] || { echo "demo: $bin/$program is missing: build first" >&2; exit 1; }
done

say "distlog tail, in the background; then an application with four threads"
"$bin/distlog" tail --domain "$domain" --history --json >"$work/tail.json" 2>"$work/tail.err" &
tail=$!
"$bin/distlog-demo" --domain "$domain" --threads 4 --rate 40 --quiet >"$work/app.out" 2>&1 &
app=$!
wait_for 10 "no message has arrived" has_level 600

say "its messages, as distlog tail shows them to people"
"$bin/distlog" tail --domain "$domain" --count 12 --timeout 10 2>/dev/null ||
    fail "twelve messages have not arrived"

say "distlog ls"
"$bin/distlog" ls --domain "$domain" | tee "$work/ls"
grep -q '^distlog-demo .* operational *info ' "$work/ls" || fail "the application is not listed at info"

say "the filter keeps debug and trace with the application: $(wc -l <"$work/tail.json") messages so far"
has_level 700 && fail "a debug message has arrived although the level is info"
has_level 800 && fail "a trace message has arrived although the level is info"
echo "none of them at debug or trace"

say "a tail that comes late begins with the history"
"$bin/distlog" tail --domain "$domain" --history --json --count 20 --timeout 10 \
    >"$work/late.json" 2>/dev/null || fail "the late tail has not got its messages"
now=$(last_id "$work/tail.json")
oldest=$(first_id "$work/late.json")
[ "$oldest" -lt "$((now - 20))" ] || fail "the late tail began with message $oldest of $now"
echo "the tail that has just started began with message $oldest; message $now is the newest"

say "distlog set level distlog-demo trace"
"$bin/distlog" set level distlog-demo trace --domain "$domain" || fail "the level was not set"
wait_for 10 "no trace message has arrived" has_level 800
wait_for 10 "no debug message has arrived" has_level 700
"$bin/distlog" tail --domain "$domain" --count 12 --timeout 10 2>/dev/null ||
    fail "twelve messages have not arrived"

say "distlog set level distlog-demo info"
"$bin/distlog" set level distlog-demo info --domain "$domain" || fail "the level was not set back"
"$bin/distlog" ls --domain "$domain" | tee "$work/ls"
grep -q '^distlog-demo .* operational *info ' "$work/ls" || fail "the level is not info again"
# What was on its way when the level changed has arrived by now.
traces=$(count_level 800)
"$bin/distlog" tail --domain "$domain" --count 30 --timeout 10 >/dev/null 2>&1 ||
    fail "thirty messages have not arrived"
[ "$(count_level 800)" -eq "$traces" ] || fail "trace messages still arrive"
echo "no trace message among the next thirty"

say "the application ends, and so does the tail"
kill -INT "$app"
wait "$app" || fail "the application ended with an error"
app=
cat "$work/app.out"
sent=$(sed -n 's/.*logged \([0-9]*\) messages.*/\1/p' "$work/app.out")
published=$(sed -n 's/.* \([0-9]*\) of them passed.*/\1/p' "$work/app.out")
received() { [ "$(wc -l <"$work/tail.json")" -ge "${published:-0}" ]; }
wait_for 5 "$(wc -l <"$work/tail.json") of ${published:-?} messages have arrived" received
kill -INT "$tail"
wait "$tail" || fail "the tail ended with an error"
tail=
sed 's/^/tail: /' "$work/tail.err"
grep -q ' 0 lost$' "$work/tail.err" || fail "messages were lost"
got=$(wc -l <"$work/tail.json")
[ "$got" -eq "$published" ] || fail "$got messages arrived, $published were published"

printf '\ndemo: %s messages logged, %s of them published, %s received, %s dropped\n' \
    "$sent" "$published" "$got" "$((published - got))"
