// What agents do with the server, through the client libraries that they are built on. Usage: node probe.mjs ORIVANE PROJECT LONG_PROJECT
// LONG_PROJECT is one whose search takes several seconds. Exit code 1 when a check fails.
import assert from 'node:assert/strict';
import { Client as ClientV1 } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport as TransportV1 } from '@modelcontextprotocol/sdk/client/stdio.js';
import { Client as ClientV2 } from '@modelcontextprotocol/client';
import { StdioClientTransport as TransportV2 } from '@modelcontextprotocol/client/stdio';

const [orivane, project, longProject] = process.argv.slice(2);
const search = (args) => ({ name: 'asset_search', arguments: args });

const clients = [
  { name: 'v1', Client: ClientV1, Transport: TransportV1, options: {}, call: (c, params, options) => c.callTool(params, undefined, options) },
  { name: 'v2 with a handshake', Client: ClientV2, Transport: TransportV2, options: {}, version: '2025-11-25' },
  { name: 'v2 that finds out', Client: ClientV2, Transport: TransportV2, options: { versionNegotiation: { mode: 'auto' } }, version: '2026-07-28' },
  { name: 'v2 without a handshake', Client: ClientV2, Transport: TransportV2, options: { versionNegotiation: { mode: { pin: '2026-07-28' } } }, version: '2026-07-28' },
];

async function connect(kind, folder) {
  const client = new kind.Client({ name: 'probe', version: '0' }, { capabilities: {}, ...kind.options });
  client.onerror = (error) => assert.fail(`the library complains: ${error}`);
  await client.connect(new kind.Transport({ command: orivane, args: ['mcp', '--project', folder], stderr: 'pipe' }));
  if (kind.version)
    assert.equal(client.getNegotiatedProtocolVersion(), kind.version);
  const call = kind.call ?? ((c, params, options) => c.callTool(params, options));
  return { client, call: (params, options) => call(client, params, options) };
}

async function checkAnswers(kind) {
  const { client, call } = await connect(kind, project);
  const { tools } = await client.listTools();
  assert.equal(tools[0].name, 'asset_search');
  assert.ok(client.getInstructions().includes('asset_search'));

  const found = await call(search({ term: 'Health' }));
  assert.ok(!found.isError);
  assert.ok(found.structuredContent.content.assets.length > 0);
  assert.deepEqual(JSON.parse(found.content[0].text), found.structuredContent);

  const mistaken = await call(search({}));
  assert.equal(mistaken.isError, true);
  assert.match(mistaken.content[0].text, /^Missing required parameter 'term'/);
  await assert.rejects(call({ name: 'nope', arguments: {} }), { code: -32602 });

  const answers = await Promise.all(Array.from({ length: 20 }, () => call(search({ term: 'Health' }))));
  for (const answer of answers)
    assert.deepEqual(answer.structuredContent, found.structuredContent);
  await client.close();
}

async function checkLongCalls(kind) {
  const { client, call } = await connect(kind, longProject);
  const abort = new AbortController();
  let answered = 0;
  const seen = [];
  const long = call(search({ term: 'Health' }), {
    signal: abort.signal,
    onprogress: ({ progress }) => {
      seen.push(progress);
      abort.abort('seen enough');
    },
  });
  const isModern = kind.version === '2026-07-28'; // where there is no ping
  const aside = Promise.all([client.listTools(), isModern ? client.discover() : client.ping()]).then(() => answered++);
  await assert.rejects(long, /seen enough/);
  assert.deepEqual(seen.length, 1);
  await aside;
  assert.equal(answered, 1);
  await client.listTools();
  await client.close();
}

for (const kind of clients) {
  for (const check of [checkAnswers, checkLongCalls]) {
    try {
      await check(kind);
      console.log(`passed: ${kind.name}, ${check.name}`);
    } catch (error) {
      console.log(`FAILED: ${kind.name}, ${check.name}\n${error.stack}`);
      process.exitCode = 1;
    }
  }
}
process.exit();
