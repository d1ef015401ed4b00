#!/usr/bin/env bash
# Checks the project generator from outside: what it writes, what it refuses, and with which exit codes.
# Usage: make_project_test.sh PROGRAM
set -u

program=${1:?usage: make_project_test.sh PROGRAM}
scratch=$(mktemp -d)
failures=0

# The tree that 300 assets with the default seed give on every machine and with every compiler. Saved benchmark results
# stand on it: when what is generated changes on purpose, put the new value here and measure again.
known_tree=fd3d47fcf9f7e17676f15ff6c0d93a9fbb99c94f2a4653d0e98abc1cdbe94de7

fail() {
	echo "FAILED: $*" >&2
	failures=$((failures + 1))
}

# expect_exit WHY CODE ARGUMENTS...
expect_exit() {
	local why=$1 wanted=$2
	shift 2
	"$program" "$@" >"$scratch/output" 2>&1
	local code=$?
	[ "$code" = "$wanted" ] || fail "$why: exit code $code, not $wanted; it said: $(cat "$scratch/output")"
}

# One line for the whole tree: every path and every byte.
tree_hash() {
	(cd "$1" && find . -type f -print0 | LC_ALL=C sort -z | xargs -0 sha256sum | sha256sum | cut -d ' ' -f 1)
}

expect_same_tree() {
	[ "$(tree_hash "$2")" = "$(tree_hash "$3")" ] || fail "$1: $2 and $3 differ"
}

expect_other_tree() {
	[ "$(tree_hash "$2")" != "$(tree_hash "$3")" ] || fail "$1: $2 and $3 are the same"
}

expect_count() {
	local why=$1 wanted=$2 folder=$3 pattern=$4 found
	found=$(find "$folder" -name "$pattern" -type f | wc -l)
	[ "$found" = "$wanted" ] || fail "$why: $found files $pattern, not $wanted"
}

writes_the_same_for_the_same_arguments() {
	expect_exit "one thread" 0 "$scratch/one" --assets 300 --threads 1
	expect_exit "four threads" 0 "$scratch/four" --assets=300 --threads=4
	expect_exit "another seed" 0 "$scratch/seed" --assets 300 --seed 2
	expect_same_tree "threads only share out the files" "$scratch/one" "$scratch/four"
	[ "$(tree_hash "$scratch/one")" = "$known_tree" ] || fail "the tree is another one than before: $(tree_hash "$scratch/one")"
	expect_other_tree "the seed counts" "$scratch/one" "$scratch/seed"
	expect_count "as many packages as asked for" 300 "$scratch/one" '*.vasset'
	expect_count "one project" 1 "$scratch/one" 'Hollowmere.uproject'
}

writes_only_what_is_asked_for() {
	expect_exit "some families" 0 "$scratch/tables" --assets 40 --families datatable,Enum --text-files 3
	expect_count "no asset of a family that was not named" 0 "$scratch/tables" 'BP_*.vasset'
	expect_count "three text files besides the project's own four" 7 "$scratch/tables" '*.[!v]*'
	expect_exit "the smallest project" 0 "$scratch/tiny" --assets 1 --dependencies 0 --blueprint-entries 0
	expect_count "a single package" 1 "$scratch/tiny" '*.vasset'
}

refuses_wrong_use() {
	local never=$scratch/never
	expect_exit "no arguments" 2
	expect_exit "no number of assets" 2 "$never"
	expect_exit "not a number" 2 "$never" --assets many
	expect_exit "a number with more behind it" 2 "$never" --assets 100k
	expect_exit "too many" 2 "$never" --assets 1000001
	expect_exit "none" 2 "$never" --assets 0
	expect_exit "a value is missing" 2 "$never" --assets
	expect_exit "unknown option" 2 "$never" --assets 100 --fast
	expect_exit "a switch with a value" 2 "$never" --assets 100 --force=yes
	expect_exit "unknown family" 2 "$never" --assets 100 --families DataTable,Tables
	expect_exit "no family of assets" 2 "$never" --assets 100 --families Text
	expect_exit "two folders" 2 "$never" "$scratch/other" --assets 100
	[ ! -e "$never" ] || fail "wrong use left a folder behind"
	expect_exit "help is no wrong use" 0 --help
}

keeps_what_it_did_not_write() {
	mkdir -p "$scratch/notes/Content"
	echo mine >"$scratch/notes/Content/mine.txt"
	expect_exit "a folder that is no project" 2 "$scratch/notes" --assets 100
	expect_exit "nor does force touch it" 2 "$scratch/notes" --assets 100 --force
	[ "$(cat "$scratch/notes/Content/mine.txt")" = mine ] || fail "a stranger's file is gone"

	expect_exit "a project stands there" 2 "$scratch/seed" --assets 300
	expect_exit "force replaces it" 0 "$scratch/seed" --assets 300 --force
	expect_same_tree "nothing of the old project is left" "$scratch/one" "$scratch/seed"

	expect_exit "a file is no folder" 2 "$scratch/notes/Content/mine.txt" --assets 100
	expect_exit "a folder that cannot be made" 1 "$scratch/notes/Content/mine.txt/below" --assets 100
}

writes_the_same_for_the_same_arguments
writes_only_what_is_asked_for
refuses_wrong_use
keeps_what_it_did_not_write

if [ "$failures" -ne 0 ]; then
	echo "kept for a look: $scratch" >&2
	exit 1
fi
rm -rf "$scratch"
echo "make_project: all checks passed"
