# What the scripts of this folder share, which source it: a temporary folder that ends with the script as its servers do,
# a MariaDB server in it, the user of the tests. Servers listen on 127.0.0.1 only.
folder=$(mktemp -d "${TMPDIR:-/tmp}/zelk98-mariadb.XXXXXX")
servers=()
finish() {
  local server
  # Killed: their data goes with the folder, and a node would first settle its leaving with the others.
  for server in "${servers[@]}"; do kill -KILL "$server" 2>/dev/null || true; done
  for server in "${servers[@]}"; do wait "$server" 2>/dev/null || true; done
  rm -rf "$folder"
}
trap finish EXIT
trap 'exit 1' INT TERM

fail() {
  echo "$0: $1" >&2
  tail -n 20 "$folder"/*.log >&2
  exit 1
}

# A password that would end a value, begin another option, or be cut, were it not quoted.
user=zelk password='p{a}}s;s=w o"rd'

# As root, the server wants to be told so.
base_options=(--no-defaults)
if (( EUID == 0 )); then base_options+=(--user=root); fi

# install_data DATADIR
install_data() {
  mariadb-install-db "${base_options[@]}" --datadir="$1" --auth-root-authentication-method=normal --skip-test-db \
    >"$folder/install.log" 2>&1 || fail 'the data folder cannot be made.'
}

random_port() { echo $(( 20000 + (RANDOM * 32768 + RANDOM) % 12000 )); }

# as_root NAME SQL [OPTION...] - on the server that was started under that name.
as_root() { mariadb --no-defaults --socket="$folder/$1.socket" --user=root --execute="$2" "${@:3}"; }

# start_server NAME PORT OPTION... - starts one and waits until it answers; its process id is in $server. Fails when
# another program has a port that it wants.
start_server() {
  local name=$1 port=$2
  # Power cuts are not tested, and waiting for the disk would be most of the time.
  mariadbd "${base_options[@]}" --datadir="$folder/$name" --socket="$folder/$name.socket" \
    --pid-file="$folder/$name.pid" --port="$port" --bind-address=127.0.0.1 --skip-name-resolve \
    --innodb-flush-log-at-trx-commit=0 --sync-binlog=0 --max-connections=400 --character-set-server=latin1 \
    "${@:3}" ${ZELK_TEST_MARIADBD_OPTIONS-} >"$folder/$name.log" 2>&1 &
  server=$!
  servers+=("$server")
  until [[ -S $folder/$name.socket ]] && as_root "$name" '' 2>/dev/null; do
    if ! kill -0 "$server" 2>/dev/null; then
      grep -q 'Address already in use' "$folder/$name.log" || fail 'the server does not start.'
      return 1
    fi
    sleep 0.1
  done
}

# make_user NAME - with a database that the tests can connect to.
make_user() {
  as_root "$1" "CREATE USER '$user'@'127.0.0.1' IDENTIFIED BY '$password';
    GRANT ALL ON *.* TO '$user'@'127.0.0.1';
    CREATE DATABASE zelk_test" || fail 'the user of the tests cannot be made.'
}
