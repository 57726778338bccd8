// The chart that keys work on: what is selected in it, and what is next to that.
import { batch } from '@preact/signals';
import type { CallTree, Merged } from '../record/call_tree';
import type { Profile } from '../record/profile';
import { stepInTree } from '../record/tree_path';
import type { Walker } from '../record/walk';
import type { ChartState } from './chart/chart_state';
import * as state from './state';
import { neighbour, type Way } from './walk_intervals';

interface Walked {
  chart: ChartState;
  begin: Float64Array;
  end: Float64Array;
  selected: number | undefined;
  /** What is selected first. */
  first: () => number | undefined;
  next: (box: number, way: Way) => number | undefined;
  select: (box: number) => void;
}

/** The chart of the view, undefined where a table is shown. Of two timelines, the one that the focus is in or was in. */
export function currentChart(): ChartState | undefined {
  const { view, comparison, second } = state;
  if (view.value === 'timeline') return state.timeline;
  if (view.value === 'flame') return state.flame;
  if (view.value !== 'compare' || !second.value || comparison.value === 'table') return undefined;
  if (comparison.value === 'difference') return state.difference;
  return state.inSecond.value ? state.secondTimeline : state.timeline;
}

function currentWalk(): Walked | undefined {
  const chart = currentChart();
  const profile = state.profile.value;
  switch (chart) {
    case state.timeline: {
      const { currentThread, visibleThreads, walker, selectedInterval } = state;
      const threads = currentThread.value === undefined ? visibleThreads.value : [currentThread.value];
      return (
        profile &&
        throughTime(chart, profile, walker.value!, threads, selectedInterval.value, state.selectInterval)
      );
    }
    case state.secondTimeline: {
      const other = state.second.value!.profile;
      const threads = [...other.threads.keys()];
      const { secondWalker, secondInterval } = state;
      return throughTime(
        chart,
        other,
        secondWalker.value!,
        threads,
        secondInterval.value,
        state.selectInSecond,
      );
    }
    case state.flame:
      return throughTree(chart, state.callTree.value, state.selectedNode.value, state.selectNode);
    case state.difference:
      return throughTree(
        chart,
        state.differenceTree.value?.tree,
        state.differenceNode.value,
        state.selectDifference,
      );
    default:
      return undefined;
  }
}

function throughTime(
  chart: ChartState,
  profile: Profile,
  walker: Walker,
  threads: readonly number[],
  selected: number | undefined,
  select: (id: number) => void,
): Walked {
  const { begin, end } = profile;
  /** The first interval that is in view. */
  const first = () => {
    const { from } = chart.range.value;
    for (const thread of threads) {
      const row = profile.threads[thread]!.rows[0];
      for (let id = row?.first ?? 0; row && id < row.first + row.count; ++id) if (end[id]! >= from) return id;
    }
    return undefined;
  };
  const next = (id: number, way: Way) => neighbour(profile, walker, id, way);
  return { chart, begin, end, selected, first, next, select };
}

function throughTree<Box extends Merged>(
  chart: ChartState,
  tree: CallTree<Box> | undefined,
  selected: number | undefined,
  select: (node: number) => void,
): Walked | undefined {
  if (!tree || tree.nodes.length === 0) return undefined;
  const { begin, end } = tree;
  const next = (node: number, way: Way) => stepInTree(tree, node, way);
  return { chart, begin, end, selected, first: () => 0, next, select };
}

/** Selects what is next to the selection of the view's chart; without one, the first that is in view. */
export function moveSelection(way: Way): void {
  const walked = currentWalk();
  if (!walked) return;
  const { chart, begin, end, selected } = walked;
  const to = selected === undefined ? walked.first() : walked.next(selected, way);
  if (to === undefined) return;
  batch(() => {
    walked.select(to);
    chart.reveal(begin[to]!, end[to]!);
  });
}

/** Fits the selection of the current chart, or everything if nothing is selected. */
export function fitSelection(): void {
  const walked = currentWalk();
  if (!walked) return;
  const { chart, begin, end, selected } = walked;
  if (selected === undefined) return chart.all();
  chart.fit(begin[selected]!, end[selected]!);
  chart.bring();
}
