// Any list that a script may declare: what is read of it holds together.
import fc from 'fast-check';
import { readScript } from '../../src/record/script_reader';
import { checkRecord, outcome, type FuzzedCore } from './core';

const time = fc.oneof(fc.nat(20), fc.double(), fc.constantFrom<unknown>(null, 'x', -1, 1e999));
const interval = fc.oneof(
  { weight: 9, arbitrary: fc.record({ b: time, e: time }, { requiredKeys: [] }) },
  fc.constantFrom<unknown>(null, 5),
);
const name = fc.oneof(fc.constantFrom<unknown>('a', 'b', '€', '\u0100', null), fc.string());

const block: fc.Memo<unknown> = fc.memo((depth) =>
  fc.oneof(
    {
      weight: 9,
      arbitrary: fc.record(
        {
          name,
          time: fc.oneof({ weight: 5, arbitrary: fc.array(interval) }, fc.constantFrom<unknown>(null, {})),
          blocks:
            depth <= 1 ? fc.constantFrom<unknown>([], null, 5) : fc.array(block(depth - 1), { maxLength: 3 }),
        },
        { requiredKeys: [] },
      ),
    },
    fc.constantFrom<unknown>(null, 5, 'block', []),
  ),
);

export const core: FuzzedCore = {
  inputs: () =>
    fc
      .oneof({ weight: 9, arbitrary: fc.array(block(4), { maxLength: 4 }) }, fc.jsonValue())
      .map((threads) => Buffer.from(JSON.stringify(threads))),

  check(input) {
    const threads: unknown = JSON.parse(Buffer.from(input).toString());
    const read = outcome(() => readScript(threads));
    if (typeof read === 'string') {
      if (Array.isArray(threads)) throw new Error(`a list is refused: ${read}`);
    } else checkRecord(read);
  },
};
