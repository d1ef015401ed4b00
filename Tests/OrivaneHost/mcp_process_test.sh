#!/usr/bin/env bash
# The protocol server as the process that an agent starts: pipes, signals, endings. Usage: mcp_process_test.sh ORIVANE SAMPLE_PROJECT
set -u
orivane=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export TSAN_OPTIONS="${TSAN_OPTIONS:-} report_thread_leaks=0" # an end in the middle of a call leaves the threads of the call behind
patience=20 # seconds until a process that should have ended or answered counts as hanging

cp -r "$2" "$scratch/Project"
project=$scratch/Project
mkdir "$scratch/Empty"
mkfifo "$scratch/in" "$scratch/out" "$scratch/unread"
# Text to search for seconds in little room: one file under many names.
mkdir -p "$scratch/Long/Content"
echo '{}' >"$scratch/Long/Long.uproject"
yes 'nothing is to be found in this line' | head -c 32M | iconv -t UTF-16 >"$scratch/Long/Content/0.txt"
for number in $(seq 200); do ln "$scratch/Long/Content/0.txt" "$scratch/Long/Content/$number.txt"; done

fail() {
	echo "FAILED: $1" | tee -a "$scratch/failures" # a file: some checks run in subshells
	shift
	[ $# -eq 0 ] || printf '%s\n' "$@" | cut -c1-400
}

request() { printf '{"jsonrpc":"2.0","id":%s,"method":"%s","params":%s}\n' "$1" "$2" "${3:-{\}}"; }
modern() { request "$1" "$2" '{"_meta":{"io.modelcontextprotocol/protocolVersion":"2026-07-28","io.modelcontextprotocol/clientCapabilities":{}}'"${3:-}}"; }
search() { request "$1" tools/call '{"name":"asset_search","arguments":{"term":"'"$2"'"}}'; }
handshake() {
	request 0 initialize '{"protocolVersion":"2025-11-25","capabilities":{},"clientInfo":{"name":"test","version":"0"}}'
	printf '{"jsonrpc":"2.0","method":"notifications/initialized"}\n'
}

# A server with a client that stays: start ARGUMENTS..., then say LINES, hear REPLY; end WHY checks that it has ended with exit code 0.
start() {
	timeout "$patience" bash -c 'echo $$ >"$0" && exec "$@"' "$scratch/id" "$orivane" mcp "$@" \
		<"$scratch/in" >"$scratch/out" 2>"${errors:-$scratch/errors}" &
	process=$!
	exec 8>"$scratch/in" 9<"$scratch/out"
}
say() { printf '%s\n' "$@" >&8; }
hear() { IFS= read -r -t "$patience" reply <&9 || reply='(silence)'; }
end() {
	wait "$process"
	local code=$?
	[ "$code" -eq 0 ] || fail "$1: exit $code" "$(cat "$scratch/errors")"
	exec 8>&- 9<&-
}

# transcript WHY PATTERNS ARGUMENTS...   says the lines of standard input; one pattern (extended regular expression) a line that comes back, in any order
transcript() {
	local why=$1 patterns=$2 lines heard='' pattern
	shift 2
	lines=$(cat)
	start "$@"
	say "$lines" &
	while read -r pattern; do
		hear
		heard+=$reply$'\n'
	done <<<"$patterns"
	wait $!
	exec 8>&-
	hear
	[ "$reply" = '(silence)' ] || fail "$why: one line too many" "$reply"
	end "$why"
	while read -r pattern; do
		grep -qE -- "$pattern" <<<"$heard" || fail "$why: no line like $pattern" "$heard"
	done <<<"$patterns"
	! grep -qvE '^(\{"jsonrpc":"2\.0",.*\})?$' <<<"$heard" || fail "$why: something else than messages" "$heard"
	printf '%s' "$heard" >"$scratch/output"
}

{
	modern 1 server/discover
	request 2 tools/list '{"_meta":{"io.modelcontextprotocol/protocolVersion":"1900-01-01","io.modelcontextprotocol/clientCapabilities":{}}}'
	echo 'not json'
	request 3 nope
	echo '[{"jsonrpc":"2.0","id":4,"method":"ping"}]'
	handshake
	request '"5"' tools/list
	modern 6 tools/list
} | transcript "both eras and bad lines" '"id":1,"result":\{"resultType":"complete".*"supportedVersions":\["2026-07-28"\]
"id":2,"error":\{"code":-32022,
"id":null,"error":\{"code":-32700,
"id":3,"error":\{"code":-32601,
"id":null,"error":\{"code":-32600,
"id":0,"result":\{"protocolVersion":"2025-11-25"
"id":"5","result":\{"tools":\[
"id":6,"result":\{"resultType":"complete".*"ttlMs"' --project "$project"

for option in "" --without-path-search; do
	{ handshake; request 1 tools/list; } | timeout "$patience" "$orivane" mcp $option --project "$project" >"$scratch/output"
	grep -c '"name":"asset_path_search"' "$scratch/output"
done | tr '\n' ' ' | grep -qx '1 0 ' || fail "the path search is offered unless it is left out" "$(cat "$scratch/output")"

printf '{"jsonrpc":"2.0","id":1,"method":"ping"}' | timeout "$patience" "$orivane" mcp --project "$project" >"$scratch/output" || fail "a pipe: exit $?"
grep -q '"id":1,"result":{}' "$scratch/output" || fail "the last line may lack its line break" "$(cat "$scratch/output")"
timeout "$patience" "$orivane" mcp --project "$project" </dev/null >"$scratch/output" || fail "nothing to say: exit $?"
timeout "$patience" "$orivane" mcp --project "$project" <&- >>"$scratch/output" || fail "a closed input: exit $?"
[ ! -s "$scratch/output" ] || fail "an answer to nothing" "$(cat "$scratch/output")"
timeout "$patience" "$orivane" mcp --project "$project" </dev/null >&- || fail "a closed output: exit $?"

{ head -c 5000000 /dev/zero | tr '\0' x; echo; request 1 ping; } |
	transcript "a line that is too long" '"id":null,"error":\{"code":-32600,.*longer
"id":1,"result":\{\}' --project "$project"
{ handshake; search 1 Health; modern 2 tools/call ',"name":"asset_search","arguments":{"term":"Health"}'; } |
	transcript "calls in both eras" '"id":0,
"id":1,"result":\{"content":.*"structuredContent":\{"messages":\[\{"type":"success".*"assets":\[\{"asset".*"isError":false
"id":2,"result":\{"resultType":"complete".*"assets":\[\{"asset"' --project "$project"
{ handshake; request 1 tools/call '{"name":"asset_search"}'; request 2 tools/call '{"name":"asset_search","arguments":[]}'; request 3 tools/call '{"name":"nope"}'; } |
	transcript "mistakes of callers" '"id":0,
"id":1,"result":.*"text":"Missing required parameter .term.\\nasset_search takes.*"isError":true
"id":2,"result":.*"text":"Invalid JSON command\\nFailed to parse command JSON.*"isError":true
"id":3,"error":\{"code":-32602,' --project "$project"
{ handshake; search 1 Health; request 2 ping; } |
	transcript "no project, and still alive" '"id":0,
"id":1,"result":.*"text":"The project cannot be opened: .*"isError":true
"id":2,"result":\{\}' --project "$scratch/Empty"
mkdir "$scratch/Late"
start --project "$scratch/Late"
{ handshake; search 1 Health; } >&8
hear; hear
[[ $reply == *'"id":1,'*'The project cannot be opened: '* ]] || fail "an empty folder" "$reply"
cp -r "$project"/. "$scratch/Late"
search 2 Health >&8
hear
[[ $reply == *'"id":2,'*'"isError":false'* ]] || fail "a project that comes later" "$reply"
exec 8>&-
end "a project that comes later"

{ handshake; request 1 tools/call '{"name":"asset_search","arguments":{"term":"e","max_total_hits":10000,"max_hits_per_asset_type":10000}}'; } |
	transcript "a limit of bytes" '"id":0,
"id":1,.*Answer limited to 16384 bytes: ([0-9]+ of [0-9]+ hits, )?[0-9]+ of [0-9]+ assets' --project "$project" --max-answer-bytes 16384
awk 'length > 16384 { exit 1 }' "$scratch/output" || fail "a line above the limit of bytes"

errors=$scratch/unread
exec 7<>"$scratch/unread" # open, and never read
start --project "$project"
unset errors
{ handshake; for id in $(seq 200); do search "$id" Health; done; } >&8 &
writer=$!
for count in $(seq 0 200); do hear; done
[[ $reply == *'"id":200,'* ]] || fail "200 calls while nobody reads standard error" "$reply"
wait "$writer"
exec 8>&-
end "200 calls while nobody reads standard error"
exec 7>&-

start --project "$project"
request 1 ping >&8
hear
exec 9<&- # nobody reads any more; standard input stays open
end "a client that has gone, nothing to say"

start --project "$project"
exec 9<&-
for id in $(seq 20); do request "$id" ping >&8; done 2>/dev/null
end "a client that has gone, answers under way"

for ending in "end of input" TERM INT; do
	start --project "$scratch/Long" --no-cache
	handshake >&8
	hear
	search 1 Health >&8
	request 2 ping >&8
	modern 3 tools/list >&8
	hear
	[[ $reply == *'"id":2,'* ]] || fail "ping is answered while a call runs" "$reply"
	hear
	[[ $reply == *'"id":3,'* ]] || fail "the tools are listed while a call runs" "$reply"
	if [ "$ending" = "end of input" ]; then exec 8>&-; else kill -"$ending" "$(cat "$scratch/id")"; fi
	end "$ending in the middle of a call"
done

start --project "$scratch/Long" --no-cache
handshake >&8
hear
search 1 Health >&8
sleep 0.3
moment=$EPOCHREALTIME
printf '{"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":1}}\n' >&8
request 2 tools/call '{"name":"asset_search","arguments":{"term":"x","include_asset_families":["Enum"]}}' >&8
hear
[[ $reply == *'"id":2,'*'"isError":false'* ]] || fail "a call behind a cancelled one" "$reply"
waited=$(((${EPOCHREALTIME/./} - ${moment/./}) / 1000))
[ "$waited" -lt 2000 ] || fail "a cancelled call holds up the next one for $waited ms"
exec 8>&-
end "after a cancelled call"

start --project "$scratch/Long" --no-cache --deadline 0.2
handshake >&8
hear
search 1 Health >&8
hear
[[ $reply == *'"id":1,'*'gave up after 1 s'*'"isError":true'* ]] || fail "a call that takes too long" "$reply"
request 2 ping >&8
hear
[[ $reply == *'"id":2,'* ]] || fail "and the server lives" "$reply"
exec 8>&-
end "after a deadline"

[ ! -s "$scratch/failures" ] || exit 1
echo "all passed"
