import { spawnSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { afterAll, beforeAll, describe, expect, test } from 'vitest';
import { builtTool } from '../support/built';
import { deepRecord, largeRecord, recordText } from '../support/make_record';
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
  writeFileSync(join(folder, 'deep.js'), deepRecord(10_000));
  writeFileSync(
    join(folder, 'long name.js'),
    recordText([{ id: 4, blocks: [{ name: 'x'.repeat(10_000), time: [[0, 1]] }] }]),
  );
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

  test("of another program's file", () => {
    run('chrome', 'before.js', '-o', 'trace.json');
    run('speedscope', 'before.js', '-o', 'scope.json');
    const { stdout } = run('csv', 'before.js');
    for (const name of ['trace.json', 'scope.json'])
      expect(run('csv', name)).toEqual({ status: 0, stdout, stderr: '' });
    expect(run('compare', 'trace.json', 'slower.js', '--slower', '1.2').status).toBe(1);
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

  test('of ten thousand levels shows the ends of their paths', () => {
    expect(run('compare', 'deep.js', 'deep.js', '--slower', '1.2')).toEqual({
      status: 0,
      stderr: '',
      stdout: expect.stringMatching(/\n10000 blocks, 0 shown\n$/) as string,
    });
    const { stdout } = run('compare', 'deep.js', 'deep.js', '--all');
    expect(stdout).toContain('\nn > n > n > n > … (9984) > n > n > n > n > n > n > n > n > n > n > n > n  ');
  });

  test('keeps names of 10 kB from pushing the figures away', () => {
    const { stdout } = run('compare', 'long name.js', 'before.js');
    for (const line of stdout.split('\n')) expect(line.length).toBeLessThan(320);
  });
});

describe('The guard for builds', () => {
  /** A record of the blocks `a`, each given by its intervals. */
  function guard(before: Times | string, after: Times | string, ...texts: string[]) {
    const make = (name: string, times: Times | string) =>
      writeFileSync(
        join(folder, name),
        typeof times === 'string'
          ? times
          : recordText([{ id: 4, blocks: Object.entries(times).map(([name, time]) => ({ name, time })) }]),
      );
    make('guard before.js', before);
    make('guard after.js', after);
    const { status, stdout } = run('compare', 'guard before.js', 'guard after.js', ...texts);
    const lines = stdout.trimEnd().split('\n').slice(2);
    const at = lines.findIndex((line) => / blocks?, \d+ shown$/.test(line));
    return {
      status,
      blocks: lines.slice(0, at).map((line) => line.replace(/^(.*?)  .*  (.*)$/, '$1: $2')),
      summary: lines.slice(at + 1),
    };
  }
  type Times = Record<string, [number, number][]>;
  const fifth = ['--slower', '1.2'];

  test('passes what did not grow beyond the ratio', () => {
    expect(run('compare', 'before.js', 'same.js', ...fifth).status).toBe(0);
    expect(run('compare', 'before.js', 'slower.js', '--slower', '1.6').status).toBe(0);
    expect(run('compare', 'before.js', 'slower.js', ...fifth, '--at-least', '31').status).toBe(0);
  });

  test('fails a mean, a total and a count that grew, each by itself', () => {
    const one: Times = { a: [[0, 10]] };
    expect(guard(one, { a: [[0, 15]] }, ...fifth)).toEqual({
      status: 1,
      blocks: ['a: slower, more in total'],
      summary: ['1 slower: FAILED', '1 more in total: FAILED'],
    });
    const often = Array.from({ length: 51 }, (_, i): [number, number] => [i * 20, i * 20 + 10]);
    expect(guard(one, { a: often }, ...fifth)).toEqual({
      status: 1,
      blocks: ['a: more in total, more often'],
      summary: ['1 more in total: FAILED', '1 more often: FAILED'],
    });
    expect(guard(one, { a: often.map(([b]) => [b, b + 0.1]) }, ...fifth, '--fail', 'slower')).toEqual({
      status: 0,
      blocks: ['a: more often'],
      summary: ['1 more often'],
    });
    expect(guard(one, { a: [[0, 15]] }, ...fifth, '--at-least', '16').status).toBe(0);
  });

  test('fails what took no time before, with a status of its own', () => {
    const none: Times = { a: [[5, 5]] };
    expect(guard(none, { a: [[5, 8]] }, ...fifth)).toEqual({
      status: 3,
      blocks: ['a: from zero'],
      summary: ['1 from zero: FAILED'],
    });
    expect(guard(none, { a: [[5, 8]] }, '--fail', 'from-zero').status).toBe(3);
    expect(guard(none, { a: [[5, 8]] }, ...fifth, '--at-least', '4').status).toBe(0);
    expect(guard(none, none, ...fifth).status).toBe(0);
  });

  test('fails what is gone, and what is new where that is asked for', () => {
    const [a, b]: Times[] = [{ a: [[0, 1]] }, { b: [[0, 1]] }];
    expect(guard(a!, b!, ...fifth)).toEqual({
      status: 5,
      blocks: ['a: gone', 'b: new'],
      summary: ['1 new', '1 gone: FAILED'],
    });
    expect(guard(a!, b!, '--fail', 'new').status).toBe(4);
    expect(guard(a!, b!, '--fail', 'new,gone').status).toBe(5);
    expect(guard(a!, b!).status).toBe(0);
    expect(guard(a!, recordText([]), ...fifth)).toMatchObject({ status: 5, summary: ['1 gone: FAILED'] });
  });

  test('fails a record that is damaged, and a block whose times are lost', () => {
    const whole = recordText([{ id: 4, blocks: [{ name: 'a', time: [[0, 1]] }] }]);
    const cut = whole.slice(0, whole.indexOf(']'));
    expect(guard(whole, cut, ...fifth)).toEqual({
      status: 6,
      blocks: [],
      summary: ['guard after.js: places that cannot be read: 2: FAILED'],
    });
    const lost = whole.replace('{b: 0, e: 1},', '{b: 0, e: x},');
    const summary = ['1 cannot be read: FAILED', 'guard after.js: places that cannot be read: 1: FAILED'];
    expect(guard(whole, lost, ...fifth)).toEqual({ status: 6, blocks: ['a: cannot be read'], summary });
    expect(guard(whole, lost, ...fifth, '--fail', 'slower').status).toBe(0);
    // Intervals that began and did not end, where they ended before.
    expect(guard({ a: [[1, 2]] }, { a: [[1, 0]] }, ...fifth)).toMatchObject({
      status: 6,
      blocks: ['a: cannot be read'],
    });
    expect(guard(whole, '', ...fifth).status).toBe(2);
  });

  test('takes what the rounding of late times accounts for as no change', () => {
    const late = (length: number, count = 1): Times => ({
      a: Array.from({ length: count }, (_, i) => [120_000 + 10 * i, 120_000 + 10 * i + length]),
    });
    // Stamps after 100 s are whole milliseconds: 2 ms may be 1 and 3 ms may be 2.
    expect(guard(late(2), late(3), ...fifth)).toEqual({ status: 0, blocks: ['a: 1.5'], summary: [] });
    expect(guard(late(2), late(5), ...fifth).status).toBe(1);
    expect(guard(late(0), late(1), ...fifth)).toMatchObject({ status: 0, summary: [] });
    expect(guard(late(0), late(3), ...fifth).status).toBe(3);
    // In the mean of many the rounding makes up for itself.
    expect(guard(late(2, 100), late(3, 100), ...fifth).status).toBe(1);
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
    [['csv', 'a', '--fail', 'new'], "belong to 'compare'"],
    [['compare', 'a', 'b', '--fail', 'worse'], "not 'worse'"],
    [['compare', 'a', 'b', '--fail', 'more-often'], '--fail more-often needs --slower RATIO'],
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
