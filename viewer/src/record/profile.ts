// What the viewer works on: each interval with the one that it ran in, laid out in rows, one for each thread and depth.
import { fillLostTimes } from './lost_times';
import { findParents } from './nesting';
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

export function makeProfile(read: RawRecord, names: readonly string[] = read.names): Profile {
  const { record: raw, lost } = fillLostTimes(read);
  const count = raw.begin.length;
  const { end: rawEnd, open: rawOpen, parent: rawParent, last } = findParents(raw);
  lost?.forEach((made, index) => {
    if (made) rawOpen[index] = timesLost;
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

  // Blocks of one thread and depth share a row.
  const blocksOfRow: number[][][] = threads.map(() => []);
  blocks.forEach((block, index) => (blocksOfRow[block.thread]![block.depth] ??= []).push(index));
  const profile: Profile = {
    names,
    threads,
    blocks,
    begin: new Float64Array(count),
    end: new Float64Array(count),
    block: new Int32Array(count),
    parent: new Int32Array(count).fill(-1),
    open: new Uint8Array(count),
    inner: new Float64Array(count),
    ids: new Int32Array(count),
    last,
    exact: raw.exact ?? false,
  };
  const rawOfId = new Int32Array(count);
  let next = 0;
  threads.forEach((thread, index) => {
    for (const row of blocksOfRow[index]!) {
      const above = thread.rows[thread.rows.length - 1];
      const members = row.map((member) => blocks[member]!);
      const made = { first: next, count: members.reduce((sum, { count }) => sum + count, 0) };
      next += made.count;
      const sorting = { ids: rawOfId, begin: raw.begin, end: rawEnd };
      if (!above || !sortByParents(sorting, made, members, above, profile.ids, rawParent))
        sortBlocks(sorting, made, members);
      // A block's intervals have the same order in the file and in the row, so its slice of `ids` is filled in file order.
      for (let id = made.first; id < next; ++id) profile.ids[rawOfId[id]!] = id;
      thread.rows.push(made);
    }
  });
  blocks.forEach((block, index) => {
    for (let i = block.first; i < block.first + block.count; ++i) {
      const id = profile.ids[i]!;
      profile.begin[id] = raw.begin[i]!;
      profile.end[id] = rawEnd[i]!;
      profile.open[id] = rawOpen[i]!;
      profile.block[id] = index;
    }
  });
  for (let id = 0; id < count; ++id) {
    const parent = rawParent[rawOfId[id]!]!;
    if (parent < 0) continue;
    profile.parent[id] = profile.ids[parent]!;
    profile.inner[profile.ids[parent]!]! += profile.end[id]! - profile.begin[id]!;
  }
  for (const thread of threads) {
    const [top] = thread.rows;
    if (!top || top.count === 0) continue;
    thread.firstBegin = profile.begin[top.first]!;
    for (let id = top.first; id < top.first + top.count; ++id)
      thread.busy += profile.end[id]! - profile.begin[id]!;
  }
  return profile;
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
