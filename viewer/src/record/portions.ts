// Long work in portions, between which a caller may interrupt it.

/** How many intervals are looked at in one portion. */
export const portion = 1 << 15;

/** Does the work without an interruption. */
export function toEnd<T>(work: Generator<void, T>): T {
  for (;;) {
    const step = work.next();
    if (step.done) return step.value;
  }
}

/**
 * Merges runs of so many values, each of which is in order, into one. Gives what holds the result: `values`, or other
 * memory of their size.
 */
export function* mergingRuns<Column extends Int32Array | Float64Array>(
  values: Column,
  length: number,
  inOrder: (a: number, b: number) => boolean,
): Generator<void, Column> {
  const count = values.length;
  let from = values;
  let to = values.slice() as Column;
  for (let run = length; run < count; run *= 2) {
    let steps = 0;
    for (let left = 0; left < count; left += 2 * run) {
      const middle = Math.min(left + run, count);
      const right = Math.min(left + 2 * run, count);
      let a = left;
      let b = middle;
      for (let at = left; at < right; ++at) {
        to[at] = b === right || (a < middle && inOrder(from[a]!, from[b]!)) ? from[a++]! : from[b++]!;
        if (++steps % portion === 0) yield;
      }
    }
    [from, to] = [to, from];
  }
  return from;
}

const ascending = (a: number, b: number) => a <= b;

/** Sorts numbers in their place. */
export function* sortingNumbers(values: Float64Array): Generator<void> {
  for (let at = 0; at < values.length; at += portion) {
    values.subarray(at, at + portion).sort();
    yield;
  }
  if (values.length <= portion) return;
  const sorted = yield* mergingRuns(values, portion, ascending);
  if (sorted !== values) values.set(sorted);
}
