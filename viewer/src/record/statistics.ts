import { duration, selfTime, type Profile } from './profile';

export interface Range {
  from: number;
  to: number;
}

export interface Figures {
  /** All intervals, those included that were never closed. */
  count: number;
  open: number;
  /** Milliseconds; open intervals count up to the end that they are drawn to. */
  total: number;
  self: number;
  /** Of the closed intervals; NaN if there are none. */
  mean: number;
  median: number;
  min: number;
  max: number;
  /** Standard deviation of all closed intervals (divided by their number). */
  deviation: number;
}

export interface Selection {
  /** Only intervals that lie wholly inside. */
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
  const { blocks, ids, begin, end, open } = profile;
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
  const from = selection.range?.from ?? -Infinity;
  const to = selection.range?.to ?? Infinity;

  const closedDurations = new Float64Array(ids.length);
  const groupOfBlock = blocks.map((block, index) =>
    selection.threads && !selection.threads.has(block.thread) ? -1 : groupOf(index),
  );
  const nested = selection.foldRecursion ? insideItself(profile) : undefined;
  const places = new Int32Array(groups + 1);
  blocks.forEach((block, index) => {
    const group = groupOfBlock[index]!;
    if (group >= 0) places[group + 1]! += block.count;
  });
  for (let group = 0; group < groups; ++group) places[group + 1]! += places[group]!;
  const next = places.slice();

  blocks.forEach((block, index) => {
    const group = groupOfBlock[index]!;
    if (group < 0) return;
    const figures = result[group]!;
    for (let i = block.first; i < block.first + block.count; ++i) {
      const id = ids[i]!;
      if (begin[id]! < from || end[id]! > to) continue;
      figures.self += selfTime(profile, id);
      if (nested?.[index]) continue;
      ++figures.count;
      figures.total += duration(profile, id);
      if (open[id]) ++figures.open;
      else closedDurations[next[group]!++] = duration(profile, id);
    }
  });
  result.forEach((figures, group) => spread(figures, closedDurations.subarray(places[group], next[group])));
  return result;
}

/** Sorts the durations and draws the averages from them. */
function spread(figures: Figures, durations: Float64Array): void {
  const { length } = durations;
  if (length === 0) return;
  durations.sort();
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

/** 1 for each block that has its own name above it. */
function insideItself(profile: Profile): Uint8Array {
  const nested = new Uint8Array(profile.blocks.length);
  profile.blocks.forEach((block, index) => {
    for (let at = block.parent; at >= 0; at = profile.blocks[at]!.parent)
      if (profile.blocks[at]!.name === block.name) {
        nested[index] = 1;
        break;
      }
  });
  return nested;
}

export interface NameRow extends Figures {
  name: number;
}

/** A row for each name that occurs in the selection. */
export function statisticsByName(profile: Profile, selection: Selection = {}): NameRow[] {
  return figuresOf(profile, profile.names.length, (block) => profile.blocks[block]!.name, selection)
    .map((figures, name) => ({ ...figures, name }))
    .filter((row) => row.count > 0);
}

/** The closed durations of one name, sorted: what a histogram is made of. */
export function durationsOf(profile: Profile, name: number, selection: Selection = {}): Float64Array {
  const from = selection.range?.from ?? -Infinity;
  const to = selection.range?.to ?? Infinity;
  const found: number[] = [];
  for (const block of profile.blocks) {
    if (block.name !== name || (selection.threads && !selection.threads.has(block.thread))) continue;
    for (let i = block.first; i < block.first + block.count; ++i) {
      const id = profile.ids[i]!;
      if (!profile.open[id] && profile.begin[id]! >= from && profile.end[id]! <= to)
        found.push(duration(profile, id));
    }
  }
  return Float64Array.from(found).sort();
}

export interface Relative {
  /** -1 for the top of a thread. */
  name: number;
  count: number;
  total: number;
}

/** Who ran `name`, and how much of its time belongs to each. */
export function callersOf(profile: Profile, name: number, selection: Selection = {}): Relative[] {
  return relatives(profile, selection, (block) =>
    block.name === name ? (profile.blocks[block.parent]?.name ?? -1) : undefined,
  );
}

/** What ran directly inside `name`. */
export function calleesOf(profile: Profile, name: number, selection: Selection = {}): Relative[] {
  return relatives(profile, selection, (block) =>
    profile.blocks[block.parent]?.name === name ? block.name : undefined,
  );
}

function relatives(
  profile: Profile,
  selection: Selection,
  keyOf: (block: Profile['blocks'][number]) => number | undefined,
): Relative[] {
  const found = new Map<number, Relative>();
  const from = selection.range?.from ?? -Infinity;
  const to = selection.range?.to ?? Infinity;
  for (const block of profile.blocks) {
    if (selection.threads && !selection.threads.has(block.thread)) continue;
    const key = keyOf(block);
    if (key === undefined) continue;
    for (let i = block.first; i < block.first + block.count; ++i) {
      const id = profile.ids[i]!;
      if (profile.begin[id]! < from || profile.end[id]! > to) continue;
      const relative = found.get(key) ?? { name: key, count: 0, total: 0 };
      found.set(key, relative);
      ++relative.count;
      relative.total += duration(profile, id);
    }
  }
  return [...found.values()].sort((a, b) => b.total - a.total);
}
