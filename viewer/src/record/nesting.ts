// Finds for each interval the one that it ran in, and where those end that were never closed.
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
  const end = record.end.slice();
  const open = new Uint8Array(begin.length);
  const parent = new Int32Array(begin.length).fill(-1);
  let last = 0;
  for (let i = 0; i < begin.length; ++i) last = Math.max(last, begin[i]!, end[i]!);

  const hasChildren = new Uint8Array(blocks.length);
  for (const block of blocks) if (block.parent >= 0) hasChildren[block.parent] = 1;

  // Parents come before their children, so the end of an interval is known when one inside it asks for it.
  blocks.forEach((block, index) => {
    for (let i = block.first; i < block.first + block.count; ++i) {
      const isLast = i === block.first + block.count - 1;
      // "b: 0, e: 0" is the first block of all while it is open, or one that took no time: with something inside it
      // and nothing after it, it is taken for open.
      if (end[i] === 0 && (begin[i]! > 0 || (isLast && hasChildren[index] === 1))) open[i] = 1;
      // Where the times of the block above were damaged, the one above that may do.
      for (let outer = blocks[block.parent]; outer && parent[i]! < 0; outer = blocks[outer.parent])
        parent[i] = containing(outer, begin[i]!, open[i] ? begin[i]! : end[i]!, begin, end);
      if (!open[i]) continue;
      const limit = isLast ? Infinity : begin[i + 1]!;
      end[i] = Math.min(limit, parent[i]! < 0 ? last : end[parent[i]!]!);
    }
  });
  return { end, open, parent, last };
}

/** The first interval of `outer` that contains `from` to `to`: with rounded stamps two may. */
function containing(
  outer: RawBlock,
  from: number,
  to: number,
  begin: Float64Array,
  end: Float64Array,
): number {
  let low = outer.first;
  let high = outer.first + outer.count;
  while (low < high) {
    const middle = (low + high) >>> 1;
    if (end[middle]! < to) low = middle + 1;
    else high = middle;
  }
  return low < outer.first + outer.count && begin[low]! <= from ? low : -1;
}
