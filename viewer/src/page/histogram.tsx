import uPlot from 'uplot';
import 'uplot/dist/uPlot.min.css';
import { useEffect, useMemo, useRef, useState } from 'preact/hooks';
import { lowerBound } from '../record/bounds';
import { binEdges, countInBins } from '../record/histogram';
import type { Durations } from '../record/statistics';
import { chartColors } from './colors';
import { formatCount, formatShare, formatTime, shortCount } from './format';
import * as state from './state';

interface Properties {
  /** One set, or two that are compared. */
  sets: readonly Durations[];
  titles?: readonly string[];
}

/** How durations spread; under the pointer it tells how many are shorter and longer. */
export function Histogram({ sets, titles }: Properties) {
  const frame = useRef<HTMLDivElement>(null);
  const [cursor, setCursor] = useState<number | undefined>(undefined);
  const dark = state.darkNow.value;
  const { edges, counts } = useMemo(() => {
    const filled = sets.map(({ durations }) => durations);
    const edges = binEdges(filled, Math.max(...sets.map(({ resolution }) => resolution)));
    return { edges, counts: filled.map((durations) => countInBins(durations, edges)) };
  }, [sets]);
  const bins = Math.max(edges.length - 1, 0);
  const at = (place: number) => {
    const bin = Math.min(Math.max(Math.floor(place), 0), bins - 1);
    return edges[bin]! + (edges[bin + 1]! - edges[bin]!) * (place - bin);
  };

  useEffect(() => {
    if (!frame.current) return;
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
            values: (_, places) => places.map((place) => formatTime(edges[place] ?? NaN, 3)),
          },
          {
            ...axis,
            size: 44,
            values: (_, values) => values.map(shortCount),
          },
        ],
        series: [
          {},
          ...counts.map((_, set) => ({
            fill: [colors.accent, colors.mark][set]!,
            stroke: [colors.accent, colors.mark][set]!,
            width: 0,
            points: { show: false },
            paths: uPlot.paths.bars!(
              counts.length > 1 ? { size: [0.45], align: set === 0 ? -1 : 1 } : { size: [0.9], align: 0 },
            ),
          })),
        ],
        hooks: {
          setCursor: [
            ({ cursor: { left }, posToVal }) =>
              setCursor(left !== undefined && left >= 0 ? at(posToVal(left, 'x')) : undefined),
          ],
        },
      },
      [Array.from({ length: bins }, (_, bin) => bin + 0.5), ...counts],
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
  }, [sets, dark]);

  const filled = sets.filter(({ durations }) => durations.length > 0);
  if (filled.length === 0) return <p class="hint">No closed interval to draw a histogram of.</p>;
  const [{ durations }] = filled as [Durations];
  if (sets.length === 1 && durations[0] === durations[durations.length - 1])
    return (
      <p class="hint">
        {durations.length === 1
          ? 'One closed interval of'
          : `All ${formatCount(durations.length)} closed intervals took`}{' '}
        {formatTime(durations[0]!)}.
      </p>
    );
  return (
    <figure class="histogram">
      {sets.map((set, index) => (
        <figcaption aria-live="off">
          {titles && <b class={index === 0 ? 'first-set' : 'second-set'}>{titles[index]} </b>}
          {captionOf(set, cursor)}
        </figcaption>
      ))}
      <div ref={frame} />
    </figure>
  );
}

function captionOf({ durations, resolution }: Durations, cursor: number | undefined): string {
  const { length } = durations;
  const all = length === 1 ? '1 duration' : `${formatCount(length)} durations`;
  if (cursor === undefined) return `${all}; point at the bars to divide them`;
  const share = (count: number) => `${formatCount(count)} (${formatShare(count, length)})`;
  if (cursor < resolution) {
    const short = lowerBound(durations, 0, length, resolution * (1 - 1e-6));
    return `below ${formatTime(resolution)}, the step of the stamps: ${share(short)}; longer: ${share(length - short)}`;
  }
  const left = lowerBound(durations, 0, length, cursor);
  return `${formatTime(cursor)}: ${formatCount(left)} shorter (${formatShare(left, length)}), ${formatCount(length - left)} as long or longer (${formatShare(length - left, length)})`;
}
