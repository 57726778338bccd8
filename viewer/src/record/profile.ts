// What the viewer works on: each interval with the one that it ran in, laid out in rows, one for each thread and depth.
import { fillLostTimes } from './lost_times';
import { findParents, type Nesting } from './nesting';
import { sortBlocks, sortByParents } from './rows';
import type { RawRecord } from './record';

export interface Block {
  name: number;
  thread: number;
  /** The enclosing block, -1 at the top. */
  parent: number;
  depth: number;
  children: number[];
  /** Its intervals in time order: `Profile.ids` from `first`, `count` of them. */
  first: number;
  count: number;
}

/** Intervals that cannot overlap, in time order: ids from `first`, `count` of them. */
export interface Row {
  first: number;
  count: number;
}

export interface Thread {
  name: string;
  /** The number in its name; NaN if there is none. */
  id: number;
  rows: Row[];
  /** When its first block began; Infinity without blocks. */
  firstBegin: number;
  /** Milliseconds inside any block. */
  busy: number;
}

/** Columns by interval id. Ids go thread by thread, in each by depth, in each by time. */
export interface Profile {
  names: readonly string[];
  threads: Thread[];
  blocks: Block[];
  begin: Float64Array;
  /** For an interval that was never closed, the end that it is drawn to. */
  end: Float64Array;
  block: Int32Array;
  /** The interval that contains it, -1 at the top. */
  parent: Int32Array;
  /**
   * 1 for an interval that was never closed; 2 for one whose times are lost, which is drawn around what ran inside it and
   * is left out of the statistics.
   */
  open: Uint8Array;
  /** Milliseconds spent in the intervals directly inside it. */
  inner: Float64Array;
  ids: Int32Array;
  /** The last stamp of the record. */
  last: number;
  /** Times have all their digits, not the six of the library's records. */
  exact: boolean;
}

export const timesLost = 2;

/**
 * Takes the columns of times out of the record: they are let go one by one as soon as they have been copied, so that a
 * large record is not in memory twice.
 */
export function makeProfile(read: RawRecord, names: readonly string[] = read.names): Profile {
  const { record: raw, lost } = fillLostTimes(read);
  const nesting = findParents(raw);
  lost?.forEach((made, index) => {
    if (made) nesting.open[index] = timesLost;
  });
  const threads: Thread[] = raw.threads.map((name) => ({
    name,
    id: Number(/\d+$/.exec(name)?.[0] ?? NaN),
    rows: [],
    firstBegin: Infinity,
    busy: 0,
  }));
  const blocks: Block[] = raw.blocks.map((block) => ({ ...block, children: [] }));
  blocks.forEach((block, index) => blocks[block.parent]?.children.push(index));

  const ids = makeRows(threads, blocks, raw.begin, nesting);
  const count = ids.length;
  const begin = new Float64Array(count);
  for (let i = 0; i < count; ++i) begin[ids[i]!] = raw.begin[i]!;
  raw.begin = read.begin = none;
  const end = new Float64Array(count);
  for (let i = 0; i < count; ++i) end[ids[i]!] = nesting.end[i]!;
  raw.end = read.end = nesting.end = none;
  const open = new Uint8Array(count);
  for (let i = 0; i < count; ++i) open[ids[i]!] = nesting.open[i]!;
  const block = new Int32Array(count);
  blocks.forEach(({ first, count }, index) => {
    for (let i = first; i < first + count; ++i) block[ids[i]!] = index;
  });
  const parent = new Int32Array(count).fill(-1);
  const inner = new Float64Array(count);
  for (let i = 0; i < count; ++i) {
    const outer = nesting.parent[i]!;
    if (outer < 0) continue;
    const id = ids[i]!;
    parent[id] = ids[outer]!;
    inner[ids[outer]!]! += end[id]! - begin[id]!;
  }
  for (const thread of threads) {
    const [top] = thread.rows;
    if (!top || top.count === 0) continue;
    thread.firstBegin = begin[top.first]!;
    for (let id = top.first; id < top.first + top.count; ++id) thread.busy += end[id]! - begin[id]!;
  }
  const { last } = nesting;
  return {
    names,
    threads,
    blocks,
    begin,
    end,
    block,
    parent,
    open,
    inner,
    ids,
    last,
    exact: raw.exact ?? false,
  };
}

const none = new Float64Array(0);

/** Gives the threads their rows, and tells the id of each interval of the record. */
function makeRows(
  threads: readonly Thread[],
  blocks: readonly Block[],
  begin: Float64Array,
  { end, parent }: Nesting,
): Int32Array {
  const ids = new Int32Array(begin.length);
  const rawOfId = new Int32Array(begin.length);
  const sorting = { ids: rawOfId, begin, end };
  // Blocks of one thread and depth share a row.
  const blocksOfRow: Block[][][] = threads.map(() => []);
  for (const block of blocks) (blocksOfRow[block.thread]![block.depth] ??= []).push(block);
  let next = 0;
  threads.forEach((thread, index) => {
    for (const members of blocksOfRow[index]!) {
      const above = thread.rows[thread.rows.length - 1];
      const made = { first: next, count: members.reduce((sum, { count }) => sum + count, 0) };
      next += made.count;
      if (!above || !sortByParents(sorting, made, members, above, ids, parent))
        sortBlocks(sorting, made, members);
      // A block's intervals have the same order in the file and in the row, so its slice of `ids` is in file order.
      for (let id = made.first; id < next; ++id) ids[rawOfId[id]!] = id;
      thread.rows.push(made);
    }
  });
  return ids;
}

export function duration(profile: Profile, id: number): number {
  return profile.end[id]! - profile.begin[id]!;
}

/** Rounded stamps may leave a little less than nothing. */
export function selfTime(profile: Profile, id: number): number {
  return Math.max(0, duration(profile, id) - profile.inner[id]!);
}

/** The names from the top of the thread down to the block. */
export function pathOf(profile: Profile, block: number): string[] {
  const path: string[] = [];
  for (let at = block; at >= 0; at = profile.blocks[at]!.parent)
    path.push(profile.names[profile.blocks[at]!.name]!);
  return path.reverse();
}

/** The step in milliseconds from one stamp to the next at that time; 0 if there is none. */
export function stepAt(profile: Profile, time: number): number {
  return profile.exact ? 0 : resolutionAt(time);
}

/** A stamp has six digits: the step in milliseconds from one to the next at that time. */
export function resolutionAt(time: number): number {
  return time <= 0 ? 0 : 10 ** (Math.floor(Math.log10(time)) - 5);
}
