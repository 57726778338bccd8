// How durations spread: bins that are no finer than the stamps, the same for all the sets that are compared.
import { lowerBound } from './bounds';

const mostBins = 48;

/**
 * The edges of the bins, from the lowest up: of equal width, or of equal ratio where the durations span more than a
 * hundredfold. No bin is narrower than `resolution`; what is shorter than that stands in a first one, from 0 on. The
 * sets are sorted.
 */
export function binEdges(sets: readonly Float64Array[], resolution: number): number[] {
  const filled = sets.filter((set) => set.length > 0);
  if (filled.length === 0) return [];
  const least = Math.min(...filled.map((set) => set[0]!));
  const most = Math.max(...filled.map((set) => set[set.length - 1]!));
  const step = resolution || most * 1e-6 || 1e-6;
  // Durations are differences: the last digit of one that lies on an edge is not to decide where it stands.
  const slack = step * 1e-6;
  const edges: number[] = [];
  const addUntilMost = (next: (last: number) => number) => {
    while (edges[edges.length - 1]! <= most + slack) edges.push(next(edges[edges.length - 1]!));
  };
  const positive = Math.min(
    ...filled.map((set) => set[lowerBound(set, 0, set.length, Number.MIN_VALUE)] ?? Infinity),
  );
  const start = Math.max(positive, step);
  if (positive < Infinity && most / start > 100) {
    const ratio = (most / start) ** (1 / (mostBins - 2));
    if (least < start) edges.push(0);
    edges.push(start);
    addUntilMost((last) => Math.max(last * ratio, last + step));
  } else {
    edges.push(least < step ? 0 : least);
    const width = step * Math.max(1, Math.ceil((most - edges[0]!) / step / (mostBins - 1)));
    addUntilMost((last) => last + width);
  }
  return edges.map((edge, at) => (at === 0 ? edge : edge - slack));
}

/** How many of the sorted durations lie in each bin. */
export function countInBins(durations: Float64Array, edges: readonly number[]): number[] {
  const places = edges.map((edge) => lowerBound(durations, 0, durations.length, edge));
  places[places.length - 1] = durations.length;
  return places.slice(1).map((place, bin) => place - places[bin]!);
}
