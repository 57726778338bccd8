// The search finds names; in the timeline it goes from interval to interval.
import { computed } from '@preact/signals';
import { sortRow } from '../record/rows';
import * as state from './state';

const wanted = computed(() => state.search.value.toLowerCase());

/** 1 for each name that holds what is searched for; undefined while nothing is. */
export const matches = computed(() => {
  const text = wanted.value;
  if (!text) return undefined;
  return Uint8Array.from(state.names.value, (name) => (name.toLowerCase().includes(text) ? 1 : 0));
});

/** The intervals found on the threads shown, in time order. */
export const hits = computed(() => {
  const profile = state.profile.value;
  const found = matches.value;
  if (!profile || !found) return new Int32Array(0);
  const ids: number[] = [];
  const runs: number[] = [];
  for (const thread of state.visibleThreads.value)
    for (const row of profile.threads[thread]!.rows) {
      for (let id = row.first; id < row.first + row.count; ++id)
        if (found[profile.blocks[profile.block[id]!]!.name]) ids.push(id);
      runs.push(ids.length);
    }
  const sorted = Int32Array.from(ids);
  sortRow(sorted, 0, runs, profile.begin, profile.end);
  return sorted;
});

/** The place of the selected interval among the hits, -1 if it is none. */
export const currentHit = computed(() => {
  const id = state.selectedInterval.value;
  return id === undefined ? -1 : hits.value.indexOf(id);
});

/** Selects the next hit (`step` 1) or the one before (-1), from the selection or the middle of what is in view. */
export function goToHit(step: 1 | -1): void {
  const profile = state.profile.value;
  const found = hits.value;
  if (!profile || found.length === 0) return;
  let at = currentHit.value + step;
  if (currentHit.value < 0) {
    const from = state.selectedInterval.value;
    const time = from === undefined ? state.timeline.range.value.from : profile.begin[from]!;
    at = found.findIndex((id) => profile.begin[id]! >= time);
    if (at < 0) at = step > 0 ? 0 : found.length;
    if (step < 0) --at;
  }
  const id = found[(at + found.length) % found.length]!;
  state.selectInterval(id);
  if (state.view.value === 'timeline') state.timeline.reveal(profile.begin[id]!, profile.end[id]!);
}
