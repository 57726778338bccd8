// Where a record is damaged, times of a block may be lost while what ran inside it is there. The block is then taken to
// have run around that, so that what is inside it keeps its place.
import { firstWhere } from './bounds';
import type { RawBlock, RawRecord } from './record';

export interface Filled {
  record: RawRecord;
  /** 1 for an interval that was made up; undefined if none was. */
  lost: Uint8Array | undefined;
}

interface Times {
  begin: ArrayLike<number>;
  end: ArrayLike<number>;
  lost: boolean[];
}

export function fillLostTimes(record: RawRecord): Filled {
  if (record.problems.length === 0) return { record, lost: undefined };
  const inside: number[][] = record.blocks.map(() => []);
  record.blocks.forEach(({ parent }, index) => inside[parent]?.push(index));
  const filled = new Map<number, Times>();
  for (let index = record.blocks.length - 1; index >= 0; --index) {
    const times = fill(record, index, inside[index]!, filled);
    if (times) filled.set(index, times);
  }
  return filled.size === 0 ? { record, lost: undefined } : withTimes(record, filled);
}

/** The block's times with those made up; undefined if none are needed. */
function fill(
  record: RawRecord,
  index: number,
  inside: readonly number[],
  filled: ReadonlyMap<number, Times>,
): Times | undefined {
  const own = timesOf(record, record.blocks[index]!);
  const uncovered: { from: number; to: number }[] = [];
  for (const child of inside) {
    const { begin, end } = filled.get(child) ?? timesOf(record, record.blocks[child]!);
    for (let at = 0; at < begin.length; ++at) {
      const from = begin[at]!;
      const before = countUpTo(own.begin, from) - 1;
      if (before < 0 || (own.end[before] !== 0 && own.end[before]! < from))
        uncovered.push({ from, to: Math.max(from, end[at]!) });
    }
  }
  if (uncovered.length === 0) return undefined;

  uncovered.sort((a, b) => a.from - b.from);
  const around = timesOf(record, nearestWithTimes(record, index));
  const groupOf = (time: number) => `${countUpTo(own.begin, time)} ${countUpTo(around.begin, time)}`;
  const made = new Map<string, { from: number; to: number }>();
  for (const { from, to } of uncovered) {
    const key = groupOf(from);
    const group = made.get(key);
    if (group) group.to = Math.max(group.to, to);
    else made.set(key, { from, to });
  }
  const all = [
    ...Array.from(own.begin, (from, at) => ({ from, to: own.end[at]!, lost: false })),
    ...[...made.values()].map((group) => ({ ...group, lost: true })),
  ].sort((a, b) => a.from - b.from);
  return {
    begin: all.map(({ from }) => from),
    end: all.map(({ to }) => to),
    lost: all.map(({ lost }) => lost),
  };
}

function nearestWithTimes(record: RawRecord, index: number): RawBlock | undefined {
  let block = record.blocks[record.blocks[index]!.parent];
  while (block && block.count === 0) block = record.blocks[block.parent];
  return block;
}

function timesOf({ begin, end }: RawRecord, block: RawBlock | undefined): Pick<Times, 'begin' | 'end'> {
  const { first, count } = block ?? { first: 0, count: 0 };
  return { begin: begin.subarray(first, first + count), end: end.subarray(first, first + count) };
}

/** How many of the sorted times are not after this one. */
const countUpTo = (times: ArrayLike<number>, time: number) =>
  firstWhere(0, times.length, (at) => times[at]! > time);

function withTimes(record: RawRecord, filled: ReadonlyMap<number, Times>): Filled {
  const counts = record.blocks.map(({ count }, index) => filled.get(index)?.begin.length ?? count);
  const total = counts.reduce((sum, count) => sum + count, 0);
  const begin = new Float64Array(total);
  const end = new Float64Array(total);
  const lost = new Uint8Array(total);
  let next = 0;
  const blocks = record.blocks.map((block, index) => {
    const first = next;
    const count = counts[index]!;
    const times = filled.get(index);
    begin.set(times?.begin ?? record.begin.subarray(block.first, block.first + count), first);
    end.set(times?.end ?? record.end.subarray(block.first, block.first + count), first);
    times?.lost.forEach((made, at) => (lost[first + at] = made ? 1 : 0));
    next += count;
    return { ...block, first, count };
  });
  return { record: { ...record, blocks, begin, end }, lost };
}
