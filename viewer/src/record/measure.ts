// What lies in a span of time, by name.
import { timesLost, type Profile } from './profile';
import { firstFrom, timeIn } from './range';
import type { Range } from './statistics';

export interface Measured {
  name: number;
  /** Intervals that lie in the span at least in part. */
  count: number;
  /** Milliseconds inside the span; what runs inside one of the same name is not counted twice. */
  total: number;
  /** Milliseconds inside the span, without the blocks inside. */
  self: number;
}

/** The names with time in the span, most time of their own first. */
export function measure(profile: Profile, range: Range, threads?: ReadonlySet<number>): Measured[] {
  const rows = new Map<number, Measured>();
  const rowOf = (name: number) => {
    let row = rows.get(name);
    if (!row) rows.set(name, (row = { name, count: 0, total: 0, self: 0 }));
    return row;
  };
  profile.blocks.forEach((block, index) => {
    if (threads && !threads.has(block.thread)) return;
    const stop = block.first + block.count;
    let nested: boolean | undefined;
    for (let i = firstFrom(profile, index, range.from); i < stop; ++i) {
      const id = profile.ids[i]!;
      if (profile.begin[id]! > range.to) break;
      const time = timeIn(profile, id, range);
      if (time < 0 || profile.open[id] === timesLost) continue;
      const row = rowOf(block.name);
      ++row.count;
      row.self += time;
      nested ??= insideItself(profile, index);
      if (!nested) row.total += time;
      const parent = profile.parent[id]!;
      if (parent >= 0 && profile.open[parent] !== timesLost)
        rowOf(profile.blocks[profile.block[parent]!]!.name).self -= time;
    }
  });
  const list = [...rows.values()].filter(({ count }) => count > 0);
  for (const row of list) row.self = Math.max(0, row.self);
  return list.sort((a, b) => b.self - a.self || b.total - a.total || a.name - b.name);
}

function insideItself(profile: Profile, block: number): boolean {
  const { name, parent } = profile.blocks[block]!;
  for (let at = parent; at >= 0; at = profile.blocks[at]!.parent)
    if (profile.blocks[at]!.name === name) return true;
  return false;
}
