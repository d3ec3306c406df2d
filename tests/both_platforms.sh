#!/bin/bash
# The same books served by both builds: the Linux library and the Windows library under Wine post into one database file
# in turn, and each reads what the other wrote.
#   both_platforms.sh NATIVE_ZELKCTL WINDOWS_ZELKCTL WINE_RUN SAMPLES
set -euo pipefail
native=$1 windows=$2 wine_run=$3 samples=$4
[[ -x $native ]] || { echo "skipped: $native is not built"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ZELK_SETTINGS=$work/settings.ini
on_windows() { "$wine_run" "$windows" "$@" | tr -d '\r'; }
expect() {
  local expected=$1 output
  shift
  output=$("$@") || { echo "failed: $*"; echo "$output"; exit 1; }
  [[ $output == *"$expected"* ]] || { echo "expected \"$expected\" from: $*"; echo "$output"; exit 1; }
}

expect 'Datenbank angelegt' "$native" einrichten "$work/programm"
expect 'Mandant 1 angelegt' "$native" anlegen "$samples/musterhandel"
expect 'Datenbank besteht bereits' on_windows einrichten "$work/programm"
expect 'Mandant 2 angelegt' on_windows anlegen "$samples/alpenwerk"
expect '300 gebucht, 0 abgelehnt' on_windows buchen 1 3 "$samples/musterhandel-buchungen.csv"
expect '300 gebucht, 0 abgelehnt' "$native" buchen 1 3 "$samples/musterhandel-buchungen.csv"
expect '40 gebucht, 0 abgelehnt' "$native" buchen 2 2 "$samples/alpenwerk-buchungen.csv"
expect '600 Buchungen' "$native" stapel 1 3
expect '600 Buchungen' on_windows stapel 1 3
diff <("$native" stapel 1 3) <(on_windows stapel 1 3)
diff <("$native" konten 1 --art debitoren --sortierung 2) <(on_windows konten 1 --art debitoren --sortierung 2)

# Both at once.
on_windows buchen 1 8 "$samples/musterhandel-buchungen.csv" >"$work/windows.txt" &
"$native" buchen 1 8 "$samples/musterhandel-buchungen.csv" >"$work/native.txt"
wait $!
expect '300 gebucht, 0 abgelehnt' cat "$work/windows.txt" 
expect '300 gebucht, 0 abgelehnt' cat "$work/native.txt"
expect '600 Buchungen' "$native" stapel 1 8
