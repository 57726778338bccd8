import { computed, signal, type ReadonlySignal } from '@preact/signals';
import { useMemo } from 'preact/hooks';
import type { Range } from '../../record/statistics';
import { boxColors, chartColors } from '../colors';
import { formatTime, shortened } from '../format';
import { marksIn, matches } from '../search';
import * as state from '../state';
import { chartFont, useCanvas } from './canvas';
import type { ChartState } from './chart_state';
import { drawChart, type Look } from './draw';
import { Pointers, type Gestures } from './gestures';
import {
  axisHeight,
  boxAt,
  depthAt,
  frozenHeight,
  layOut,
  rowAt,
  scrollToRow,
  titleAt,
  topOf,
} from './layout';
import type { Chart } from './model';
import { ImageStrip } from './strip';

interface Properties {
  label: string;
  model: ReadonlySignal<Chart | undefined>;
  chartState: ChartState;
  selected: ReadonlySignal<number | undefined>;
  onSelect: (box: number | undefined) => void;
  /** More lines for the tip at the pointer. */
  describe: (box: number) => string[];
  /** A span is being chosen with Shift and the pointer, or has been. */
  onSpan?: (span: Range, chosen: boolean) => void;
  /** The title of a lane was clicked, or asked for its menu at a place of the chart. */
  onLane?: (lane: number) => void;
  onLaneMenu?: (lane: number, x: number, y: number) => void;
  onFocus?: () => void;
  /** Its names are not those of the record that is open: neither search nor selection is shown in it. */
  foreign?: boolean;
}

/** A chart to look at: wheel and drag move it, Ctrl and wheel and two fingers zoom, a click selects, two clicks fit. */
export function ChartView(properties: Properties) {
  const { label, model, chartState, selected, onSelect, describe } = properties;
  const { colors, layout, pointer, pointers, shown } = useMemo(
    () => ({
      colors: computed(() => boxColors(model.value?.names ?? [], state.darkNow.value, state.palette.value)),
      layout: computed(() => (model.value ? layOut(model.value) : { places: [], height: 0 })),
      pointer: signal<{ x: number; y: number } | undefined>(undefined),
      pointers: new Pointers(),
      shown: { height: 0, frozen: 0, inView: false },
    }),
    [model],
  );

  /** Brings the selected box into view if it is new, or was in view before the view changed. */
  const bringSelected = (chart: Chart, height: number, frozen: number) => {
    const box = selected.value;
    const wanted = chartState.wanted.value;
    const isNew = chartState.brought !== box || chartState.broughtFor !== wanted;
    chartState.brought = box;
    chartState.broughtFor = wanted;
    const top = box === undefined ? undefined : topOf(chart, layout.value.places, box);
    if (box === undefined || top === undefined) return void (shown.inView = false);
    const { from, to } = chartState.range.peek();
    if (isNew && (chart.end[box]! < from || chart.begin[box]! > to))
      chartState.reveal(chart.begin[box]!, chart.end[box]!);
    const scroll = chartState.scroll.peek();
    const goal = scrollToRow(scroll, height, frozen, top);
    const changed = shown.height !== height || shown.frozen !== frozen;
    if (goal !== scroll && (isNew || (changed && shown.inView))) chartState.scrollTo(goal);
    shown.inView = scrollToRow(chartState.scroll.peek(), height, frozen, top) === chartState.scroll.peek();
    shown.height = height;
    shown.frozen = frozen;
  };

  const canvas = useCanvas((context, width, height) => {
    const chart = model.value;
    if (!chart) return;
    const { places, height: rowsHeight } = layout.value;
    const viewHeight = height - axisHeight;
    const frozen = frozenHeight(chart, places, viewHeight);
    chartState.scrollable = Math.max(0, rowsHeight - viewHeight);
    if (chartState.scroll.peek() > chartState.scrollable) chartState.scrollTo(chartState.scroll.peek());
    bringSelected(chart, viewHeight, frozen);
    const look = lookOf(properties, chart, width, height, colors.value);
    chartState.look = { ...look, places, frozen };
    drawChart(context, chartState.look, new ImageStrip(context, width));
  });

  const timeAt = (x: number) => {
    const { from, to } = chartState.range.value;
    return from + ((to - from) * x) / canvas.current!.clientWidth;
  };
  const frozenNow = () => chartState.look?.frozen ?? 0;
  const find = (event: MouseEvent): number | undefined => {
    const chart = model.value;
    if (!chart || event.offsetY < axisHeight || laneAt(event) !== undefined) return undefined;
    const depth = depthAt(event.offsetY - axisHeight, frozenNow(), chartState.scroll.value);
    const row = rowAt(chart, layout.value.places, depth);
    return row && boxAt(chart, row, timeAt(event.offsetX), timeAt(3) - timeAt(0));
  };
  /** The lane whose title is under the pointer. */
  const laneAt = (event: MouseEvent): number | undefined =>
    event.offsetY < axisHeight
      ? undefined
      : titleAt(layout.value.places, event.offsetY - axisHeight, frozenNow(), chartState.scroll.value);

  const onWheel = (event: WheelEvent) => {
    event.preventDefault();
    const width = canvas.current!.clientWidth;
    const lines = event.deltaMode === 1 ? 18 : 1;
    if (event.ctrlKey || event.metaKey)
      chartState.zoom(Math.exp(-event.deltaY * lines * 0.003), event.offsetX / width);
    else {
      const [across, down] = event.shiftKey ? [event.deltaY + event.deltaX, 0] : [event.deltaX, event.deltaY];
      if (across) chartState.pan((across * lines) / width);
      if (down) chartState.scrollBy(down * lines);
    }
  };

  const gestures: Gestures = {
    chartState,
    timeAt,
    onSpan: (from, to, chosen) => properties.onSpan?.({ from, to }, chosen),
    onClick: (event) => {
      const lane = laneAt(event);
      if (lane !== undefined && properties.onLane) properties.onLane(lane);
      else onSelect(find(event));
    },
  };

  const onPointerMove = (event: PointerEvent) => {
    if (event.buttons !== 0) return pointers.move(event, gestures);
    chartState.hovered.value = find(event);
    pointer.value = { x: event.offsetX, y: event.offsetY };
  };

  const onDoubleClick = (event: MouseEvent) => {
    const box = find(event);
    const chart = model.value;
    if (box !== undefined && chart) chartState.fit(chart.begin[box]!, chart.end[box]!);
  };

  const onContextMenu = (event: MouseEvent) => {
    const lane = laneAt(event);
    if (lane === undefined || !properties.onLaneMenu) return;
    event.preventDefault();
    properties.onLaneMenu(lane, event.offsetX, event.offsetY);
  };

  return (
    <div class="chart">
      <canvas
        ref={canvas}
        tabIndex={0}
        role="application"
        aria-label={label}
        aria-describedby="details"
        onWheel={onWheel}
        onPointerDown={(event) => pointers.down(event, gestures)}
        onPointerMove={onPointerMove}
        onPointerUp={(event) => pointers.up(event, gestures)}
        onPointerCancel={(event) => pointers.up(event, gestures)}
        onPointerLeave={() => (chartState.hovered.value = undefined)}
        onDblClick={onDoubleClick}
        onFocus={properties.onFocus}
        onContextMenu={onContextMenu}
      />
      <Tip model={model} chartState={chartState} pointer={pointer} describe={describe} />
    </div>
  );
}

/** What the chart looks like now, but for where its lanes are. */
function lookOf(
  { chartState, selected, onSpan, foreign }: Properties,
  chart: Chart,
  width: number,
  height: number,
  colors: Look['boxColors'],
): Omit<Look, 'places' | 'frozen'> {
  const range = chartState.range.value;
  const current = state.currentThread.value;
  const ofTime = onSpan !== undefined;
  return {
    chart,
    range,
    scroll: chartState.scroll.value,
    width,
    height,
    boxColors: colors,
    colors: chartColors(state.darkNow.value),
    matches: foreign ? undefined : matches.value,
    selected: selected.value,
    selectedName: foreign ? undefined : state.selectedName.value,
    hovered: chartState.hovered.value,
    currentLane: current === undefined ? undefined : chart.lanes.findIndex((lane) => lane.thread === current),
    font: chartFont,
    marks: ofTime ? marksIn(range, Math.round(width)) : undefined,
    span: ofTime ? state.span.value : undefined,
    notes: ofTime ? state.notes.value : [],
  };
}

interface TipProperties {
  model: ReadonlySignal<Chart | undefined>;
  chartState: ChartState;
  pointer: ReadonlySignal<{ x: number; y: number } | undefined>;
  describe: (box: number) => string[];
}

function Tip({ model, chartState, pointer, describe }: TipProperties) {
  const box = chartState.hovered.value;
  const chart = model.value;
  if (box === undefined || !chart || !pointer.value || box >= chart.begin.length) return null;
  const { x, y } = pointer.value;
  const onRight = x > innerWidth / 2;
  const style = {
    left: onRight ? 'auto' : `${x + 14}px`,
    right: onRight ? `calc(100% - ${x - 10}px)` : 'auto',
    top: `${y + 16}px`,
  };
  return (
    <div class="tip" style={style}>
      <b>{shortened(chart.names[chart.nameOf(box)]!, 300)}</b>
      <span class="number">
        {formatTime(chart.end[box]! - chart.begin[box]!)}
        {chart.isOpen(box) ? ' (never closed)' : ''}
      </span>
      {describe(box).map((line) => (
        <span>{line}</span>
      ))}
    </div>
  );
}
