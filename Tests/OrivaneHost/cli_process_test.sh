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
expect "a search finds text files, with their lines" 0 '^Docs/GameDesign\.md:[0-9]+: ' "$orivane" search Health --project "$project"
expect "a search that would never end" 2 'never searched for an empty term' "$orivane" search "" --family Blueprint --time-limit 0.1 -p "$project"
expect "entries of Blueprints, below their parents" 0 '^  Node +    Set Health$' "$orivane" search Health --family Blueprint -p "$project"
expect "nothing found" 1 '0 asset' "$orivane" search NoSuchWordAnywhere --project "$project"
expect "the payload" 0 '^\{"assets":\[\{"asset":' "$orivane" search Health --json --project "$project"
expect "the descriptor names the project too" 0 'asset' "$orivane" search Health -p "$project/Lantern.uproject"
expect "an unknown family is a mistake at a shell" 2 "no family 'Tables'; families: .*DataTable" "$orivane" search x --family Tables -p "$project"
expect "a mistyped command" 2 "did you mean 'search'" "$orivane" serach Health
expect "a mistyped option" 2 "did you mean '--family'" "$orivane" search x --famly Text
expect "a missing term" 2 'TERM is required' "$orivane" search
expect "a number that is none" 2 'max-total-hits' "$orivane" search x --max-total-hits many
expect "a time that is not a number" 2 "time-limit: 'nan' is not a time from 0.001 to 86400 seconds" "$orivane" search x --time-limit nan
expect "more time than there is" 2 "deadline: '1e30' is not a time" "$orivane" mcp --deadline 1e30
expect "memory for nothing" 2 'object-memory' "$orivane" search x --object-memory 0
expect "a way to notice changes that is none" 2 "watch: 'sometimes' is none of: auto, events, times, off" "$orivane" mcp --watch sometimes
expect "no command" 2 'orivane --help' "$orivane"
expect "help has examples" 0 'Examples:' "$orivane" search --help
expect "version" 0 '^[0-9]+\.[0-9]+\.[0-9]+$' "$orivane" --version

expect "a call prints the envelope" 0 '^\{"success":true,"messages":\[\{"type":"success","text":"Found [0-9]+ asset\(s\)' \
	"$orivane" call asset_search '{"term":"Health","include_asset_families":["DataTable","Text"]}' --project "$project"
expect "a failing call" 1 '^\{"success":false,"messages":\[\{"type":"error","text":"Missing required parameter .term.' "$orivane" call asset_search '{}' -p "$project"
expect "arguments that are no JSON" 1 'Invalid JSON command.*Failed to parse command JSON' "$orivane" call asset_search '{nonsense' -p "$project"
expect "arguments that are no object" 1 'Invalid JSON command' "$orivane" call asset_search '[1]' -p "$project"
expect "an unknown tool" 2 "no tool 'nonsense'; tools: asset_search explore_asset_graph" "$orivane" call nonsense -p "$project"

# Many calls of one process: each line is answered before the next one is said, whatever it is, from the files as they are then.
coproc CALLS { timeout 60 "$orivane" call - --project "$project" 2>/dev/null; }
calls_id=$CALLS_PID
answer() {
	local reply
	printf '%s\n' "$1" >&"${CALLS[1]}"
	IFS= read -r -t 20 reply <&"${CALLS[0]}" || reply='(silence)'
	grep -qE -- "$2" <<<"$reply" || { echo "FAILED: the call $1, pattern: $2"; cut -c1-300 <<<"$reply"; failures=$((failures + 1)); }
}
trees='{"tool":"asset_path_search","arguments":{"term":"BT_"}}'
answer "$trees" '"success":true.*Found 3 matches'
answer 'not json' '"success":false.*The line is not a JSON object: column 1: .not. is not a JSON value'
answer '[]' '"success":false.*a JSON object is needed'
answer '{"tool":"asset_search","argument":{}}' '"success":false.*A call has no .*argument'
answer '{"tool":7}' '"success":false.*tool.* is missing or not a string'
answer ' {"tool":"nope"}' "no tool 'nope'; tools: asset_search explore_asset_graph asset_path_search"
answer '{"tool":"asset_search","arguments":[]}' '"success":false.*Invalid JSON command'
answer $'\n{"tool":"asset_search"}' '"success":false.*Missing required parameter .term.'
rm "$project/Content/AI/BT_Guard.vasset"
answer "$trees" '"success":true.*Found 2 matches'
cp "$sample/Content/AI/BT_Guard.vasset" "$project/Content/AI/"
eval "exec ${CALLS[1]}>&-"
wait "$calls_id"
calls_code=$?
[ "$calls_code" -eq 2 ] || { echo "FAILED: the worst of many calls: exit $calls_code"; failures=$((failures + 1)); }
printf '%s' '{"tool":"asset_search"}' | "$orivane" call - -p "$project" >/dev/null 2>&1
[ $? -eq 1 ] || { echo "FAILED: a failing call without a line break"; failures=$((failures + 1)); }
expect "no calls at all" 0 '' "$orivane" call - -p "$project"
expect "arguments beside calls from standard input" 2 'come from standard input' "$orivane" call - '{"term":"x"}' -p "$project"
expect "calls need a project" 3 'cannot open the project' "$orivane" call - -p "$scratch/empty"

hub=/Game/Characters/BP_LanternCharacter
expect "a graph is a tree" 0 '^└─ /Game/Data/Tables/DT_Weapons  DataTable  Runtime$' "$orivane" graph $hub --high-signal -p "$project"
expect "the second level is indented" 0 '^│  └─ /Game/Data/Enums/E_DamageKind  Enum  Runtime$' "$orivane" graph $hub --depth 2 --high-signal -p "$project"
expect "all kinds by default, with their classes" 0 '^├─ /Game/Audio/SW_LampIgnite  uasset \(SoundWave\)  Runtime$' "$orivane" graph $hub -p "$project"
expect "what a short form leaves out" 0 '^9 more dependencies of other kinds: uasset 8, NiagaraSystem 1; --all-kinds shows them$' "$orivane" graph $hub --high-signal -p "$project"
expect "a dependency that does not exist" 0 '^└─ /Game/Legacy/DT_OldPrices  missing$' "$orivane" graph /Game/Data/Tables/DT_Items -p "$project"
expect "which cap struck a search" 0 '^more assets match: DataTable 7; raise --max-per-type \(2\)$' "$orivane" search e --family DataTable --max-per-type 2 -p "$project"
expect "both directions have headings with numbers" 0 '^referred to by: [0-9]+ relations \(.*; Runtime [0-9]+' "$orivane" graph $hub -r both -p "$project"
expect "a cut tree says so" 0 "^more dependencies qualify; raise --max-nodes \(2\)$" "$orivane" graph $hub --max-nodes 2 -p "$project"
expect "the payload of a graph" 0 '^\{"root":"/Game/Characters/BP_LanternCharacter","direction":"Referencers"' "$orivane" graph $hub -r REFERENCERS --json -p "$project"
expect "a drawing for Graphviz" 0 '^\s*n0 -> n1 \[color=' "$orivane" graph $hub --format dot -p "$project"
expect "a drawing for Markdown" 0 '^\s*n0 --> n1$' "$orivane" graph $hub --format mermaid -p "$project"
expect "a package's file" 0 '^/Game/AI/BT_Guard  BehaviorTree$' "$orivane" graph Content/AI/BT_Guard.vasset -p "$project"
expect "a file outside of the project" 1 'Asset does not exist: /etc/passwd' "$orivane" graph /etc/passwd -p "$project"
expect "a missing asset, with a suggestion" 1 'did you mean /Game/Characters/BP_DockGuard' "$orivane" graph /Game/Old/bp_dockguard -p "$project"
expect "a text file is not a package" 1 "is not a package" "$orivane" graph Docs/Packages -p "$project"
expect "nothing depends on it" 1 '^depends on: 0 relations$' "$orivane" graph /Game/Data/Enums/E_DamageKind -p "$project"
expect "a word of an option" 2 "relation: 'parents' is none of: dependencies, referencers, both" "$orivane" graph $hub -r parents -p "$project"
expect "a depth out of range" 2 'depth: Value 3 not in range' "$orivane" graph $hub --depth 3 -p "$project"
expect "a file in a folder that is missing" 2 'cannot write .*/none/x: there is no folder .*/none' "$orivane" graph $hub -o "$scratch/empty/none/x" -p "$project"
expect "a dash is standard output" 0 '^├─ /Game/UI' "$orivane" graph $hub -o - -p "$project"
expect "the graph tool" 0 '"text":"Explored asset graph for .* \(direction: Dependencies, depth: 1, relations: [0-9]+\)"' \
	"$orivane" call explore_asset_graph "{\"asset_path\":\"$hub\"}" -p "$project"

expect "what is broken, with its line" 1 '^/Game/Legacy/DT_OldPrices  missing  Runtime, soft  /Game/Data/Tables/DT_Items  Content/Data/Tables/DT_Items.vasset:13$' \
	"$orivane" report broken -p "$project"
expect "roots of one's own" 1 '^/Game/AI/ST_HarbourCat +StateTree$' "$orivane" report unused --root /Game/Data/ -p "$project"
expect "a cycle's ring" 1 '^  /Game/AI/EQS_LampToSnuff +-> /Game/World/BP_StreetLamp +Editor$' "$orivane" report cycles -p "$project"
expect "a cut report says so" 1 '^76 more rows; raise --max-results \(2\)$' "$orivane" report cycles --max-results 2 -p "$project"
enum=/Game/Data/Enums/E_DamageKind
expect "impact with the way" 0 '^/Game/Data/DA_GameConfig +uasset \(GameConfig\) +Runtime +-> /Game/Characters/BP_LanternCharacter -> /Game/Framework/BP_HealthComponent$' \
	"$orivane" report impact $enum -p "$project"
expect "impact as a tree" 0 '^   │  ├─ /Game/Data/DA_GameConfig  uasset \(GameConfig\)  Runtime$' "$orivane" report impact $enum --format tree -p "$project"
expect "impact as JSON" 0 '^\{"report":"impact","summary":\{"runtime":32,' "$orivane" report impact $enum --json -p "$project"
expect "ways drawn" 0 '^\s*n0 -> n1 \[color=' "$orivane" report path /Game/Maps/L_Harbour $enum --format dot -p "$project"
expect "ways that lead back only" 1 '^No way from .*, but 3 shortest ways of 4 links from' "$orivane" report path $enum /Game/Maps/L_Harbour -p "$project"
expect "a report on nothing" 1 'did you mean /Game/Data/Enums/E_DamageKind' "$orivane" report impact /Game/Old/e_damagekind -p "$project"
expect "a report without its asset" 2 'path takes an ASSET and a TARGET; see: orivane report --help' "$orivane" report path $enum -p "$project"
expect "a drawing of a list" 2 'unused is a list: --format draws cycles' "$orivane" report unused --format html -p "$project"
expect "paths by directory" 0 '^  BT_Guard\.BT_Guard' "$orivane" paths BT_ -p "$project"
expect "paths as a list" 0 '^/Game/AI/BT_Guard\.BT_Guard' "$orivane" paths bt_guard --exact --view files -p "$project"
expect "paths of a class" 1 '0 match' "$orivane" paths BT_ --class Texture -p "$project"
expect "paths over a cap" 0 'not all of them shown; narrow' "$orivane" paths /Game --max-files 1 -p "$project"
expect "paths as JSON" 0 '^\{"summary":\{"total_hits":[0-9]+,' "$orivane" paths BT_ --json -p "$project"
expect "paths without a term" 1 "Missing required field 'term'" "$orivane" paths '' -p "$project"
expect "the host's own tool" 0 '"data":\{"asset_path_search":' "$orivane" call asset_path_search '{"term":"BT_"}' -p "$project"

expect "the damage of a weapon" 0 '^  Damage +40 +int$' "$orivane" show DA_Weapon_FlarePistol -p "$project"
expect "the key of an action" 0 '^ +\{"Action":"/Game/Input/IA_Sprint.IA_Sprint","Key":"LeftShift"' "$orivane" show IMC_Default -p "$project"
expect "the rows of a table" 0 '^  BoatHook +Boat hook +26 ' "$orivane" show /Game/Data/Tables/DT_Weapons -p "$project"
expect "the parent of a Blueprint" 0 '^  parent +/Game/Characters/BP_EnemyBase.BP_EnemyBase_C < LanternCharacterBase < ' "$orivane" show BP_DockGuard -p "$project"
expect "a value that is stored and the default" 0 '^  MaxHealth +60 +float +default$' "$orivane" show DA_Enemy_DockGuard -p "$project"
expect "a file of the current folder" 0 '^  RootNode: Root  BTComposite_Selector' env -C "$project/Content/AI" "$orivane" show BT_Guard.vasset --section tree
expect "one row as JSON" 0 '"num_rows":7,"rows":\[\{"name":"OilFlask",[^]]*\]\}\}\]\}$' "$orivane" show DT_Weapons --section rows --row oilflask --json -p "$project"
expect "what was cut, and what shows it" 0 '^5 more rows; raise --rows \(2\)$' "$orivane" show DT_Weapons --rows 2 -p "$project"
expect "a section that there is not" 2 "no section 'row'; sections: tags, properties, rows" "$orivane" show DT_Weapons --section row -p "$project"
expect "no such asset, with a suggestion" 1 'did you mean /Game/Characters/BP_DockGuard' "$orivane" show /Game/Old/bp_dockguard -p "$project"

expect "a console command writes its file" 0 'Saved/Quellar/datatable_search\.json' "$orivane" console -c 'Orivane.DataTableSearch term=Health' -p "$project"
grep -q '"asset_path": "/Game/Data/Tables/DT_Enemies.DT_Enemies"' "$project/Saved/Quellar/datatable_search.json" ||
	{ echo "FAILED: the file of a console command"; failures=$((failures + 1)); }
expect "a console command that finds nothing" 1 '0 asset' "$orivane" console -c 'Orivane.EnumSearch term=NoSuchWord' -p "$project"
expect "a console loads packages" 0 '1 package\(s\) in memory' "$orivane" console -c 'load /Game/AI/BT_Guard' -p "$project"
expect "a console unloads packages" 0 'package\(s\) removed' "$orivane" console -c 'load /Game/AI' -c 'unload /Game/AI' -p "$project"
expect "several console commands, one of them unknown" 2 "no command 'Orivane.TextSerch', did you mean 'Orivane.TextSearch'" \
	"$orivane" console -c 'help' -c 'Orivane.TextSerch term=x' -p "$project"
printf '# a script\norivane.textsearch term="Health"\nexit\nnonsense\n' | "$orivane" console -p "$project" 2>&1 | grep -q 'text_search\.json' ||
	{ echo "FAILED: a piped console script"; failures=$((failures + 1)); }

expect "no such folder" 3 'there is no folder' "$orivane" info --project "$scratch/nowhere"
expect "a folder without a descriptor" 3 'no \*\.uproject' "$orivane" info --project "$scratch/empty"
expect "two descriptors" 3 'more than one' "$orivane" info --project "$scratch/two"
expect "one of two descriptors" 0 '' "$orivane" info --project "$(ls "$scratch"/two/*.uproject | head -n 1)"
mkdir -p "$scratch/Foreign/Content" && echo '{}' >"$scratch/Foreign/Foreign.uproject" && echo x >"$scratch/Foreign/Content/Guard.pak"
expect "a project of another program" 1 'no package \(\*\.vasset\) below Content, but 1 other file; ' "$orivane" search Guard --project "$scratch/Foreign"
expect "quantities with their units" 0 '^  open  +[0-9.]+ ms$' "$orivane" info --project "$scratch/Foreign"
expect "a file for a folder" 3 'README.md is a file; name a project folder' "$orivane" info --project "$project/README.md"
expect "engine content that is not there" 2 'there is no folder /nonexistent' "$orivane" info --engine-content /nonexistent --project "$project"
expect "a list with blanks" 0 'Enum' "$orivane" search E_ --family "DataTable, Enum" --project "$project"
expect "a cap below one" 2 'max-per-type: Value 0 not in range' "$orivane" search E_ --max-per-type 0 --project "$project"
expect "a term that begins with a dash" 2 'follows two: orivane search -- ' "$orivane" search -foo --project "$project"
expect "an option before the command" 2 'the command comes first: orivane COMMAND --project' "$orivane" --project "$project" info
expect "the registry's spelling" 0 '^/Game/AI/BT_Guard  BehaviorTree$' "$orivane" graph /game/ai/bt_guard --project "$project"
mkdir "$scratch/odd"
cp -r "$sample" "$scratch/odd/bad"$'\xff'
ln -s "bad"$'\xff' "$scratch/odd/link"
for path in "$scratch/odd/bad"$'\xff' "$scratch/odd/bad"$'\xff/Lantern.uproject' "$scratch/odd/link"; do
	expect "a path that is not UTF-8" 3 'cannot open the project: .*is not valid UTF-8' "$orivane" console -c 'Orivane.EnumSearch term=x' -p "$path"
done
expect "nor is the current folder" 3 'is not valid UTF-8' env --chdir="$scratch/odd/bad"$'\xff' "$orivane" search BB_
[ "$(find "$scratch/odd" -mindepth 1 -maxdepth 1 | wc -l)" -eq 2 ] || { echo "FAILED: something was made beside the project"; failures=$((failures + 1)); }
expect "info counts" 0 'packages' "$orivane" info --project "$project"
expect "info tells how changes would be noticed" 0 '^changes +(watching \(inotify\)|folder times, because )' "$orivane" info --project "$project"
expect "info as JSON" 0 '^\{"name":"Lantern"' "$orivane" info --json --project "$project"
expect "the sample is clean" 0 '0 error' "$orivane" check --project "$project"

expect "material names, read from the registry" 0 '^  AssetName +MI_Brick +Material$' "$orivane" search MI_Brick -f Material -p "$project"
expect "a class that is not known leaves no blanks" 0 '^/Game/Materials/MI_Brick$' "$orivane" search MI_Brick -f Material -p "$project"
sed -i 's/SearchMode=0/SearchMode=1/' "$project/Config/DefaultGame.ini"
expect "material parameters, loaded" 0 'ScalarParameter +Wetness' "$orivane" search Wetness -f Material -p "$project"
expect "systems that nobody loaded" 1 '0 asset' "$orivane" search Sparks -f NiagaraSystem -p "$project"
expect "systems in memory" 0 'EmitterName +Sparks' "$orivane" search Sparks -f NiagaraSystem -p "$project" --preload /Game/FX
expect "every command brings packages into memory" 0 '"preloaded":6' "$orivane" info --json -p "$project" --preload /Game/FX
expect "a path that is not there" 2 "preload: the project has no package or folder '/Game/Fx/NS_X'" \
	"$orivane" call asset_search '{"term":"x"}' -p "$project" --preload /Game/Fx/NS_X
expect "settings with what they do" 0 'about +Additional directories to exclude' "$orivane" info --settings -p "$project"
truncate -s 257M "$project/Docs/Huge.md"
expect "a text file that is too large" 0 'Docs/Huge\.md:1:1: warning: .*256 MiB.* \[text-too-large\]' "$orivane" check -p "$project"
expect "is not passed over in silence" 0 '^1 file.* Docs/Huge\.md \(larger' "$orivane" search Health -f Text -p "$project"
expect "by no way to search" 0 'Docs/Huge\.md \(larger' "$orivane" console -c 'Orivane.TextSearch term=Health' -p "$project"
rm "$project/Docs/Huge.md"
expect "the sample in memory is as clean" 0 '0 error' "$orivane" check -p "$project" --preload /Game

rm -rf "$project/Intermediate"
touch "$project/Intermediate"
expect "a cache that cannot be written" 0 "cache cannot be written.*: .*/Intermediate/AssetRegistry.cache \(.+\), .*\(.+\)" \
	env XDG_CACHE_HOME=/dev/null "$orivane" paths BT_ -p "$project"
rm "$project/Intermediate"

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
printf '{"varnel_package": 1, "assets": [], "dependencies": [], "blueprint_index": [], "objects": [{{{]}' >"$project/Content/Broken/Bare.vasset"
expect "of a package without assets too" 1 'Content/Broken/Bare\.vasset:1:[0-9]+: error: .* \[' "$orivane" check -p "$project"
expect "a wrong version" 1 'Content/Broken/Version\.vasset:1:[0-9]+: error: .* \[package-version\]' "$orivane" check -p "$project"
expect "a tree that holds itself" 1 'BT_Loop\.vasset:1:1: error: .* is below itself \[tree-cycle\]' "$orivane" check -p "$project"
expect "and is searched all the same" 0 'BT_Loop  BehaviorTree' "$orivane" search BT_Loop -f BehaviorTree --object-memory 1 -p "$project"
expect "a settings line" 1 'Config/DefaultGame\.ini:[0-9]+:1: error: ' "$orivane" check -p "$project"
expect "a script class without a parent" 1 'Script/Odd\.vscript:1:[0-9]+: error: .*Nowhere' "$orivane" check -p "$project"
cp "$project/Content/AI/BT_Guard.vasset" "$project/Content/Broken/BT_Renamed.vasset"
sed 's/"name": *"BT_Guard"/"name": "BT_Gaurd"/' "$project/Content/AI/BT_Guard.vasset" >"$project/Content/Broken/BT_Gaurd.vasset"
cp "$project/Content/AI/BT_Guard.vasset" "$project/Content/Broken/BT_Loud.VASSET"
expect "a dependency that is missing" 1 'Content/Data/Tables/DT_Items\.vasset:1:1: warning: .* /Game/Legacy/DT_OldPrices, .* \[missing-dependency\]' "$orivane" check -p "$project"
expect "a file that was renamed by hand" 1 'BT_Renamed\.vasset:1:1: warning: .* is BT_Guard \[misnamed-file\]' "$orivane" check -p "$project"
expect "an asset without its object" 1 'BT_Gaurd\.vasset:1:1: warning: .* the asset BT_Gaurd, .* \[no-object\]' "$orivane" check -p "$project"
expect "an extension in capitals" 1 'BT_Loud\.VASSET:1:1: warning: .* lower case \[extension\]' "$orivane" check -p "$project"
expect "faults as annotations" 1 '^::warning file=.*DT_Items\.vasset,line=1,col=1,title=missing-dependency::it depends on ' "$orivane" check --format github -p "$project"
expect "paths from the current folder" 1 '^\.\./Config/DefaultGame\.ini:[0-9]+:1: ' env -C "$project/Content" "$orivane" check
expect "faults as JSON" 1 '^\{"errors":[1-9][0-9]*,"warnings":' "$orivane" check --json -p "$project"
expect "the rest is still found" 0 'DataTable' "$orivane" search Health -p "$project"
expect "a search names the faults" 0 'fault\(s\) in project files.*: Config/DefaultGame\.ini:[0-9]+:1: error: .*; see: orivane check' "$orivane" search Health -p "$project"


[ -n "$(cd "$project/Docs" && "$orivane" search Health 2>/dev/null)" ] || { echo "FAILED: found upward"; failures=$((failures + 1)); }
printf '{"term":"Health"}' | "$orivane" call asset_search - -p "$project" 2>/dev/null | grep -q '"success":true' ||
	{ echo "FAILED: arguments from standard input"; failures=$((failures + 1)); }
"$orivane" search Health -p "$project" 2>/dev/null | grep -q $'\033' && { echo "FAILED: colour in a pipe"; failures=$((failures + 1)); }

# Text to search for seconds in little room: one file under many names.
mkdir "$scratch/Long"
echo '{}' >"$scratch/Long/Long.uproject"
yes 'nothing is to be found in this line' | head -c 32M | iconv -t UTF-16 >"$scratch/Long/0.txt"
for number in $(seq 200); do ln "$scratch/Long/0.txt" "$scratch/Long/$number.txt"; done

# ends_soon WHY EXIT_CODE PATTERN COMMAND...   a command that would take long, stopped by "limit" (its own) or a signal after half a second
ends_soon() {
	local why=$1 code=$2 pattern=$3 signal=$4 start=$EPOCHREALTIME process actual
	shift 4
	"$@" >"$scratch/output" 2>&1 <&0 &
	process=$!
	[ "$signal" = limit ] || { sleep 0.5; kill -"$signal" "$process"; }
	wait "$process"
	actual=$?
	local took=$(((${EPOCHREALTIME/./} - ${start/./}) / 1000))
	if [ "$actual" -ne "$code" ] || [ "$took" -gt 2500 ] || { [ -n "$pattern" ] && ! grep -qE -- "$pattern" "$scratch/output"; }; then
		echo "FAILED: $why: exit $actual (expected $code) after $took ms"
		head -20 "$scratch/output"
		failures=$((failures + 1))
	fi
}
ends_soon "a search ends at its limit" 1 'did not complete within 1 s: narrow the search' limit "$orivane" search absent --time-limit 0.5 -p "$scratch/Long" </dev/null
ends_soon "a search ends at once on Ctrl-C" 130 '' INT "$orivane" search absent -p "$scratch/Long" </dev/null
ends_soon "and when it is terminated" 130 '' TERM "$orivane" call asset_search '{"term":"absent"}' -p "$scratch/Long" </dev/null

mkfifo "$scratch/silent"
sleep 60 >"$scratch/silent" &
writer=$!
for command in "console" "call asset_search -"; do
	ends_soon "$command waits for its input" 130 '' TERM "$orivane" $command -p "$project" <"$scratch/silent"
done
kill "$writer"
without() { # STREAM COMMAND...   with the stream closed
	case $1 in
	input) "${@:2}" <&- ;;
	output) "${@:2}" >&- ;;
	full) "${@:2}" >/dev/full ;;
	esac
}
expect "a console without input" 0 '' without input timeout 20 "$orivane" console -p "$project"
expect "a call without input" 1 'Invalid JSON command' without input timeout 20 "$orivane" call asset_search - -p "$project"
for command in "search Health" "graph $hub" "paths BT_" "report broken" "info" "info --dump-registry" "check --json" "call asset_search {}" "console -c help" \
	"search --help" "--version"; do
	options=(-p "$project")
	[[ $command != *--help && $command != --version ]] || options=()
	expect "$command on a full disk" 2 'cannot write to standard output: No space left on device' without full "$orivane" $command "${options[@]}"
done
printf '{"jsonrpc":"2.0","id":1,"method":"ping"}\n' >"$scratch/ping"
from_ping() { "$@" <"$scratch/ping"; }
expect "mcp on a full disk" 2 'cannot write to standard output: No space left on device' without full from_ping "$orivane" mcp -p "$project"
expect "an output that is closed" 2 'cannot write to standard output' without output "$orivane" search Health -p "$project"
head -c 70000 /dev/zero | tr '\0' x | cat - <(echo; echo help) | "$orivane" console -p "$project" >"$scratch/output" 2>&1
[ $? -eq 2 ] && grep -q '64 KiB and was skipped' "$scratch/output" && grep -q Orivane.AssetSearch "$scratch/output" ||
	{ echo "FAILED: a console line that is too long"; failures=$((failures + 1)); }

# Sanitizers need room and descriptors of their own: with them this says nothing.
few_files() (
	ulimit -n "$1"
	"${@:2}"
)
limited() (
	ulimit -v 30000
	"$@"
)
if limited "$orivane" --version >/dev/null 2>&1; then
	for command in "search Health" "graph $hub" "paths BT_" "report cycles" "info" "check" "console -c help" "mcp"; do
		expect "too little memory for $command" 2 '^orivane: (out of memory|no thread can be started)$' limited "$orivane" $command -p "$project"
	done
	"$orivane" search e -p "$project" >"$scratch/all" 2>/dev/null
	for number in 5 6 7 8 9 10 11 12 13 14 16; do # where it has enough it answers as ever, where not it says so
		few_files $number "$orivane" search e -p "$project" >"$scratch/few" 2>"$scratch/errors"
		code=$?
		few_files $number "$orivane" mcp -p "$project" >/dev/null 2>"$scratch/mcp" </dev/null
		[ $? -le 2 ] || { echo "FAILED: a server with $number descriptors"; head -3 "$scratch/mcp"; failures=$((failures + 1)); }
		{ [ $code -eq 0 ] && cmp -s "$scratch/all" "$scratch/few"; } ||
			{ [ $code -eq 2 ] && grep -q 'too many files are open' "$scratch/errors"; } ||
			{ echo "FAILED: with $number descriptors: exit $code"; head -3 "$scratch/errors"; failures=$((failures + 1)); }
	done
fi

echo "$failures failure(s)"
exit $((failures > 0))
