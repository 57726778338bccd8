// Two records, block by block: those with the same path of names are the same block, on whatever thread they ran.
import { pathOf, type Profile } from './profile';
import { figuresOf, type Figures } from './statistics';

export interface Compared {
  path: string[];
  /** Undefined where the record has no such block. */
  before: Figures | undefined;
  after: Figures | undefined;
}

export interface Change {
  difference: number;
  /** After by before; NaN if either is missing or before is zero. */
  ratio: number;
}

export function change(before: number | undefined, after: number | undefined): Change {
  const difference = (after ?? NaN) - (before ?? NaN);
  return { difference, ratio: before ? (after ?? NaN) / before : NaN };
}

/** In the order of the first record, then what only the second one has. */
export function compare(before: Profile, after: Profile): Compared[] {
  const rows = new Map<string, Compared>();
  const take = (profile: Profile, side: 'before' | 'after') => {
    const { keys, groupOf } = groupByPath(profile);
    const figures = figuresOf(profile, keys.length, (block) => groupOf[block]!);
    keys.forEach(({ key, block }, group) => {
      const row = rows.get(key) ?? { path: pathOf(profile, block), before: undefined, after: undefined };
      row[side] = figures[group];
      rows.set(key, row);
    });
  };
  take(before, 'before');
  take(after, 'after');
  return [...rows.values()];
}

/** A key for each path that occurs; each path's key is made from its parent's, so that deep records stay quick. */
function groupByPath(profile: Profile): { keys: { key: string; block: number }[]; groupOf: Int32Array } {
  const keys: { key: string; block: number }[] = [];
  const groups = new Map<string, number>();
  const groupOf = new Int32Array(profile.blocks.length);
  profile.blocks.forEach((block, index) => {
    const name = profile.names[block.name]!;
    const above = block.parent < 0 ? '' : keys[groupOf[block.parent]!]!.key;
    const key = `${above}${name.length}:${name}/`;
    let group = groups.get(key);
    if (group === undefined) {
      group = keys.push({ key, block: index }) - 1;
      groups.set(key, group);
    }
    groupOf[index] = group;
  });
  return { keys, groupOf };
}
