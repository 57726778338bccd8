import { describe, expect, test } from 'vitest';
import { compare } from '../../src/record/compare';
import { binEdges, countInBins } from '../../src/record/histogram';
import { toEnd } from '../../src/record/portions';
import { makeProfile, type Profile } from '../../src/record/profile';
import { spreadOf, type Range } from '../../src/record/statistics';
import { recordText } from '../support/make_record';
import { read, readBlocks } from '../support/reading';

const sorted = (...values: number[]) => Float64Array.from(values).sort();
const bins = (values: Float64Array, resolution: number) => {
  const edges = binEdges([values], resolution);
  return countInBins(values, edges).map((count, bin) => [Number(edges[bin]!.toPrecision(4)), count]);
};

describe('Bins', () => {
  test('are of equal width, no narrower than the resolution', () => {
    expect(bins(sorted(1, 1, 2, 4), 1)).toEqual([
      [1, 2],
      [2, 1],
      [3, 0],
      [4, 1],
    ]);
    const edges = binEdges([sorted(10, 105)], 0.001);
    expect(edges.length).toBe(48);
    expect(edges[1]! - edges[0]!).toBeCloseTo(2.022, 4);
  });

  test('hold what took no time from 0 to the resolution', () => {
    expect(bins(sorted(0, 0, 0.1, 0.3), 0.1)).toEqual([
      [0, 2],
      [0.1, 1],
      [0.2, 0],
      [0.3, 1],
    ]);
    expect(bins(sorted(0, 0), 0.01)).toEqual([[0, 2]]);
  });

  test('are of equal ratio over a wide span, the shortest ones together', () => {
    const edges = binEdges([sorted(0, 0.00001, 0.2, 1000)], 0.1);
    expect([edges[0], Number(edges[1]!.toPrecision(4)), Number(edges[2]!.toPrecision(4))]).toEqual([
      0, 0.1, 0.2,
    ]);
    expect(edges[40]! / edges[39]!).toBeCloseTo(10_000 ** (1 / 46), 6);
    expect(edges.length).toBeLessThanOrEqual(49);
    const counts = countInBins(sorted(0, 0.00001, 0.2, 1000), edges);
    expect([counts[0], counts[2], counts[counts.length - 1]]).toEqual([2, 1, 1]);
  });

  test('do not depend on the last digit of a difference', () => {
    // 0.3 is 0.29999999999999716 here
    expect(bins(sorted(0.1, 100.3 - 100, 0.2), 0.1)).toEqual([
      [0.1, 1],
      [0.2, 1],
      [0.3, 1],
    ]);
  });

  test('are the same for two sets, and none without durations', () => {
    const [one, two] = [sorted(1, 2), sorted(3)];
    const edges = binEdges([one, two, sorted()], 1);
    expect([countInBins(one, edges), countInBins(two, edges)]).toEqual([
      [1, 1, 0],
      [0, 0, 1],
    ]);
    expect(binEdges([sorted()], 1)).toEqual([]);
    expect(countInBins(sorted(), [])).toEqual([]);
  });
});

test('The durations of the blocks in a line of a comparison, with their resolution', () => {
  const before = makeProfile(
    read(
      recordText([
        {
          id: 4,
          blocks: [
            {
              name: 'a',
              time: [
                [0, 5],
                [10, 12],
                [20, 0],
              ],
            },
          ],
        },
        { id: 8, blocks: [{ name: 'a', time: [[1000, 1001]] }] },
      ]),
    ),
  );
  const after = readBlocks({ name: 'b', time: [[0, 1]] }, { name: 'a', time: [[1, 2]] });
  const [row] = compare(before, after);
  const durationsIn = (profile: Profile, blocks: readonly number[], range?: Range) => {
    const { durations, resolution } = toEnd(spreadOf(profile, (block) => blocks.includes(block), { range }));
    return { durations, resolution };
  };
  expect(durationsIn(before, row!.blocks.before)).toEqual({ durations: sorted(1, 2, 5), resolution: 0.01 });
  expect(durationsIn(after, row!.blocks.after)).toEqual({ durations: sorted(1), resolution: 10 ** -5 });
  expect(durationsIn(before, row!.blocks.before, { from: 1, to: 20 }).durations).toEqual(sorted(2, 5));
});
