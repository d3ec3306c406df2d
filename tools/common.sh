# Shared by the scripts of this folder (sourced): the checkout, the cache folder, one quiet line per stage.

zelk_checkout=$(cd "${BASH_SOURCE[0]%/*}/.." && pwd -P)
# What is fetched or made outside the checkout; cmake/Sqlite.cmake looks by the same rule.
zelk_cache=${ZELK_CACHE:-${XDG_CACHE_HOME:-${HOME:?}/.cache}/zelk98}
[[ $zelk_cache == /* ]] || { echo "ZELK_CACHE must be an absolute path, not \"$zelk_cache\"." >&2; exit 1; }
zelk_log=$zelk_checkout/build/log/${0##*/}.log

# die TEXT... - ends the script with a message, one argument per line.
die() {
  printf 'tools/%s: ' "${0##*/}" >&2
  printf '%s\n' "$@" >&2
  exit 1
}

# stage TEXT ADVICE COMMAND [ARG...] - runs one command with its output in the log. Says TEXT and the seconds it took;
# if the command fails, shows the end of its output and ADVICE, and ends the script.
stage() {
  local text=$1 advice=$2 start=$SECONDS log_size
  shift 2
  mkdir -p "${zelk_log%/*}"
  printf '%s ... ' "$text"
  printf '\n==== %s: %s\n' "$text" "$*" >>"$zelk_log"
  log_size=$(stat --format %s "$zelk_log")
  if "$@" >>"$zelk_log" 2>&1; then
    printf '%d s\n' $((SECONDS - start))
  else
    printf 'failed\n'
    # Without ctest's lines on tests that pass.
    tail --bytes=+$((log_size + 1)) "$zelk_log" | grep -Ev '^ +Start +[0-9]+: | Passed +[0-9.]+ sec$' | tail -n 60 >&2
    die "\"$text\" failed.${advice:+ $advice}" "The whole output is in $zelk_log."
  fi
}
