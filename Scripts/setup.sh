# Sourced by ./run, ./test and .ci/run: installs what their sections of Scripts/packages.txt list and this machine lacks.

set -euo pipefail
ORIVANE_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '\n== %s\n' "$*"; }

as_root() {
	if [ "$(id -u)" -eq 0 ]; then
		"$@"
	elif command -v sudo >/dev/null 2>&1; then
		sudo "$@"
	else
		echo "error: installing packages needs root or sudo; install them by hand and start again" >&2
		exit 1
	fi
}

# packages_of SECTION...
packages_of() {
	awk -v wanted=" $* " '/^\[/ { section = substr($0, 2, length($0) - 2); next } /^[^#]/ && index(wanted, " " section " ")' \
		"$ORIVANE_ROOT/Scripts/packages.txt"
}

# missing_packages SECTION...
missing_packages() {
	local name
	packages_of "$@" | while read -r name; do
		dpkg-query -W -f='${Status}\n' "$name" 2>/dev/null | grep -q '^install ok installed$' || echo "$name"
	done
}

# install_missing_packages SECTION...
install_missing_packages() {
	if ! command -v dpkg-query >/dev/null 2>&1; then
		echo "note: no dpkg here; the packages of Scripts/packages.txt are taken to be there under other names" >&2
		return
	fi
	local missing
	missing=$(missing_packages "$@" | tr '\n' ' ')
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
		cmake --preset "$preset" >/dev/null # also where it was done before: packages may have been installed since
		cmake --build --preset "$preset" ${1:+--target "$@"}
	)
}
