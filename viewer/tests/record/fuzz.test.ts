import fc from 'fast-check';
import { describe, expect, test } from 'vitest';
import { cores, keptInputs, type CoreName } from '../fuzz/cores';

// A short form of what ./kex fuzz does.
describe.each(Object.keys(cores) as CoreName[])('The fuzzed core %s', (name) => {
  const { inputs, check } = cores[name];
  const kept = keptInputs(name);

  test('passes its kept inputs', () => {
    expect(kept.length).toBeGreaterThan(2);
    for (const { file, input } of kept) expect(() => check(input), file).not.toThrow();
  });

  test('passes inputs that are made, the same each time', () => {
    const all = kept.map(({ input }) => input);
    fc.assert(fc.property(inputs(all), check), { seed: 1, numRuns: 100 });
  });
});
