// Finds for each interval the one that it ran in, and where those end that were never closed.
import { lowerBound } from './bounds';
import type { RawBlock, RawRecord } from './record';

export interface Nesting {
  /** Ends as they are drawn. */
  end: Float64Array;
  open: Uint8Array;
  /** Index of the containing interval, -1 at the top and where no interval contains it. */
  parent: Int32Array;
  last: number;
}

export function findParents(record: RawRecord): Nesting {
  const { blocks, begin } = record;
  const count = begin.length;
  const open = new Uint8Array(count);
  const parent = new Int32Array(count).fill(-1);
  let last = 0;
  let haveOpen = false;
  for (let i = 0; i < count; ++i) {
    if (begin[i]! > last) last = begin[i]!;
    if (record.end[i]! > last) last = record.end[i]!;
    else if (record.end[i] === 0) haveOpen = true;
  }
  const end = haveOpen ? record.end.slice() : record.end;

  const hasChildren = new Uint8Array(blocks.length);
  for (const block of blocks) if (block.parent >= 0) hasChildren[block.parent] = 1;

  // Parents come before their children, so the end of an interval is known when one inside it asks for it.
  for (let index = 0; index < blocks.length; ++index) {
    const block = blocks[index]!;
    const direct = blocks[block.parent];
    const stop = block.first + block.count;
    let near = direct ? direct.first : 0;
    for (let i = block.first; i < stop; ++i) {
      const isLast = i === stop - 1;
      // "b: 0, e: 0" is the first block of all while it is open, or one that took no time: with something inside it
      // and nothing after it, it is taken for open.
      const isOpen = end[i] === 0 && (begin[i]! > 0 || (isLast && hasChildren[index] === 1));
      const to = isOpen ? begin[i]! : end[i]!;
      if (direct) {
        near = firstEndFrom(end, direct, near, to);
        parent[i] = contains(direct, near, begin[i]!, begin);
        // Where the times of the block above were damaged, the one above that may do.
        for (let outer = blocks[direct.parent]; outer && parent[i]! < 0; outer = blocks[outer.parent])
          parent[i] = contains(outer, firstEndFrom(end, outer, outer.first, to), begin[i]!, begin);
      }
      if (!isOpen) continue;
      open[i] = 1;
      const limit = isLast ? Infinity : begin[i + 1]!;
      end[i] = Math.min(limit, parent[i]! < 0 ? last : end[parent[i]!]!);
    }
  }
  return { end, open, parent, last };
}

/**
 * The first interval of `outer`, from `near` on, that ends at `to` or later. The next one that is asked for is mostly near
 * the last one, so it looks in steps that double. With rounded stamps two may contain an interval: it is the first one.
 */
function firstEndFrom(end: Float64Array, outer: RawBlock, near: number, to: number): number {
  const stop = outer.first + outer.count;
  let low = near;
  for (let steps = 0; steps < 4; ++steps, ++low) if (low >= stop || end[low]! >= to) return low;
  let step = 1;
  while (low + step <= stop && end[low + step - 1]! < to) {
    low += step;
    step *= 2;
  }
  return lowerBound(end, low, Math.min(low + step, stop), to);
}

const contains = (outer: RawBlock, place: number, from: number, begin: Float64Array) =>
  place < outer.first + outer.count && begin[place]! <= from ? place : -1;
