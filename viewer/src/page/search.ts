// The search finds names, lengths and threads; in the timeline it goes from interval to interval.
import { computed, effect, signal } from '@preact/signals';
import { marksOf, parseQuery, Search } from '../record/search';
import type { Range } from '../record/statistics';
import { runSliced } from './sliced';
import * as state from './state';

const parsed = computed(() => parseQuery(state.search.value));

export const query = computed(() => (typeof parsed.value === 'object' ? parsed.value : undefined));

/** Why the search cannot be understood: a sentence. */
export const fault = computed(() => (typeof parsed.value === 'string' ? parsed.value : undefined));

/** 1 for each name that is searched for; undefined while nothing is. */
export const matches = computed(() => {
  if (parsed.value === undefined) return undefined;
  const isWanted = query.value ? query.value.name : () => false;
  return Uint8Array.from(state.names.value, (text) => (!isWanted || isWanted(text) ? 1 : 0));
});

const search = computed(() => {
  const profile = state.profile.value;
  return profile && query.value
    ? new Search(profile, query.value, state.names.value, state.visibleThreads.value, state.threadName)
    : undefined;
});

const nothing = { ids: new Int32Array(0), found: 0, done: true };
/** The intervals found on the threads shown, in time order when the search is done; how many there are so far. */
export const hits = signal(nothing);
let working: Promise<void> | undefined;
let stop = new AbortController();

effect(() => {
  const current = search.value;
  stop.abort();
  stop = new AbortController();
  working = undefined;
  hits.value = nothing;
  if (current) working = runSliced(toItsEnd(current), stop.signal, tell);
});

function* toItsEnd(current: Search): Generator<void, Search> {
  while (!current.run(5)) {
    if (current.found !== hits.peek().found) tell(current);
    yield;
  }
  return current;
}

function tell({ hits: ids, found, done }: Search): void {
  hits.value = { ids, found, done };
}

/** The place of the selected interval among the hits, -1 if it is none. */
export const currentHit = computed(() => {
  const id = state.selectedInterval.value;
  return id === undefined || !hits.value.done ? -1 : (search.value?.placeOf(id) ?? -1);
});

/** Pixels with hits, of `width` for the range; undefined while there are none. */
export function marksIn(range: Range, width: number): Uint8Array | undefined {
  const profile = state.profile.value;
  const { ids } = hits.value;
  return profile && ids.length > 0 ? marksOf(profile, ids, range, width) : undefined;
}

/** Selects the next hit (`step` 1) or the one before (-1), from the selection or the beginning of what is in view. */
export async function goToHit(step: 1 | -1): Promise<void> {
  const current = search.value;
  const profile = state.profile.value;
  if (!current || !profile) return;
  const selected = state.selectedInterval.value;
  const from = selected === undefined ? { time: state.timeline.range.value.from } : { id: selected };
  let id = current.next(from, step);
  if (id === undefined && !current.done) {
    await working;
    id = current.next(from, step);
  }
  if (id === undefined || current !== search.value) return;
  state.selectInterval(id);
  state.timeline.reveal(profile.begin[id]!, profile.end[id]!);
}
