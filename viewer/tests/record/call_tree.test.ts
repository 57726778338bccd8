import { describe, expect, test } from 'vitest';
import {
  bottomUp,
  makeCallTree,
  makeDifferenceTree,
  topDown,
  type TreeLine,
} from '../../src/record/call_tree';
import { makeProfile } from '../../src/record/profile';
import { deepRecord, largeRecord } from '../support/make_record';
import { read, readBlocks } from '../support/reading';

const profile = readBlocks(
  {
    name: 'load',
    time: [[0, 10]],
    blocks: [
      { name: 'read', time: [[0, 4]] },
      { name: 'parse', time: [[4, 9]], blocks: [{ name: 'read', time: [[5, 7]] }] },
    ],
  },
  {
    name: 'walk',
    time: [[20, 40]],
    blocks: [{ name: 'walk', time: [[21, 36]], blocks: [{ name: 'read', time: [[30, 31]] }] }],
  },
);

/** All lines, opened to the last level. */
const opened = (lines: TreeLine[], names = profile.names): unknown[] =>
  lines.map((line) => {
    const below = line.isLeaf ? [] : opened(line.open(), names);
    return [names[line.name], line.count, line.total, line.self, ...(below.length > 0 ? [below] : [])];
  });

describe('A call tree', () => {
  test('from the top has what ran inside, the heaviest first', () => {
    expect(opened(topDown(makeCallTree(profile)))).toEqual([
      ['walk', 1, 20, 5, [['walk', 1, 15, 14, [['read', 1, 1, 1]]]]],
      [
        'load',
        1,
        10,
        1,
        [
          ['parse', 1, 5, 3, [['read', 1, 2, 2]]],
          ['read', 1, 4, 4],
        ],
      ],
    ]);
  });

  test('from the bottom has who ran a name, with the part of its figures that belongs to each', () => {
    expect(opened(bottomUp(makeCallTree(profile)))).toEqual([
      ['walk', 2, 20, 19, [['walk', 1, 0, 14]]],
      [
        'read',
        3,
        7,
        7,
        [
          ['load', 1, 4, 4],
          ['parse', 1, 2, 2, [['load', 1, 2, 2]]],
          ['walk', 1, 1, 1, [['walk', 1, 1, 1]]],
        ],
      ],
      ['parse', 1, 5, 3, [['load', 1, 5, 3]]],
      ['load', 1, 10, 1],
    ]);
  });

  test('adds up, whichever end it is read from', () => {
    const tree = makeCallTree(makeProfile(read(largeRecord(20_000, 4))));
    const self = (lines: TreeLine[]): number => lines.reduce((sum, line) => sum + line.self, 0);
    const below = (lines: TreeLine[]): number =>
      self(lines) + lines.reduce((sum, line) => sum + below(line.open()), 0);
    expect(self(bottomUp(tree))).toBeCloseTo(below(topDown(tree)), 6);
    for (const line of bottomUp(tree).filter(({ isLeaf }) => !isLeaf))
      expect(self(line.open())).toBeLessThanOrEqual(line.self + 1e-6);
  });

  test('opens ten thousand levels one by one', () => {
    const tree = makeCallTree(makeProfile(read(deepRecord(10_000))));
    let levels = 1;
    for (let [line] = topDown(tree); !line!.isLeaf; [line] = line!.open()) ++levels;
    expect(levels).toBe(10_000);
    expect(bottomUp(tree)[0]!.open()[0]!.open()[0]!.count).toBe(9_998);
  });
});

describe('The flame graph of a difference', () => {
  test('has the blocks of both, as wide as each needs', () => {
    const before = readBlocks(
      {
        name: 'a',
        time: [[0, 10]],
        blocks: [
          { name: 'b', time: [[0, 8]] },
          { name: 'c', time: [[8, 10]] },
        ],
      },
      { name: 'gone', time: [[20, 23]] },
    );
    const after = readBlocks(
      { name: 'new', time: [[20, 24]] },
      {
        name: 'a',
        time: [[0, 10]],
        blocks: [
          { name: 'c', time: [[0, 9]] },
          { name: 'b', time: [[9, 10]] },
        ],
      },
    );
    const { tree, names } = makeDifferenceTree(before, after);
    expect(
      tree.nodes.map(({ name, parent, before, after }, i) => [
        names[name],
        parent,
        tree.begin[i],
        tree.end[i],
        before?.total,
        after?.total,
      ]),
    ).toEqual([
      ['a', -1, 0, 17, 10, 10], // 8 of b before and 9 of c after do not fit into 10
      ['new', -1, 17, 21, undefined, 4],
      ['gone', -1, 21, 24, 3, undefined],
      ['c', 0, 0, 9, 2, 9],
      ['b', 0, 9, 17, 8, 1],
    ]);
    expect(tree.rows).toEqual([
      { first: 0, count: 3 },
      { first: 3, count: 2 },
    ]);
  });

  test('joins names over the places that they have in each record', () => {
    const before = readBlocks({ name: 'x', time: [[0, 1]] }, { name: 'y', time: [[2, 4]] });
    const after = readBlocks({ name: 'y', time: [[2, 5]] }, { name: 'x', time: [[0, 1]] });
    const { tree, names } = makeDifferenceTree(before, after, { range: { from: 0, to: 4 } });
    expect(tree.nodes.map(({ name, before, after }) => [names[name], before?.total, after?.total])).toEqual([
      ['y', 2, 2],
      ['x', 1, 1],
    ]);
  });
});
