// A row is merged from the blocks in it, each of which is in order already.
import { portion, toEnd } from './portions';
import type { Row } from './profile';

/** Ids are places in the columns. */
export interface Sorting {
  ids: Int32Array;
  begin: Float64Array;
  end: Float64Array;
}

type Slice = Readonly<Row>;

/** Fills a row with what its blocks have, in time order. */
export function sortBlocks({ ids, begin, end }: Sorting, row: Slice, blocks: readonly Slice[]): void {
  let next = row.first;
  const runs: number[] = [];
  for (const { first, count } of blocks) {
    for (let i = 0; i < count; ++i) ids[next++] = first + i;
    runs.push(next);
  }
  sortRow(ids, row.first, runs, begin, end);
}

/**
 * The same by what each interval runs in, which is quicker: the row above is in order already. `rowOf` gives the place in
 * it of what `parents` names. Gives false if that way the row does not come in order: something in it runs in nothing of
 * the row above, or parents overlap.
 */
export function sortByParents(
  { ids, begin, end }: Sorting,
  row: Slice,
  blocks: readonly Slice[],
  above: Slice,
  rowOf: Int32Array,
  parents: Int32Array,
): boolean {
  // Where the intervals of each parent begin, then where the next one of them goes.
  const places = new Int32Array(above.count + 1);
  for (const { first, count } of blocks)
    for (let i = first; i < first + count; ++i) {
      const place = parents[i]! < 0 ? -1 : rowOf[parents[i]!]! - above.first;
      if (place < 0 || place >= above.count) return false;
      ++places[place + 1]!;
    }
  places[0] = row.first;
  for (let place = 0; place < above.count; ++place) places[place + 1]! += places[place]!;
  for (const { first, count } of blocks)
    for (let i = first; i < first + count; ++i) ids[places[rowOf[parents[i]!]! - above.first]!++] = i;
  let from = row.first;
  for (let place = 0; place < above.count; ++place) {
    const to = places[place]!;
    if (to - from > 1) sortRuns({ ids, begin, end }, from, to);
    // Where a record is damaged, parents may overlap.
    if (to > from && from > row.first && isAfter(ids[from - 1]!, ids[from]!, begin, end)) return false;
    from = to;
  }
  return true;
}

const isAfter = (a: number, b: number, begin: Float64Array, end: Float64Array) =>
  begin[a]! > begin[b]! || (begin[a] === begin[b] && end[a]! > end[b]!);

/** Sorts what consists of runs that are in order, wherever they begin. */
function sortRuns({ ids, begin, end }: Sorting, from: number, to: number): void {
  if (to - from > 32) {
    const runs: number[] = [];
    for (let at = from + 1; at < to; ++at) if (isAfter(ids[at - 1]!, ids[at]!, begin, end)) runs.push(at);
    runs.push(to);
    return sortRow(ids, from, runs, begin, end);
  }
  for (let at = from + 1; at < to; ++at) {
    const id = ids[at]!;
    let place = at;
    for (; place > from; --place) {
      const before = ids[place - 1]!;
      if (!isAfter(before, id, begin, end)) break;
      ids[place] = before;
    }
    ids[place] = id;
  }
}

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
  toEnd(sortingRow(ids, first, runs, begin, end));
}

/** The same in portions; `ids` is in order after the last one. */
export function* sortingRow(
  ids: Int32Array,
  first: number,
  runs: readonly number[],
  begin: Float64Array,
  end: Float64Array,
): Generator<void> {
  let ends = runs;
  if (ends.length < 2) return;
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
      let at = left - first;
      while (at < right - first) {
        const stop = Math.min(right - first, at + portion);
        for (; at < stop; ++at) {
          const takeFirst =
            b === right - first ||
            (a < middle - first && !isAfter(from[fromStart + a]!, from[fromStart + b]!, begin, end));
          to[toStart + at] = from[fromStart + (takeFirst ? a++ : b++)]!;
        }
        if (stop < right - first) yield;
      }
      merged.push(right);
      left = right;
    }
    ends = merged;
    [from, to] = [to, from];
    [fromStart, toStart] = [toStart, fromStart];
    yield;
  }
  if (from !== ids) ids.set(from, first);
}
