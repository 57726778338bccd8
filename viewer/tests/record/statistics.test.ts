import { describe, expect, test } from 'vitest';
import { makeCallTree } from '../../src/record/call_tree';
import { change, compare } from '../../src/record/compare';
import { makeProfile } from '../../src/record/profile';
import {
  calleesOf,
  callersOf,
  countingNames,
  spreadOfName,
  statisticsByName,
  type NameRow,
  type Selection,
} from '../../src/record/statistics';
import { portion, toEnd } from '../../src/record/portions';
import { largeRecord, recordText } from '../support/make_record';
import { read, readBlocks } from '../support/reading';

const profile = makeProfile(
  read(
    recordText([
      {
        id: 4,
        blocks: [
          {
            name: 'work',
            time: [
              [0, 10],
              [20, 24],
              [30, 0],
            ],
            blocks: [
              {
                name: 'step',
                time: [
                  [1, 2],
                  [3, 6],
                  [21, 23],
                ],
              },
              { name: 'work', time: [[7, 9]] },
            ],
          },
        ],
      },
      { id: 8, blocks: [{ name: 'step', time: [[5, 40]] }] },
    ]),
  ),
);
const named = (name: string, selection: Selection = {}): NameRow | undefined =>
  statisticsByName(profile, selection).find((row) => profile.names[row.name] === name);
const nameOf = (name: string) => profile.names.indexOf(name);

describe('Statistics', () => {
  test('of a name', () => {
    expect(named('step')).toEqual({
      name: nameOf('step'),
      count: 4,
      open: 0,
      total: 41,
      self: 41,
      mean: 10.25,
      median: 2.5,
      min: 1,
      max: 35,
      deviation: Math.sqrt((9.25 ** 2 + 7.25 ** 2 + 8.25 ** 2 + 24.75 ** 2) / 4),
    });
  });

  test('leave open intervals out of the averages only', () => {
    expect(named('work')).toMatchObject({
      count: 4,
      open: 1,
      total: 26,
      self: 18,
      min: 2,
      median: 4,
      max: 10,
    });
    expect(named('work')!.mean).toBe(16 / 3);
  });

  test('count a name inside itself once when recursion is folded', () => {
    expect(named('work', { foldRecursion: true })).toMatchObject({ count: 3, total: 24, self: 18, min: 4 });
  });

  test('take what lies in a range at least in part, with its time in it', () => {
    expect(named('step', { range: { from: 1, to: 23 } })).toMatchObject({ count: 4, total: 24, max: 35 });
    const range = { from: 1.5, to: 22 };
    expect(named('step', { range })).toMatchObject({ count: 4, total: 21.5, self: 21.5, mean: 10.25 });
    expect(named('work', { range })).toMatchObject({ count: 3, total: 12.5, self: 6 });
    expect(named('work', { range: { from: 41, to: 50 } })).toBeUndefined();
  });

  test('take a block that fills a range, and leave out what only touches it', () => {
    const inside = { range: { from: 31, to: 33 } };
    expect(named('work', inside)).toMatchObject({ count: 1, open: 1, total: 2, self: 2, mean: NaN });
    expect(named('step', inside)).toMatchObject({ count: 1, total: 2, max: 35 });
    const touching = { range: { from: 10, to: 20 }, threads: new Set([0]) };
    expect(statisticsByName(profile, touching)).toEqual([]);
  });

  test('take the threads that are chosen', () => {
    expect(named('step', { threads: new Set([1]) })).toMatchObject({ count: 1, total: 35 });
  });

  test('of one name are those that it has among all', () => {
    for (const selection of [{}, { foldRecursion: true }, { range: { from: 1, to: 23 } }])
      for (const { name, ...figures } of statisticsByName(profile, selection))
        expect(toEnd(spreadOfName(profile, name, selection)).figures).toEqual(figures);
    const { durations, resolution } = toEnd(spreadOfName(profile, nameOf('step')));
    expect([[...durations], resolution]).toEqual([[1, 2, 3, 35], 10 ** -4]);
  });

  test('of one name are made in portions', () => {
    const long = 3 * portion;
    const many = readBlocks({
      name: 'short',
      time: Array.from({ length: long }, (_, at) => [10 * at, 10 * at + 1 + ((at * 7919) % 5)]),
    });
    const work = spreadOfName(many, 0);
    let portions = 0;
    let step = work.next();
    for (; !step.done; step = work.next()) ++portions;
    // Three to look at, three to sort, two times three to merge.
    expect(portions).toBe(12);
    const { durations, figures } = step.value;
    expect(figures).toMatchObject({ count: long, min: 1, max: 5, median: 3 });
    expect(durations.every((value, at) => at === 0 || value >= durations[at - 1]!)).toBe(true);
  });

  test('of all names are made in portions, and so are callers and callees', () => {
    const long = 3 * portion;
    const time = Array.from({ length: long }, (_, at) => [10 * at, 10 * at + 1] as [number, number]);
    const many = readBlocks({ name: 'outer', time: [[0, 10 * long]], blocks: [{ name: 'inner', time }] });
    const portionsOf = (work: Generator<void>) => [...work].length;
    // One to look at and one to sort for the single one; three to look at, three to sort, six to merge.
    expect(portionsOf(countingNames(many))).toBe(14);
    expect(portionsOf(callersOf(many, many.names.indexOf('inner')))).toBe(3);
    expect(portionsOf(calleesOf(many, many.names.indexOf('outer')))).toBe(3);
  });

  test('tell callers and callees', () => {
    expect(toEnd(callersOf(profile, nameOf('step')))).toEqual([
      { name: -1, count: 1, total: 35 },
      { name: nameOf('work'), count: 3, total: 6 },
    ]);
    expect(toEnd(calleesOf(profile, nameOf('work')))).toEqual([
      { name: nameOf('step'), count: 3, total: 6 },
      { name: nameOf('work'), count: 1, total: 2 },
    ]);
  });

  test('add up over a large record: self times make the time of the top', () => {
    const large = makeProfile(read(largeRecord(100_000, 8)));
    const self = statisticsByName(large).reduce((sum, row) => sum + row.self, 0);
    const top = large.threads.reduce((sum, thread) => sum + thread.busy, 0);
    expect(Math.abs(self / top - 1)).toBeLessThan(1e-3);
  });
});

describe('The merged flame graph', () => {
  const boxes = (options = {}) => {
    const tree = makeCallTree(profile, options);
    return tree.nodes.map((node, i) => [
      profile.names[node.name],
      node.depth,
      tree.begin[i],
      tree.end[i],
      node.self,
      node.count,
    ]);
  };

  test('joins blocks of one path, over threads, the heaviest to the left', () => {
    expect(boxes()).toEqual([
      ['step', 0, 0, 35, 35, 1],
      ['work', 0, 35, 59, 16, 3],
      ['step', 1, 35, 41, 6, 3],
      ['work', 1, 41, 43, 2, 1],
    ]);
  });

  test('joins a name with itself when recursion is folded', () => {
    expect(boxes({ foldRecursion: true, threads: new Set([0]) })).toEqual([
      ['work', 0, 0, 24, 18, 4],
      ['step', 1, 0, 6, 6, 3],
    ]);
  });

  test('shows the part of the time that lies in a range', () => {
    expect(boxes({ range: { from: 2, to: 8 }, threads: new Set([0]) })).toEqual([
      ['work', 0, 0, 6, 2, 1],
      ['step', 1, 0, 3, 3, 2],
      ['work', 1, 3, 4, 1, 1],
    ]);
  });
});

describe('A comparison', () => {
  test('matches blocks by their path and marks what is missing', () => {
    const before = readBlocks(
      {
        name: 'a',
        time: [
          [0, 2],
          [4, 6],
        ],
        blocks: [{ name: 'b', time: [[0, 1]] }],
      },
      { name: 'b', time: [[7, 8]] },
    );
    const after = readBlocks(
      { name: 'a', time: [[0, 3]], blocks: [{ name: 'c', time: [[0, 1]] }] },
      { name: 'b', time: [[7, 9]] },
    );
    const rows = compare(before, after);
    expect(rows.map(({ path, before, after }) => [path.join('/'), before?.total, after?.total])).toEqual([
      ['a', 4, 3],
      ['a/b', 1, undefined],
      ['b', 1, 2],
      ['a/c', undefined, 1],
    ]);
    expect(change(rows[0]!.before!.mean, rows[0]!.after!.mean)).toEqual({ difference: 1, ratio: 1.5 });
    expect(change(undefined, 1)).toEqual({ difference: NaN, ratio: NaN });
    expect(change(0, 1)).toEqual({ difference: 1, ratio: NaN });
  });

  test('is not led astray by separators in names', () => {
    const before = readBlocks({ name: 'a/b', time: [[0, 1]] });
    const after = readBlocks({ name: 'a', time: [[0, 2]], blocks: [{ name: 'b', time: [[0, 1]] }] });
    expect(compare(before, after).length).toBe(3);
  });
});
