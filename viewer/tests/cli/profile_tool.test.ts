import { spawnSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { afterAll, beforeAll, describe, expect, test } from 'vitest';
import { builtTool } from '../support/built';
import { largeRecord, recordText } from '../support/make_record';
import { spansOfChrome, spansOfSpeedscope } from '../support/validate';

let folder: string;
beforeAll(() => {
  folder = mkdtempSync(join(tmpdir(), 'profile tool '));
  const record = (mean: number) =>
    recordText([
      {
        id: 4,
        blocks: [
          {
            name: 'load',
            time: [
              [0, mean],
              [50, 50 + mean],
            ],
            blocks: [{ name: 'parse', time: [[0, 1]] }],
          },
        ],
      },
    ]);
  writeFileSync(join(folder, 'before.js'), record(10));
  writeFileSync(join(folder, 'same.js'), record(10.2));
  writeFileSync(join(folder, 'slower.js'), record(15));
  writeFileSync(join(folder, 'large.js'), largeRecord(100_000, 8));
  writeFileSync(join(folder, 'page.html'), '<!doctype html>\n');
  writeFileSync(join(folder, 'empty.js'), '');
  writeFileSync(join(folder, 'cut.js'), record(10).slice(0, 150));
  writeFileSync(
    join(folder, 'western.js'),
    Buffer.from(recordText([{ id: 4, blocks: [{ name: 'caf\xe9', time: [[0, 1]] }] }]), 'latin1'),
  );
});
afterAll(() => rmSync(folder, { recursive: true }));

function run(...texts: string[]) {
  const { status, stdout, stderr } = spawnSync(process.execPath, [builtTool, ...texts], {
    cwd: folder,
    encoding: 'utf8',
    maxBuffer: 1 << 28,
  });
  return { status, stdout, stderr };
}

describe('A conversion', () => {
  test('to Chrome trace events', () => {
    const { status, stdout, stderr } = run('chrome', 'large.js');
    expect([status, stderr]).toEqual([0, '']);
    expect(spansOfChrome(stdout).length).toBe(100_000);
  });

  test("to speedscope's form, into a file", () => {
    expect(run('speedscope', 'large.js', '-o', 'out.json')).toEqual({ status: 0, stdout: '', stderr: '' });
    expect(spansOfSpeedscope(readFileSync(join(folder, 'out.json'), 'utf8')).length).toBe(100_000);
  });

  test('to comma-separated values', () => {
    expect(run('csv', 'before.js').stdout.split('\r\n')[1]).toBe('"load",2,0,20,19,10,10,10,10,0');
  });

  test('reads names in the encoding that is told', () => {
    expect(run('csv', 'western.js').stdout).toContain('"café"');
    expect(run('csv', 'western.js', '--encoding', 'windows-1251').stdout).toContain('"cafй"');
  });

  test('of a cut record gives what is there and tells where it was cut', () => {
    const { status, stdout, stderr } = run('csv', 'cut.js');
    expect(status).toBe(0);
    expect(stdout).toContain('"parse",1,');
    expect(stderr).toContain('cut.js: line 10: the file ends before the record does');
  });
});

describe('A comparison', () => {
  test('lists every block on demand', () => {
    expect(run('compare', 'before.js', 'slower.js', '--all')).toEqual({
      status: 0,
      stderr: '',
      stdout: [
        'block          count         total ms         change  ratio  mean ms         change  ratio',
        '              before  after    before  after                  before  after',
        'load               2      2        20     30      10    1.5       10     15       5    1.5',
        'load > parse       1      1         1      1       0      1        1      1       0      1',
        '2 blocks, 2 shown',
        '',
      ].join('\n'),
    });
  });

  test('gives status 1 if a block is slower than the ratio, and names it', () => {
    const { status, stdout } = run('compare', 'before.js', 'slower.js', '--slower', '1.2');
    expect(status).toBe(1);
    expect(stdout).toMatch(/^load .*SLOWER$/m);
    expect(stdout).toMatch(/^2 blocks, 1 slower than 1.2 times$/m);
  });

  test('gives status 0 if none is', () => {
    expect(run('compare', 'before.js', 'same.js', '--slower', '1.2').status).toBe(0);
    expect(run('compare', 'before.js', 'slower.js', '--slower', '1.6').status).toBe(0);
    expect(run('compare', 'before.js', 'slower.js', '--slower', '1.2', '--at-least', '16').status).toBe(0);
  });
});

describe('What cannot be done is said in a sentence, with status 2', () => {
  test.each([
    [['chrome', 'none.js'], "there is no file 'none.js'"],
    [['chrome', '.'], 'that is a folder, not a record'],
    [['chrome', 'empty.js'], 'The file is empty.'],
    [['csv', 'page.html'], 'This is no profile record'],
    [['csv', 'before.js', '-o', 'no/such/folder'], "there is no file 'no/such/folder'"],
    [['csv', 'before.js', '--encoding', 'latin'], "there is no encoding 'latin'"],
    [[], 'a command is missing'],
    [['dance'], "there is no command 'dance'"],
    [['csv'], 'the record is missing'],
    [['csv', 'a', 'b'], "'csv' takes one record"],
    [['csv', 'a', '--slower', '2'], "belong to 'compare'"],
    [['compare', 'a'], "'compare' takes two records"],
    [['compare', 'a', 'b', '--slower', 'x'], "--slower takes a number above 0, not 'x'"],
    [['csv', '--what'], "Unknown option '--what'"],
  ])('%j', (texts, sentence) => {
    const { status, stdout, stderr } = run(...texts);
    expect([status, stdout]).toEqual([2, '']);
    expect(stderr).toContain(sentence);
    expect(stderr).not.toContain('    at ');
  });
});

test('The help lists the commands', () => {
  const { status, stdout } = run('--help');
  expect(status).toBe(0);
  for (const command of ['chrome', 'speedscope', 'csv', 'compare'])
    expect(stdout).toContain(`profile_tool ${command} `);
});
