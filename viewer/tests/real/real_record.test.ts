// Records as the DLL writes them: programs of this repository run under Wine, and the page shows what they left.
import { execFileSync, spawnSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, test } from 'vitest';
import { makeProfile, type Profile } from '../../src/record/profile';
import { statisticsByName } from '../../src/record/statistics';
import { readText } from '../../src/record/text_reader';
import { dropFile, launchBrowser, openViewer } from '../support/browser';
import { builtTool } from '../support/built';
import { spansOfChrome, spansOfSpeedscope } from '../support/validate';

const programs = process.env.KEXLIB_PROGRAMS;
const runner = process.env.KEXLIB_RUNNER;
if (!programs || !runner) throw new Error('these tests are started by ./kex test');

let folder: string;
let browser: Browser;
beforeAll(async () => {
  folder = mkdtempSync(join(tmpdir(), 'real records '));
  const sources = join(folder, 'sources');
  mkdirSync(join(sources, 'inner'), { recursive: true });
  for (const name of ['a.cpp', 'b.h', 'inner/c.cpp'])
    writeFileSync(join(sources, name), 'line\n'.repeat(1000));
  run('count_sources', 0, `Z:${sources.replaceAll('/', '\\')}`);
  browser = await launchBrowser();
});
afterAll(async () => {
  await browser.close();
  rmSync(folder, { recursive: true });
});

/** What endings.exe ends with. */
const endingsStatus = 7;

/** Runs a program, whose record would otherwise be the one of the program before. */
function run(program: string, exitStatus: number, ...texts: string[]): void {
  const { error, status, stderr } = spawnSync(runner!, [join(programs!, `${program}.exe`), ...texts], {
    cwd: folder,
    encoding: 'utf8',
  });
  if (error) throw error;
  expect({ status, stderr }).toEqual({ status: exitStatus, stderr: '' });
}

const bytesOf = (name: string) => readFileSync(join(folder, name));

function readWithoutProblems(name: string): Profile {
  const record = readText(bytesOf(name));
  expect(record.problems).toEqual([]);
  return makeProfile(record);
}

const countOf = (profile: Profile, name: string) =>
  statisticsByName(profile).find((row) => profile.names[row.name] === name)?.count ?? 0;

describe('The record of count_sources', () => {
  test.each(['counting.js', 'profiler.js'])('%s is read without a fault', (name) => {
    const profile = readWithoutProblems(name);
    // One thread may have counted everything before the other came to it.
    for (const { id } of profile.threads) expect(id).toBeGreaterThan(0);
    for (const file of ['a.cpp', 'b.h', 'c.cpp']) expect(countOf(profile, file)).toBe(1);
    expect(countOf(profile, 'read')).toBe(3);
    expect(countOf(profile, 'count')).toBe(4);
    for (let id = 0; id < profile.begin.length; ++id)
      if (profile.parent[id]! < 0) expect(profile.blocks[profile.block[id]!]!.depth).toBe(0);
  });

  test('is shown as a script and as text, with the same figures', async () => {
    const viewer = await openViewer(browser, { files: { 'profiler.js': bytesOf('profiler.js') } });
    const { page } = viewer;
    await page.keyboard.press('3');
    const figures = async () => {
      await page.locator('.table-row').nth(5).waitFor();
      return page.locator('.table-row').allInnerTexts();
    };
    const asScript = await figures();
    await dropFile(page, join(viewer.folder, 'profiler.js'));
    await expect.poll(() => page.locator('.status').innerText()).not.toContain('opened as a script');
    await page.keyboard.press('3');
    expect(await figures()).toEqual(asScript);
    expect(viewer.complaints).toEqual([]);
    await viewer.close();
  });

  test('goes through both exports', () => {
    const profile = readWithoutProblems('counting.js');
    const convert = (kind: string) =>
      execFileSync(process.execPath, [builtTool, kind, 'counting.js'], { cwd: folder, encoding: 'utf8' });
    for (const spans of [spansOfChrome(convert('chrome')), spansOfSpeedscope(convert('speedscope'))]) {
      expect(spans.length).toBe(profile.begin.length);
      expect(spans.filter(({ name }) => name === 'read').length).toBe(3);
    }
  });
});

describe('The record of a process', () => {
  test('that ended with a block open shows it as open', () => {
    run('endings', endingsStatus, 'exit');
    const profile = readWithoutProblems('profiler.js');
    expect(profile.blocks.map(({ name, count }) => [profile.names[name], count])).toEqual([
      ['closed', 1],
      ['open', 1],
    ]);
    expect([...profile.open]).toEqual([0, 1]);
  });

  test('that stopped profiling with a block open shows it as open', () => {
    run('endings', endingsStatus, 'stopped');
    expect([...readWithoutProblems('stopped.js').open]).toEqual([0, 1]);
  });

  test('that ended while a thread was always inside the profiler is whole', () => {
    run('endings', endingsStatus, 'busy_thread');
    const profile = readWithoutProblems('profiler.js');
    expect(profile.threads.length).toBe(2);
    expect(profile.names.some((name) => name.startsWith('busy '))).toBe(true);
  });
});
