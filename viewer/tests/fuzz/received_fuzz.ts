// What another document says it has read: a record that holds together comes through unchanged, any other value gives one
// that does, or is refused.
import { isDeepStrictEqual } from 'node:util';
import fc from 'fast-check';
import { receiveRecord } from '../../src/record/received';
import { checkRecord, outcome, type FuzzedCore } from './core';

const index = fc.oneof(fc.nat(4), fc.constantFrom<unknown>(-1, 0.5, 1e9, null, '0'));
const block = fc.oneof(
  {
    weight: 9,
    arbitrary: fc.record(
      { name: index, thread: index, parent: index, depth: index, first: index, count: index },
      { requiredKeys: [] },
    ),
  },
  fc.constant<unknown>(null),
);
const texts = fc.array(fc.oneof(fc.string({ maxLength: 3 }), fc.constantFrom<unknown>(null, '\u0100')), {
  maxLength: 4,
});
const times = fc.array(fc.oneof(fc.nat(20), fc.constantFrom(-1, 0.5)), { maxLength: 6 });
const problem = fc.constantFrom<unknown>({ where: 'line 1', what: 'x' }, {}, null, { where: 5 });
const received = fc.record(
  {
    names: texts,
    threads: texts,
    blocks: fc.array(block, { maxLength: 5 }),
    begin: times,
    end: times,
    problems: fc.array(problem, { maxLength: 3 }),
    moreProblems: index,
  },
  { requiredKeys: ['names', 'threads', 'blocks', 'begin', 'end', 'problems'] },
);

/** As a message brings it: columns are arrays of their own kind. */
function asMessage(value: unknown): unknown {
  if (typeof value !== 'object' || value === null) return value;
  const { begin, end } = value as { begin?: unknown; end?: unknown };
  const column = (list: unknown) => (Array.isArray(list) ? Float64Array.from(list as number[]) : list);
  return { ...value, begin: column(begin), end: column(end) };
}

export const core: FuzzedCore = {
  inputs: () =>
    fc
      .oneof({ weight: 9, arbitrary: received }, fc.jsonValue())
      .map((value) => Buffer.from(JSON.stringify(value))),

  check(input) {
    const message = asMessage(JSON.parse(Buffer.from(input).toString()));
    const record = outcome(() => receiveRecord(message));
    if (typeof record === 'string') return;
    checkRecord(record, 400);
    if (record.problems.length === 0 && !isDeepStrictEqual(receiveRecord(structuredClone(record)), record))
      throw new Error('a record that was received once is not received again');
  },
};
