import { chromeTrace, csv, speedscope } from '../record/exports';
import * as state from './state';

export type ExportKind = 'chrome' | 'speedscope' | 'csv';

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
  if (kind === 'chrome') save(`${base}.trace.json`, 'application/json', chromeTrace(profile));
  else if (kind === 'speedscope')
    save(`${base}.speedscope.json`, 'application/json', speedscope(profile, record.title));
  else save(`${base}.csv`, 'text/csv', [csv(profile, state.statistics.value)]);
}

function save(name: string, type: string, parts: Iterable<string>): void {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(new Blob([...parts], { type }));
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
