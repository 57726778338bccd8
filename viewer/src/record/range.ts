import { firstWhere } from './bounds';
import type { Profile } from './profile';
import type { Range } from './statistics';

/**
 * Milliseconds of an interval inside the range; -1 if it lies outside. One that only touches an end of the range lies
 * outside, unless it took no time.
 */
export function timeIn(profile: Profile, id: number, range: Range | undefined): number {
  const begin = profile.begin[id]!;
  const end = profile.end[id]!;
  if (!range) return end - begin;
  if (end > range.from && begin < range.to) return Math.min(end, range.to) - Math.max(begin, range.from);
  return begin === end && begin >= range.from && begin <= range.to ? 0 : -1;
}

/** The first of a block's intervals, as a place in `Profile.ids`, that ends at `from` or later. */
export function firstFrom(profile: Profile, block: number, from: number): number {
  const { first, count } = profile.blocks[block]!;
  return firstWhere(first, first + count, (at) => profile.end[profile.ids[at]!]! >= from);
}
