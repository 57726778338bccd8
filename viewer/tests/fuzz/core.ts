// What is fuzzed here: a reader with any input, beside what is known of the result.
import fc from 'fast-check';
import { NoRecord, type RawRecord } from '../../src/record/record';

export interface FuzzedCore {
  /** Makes inputs, also from those that are kept. */
  inputs(kept: readonly Uint8Array[]): fc.Arbitrary<Uint8Array>;
  /** Throws if something is wrong. */
  check(input: Uint8Array): void;
}

/** What a reader gave: a record, or the sentence that there is none. Every other failure is a fault. */
export function outcome(read: () => RawRecord): RawRecord | string {
  try {
    return read();
  } catch (error) {
    if (error instanceof NoRecord) return error.message;
    throw error;
  }
}

/** The parts of a file as they may come: of one byte, or of a size that the bytes determine. */
export function parts(data: Uint8Array): Uint8Array[] {
  const size = data.reduce((sum, byte) => (sum * 31 + byte) % 251, data.length);
  const length = size % 4 === 0 ? 1 : size;
  const all: Uint8Array[] = [];
  for (let at = 0; at < data.length; at += length) all.push(data.slice(at, at + length));
  return all;
}

/** What later code relies on, whatever the file was. */
export function checkRecord(record: RawRecord, mostProblems = 200): void {
  const { names, threads, blocks, begin, end, problems, moreProblems } = record;
  const expect = (holds: boolean, what: string) => {
    if (!holds) throw new Error(what);
  };
  expect(begin.length === end.length, 'columns of two lengths');
  expect(problems.length <= mostProblems && moreProblems >= 0, 'too many problems');
  let next = 0;
  blocks.forEach(({ name, thread, parent, depth, first, count }, index) => {
    const where = `block ${index}: `;
    expect(name >= 0 && name < names.length, where + 'its name is none');
    expect(thread >= 0 && thread < threads.length, where + 'its thread is none');
    expect(parent >= -1 && parent < index, where + 'its parent comes later');
    expect(parent < 0 || blocks[parent]!.thread === thread, where + 'its parent is on another thread');
    expect(depth === (parent < 0 ? 0 : blocks[parent]!.depth + 1), where + 'a wrong depth');
    expect(count === 0 || (first >= 0 && first + count <= begin.length), where + 'no such intervals');
    for (let i = first; i < first + count; ++i) {
      expect(begin[i]! >= 0 && begin[i]! < Infinity && end[i]! < Infinity, where + 'a time that is none');
      expect(end[i] === 0 || end[i]! >= begin[i]!, where + 'an interval that ends before it begins');
      const before = i > first ? Math.max(begin[i - 1]!, end[i - 1]!) : 0;
      expect(begin[i]! >= before, where + 'intervals that overlap');
    }
    next += count;
  });
  expect(next === begin.length, 'intervals of no block');
  expect(new Set(names).size === names.length, 'a name that is there twice');
}

/** Kept inputs with pieces exchanged, left out and put in, among them those that mean something to the reader. */
export function changed(kept: readonly Uint8Array[], telling: readonly string[]): fc.Arbitrary<Uint8Array> {
  const piece = fc.oneof(
    fc.constantFrom(...telling).map((text) => Buffer.from(text, 'latin1')),
    fc.uint8Array({ maxLength: 8 }),
    fc.nat(1e6).map((number) => Buffer.from(String(number))),
  );
  const change = fc.record({ at: fc.nat(0xffff), remove: fc.nat(40), piece });
  const changes = fc.array(change, { minLength: 1, maxLength: 6 });
  return fc.tuple(fc.constantFrom(...kept), changes).map(([input, all]) => {
    let data: Uint8Array = input;
    for (const { at, remove, piece } of all) {
      const from = at % (data.length + 1);
      data = Buffer.concat([data.subarray(0, from), piece, data.subarray(from + (remove >> 1))]);
    }
    return data;
  });
}
