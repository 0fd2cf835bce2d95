# Shared set-up of the tests/tool/*_cli_test.sh scripts, which drive the heron
# binary as a user would. Usage: <area>_cli_test.sh HERON SOURCE_DIR CASE
set -u
HERON=$1
SRC=$2
CASE=$3
EX="$SRC/examples"
ROUTE="$EX/headphone_route.txtpb"
MODEL="$EX/listening_model.txtpb"
T=$(mktemp -d)
trap 'rm -rf "$T"' EXIT

fail() { echo "FAIL: $*"; exit 1; }
# expect STATUS CMD...: runs CMD, checks its exit status.
expect() {
  local want=$1; shift
  "$@" >"$T/out" 2>"$T/err"
  local got=$?
  [ "$got" -eq "$want" ] || { cat "$T/out" "$T/err"; fail "'$*' exited $got, expected $want"; }
}
contains() { grep -q -- "$2" "$1" || { cat "$1"; fail "$1 lacks '$2'"; }; }

