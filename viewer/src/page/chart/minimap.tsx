import { boxColors, chartColors, type BoxColor } from '../colors';
import { marksIn } from '../search';
import * as state from '../state';
import { useCanvas } from './canvas';
import { lowerBound } from '../../record/bounds';
import { lowerBoundNear } from './layout';
import type { Chart } from './model';
import { ImageStrip } from './strip';

/** Rows of each lane that are shown; below them it is too small to be seen. */
const depths = 4;

/** The whole record as a strip; the range in view can be moved, and chosen by dragging. */
export function Minimap() {
  const { timeline, timelineModel } = state;
  let picture: { canvas: OffscreenCanvas; key: unknown[] } | undefined;

  const canvas = useCanvas((context, width, height) => {
    const chart = timelineModel.value;
    if (!chart) return;
    const last = state.profile.value!.last || 1;
    const dark = state.darkNow.value;
    const palette = state.palette.value;
    const key = [chart, width, height, dark, palette];
    if (!picture || key.some((part, index) => part !== picture!.key[index]))
      picture = {
        canvas: paint(chart, last, width, height, boxColors(chart.names, dark, palette), dark),
        key,
      };
    const colors = chartColors(dark);
    context.drawImage(picture.canvas, 0, 0, width, height);
    const { from, to } = timeline.range.value;
    const left = (from / last) * width;
    const right = Math.max((to / last) * width, left + 2);
    context.globalAlpha = 0.72;
    context.fillStyle = colors.background;
    context.fillRect(0, 0, left, height);
    context.fillRect(right, 0, width - right, height);
    context.globalAlpha = 1;
    context.fillStyle = colors.accent;
    context.fillRect(left - 1, 0, 2, height);
    context.fillRect(right - 1, 0, 2, height);
    context.fillStyle = colors.mark;
    const marks = marksIn({ from: 0, to: last }, Math.round(width));
    for (let at = 0; marks && at < marks.length; ++at) if (marks[at]) context.fillRect(at, height - 4, 1, 4);
  });

  const onPointerDown = (event: PointerEvent) => {
    if (event.button !== 0) return;
    const element = canvas.current!;
    element.setPointerCapture(event.pointerId);
    const last = state.profile.value!.last || 1;
    const timeAt = (x: number) =>
      (Math.min(Math.max(x, 0), element.clientWidth) / element.clientWidth) * last;
    const start = timeAt(event.offsetX);
    const range = timeline.range.value;
    const inside = start > range.from && start < range.to && range.to - range.from < last * 0.999;
    const move = (now: PointerEvent) => {
      const time = timeAt(now.offsetX);
      if (inside) timeline.show(range.from + time - start, range.to + time - start);
      else if (Math.abs(now.offsetX - event.offsetX) > 3)
        timeline.show(Math.min(start, time), Math.max(start, time));
    };
    const up = () => {
      element.removeEventListener('pointermove', move);
      element.removeEventListener('pointerup', up);
    };
    element.addEventListener('pointermove', move);
    element.addEventListener('pointerup', up);
  };

  return (
    <canvas
      ref={canvas}
      class="minimap"
      role="img"
      aria-label="Overview of the whole record; drag to choose the range in view"
      onPointerDown={onPointerDown}
      onDblClick={() => timeline.all()}
    />
  );
}

function paint(
  chart: Chart,
  last: number,
  width: number,
  height: number,
  names: readonly BoxColor[],
  dark: boolean,
): OffscreenCanvas {
  const ratio = devicePixelRatio;
  const canvas = new OffscreenCanvas(Math.max(1, width * ratio), Math.max(1, height * ratio));
  const context = canvas.getContext('2d', { alpha: false })!;
  context.scale(ratio, ratio);
  context.fillStyle = chartColors(dark).background;
  context.fillRect(0, 0, width, height);
  const used = chart.lanes.filter((lane) => lane.rows.length > 0);
  const laneHeight = height / Math.max(used.length, 1);
  const scale = width / last;
  const strip = new ImageStrip(context, width);
  used.forEach((lane, index) => {
    const shown = Math.min(lane.rows.length, depths);
    const rowHeight = Math.max((laneHeight * 0.85) / shown, 1);
    lane.rows.slice(0, shown).forEach((row, depth) => {
      const stop = row.first + row.count;
      const y = index * laneHeight + depth * rowHeight;
      for (let box = lowerBound(chart.end, row.first, stop, 0); box < stop;) {
        const left = Math.floor(chart.begin[box]! * scale);
        const right = Math.max(Math.round(chart.end[box]! * scale), left + 1);
        for (let at = left; at < right; ++at) strip.set(at, names[chart.nameOf(box)]!.fill);
        box = Math.max(lowerBoundNear(chart.begin, box, stop, (left + 1) / scale), box + 1);
      }
      strip.paint(y, rowHeight);
    });
  });
  return canvas;
}
