// Moves that keys and buttons share.
import { layOut } from './chart/layout';
import type { ChartState } from './chart/chart_state';
import { longestOf, neighbour, type Way } from './walk_intervals';
import { stepInTree } from '../record/tree_path';
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
  if (place) state.timeline.scrollTo(place.top - (state.timeline.look?.frozen ?? 0));
}

/** Selects what is next to the selection of the view's chart; without one, the first that is in view. */
export function moveSelection(way: Way): void {
  if (state.view.value === 'flame') return moveInTree(way);
  const profile = state.profile.value;
  if (!profile) return;
  const id = state.selectedInterval.value;
  const to = id === undefined ? firstInView() : neighbour(profile, state.walker.value!, id, way);
  if (to !== undefined) goToInterval(to);
}

function moveInTree(way: Way): void {
  const tree = state.callTree.value;
  if (!tree || tree.nodes.length === 0) return;
  const node = state.selectedNode.value;
  const to = node === undefined ? 0 : stepInTree(tree, node, way);
  if (to === undefined) return;
  state.selectNode(to);
  state.flame.reveal(tree.begin[to]!, tree.end[to]!);
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

/** Fits the selection of the current chart, or everything if nothing is selected. */
export function fitSelection(): void {
  const profile = state.profile.value;
  const chart = currentChart();
  if (!chart || !profile) return;
  const [id, { begin, end }] =
    state.view.value === 'flame'
      ? [state.selectedNode.value, state.callTree.value!]
      : [state.selectedInterval.value, profile];
  if (id === undefined) return chart.all();
  chart.fit(begin[id]!, end[id]!);
  chart.bring();
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
