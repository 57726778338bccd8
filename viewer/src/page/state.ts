// All that the page knows. It goes with the page, but for the names that the user gave to threads (thread_names.ts).
import { batch, computed, effect, signal } from '@preact/signals';
import { decodeNames, guessEncoding } from '../record/bytes';
import { compare, type Compared } from '../record/compare';
import { makeCallTree, makeDifferenceTree, type CallTree, type Difference } from '../record/call_tree';
import { nodeOfPath, pathOfNode } from '../record/tree_path';
import { makeProfile, type Profile } from '../record/profile';
import type { RawRecord } from '../record/record';
import type { Range, Selection } from '../record/statistics';
import { Walker } from '../record/walk';
import { changeColor, type Palette } from './colors';
import { ChartState } from './chart/chart_state';
import { differenceChart, flameChart, timelineChart } from './chart/model';

export type View = 'timeline' | 'flame' | 'statistics' | 'compare' | 'tree';
/** How two records are compared. */
export type Comparison = 'table' | 'timelines' | 'difference';
export type Dialog = 'threads' | 'help' | 'problems' | 'share';
export type ThreadOrder = 'begin' | 'activity' | 'id' | 'own';
/** What the list beside the view holds: the intervals of the selected name, the search's hits, the measured span. */
export type List = 'name' | 'hits' | 'span' | 'notes';

/** Where a record came from, and how it is read again. */
export type Source = { kind: 'script' } | { kind: 'file'; handle?: FileSystemFileHandle | undefined };

/** What the user wrote to a time of the record, or to a span of it. */
export interface Note extends Range {
  text: string;
}

export interface Opened {
  title: string;
  /** Its columns of times are empty: the profile has them. */
  raw: RawRecord;
  /** How many there are in the file. */
  intervals: number;
  profile: Profile;
  /** Of a script the browser has already read the escapes in names. */
  source: Source;
}

export const opened = signal<Opened | undefined>(undefined);
export const second = signal<Opened | undefined>(undefined);
/** What is being read, and how much of it: 0 to 1, undefined where the browser does not tell. */
export const reading = signal<{ title: string; part: number | undefined; large?: boolean } | undefined>(
  undefined,
);
/** Why the last file could not be shown. */
export const refusal = signal<string | undefined>(undefined);
/** What the page has to say that is no refusal. */
export const notice = signal<string | undefined>(undefined);

export const view = signal<View>('timeline');
export const comparison = signal<Comparison>('table');
/** Which way the call tree is read. */
export const treeWay = signal<'down' | 'up'>('down');
/** Lines of the call tree that are open, by the names down to them. */
export const openLines = signal<ReadonlySet<string>>(new Set());
export const dialog = signal<Dialog | undefined>(undefined);
export const foldRecursion = signal(false);
export const onlyVisible = signal(false);
export const search = signal('');
export const encoding = signal('utf-8');
export const theme = signal<'auto' | 'light' | 'dark'>('auto');
export const palette = signal<Palette>('hues');
export const list = signal<List | undefined>(undefined);
/** The menu that is open. */
export const menu = signal<'export' | 'lane' | undefined>(undefined);
/** The lane that the menu is of, and where it is shown. */
export const laneMenu = signal<{ thread: number; x: number; y: number } | undefined>(undefined);
/** Pixels of the details below the view. */
export const detailsHeight = signal(180);

export const threadOrder = signal<ThreadOrder>('begin');
/** The user's own order of threads. */
export const ownOrder = signal<readonly number[]>([]);
export const hidden = signal<ReadonlySet<number>>(new Set());
/** Threads of which only the first row is shown. */
export const collapsed = signal<ReadonlySet<number>>(new Set());
/** Threads on top, which stay there while the others are scrolled. */
export const pinned = signal<ReadonlySet<number>>(new Set());
export const renamed = signal<ReadonlyMap<number, string>>(new Map());
/** The thread that n and p have gone to; undefined for all. */
export const currentThread = signal<number | undefined>(undefined);

export const selectedName = signal<number | undefined>(undefined);
/** An interval of the timeline. */
export const selectedInterval = signal<number | undefined>(undefined);
/** A box of the flame graph: the names from the top down to it. */
export const selectedPath = signal<readonly number[] | undefined>(undefined);
/** A row of the comparison. */
export const selectedComparison = signal<Compared | undefined>(undefined);
/** An interval of the second record's timeline. */
export const secondInterval = signal<number | undefined>(undefined);
/** Whether, of two timelines, keys work on the second record's. */
export const inSecond = signal(false);
/** A box of the flame graph of the difference, and the tree that it is one of. */
const selectedDifference = signal<{ tree: CallTree<Difference>; node: number } | undefined>(undefined);
/** A span that is being measured. */
export const span = signal<Range | undefined>(undefined);
export const notes = signal<readonly Note[]>([]);

export const timeline = new ChartState();
export const flame = new ChartState();
/** The second record's timeline, and the flame graph of both. */
export const secondTimeline = new ChartState();
export const difference = new ChartState();

export const profile = computed(() => opened.value?.profile);
export const walker = computed(() => (profile.value ? new Walker(profile.value) : undefined));
export const names = computed(() => {
  const record = opened.value;
  return record ? decodeNames(record.raw.names, encoding.value) : [];
});

export const darkNow = signal(false);
const systemDark = matchMedia('(prefers-color-scheme: dark)');
const applyTheme = () => {
  darkNow.value = theme.value === 'dark' || (theme.value === 'auto' && systemDark.matches);
  document.documentElement.dataset.theme = darkNow.value ? 'dark' : 'light';
};
effect(applyTheme);
systemDark.addEventListener('change', applyTheme);

export function threadName(index: number): string {
  return renamed.value.get(index) ?? profile.value?.threads[index]?.name ?? '';
}

/** The thread whose first block began first: most likely the one that started the others. */
export const mainThread = computed(() => {
  const threads = profile.value?.threads ?? [];
  let first = -1;
  threads.forEach((thread, index) => {
    if (thread.firstBegin < (threads[first]?.firstBegin ?? Infinity)) first = index;
  });
  return first;
});

export const orderedThreads = computed(() => {
  const threads = profile.value?.threads ?? [];
  const own = new Map(ownOrder.value.map((thread, place) => [thread, place]));
  const keys = {
    begin: (index: number) => threads[index]!.firstBegin,
    activity: (index: number) => -threads[index]!.busy,
    id: (index: number) => threads[index]!.id,
    own: (index: number) => own.get(index) ?? Infinity,
  };
  const key = keys[threadOrder.value];
  const isPinned = (index: number) => (pinned.value.has(index) ? 0 : 1);
  return threads
    .map((_, index) => index)
    .sort((a, b) => isPinned(a) - isPinned(b) || compareNumbers(key(a), key(b)) || a - b);
});

/** Infinity is its own equal, and what is no number comes last. */
function compareNumbers(a: number, b: number): number {
  return a === b ? 0 : Number.isNaN(a) ? 1 : Number.isNaN(b) || a < b ? -1 : 1;
}

export const visibleThreads = computed(() =>
  orderedThreads.value.filter((thread) => !hidden.value.has(thread)),
);

export const timelineModel = computed(() =>
  profile.value
    ? timelineChart(profile.value, names.value, {
        threads: visibleThreads.value,
        collapsed: collapsed.value,
        pinned: visibleThreads.value.filter((thread) => pinned.value.has(thread)).length,
        threadName,
        mainThread: mainThread.value,
      })
    : undefined,
);

/** The visible range, a moment after it has come to rest: statistics of a million intervals take time. */
export const restingRange = signal<Range | undefined>(undefined);
let resting: ReturnType<typeof setTimeout> | undefined;
effect(() => {
  const range = onlyVisible.value ? timeline.range.value : undefined;
  clearTimeout(resting);
  if (!range) restingRange.value = undefined;
  else resting = setTimeout(() => (restingRange.value = range), 120);
});

export const selection = computed<Selection>(() => ({
  range: restingRange.value,
  threads: hidden.value.size > 0 ? new Set(visibleThreads.value) : undefined,
  foldRecursion: foldRecursion.value,
}));

export const callTree = computed(() => {
  const chosen = currentThread.value;
  return profile.value
    ? makeCallTree(profile.value, {
        ...selection.value,
        threads: chosen === undefined ? selection.value.threads : new Set([chosen]),
      })
    : undefined;
});

export const flameModel = computed(() => {
  const title = currentThread.value === undefined ? 'All threads shown' : threadName(currentThread.value);
  return callTree.value ? flameChart(callTree.value, names.value, title) : undefined;
});

/** The box of the flame graph that is selected; of a name alone, the heaviest one nearest to the top. */
export const selectedNode = computed(() => {
  const nodes = callTree.value?.nodes ?? [];
  const path = selectedPath.value;
  if (path) {
    const at = nodeOfPath(callTree.value!, path);
    if (at !== undefined) return at;
  }
  const name = selectedName.value;
  if (name === undefined) return undefined;
  const first = nodes.findIndex((node) => node.name === name);
  return first < 0 ? undefined : first;
});

export const compared = computed(() => {
  if (!opened.value || !second.value) return [];
  return compare(inEncoding(opened.value), inEncoding(second.value));
});

const inEncoding = ({ profile, raw }: Opened) => ({
  ...profile,
  names: decodeNames(raw.names, encoding.value),
});

export const differenceTree = computed(() =>
  opened.value && second.value
    ? makeDifferenceTree(inEncoding(opened.value), inEncoding(second.value), {
        foldRecursion: foldRecursion.value,
      })
    : undefined,
);

export const differenceNode = computed(() => {
  const selected = selectedDifference.value;
  return selected && selected.tree === differenceTree.value?.tree ? selected.node : undefined;
});

export const differenceModel = computed(() => {
  const made = differenceTree.value;
  const dark = darkNow.value;
  return made && differenceChart(made.tree, made.names, (before, after) => changeColor(before, after, dark));
});

export const secondWalker = computed(() => (second.value ? new Walker(second.value.profile) : undefined));
export const secondNames = computed(() =>
  second.value ? decodeNames(second.value.raw.names, encoding.value) : [],
);

export const secondModel = computed(() => {
  const record = second.value;
  if (!record) return undefined;
  const { profile } = record;
  return timelineChart(profile, secondNames.value, {
    threads: [...profile.threads.keys()],
    collapsed: new Set(),
    pinned: 0,
    threadName: (thread) => profile.threads[thread]!.name,
    mainThread: -1,
  });
});

/** Two timelines have one axis. */
effect(() => void (secondTimeline.range.value = timeline.range.value));
effect(() => void (timeline.range.value = secondTimeline.range.value));

function openedOf(raw: RawRecord, title: string, source: Source): Opened {
  const intervals = raw.begin.length;
  return { title, raw, intervals, profile: makeProfile(raw), source };
}

/** Shows a record from its beginning, with nothing chosen. */
export function show(raw: RawRecord, title: string, source: Source): void {
  const record = openedOf(raw, title, source);
  const { profile } = record;
  batch(() => {
    opened.value = record;
    encoding.value = guessEncoding([...raw.names, ...raw.threads]);
    refusal.value = undefined;
    view.value = 'timeline';
    search.value = '';
    hidden.value = new Set();
    collapsed.value = new Set();
    pinned.value = new Set();
    ownOrder.value = [];
    threadOrder.value = 'begin';
    renamed.value = new Map();
    currentThread.value = undefined;
    span.value = undefined;
    notes.value = [];
    list.value = undefined;
    select(undefined);
    timeline.reset(profile.last);
  });
}

export function showSecond(raw: RawRecord, title: string): void {
  batch(() => {
    secondInterval.value = undefined;
    const { profile } = (second.value = openedOf(raw, title, { kind: 'file' }));
    secondTimeline.reset(Math.max(profile.last, opened.value?.profile.last ?? 0));
    timeline.reset(Math.max(profile.last, opened.value?.profile.last ?? 0));
    refusal.value = undefined;
    view.value = 'compare';
  });
}

export function select(name: number | undefined, interval?: number): void {
  batch(() => {
    selectedName.value = name;
    selectedInterval.value = interval;
    selectedPath.value = undefined;
    selectedComparison.value = undefined;
    secondInterval.value = undefined;
    selectedDifference.value = undefined;
  });
}

/** Selects an interval of the second record. */
export function selectInSecond(interval: number): void {
  batch(() => {
    select(undefined);
    secondInterval.value = interval;
    secondTimeline.bring();
  });
}

/** Selects a box of the flame graph of the difference. */
export function selectDifference(node: number): void {
  batch(() => {
    select(undefined);
    selectedDifference.value = { tree: differenceTree.value!.tree, node };
    difference.bring();
  });
}

/** Selects an interval, and shows its lane if that is not shown. */
export function selectInterval(interval: number): void {
  const { blocks, block } = profile.value!;
  const { name, thread, depth } = blocks[block[interval]!]!;
  batch(() => {
    select(name, interval);
    if (hidden.value.has(thread)) hidden.value = without(hidden.value, thread);
    if (depth > 0 && collapsed.value.has(thread)) collapsed.value = without(collapsed.value, thread);
    timeline.bring();
  });
}

/** Selects a box of the flame graph. */
export function selectNode(node: number): void {
  const path = pathOfNode(callTree.value!, node);
  batch(() => {
    select(path[path.length - 1]);
    selectedPath.value = path;
    flame.bring();
  });
}

export function without<T>(set: ReadonlySet<T>, member: T): Set<T> {
  return new Set([...set].filter((other) => other !== member));
}

/** A flame graph's axis is another one whenever its tree is. No tree is made before it is looked at. */
function followTree(chart: ChartState, isSeen: () => boolean, tree: () => { total: number } | undefined) {
  let known: { total: number } | undefined;
  effect(() => {
    const made = isSeen() ? tree() : undefined;
    if (!made || made === known) return;
    known = made;
    chart.reset(made.total);
  });
}
followTree(
  flame,
  () => view.value === 'flame',
  () => callTree.value,
);
followTree(
  difference,
  () => view.value === 'compare' && comparison.value === 'difference',
  () => differenceTree.value?.tree,
);
