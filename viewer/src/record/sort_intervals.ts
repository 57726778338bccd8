import { mergingRuns, portion } from './portions';

/** Sorts intervals by a key, a portion at a time; of equal ones the first to begin comes first. */
export function* sortIntervals(
  ids: Int32Array,
  keyOf: (id: number) => number,
  begin: Float64Array,
  descending: boolean,
): Generator<void, Int32Array> {
  const keys = new Float64Array(begin.length);
  let steps = 0;
  for (const id of ids) {
    keys[id] = keyOf(id);
    if (++steps % portion === 0) yield;
  }
  const sign = descending ? -1 : 1;
  const inOrder = (a: number, b: number) =>
    ((keys[a]! - keys[b]!) * sign || begin[a]! - begin[b]! || a - b) <= 0;
  return yield* mergingRuns(ids.slice(), 1, inOrder);
}
