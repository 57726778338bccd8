import { describe, expect, test } from 'vitest';
import { measure } from '../../src/record/measure';
import { firstFrom, timeIn } from '../../src/record/range';
import { find, readBlocks } from '../support/reading';

const profile = readBlocks(
  {
    name: 'work',
    time: [
      [0, 10],
      [20, 30],
    ],
    blocks: [
      { name: 'step', time: [[2, 4]] },
      { name: 'work', time: [[5, 9]] },
      { name: 'none', time: [[20, 20]] },
    ],
  },
  { name: 'later', time: [[40, 50]] },
);
const measured = (from: number, to: number) =>
  measure(profile, { from, to }).map(({ name, count, total, self }) => [
    profile.names[name],
    count,
    total,
    self,
  ]);

describe('What lies in a span', () => {
  test('counts with the part that lies in it, a name inside itself once', () => {
    expect(measured(3, 25)).toEqual([
      ['work', 3, 12, 11],
      ['step', 1, 1, 1],
      ['none', 1, 0, 0],
    ]);
  });

  test('is a block that fills it', () => {
    expect(measured(6, 7)).toEqual([['work', 2, 1, 1]]);
  });

  test('is nothing between blocks and where they only touch', () => {
    expect(measured(10, 20)).toEqual([['none', 1, 0, 0]]);
    expect(measured(31, 39)).toEqual([]);
  });

  test('belongs to the threads that are chosen', () => {
    expect(measure(profile, { from: 0, to: 50 }, new Set())).toEqual([]);
  });

  test('is as long as its part of the range; -1 outside', () => {
    const step = find(profile, 'step', 2);
    expect(timeIn(profile, step, undefined)).toBe(2);
    expect(timeIn(profile, step, { from: 3, to: 9 })).toBe(1);
    expect(timeIn(profile, step, { from: 4, to: 9 })).toBe(-1);
    expect(timeIn(profile, step, { from: 0, to: 2 })).toBe(-1);
  });

  test('is found without looking at what ended before', () => {
    const { first } = profile.blocks[0]!;
    expect([0, 10, 10.5, 31].map((time) => firstFrom(profile, 0, time) - first)).toEqual([0, 0, 1, 2]);
  });
});
