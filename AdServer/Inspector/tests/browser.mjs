// node browser.mjs BUILD [IMAGES]: the whole page in Chromium with the example host behind it: remote, campaign to be
// served next, a video to its end with every beacon, a fault by a click, the archive read back by the browser driver's own
// reader, a saved log without a server, and the figures. Ends with 1 at the first thing that is wrong.

import assert from 'node:assert/strict';
import {spawn} from 'node:child_process';
import {mkdtempSync, existsSync, readFileSync, rmSync, writeFileSync} from 'node:fs';
import http from 'node:http';
import https from 'node:https';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {chromium} from 'playwright-core';

const [build, images] = process.argv.slice(2);
const campaigns = new URL('../../campaigns', import.meta.url).pathname;
const folder = mkdtempSync(join(tmpdir(), 'inspector-'));
const address = 'http://127.0.0.1:8444';
const children = [];

function start(program, words, environment = {}) {
  const child = spawn(join(build, 'bin', program), words, {stdio: ['ignore', 'ignore', 'inherit'], env: {...process.env, ...environment}});
  children.push(child);
  return child;
}

async function until(what, condition, limit = 60_000) {
  for (const end = Date.now() + limit; Date.now() < end; await new Promise((done) => setTimeout(done, 50)))
    if (await condition())
      return;
  throw new Error(`This did not happen: ${what}`);
}

function processorTime(child) {
  const fields = readFileSync(`/proc/${child.pid}/stat`, 'utf8').split(' ');
  return (Number(fields[13]) + Number(fields[14])) * 10; // ms
}

const server = start('ad-server', ['--campaigns', campaigns, '--state', join(folder, 'state'), '--ready-file', join(folder, 'ready'),
                                   '--live-view', 'http://127.0.0.1:8445']);
let browser;

async function host() {
  writeFileSync(join(folder, 'screen.json'), JSON.stringify({screens: [
    {name: 'TV', x: 0, y: 0, width: 1280, height: 720, logicalDpi: 96, logicalBaseDpi: 96, dpr: 1}]}));
  return start('tv-host', ['--authority', join(folder, 'state/authority.pem'), '-plugin', 'virlostream'], {
    QT_QPA_PLATFORM: `offscreen:configfile=${join(folder, 'screen.json')}`, QT_QUICK_BACKEND: 'software',
    QT_PLUGIN_PATH: join(build, 'lib/plugins'), XDG_DATA_HOME: join(folder, 'data'),
  });
}

/** How long after a key the first changed frame comes, as the stream's bytes say. */
async function keyToPixels(count) {
  let frames = 0;
  const stream = http.get('http://127.0.0.1:8445/live?width=640', (response) => response.on('data', (data) => {
    frames += data.includes('--frame') ? 1 : 0;
  }));
  const post = (key) => fetch('http://127.0.0.1:8445/key', {method: 'POST', headers: {Origin: address}, body: JSON.stringify({key})});
  const times = [];
  await new Promise((done) => setTimeout(done, 1500));
  for (let index = 0; index < count; ++index) {
    const before = frames;
    const begin = performance.now();
    await post(index % 2 ? 'Left' : 'Right');
    while (frames === before && performance.now() - begin < 2000)
      await new Promise((done) => setTimeout(done, 1));
    times.push(performance.now() - begin);
    await new Promise((done) => setTimeout(done, 400));
  }
  stream.destroy();
  return times.sort((one, other) => one - other);
}

async function manyRequests(count) {
  const agent = new https.Agent({keepAlive: true, maxSockets: 8, ca: readFileSync(join(folder, 'state/authority.pem'))});
  const one = (index) => new Promise((done, fail) => https.get(
    `https://localhost:8443/ping/video-queue/many/${index % 7}?tx=many${Math.floor(index / 50)}`, {agent},
    (response) => (response.resume(), response.on('end', done))).on('error', fail));
  for (let index = 0; index < count; index += 100)
    await Promise.all(Array.from({length: 100}, (_, offset) => one(index + offset)));
  agent.destroy();
}

async function run() {
  await until('the ad server starts', () => existsSync(join(folder, 'ready')) || server.exitCode !== null);
  assert.equal(server.exitCode, null, 'ad-server ended');
  const tv = await host();
  browser = await chromium.launch({executablePath: '/usr/bin/chromium', args: process.getuid() === 0 ? ['--no-sandbox'] : []});
  const context = await browser.newContext({viewport: {width: 1280, height: 800}, acceptDownloads: true, colorScheme: 'dark'});
  const page = await context.newPage();
  const problems = [];
  page.on('pageerror', (error) => problems.push(error.message));
  const shot = async (name) => images && page.screenshot({path: join(images, `${name}.jpg`), type: 'jpeg', quality: 88});
  const beacon = (event, section = 0) => page.locator('.ledger tr', {hasText: new RegExp(`^${event}`)}).nth(section);
  const totals = () => page.locator('.totals').innerText();

  await page.goto(address);
  await until('the ad of the start is shown', () => page.locator('.row', {hasText: '/ad/imp/'}).count());
  await page.locator('.screen').focus();
  await page.keyboard.press('Escape');
  await page.getByRole('button', {name: 'unfold'}).first().click();
  await until('the menu has the focus', () => page.locator('.row', {hasText: 'Continue'}).count());
  await page.getByRole('button', {name: 'fold', exact: true}).first().click();

  const times = await keyToPixels(21);
  console.log(`key to pixels: median ${times[10].toFixed(0)} ms, longest ${times[20].toFixed(0)} ms`);

  await page.getByLabel('Placement').selectOption('LevelUp');
  await page.getByLabel('Campaign').selectOption('video-queue.json');
  await until('the campaign is next', () => page.getByText('video-queue.json is next at LevelUp', {exact: false}).count());
  await page.locator('.screen').focus();
  await page.keyboard.press('ArrowLeft');
  await page.keyboard.press('Enter');
  await until('the first video’s midpoint is received', async () => /received/.test(await beacon('midpoint').innerText().catch(() => '')));
  assert.match(await totals(), /✖ 0 missing\s*⚠ 0 doubled/, 'a fault during playback');
  await beacon('midpoint').getByRole('button').click();
  await shot('inspector-playing');
  const before = [processorTime(server), Date.now()];
  await until('the second video is complete', async () => /received/.test(await beacon('complete', 1).innerText().catch(() => '')));
  const share = (processorTime(server) - before[0]) / (Date.now() - before[1]) * 100;
  console.log(`ad-server with a page connected while a video plays: ${share.toFixed(1)} % of a core`);
  const played = await totals();
  assert.match(played, /✖ 0 missing\s*⚠ 0 doubled\s*⇅ 0 out of order/);
  assert.equal(await page.locator('.ledger tr.good').count(), 12, 'every beacon of the two videos is green');

  await beacon('midpoint').getByRole('button').click();
  await page.getByRole('radio', {name: 'once'}).check();
  await page.getByRole('button', {name: '500'}).click();
  await until('the fault is in force', () => page.locator('.faults li', {hasText: '/midpoint'}).count());
  await page.getByLabel('Placement').selectOption('VideoQueue');
  await page.getByLabel('Campaign').selectOption('video-queue.json');
  await page.getByRole('button', {name: 'Ask'}).click();
  await until('the row is red', () => page.locator('.ledger tr.bad', {hasText: 'midpoint'}).count());
  assert.match(await totals(), /✖ 1 missing/);
  await until('the fault, which applies once, is gone', async () => await page.locator('.faults li', {hasText: '/midpoint'}).count() === 0);
  await page.locator('.ledger tr.bad button').click();
  await page.getByRole('tab', {name: 'Response'}).click();
  await shot('inspector-fault');

  await page.getByRole('tree').focus();
  const chosen = await page.getByRole('tree').getAttribute('aria-activedescendant');
  await page.keyboard.press('ArrowUp');
  await until('the arrow moves the choice', async () => await page.getByRole('tree').getAttribute('aria-activedescendant') !== chosen);
  await page.locator('.row', {hasText: '/vast/'}).first().click();
  await page.getByRole('tab', {name: 'VAST'}).click();
  await until('the document is explained', () => page.locator('.explanation', {hasText: 'this element is not read'}).count());

  const save = async (name) => {
    const [download] = await Promise.all([page.waitForEvent('download'), page.getByRole('button', {name, exact: true}).click()]);
    const file = join(folder, download.suggestedFilename());
    await download.saveAs(file);
    return file;
  };
  const archive = await save('HAR');
  const entries = JSON.parse(readFileSync(archive, 'utf8')).log.entries;
  const asked = entries.find((entry) => entry.request.url.includes('/ad/req'));
  const reader = await browser.newContext();
  await reader.routeFromHAR(archive, {notFound: 'abort'});
  const replayed = await (await reader.newPage()).goto(asked.request.url);
  assert.equal(await replayed.text(), asked.response.content.text, 'the archive is read back');
  await reader.close();

  const log = await save('Log');
  const withoutServer = await context.newPage();
  await withoutServer.goto(`file://${join(build, 'bin/inspector.html')}`);
  await withoutServer.locator('input[type=file]').setInputFiles(log);
  await until('the log is judged as it was live', async () => /✖ 1 missing/.test(await withoutServer.locator('.totals').innerText()));

  tv.kill();
  await manyRequests(10_000);
  const many = await context.newPage();
  const begin = Date.now();
  await many.goto(address);
  await until('all requests are there', async () => /10\d{3}|[1-9]\d{4}/.test(String(await many.evaluate(
    () => document.querySelector('.row')?.getAttribute('aria-setsize')))));
  console.log(`page ready after ${entries.length + 10_000} requests: ${Date.now() - begin} ms`);
  assert.deepEqual(problems, []);
  console.log(`the page: ${(readFileSync(join(build, 'bin/inspector.html')).length / 1024).toFixed(0)} KiB`);
}

let good = true;
try {
  await run();
  console.log('1 passed, 0 failed');
} catch (error) {
  good = false;
  console.error(error);
  console.log('0 passed, 1 failed');
}
await browser?.close();
children.forEach((child) => child.kill());
rmSync(folder, {recursive: true, force: true, maxRetries: 5});
process.exit(good ? 0 : 1);
