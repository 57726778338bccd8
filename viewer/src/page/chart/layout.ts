// Where lanes and rows stand, in pixels from the top of the first lane.
import { lowerBound } from '../../record/bounds';
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

/** lowerBound where the answer is likely to be near: looks in steps that double. */
export function lowerBoundNear(column: Float64Array, first: number, stop: number, value: number): number {
  let step = 1;
  let low = first;
  while (low + step < stop && column[low + step]! < value) {
    low += step;
    step *= 2;
  }
  return lowerBound(column, low, Math.min(low + step + 1, stop), value);
}

/** The height of the pinned lanes on top; none of them stays in place if they would take most of the view. */
export function frozenHeight(chart: Chart, places: readonly Place[], viewHeight: number): number {
  const height = places[chart.pinned - 1]?.bottom ?? 0;
  return height <= viewHeight * 0.6 ? height : 0;
}

/** What a height in the view shows: how far down it is from the top of the first lane. */
export function depthAt(y: number, frozen: number, scroll: number): number {
  return y < frozen ? y : y + scroll;
}

/** The row at a height, undefined between lanes. */
export function rowAt(chart: Chart, places: readonly Place[], y: number): Row | undefined {
  const place = places.find(({ top, bottom }) => y >= top && y < bottom);
  if (!place || y < place.top + titleHeight) return undefined;
  return chart.lanes[place.lane]!.rows[Math.floor((y - place.top - titleHeight) / rowHeight)];
}

/** The lane whose title is at a height of the view; a title stays in view as long as its lane. */
export function titleAt(
  places: readonly Place[],
  y: number,
  frozen: number,
  scroll: number,
): number | undefined {
  const depth = depthAt(y, frozen, scroll);
  const place = places.find(({ top, bottom }) => depth >= top && depth < bottom);
  if (!place) return undefined;
  const edge = place.bottom <= frozen ? 0 : frozen + scroll;
  const top = Math.max(place.top, Math.min(edge, place.bottom - titleHeight));
  return depth >= top && depth < top + titleHeight ? place.lane : undefined;
}

/** The scroll with which a row is in view, below its lane's title; as it is, if it is in view. */
export function scrollToRow(scroll: number, viewHeight: number, frozen: number, top: number): number {
  if (top < frozen) return scroll;
  if (top - titleHeight < scroll + frozen) return top - titleHeight - frozen;
  if (top + rowHeight > scroll + viewHeight)
    return Math.min(top + 2 * rowHeight - viewHeight, top - titleHeight - frozen);
  return scroll;
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
