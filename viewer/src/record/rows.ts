// A row is merged from the blocks in it, each of which is in order already.

/**
 * Sorts `ids` from `first` on by begin, then end. `runs` are the places where each sorted run ends; the last one is the
 * end of all.
 */
export function sortRow(
  ids: Int32Array,
  first: number,
  runs: readonly number[],
  begin: Float64Array,
  end: Float64Array,
): void {
  let ends = runs;
  if (ends.length < 2) return;
  const before = (a: number, b: number) =>
    begin[a]! < begin[b]! || (begin[a] === begin[b] && end[a]! <= end[b]!);
  let from: Int32Array = ids;
  let to: Int32Array = new Int32Array(ends[ends.length - 1]! - first);
  let fromStart = first; // where the row begins in `from`; in `to` it is the other one
  let toStart = 0;
  while (ends.length > 1) {
    const merged: number[] = [];
    let left = first;
    for (let run = 0; run < ends.length; run += 2) {
      const middle = ends[run]!;
      const right = ends[run + 1] ?? middle;
      let a = left - first;
      let b = middle - first;
      for (let at = left - first; at < right - first; ++at) {
        const takeFirst =
          b === right - first || (a < middle - first && before(from[fromStart + a]!, from[fromStart + b]!));
        to[toStart + at] = from[fromStart + (takeFirst ? a++ : b++)]!;
      }
      merged.push(right);
      left = right;
    }
    ends = merged;
    [from, to] = [to, from];
    [fromStart, toStart] = [toStart, fromStart];
  }
  if (from !== ids) ids.set(from, first);
}
