// What a chart draws: lanes of rows of boxes. The timeline and the merged flame graph are both that.
import type { CallTree } from '../../record/call_tree';
import type { Profile, Row } from '../../record/profile';
import { formatCount } from '../format';

export interface Lane {
  title: string;
  note: string;
  /** The thread; -1 for the flame graph. */
  thread: number;
  rows: readonly Row[];
}

export interface Chart {
  lanes: readonly Lane[];
  begin: Float64Array;
  end: Float64Array;
  names: readonly string[];
  nameOf: (box: number) => number;
  isOpen: (box: number) => boolean;
}

export function timelineChart(
  profile: Profile,
  names: readonly string[],
  threads: readonly number[],
  threadName: (thread: number) => string,
  mainThread: number,
): Chart {
  const { blocks, block, open } = profile;
  return {
    lanes: threads.map((thread) => {
      const { rows } = profile.threads[thread]!;
      const count = rows.reduce((sum, row) => sum + row.count, 0);
      const main =
        thread === mainThread && profile.threads.length > 1
          ? 'first to begin, probably the main thread; '
          : '';
      const intervals = count === 1 ? '1 interval' : `${formatCount(count)} intervals`;
      return { title: threadName(thread), note: main + (count > 0 ? intervals : 'no blocks'), thread, rows };
    }),
    begin: profile.begin,
    end: profile.end,
    names,
    nameOf: (id) => blocks[block[id]!]!.name,
    isOpen: (id) => open[id] === 1,
  };
}

export function flameChart(tree: CallTree, names: readonly string[], title: string): Chart {
  return {
    lanes: [{ title, note: 'merged by path, the heaviest to the left', thread: -1, rows: tree.rows }],
    begin: tree.begin,
    end: tree.end,
    names,
    nameOf: (node) => tree.nodes[node]!.name,
    isOpen: () => false,
  };
}
