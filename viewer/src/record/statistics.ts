import { portion, sortingNumbers, toEnd } from './portions';
import { selfTime, stepAt, timesLost, type Profile } from './profile';
import { firstFrom, timeIn } from './range';

export interface Range {
  from: number;
  to: number;
}

export interface Figures {
  /** All intervals, those included that were never closed. */
  count: number;
  open: number;
  /** Milliseconds, of a range those inside it; open intervals count up to the end that they are drawn to. */
  total: number;
  self: number;
  /** Of the closed intervals in their whole length; NaN if there are none. */
  mean: number;
  median: number;
  min: number;
  max: number;
  /** Standard deviation of all closed intervals (divided by their number). */
  deviation: number;
}

export interface Selection {
  /** Only intervals that lie inside at least in part. */
  range?: Range | undefined;
  /** Only these threads. */
  threads?: ReadonlySet<number> | undefined;
  /** Leaves out intervals that run inside one of the same name. */
  foldRecursion?: boolean | undefined;
}

/** Figures for each group of blocks; `groupOf` gives a block's group from 0 on, or -1 to leave it out. */
export function figuresOf(
  profile: Profile,
  groups: number,
  groupOf: (block: number) => number,
  selection: Selection = {},
): Figures[] {
  return toEnd(spreadsOf(profile, groups, groupOf, selection)).map(({ figures }) => figures);
}

/** How durations spread: what a histogram is made of. */
export interface Durations {
  /** Of the closed intervals, sorted. */
  durations: Float64Array;
  /** Milliseconds: the step of the record where the last of them ended, below which they cannot be told apart. */
  resolution: number;
}

/** Figures with the durations that they are drawn from. */
export interface Spread extends Durations {
  figures: Figures;
}

function* spreadsOf(
  profile: Profile,
  groups: number,
  groupOf: (block: number) => number,
  selection: Selection,
): Generator<void, Spread[]> {
  const { blocks, ids, begin, end, open } = profile;
  const { range } = selection;
  const result = Array.from({ length: groups }, () => ({
    count: 0,
    open: 0,
    total: 0,
    self: 0,
    mean: NaN,
    median: NaN,
    min: NaN,
    max: NaN,
    deviation: NaN,
  }));
  const groupOfBlock = blocks.map((block, index) =>
    selection.threads && !selection.threads.has(block.thread) ? -1 : groupOf(index),
  );
  const nested = selection.foldRecursion ? insideItself(profile.blocks) : undefined;
  const places = new Int32Array(groups + 1);
  blocks.forEach((block, index) => {
    const group = groupOfBlock[index]!;
    if (group >= 0) places[group + 1]! += block.count;
  });
  for (let group = 0; group < groups; ++group) places[group + 1]! += places[group]!;
  const next = places.slice();
  const closedDurations = new Float64Array(places[groups]!);
  const lastEnd = new Float64Array(groups);

  /** Counts some of a block's intervals. */
  const add = (index: number, from: number, to: number) => {
    const group = groupOfBlock[index]!;
    const figures = result[group];
    for (let i = from; i < to; ++i) {
      const id = ids[i]!;
      if (range && begin[id]! > range.to) break;
      const time = range ? timeIn(profile, id, range) : end[id]! - begin[id]!;
      if (time < 0) continue;
      const isLost = open[id] === timesLost;
      if (range) {
        const outer = profile.parent[id]! < 0 ? -1 : groupOfBlock[profile.block[profile.parent[id]!]!]!;
        if (figures && !isLost) figures.self += time;
        if (outer >= 0) result[outer]!.self -= time;
      } else if (!isLost) figures!.self += selfTime(profile, id);
      if (!figures || isLost || nested?.[index]) continue;
      ++figures.count;
      figures.total += time;
      if (open[id]) ++figures.open;
      else {
        closedDurations[next[group]!++] = end[id]! - begin[id]!;
        if (end[id]! > lastEnd[group]!) lastEnd[group] = end[id]!;
      }
    }
  };

  for (let index = 0; index < blocks.length; ++index) {
    const block = blocks[index]!;
    // In a range, what is inside a block of a group takes from the block's own time.
    if (groupOfBlock[index]! < 0 && !(range && (groupOfBlock[block.parent] ?? -1) >= 0)) continue;
    const stop = block.first + block.count;
    for (let i = range ? firstFrom(profile, index, range.from) : block.first; i < stop; i += portion) {
      add(index, i, Math.min(i + portion, stop));
      yield;
    }
  }
  for (const figures of result) figures.self = Math.max(0, figures.self);
  const spreads: Spread[] = [];
  for (let group = 0; group < groups; ++group) {
    const figures = result[group]!;
    const durations = closedDurations.subarray(places[group], next[group]);
    yield* sortingNumbers(durations);
    average(figures, durations);
    spreads.push({ figures, durations, resolution: stepAt(profile, lastEnd[group]!) });
  }
  return spreads;
}

/** Draws the averages from the sorted durations. */
function average(figures: Figures, durations: Float64Array): void {
  const { length } = durations;
  if (length === 0) return;
  let sum = 0;
  for (const value of durations) sum += value;
  const mean = sum / length;
  let squares = 0;
  for (const value of durations) squares += (value - mean) ** 2;
  figures.mean = mean;
  figures.median = (durations[(length - 1) >> 1]! + durations[length >> 1]!) / 2;
  figures.min = durations[0]!;
  figures.max = durations[length - 1]!;
  figures.deviation = Math.sqrt(squares / length);
}

/** 1 for each block, or node of a tree, that has its own name above it. A parent comes before its children. */
export function insideItself(blocks: readonly { name: number; parent: number }[]): Uint8Array {
  const nested = new Uint8Array(blocks.length);
  blocks.forEach((block, index) => {
    for (let at = block.parent; at >= 0; at = blocks[at]!.parent)
      if (blocks[at]!.name === block.name) {
        nested[index] = 1;
        break;
      }
  });
  return nested;
}

export interface NameRow extends Figures {
  name: number;
}

/** The figures of some blocks together, in portions. */
export function* spreadOf(
  profile: Profile,
  isCounted: (block: number) => boolean,
  selection: Selection = {},
): Generator<void, Spread> {
  const [spread] = yield* spreadsOf(profile, 1, (block) => (isCounted(block) ? 0 : -1), selection);
  return spread!;
}

/** The figures of one name, which take less time than those of all. */
export function spreadOfName(
  profile: Profile,
  name: number,
  selection: Selection = {},
): Generator<void, Spread> {
  return spreadOf(profile, (block) => profile.blocks[block]!.name === name, selection);
}

/** A row for each name that occurs in the selection, in portions. */
export function* countingNames(profile: Profile, selection: Selection = {}): Generator<void, NameRow[]> {
  const nameOf = (block: number) => profile.blocks[block]!.name;
  const spreads = yield* spreadsOf(profile, profile.names.length, nameOf, selection);
  return spreads.map(({ figures }, name) => ({ ...figures, name })).filter((row) => row.count > 0);
}

/** The same without an interruption. */
export function statisticsByName(profile: Profile, selection: Selection = {}): NameRow[] {
  return toEnd(countingNames(profile, selection));
}

export interface Relative {
  /** -1 for the top of a thread. */
  name: number;
  count: number;
  total: number;
}

/** Who ran `name`, and how much of its time belongs to each. */
export function callersOf(
  profile: Profile,
  name: number,
  selection: Selection = {},
): Generator<void, Relative[]> {
  return relatives(profile, selection, (block) =>
    block.name === name ? (profile.blocks[block.parent]?.name ?? -1) : undefined,
  );
}

/** What ran directly inside `name`. */
export function calleesOf(
  profile: Profile,
  name: number,
  selection: Selection = {},
): Generator<void, Relative[]> {
  return relatives(profile, selection, (block) =>
    profile.blocks[block.parent]?.name === name ? block.name : undefined,
  );
}

function* relatives(
  profile: Profile,
  selection: Selection,
  keyOf: (block: Profile['blocks'][number]) => number | undefined,
): Generator<void, Relative[]> {
  const found = new Map<number, Relative>();
  for (const block of profile.blocks) {
    if (selection.threads && !selection.threads.has(block.thread)) continue;
    const key = keyOf(block);
    if (key === undefined) continue;
    const relative = found.get(key) ?? { name: key, count: 0, total: 0 };
    for (let i = block.first; i < block.first + block.count; ++i) {
      if ((i + 1) % portion === 0) yield;
      const time = timeIn(profile, profile.ids[i]!, selection.range);
      if (time < 0) continue;
      ++relative.count;
      relative.total += time;
    }
    if (relative.count > 0) found.set(key, relative);
  }
  return [...found.values()].sort((a, b) => b.total - a.total);
}
