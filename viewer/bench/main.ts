// Measures the page in Chromium with a million intervals and with five, and beside it the page of the npm package
// speedscope on the same records. Exit status 1 if the page misses what it promises.
import { appendFileSync, copyFileSync, mkdirSync, rmSync, statSync, writeFileSync } from 'node:fs';
import { cpus, loadavg } from 'node:os';
import { join } from 'node:path';
import { execFileSync } from 'node:child_process';
import { pathToFileURL } from 'node:url';
import type { Page } from 'playwright-core';
import { launchBrowser, painted } from '../tests/support/browser';
import { outputFolder } from '../output_folder';
import { builtPage, builtTool } from '../tests/support/built';
import { largeRecord } from '../tests/support/make_record';
import { measureFrames } from './frames';
import { pageMemory } from './memory';
import { measureFlameChart } from './flame_chart';
import { measureSearch } from './search';
import { measureStatistics } from './statistics';

const intervals = 1_000_000;
const threads = 8;
const rounds = 3;
const folder = join(outputFolder, 'bench');

const faults: string[] = [];

/** What the next figures are about. */
let subject = '';

function begin(what: string): void {
  subject = what;
  console.log(`${what}:`);
}

/** Prints a figure, adds it to the file of results if there is to be one, and remembers it if it is not as promised. */
function tell(what: string, figure: string, promise?: string, kept = true): void {
  console.log(
    `  ${what.padEnd(58)} ${figure.padStart(12)}${promise ? `   ${promise}${kept ? '' : '   MISSED'}` : ''}`,
  );
  const results = process.env.KEX_BENCH_RESULTS;
  if (results)
    appendFileSync(
      results,
      `${JSON.stringify({ name: `${subject}: ${what}`, shown: figure, promise: promise ?? '', kept })}\n`,
    );
  if (!kept) faults.push(what);
}

const milliseconds = (value: number) => `${value.toFixed(0)} ms`;
const median = (values: number[]) => [...values].sort((a, b) => a - b)[values.length >> 1]!;
const seconds = (value: number) => `${(value / 1000).toFixed(2)} s`;

/** A browser of its own for each measurement, so that none has warmed up for the next. */
async function inBrowser<Result>(work: (page: Page) => Promise<Result>): Promise<Result> {
  const browser = await launchBrowser();
  try {
    const page = await browser.newPage({ viewport: { width: 1600, height: 900 } });
    return await work(page);
  } finally {
    await browser.close();
  }
}

const pageAddress = pathToFileURL(join(folder, 'viewer.html')).href;

async function shownByScript(page: Page): Promise<number> {
  const start = performance.now();
  await page.goto(pageAddress);
  await page.locator('.chart canvas').waitFor();
  await painted(page);
  return performance.now() - start;
}

async function shownByFile(page: Page, record = 'profiler.js'): Promise<number> {
  await page.goto(pathToFileURL(builtPage).href);
  const start = performance.now();
  await page.locator('#open-file').setInputFiles(join(folder, record));
  await page.locator('.chart canvas, .refusal').first().waitFor({ timeout: 300_000 });
  await painted(page);
  return performance.now() - start;
}

async function shownBySpeedscope(page: Page, record = 'million.speedscope.json'): Promise<number> {
  const release = join('node_modules', 'speedscope', 'dist', 'release', 'index.html');
  await page.goto(pathToFileURL(join(process.cwd(), release)).href);
  await page.locator('text=Browse').first().waitFor();
  const start = performance.now();
  await page.locator('input[type=file]').setInputFiles(join(folder, record));
  await page.locator('text=Left Heavy').first().waitFor({ timeout: 300_000 });
  await painted(page);
  return performance.now() - start;
}

/** Pictures while the chart is moved and zoomed, then the most memory that the page has taken. */
async function tellFrames(page: Page, way: string, canvas: string, promise?: number): Promise<void> {
  const { moving, zooming } = await measureFrames(page, canvas);
  for (const [what, { median, p95 }] of [
    ['moved', moving],
    ['zoomed', zooming],
  ] as const)
    tell(
      `from picture to picture while it is ${what}, ${way}: p95`,
      milliseconds(p95),
      promise ? `at most ${promise} ms` : `median ${median.toFixed(0)} ms`,
      !promise || Math.round(p95) <= promise,
    );
}

/** One after the other, round by round, so that what else the machine does falls on all of them. */
async function measureFirstPictures(): Promise<void> {
  begin(
    `${intervals.toLocaleString('en')} intervals on ${threads} threads, first picture (median of ${rounds})`,
  );
  const byScript: number[] = [];
  const byFile: number[] = [];
  const bySpeedscope: number[] = [];
  for (let round = 0; round < rounds; ++round) {
    byFile.push(await inBrowser((page) => shownByFile(page)));
    bySpeedscope.push(await inBrowser((page) => shownBySpeedscope(page)));
    byScript.push(await inBrowser(shownByScript));
  }
  const [ours, theirs, script] = [median(byFile), median(bySpeedscope), median(byScript)];
  tell('the record chosen as a file', seconds(ours), 'at most 5 s', ours <= 5000);
  tell('the record beside the page as a script', seconds(script), 'at most 5 s', script <= 5000);
  tell('speedscope, the record converted, chosen as a file', seconds(theirs));
  const part = ours / theirs;
  tell('part that the viewer takes of that', part.toFixed(2), 'at most 0.18, 0.15 aimed at', part <= 0.18);
}

async function measureViewer(): Promise<void> {
  begin('The viewer, the same record');
  for (const [way, open] of [
    ['as a file', (page: Page) => shownByFile(page)],
    ['as a script', shownByScript],
  ] as const)
    await inBrowser(async (page) => {
      await open(page);
      await tellFrames(page, way, '.chart canvas', 33);
      await page.keyboard.press('3');
      await page.locator('.table-row').first().click();
      await painted(page);
      tell(
        `most memory of the page's process, ${way}`,
        `${pageMemory().toFixed(0)} MB`,
        'less than 1024 MB',
        pageMemory() < 1024,
      );
    });
}

async function measureSpeedscope(): Promise<void> {
  begin('speedscope, the same record, converted');
  await inBrowser(async (page) => {
    await shownBySpeedscope(page);
    tell("most memory of the page's process", `${pageMemory().toFixed(0)} MB`);
    await tellFrames(page, 'as a file', 'canvas');
  });
}

/** A record of so many copies of the one that is measured: more threads, which have run the same. */
function writeCopies(name: string, copies: number): void {
  const lines = largeRecord(intervals, threads).split('\r\n');
  const body = lines.slice(1, -2).join('\r\n') + '\r\n';
  const path = join(folder, name);
  writeFileSync(path, `${lines[0]}\r\n`);
  for (let copy = 0; copy < copies; ++copy) writeFileSync(path, body, { flag: 'a' });
  writeFileSync(path, ']\r\n', { flag: 'a' });
}

async function measureFiveMillion(): Promise<void> {
  begin('Five million intervals, chosen as a file');
  writeCopies('five.js', 5);
  const times: number[] = [];
  for (let round = 0; round < rounds; ++round)
    times.push(
      await inBrowser(async (page) => {
        const time = await shownByFile(page, 'five.js');
        if (round > 0) return time;
        const memory = pageMemory();
        tell("most memory of the page's process", `${memory.toFixed(0)} MB`, '400 MB aimed at');
        await tellFrames(page, 'as a file', '.chart canvas', 20);
        for (const text of ['write 3', '/query [12]/ > 0.5 ms']) {
          const { first, all, longest } = await measureSearch(page, text);
          tell(`first hit of "${text}"`, milliseconds(first), 'at most 100 ms', first <= 100);
          tell('all of its hits', milliseconds(all));
          tell(
            'the longest that the page stood still for it',
            milliseconds(longest),
            'at most 50 ms',
            longest <= 50,
          );
        }
        const { all, longest } = await measureStatistics(page);
        tell('statistics of all names', milliseconds(all));
        tell(
          'the longest that the page stood still for them',
          milliseconds(longest),
          'at most 50 ms',
          longest <= 50,
        );
        return time;
      }),
    );
  tell('first picture', seconds(median(times)), '1.5 s aimed at');
  rmSync(join(folder, 'five.js'));
}

async function measureLargeFile(): Promise<void> {
  const copies = 21;
  writeCopies('large.js', copies);
  const size = statSync(join(folder, 'large.js')).size / 2 ** 20;
  const all = `${(copies * intervals).toLocaleString('en')} intervals`;
  begin(`A record of ${size.toFixed(0)} MB, ${all}`);
  await inBrowser(async (page) => {
    tell('first picture', seconds(await shownByFile(page, 'large.js')));
    const said = await page.locator('.status, .refusal').first().innerText();
    tell('intervals shown', said.split(' ')[0]!, 'all', said.includes(all));
    tell("most memory of the page's process", `${pageMemory().toFixed(0)} MB`);
  });
  rmSync(join(folder, 'large.js'));
}

rmSync(folder, { recursive: true, force: true });
mkdirSync(folder, { recursive: true });
copyFileSync(builtPage, join(folder, 'viewer.html'));
writeFileSync(join(folder, 'profiler.js'), largeRecord(intervals, threads));
execFileSync(process.execPath, [
  builtTool,
  'speedscope',
  join(folder, 'profiler.js'),
  '-o',
  join(folder, 'million.speedscope.json'),
]);

const load = () => `load of the machine: ${loadavg()[0]!.toFixed(1)} on ${cpus().length} processors`;
console.log(load());
await measureFirstPictures();
await measureViewer();
await measureSpeedscope();
await measureFiveMillion();
await measureLargeFile();
begin('flame-chart-js on the same record, in a page of its own');
await inBrowser((page) => measureFlameChart(page, join(folder, 'profiler.js'), tell));
console.log(load());
if (faults.length > 0) {
  console.error(`bench viewer: missed: ${faults.join('; ')}`);
  process.exitCode = 1;
}
