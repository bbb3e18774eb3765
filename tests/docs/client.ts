// A client generated from docs/openapi.yaml, used against a recorder: every query, two sets. Prints
// one JSON document with the result of each query and set.
import createClient, {type Client} from 'openapi-fetch';
import type {PathsWithMethod} from 'openapi-typescript-helpers';
import type {paths} from './api.js';

type Query = PathsWithMethod<paths, 'get'>;
type Form<Uri extends PathsWithMethod<paths, 'post'>> =
    paths[Uri]['post']['requestBody']['content']['application/x-www-form-urlencoded'];
type Stream = Form<'/set_MainStreamInfo'>;

const kQueries = [
  '/get_LangInfo', '/get_BaseInfo', '/get_UserSecurity', '/get_LockOfPassword', '/get_MirrorInfo',
  '/get_MainStreamInfo', '/get_SubStreamInfo', '/get_NetWModeInfo', '/get_VCmsInfo',
  '/get_WifiInfo', '/get_GNetInfo', '/get_GB28181Info', '/get_cpu_usage', '/get_VersionInfo',
  '/get_SystemInfo', '/get_Login', '/get_LocalNetInfo', '/export_CfgFile',
] as const satisfies Query[];
// Does not compile if a query is missing above.
const complete: Exclude<Query, typeof kQueries[number]> extends never ? true : never = true;

const kStream: Stream = {ucFD_FrameRate: '15', uiFD_BitRate: '1024'};
// @ts-expect-error A part of a section is no form of its set: the rest would be wiped.
const part: Stream = {ucFD_FrameRate: '15'};

const kGbk = new TextDecoder('gbk');

function gbkCodes() {
  const codes = new Map<string, number[]>();
  for (let lead = 0x81; lead <= 0xfe; lead++) {
    for (let trail = 0x40; trail <= 0xfe; trail++) {
      const char = kGbk.decode(Uint8Array.of(lead, trail));
      if (char.length === 1 && !codes.has(char)) codes.set(char, [lead, trail]);
    }
  }
  return codes;
}

const kCodes = gbkCodes();

const percent = (text: string) =>
  [...text].flatMap((char) => kCodes.get(char) ?? [...new TextEncoder().encode(char)])
      .map((byte) => `%${byte.toString(16).padStart(2, '0')}`).join('');

const form = (values: Record<string, string> = {}) =>
  Object.entries(values).map(([name, value]) => `${name}=${percent(value)}`).join('&');

// The two queries whose replies are not JSON, see "x-not-json".
const mended = (path: string, text: string) => {
  if (path === '/get_VersionInfo') return text.replace('" "', '", "');
  const file = /^({ "strFD_CfgPara": )"([^]*)"(, "result": \d })$/.exec(text);
  return path === '/export_CfgFile' && file ? file[1] + JSON.stringify(file[2]) + file[3] : text;
};

// Replies state no character set: the configuration file is UTF-8, all others are GBK.
async function fetchText(request: Request) {
  const path = new URL(request.url).pathname;
  const reply = await fetch(request);
  const bytes = await reply.arrayBuffer();
  const text = (path === '/export_CfgFile' ? new TextDecoder() : kGbk).decode(bytes);
  return new Response(mended(path, text), {status: reply.status});
}

const recorder: Client<paths> = createClient<paths>({
  baseUrl: 'http://localhost', fetch: fetchText, bodySerializer: form,
  headers: {'Content-Type': 'application/x-www-form-urlencoded'},
});

async function readAll() {
  const values: Record<string, unknown> = {};
  for (const query of kQueries) values[query] = (await recorder.GET(query)).data;
  return values;
}

async function renameWifi() {
  const {data} = await recorder.GET('/get_WifiInfo');
  if (!data?.result) throw new Error('the recorder does not answer');
  const {result, ...wifi} = data;
  return recorder.POST('/set_WifiInfo', {body: {...wifi, strFD_SSID: '车队'}});
}

async function main() {
  const before = await readAll();
  const wifi = await renameWifi();
  const stream = await recorder.POST('/set_MainStreamInfo', {body: kStream});
  console.log(JSON.stringify({before, sets: [wifi.data, stream.data], after: await readAll()}));
}

await main();
