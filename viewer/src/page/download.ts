import { chromeTrace, csv, speedscope } from '../record/exports';
import { countingNames } from '../record/statistics';
import { drawChart } from './chart/draw';
import { RectangleStrip } from './chart/strip';
import { SvgSurface } from './chart/svg';
import { takeView } from './kept_view';
import { runSliced } from './sliced';
import * as state from './state';
import { currentChart } from './walked';

export type ExportKind = 'chrome' | 'speedscope' | 'csv' | 'png' | 'svg' | 'view';

/** Hands a file to the browser's downloads; nothing leaves the machine. */
export function exportAs(kind: ExportKind): void {
  const record = state.opened.value;
  if (!record) return;
  const base = record.title.replace(/\.[^.]*$/, '');
  const profile = {
    ...record.profile,
    names: state.names.value,
    threads: record.profile.threads.map((thread, index) => ({ ...thread, name: state.threadName(index) })),
  };
  switch (kind) {
    case 'chrome':
      return save(`${base}.trace.json`, 'application/json', chromeTrace(profile));
    case 'speedscope':
      return save(`${base}.speedscope.json`, 'application/json', speedscope(profile, record.title));
    case 'csv':
      return void runSliced(
        countingNames(profile, state.selection.value),
        new AbortController().signal,
        (rows) => save(`${base}.csv`, 'text/csv', [csv(profile, rows)]),
      );
    case 'view':
      return save(`${base}.view.json`, 'application/json', [JSON.stringify(takeView(), null, 1)]);
    case 'svg':
      return save(`${base}.svg`, 'image/svg+xml', [asSvg()]);
    case 'png':
      return asPng((blob) => saveBlob(`${base}.png`, blob));
  }
}

/** Whether the view is one that there can be a picture of: one chart. */
export const hasPicture = () => state.view.value !== 'compare' && currentChart() !== undefined;

const chartCanvas = () => document.querySelector<HTMLCanvasElement>('.chart canvas');

function asSvg(): string {
  const look = currentChart()?.look;
  const context = new OffscreenCanvas(1, 1).getContext('2d')!;
  const surface = new SvgSurface(look?.width ?? 0, look?.height ?? 0, (text, font) => {
    context.font = font;
    return context.measureText(text);
  });
  if (look) drawChart(surface, look, new RectangleStrip(surface, look.width));
  return surface.toString();
}

function asPng(then: (blob: Blob) => void): void {
  chartCanvas()?.toBlob((blob) => blob && then(blob), 'image/png');
}

function save(name: string, type: string, parts: Iterable<string>): void {
  saveBlob(name, new Blob([...parts], { type }));
}

function saveBlob(name: string, blob: Blob): void {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
