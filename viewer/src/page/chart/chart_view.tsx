import { computed, signal, type ReadonlySignal } from '@preact/signals';
import { useMemo } from 'preact/hooks';
import { boxColors, chartColors } from '../colors';
import { formatTime, oneLine } from '../format';
import { matches } from '../search';
import * as state from '../state';
import { chartFont, useCanvas } from './canvas';
import type { ChartState } from './chart_state';
import { drawChart } from './draw';
import { axisHeight, boxAt, layOut, rowAt } from './layout';
import type { Chart } from './model';

interface Properties {
  label: string;
  model: ReadonlySignal<Chart | undefined>;
  chartState: ChartState;
  selected: ReadonlySignal<number | undefined>;
  onSelect: (box: number | undefined) => void;
  /** More lines for the tip at the pointer. */
  describe: (box: number) => string[];
}

/** A chart to look at: wheel and drag move it, Ctrl and wheel zoom, a click selects, a double click fits. */
export function ChartView(properties: Properties) {
  const { label, model, chartState, selected, onSelect, describe } = properties;
  const { colors, layout, pointer, area } = useMemo(
    () => ({
      colors: computed(() => boxColors(model.value?.names ?? [], state.darkNow.value)),
      layout: computed(() => (model.value ? layOut(model.value) : { places: [], height: 0 })),
      pointer: signal<{ x: number; y: number } | undefined>(undefined),
      area: signal<{ from: number; to: number } | undefined>(undefined),
    }),
    [model],
  );

  const canvas = useCanvas((context, width, height) => {
    const chart = model.value;
    if (!chart) return;
    const { places, height: rowsHeight } = layout.value;
    chartState.viewHeight = height - axisHeight;
    chartState.scrollable = Math.max(0, rowsHeight - chartState.viewHeight);
    if (chartState.scroll.value > chartState.scrollable) chartState.scrollTo(chartState.scroll.value);
    const current = state.currentThread.value;
    drawChart(context, {
      chart,
      places,
      range: chartState.range.value,
      scroll: chartState.scroll.value,
      width,
      height,
      boxColors: colors.value,
      colors: chartColors(state.darkNow.value),
      matches: matches.value,
      selected: selected.value,
      selectedName: state.selectedName.value,
      hovered: chartState.hovered.value,
      currentLane:
        current === undefined ? undefined : chart.lanes.findIndex((lane) => lane.thread === current),
      font: chartFont,
    });
    if (area.value) {
      const { from, to } = area.value;
      context.globalAlpha = 0.2;
      context.fillStyle = chartColors(state.darkNow.value).accent;
      context.fillRect(Math.min(from, to), axisHeight, Math.abs(to - from), height);
      context.globalAlpha = 1;
    }
  });

  const timeAt = (x: number) => {
    const { from, to } = chartState.range.value;
    return from + ((to - from) * x) / canvas.current!.clientWidth;
  };
  const find = (event: MouseEvent): number | undefined => {
    const chart = model.value;
    if (!chart || event.offsetY < axisHeight) return undefined;
    const row = rowAt(chart, layout.value.places, event.offsetY - axisHeight + chartState.scroll.value);
    return row && boxAt(chart, row, timeAt(event.offsetX), timeAt(3) - timeAt(0));
  };

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

  const onPointerDown = (event: PointerEvent) => {
    if (event.button !== 0) return;
    const element = canvas.current!;
    element.setPointerCapture(event.pointerId);
    const start = {
      x: event.offsetX,
      y: event.offsetY,
      ...chartState.range.value,
      scroll: chartState.scroll.value,
    };
    const selecting = event.shiftKey;
    let moved = false;
    const move = (now: PointerEvent) => {
      moved ||= Math.hypot(now.offsetX - start.x, now.offsetY - start.y) > 3;
      if (!moved) return;
      if (selecting) {
        area.value = { from: start.x, to: now.offsetX };
        return;
      }
      chartState.hovered.value = undefined;
      const shift = ((start.x - now.offsetX) / element.clientWidth) * (start.to - start.from);
      chartState.show(start.from + shift, start.to + shift);
      chartState.scrollTo(start.scroll + start.y - now.offsetY);
    };
    const up = (now: PointerEvent) => {
      element.removeEventListener('pointermove', move);
      element.removeEventListener('pointerup', up);
      element.removeEventListener('pointercancel', up);
      const chosen = area.value;
      area.value = undefined;
      if (chosen)
        chartState.show(timeAt(Math.min(chosen.from, chosen.to)), timeAt(Math.max(chosen.from, chosen.to)));
      else if (!moved && now.type === 'pointerup') onSelect(find(now));
    };
    element.addEventListener('pointermove', move);
    element.addEventListener('pointerup', up);
    element.addEventListener('pointercancel', up);
  };

  const onPointerMove = (event: PointerEvent) => {
    if (event.buttons !== 0) return;
    chartState.hovered.value = find(event);
    pointer.value = { x: event.offsetX, y: event.offsetY };
  };

  const onDoubleClick = (event: MouseEvent) => {
    const box = find(event);
    const chart = model.value;
    if (box !== undefined && chart) chartState.fit(chart.begin[box]!, chart.end[box]!);
  };

  return (
    <div class="chart">
      <canvas
        ref={canvas}
        tabIndex={0}
        role="img"
        aria-label={label}
        onWheel={onWheel}
        onPointerDown={onPointerDown}
        onPointerMove={onPointerMove}
        onPointerLeave={() => (chartState.hovered.value = undefined)}
        onDblClick={onDoubleClick}
      />
      <Tip model={model} chartState={chartState} pointer={pointer} describe={describe} />
    </div>
  );
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
      <b>{oneLine(chart.names[chart.nameOf(box)]!).slice(0, 300)}</b>
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
