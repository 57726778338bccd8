// Moves that keys and buttons share.
import { layOut, rowHeight, titleHeight, topOf } from './chart/layout';
import type { ChartState } from './chart/chart_state';
import { duration } from '../record/profile';
import * as state from './state';

/** The chart of the view, undefined where a table is shown. */
export function currentChart(): ChartState | undefined {
  return state.view.value === 'timeline'
    ? state.timeline
    : state.view.value === 'flame'
      ? state.flame
      : undefined;
}

/** The next thread (1) or the one before (-1); past the ends, all threads. */
export function goToThread(step: 1 | -1): void {
  const threads = state.visibleThreads.value;
  if (threads.length === 0) return;
  const current = state.currentThread.value;
  const at = current === undefined ? (step > 0 ? -1 : threads.length) : threads.indexOf(current);
  state.currentThread.value = threads[at + step];
  const model = state.timelineModel.value;
  if (!model || state.currentThread.value === undefined) return;
  const place = layOut(model).places.find(
    ({ lane }) => model.lanes[lane]!.thread === state.currentThread.value,
  );
  if (place) state.timeline.scrollTo(place.top);
}

/** Moves the timeline up or down to where the selected interval can be seen. */
export function scrollToSelection(): void {
  const model = state.timelineModel.value;
  const id = state.selectedInterval.value;
  if (!model || id === undefined) return;
  const top = topOf(model, layOut(model).places, id);
  const { timeline } = state;
  if (top === undefined) return;
  if (top - titleHeight < timeline.scroll.value) timeline.scrollTo(top - titleHeight);
  else if (top + rowHeight > timeline.scroll.value + timeline.viewHeight)
    timeline.scrollTo(top + rowHeight - timeline.viewHeight + rowHeight);
}

/** The interval next to the selected one: its neighbour in time, the one around it or the first inside it. */
export function moveSelection(way: 'left' | 'right' | 'up' | 'down'): void {
  const profile = state.profile.value;
  if (!profile) return;
  const id = state.selectedInterval.value ?? firstInView();
  if (id === undefined) return;
  const row = rowOf(id);
  let to: number | undefined = id;
  if (state.selectedInterval.value !== undefined) {
    if (way === 'left') to = id > row.first ? id - 1 : undefined;
    else if (way === 'right') to = id + 1 < row.first + row.count ? id + 1 : undefined;
    else if (way === 'up') to = profile.parent[id]! >= 0 ? profile.parent[id] : undefined;
    else to = state.walker.value!.innerOf(id)[0];
  }
  if (to === undefined) return;
  state.selectInterval(to);
  state.timeline.reveal(profile.begin[to]!, profile.end[to]!);
  scrollToSelection();
}

function rowOf(id: number) {
  const { blocks, block, threads } = state.profile.value!;
  const owner = blocks[block[id]!]!;
  return threads[owner.thread]!.rows[owner.depth]!;
}

function firstInView(): number | undefined {
  const profile = state.profile.value!;
  const threads =
    state.currentThread.value === undefined ? state.visibleThreads.value : [state.currentThread.value];
  const { from } = state.timeline.range.value;
  for (const thread of threads) {
    const row = profile.threads[thread]!.rows[0];
    for (let id = row?.first ?? 0; row && id < row.first + row.count; ++id)
      if (profile.end[id]! >= from) return id;
  }
  return undefined;
}

/** Shows the longest interval of a name in the timeline. */
export function goToLongest(name: number): void {
  const profile = state.profile.value;
  if (!profile) return;
  let longest: number | undefined;
  for (let id = 0; id < profile.begin.length; ++id) {
    const owner = profile.blocks[profile.block[id]!]!;
    if (owner.name !== name || state.hidden.value.has(owner.thread)) continue;
    if (longest === undefined || duration(profile, id) > duration(profile, longest)) longest = id;
  }
  if (longest === undefined) return;
  state.view.value = 'timeline';
  state.selectInterval(longest);
  state.timeline.fit(profile.begin[longest]!, profile.end[longest]!);
  requestAnimationFrame(scrollToSelection);
}

/** Fits the selection of the current chart, or everything if nothing is selected. */
export function fitSelection(): void {
  const profile = state.profile.value;
  const id = state.selectedInterval.value;
  if (state.view.value !== 'timeline' || !profile) return;
  if (id === undefined) state.timeline.all();
  else state.timeline.fit(profile.begin[id]!, profile.end[id]!);
}
