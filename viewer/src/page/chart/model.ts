// What a chart draws: lanes of rows of boxes. The timeline and the merged flame graph are both that.
import type { CallTree, Difference } from '../../record/call_tree';
import type { Profile, Row } from '../../record/profile';
import type { BoxColor } from '../colors';
import { formatCount } from '../format';

export interface Lane {
  title: string;
  note: string;
  /** The thread; -1 for the flame graph. */
  thread: number;
  rows: readonly Row[];
  /** Whether its title folds it, and whether it is folded to its first row. */
  collapsible: boolean;
  collapsed: boolean;
}

export interface Chart {
  lanes: readonly Lane[];
  /** How many of the first lanes stay in place while the others are scrolled. */
  pinned: number;
  begin: Float64Array;
  end: Float64Array;
  names: readonly string[];
  nameOf: (box: number) => number;
  isOpen: (box: number) => boolean;
  /** Colours of boxes that do not go by their names. */
  colorOf?: (box: number) => BoxColor;
}

export interface Lanes {
  threads: readonly number[];
  collapsed: ReadonlySet<number>;
  pinned: number;
  threadName: (thread: number) => string;
  mainThread: number;
}

export function timelineChart(profile: Profile, names: readonly string[], shown: Lanes): Chart {
  const { blocks, block, open } = profile;
  return {
    lanes: shown.threads.map((thread) => {
      const { rows } = profile.threads[thread]!;
      const collapsible = rows.length > 1;
      const collapsed = collapsible && shown.collapsed.has(thread);
      return {
        title: shown.threadName(thread),
        note: noteOf(profile, thread, thread === shown.mainThread, collapsed),
        thread,
        rows: collapsed ? rows.slice(0, 1) : rows,
        collapsible,
        collapsed,
      };
    }),
    pinned: shown.pinned,
    begin: profile.begin,
    end: profile.end,
    names,
    nameOf: (id) => blocks[block[id]!]!.name,
    isOpen: (id) => open[id] === 1,
  };
}

function noteOf(profile: Profile, thread: number, main: boolean, collapsed: boolean): string {
  const { rows } = profile.threads[thread]!;
  const count = rows.reduce((sum, row) => sum + row.count, 0);
  const parts = [];
  if (main && profile.threads.length > 1) parts.push('first to begin, probably the main thread');
  parts.push(count === 0 ? 'no blocks' : count === 1 ? '1 interval' : `${formatCount(count)} intervals`);
  if (collapsed) parts.push(`${rows.length - 1} more ${rows.length === 2 ? 'level' : 'levels'}`);
  return parts.join('; ');
}

export function flameChart(tree: CallTree, names: readonly string[], title: string): Chart {
  const note = 'merged by path, the heaviest to the left';
  return {
    lanes: [{ title, note, thread: -1, rows: tree.rows, collapsible: false, collapsed: false }],
    pinned: 0,
    begin: tree.begin,
    end: tree.end,
    names,
    nameOf: (node) => tree.nodes[node]!.name,
    isOpen: () => false,
  };
}

/** Two records' flame graphs as one, in the colours of what became more or less. */
export function differenceChart(
  tree: CallTree<Difference>,
  names: readonly string[],
  colorOf: (before: number, after: number) => BoxColor,
): Chart {
  const colors = tree.nodes.map(({ before, after }) => colorOf(before?.total ?? 0, after?.total ?? 0));
  return {
    ...flameChart(tree, names, 'Both records'),
    colorOf: (node) => colors[node]!,
  };
}
