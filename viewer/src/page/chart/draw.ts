// Draws a chart. Whatever the record's size, a row costs no more than a few searches for each pixel: what is narrower
// than a pixel is drawn as one with its neighbours.
import type { Range } from '../../record/statistics';
import type { BoxColor, ChartColors } from '../colors';
import { formatPoint, shortened as cut } from '../format';
import type { Row } from '../../record/profile';
import { ticks } from './axis';
import { lowerBound } from '../../record/bounds';
import { axisHeight, lowerBoundNear, rowHeight, titleHeight, type Place } from './layout';
import type { Chart } from './model';
import type { Strip } from './strip';

export interface Look {
  chart: Chart;
  places: readonly Place[];
  range: Range;
  scroll: number;
  /** Height of the lanes that are not scrolled. */
  frozen: number;
  width: number;
  height: number;
  /** By name. */
  boxColors: readonly BoxColor[];
  colors: ChartColors;
  /** Names that were searched for: 1 by name; undefined if nothing was. */
  matches: Uint8Array | undefined;
  selected: number | undefined;
  selectedName: number | undefined;
  hovered: number | undefined;
  currentLane: number | undefined;
  font: string;
  /** Times of hits, as pixels that are marked on the axis. */
  marks: Uint8Array | undefined;
  /** A span that is measured, and times with notes. */
  span: Range | undefined;
  notes: readonly Range[];
}

/** What the chart is drawn on: a canvas, or what writes a picture of lines. */
export type Surface = Pick<
  CanvasRenderingContext2D,
  | 'fillRect'
  | 'strokeRect'
  | 'fillText'
  | 'measureText'
  | 'save'
  | 'restore'
  | 'beginPath'
  | 'rect'
  | 'clip'
  | 'moveTo'
  | 'lineTo'
  | 'stroke'
  | 'fillStyle'
  | 'strokeStyle'
  | 'lineWidth'
  | 'font'
  | 'textBaseline'
  | 'globalAlpha'
>;

const boxHeight = rowHeight - 1;
/** Narrower boxes are drawn one pixel wide. */
const narrowest = 2;

/** `strip` paints on the same surface. */
export function drawChart(context: Surface, look: Look, strip: Strip): void {
  const { colors, width, height } = look;
  context.fillStyle = colors.background;
  context.fillRect(0, 0, width, height);
  context.textBaseline = 'middle';
  const { at, step } = ticks(look.range.from, look.range.to, width);
  const x = (time: number) => ((time - look.range.from) / (look.range.to - look.range.from)) * width;

  context.fillStyle = colors.line;
  for (const tick of at) context.fillRect(Math.round(x(tick)), axisHeight, 1, height);

  drawLanes(
    context,
    look,
    strip,
    axisHeight + look.frozen,
    height,
    look.scroll,
    (place) => place.bottom > look.frozen,
  );
  if (look.frozen > 0) {
    drawLanes(
      context,
      look,
      strip,
      axisHeight,
      axisHeight + look.frozen,
      0,
      (place) => place.bottom <= look.frozen,
    );
    context.fillStyle = colors.muted;
    context.fillRect(0, axisHeight + look.frozen - 2, width, 1);
  }
  drawSpans(context, look, x);

  context.fillStyle = colors.lane;
  context.fillRect(0, 0, width, axisHeight);
  context.fillStyle = colors.muted;
  context.font = look.font;
  for (const tick of at) {
    const left = Math.round(x(tick));
    context.fillRect(left, axisHeight - 5, 1, 5);
    context.fillText(formatPoint(tick, step), left + 4, axisHeight / 2);
  }
  context.fillStyle = colors.mark;
  const { marks } = look;
  for (let left = 0; marks && left < marks.length; ++left)
    if (marks[left]) context.fillRect(left, axisHeight - 4, 1, 4);
}

/** The lanes that are chosen, between two heights of the picture. */
function drawLanes(
  context: Surface,
  look: Look,
  strip: Strip,
  from: number,
  to: number,
  scroll: number,
  isShown: (place: Place) => boolean,
): void {
  context.save();
  context.beginPath();
  context.rect(0, from, look.width, to - from);
  context.clip();
  for (const place of look.places) {
    if (!isShown(place)) continue;
    const top = place.top - scroll + axisHeight;
    const bottom = place.bottom - scroll + axisHeight;
    if (bottom < from || top > to) continue;
    const lane = look.chart.lanes[place.lane]!;
    const firstRow = Math.max(0, Math.floor((from - top - titleHeight) / rowHeight));
    for (let row = firstRow; row < lane.rows.length; ++row) {
      const y = top + titleHeight + row * rowHeight;
      if (y > to) break;
      drawRow(context, look, strip, lane.rows[row]!, y);
    }
    drawTitle(context, look, place, Math.max(top, Math.min(from, bottom - titleHeight)));
  }
  context.restore();
}

/** The measured span and the notes, over the lanes. */
function drawSpans(context: Surface, look: Look, x: (time: number) => number): void {
  const { colors, height, span } = look;
  context.fillStyle = colors.note;
  for (const { from, to } of look.notes) {
    context.globalAlpha = 0.5;
    context.fillRect(Math.round(x(from)), axisHeight, 1, height);
    context.globalAlpha = 1;
    context.fillRect(Math.round(x(from)), axisHeight, Math.max(x(to) - x(from), 7), 5);
  }
  if (!span) return;
  context.globalAlpha = 0.2;
  context.fillStyle = colors.accent;
  context.fillRect(x(span.from), axisHeight, x(span.to) - x(span.from), height);
  context.globalAlpha = 1;
  context.fillRect(Math.round(x(span.from)), axisHeight, 1, height);
  context.fillRect(Math.round(x(span.to)), axisHeight, 1, height);
}

function drawTitle(context: Surface, look: Look, place: Place, top: number): void {
  const lane = look.chart.lanes[place.lane]!;
  const { colors } = look;
  const current = place.lane === look.currentLane;
  context.fillStyle = colors.lane;
  context.fillRect(0, top, look.width, titleHeight - 2);
  if (current) {
    context.fillStyle = colors.accent;
    context.fillRect(0, top, 3, titleHeight - 2);
  }
  context.font = `600 ${look.font}`;
  context.fillStyle = colors.text;
  const sign = lane.collapsible ? (lane.collapsed ? '▸ ' : '▾ ') : '';
  const title = sign + cut(lane.title, 100);
  context.fillText(title, 8, top + titleHeight / 2 - 1);
  const after = 8 + context.measureText(title).width + 10;
  context.font = look.font;
  context.fillStyle = colors.muted;
  const note = place.lane < look.chart.pinned ? `pinned; ${lane.note}` : lane.note;
  context.fillText(note, after, top + titleHeight / 2 - 1);
}

function drawRow(context: Surface, look: Look, strip: Strip, row: Row, y: number): void {
  const { chart, range, width } = look;
  const { begin, end } = chart;
  const stop = row.first + row.count;
  const scale = width / (range.to - range.from);
  const pixel = 1 / scale;
  const wide: number[] = [];

  for (let box = lowerBound(end, row.first, stop, range.from); box < stop && begin[box]! <= range.to;) {
    if ((end[box]! - begin[box]!) * scale >= narrowest) {
      wide.push(box++);
      continue;
    }
    // The pixels are counted from time 0, so that what is drawn does not change while the chart is moved.
    const place = Math.floor(begin[box]! / pixel);
    let next = Math.max(lowerBoundNear(begin, box, stop, (place + 1) * pixel), box + 1);
    if (next > box + 1 && (end[next - 1]! - begin[next - 1]!) * scale >= narrowest) --next;
    strip.set(Math.round(place - range.from * scale), colorOf(look, box, next));
    box = next;
  }
  strip.paint(y, boxHeight);

  for (const box of wide) {
    const from = Math.max((begin[box]! - range.from) * scale, -2);
    const to = Math.min((end[box]! - range.from) * scale, width + 2);
    context.fillStyle = colorOf(look, box);
    context.fillRect(from, y, Math.max(to - 0.75, from + 1) - from, boxHeight);
    drawInside(context, look, box, y, scale);
  }

  const { selected } = look;
  if (selected !== undefined && selected >= row.first && selected < stop) {
    if ((end[selected]! - begin[selected]!) * scale >= narrowest) return;
    context.fillStyle = look.colors.accent;
    context.fillRect(Math.round((begin[selected]! - range.from) * scale) - 1, y - 1, 3, boxHeight + 2);
  }
}

function colorsOf({ chart, boxColors }: Look, box: number): BoxColor {
  return chart.colorOf?.(box) ?? boxColors[chart.nameOf(box)]!;
}

/** Of several boxes in one pixel the first that was searched for, or the first. */
function colorOf(look: Look, box: number, stop = box + 1): string {
  const { chart, matches } = look;
  if (!matches) return colorsOf(look, box).fill;
  const last = Math.min(stop, box + 64);
  for (let at = box; at < last; ++at) {
    const name = chart.nameOf(at);
    if (matches[name]) return colorsOf(look, at).fill;
  }
  return look.colors.faded;
}

/** What a box has on its area: hatching, its name, a frame. */
function drawInside(context: Surface, look: Look, box: number, y: number, scale: number): void {
  const { chart, colors, range, width } = look;
  const left = (chart.begin[box]! - range.from) * scale;
  const right = (chart.end[box]! - range.from) * scale;
  const from = Math.max(left, 0);
  const room = Math.min(right, width) - from;
  if (chart.isOpen(box)) hatch(context, colors.hatch, from, y, room);
  const name = chart.nameOf(box);
  if (box === look.selected || box === look.hovered || name === look.selectedName) {
    context.strokeStyle = box === look.selected ? colors.accent : colors.text;
    context.lineWidth = box === look.selected ? 2 : 1;
    context.strokeRect(left + 1, y + 1, right - left - 2, boxHeight - 2);
  }
  if (room < 24) return;
  context.font = look.font;
  context.fillStyle = look.matches && !look.matches[name] ? colors.muted : colorsOf(look, box).text;
  const text = shortened(context, chart.names[name]!, room - 8, look.font);
  if (text) context.fillText(text, from + 4, y + boxHeight / 2 + 0.5);
}

function hatch(context: Surface, color: string, left: number, top: number, width: number): void {
  context.save();
  context.beginPath();
  context.rect(left, top, width, boxHeight);
  context.clip();
  context.strokeStyle = color;
  context.lineWidth = 3;
  context.beginPath();
  for (let at = left - (left % 9) - 18; at < left + width; at += 9) {
    context.moveTo(at, top + boxHeight);
    context.lineTo(at + boxHeight, top);
  }
  context.stroke();
  context.restore();
}

const widths = new Map<string, number>();

function widthOf(context: Surface, text: string, font: string): number {
  const key = font + text;
  let width = widths.get(key);
  if (width === undefined) {
    if (widths.size > 50_000) widths.clear();
    widths.set(key, (width = context.measureText(text).width));
  }
  return width;
}

/** The name, or as much of it as there is room for: its middle goes first. Nothing if that is not even a few letters. */
function shortened(context: Surface, name: string, room: number, font: string): string {
  const known = cut(name, 200);
  const width = widthOf(context, known, font);
  if (width <= room) return known;
  // Letters differ in width: what is kept may be wider than its share.
  for (let letters = Math.floor((known.length * room) / width) - 1; letters >= 2; --letters) {
    const text = letters < 8 ? known.slice(0, letters) + '…' : cut(known, letters + 1);
    if (widthOf(context, text, font) <= room) return text;
  }
  return '';
}
