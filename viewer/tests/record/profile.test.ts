import { describe, expect, test } from 'vitest';
import { makeProfile, resolutionAt, selfTime, timesLost, type Profile } from '../../src/record/profile';
import { statisticsByName } from '../../src/record/statistics';
import { largeRecord, recordText } from '../support/make_record';
import { find, read, readBlocks } from '../support/reading';

const spans = (profile: Profile, ids: Iterable<number>) =>
  [...ids].map((id) => [profile.begin[id], profile.end[id]]);

describe('An interval', () => {
  test('belongs to the interval of its parent that contains it', () => {
    const profile = readBlocks({
      name: 'outer',
      time: [
        [0, 3],
        [5, 8],
        [10, 20],
      ],
      blocks: [
        {
          name: 'inner',
          time: [
            [1, 2],
            [5, 6],
            [7, 8],
            [19, 20],
          ],
        },
      ],
    });
    const owners = [1, 5, 7, 19].map(
      (begin) => profile.begin[profile.parent[find(profile, 'inner', begin)]!],
    );
    expect(owners).toEqual([0, 5, 5, 10]);
    expect(selfTime(profile, find(profile, 'outer', 5))).toBe(1);
  });

  test('belongs to the first one where equal stamps leave a choice', () => {
    const profile = readBlocks({
      name: 'outer',
      time: [
        [4, 5],
        [5, 5],
        [5, 6],
      ],
      blocks: [{ name: 'inner', time: [[5, 5]] }],
    });
    expect(profile.parent[find(profile, 'inner', 5)]).toBe(find(profile, 'outer', 4));
  });

  test('whose parent is damaged keeps its place: the parent is drawn around what is inside', () => {
    const text = recordText([
      {
        id: 4,
        blocks: [
          {
            name: 'frame',
            time: [
              [0, 10],
              [20, 30],
              [40, 50],
            ],
            blocks: [
              {
                name: 'draw',
                time: [
                  [1, 9],
                  [21, 29],
                  [41, 49],
                ],
                blocks: [
                  {
                    name: 'line',
                    time: [
                      [2, 3],
                      [4, 5],
                      [22, 23],
                      [24, 25],
                      [42, 43],
                    ],
                  },
                  { name: 'text', time: [[26, 27]] },
                ],
              },
            ],
          },
        ],
      },
    ]);
    const draws = (damaged: string) => {
      const profile = makeProfile(read(damaged));
      expect(profile.begin.length).toBe([...profile.ids].length);
      const ids = [...profile.begin.keys()].filter(
        (id) => profile.names[profile.blocks[profile.block[id]!]!.name] === 'draw',
      );
      for (const begin of [2, 4, 22, 24, 42])
        expect(ids).toContain(profile.parent[find(profile, 'line', begin)]);
      expect(ids.map((id) => profile.begin[profile.parent[id]!])).toEqual([0, 20, 40]);
      const draw = statisticsByName(profile).find(({ name }) => profile.names[name] === 'draw');
      return [ids.map((id) => [profile.begin[id], profile.end[id], profile.open[id]]), draw?.count];
    };
    expect(draws(text.replace('{b: 21, e: 29}', '{b: 21, e: x}'))).toEqual([
      [
        [1, 9, 0],
        [22, 27, timesLost],
        [41, 49, 0],
      ],
      2,
    ]);
    expect(draws(text.replace('time: [{b: 1, e: 9}', 'tame: [{b: 1, e: 9}'))).toEqual([
      [
        [2, 5, timesLost],
        [22, 27, timesLost],
        [42, 43, timesLost],
      ],
      undefined,
    ]);
  });

  test('that was never closed ends with the one around it, at last with the record', () => {
    const profile = makeProfile(
      read(
        recordText([
          {
            id: 4,
            blocks: [
              {
                name: 'open',
                time: [
                  [1, 2],
                  [3, 0],
                ],
                blocks: [
                  {
                    name: 'inside',
                    time: [
                      [1, 1.5],
                      [4, 0],
                    ],
                  },
                ],
              },
            ],
          },
          { id: 8, blocks: [{ name: 'other', time: [[0, 50]] }] },
        ]),
      ),
    );
    const open = find(profile, 'open', 3);
    const inside = find(profile, 'inside', 4);
    expect([profile.end[open], profile.open[open]]).toEqual([50, 1]);
    expect([profile.end[inside], profile.open[inside], profile.parent[inside]]).toEqual([50, 1, open]);
    expect(profile.open[find(profile, 'open', 1)]).toBe(0);
  });

  test('"b: 0, e: 0" is open with something inside it, and took no time without', () => {
    const withInner = readBlocks({ name: 'a', time: [[0, 0]], blocks: [{ name: 'b', time: [[1, 2]] }] });
    expect([withInner.open[0], withInner.end[0]]).toEqual([1, 2]);
    const without = readBlocks({ name: 'a', time: [[0, 0]] }, { name: 'b', time: [[1, 2]] });
    expect([without.open[0], without.end[0]]).toEqual([0, 0]);
    const closed = readBlocks({
      name: 'a',
      time: [
        [0, 0],
        [1, 3],
      ],
      blocks: [{ name: 'b', time: [[1, 2]] }],
    });
    expect([closed.open[0], closed.end[0]]).toEqual([0, 0]);
  });
});

describe('A row', () => {
  test('holds the intervals of a depth in time order', () => {
    const profile = readBlocks(
      {
        name: 'a',
        time: [
          [0, 1],
          [4, 5],
          [5, 5],
        ],
      },
      {
        name: 'b',
        time: [
          [1, 2],
          [5, 6],
        ],
      },
      { name: 'c', time: [[2, 4]] },
    );
    const [row] = profile.threads[0]!.rows;
    expect(row).toEqual({ first: 0, count: 6 });
    expect(spans(profile, [0, 1, 2, 3, 4, 5])).toEqual([
      [0, 1],
      [1, 2],
      [2, 4],
      [4, 5],
      [5, 5],
      [5, 6],
    ]);
    const [a] = profile.blocks;
    expect(spans(profile, profile.ids.slice(a!.first, a!.first + a!.count))).toEqual([
      [0, 1],
      [4, 5],
      [5, 5],
    ]);
  });

  test('never overlaps, and each interval lies in its parent, for a large record', () => {
    const profile = makeProfile(read(largeRecord(100_000, 4)));
    for (const { rows } of profile.threads)
      for (const row of rows)
        for (let id = row.first + 1; id < row.first + row.count; ++id)
          if (profile.begin[id]! < profile.end[id - 1]!) expect.fail(`interval ${id} overlaps`);
    for (let id = 0; id < profile.begin.length; ++id) {
      const parent = profile.parent[id]!;
      if (parent < 0) expect(profile.blocks[profile.block[id]!]!.depth).toBe(0);
      else if (profile.begin[id]! < profile.begin[parent]! || profile.end[id]! > profile.end[parent]!)
        expect.fail(`interval ${id} is not inside its parent`);
    }
  });
});

test('Threads tell when they began and how long they were busy', () => {
  const profile = makeProfile(
    read(
      recordText([
        { id: 8 },
        {
          id: 4,
          blocks: [
            {
              name: 'a',
              time: [
                [2, 5],
                [6, 7],
              ],
            },
          ],
        },
      ]),
    ),
  );
  expect(profile.threads.map(({ id, firstBegin, busy }) => [id, firstBegin, busy])).toEqual([
    [8, Infinity, 0],
    [4, 2, 4],
  ]);
});

test('The resolution is the step of the sixth digit', () => {
  expect(
    [0, 0.5, 1, 999.999, 1000, 123456, 1.5e6].map((time) => Number(resolutionAt(time).toPrecision(6))),
  ).toEqual([0, 1e-6, 1e-5, 0.001, 0.01, 1, 10]);
});
