// Any text at all as a file of another program: read the same in parts, and what is read holds together.
import { isDeepStrictEqual } from 'node:util';
import fc from 'fast-check';
import { RecordReader } from '../../src/record/reader';
import { changed, checkRecord, outcome, parts, type FuzzedCore } from './core';

const time = fc.oneof(fc.nat(1000), fc.double(), fc.constantFrom<unknown>(null, 'x', '12', -1, undefined));
const name = fc.oneof(fc.constantFrom<unknown>('a', 'b', '', 'ä', '__proto__', null, 5), fc.string());

const event = fc.record(
  {
    ph: fc.constantFrom<unknown>('X', 'B', 'E', 'M', 'X', 'B', 'E', 'i', null),
    pid: fc.constantFrom<unknown>(1, 2, '1', null),
    tid: fc.constantFrom<unknown>(1, 2, 'x', undefined),
    name: fc.oneof(name, fc.constantFrom('thread_name', 'process_name')),
    ts: time,
    dur: time,
    args: fc.constantFrom<unknown>({ name: 'T' }, {}, null, 5),
  },
  { requiredKeys: [] },
);

const frame = fc.constantFrom<unknown>(0, 1, 2, '1', null, -1);
const profile = fc.record(
  {
    type: fc.constantFrom('evented', 'sampled'),
    name,
    unit: fc.constantFrom<unknown>('milliseconds', 'seconds', 'none', 'bytes', null),
    startValue: time,
    events: fc.array(
      fc.record({ type: fc.constantFrom<unknown>('O', 'C', 'x'), frame, at: time }, { requiredKeys: [] }),
    ),
    samples: fc.array(fc.oneof(fc.array(frame), frame)),
    weights: fc.array(time),
  },
  { requiredKeys: [] },
);

export const core: FuzzedCore = {
  inputs(kept) {
    const trace = fc.array(fc.oneof({ weight: 9, arbitrary: event }, fc.constant<unknown>(null)));
    const speedscope = fc.record({
      shared: fc.record({ frames: fc.array(fc.oneof(fc.record({ name }), fc.constant<unknown>(null))) }),
      profiles: fc.array(profile),
    });
    const made = fc
      .oneof(
        trace,
        trace.map((traceEvents) => ({ traceEvents })),
        speedscope,
        fc.jsonValue(),
      )
      .map((value) => Buffer.from(JSON.stringify(value) ?? ''));
    return fc.oneof(
      made,
      changed(kept, ['{', '}', '[', ']', ',', '"', ':', 'null', '1e400', '-', 'X', 'B', 'E']),
    );
  },

  check(input) {
    const read = (all: readonly Uint8Array[]) =>
      outcome(() => {
        const reader = new RecordReader();
        for (const part of all) reader.push(part);
        return reader.finish();
      });
    const whole = read([input]);
    if (typeof whole !== 'string') checkRecord(whole);
    if (!isDeepStrictEqual(read(parts(input)), whole)) throw new Error('it is read differently in parts');
  },
};
