// A record as the library writes it gives back what was written, from its text and from the script.
import { isDeepStrictEqual } from 'node:util';
import fc from 'fast-check';
import { readScript } from '../../src/record/script_reader';
import { readText } from '../../src/record/text_reader';
import { recordText, sixDigits, type BlockText, type ThreadText } from '../support/make_record';
import { bytes, tree } from '../support/reading';
import { checkRecord, type FuzzedCore } from './core';

/** Whether a name's lines cannot be taken for lines of the record: the writer escapes nothing. */
function isUnambiguous(name: string): boolean {
  const all = name.split('\n');
  return (
    !name.includes('\r\n') &&
    all.slice(0, -1).every((line) => !line.trimEnd().endsWith("',")) &&
    all.slice(1).every((line) => !/^[ \t]*(?:time: \[|blocks: \[$|\{$|\},?$|\],?$)/.test(line))
  );
}

/** A script has no such names: they would end its texts, or change. */
const scriptNames = /^[^'\\\r\n\x80-\x9f]*$/;

const name = fc
  .oneof(
    fc.constantFrom('a', 'b', "it's", "',", 'two\nlines', '{', 'time: [', '\x81\x5c'),
    fc.uint8Array({ maxLength: 12 }).map((data) => Buffer.from(data).toString('latin1')),
  )
  .filter(isUnambiguous);

/** Of one block: each begins after the end of the one before it. */
const times = fc
  .array(
    fc.oneof(
      fc.double({ min: 0, max: 1e9, noNaN: true }),
      fc.nat(1e6).map((n) => n / 100),
    ),
    { maxLength: 8 },
  )
  .map((stamps) => {
    const sorted = stamps.map((stamp) => Number(sixDigits(stamp))).sort((a, b) => a - b);
    return sorted.flatMap((begin, i): [number, number][] =>
      i % 2 === 0 ? [[begin, sorted[i + 1] ?? 0]] : [],
    );
  });

const leaf = fc.record({ name, time: times });
const block: fc.Memo<BlockText> = fc.memo((depth) =>
  depth <= 1 ? leaf : fc.record({ name, time: times, blocks: fc.array(block(depth - 1), { maxLength: 3 }) }),
);
const record = fc.array(fc.record({ id: fc.nat(0xffffffff), blocks: fc.array(block(4), { maxLength: 3 }) }), {
  maxLength: 4,
});

const asTree = (threads: readonly ThreadText[]) =>
  threads.map(({ id, blocks }) => ({ name: `Thread ${id}`, blocks: (blocks ?? []).map(asNode) }));

function asNode({ name, time, blocks }: BlockText): unknown {
  return { name, time, ...(blocks && blocks.length > 0 ? { blocks: blocks.map(asNode) } : {}) };
}

const namesOf = (blocks: readonly BlockText[]): string[] =>
  blocks.flatMap(({ name, blocks }) => [name, ...namesOf(blocks ?? [])]);

export const core: FuzzedCore = {
  inputs: () => record.map((threads) => Buffer.from(JSON.stringify(threads))),

  check(input) {
    const threads = JSON.parse(Buffer.from(input).toString()) as ThreadText[];
    const expected = asTree(threads);
    const text = recordText(threads, '\n');
    const read = readText(bytes(text));
    checkRecord(read);
    if (read.problems.length > 0) throw new Error(`${read.problems[0]!.where}: ${read.problems[0]!.what}`);
    if (!isDeepStrictEqual(tree(read), expected)) throw new Error('the text gives another record');
    if (!namesOf(threads.flatMap(({ blocks }) => blocks ?? [])).every((name) => scriptNames.test(name)))
      return;
    const script = readScript(new Function(`${text}; return threads;`)());
    if (!isDeepStrictEqual(tree(script), expected)) throw new Error('the script gives another record');
  },
};
