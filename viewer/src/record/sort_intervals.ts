/** Intervals that are looked at between two yields. */
const part = 50_000;

/** Sorts intervals by a key, a part at a time; of equal ones the first to begin comes first. */
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
    if (++steps % part === 0) yield;
  }
  const sign = descending ? -1 : 1;
  const inOrder = (a: number, b: number) => {
    const difference = (keys[a]! - keys[b]!) * sign || begin[a]! - begin[b]! || a - b;
    return difference <= 0;
  };
  let from = ids.slice();
  let to = new Int32Array(ids.length);
  for (let run = 1; run < ids.length; run *= 2) {
    for (let left = 0; left < ids.length; left += 2 * run) {
      const middle = Math.min(left + run, ids.length);
      const right = Math.min(left + 2 * run, ids.length);
      let a = left;
      let b = middle;
      for (let at = left; at < right; ++at) {
        to[at] = b === right || (a < middle && inOrder(from[a]!, from[b]!)) ? from[a++]! : from[b++]!;
        if (++steps % part === 0) yield;
      }
    }
    [from, to] = [to, from];
  }
  return from;
}
