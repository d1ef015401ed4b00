#!/usr/bin/env bash
# The program as a shell sees it: output, messages and exit codes. Usage: cli_process_test.sh ORIVANE SAMPLE_PROJECT
set -u
orivane=$1
sample=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0

# expect WHY EXIT_CODE PATTERN COMMAND...   the pattern (extended regular expression) must occur in output or messages; "" asks for none
expect() {
	local why=$1 code=$2 pattern=$3 output actual
	shift 3
	output=$("$@" 2>&1 </dev/null)
	actual=$?
	if [ "$actual" -ne "$code" ] || { [ -n "$pattern" ] && ! grep -qE -- "$pattern" <<<"$output"; }; then
		echo "FAILED: $why: exit $actual (expected $code), pattern: $pattern"
		printf '%s\n' "$output" | head -20
		failures=$((failures + 1))
	fi
}

cp -r "$sample" "$scratch/Copy"
project=$scratch/Copy
mkdir "$scratch/empty" "$scratch/two"
touch "$scratch/two/a.uproject" "$scratch/two/b.uproject"

expect "a search finds both families" 0 'DataTable' "$orivane" search Health --project "$project"
expect "a search finds text files" 0 'TextFile' "$orivane" search Health --project "$project"
expect "nothing found" 1 '0 asset' "$orivane" search NoSuchWordAnywhere --project "$project"
expect "the payload" 0 '^\{"assets":\[\{"asset":' "$orivane" search Health --json --project "$project"
expect "the descriptor names the project too" 0 'asset' "$orivane" search Health -p "$project/Lantern.uproject"
expect "an unknown family is a mistake at a shell" 2 "no family 'Tables'; families: .*DataTable" "$orivane" search x --family Tables -p "$project"
expect "a mistyped command" 2 "did you mean 'search'" "$orivane" serach Health
expect "a mistyped option" 2 "did you mean '--family'" "$orivane" search x --famly Text
expect "a missing term" 2 'TERM is required' "$orivane" search
expect "a number that is none" 2 'max-total-hits' "$orivane" search x --max-total-hits many
expect "memory for nothing" 2 'object-memory' "$orivane" search x --object-memory 0
expect "no command" 2 'orivane --help' "$orivane"
expect "help has examples" 0 'Examples:' "$orivane" search --help
expect "version" 0 '^[0-9]+\.[0-9]+\.[0-9]+$' "$orivane" --version

expect "a call prints the envelope" 0 '^\{"success":true,"messages":\[\{"type":"success","text":"Found [0-9]+ asset\(s\)' \
	"$orivane" call asset_search '{"term":"Health","include_asset_families":["DataTable","Text"]}' --project "$project"
expect "a failing call" 1 '^\{"success":false,"messages":\[\{"type":"error","text":"Missing required parameter .term.' "$orivane" call asset_search '{}' -p "$project"
expect "arguments that are no JSON" 1 'Invalid JSON command.*Failed to parse command JSON' "$orivane" call asset_search '{nonsense' -p "$project"
expect "arguments that are no object" 1 'Invalid JSON command' "$orivane" call asset_search '[1]' -p "$project"
expect "an unknown tool" 2 "no tool 'nonsense'; tools: asset_search" "$orivane" call nonsense -p "$project"

expect "no such folder" 3 'there is no folder' "$orivane" info --project "$scratch/nowhere"
expect "a folder without a descriptor" 3 'no \*\.uproject' "$orivane" info --project "$scratch/empty"
expect "two descriptors" 3 'more than one' "$orivane" info --project "$scratch/two"
expect "info counts" 0 'packages' "$orivane" info --project "$project"
expect "info as JSON" 0 '^\{"name":"Lantern"' "$orivane" info --json --project "$project"
expect "the sample is clean" 0 '0 error' "$orivane" check --project "$project"

mkdir -p "$project/Content/Broken"
printf '{"varnel_package": 1, "assets": [' >"$project/Content/Broken/Cut.vasset"
printf '{"varnel_package": 2, "assets": []}' >"$project/Content/Broken/Version.vasset"
printf '{"varnel_package": 1, "assets": [{"name": "BT_Loop", "class": "/Script/Engine.BehaviorTree"}], "objects": [
	{"path": "BT_Loop", "class": "/Script/Engine.BehaviorTree", "properties": {"RootNode": "BT_Loop:R"}},
	{"path": "BT_Loop:R", "class": "/Script/Engine.BTComposite_Selector", "properties": {"Children": [{"ChildComposite": "BT_Loop:R"}]}}]}' \
	>"$project/Content/Broken/BT_Loop.vasset"
printf 'nonsense\n[Unclosed\n' >>"$project/Config/DefaultGame.ini"
printf '{"varnel_script": 1, "classes": [{"name": "Odd", "super": "/Script/Engine.Nowhere"}]}' >"$project/Script/Odd.vscript"
expect "faults are named with file, line and column" 1 'Content/Broken/Cut\.vasset:1:[0-9]+: error: .* \[' "$orivane" check -p "$project"
expect "a wrong version" 1 'Content/Broken/Version\.vasset:1:[0-9]+: error: .* \[package-version\]' "$orivane" check -p "$project"
expect "a tree that holds itself" 1 'BT_Loop\.vasset: error: .* lies below itself \[tree-cycle\]' "$orivane" check -p "$project"
expect "and is searched all the same" 0 'BT_Loop  BehaviorTree' "$orivane" search BT_Loop -f BehaviorTree --object-memory 1 -p "$project"
expect "a settings line" 1 'Config/DefaultGame\.ini:[0-9]+:1: error: ' "$orivane" check -p "$project"
expect "a script class without a parent" 1 'Script/Odd\.vscript:1:[0-9]+: error: .*Nowhere' "$orivane" check -p "$project"
expect "faults as JSON" 1 '^\{"errors":[1-9][0-9]*,"warnings":' "$orivane" check --json -p "$project"
expect "the rest is still found" 0 'DataTable' "$orivane" search Health -p "$project"
expect "a search mentions the faults" 0 'orivane check' "$orivane" search Health -p "$project"


[ -n "$(cd "$project/Docs" && "$orivane" search Health 2>/dev/null)" ] || { echo "FAILED: found upward"; failures=$((failures + 1)); }
printf '{"term":"Health"}' | "$orivane" call asset_search - -p "$project" 2>/dev/null | grep -q '"success":true' ||
	{ echo "FAILED: arguments from standard input"; failures=$((failures + 1)); }
"$orivane" search Health -p "$project" 2>/dev/null | grep -q $'\033' && { echo "FAILED: colour in a pipe"; failures=$((failures + 1)); }

echo "$failures failure(s)"
exit $((failures > 0))
