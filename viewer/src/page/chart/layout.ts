// Where lanes and rows stand, in pixels from the top of the first lane.
import type { Row } from '../../record/profile';
import type { Chart } from './model';

export const rowHeight = 18;
export const titleHeight = 22;
export const axisHeight = 22;
const gap = 6;

export interface Place {
  lane: number;
  top: number;
  bottom: number;
}

export function layOut(chart: Chart): { places: Place[]; height: number } {
  let top = 0;
  const places = chart.lanes.map((lane, index) => {
    const place = { lane: index, top, bottom: top + titleHeight + lane.rows.length * rowHeight + gap };
    top = place.bottom;
    return place;
  });
  return { places, height: top };
}

/** The first index from `first` to `stop` whose value is not below `value`; `stop` if there is none. */
export function lowerBound(column: Float64Array, first: number, stop: number, value: number): number {
  let low = first;
  let high = stop;
  while (low < high) {
    const middle = (low + high) >>> 1;
    if (column[middle]! < value) low = middle + 1;
    else high = middle;
  }
  return low;
}

/** The same where the answer is likely to be near: looks in steps that double. */
export function lowerBoundNear(column: Float64Array, first: number, stop: number, value: number): number {
  let step = 1;
  let low = first;
  while (low + step < stop && column[low + step]! < value) {
    low += step;
    step *= 2;
  }
  return lowerBound(column, low, Math.min(low + step + 1, stop), value);
}

/** The row at a height, undefined between lanes. */
export function rowAt(chart: Chart, places: readonly Place[], y: number): Row | undefined {
  const place = places.find(({ top, bottom }) => y >= top && y < bottom);
  if (!place || y < place.top + titleHeight) return undefined;
  return chart.lanes[place.lane]!.rows[Math.floor((y - place.top - titleHeight) / rowHeight)];
}

/** The box of a row at a time, or the nearest within `tolerance`. */
export function boxAt(chart: Chart, row: Row, time: number, tolerance: number): number | undefined {
  const stop = row.first + row.count;
  let best: number | undefined;
  let distance = tolerance;
  const near = lowerBound(chart.end, row.first, stop, time - tolerance);
  for (let box = near; box < stop && chart.begin[box]! <= time + tolerance; ++box) {
    const away = Math.max(chart.begin[box]! - time, time - chart.end[box]!, 0);
    if (away < distance || (away === distance && best === undefined)) [best, distance] = [box, away];
    if (away === 0 || box - near > 1000) break;
  }
  return best;
}

/** How far down a box is, undefined if its lane is not shown. */
export function topOf(chart: Chart, places: readonly Place[], box: number): number | undefined {
  for (const place of places) {
    const depth = chart.lanes[place.lane]!.rows.findIndex(
      (row) => box >= row.first && box < row.first + row.count,
    );
    if (depth >= 0) return place.top + titleHeight + depth * rowHeight;
  }
  return undefined;
}
