// From one interval to another.
import { duration, type Profile } from '../record/profile';
import type { Walker } from '../record/walk';

export type Way = 'left' | 'right' | 'up' | 'down';

/** The neighbour in time, the interval around it, or the first one inside it; undefined where there is none. */
export function neighbour(profile: Profile, walker: Walker, id: number, way: Way): number | undefined {
  const { blocks, block, threads, parent } = profile;
  const owner = blocks[block[id]!]!;
  const row = threads[owner.thread]!.rows[owner.depth]!;
  if (way === 'left') return id > row.first ? id - 1 : undefined;
  if (way === 'right') return id + 1 < row.first + row.count ? id + 1 : undefined;
  if (way === 'up') return parent[id]! >= 0 ? parent[id] : undefined;
  return walker.innerOf(id)[0];
}

/** The longest interval of a name on the threads that are not hidden. */
export function longestOf(profile: Profile, name: number, hidden: ReadonlySet<number>): number | undefined {
  let longest: number | undefined;
  for (const block of profile.blocks) {
    if (block.name !== name || hidden.has(block.thread)) continue;
    for (let i = block.first; i < block.first + block.count; ++i) {
      const id = profile.ids[i]!;
      const longer =
        longest === undefined
          ? true
          : duration(profile, id) > duration(profile, longest) ||
            (duration(profile, id) === duration(profile, longest) && id < longest);
      if (longer) longest = id;
    }
  }
  return longest;
}
