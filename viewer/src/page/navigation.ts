// Moves that keys and buttons share.
import { layOut } from './chart/layout';
import { longestOf } from './walk_intervals';
import * as state from './state';

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
  if (place) state.timeline.scrollTo(place.top - (state.timeline.look?.frozen ?? 0));
}

/** Selects an interval and moves the timeline, without zooming if it can be seen, to where it is. */
export function goToInterval(id: number): void {
  const profile = state.profile.value!;
  state.selectInterval(id);
  state.timeline.reveal(profile.begin[id]!, profile.end[id]!);
}

/** Shows an interval in the timeline, from whatever view. */
export function showInterval(id: number): void {
  const profile = state.profile.value!;
  state.view.value = 'timeline';
  state.selectInterval(id);
  state.timeline.fit(profile.begin[id]!, profile.end[id]!);
}

/** Shows an interval that was chosen from a list: where it is, and as large as the view has it. */
export function showListed(id: number): void {
  state.view.value = 'timeline';
  goToInterval(id);
}

/** Shows the longest interval of a name in the timeline. */
export function goToLongest(name: number): void {
  const profile = state.profile.value;
  const longest = profile && longestOf(profile, name, state.hidden.value);
  if (longest !== undefined) showInterval(longest);
}

/** Folds a thread's lane to its first row, or unfolds it. */
export function toggleCollapsed(thread: number | undefined): void {
  if (thread === undefined) return;
  const { collapsed } = state;
  collapsed.value = collapsed.value.has(thread)
    ? state.without(collapsed.value, thread)
    : new Set([...collapsed.value, thread]);
}

export function collapseAll(collapse: boolean): void {
  state.collapsed.value = new Set(collapse ? state.visibleThreads.value : []);
}

export function togglePinned(thread: number | undefined): void {
  if (thread === undefined) return;
  const { pinned } = state;
  pinned.value = pinned.value.has(thread)
    ? state.without(pinned.value, thread)
    : new Set([...pinned.value, thread]);
}

export function hideThread(thread: number): void {
  state.hidden.value = new Set([...state.hidden.value, thread]);
  if (state.currentThread.value === thread) state.currentThread.value = undefined;
}

/** Moves a thread up (-1) or down (1) among the lanes that are shown; the order is then the user's own. */
export function moveThread(thread: number, step: 1 | -1): void {
  const order = [...state.orderedThreads.value];
  const shown = state.visibleThreads.value;
  const other = shown[shown.indexOf(thread) + step];
  if (other === undefined) return;
  const [a, b] = [order.indexOf(thread), order.indexOf(other)];
  [order[a], order[b]] = [other, thread];
  state.ownOrder.value = order;
  state.threadOrder.value = 'own';
}
