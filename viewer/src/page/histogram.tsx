import uPlot from 'uplot';
import 'uplot/dist/uPlot.min.css';
import { useEffect, useRef, useState } from 'preact/hooks';
import { lowerBound } from './chart/layout';
import { chartColors } from './colors';
import { formatCount, formatShare, formatTime } from './format';
import * as state from './state';

const bins = 48;

/** Bins of equal width, or of equal ratio where the durations span more than a hundredfold. */
export function histogram(durations: Float64Array): { counts: number[]; at: (bin: number) => number } {
  const least = durations[0] ?? 0;
  const most = durations[durations.length - 1] ?? 0;
  const firstPositive = durations[lowerBound(durations, 0, durations.length, Number.MIN_VALUE)] ?? 0;
  const byRatio = firstPositive > 0 && most / firstPositive > 100;
  const start = byRatio ? firstPositive : least;
  const at = byRatio
    ? (bin: number) => start * (most / start) ** (bin / bins)
    : (bin: number) => start + ((most > start ? most - start : 1e-6) * bin) / bins;
  const counts: number[] = [];
  let from = 0;
  for (let bin = 1; bin <= bins; ++bin) {
    const to = bin === bins ? durations.length : lowerBound(durations, from, durations.length, at(bin));
    counts.push(to - from);
    from = to;
  }
  return { counts, at };
}

/** How the durations of one name spread; under the pointer it tells how many are shorter and longer. */
export function Histogram({ durations }: { durations: Float64Array }) {
  const frame = useRef<HTMLDivElement>(null);
  const [cursor, setCursor] = useState<number | undefined>(undefined);
  const dark = state.darkNow.value;

  useEffect(() => {
    if (!frame.current) return;
    const { counts, at } = histogram(durations);
    const colors = chartColors(dark);
    const axis = {
      stroke: colors.muted,
      grid: { stroke: colors.line, width: 1 },
      ticks: { stroke: colors.line, width: 1 },
    };
    const element = frame.current;
    const plot = new uPlot(
      {
        width: element.clientWidth,
        height: element.clientHeight,
        legend: { show: false },
        cursor: { y: false, drag: { x: false, y: false }, points: { show: false } },
        scales: { x: { time: false, range: [0, bins] } },
        axes: [
          {
            ...axis,
            size: 28,
            space: 70,
            values: (_, places) => places.map((place) => formatTime(at(place))),
          },
          {
            ...axis,
            size: 44,
            values: (_, values) => values.map((value) => (Number.isInteger(value) ? String(value) : '')),
          },
        ],
        series: [
          {},
          {
            fill: colors.accent,
            stroke: colors.accent,
            width: 0,
            points: { show: false },
            paths: uPlot.paths.bars!({ size: [0.9], align: 0 }),
          },
        ],
        hooks: {
          setCursor: [
            ({ cursor: { left }, posToVal }) =>
              setCursor(left !== undefined && left >= 0 ? at(posToVal(left, 'x')) : undefined),
          ],
        },
      },
      [counts.map((_, bin) => bin + 0.5), counts],
      element,
    );
    const observer = new ResizeObserver(() =>
      plot.setSize({ width: element.clientWidth, height: element.clientHeight }),
    );
    observer.observe(element);
    return () => {
      observer.disconnect();
      plot.destroy();
    };
  }, [durations, dark]);

  if (durations.length === 0) return <p class="hint">No closed interval to draw a histogram of.</p>;
  if (durations[0] === durations[durations.length - 1])
    return (
      <p class="hint">
        {durations.length === 1
          ? 'One closed interval of'
          : `All ${formatCount(durations.length)} closed intervals took`}{' '}
        {formatTime(durations[0]!)}.
      </p>
    );
  const left = cursor === undefined ? 0 : lowerBound(durations, 0, durations.length, cursor);
  const right = durations.length - left;
  return (
    <figure class="histogram">
      <figcaption aria-live="off">
        {cursor === undefined
          ? `${formatCount(durations.length)} durations; point at the bars to divide them`
          : `${formatTime(cursor)}: ${formatCount(left)} shorter (${formatShare(left, durations.length)}), ${formatCount(right)} as long or longer (${formatShare(right, durations.length)})`}
      </figcaption>
      <div ref={frame} />
    </figure>
  );
}
