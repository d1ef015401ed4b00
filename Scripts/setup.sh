# Sourced by ./run, ./test and .ci/run: installs what Scripts/packages.txt lists and this machine lacks.

set -euo pipefail
ORIVANE_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '\n== %s\n' "$*"; }

as_root() {
	if [ "$(id -u)" -eq 0 ]; then
		"$@"
	elif command -v sudo >/dev/null 2>&1; then
		sudo "$@"
	else
		echo "error: installing packages needs root or sudo; install these by hand and start again:" >&2
		grep -v '^#' "$ORIVANE_ROOT/Scripts/packages.txt" | tr '\n' ' ' >&2
		echo >&2
		exit 1
	fi
}

missing_packages() {
	local name
	grep -v '^#' "$ORIVANE_ROOT/Scripts/packages.txt" | while read -r name; do
		[ -n "$name" ] || continue
		dpkg-query -W -f='${Status}\n' "$name" 2>/dev/null | grep -q '^install ok installed$' || echo "$name"
	done
}

install_missing_packages() {
	if ! command -v dpkg-query >/dev/null 2>&1; then
		echo "note: no dpkg here; the packages of Scripts/packages.txt are taken to be there under other names" >&2
		return
	fi
	local missing
	missing=$(missing_packages | tr '\n' ' ')
	[ -n "$missing" ] || return 0
	say "Installing: $missing"
	as_root apt-get update -qq
	# shellcheck disable=SC2086
	as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
}

# build PRESET [TARGET...]
build() {
	local preset=$1
	shift
	(
		cd "$ORIVANE_ROOT"
		[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
		cmake --build --preset "$preset" ${1:+--target "$@"}
	)
}
