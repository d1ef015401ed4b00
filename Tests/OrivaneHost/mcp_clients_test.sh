#!/usr/bin/env bash
# The protocol server with the client libraries that agents use. Usage: mcp_clients_test.sh ORIVANE SAMPLE_PROJECT
# The libraries are looked for in McpClients/node_modules, or in the folder that ORIVANE_MCP_CLIENTS names; without them the test is skipped (exit code 77).
set -u
orivane=$1
here=$(cd "$(dirname "$0")" && pwd)
modules=${ORIVANE_MCP_CLIENTS:-$here/McpClients/node_modules}

skip() {
	echo "skipped: $1"
	exit 77
}
command -v node >/dev/null || skip "node is not installed"
[ -d "$modules/@modelcontextprotocol/sdk" ] && [ -d "$modules/@modelcontextprotocol/client" ] ||
	skip "no client libraries in $modules; run npm install in $here/McpClients"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$here/McpClients/probe.mjs" "$here/McpClients/package.json" "$scratch/"
ln -s "$modules" "$scratch/node_modules"
cp -r "$2" "$scratch/Project"
# Text to search for seconds in little room: one file under many names.
mkdir -p "$scratch/Long/Content"
echo '{}' >"$scratch/Long/Long.uproject"
yes 'nothing is to be found in this line' | head -c 64M >"$scratch/Long/Content/0.txt"
for number in $(seq 2000); do ln "$scratch/Long/Content/0.txt" "$scratch/Long/Content/$number.txt"; done

cd "$scratch" && timeout 280 node probe.mjs "$orivane" "$scratch/Project" "$scratch/Long"
