import { expect, test } from 'vitest';
import { mostIntervals, RecordBuilder } from '../../src/record/builder';

test('A record of more intervals than are shown is cut, which is said once', () => {
  const builder = new RecordBuilder();
  const block = builder.addBlock(builder.addThread(), -1);
  for (let at = 0; at < mostIntervals; ++at)
    if (builder.addInterval(block, at, at + 1) !== undefined) expect.unreachable();
  expect(builder.intervals).toBe(30_000_000);
  expect(builder.addInterval(block, 40_000_000, 40_000_001)).toBe(
    'more than 30,000,000 intervals: the rest is left out',
  );
  expect(builder.addInterval(block, 40_000_001, 40_000_002)).toBeUndefined();
  expect(builder.intervals).toBe(30_000_000);
});
