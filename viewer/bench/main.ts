// Measures the page with a million intervals on eight threads, in Chromium, and beside it the page of the npm package
// speedscope on the same record. Exit status 1 if the page misses what it promises.
import { copyFileSync, mkdirSync, rmSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { execFileSync } from 'node:child_process';
import { pathToFileURL } from 'node:url';
import type { Browser, Page } from 'playwright-core';
import { chooseFile, launchBrowser } from '../tests/support/browser';
import { builtFolder, builtPage, builtTool } from '../tests/support/built';
import { largeRecord } from '../tests/support/make_record';
import { framesPerSecond } from './frames';
import { pageMemory } from './memory';
import { measureFlameChart } from './flame_chart';

const intervals = 1_000_000;
const threads = 8;
const rounds = 3;
const folder = join(builtFolder, 'bench');

const faults: string[] = [];

/** Prints a figure, and remembers it if it is not as promised. */
function tell(what: string, figure: string, promise?: string, kept = true): void {
  console.log(
    `  ${what.padEnd(58)} ${figure.padStart(12)}${promise ? `   ${promise}${kept ? '' : '   MISSED'}` : ''}`,
  );
  if (!kept) faults.push(what);
}

const median = (values: number[]) => [...values].sort((a, b) => a - b)[values.length >> 1]!;
const seconds = (value: number) => `${(value / 1000).toFixed(2)} s`;

/** A browser of its own for each measurement, so that none has warmed up for the next. */
async function inBrowser<Result>(work: (page: Page, browser: Browser) => Promise<Result>): Promise<Result> {
  const browser = await launchBrowser();
  try {
    const page = await browser.newPage({ viewport: { width: 1600, height: 900 } });
    return await work(page, browser);
  } finally {
    await browser.close();
  }
}

/** Resolves when the next picture is on the screen. */
const painted = (page: Page) =>
  page.evaluate(() => new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve))));

const pageAddress = pathToFileURL(join(folder, 'viewer.html')).href;

async function shownByScript(page: Page): Promise<number> {
  const start = performance.now();
  await page.goto(pageAddress);
  await page.locator('.chart canvas').waitFor();
  await painted(page);
  return performance.now() - start;
}

async function shownByFile(page: Page): Promise<number> {
  await page.goto(pathToFileURL(builtPage).href);
  const start = performance.now();
  await chooseFile(page, () => page.click('#open'), join(folder, 'profiler.js'));
  await page.locator('.chart canvas').waitFor();
  await painted(page);
  return performance.now() - start;
}

async function shownBySpeedscope(page: Page): Promise<number> {
  const release = join('node_modules', 'speedscope', 'dist', 'release', 'index.html');
  await page.goto(pathToFileURL(join(process.cwd(), release)).href);
  await page.locator('text=Browse').first().waitFor();
  const start = performance.now();
  await page.locator('input[type=file]').setInputFiles(join(folder, 'million.speedscope.json'));
  await page.locator('text=Left Heavy').first().waitFor({ timeout: 300_000 });
  await painted(page);
  return performance.now() - start;
}

async function measureViewer(): Promise<number> {
  console.log(
    `The viewer, ${intervals.toLocaleString('en')} intervals on ${threads} threads (median of ${rounds}):`,
  );
  const byScript: number[] = [];
  const byFile: number[] = [];
  for (let round = 0; round < rounds; ++round) {
    byScript.push(await inBrowser(shownByScript));
    byFile.push(await inBrowser(shownByFile));
  }
  tell(
    'first picture, the record beside the page as a script',
    seconds(median(byScript)),
    'at most 5 s',
    median(byScript) <= 5000,
  );
  tell(
    'first picture, the record chosen as a file',
    seconds(median(byFile)),
    'at most 5 s',
    median(byFile) <= 5000,
  );
  for (const [way, open] of [
    ['as a script', shownByScript],
    ['as a file', shownByFile],
  ] as const)
    await inBrowser(async (page) => {
      await open(page);
      const { moving, zooming } = await framesPerSecond(page, '.chart canvas');
      tell(`frames a second while it is moved, ${way}`, moving.toFixed(1), 'at least 30', moving >= 30);
      tell(`frames a second while it is zoomed, ${way}`, zooming.toFixed(1), 'at least 30', zooming >= 30);
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
  return median(byFile);
}

async function measureSpeedscope(ours: number): Promise<void> {
  console.log('speedscope on the same record, converted:');
  const times: number[] = [];
  for (let round = 0; round < rounds; ++round)
    times.push(
      await inBrowser(async (page) => {
        const time = await shownBySpeedscope(page);
        if (round === 0) tell("most memory of the page's process", `${pageMemory().toFixed(0)} MB`);
        return time;
      }),
    );
  const theirs = median(times);
  tell('first picture, the record chosen as a file', seconds(theirs));
  tell(
    'the viewer takes of that',
    `${((100 * ours) / theirs).toFixed(0)} %`,
    'less than 100 %',
    ours < theirs,
  );
}

async function measureLargeFile(): Promise<void> {
  const text = largeRecord(intervals, threads);
  const lines = text.split('\r\n');
  const body = lines.slice(1, -2).join('\r\n') + '\r\n';
  const copies = Math.ceil((500 * 1024 * 1024) / body.length);
  const path = join(folder, 'large.js');
  writeFileSync(path, `${lines[0]}\r\n`);
  for (let copy = 0; copy < copies; ++copy) writeFileSync(path, body, { flag: 'a' });
  writeFileSync(path, ']\r\n', { flag: 'a' });
  console.log(`A record of 500 MB, ${(copies * intervals).toLocaleString('en')} intervals:`);
  await inBrowser(async (page) => {
    await page.goto(pathToFileURL(builtPage).href);
    const start = performance.now();
    await chooseFile(page, () => page.click('#open'), path);
    await page.locator('.chart canvas, .refusal').first().waitFor({ timeout: 300_000 });
    await painted(page);
    tell('first picture', seconds(performance.now() - start));
    const said = await page.locator('.status, .refusal').first().innerText();
    const shown = said.includes(`${(copies * intervals).toLocaleString('en')} intervals`);
    tell('intervals shown', said.split(',').slice(0, 3).join(',').split(' ')[0]!, 'all', shown);
    tell("most memory of the page's process", `${pageMemory().toFixed(0)} MB`);
  });
  rmSync(path);
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

const ours = await measureViewer();
await measureSpeedscope(ours);
await measureLargeFile();
console.log('flame-chart-js on the same record, in a page of its own:');
await inBrowser((page) => measureFlameChart(page, join(folder, 'profiler.js'), tell));
if (faults.length > 0) {
  console.error(`bench viewer: missed: ${faults.join('; ')}`);
  process.exitCode = 1;
}
